#pragma once

#include "ports/window_list.h"

namespace tavrin {

/// No applications. A real one names them with the same identifiers as the window list: saved windows are
/// found again by them.
class UnsupportedRunningApplications final : public RunningApplications {
public:
    std::vector<RunningApplication> runningApplications() override { return {}; }
    std::optional<RunningApplication> applicationWithProcessIdentifier(ProcessID) override {
        return std::nullopt;
    }
    std::vector<RunningApplication> applicationsWithBundleIdentifier(const std::string&) override {
        return {};
    }
};

} // namespace tavrin
