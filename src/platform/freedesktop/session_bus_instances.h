#pragma once

#include "platform/freedesktop/bus_addresses.h"
#include "ports/session.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

class ApplicationObject;

/// The copies of this program in the session, by the name that the first one owns on the session bus. A
/// question takes the name when nobody has it; a process that owns it is the only one listed. Otherwise the
/// owner is listed first, with the name as its bundle identifier, then this process. The owner is the
/// program's org.freedesktop.Application: others activate it over the bus. Without a session bus nothing is
/// listed.
class SessionBusInstances final : public RunningInstances {
public:
    static constexpr auto defaultName = "org.tavrin.Tavrin";

    /// How long `activate` waits at most for a copy that does not answer.
    static constexpr std::chrono::milliseconds activationTimeout{200};

    /// `address` is that of the session bus, `ownPID` this process. The environment tells, when this process
    /// activates another one, which user action that goes back to. No application object is needed before
    /// another copy activates this one.
    SessionBusInstances(std::optional<std::string> address, ProcessID ownPID,
                        Environment environment = processEnvironment, std::string name = defaultName);
    ~SessionBusInstances() override;

    std::vector<InstanceProbe> runningInstances() override;

    /// Returns once the other process has answered or the time is over. A process that was started within
    /// half a second of this one is left alone: the user asked once, and not for its windows.
    void activate(ProcessID pid) override;

    /// `activated` is called from the event loop whenever another copy, or the desktop, activates this one;
    /// with the token that lets a window come to the front, which may be empty. An activation that came
    /// before is handed over now.
    void setOnActivate(std::function<void(const std::string& activationToken)> activated);

private:
    void open();
    void tryToOwn();
    std::optional<ProcessID> owner() const;

    std::optional<std::string> address_;
    ProcessID ownPID_;
    Environment environment_;
    std::string name_;
    bool isOpened_ = false;
    bool isOwner_ = false;
    std::unique_ptr<ApplicationObject> object_; ///< absent without a bus
};

} // namespace tavrin
