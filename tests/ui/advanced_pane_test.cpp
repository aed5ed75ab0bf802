#include "settings_fixture.h"
#include "ui/advanced_pane.h"

namespace tavrin {
namespace {

class AdvancedPaneTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    bool isTroubleshootingExpanded = false;
    AdvancedPane pane{collaborators, isTroubleshootingExpanded};

    void recordAttempt() {
        auto layout = testing::layout("Secret plans", {}, SavedLayoutKind::generic);
        attempts.record(testing::at(0), RestoreTriggerSource::automation, layout,
                        RestoreResult(5, 3, 2, {"Editor: slow", "Could not resolve PID for Mail"}));
    }
};

TEST_F(AdvancedPaneTest, RechecksThePermissionAndGoesOnByItself) {
    permission.state = AccessibilityPermissionState::denied;
    pane.recheckPermission();
    EXPECT_EQ(pane.permissionTitle(), "Accessibility permission required");
    permission.state = AccessibilityPermissionState::granted;
    time.pass(2);
    EXPECT_TRUE(pane.isPermissionGranted());
}

TEST_F(AdvancedPaneTest, ReportsForTroubleshootingWithoutWindowTitles) {
    windows.windows = {testing::window(1, "Editor", "diary", {0, 0, 500, 500})};
    displays.snapshot.displays[1].stableID.reset();
    displays.snapshot.displays[1].isInternal = true;
    recordAttempt();
    information.facts.shortcutObstacle = "This server shows no keys.";
    pane.setTroubleshootingExpanded(true);
    EXPECT_EQ(pane.report().text(),
              "Tavrin troubleshooting\n"
              "Tavrin: 1.2\n"
              "Program: /opt/tavrin\n"
              "Toolkit: Qt 6\n"
              "Desktop: XFCE\n"
              "Window manager: Openbox\n"
              "Session: x11\n"
              "Permission: Checking Accessibility\n"
              "Shortcuts: Cannot work. This server shows no keys.\n"
              "Data: /data\n"
              "\n"
              "Displays\n"
              "Display 1\n"
              "    Identity: 1-2-3\n"
              "    Key: external:0.000:0.000:0.500:1.000:1:1920x1080\n"
              "    Pixels: 1920x1080 at scale 1\n"
              "    Usable area: 0, 0 · 1920 × 1050\n"
              "    Place: 0.000, 0.000 · 0.500 × 1.000\n"
              "Display 2 (built-in)\n"
              "    Identity: none\n"
              "    Key: internal:0.500:0.000:0.500:1.000:1:1920x1080\n"
              "    Pixels: 1920x1080 at scale 1\n"
              "    Usable area: 1920, 0 · 1920 × 1080\n"
              "    Place: 0.500, 0.000 · 0.500 × 1.000\n"
              "Arrangement: external:0.000:0.000:0.500:1.000:1:1920x1080|internal:0.500:0.000:0.500:1.000:1:"
              "1920x1080\n"
              "Setup: " +
                  *current.setup.value().matchExplanation +
                  "\n\n"
                  "Last restore\n"
                  "Time: 1970-01-01T00:00:00Z\n"
                  "Trigger: Automation\n"
                  "Kind: Generic\n"
                  "Result: 3 of 5 windows in place, 2 not open, 0 not moved\n"
                  "Error: Editor: slow\n"
                  "Error: Could not resolve PID for Mail\n");
    information.facts = {};
    pane.appear();
    EXPECT_EQ(pane.report().program.at(3), (TroubleshootingReport::Line{"Desktop", "unknown"}));
    EXPECT_TRUE(pane.openDataDirectory());
    EXPECT_EQ(host.log, "/data ");
}

} // namespace
} // namespace tavrin
