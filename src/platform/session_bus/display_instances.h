#pragma once

#include "platform/session_bus/bus_link.h"
#include "ports/session.h"

#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// The file that the one copy of the program on a display has locked: in the user's folder for what lives as
/// long as the session. `display` is the display's name in the environment ($DISPLAY, $WAYLAND_DISPLAY).
/// Empty when there is no such folder.
std::filesystem::path instanceLock(const std::string& display);

/// The copies of this program that this user runs on one display. The first one locks a file, which the
/// kernel unlocks however that process ends; a question takes the lock when nobody has it, and a process that
/// has it is the only one listed. Otherwise the owner is listed first, then this process. No bus is needed
/// for that.
///
/// On the session bus the owner is the program's org.freedesktop.Application, also after the bus was
/// restarted: others activate it there. The copies on other displays of the user queue up for the name.
class DisplayInstances final : public QObject, public RunningInstances {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    static constexpr auto applicationName = "org.tavrin.Tavrin";

    /// How long `activate` waits at most for a copy that does not answer.
    static constexpr std::chrono::milliseconds activationTimeout{200};

    /// `ownPID` is this process. Without a lock file nothing is listed.
    DisplayInstances(BusLink& sessionBus, std::filesystem::path lockFile, ProcessID ownPID);
    ~DisplayInstances() override;
    DisplayInstances(const DisplayInstances&) = delete;
    DisplayInstances& operator=(const DisplayInstances&) = delete;

    std::vector<InstanceProbe> runningInstances() override;

    /// Returns once the other process has answered or the time is over. A process that was started within
    /// half a second of this one is left alone: the user asked once, and not for its windows.
    void activate(ProcessID pid) override;

    /// `activated` is called from the event loop whenever another copy, or the desktop, activates this one.
    /// An activation that came before is handed over now.
    void setOnActivate(std::function<void()> activated);

public Q_SLOTS:
    // NOLINTBEGIN(readability-identifier-naming): the interface's names
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& name, const QVariantList& parameter,
                                     const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    /// What the owner has written into the file.
    struct Owner {
        ProcessID pid = 0;
        QString busName; ///< its connection's name on the session bus; empty without one
    };

    /// False when another process has the lock.
    bool lock();
    void serve();
    Owner readOwner() const;

    BusLink& sessionBus_;
    std::filesystem::path lockFile_;
    ProcessID ownPID_;
    int lock_ = -1; ///< the locked file, while this process is the owner
    std::function<void()> activated_;
    bool isActivationPending_ = false; ///< one came before anybody wanted to hear of it
    Token opened_;
};

} // namespace tavrin
