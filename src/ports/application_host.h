#pragma once

#include <filesystem>
#include <string>

namespace tavrin {

/// Whether the program stands in the task bar and the application switcher.
enum class ActivationPolicy { regular = 0, accessory = 1 };

/// The program as the desktop sees it.
class ApplicationHost {
public:
    virtual ~ApplicationHost() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;

    /// Brings the program's windows in front of all others.
    virtual void activate() = 0;

    /// Ends the event loop; the process exits with status 0.
    virtual void terminate() = 0;

    /// The file of the running program; tells the user which copy is meant.
    virtual std::filesystem::path bundlePath() = 0;

    /// The version shown to the user; empty when there is none.
    virtual std::string shortVersion() = 0;
};

} // namespace tavrin
