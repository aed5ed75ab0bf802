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

std::string titleOf(int window) {
    return fmt::format("A window of usual title, {}", window);
}

/// Random places, other ones for every seed.
std::vector<Rect> randomPlaces(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Rect> places;
    for (int i = 0; i < count; ++i) {
        const double x = random() % 1300, y = random() % 600;
        const double width = 200.0 + random() % 300, height = 150.0 + random() % 250;
        places.push_back({x, y, width, height});
    }
    return places;
}

/// A desktop full of windows. Ten belong to an application; every client hosts one or more of them.
class FullDesktop {
public:
    explicit FullDesktop(int windowCount, int windowsPerClient = 10) : desktop_({.name = "bench"}) {
        open(windowCount, windowsPerClient);
    }

    void open(int windowCount, int windowsPerClient = 10) {
        for (int i = 0; i < windowCount; ++i) {
            if (i % windowsPerClient == 0)
                clients_.push_back(desktop_.startClient());
            const auto window =
                clients_.back()->open({.applicationClass = fmt::format("Application{}", i / 10),
                                       .title = titleOf(i),
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

    std::map<xcb_window_t, Rect> places(unsigned seed) const {
        const auto random = randomPlaces(static_cast<int>(ids_.size()), seed);
        std::map<xcb_window_t, Rect> places;
        for (std::size_t i = 0; i < ids_.size(); ++i)
            places[ids_[i]] = random[i];
        return places;
    }

    /// Puts the windows at random places, other ones for every seed, and tells where each is seen then.
    std::map<xcb_window_t, Rect> scatter(unsigned seed) {
        const auto wanted = places(seed);
        if (BareClient(display()).placeTogether(wanted) != ids_.size())
            stop("the windows cannot be scattered");
        return wanted;
    }

    std::size_t countAt(const std::map<xcb_window_t, Rect>& places) {
        return static_cast<std::size_t>(std::ranges::count_if(places, [&](const auto& place) {
            return desktop_.windows().visibleFrame(place.first) == place.second;
        }));
    }

    void expectAt(const std::map<xcb_window_t, Rect>& places, const char* who) {
        if (!waitUntil([&] { return countAt(places) == places.size(); }))
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
    std::vector<double> program, bare;
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
    }
    const double a = median(program), b = median(bare);
    fmt::print("| {} | {} | {:.1f} | {:.1f} | {:.2f} |\n", count, count / windowsPerClient, a, b, a / b);
}

void measureRestoringAll() {
    fmt::print("\nRestoring scattered windows, milliseconds\n\n"
               "| windows | processes | Tavrin | bare XCB | ratio |\n|---:|---:|---:|---:|---:|\n");
    measureRestoring(100, 10);
    measureRestoring(300, 300);
    measureRestoring(900, 900);
}

/// What a person would use instead for 100 windows: a script around wmctrl, and rules of devilspie2 for
/// windows that are opened while it runs.
void measureAlternatives() {
    constexpr int count = 100;
    constexpr unsigned placesSeed = 1;
    struct Result {
        std::vector<double> milliseconds;
        std::size_t inPlace = count; ///< the least of all rounds
        void add(double time, std::size_t windows) {
            milliseconds.push_back(time);
            inPlace = std::min(inPlace, windows);
        }
    };
    Result program, wmctrl, opened, ruled;
    double horizontal = 0, vertical = 0; // of the frame, which the sizes of both tools leave out
    {
        FullDesktop full(count);
        FreedesktopApplicationCatalog catalog;
        Services services(full.display(), catalog);
        const auto places = full.scatter(placesSeed);
        const auto layout = services.capture();
        const auto frame = BareClient(full.display()).windows().front().frame;
        horizontal = frame[0] + frame[1];
        vertical = frame[2] + frame[3];
        const auto runLoop = [&] {
            for (int i = 0; i < count; ++i) {
                const auto& place = places.at(full.windows()[static_cast<std::size_t>(i)]);
                runWmctrl(full.desktop(), {"-F", "-r", QString::fromStdString(titleOf(i)), "-e",
                                           QString("0,%1,%2,%3,%4")
                                               .arg(place.x)
                                               .arg(place.y)
                                               .arg(place.width - horizontal)
                                               .arg(place.height - vertical)});
            }
        };
        for (unsigned round = 0; round < 7; ++round) {
            full.scatter(100 + round);
            QCoreApplication::processEvents();
            const double own = timed([&] { services.restore(layout); });
            program.add(own, full.countAt(places));
            full.scatter(200 + round);
            const double loop = timed(runLoop);
            waitUntil([&] { return full.countAt(places) == count; }, std::chrono::seconds(2));
            wmctrl.add(loop, full.countAt(places));
        }
    }
    QTemporaryDir rules;
    QFile script(rules.filePath("rules.lua"));
    if (!script.open(QIODevice::WriteOnly))
        stop("no rules");
    const auto places = randomPlaces(count, placesSeed);
    for (int i = 0; i < count; ++i) {
        const auto& place = places[static_cast<std::size_t>(i)];
        script.write(QByteArray::fromStdString(
            fmt::format("if get_window_name() == \"{}\" then set_window_geometry2({}, {}, {}, {}) end\n",
                        titleOf(i), place.x, place.y, place.width - horizontal, place.height - vertical)));
    }
    script.close();
    for (int round = 0; round < 3; ++round) {
        FullDesktop plain(0), full(0);
        opened.add(timed([&] { plain.open(count); }), 0);
        Process devilspie;
        if (!devilspie.start("devilspie2", {"--folder", rules.path()}, full.desktop().environment(),
                             full.desktop().log("devilspie2")))
            stop("devilspie2 does not start");
        waitUntil([] { return false; }, std::chrono::seconds(2)); // it does not say when it is ready
        std::size_t inPlace = 0;
        const double time = timed([&] {
            full.open(count);
            waitUntil([&] { return (inPlace = full.countAt(full.places(placesSeed))) == count; },
                      std::chrono::seconds(5));
        });
        ruled.add(time, inPlace);
    }
    fmt::print("\nWhat a person would use instead, {} windows\n\n"
               "| | ms | in their places |\n|---|---:|---:|\n",
               count);
    fmt::print("| Tavrin restores a layout | {:.1f} | {} |\n", median(program.milliseconds), program.inPlace);
    fmt::print("| a script calls wmctrl for each title | {:.1f} | {} |\n", median(wmctrl.milliseconds),
               wmctrl.inPlace);
    fmt::print("| windows open while devilspie2 has a rule for each | {:.1f} | {} |\n",
               median(ruled.milliseconds), ruled.inPlace);
    fmt::print("| they open without it | {:.1f} | |\n", median(opened.milliseconds));
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
    measure("alternatives", measureAlternatives);
    measure("start", [] { measureStarts(QCoreApplication::applicationDirPath()); });
    measure("idle", measureIdleness);
}
