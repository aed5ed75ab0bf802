#include "desktop_test.h"

#include "support/desktop/screenshot.h"

#include <QFile>

#include <iostream>

namespace tavrin {

void PrintTo(const Rect& rect, std::ostream* out) {
    *out << rect.width << "x" << rect.height << "+" << rect.x << "+" << rect.y;
}

namespace desktop {

void DesktopTest::begin(Desktop::Options options) {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    options.name = std::string(test->test_suite_name()) + "." + test->name();
    for (auto& letter : options.name)
        letter = letter == '/' ? '-' : letter;
    desktop_ = Desktop::open(options);
}

// A sanitizer's complaint counts even where the program went on, or nobody looked at how it ended.
void DesktopTest::lookForComplaints() {
    QFile log(desktop_->log("tavrin"));
    if (!log.open(QIODevice::ReadOnly))
        return;
    const QString text = log.readAll();
    for (const auto* complaint : {"Sanitizer", "runtime error"})
        EXPECT_FALSE(text.contains(complaint)) << text.toStdString();
}

void DesktopTest::TearDown() {
    if (desktop_)
        lookForComplaints();
    if (!HasFailure() || !desktop_)
        return;
    takeScreenshot(desktop_->x(), desktop_->logs() + "/failure.png");
    std::cerr << "Logs and a picture of the screen: " << desktop_->logs().toStdString() << '\n';
}

void ProgramTest::begin(Desktop::Options options) {
    DesktopTest::begin(std::move(options));
    program_ = std::make_unique<TavrinProgram>(desktop());
}

TestClient& ProgramTest::client() {
    if (!client_)
        client_ = desktop().startClient();
    return *client_;
}

} // namespace desktop
} // namespace tavrin
