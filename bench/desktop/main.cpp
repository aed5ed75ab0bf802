// The program against what it is measured by, in turns on one private desktop, so that the ratios hold
// whatever else the machine does. Prints tables; every figure is a median.
#include "bare_client.h"
#include "capture/capture_service.h"
#include "capture/window_providers.h"
#include "display/display_snapshot_provider.h"
#include "platform/applications/freedesktop_application_catalog.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "platform/qt/qt_runtime.h"
#include "platform/windows/window_ports.h"
#include "platform/windows/window_system_elements.h"
#include "platform/x11/x11_window_system.h"
#include "restore/restore_service.h"
#include "restore/running_application_resolver.h"
#include "restore/window_mover.h"
#include "session/accessibility_permission_service.h"
#include "support/desktop/tavrin_program.h"
#include "support/desktop/wait.h"
#include "support/desktop/x_desktop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <random>

namespace {

using namespace tavrin;
using namespace tavrin::desktop;
using bench::BareClient;

[[noreturn]] void stop(const std::string& why) {
    fmt::print(stderr, "Stopped: {}\n", why);
    std::exit(EXIT_FAILURE);
}

/// Milliseconds that the task takes.
template <class Task>
double timed(Task task) {
    QElapsedTimer timer;
    timer.start();
    task();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// A desktop full of windows. Ten belong to an application; every client hosts one or more of them.
class FullDesktop {
public:
    explicit FullDesktop(int windowCount, int windowsPerClient = 10) : desktop_({.name = "bench"}) {
        for (int i = 0; i < windowCount; ++i) {
            if (i % windowsPerClient == 0)
                clients_.push_back(desktop_.startClient());
            const auto window =
                clients_.back()->open({.applicationClass = fmt::format("Application{}", i / 10),
                                       .title = fmt::format("A window of usual title, {}", i),
                                       .frame = {100, 100, 400, 300},
                                       .type = "NORMAL"}); // as toolkits say of every window
            if (!window)
                stop("a window does not open");
            ids_.push_back(*window);
        }
    }

    XDesktop& desktop() { return desktop_; }
    std::string display() { return desktop_.server().display().toStdString(); }
    const std::vector<xcb_window_t>& windows() const { return ids_; }

    /// Puts the windows at random places, other ones for every seed, and tells where each is seen then.
    std::map<xcb_window_t, Rect> scatter(unsigned seed) {
        std::mt19937 random(seed);
        std::map<xcb_window_t, Rect> places;
        for (const auto window : ids_)
            places[window] = {double(random() % 1300), double(random() % 600), 200.0 + random() % 300,
                              150.0 + random() % 250};
        if (BareClient(display()).placeTogether(places) != ids_.size())
            stop("the windows cannot be scattered");
        return places;
    }

    void expectAt(const std::map<xcb_window_t, Rect>& places, const char* who) {
        const auto isThere = [&](const auto& place) {
            return desktop_.windows().visibleFrame(place.first) == place.second;
        };
        if (!waitUntil([&] { return std::ranges::all_of(places, isThere); }))
            stop(fmt::format("{} left windows elsewhere", who));
    }

private:
    XDesktop desktop_;
    std::vector<std::unique_ptr<TestClient>> clients_;
    std::vector<xcb_window_t> ids_;
};

/// The program's own services on a display, without its interface.
class Services {
public:
    explicit Services(const std::string& display, FreedesktopApplicationCatalog& catalog)
        : x11_(std::move(X11WindowSystem::open(display, eventLoop_, scheduler_).value())),
          listed_(*x11_, catalog, scheduler_) {}

    std::vector<WindowInfo> windows() { return windowList_.currentWindows(); }

    SavedLayout capture() {
        const auto profile = captures_.resolveProfileID();
        if (!profile)
            stop("no profile");
        const auto layout = captures_.capture("Bench", SavedLayoutKind::appSpecific, *profile);
        if (!layout)
            stop("nothing captured");
        return *layout;
    }

    RestoreResult restore(const SavedLayout& layout) { return restores_.restore(layout); }

private:
    QtEventLoop eventLoop_;
    QtScheduler scheduler_;
    std::unique_ptr<X11WindowSystem> x11_;
    tavrin::ListedWindows listed_;
    WindowSystemScreens screenList_{listed_};
    WindowSystemWindowList rawWindows_{listed_};
    WindowSystemApplications applications_{listed_};
    WindowSystemElements windowElements_{listed_};
    WindowSystemTrust trust_{*x11_};
    QTemporaryDir data_;
    PosixFileSystem files_;
    SystemWallClock clock_;
    AppSupportPaths paths_{files_, data_.path().toStdString()};
    ProfileStore profiles_{paths_, clock_};
    SettingsStore settings_{paths_, clock_};
    WindowListProvider windowList_{rawWindows_, applications_};
    DisplaySnapshotProvider displays_{screenList_};
    AXWindowSnapshotProvider elements_{applications_, windowElements_};
    WindowMover mover_{windowElements_};
    RunningApplicationResolver resolver_{applications_};
    AccessibilityPermissionService permission_{trust_, windowElements_};
    CaptureService captures_{{.windowProvider = windowList_,
                              .axWindowProvider = &elements_,
                              .profileStore = profiles_,
                              .settingsStore = settings_,
                              .displaySnapshotProvider = displays_,
                              .clock = clock_},
                             0};
    RestoreService restores_{{.windowProvider = windowList_,
                              .windowMover = mover_,
                              .displaySnapshotProvider = displays_,
                              .settingsProvider = &settings_,
                              .pidResolver = resolver_,
                              .permissionService = permission_},
                             "tavrin"};
};

void runWmctrl(XDesktop& desktop, const QStringList& arguments) {
    QProcess wmctrl;
    wmctrl.setProcessEnvironment(desktop.environment());
    wmctrl.setStandardOutputFile(QProcess::nullDevice());
    wmctrl.start("wmctrl", arguments);
    if (!wmctrl.waitForFinished() || wmctrl.exitCode() != 0)
        stop("wmctrl fails");
}

void measureListing() {
    fmt::print("\nListing windows, milliseconds\n\n"
               "| windows | first time | again | bare XCB | wmctrl -lGpx | first / XCB | again / XCB | first "
               "/ wmctrl |\n"
               "|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const int count : {10, 100, 500}) {
        FullDesktop full(count);
        FreedesktopApplicationCatalog catalog;
        std::vector<double> first, again, bare, wmctrl;
        for (int round = 0; round < 31; ++round) {
            Services services(full.display(), catalog);
            BareClient client(full.display());
            std::size_t seen = 0;
            first.push_back(timed([&] { seen = services.windows().size(); }));
            // One listing serves all questions of a turn of the event loop.
            QCoreApplication::processEvents();
            again.push_back(timed([&] { static_cast<void>(services.windows()); }));
            bare.push_back(timed([&] { static_cast<void>(client.windows()); }));
            wmctrl.push_back(timed([&] { runWmctrl(full.desktop(), {"-lGpx"}); }));
            if (seen != static_cast<std::size_t>(count))
                stop(fmt::format("{} of {} windows listed", seen, count));
        }
        const double a = median(first), b = median(again), c = median(bare), d = median(wmctrl);
        fmt::print("| {} | {:.2f} | {:.2f} | {:.2f} | {:.2f} | {:.2f} | {:.2f} | {:.2f} |\n", count, a, b, c,
                   d, a / c, b / c, a / d);
    }
}

void measureRestoring(int count, int windowsPerClient) {
    FullDesktop full(count, windowsPerClient);
    FreedesktopApplicationCatalog catalog;
    Services services(full.display(), catalog);
    const auto places = full.scatter(1);
    const auto layout = services.capture();
    std::vector<double> program, bare, wmctrl;
    for (unsigned round = 0; round < 11; ++round) {
        const unsigned seed = 100 + 10 * round;
        full.scatter(seed);
        QCoreApplication::processEvents();
        program.push_back(timed([&] {
            if (services.restore(layout).matched != count)
                stop("not all windows are restored");
        }));
        full.expectAt(places, "the program");
        full.scatter(seed + 1);
        BareClient client(full.display());
        bare.push_back(timed([&] {
            if (client.placeTogether(places) != places.size())
                stop("the bare client does not place all windows");
        }));
        full.expectAt(places, "the bare client");
        if (count > 100)
            continue; // seconds a round
        full.scatter(seed + 2);
        // Its sizes are those of clients and its corners those of frames; where it puts them does not matter
        // here.
        wmctrl.push_back(timed([&] {
            for (const auto& [window, place] : places)
                runWmctrl(
                    full.desktop(),
                    {"-i", "-r", QString::number(window), "-e",
                     QString("0,%1,%2,%3,%4").arg(place.x).arg(place.y).arg(place.width).arg(place.height)});
        }));
    }
    const double a = median(program), b = median(bare);
    const auto other = wmctrl.empty() ? std::string(" | ")
                                      : fmt::format("{:.1f} | {:.2f}", median(wmctrl), a / median(wmctrl));
    fmt::print("| {} | {} | {:.1f} | {:.1f} | {:.2f} | {} |\n", count, count / windowsPerClient, a, b, a / b,
               other);
}

void measureRestoringAll() {
    fmt::print(
        "\nRestoring scattered windows, milliseconds\n\n"
        "| windows | processes | confirmed | bare XCB, confirmed | / XCB | wmctrl loop, unconfirmed | / "
        "wmctrl |\n"
        "|---:|---:|---:|---:|---:|---:|---:|\n");
    measureRestoring(100, 10);
    measureRestoring(300, 300);
    measureRestoring(900, 900);
}

/// A line of a file of the process's folder, in the unit of the file.
long long processFigure(const QString& file, const QByteArray& key) {
    QFile figures(file);
    if (!figures.open(QIODevice::ReadOnly))
        stop("no figures of the process");
    for (const auto& line : figures.readAll().split('\n'))
        if (line.startsWith(key + ":"))
            return line.mid(key.size() + 1).simplified().split(' ').front().toLongLong();
    stop("a figure is missing");
}

struct Start {
    double milliseconds = 0;
    double residentMiB = 0; ///< pages that only this process has, and all
    double ownMiB = 0;
};

Start measureStart(XDesktop& desktop, const QString& program) {
    Process process;
    Start start;
    start.milliseconds = timed([&] {
        if (!process.start(program, {}, desktop.environment(), desktop.log("started")) ||
            !desktop.tray().waitForItem())
            stop("no status item of " + program.toStdString());
    });
    waitUntil([] { return false; }, std::chrono::seconds(2));
    const QString rollup = QString("/proc/%1/smaps_rollup").arg(process.pid());
    start.residentMiB = static_cast<double>(processFigure(rollup, "Rss")) / 1024;
    start.ownMiB = static_cast<double>(processFigure(rollup, "Private_Dirty")) / 1024;
    process.kill();
    waitUntil([&] { return !desktop.tray().hasItem(); });
    return start;
}

void measureStarts(const QString& folder) {
    XDesktop desktop({.name = "bench"});
    std::vector<Start> own, empty;
    for (int round = 0; round < 11; ++round) {
        own.push_back(measureStart(desktop, folder + "/tavrin"));
        empty.push_back(measureStart(desktop, folder + "/tavrin-bench-empty-tray"));
    }
    const auto figures = [](const std::vector<Start>& starts, double Start::* member) {
        std::vector<double> values;
        for (const auto& start : starts)
            values.push_back(start.*member);
        return median(values);
    };
    fmt::print("\nStart to the status item\n\n"
               "| | Tavrin | empty Qt tray program | ratio |\n|---|---:|---:|---:|\n");
    const auto row = [&](const char* name, double Start::* member) {
        const double a = figures(own, member), b = figures(empty, member);
        fmt::print("| {} | {:.1f} | {:.1f} | {:.2f} |\n", name, a, b, a / b);
    };
    row("time, ms", &Start::milliseconds);
    row("resident memory, MiB", &Start::residentMiB);
    row("private dirty memory, MiB", &Start::ownMiB);
}

void measureIdleness() {
    XDesktop desktop({.name = "bench"});
    TavrinProgram program(desktop);
    const auto client = desktop.startClient();
    if (!client->open({}) || !program.start() || !program.saveLayout("Work") ||
        !program.restoreLayout("Work"))
        stop("the program does not work");
    // Until the feedback is over, the connection to the server put to rest, and the toolkit's helpers gone.
    waitUntil([] { return false; }, std::chrono::seconds(45));
    const auto switches = [&] {
        std::map<std::string, long long> counts;
        const QString tasks = QString("/proc/%1/task").arg(program.process().pid());
        for (const auto& task : std::filesystem::directory_iterator(tasks.toStdString())) {
            const auto status = QString::fromStdString(task.path().string() + "/status");
            counts[task.path().filename().string()] = processFigure(status, "voluntary_ctxt_switches");
        }
        return counts;
    };
    const auto before = switches();
    waitUntil([] { return false; }, std::chrono::seconds(60));
    const auto after = switches();
    if (after.size() != before.size())
        stop("a thread came or went");
    long long sum = 0;
    for (const auto& [thread, count] : after)
        sum += count - before.at(thread);
    fmt::print("\nWake-ups of all {} threads in 60 idle seconds: {}\n", after.size(), sum);
}

} // namespace

/// usage: tavrin-bench-desktop [PART...]; without a part, all of them.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // a run takes minutes
    const auto wanted = QCoreApplication::arguments().mid(1);
    const auto measure = [&](const char* part, auto task) {
        if (wanted.isEmpty() || wanted.contains(part))
            task();
    };
    measure("listing", measureListing);
    measure("restoring", measureRestoringAll);
    measure("start", [] { measureStarts(QCoreApplication::applicationDirPath()); });
    measure("idle", measureIdleness);
}
