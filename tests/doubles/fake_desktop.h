#pragma once

#include "base/signal.h"
#include "ports/application_catalog.h"
#include "ports/key_monitors.h"
#include "ports/runtime.h"
#include "ports/screen_list.h"
#include "ports/services.h"
#include "ports/session.h"
#include "ports/window_elements.h"
#include "ports/window_list.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavrin::testing {

struct FixedDisplays : DisplaySnapshotProviding {
    DisplaySnapshotCollection snapshot;
    DisplaySnapshotCollection currentSnapshot() override { return snapshot; }
};

struct FixedWindows : WindowListProviding {
    std::vector<WindowInfo> windows;
    std::vector<WindowInfo> currentWindows() override { return windows; }
};

struct FixedAXWindows : AXWindowSnapshotProviding {
    std::vector<AXWindowSnapshot> snapshots;
    int calls = 0;
    std::vector<AXWindowSnapshot> currentSnapshots() override {
        ++calls;
        return snapshots;
    }
};

struct FixedPermission : AccessibilityPermissionServicing {
    AccessibilityPermissionState state = AccessibilityPermissionState::granted;
    int prompts = 0;
    AccessibilityPermissionState currentState() override { return state; }
    AccessibilityPermissionState requestAccess() override {
        ++prompts;
        return state;
    }
    AccessibilityPermissionState recheckAccess() override { return state; }
};

struct FixedScreens : ScreenList {
    std::vector<Screen> list;
    std::vector<Screen> screens() override { return list; }
};

struct FixedRawWindows : RawWindowList {
    std::optional<std::vector<RawWindowEntry>> entries;
    std::optional<std::vector<RawWindowEntry>> onScreenWindows() override { return entries; }
};

struct FixedApplications : RunningApplications {
    std::vector<RunningApplication> applications;
    int lookups = 0;

    std::vector<RunningApplication> runningApplications() override {
        ++lookups;
        return applications;
    }
    std::optional<RunningApplication> applicationWithProcessIdentifier(ProcessID pid) override {
        ++lookups;
        for (const auto& application : applications)
            if (application.processIdentifier == pid)
                return application;
        return std::nullopt;
    }
    std::vector<RunningApplication> applicationsWithBundleIdentifier(const std::string& identifier) override {
        ++lookups;
        auto found = applications;
        std::erase_if(found,
                      [&](const auto& application) { return application.bundleIdentifier != identifier; });
        return found;
    }
};

/// Answers each restore with the next of `results`, the last one again and again.
struct ScriptedRestores : RestoreServicing {
    std::vector<RestoreResult> results;
    std::vector<SavedLayout> restored;
    RestoreResult restore(const SavedLayout& layout) override {
        restored.push_back(layout);
        return results.at(std::min(restored.size(), results.size()) - 1);
    }
};

struct FakeEvents : SystemEvents {
    std::map<SystemEvent, Signal<>> signals;
    Token observe(SystemEvent event, std::function<void()> handler) override {
        return signals[event].connect(std::move(handler));
    }
    void emit(SystemEvent event) { signals[event].emit(); }
    std::size_t observerCount(SystemEvent event) { return signals[event].connectionCount(); }
};

/// The local monitors are asked in the order in which they were added.
struct FakeKeys : KeyMonitors {
    using LocalHandler = std::function<bool(const KeyEvent&)>;
    struct LocalMonitors {
        std::vector<std::shared_ptr<LocalHandler>> handlers;
        explicit operator bool() const { return !handlers.empty(); }
        bool operator()(const KeyEvent& event) const {
            const auto asked = handlers;
            return std::ranges::any_of(asked, [&](const auto& handler) { return (*handler)(event); });
        }
    };
    std::vector<KeyCombo> watched;
    std::vector<RefusedKey> refused;
    Signal<> refusedChanged;
    LocalMonitors local;

    /// In another application.
    void press(const KeyEvent& event) {
        // A shortcut may have others watched.
        const auto handler = pressed;
        if (std::ranges::any_of(watched, [&](const auto& combo) { return combo.matches(event); }))
            handler(event);
    }
    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyEvent&)> handler) override {
        watched = std::move(combos);
        pressed = std::move(handler);
    }
    std::vector<RefusedKey> refusedKeys() override { return refused; }
    Token observeRefusedKeys(std::function<void()> handler) override {
        return refusedChanged.connect(std::move(handler));
    }
    Token addLocalMonitor(LocalHandler handler) override {
        auto added = std::make_shared<LocalHandler>(std::move(handler));
        local.handlers.push_back(added);
        return Token([this, added] { std::erase(local.handlers, added); });
    }

private:
    std::function<void(const KeyEvent&)> pressed;
};

struct FakeCatalog : ApplicationCatalog {
    std::map<std::string, ApplicationIdentity> installed;
    std::map<ApplicationClues, ApplicationIdentity> identities;
    ApplicationIdentity identify(const ApplicationClues& clues) override { return identities[clues]; }
    ApplicationIdentity installedApplication(const std::string& bundleIdentifier) override {
        return installed[bundleIdentifier];
    }
};

