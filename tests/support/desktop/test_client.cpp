#include "support/desktop/test_client.h"

#include "support/desktop/wait.h"

#include <fmt/ranges.h>

namespace tavrin::desktop {

TestClient::TestClient(Windows& windows, QStringList command, const QProcessEnvironment& environment,
                       const QString& log)
    : windows_(windows) {
    const auto program = command.takeFirst();
    process_.start(program, command, environment, log, Process::Output::readHere);
}

std::optional<std::string> TestClient::ask(const std::string& command) {
    process_.writeLine(command);
    return process_.readLine();
}

std::optional<WindowHandle> TestClient::open(const WindowRequest& request) {
    std::string command = fmt::format("open\tclass={}\ttitle={}\tx={}\ty={}\twidth={}\theight={}",
                                      request.applicationClass, request.title, request.frame.x,
                                      request.frame.y, request.frame.width, request.frame.height);
    if (!request.type.empty())
        command += "\ttype=" + request.type;
    if (!request.isDecorated)
        command += "\tundecorated=";
    if (request.shadow != std::array<int, 4>{})
        command += fmt::format("\tshadow={}", fmt::join(request.shadow, ","));
    if (request.increment != std::array<int, 2>{})
        command += fmt::format("\tincrement={}", fmt::join(request.increment, ","));
    auto answer = ask(command);
    const auto opened = [&] {
        return answer ? windows_.waitForOpened(
                            static_cast<std::uint32_t>(std::strtoul(answer->c_str(), nullptr, 10)), pid(),
                            request.title)
                      : std::nullopt;
    };
    auto window = opened();
    // sway 1.10 now and then never shows a window that its X server has, and the next one neither.
    for (int attempt = 1; answer && !window && attempt < 5; ++attempt) {
        ask("destroy\t" + *answer);
        answer = ask(command);
        window = opened();
    }
    if (window)
        names_[window->id()] = *answer;
    return window;
}

bool TestClient::retitle(const WindowHandle& window, const std::string& title) {
    return ask(fmt::format("retitle\t{}\t{}", names_[window.id()], title)) == "done";
}

bool TestClient::destroy(const WindowHandle& window) {
    return ask(fmt::format("destroy\t{}", names_[window.id()])) == "done";
}

void TestClient::startFlood(const WindowHandle& window, const std::string& property, int count) {
    windows_.ignore(window);
    process_.writeLine(fmt::format("flood\t{}\t{}\t{}", names_[window.id()], property, count));
}

bool TestClient::vanishOnMove(const std::vector<WindowHandle>& windows) {
    std::string command = "vanish-on-move";
    for (const auto& window : windows)
        command += '\t' + names_[window.id()];
    return ask(command) == "done";
}

bool TestClient::stayFullscreen(const WindowHandle& window) {
    return ask(fmt::format("stay-fullscreen\t{}", names_[window.id()])) == "done" &&
           waitUntil([&] { return windows_.isFullscreen(window); });
}

} // namespace tavrin::desktop
