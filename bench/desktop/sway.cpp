// The program on sway against a bare client of sway's socket that does the same, in turns on one private
// desktop. Prints tables; every figure is a median.
#include "platform/qt/qt_runtime.h"
#include "platform/sway/sway_window_system.h"
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

/// What the shortest program would do: read the tree, send one message, read the tree again.
class BareClient {
public:
    explicit BareClient(const std::string& socket) : questions_(socket) {}

    struct Window {
        std::string title;
        Rect frame;
    };

    std::map<WindowID, Window> list() {
        windows_.clear();
        const auto answer = questions_.ask(I3Question::tree, {}, Seconds{5});
        if (!answer)
            stop("sway does not answer");
        collect(QJsonDocument::fromJson(QByteArray::fromStdString(*answer)).object());
        return windows_;
    }

    void place(const std::vector<WindowPlacement>& placements) {
        const auto before = list();
        std::string commands;
        for (const auto& [window, frame] : placements)
            if (before.contains(window))
                commands += fmt::format("[con_id={}] fullscreen disable, resize set {} px {} px, "
                                        "move absolute position {} px {} px; ",
                                        window, frame.width, frame.height, frame.x, frame.y);
        if (!questions_.ask(I3Question::runCommand, commands, Seconds{5}))
            stop("sway does not answer");
        list();
    }

private:
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

void measureWindows(int count) {
    SwayDesktop desktop({.name = "bench"});
    std::vector<std::unique_ptr<TestClient>> clients;
    for (int i = 0; i < count; ++i) {
        if (i % 10 == 0)
            clients.push_back(desktop.startToolkitClient());
        if (!clients.back()->open({.applicationClass = fmt::format("test-application{}", i / 10),
                                   .title = fmt::format("A window of usual title, {}", i)}))
            stop("a window does not open");
    }
    const auto socket = desktop.environment().value("SWAYSOCK").toStdString();
    QtEventLoop eventLoop;
    QtScheduler scheduler;
    auto system = SwayWindowSystem::open(
        {.socketPath = socket,
         .waylandDisplay = desktop.environment().value("WAYLAND_DISPLAY").toStdString()},
        eventLoop, scheduler);
    if (!system)
        stop(system.error());
    BareClient bare(socket);
    std::mt19937 random(7);
    const auto places = [&] {
        std::vector<WindowPlacement> placements;
        for (const auto& [id, window] : bare.list())
            placements.push_back({id,
                                  {double(random() % 1300), double(random() % 600), 200.0 + random() % 300,
                                   150.0 + random() % 250}});
        return placements;
    };
    std::vector<double> ownList, bareList, ownPlace, barePlace;
    std::size_t misplaced = 0;
    for (int round = 0; round < 15; ++round) {
        ownList.push_back(timed([&] { (*system)->list(); }));
        bareList.push_back(timed([&] { bare.list(); }));
        auto wanted = places();
        barePlace.push_back(timed([&] { bare.place(wanted); }));
        // Until the clients have drawn, so that the next one finds an idle sway.
        waitUntil([] { return false; }, std::chrono::milliseconds(700));
        wanted = places();
        std::vector<PlacementOutcome> outcomes;
        ownPlace.push_back(timed([&] { outcomes = (*system)->place(wanted, Seconds{5}); }));
        waitUntil([] { return false; }, std::chrono::milliseconds(700));
        misplaced += static_cast<std::size_t>(
            std::ranges::count_if(outcomes, [](auto outcome) { return outcome != PlacementOutcome::done; }));
    }
    fmt::print(
        "{} floating windows on sway, ms\n\n| | Tavrin | bare client | ratio |\n|---|---:|---:|---:|\n",
        count);
    const auto row = [](const char* name, double a, double b) {
        fmt::print("| {} | {:.1f} | {:.1f} | {:.2f} |\n", name, a, b, a / b);
    };
    row("list", median(ownList), median(bareList));
    row("place and confirm", median(ownPlace), median(barePlace));
    fmt::print("\nNot where they were told to go: {}\n", misplaced);
}

void measureIdleness() {
    SwayDesktop desktop({.name = "bench-idle"});
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
    fmt::print("\nWake-ups of all threads in 60 idle seconds: {}\n", switches() - before);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    measureWindows(100);
    measureIdleness();
}
