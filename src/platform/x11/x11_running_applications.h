#pragma once

#include "platform/x11/x11_window_table.h"
#include "ports/window_list.h"

namespace tavrin {

/// The applications that have windows, minimised ones and those of other desktops included. An application
/// counts as running exactly as long as it has one.
class X11RunningApplications final : public RunningApplications {
public:
    explicit X11RunningApplications(X11WindowTable& table) : table_(table) {}

    std::vector<RunningApplication> runningApplications() override;
    std::optional<RunningApplication> applicationWithProcessIdentifier(ProcessID pid) override;
    std::vector<RunningApplication> applicationsWithBundleIdentifier(const std::string& identifier) override;

private:
    template <class Predicate>
    std::vector<RunningApplication> applications(Freshness freshness, Predicate isWanted);

    X11WindowTable& table_;
};

} // namespace tavrin
