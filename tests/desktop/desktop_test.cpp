#include "desktop_test.h"

#include "support/desktop/screenshot.h"

#include <QFile>
#include <QJsonObject>

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

void ProgramTest::beginWith(const std::vector<Rect>& displays) {
    begin({.displays = displays});
    ASSERT_TRUE(program().start());
}

TestClient& ProgramTest::client() {
    if (!client_)
        client_ = desktop().startClient();
    return *client_;
}

TestClient& ProgramTest::toolkitClient() {
    if (!toolkitClient_)
        toolkitClient_ = desktop().startToolkitClient();
    return *toolkitClient_;
}

WindowHandle ProgramTest::open(TestClient& client, const WindowRequest& request, const Rect& frame) {
    const auto window = client.open(request);
    EXPECT_TRUE(window && windows().place(*window, frame)) << request.title;
    return window.value_or(WindowHandle());
}

std::vector<Rect> ProgramTest::seenAll(const std::vector<WindowHandle>& all) {
    std::vector<Rect> frames;
    for (const auto& window : all)
        frames.push_back(seen(window));
    return frames;
}

bool ProgramTest::bindFirstLayout(int keyCode, int modifiers) {
    QJsonObject settings;
    for (const auto* trigger : {"Connect", "Disconnect", "Wake", "UnlockLogin"})
        settings[QString("autoRestoreOn") + trigger] = false;
    settings["layoutShortcuts"] = QJsonObject{{program().payload("layouts.json")[0]["id"].toString(),
                                               QJsonObject{{"keyCode", keyCode}, {"modifiers", modifiers}}}};
    return program().setPayload("settings.json", settings);
}

} // namespace desktop
} // namespace tavrin
