#include "platform/qt/qt_local_key_monitor.h"
#include "qt/qt_application.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <gtest/gtest.h>

namespace tavrin {

void PrintTo(const KeyCombo& combo, std::ostream* stream) {
    *stream << combo.displayString();
}

namespace {

/// Keys by their place on the keyboard, as an X server numbers them.
enum class PhysicalKey : quint32 { control = 37, r = 27, escape = 9, renumberedLeft = 100 };

struct QtLocalKeyMonitorTest : testing::Test {
    QtLocalKeyMonitorTest() {
        monitor.emplace([](std::uint32_t key) { return std::optional(key == 100 ? 105 : key - 8); });
    }

    /// Delivers a press as Qt does: it asks for an override first, then sends the press. What the field
    /// would have typed is the answer.
    bool reachesField(PhysicalKey key, Qt::KeyboardModifiers modifiers, bool repeated = false) {
        ++time;
        field.clear();
        for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
            QKeyEvent event(type, Qt::Key_X, modifiers & Qt::ShiftModifier, static_cast<quint32>(key), 0, 0,
                            "x", repeated);
            event.setModifiers(modifiers);
            event.setTimestamp(time);
            event.ignore();
            QCoreApplication::sendEvent(&field, &event);
        }
        return !field.text().isEmpty();
    }

    QLineEdit field;
    quint64 time = 1000;
    std::optional<QtLocalKeyMonitor> monitor;
    std::vector<KeyCombo> seen;
};

TEST_F(QtLocalKeyMonitorTest, ReportsEveryPressOnceByItsPosition) {
    const auto token = monitor->add([this](const KeyEvent& event) {
        seen.push_back({event.keyCode, event.modifiers()});
        return false;
    });
    EXPECT_TRUE(reachesField(PhysicalKey::r, Qt::ShiftModifier));
    reachesField(PhysicalKey::r, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    reachesField(PhysicalKey::r, Qt::KeypadModifier);
    reachesField(PhysicalKey::r, Qt::ControlModifier, true);
    reachesField(PhysicalKey::control, Qt::ControlModifier);
    reachesField(PhysicalKey::renumberedLeft, Qt::NoModifier);
    EXPECT_EQ(seen,
              (std::vector<KeyCombo>{{15, ModifierSet::shift},
                                     {15, ModifierSet::control | ModifierSet::option | ModifierSet::command},
                                     {15, {}},
                                     {123, {}}}));
}

TEST_F(QtLocalKeyMonitorTest, ConsumedPressReachesNothingElse) {
    int laterHandler = 0;
    const auto token = monitor->add([](const KeyEvent& event) { return event.keyCode == 15; });
    const auto later = monitor->add([&](const KeyEvent&) {
        ++laterHandler;
        return false;
    });
    EXPECT_FALSE(reachesField(PhysicalKey::r, Qt::NoModifier));
    EXPECT_FALSE(reachesField(PhysicalKey::r, Qt::NoModifier, true)) << "nor do its repetitions";
    EXPECT_EQ(laterHandler, 0);
    EXPECT_TRUE(reachesField(PhysicalKey::escape, Qt::NoModifier));
    EXPECT_EQ(laterHandler, 1);
}

} // namespace
} // namespace tavrin
