#include "support/desktop/test_client.h"

#include "support/desktop/wait.h"

#include <fmt/ranges.h>

namespace tavrin::desktop {

TestClient::TestClient(Windows& windows, const QProcessEnvironment& environment, const QString& log)
    : windows_(windows) {
    process_.start(TAVRIN_TEST_CLIENT, {}, environment, log, Process::Output::readHere);
}

std::optional<std::string> TestClient::ask(const std::string& command) {
    process_.writeLine(command);
    return process_.readLine();
}

std::optional<xcb_window_t> TestClient::open(const WindowRequest& request) {
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
    if (request.pid)
        command += fmt::format("\tpid={}", *request.pid);
    if (!request.applicationID.empty())
        command += "\tapplication=" + request.applicationID;
    const auto answer = ask(command);
    if (!answer)
        return std::nullopt;
    const auto window = static_cast<xcb_window_t>(std::strtoul(answer->c_str(), nullptr, 10));
    if (!window || !windows_.waitUntilManaged(window))
        return std::nullopt;
    return window;
}

bool TestClient::retitle(xcb_window_t window, const std::string& title) {
    return ask(fmt::format("retitle\t{}\t{}", window, title)) == "done";
}

bool TestClient::destroy(xcb_window_t window) {
    return ask(fmt::format("destroy\t{}", window)) == "done";
}

void TestClient::startFlood(xcb_window_t window, const std::string& property, int count) {
    windows_.ignore(window);
    process_.writeLine(fmt::format("flood\t{}\t{}\t{}", window, property, count));
}

bool TestClient::vanishOnMove(const std::vector<xcb_window_t>& windows) {
    return ask(fmt::format("vanish-on-move\t{}", fmt::join(windows, "\t"))) == "done";
}

bool TestClient::stayFullscreen(xcb_window_t window) {
    return ask(fmt::format("stay-fullscreen\t{}", window)) == "done" &&
           waitUntil([&] { return windows_.isFullscreen(window); });
}

} // namespace tavrin::desktop
