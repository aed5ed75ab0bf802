#pragma once

#include "platform/windows/listed_windows.h"
#include "ports/screen_list.h"
#include "ports/window_elements.h"
#include "ports/window_list.h"

namespace tavrin {

/// The ports that read the desktop, the same for every window system.

class WindowSystemWindowList final : public RawWindowList {
public:
    explicit WindowSystemWindowList(ListedWindows& windows) : windows_(windows) {}

    std::optional<std::vector<RawWindowEntry>> onScreenWindows() override;

private:
    ListedWindows& windows_;
};

/// The applications that have windows, minimised ones and those of other desktops included. An application
/// counts as running exactly as long as it has one.
class WindowSystemApplications final : public RunningApplications {
public:
    explicit WindowSystemApplications(ListedWindows& windows) : windows_(windows) {}

    std::vector<RunningApplication> runningApplications() override;
    std::optional<RunningApplication> applicationWithProcessIdentifier(ProcessID pid) override;
    std::vector<RunningApplication> applicationsWithBundleIdentifier(const std::string& identifier) override;

private:
    ListedWindows& windows_;
};

class WindowSystemScreens final : public ScreenList {
public:
    explicit WindowSystemScreens(ListedWindows& windows) : windows_(windows) {}

    std::vector<Screen> screens() override;

private:
    ListedWindows& windows_;
};

/// There is nothing to ask the user, so the prompt is the same question.
class WindowSystemTrust final : public AccessibilityTrust {
public:
    explicit WindowSystemTrust(WindowSystem& system) : system_(system) {}

    bool isProcessTrusted() override { return !system_.obstacle(); }
    bool isProcessTrusted(Prompt prompt) override {
        if (prompt == Prompt::show && !isProcessTrusted())
            system_.requestAccess();
        return isProcessTrusted();
    }

private:
    WindowSystem& system_;
};

} // namespace tavrin