struct FixedDesktopInformation : DesktopInformation {
    DesktopFacts facts{"XFCE", "Openbox", "x11", "Qt 6"};
    DesktopTexts sentences;
    DesktopFacts currentFacts() override { return facts; }
    DesktopTexts texts() override { return sentences; }
};

struct FakeLoginItem : LoginItem {
    LoginItemStatus current = LoginItemStatus::notRegistered;
    bool fails = false;
    int changes = 0; ///< asked for, also those that failed
    LoginItemStatus status() override { return current; }
    std::expected<void, PlatformError> registerItem() override { return become(LoginItemStatus::enabled); }
    std::expected<void, PlatformError> unregisterItem() override {
        return become(LoginItemStatus::notRegistered);
    }

private:
    std::expected<void, PlatformError> become(LoginItemStatus wanted) {
        ++changes;
        if (fails)
            return std::unexpected(PlatformError{5, "no room"});
        current = wanted;
        return {};
    }
};

struct FakeDefaults : UserDefaults {
    std::map<std::string, std::int64_t> integers;
    std::map<std::string, bool> booleans;
    int writes = 0;
    bool usable = true;
    bool isUsable() override { return usable; }
    bool isEmpty() override { return integers.empty() && booleans.empty(); }
    std::int64_t integer(const std::string& key) override {
        return integers.contains(key) ? integers.at(key) : 0;
    }
    bool boolean(const std::string& key) override { return booleans.contains(key) && booleans.at(key); }
    void setInteger(const std::string& key, std::int64_t value) override {
        integers[key] = value;
        ++writes;
    }
    void setBoolean(const std::string& key, bool value) override {
        booleans[key] = value;
        ++writes;
    }
};

/// Elements whose attributes are a table; what is not in it answers `noValue`.
class FakeElements : public WindowElements {
public:
    using Answer = std::expected<AXValue, AXError>;

    struct Element : AXElementReference {
        std::map<AXAttribute, Answer> attributes;
    };

    std::map<ProcessID, std::shared_ptr<Element>> applications;
    std::shared_ptr<Element> system = std::make_shared<Element>();
    std::map<std::int64_t, AXElement> listed; ///< by window number; the platform knows just these
    AXFrameResult setResult;
    std::vector<AXElement> sets;
    int rounds = 0; ///< of setting frames
    int calls = 0;

    /// A window of that process, behind those it has.
    std::shared_ptr<Element> addWindow(ProcessID pid, Rect frame, std::string title,
                                       std::optional<std::string> role = "AXWindow",
                                       std::optional<std::string> subrole = "AXStandardWindow") {
        auto window = std::make_shared<Element>();
        window->attributes[AXAttribute::position] = Point{frame.x, frame.y};
        window->attributes[AXAttribute::size] = Size{frame.width, frame.height};
        window->attributes[AXAttribute::title] = std::move(title);
        if (role)
            window->attributes[AXAttribute::role] = *role;
        if (subrole)
            window->attributes[AXAttribute::subrole] = *subrole;
        auto& windows = application(pid).attributes[AXAttribute::windows];
        if (!windows || !std::holds_alternative<std::vector<AXElement>>(*windows))
            windows = std::vector<AXElement>{};
        std::get<std::vector<AXElement>>(*windows).push_back(window);
        return window;
    }

    Element& application(ProcessID pid) {
        auto& application = applications[pid];
        if (!application)
            application = std::make_shared<Element>();
        return *application;
    }

    AXElement systemWideElement() override { return system; }
    AXElement applicationElement(ProcessID pid, const std::optional<std::string>&) override {
        application(pid);
        return applications[pid];
    }
    Answer attribute(const AXElement& element, AXAttribute attribute) override {
        ++calls;
        const auto& attributes = std::static_pointer_cast<const Element>(element)->attributes;
        const auto found = attributes.find(attribute);
        return found == attributes.end() ? std::unexpected(AXError::noValue) : found->second;
    }
    std::optional<AXElement> listedWindowElement(ProcessID, std::int64_t number) override {
        const auto found = listed.find(number);
        return found == listed.end() ? std::nullopt : std::optional<AXElement>(found->second);
    }
    std::vector<AXFrameResult> setFrames(std::span<const AXFrame> frames) override {
        ++rounds;
        std::vector<AXFrameResult> results;
        for (const auto& [element, frame] : frames) {
            sets.push_back(element);
            results.push_back(setResult);
            auto& attributes =
                std::const_pointer_cast<Element>(std::static_pointer_cast<const Element>(element))
                    ->attributes;
            if (setResult.position == AXError::success)
                attributes[AXAttribute::position] = Point{frame.x, frame.y};
            if (setResult.size == AXError::success)
                attributes[AXAttribute::size] = Size{frame.width, frame.height};
        }
        return results;
    }
};

} // namespace tavrin::testing
