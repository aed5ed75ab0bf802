#pragma once

#include "support/desktop/tavrin_program.h"
#include "support/desktop/wait.h"
#include "support/desktop/x_desktop.h"

#include <gtest/gtest.h>

namespace tavrin {

void PrintTo(const Rect& rect, std::ostream* out);

namespace desktop {

/// A test on a private desktop of its own. A failing test leaves a picture of the screen beside its logs.
class DesktopTest : public ::testing::Test {
protected:
    void begin(Desktop::Options options = {});
    void TearDown() override;

    /// Leaves the case out on desktops without it.
    bool lacks(Ability ability) { return !desktop_->has(ability); }

    Desktop& desktop() { return *desktop_; }
    Windows& windows() { return desktop_->windows(); }
    Outputs& outputs() { return desktop_->outputs(); }
    Tray& tray() { return desktop_->tray(); }
    /// Of a case that is about X, with `needs(Ability::xDesktop)`.
    XDesktop& xDesktop() { return dynamic_cast<XDesktop&>(*desktop_); }

    /// Where the window is seen now; an empty rectangle when it is gone.
    Rect seen(const WindowHandle& window) { return windows().visibleFrame(window).value_or(Rect{}); }

private:
    void lookForComplaints();

    std::unique_ptr<Desktop> desktop_;
};

/// A test of the built program, which is there from `begin` on but not started.
class ProgramTest : public DesktopTest {
protected:
    void begin(Desktop::Options options = {});
    /// The desktop with the program running on it.
    void beginWith(const std::vector<Rect>& displays);

    TavrinProgram& program() { return *program_; }
    /// A test application, started when it is first asked for.
    TestClient& client();
    /// One with Wayland windows, where the desktop speaks that.
    TestClient& toolkitClient();

    /// Opens a window and puts it where it is seen at `frame`.
    WindowHandle open(TestClient& client, const WindowRequest& request, const Rect& frame);
    std::vector<Rect> seenAll(const std::vector<WindowHandle>& all);
    /// From the next start on the first layout has this shortcut and no restore happens by itself.
    bool bindFirstLayout(int keyCode, int modifiers);

    static constexpr int keyR = 15, controlModifier = 0x40000, optionModifier = 0x80000;

private:
    std::unique_ptr<TavrinProgram> program_;
    std::unique_ptr<TestClient> client_;
    std::unique_ptr<TestClient> toolkitClient_;
};

} // namespace desktop
} // namespace tavrin
