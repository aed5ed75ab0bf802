#pragma once

#include "base/token.h"
#include "records/key_combo.h"
#include "records/windows.h"

#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// A failure of the platform, in its own words.
struct PlatformError {
    int code = 0;
    std::string localizedDescription;
    bool operator==(const PlatformError&) const = default;
};

/// Starting the program at login.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// What the desktop would really do at the next login.
    virtual LoginItemStatus status() = 0;
    virtual std::expected<void, PlatformError> registerItem() = 0;
    virtual std::expected<void, PlatformError> unregisterItem() = 0;
};

/// A process that may be another copy of this program.
struct InstanceProbe {
    ProcessID pid = 0;
    std::optional<std::string> bundleIdentifier; ///< absent for a process without one

    bool operator==(const InstanceProbe&) const = default;
};

/// The running processes as far as they may be copies of this program.
class RunningInstances {
public:
    virtual ~RunningInstances() = default;

    /// In the platform's order; may include this process. Of several copies that start at the same moment
    /// exactly one sees no other. Empty when the platform cannot tell.
    virtual std::vector<InstanceProbe> runningInstances() = 0;

    /// Brings that process's windows to the front; nothing happens when it is gone.
    virtual void activate(ProcessID pid) = 0;
};

enum class SystemEvent {
    screenParametersChanged, ///< a screen came, went, moved or changed size; bursts are not merged
    didWake,
    screenIsUnlocked,    ///< once per unlock; also after login
    didBecomeActive,     ///< a window of this program came to the front
    trustMayHaveChanged, ///< the desktop may answer differently about the permission now
};

/// Tells about events of the desktop, on the main thread. An event that the desktop cannot report simply
/// never comes.
class SystemEvents {
public:
    virtual ~SystemEvents() = default;

    /// `handler` is called at every such event until the token is released.
    virtual Token observe(SystemEvent event, std::function<void()> handler) = 0;
};

/// Opens things outside the program.
class LinkOpener {
public:
    virtual ~LinkOpener() = default;

    /// Where the user grants the permission to move windows, or the page that says what this desktop needs.
    /// False when nothing could be opened.
    virtual bool openAccessibilitySettings() = 0;

    /// Shows a folder in the file manager. False when nothing could be opened.
    virtual bool openFolder(const std::filesystem::path& folder) = 0;
};

/// What a person who looks into a fault wants to know of the desktop. A text is empty when it is not known.
struct DesktopFacts {
    std::string desktopName;       ///< for example "XFCE"
    std::string windowManagerName; ///< for example "Openbox"
    std::string sessionType;       ///< for example "x11"
    std::string toolkitVersion;    ///< for example "Qt 6.4.2"
    std::string shortcutObstacle;  ///< why no shortcut can work here; empty when they can

    bool operator==(const DesktopFacts&) const = default;
};

/// A combination that belongs to the system, with the sentence that says so.
struct ReservedCombo {
    KeyCombo combo;
    std::string message;
};

/// The sentences of the interface that name places of this desktop.
struct DesktopTexts {
    /// What is missing now and what to do about it; empty when nothing is known of it.
    std::string missingPermission;
    /// On the button that asks the desktop for the permission; empty where that is no use.
    std::string requestPermission;
    std::string grantPermission; ///< where to grant it, as a sentence; empty for the usual one
    std::string launchAtLogin =
        "First time you enable this, macOS may ask you to confirm in System Settings > "
        "General > Login Items.";
    std::string exampleApplication = "com.apple.finder"; ///< an identifier
    std::vector<ReservedCombo> reservedCombos;           ///< empty: the usual ones
};

/// Describes the desktop to the user and for troubleshooting. Nothing is decided by it.
class DesktopInformation {
public:
    virtual ~DesktopInformation() = default;

    /// The facts now. Texts are valid UTF-8 of bounded length.
    virtual DesktopFacts currentFacts() = 0;

    /// The sentences as they are true now.
    virtual DesktopTexts texts() { return {}; }
};

} // namespace tavrin
