// The program on sway and KWin against a bare client of the same channel, in turns on one private desktop.
// Prints tables; every figure is a median.
#include "platform/kwin/kwin_window_system.h"
#include "platform/qt/qt_runtime.h"
#include "platform/sway/sway_window_system.h"
#include "support/desktop/kwin_desktop.h"
#include "support/desktop/sway_desktop.h"
#include "support/desktop/tavrin_program.h"
#include "support/desktop/wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>

namespace {

using namespace tavrin;
using namespace tavrin::desktop;

[[noreturn]] void stop(const std::string& why) {
    fmt::print(stderr, "Stopped: {}\n", why);
    std::exit(EXIT_FAILURE);
}

double timed(const std::function<void()>& task) {
    QElapsedTimer timer;
    timer.start();
    task();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// What the shortest program would do: list, send one message, and on sway, which confirms nothing, list
/// again.
class BareClient {
public:
    virtual ~BareClient() = default;
    virtual void list() = 0;
    /// Puts the listed windows there, in any order.
    virtual void place(const std::vector<WindowPlacement>& placements) = 0;
};

class BareSwayClient final : public BareClient {
public:
    explicit BareSwayClient(const std::string& socket) : questions_(socket) {}

    void list() override {
        windows_.clear();
        const auto answer = questions_.ask(I3Question::tree, {}, Seconds{5});
        if (!answer)
            stop("sway does not answer");
        collect(QJsonDocument::fromJson(QByteArray::fromStdString(*answer)).object());
    }

    void place(const std::vector<WindowPlacement>& placements) override {
        list();
        std::string commands;
        for (const auto& [window, frame] : placements)
            if (windows_.contains(window))
                commands += fmt::format("[con_id={}] fullscreen disable, resize set {} px {} px, "
                                        "move absolute position {} px {} px; ",
                                        window, frame.width, frame.height, frame.x, frame.y);
        if (!questions_.ask(I3Question::runCommand, commands, Seconds{5}))
            stop("sway does not answer");
        list();
    }

private:
    struct Window {
        std::string title;
        Rect frame;
    };

    void collect(const QJsonObject& node) {
        if (node["pid"].isDouble()) {
            const auto frame = node["rect"].toObject();
            windows_[node["id"].toInteger()] = {node["name"].toString().toStdString(),
                                                {frame["x"].toDouble(), frame["y"].toDouble(),
                                                 frame["width"].toDouble(), frame["height"].toDouble()}};
        }
        for (const auto* kind : {"nodes", "floating_nodes"})
            for (const QJsonValue child : node[kind].toArray())
                collect(child.toObject());
    }

    I3Questions questions_;
    std::map<WindowID, Window> windows_;
};

/// With a script of the same text, loaded once more.
class BareKWinClient final : public BareClient {
public:
    explicit BareKWinClient(KWinTalk& kwin) : kwin_(kwin) {}

    void list() override {
        identifiers_.clear();
        for (const QJsonValue window : kwin_.ask({{"operation", "list"}})["windows"].toArray())
            identifiers_.push_back(window["id"].toString());
        if (identifiers_.empty())
            stop("KWin does not answer");
    }

    void place(const std::vector<WindowPlacement>& placements) override {
        QJsonArray windows;
        for (std::size_t i = 0; i < std::min(placements.size(), identifiers_.size()); ++i) {
            const auto& frame = placements[i].frame;
            windows.append(QJsonObject{{"id", identifiers_[i]},
                                       {"frame", QJsonArray{frame.x, frame.y, frame.width, frame.height}}});
        }
        if (kwin_.ask({{"operation", "place"}, {"patience", 4000}, {"windows", windows}}).isEmpty())
            stop("KWin does not answer");
    }

private:
    KWinTalk& kwin_;
    std::vector<QString> identifiers_;
};

void measureWindows(const char* where, int count, Desktop& desktop, WindowSystem& system, BareClient& bare) {
    std::vector<std::unique_ptr<TestClient>> clients;
    for (int i = 0; i < count; ++i) {
        if (i % 10 == 0)
            clients.push_back(desktop.startToolkitClient());
        if (!clients.back()->open({.applicationClass = fmt::format("test-application{}", i / 10),
                                   .title = fmt::format("A window of usual title, {}", i)}))
            stop("a window does not open");
    }
    std::mt19937 random(7);
    const auto places = [&] {
        std::vector<WindowPlacement> placements;
        const auto listing = system.list();
        if (!listing)
            stop("the window system does not answer");
        for (const auto& window : listing->windows)
            placements.push_back({window.id,
                                  {double(random() % 1300), double(random() % 600), 200.0 + random() % 300,
                                   150.0 + random() % 250}});
        return placements;
    };
    std::vector<double> ownList, bareList, ownPlace, barePlace;
    std::size_t misplaced = 0;
    for (int round = 0; round < 15; ++round) {
        ownList.push_back(timed([&] { static_cast<void>(system.list()); }));
        bareList.push_back(timed([&] { bare.list(); }));
        auto wanted = places();
        barePlace.push_back(timed([&] { bare.place(wanted); }));
        // Until the clients have drawn, so that the next one finds an idle compositor.
        waitUntil([] { return false; }, std::chrono::milliseconds(700));
        wanted = places();
        std::vector<PlacementOutcome> outcomes;
        ownPlace.push_back(timed([&] { outcomes = system.place(wanted, Seconds{5}); }));
        waitUntil([] { return false; }, std::chrono::milliseconds(700));
        misplaced += static_cast<std::size_t>(
            std::ranges::count_if(outcomes, [](auto outcome) { return outcome != PlacementOutcome::done; }));
    }
    fmt::print("{} windows on {}, ms\n\n| | Tavrin | bare client | ratio |\n|---|---:|---:|---:|\n", count,
               where);
    const auto row = [](const char* name, double a, double b) {
        fmt::print("| {} | {:.1f} | {:.1f} | {:.2f} |\n", name, a, b, a / b);
    };
    row("list", median(ownList), median(bareList));
    row("place and confirm", median(ownPlace), median(barePlace));
    fmt::print("\nNot where they were told to go: {}\n", misplaced);
}

void measureWindowsOnSway(int count) {
    SwayDesktop desktop({.name = "bench"});
    const auto socket = desktop.environment().value("SWAYSOCK").toStdString();
    QtEventLoop eventLoop;
    QtScheduler scheduler;
    auto system = SwayWindowSystem::open(
        {.socketPath = socket,
         .waylandDisplay = desktop.environment().value("WAYLAND_DISPLAY").toStdString()},
        eventLoop, scheduler);
    if (!system)
        stop(system.error());
    BareSwayClient bare(socket);
    measureWindows("sway", count, desktop, **system, bare);
}

void measureWindowsOnKWin(int count) {
    KWinDesktop desktop({.name = "bench-kwin"});
    BusLink bus(desktop.environment().value("DBUS_SESSION_BUS_ADDRESS").toStdString());
    bus.open(std::chrono::milliseconds(500));
    QtEventLoop eventLoop;
    QtScheduler scheduler;
    auto system = KWinWindowSystem::open(
        bus,
        {.scriptFolder = desktop.environment().value("XDG_RUNTIME_DIR").toStdString(),
         .waylandDisplay = desktop.environment().value("WAYLAND_DISPLAY").toStdString()},
        eventLoop, scheduler);
    if (!system)
        stop(system.error());
    BareKWinClient bare(desktop.talk());
    measureWindows("KWin", count, desktop, **system, bare);
}

void measureIdleness(const char* where, Desktop& desktop) {
    TavrinProgram program(desktop);
    const auto client = desktop.startToolkitClient();
    if (!client->open({.applicationClass = "test"}) || !program.start() || !program.saveLayout("Work") ||
        !program.restoreLayout("Work"))
        stop("the program does not work");
    waitUntil([] { return false; },
              std::chrono::seconds(45)); // until the feedback is over and the toolkit rests
    const auto switches = [&] {
        long long sum = 0;
        for (const auto& task :
             std::filesystem::directory_iterator(fmt::format("/proc/{}/task", program.process().pid()))) {
            QFile status(QString::fromStdString(task.path().string() + "/status"));
            if (status.open(QIODevice::ReadOnly))
                sum += QString(status.readAll())
                           .section("\nvoluntary_ctxt_switches:", 1)
                           .section('\n', 0, 0)
                           .toLongLong();
        }
        return sum;
    };
    const auto before = switches();
    waitUntil([] { return false; }, std::chrono::seconds(60));
    fmt::print("\nWake-ups of all threads in 60 idle seconds on {}: {}\n\n", where, switches() - before);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    measureWindowsOnSway(100);
    {
        SwayDesktop sway({.name = "bench-idle"});
        measureIdleness("sway", sway);
    }
    measureWindowsOnKWin(100);
    KWinDesktop kwin({.name = "bench-idle-kwin"});
    measureIdleness("KWin", kwin);
}
