// Shows the program's main job on a private desktop with two displays and real applications: saves their
// arrangement, scatters the windows, has them put back, and says in words what happened. Pictures of every
// stage go into the folder given as the only argument. Exits with 0 when every window is back to the pixel.
#include "support/desktop/screenshot.h"
#include "support/desktop/tavrin_program.h"
#include "support/desktop/wait.h"
#include "support/desktop/x_desktop.h"

#include <QCoreApplication>
#include <QDir>
#include <fmt/format.h>

#include <cstdio>

namespace {

using namespace tavrin;
using namespace tavrin::desktop;

const std::vector<Rect> displays{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}};
const std::string layoutName = "Writing";

struct Application {
    QString program;
    QStringList arguments;
    Rect place;     ///< where its window is put; a size of 0 keeps the window's own
    Rect scattered; ///< where it is dragged afterwards
};

const std::vector<Application> applications{
    {"xterm", {"-T", "Build"}, {60, 60, 640, 420}, {2300, 500, 500, 360}},
    {"xterm", {"-T", "Log"}, {60, 560, 640, 420}, {40, 20, 420, 300}},
    {"xterm", {"-T", "Notes"}, {1960, 80, 560, 380}, {90, 70, 420, 300}},
    {"featherpad", {"--standalone"}, {760, 60, 1080, 900}, {2000, 300, 700, 500}},
    {"galculator", {}, {2500, 560, 0, 0}, {1100, 400, 0, 0}},
};

struct OpenWindow {
    std::unique_ptr<Process> process;
    WindowHandle window;
    Rect saved;
};

