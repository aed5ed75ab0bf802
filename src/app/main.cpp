#include "app/app_delegate.h"
#include "platform/open_platform.h"
#include "ports/runtime.h"
#include "session/single_instance_guard.h"
#include "ui/qt/qt_user_interface.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr const char* bundleIdentifier = "org.tavrin.Tavrin";

/// A test host runs the program beside one that is in use.
bool isRunByTestHost() {
    return std::getenv("XCTestConfigurationFilePath") != nullptr;
}

} // namespace

int main(int argc, char** argv) {
    using namespace tavrin;
    const auto opened = openPlatform(argc, argv);
    if (!opened) {
        std::fprintf(stderr, "tavrin: %s\n", opened.error().c_str());
        return EXIT_FAILURE;
    }
    OpenedPlatform& desktop = **opened;
    const Platform& platform = desktop.platform();
    if (!isRunByTestHost()) {
        SingleInstanceGuard guard{platform.processIdentifier, bundleIdentifier, platform.runningInstances};
        if (guard.otherInstance()) {
            guard.activateOtherInstance();
            return EXIT_SUCCESS;
        }
    }
    QtUserInterface userInterface{platform.applicationHost,
                                  [&desktop] { return desktop.statusItemAnchor(); }};
    AppDelegate delegate{platform, userInterface};
    platform.applicationHost.setActivationPolicy(ActivationPolicy::accessory);
    desktop.setOnActivate([&delegate] { delegate.bringForward(); });
    delegate.applicationDidFinishLaunching();
    const int status = desktop.run();
    desktop.setOnActivate({});
    return status;
}
