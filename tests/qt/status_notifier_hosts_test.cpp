#include "platform/qt/status_notifier_hosts.h"
#include "qt/qt_application.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

TEST(StatusNotifierHostsTest, WithoutSessionBusThereIsNoPanelOnIt) {
    std::vector<StatusNotifierHosts::Presence> reports;
    const StatusNotifierHosts hosts(
        [&](StatusNotifierHosts::Presence presence) { reports.push_back(presence); });
    EXPECT_TRUE(reports.empty());
    ASSERT_TRUE(waitUntil([&] { return !reports.empty(); })) << "the icon would never be shown anywhere";
    EXPECT_EQ(reports, (std::vector{StatusNotifierHosts::Presence::absent}));
}

} // namespace
} // namespace tavrin