template <typename... Arguments>
void say(fmt::format_string<Arguments...> text, Arguments&&... arguments) {
    fmt::print(text, std::forward<Arguments>(arguments)...);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

std::string words(const Rect& frame) {
    return fmt::format("{}x{} at {},{}", frame.width, frame.height, frame.x, frame.y);
}

class Demonstration {
public:
    explicit Demonstration(QString folder) : folder_(std::move(folder)) {}

    bool run() {
        say("A private desktop is up: display {}, {} displays.", desktop_.server().display().toStdString(),
            desktop_.outputs().areas().size());
        paintBackground();
        if (!program_.start())
            return stopped("Tavrin did not put its item into the tray");
        say("Tavrin runs; its item is in the tray.");
        if (!openApplications() || !arrange())
            return false;
        picture("1-before");
        return save() && scatter() && restore();
    }

private:
    bool stopped(const std::string& why) {
        say("Stopped: {}. Logs: {}", why, desktop_.logs().toStdString());
        picture("stopped");
        return false;
    }

    void picture(const QString& name) {
        const QString file = folder_ + "/" + name + ".png";
        waitUntilDrawn(desktop_.x());
        if (takeScreenshot(desktop_.x(), file))
            say("  picture: {}", file.toStdString());
    }

    // A colour for each display, so that the pictures show where one ends.
    void paintBackground() {
        auto& x = desktop_.x();
        auto* c = x.raw();
        const auto pixmap = xcb_generate_id(c);
        const auto pen = xcb_generate_id(c);
        xcb_create_pixmap(c, x.screen().root_depth, pixmap, x.root(), XServer::maximumWidth,
                          XServer::maximumHeight);
        std::uint32_t colour = 0x20242c;
        xcb_create_gc(c, pen, pixmap, XCB_GC_FOREGROUND, &colour);
        const auto fill = [&](const Rect& area) {
            const xcb_rectangle_t rectangle{
                static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height)};
            xcb_poly_fill_rectangle(c, pixmap, pen, 1, &rectangle);
        };
        fill({0, 0, XServer::maximumWidth, XServer::maximumHeight});
        for (const Rect& area : displays) {
            colour = colour == 0x20242c ? 0x2f4f6f : 0x4f6f5f;
            xcb_change_gc(c, pen, XCB_GC_FOREGROUND, &colour);
            fill(area);
        }
        xcb_change_window_attributes(c, x.root(), XCB_CW_BACK_PIXMAP, &pixmap);
        xcb_clear_area(c, 0, x.root(), 0, 0, 0, 0);
        x.sync();
    }

    bool openApplications() {
        auto& windows = desktop_.windows();
        for (const auto& application : applications) {
            OpenWindow opened;
            opened.process = desktop_.startProgram(application.program, application.arguments);
            if (!opened.process)
                return stopped(application.program.toStdString() + " cannot be started");
            const auto pid = static_cast<std::uint32_t>(opened.process->pid());
            const bool isShown = waitUntil([&] {
                for (const auto window : windows.managed())
                    if (windows.processOf(window) == pid)
                        opened.window = window;
                return opened.window != WindowHandle() && windows.waitUntilManaged(opened.window);
            });
            if (!isShown)
                return stopped(application.program.toStdString() + " opened no window");
            open_.push_back(std::move(opened));
        }
        say("{} windows of {} applications are open: xterm, featherpad, galculator.", open_.size(), 3);
        return true;
    }

    bool move(std::size_t index, Rect place) {
        const auto window = open_[index].window;
        const Rect now = desktop_.windows().visibleFrame(window).value_or(Rect{});
        if (place.width == 0)
            place = {place.x, place.y, now.width, now.height};
        if (desktop_.windows().place(window, place))
            return true;
        const Rect stands = desktop_.windows().visibleFrame(window).value_or(Rect{});
        return stopped(fmt::format("a window of {} does not go to {} but to {}",
                                   applications[index].program.toStdString(), words(place), words(stands)));
    }

    bool arrange() {
        for (std::size_t index = 0; index < open_.size(); ++index) {
            if (!move(index, applications[index].place))
                return false;
            open_[index].saved = *desktop_.windows().visibleFrame(open_[index].window);
        }
        say("They are arranged over both displays.");
        return true;
    }

    bool save() {
        if (!program_.openSaveForm())
            return stopped("\"Save Layout…\" did not open its form");
        desktop_.keyboard().type(layoutName);
        picture("2-saving");
        desktop_.keyboard().press(Keyboard::returnKey);
        if (!waitUntil([&] { return !program_.formArea(); }) || !program_.offers(layoutName))
            return stopped("the layout was not saved");
        say("Saved through the menu's \"Save Layout…\" under the name \"{}\". The menu now reads:\n\n{}",
            layoutName, program_.menu());
        return true;
    }

    bool scatter() {
        for (std::size_t index = 0; index < open_.size(); ++index)
            if (!move(index, applications[index].scattered))
                return false;
        const auto home = countHome();
        say("All {} windows were dragged elsewhere; {} of them stand where they were saved.", open_.size(),
            home);
        picture("3-scattered");
        return home == 0;
    }

    bool restore() {
        if (!program_.restoreLayout(layoutName))
            return stopped("restoring through the menu gave no outcome");
        const auto home = countHome();
        say("Restored through the menu: {} of {} windows are back to the pixel.", home, open_.size());
        for (std::size_t index = 0; index < open_.size(); ++index) {
            const auto now = desktop_.windows().visibleFrame(open_[index].window).value_or(Rect{});
            const Rect& saved = open_[index].saved;
            say("  {:<12} {:<24} {}", applications[index].program.toStdString(), words(now),
                now == saved ? "as saved" : "but was " + words(saved));
        }
        picture("4-restored");
        return home == open_.size();
    }

    std::size_t countHome() {
        std::size_t count = 0;
        for (const auto& each : open_)
            count += desktop_.windows().visibleFrame(each.window) == each.saved;
        return count;
    }

    QString folder_;
    XDesktop desktop_{{.name = "demo", .displays = displays}};
    TavrinProgram program_{desktop_};
    std::vector<OpenWindow> open_;
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString folder = QDir(argc > 1 ? argv[1] : ".").absolutePath();
    QDir().mkpath(folder);
    return Demonstration(folder).run() ? 0 : 1;
}
