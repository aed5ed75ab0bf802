#pragma once

#include "session_bus/qt_event_loop.h"

#include <QApplication>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE

namespace tavrin {

/// The application object of the whole run, on a screen that nobody sees and without a session bus.
class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        // No test may meet the panel of whoever runs it.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        application_ = std::make_unique<QApplication>(count_, arguments_);
    }
    void TearDown() override { application_.reset(); }

private:
    int count_ = 1;
    char name_[6] = "tests";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

inline testing::Environment* const qtEnvironment = testing::AddGlobalTestEnvironment(new QtEnvironment);

/// Handles what is waiting, until a timer of no length that starts now has fired.
inline void runEventLoopOnce() {
    bool isDone = false;
    QTimer::singleShot(0, [&] { isDone = true; });
    waitUntil([&] { return isDone; });
}

} // namespace tavrin
