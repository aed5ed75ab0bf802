#include "platform/x11/x11_window_mover.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_property.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

/// How long a window manager may take to answer anything at all. The interface waits as well.
constexpr auto answerPatience = 800ms;
/// How long a window may keep a state that it was told to leave.
constexpr auto statePatience = 250ms;
/// How long a client may take to draw its shadows again.
constexpr auto shadowPatience = 250ms;
/// How long a client may take to make itself fullscreen again.
constexpr auto relapsePatience = 100ms;
/// The frame may change with the state of the window; what was computed with the old one is then redone.
constexpr int attemptLimit = 3;
/// Some refuse a place for the old size that they grant for the new one.
constexpr int usualAttempts = 2;
/// So many windows share a fence: few enough to see that the window manager is at work.
constexpr std::size_t windowsPerFence = 16;
/// A fence is known by the size of its window.
constexpr std::uint32_t fenceSide = 1024;

constexpr std::uint32_t sourcePager = 2;
constexpr std::uint32_t stateRemove = 0;

// The layout of a window's size hints.
constexpr std::size_t hintCount = 18;
constexpr std::uint32_t hasGravityFlag = 1 << 9;

/// Absent for a frame that no window can have.
std::optional<PixelRect> pixelRect(const Rect& frame) {
    const auto x = pixels(frame.x), y = pixels(frame.y);
    const auto width = pixels(frame.width), height = pixels(frame.height);
    if (!x || !y || !width || !height || *width < 1 || *height < 1)
        return std::nullopt;
    return PixelRect{*x, *y, *width, *height};
}

PixelRect seen(const X11Window& window) {
    return visibleRect(window.client, window.borders());
}

bool hasSamePlace(const PixelRect& a, const PixelRect& b) {
    return a.x == b.x && a.y == b.y;
}

} // namespace

X11WindowMover::X11WindowMover(X11QueryConnection& connection, X11WindowTable& table,
                               X11WindowManager& windowManager)
    : connection_(connection), table_(table), windowManager_(windowManager) {
    connection_.join(*this);
}

std::vector<PlacementOutcome> X11WindowMover::place(std::span<const WindowPlacement> placements,
                                                    Seconds patience) {
    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(patience);
    table_.refresh(Freshness::recent);
    std::vector<Job> jobs;
    jobs.reserve(placements.size());
    for (const auto& placement : placements)
        jobs.push_back(makeJob(placement));
    bool isAnswered = true;
    do {
        while (isAnswered && !std::ranges::all_of(jobs, &Job::isOver)) {
            request(jobs);
            isAnswered = awaitFences(deadline);
            if (isAnswered)
                awaitUnpinned(jobs, deadline);
            judge(jobs);
        }
    } while (awaitRelapses(jobs, deadline) && isAnswered);
    std::vector<PlacementOutcome> outcomes;
    for (const auto& job : jobs)
        outcomes.push_back(job.outcome);
    return outcomes;
}

X11WindowMover::Job X11WindowMover::makeJob(const WindowPlacement& placement) const {
    Job job;
    const auto wanted = pixelRect(placement.frame);
    const auto* window = std::in_range<xcb_window_t>(placement.window)
                             ? table_.find(static_cast<xcb_window_t>(placement.window))
                             : nullptr;
    if (!window) {
        job.end(PlacementOutcome::gone);
        return job;
    }
    if (!wanted || !window->kind) {
        job.end(PlacementOutcome::refused);
        return job;
    }
    job.id = window->id;
    job.wanted = *wanted;
    job.before = seen(*window);
    job.pinnedShadows = window->shadows;
    job.wasPinned = window->states.isPinned();
    job.wasFullscreen = window->states.isFullscreen;
    // A maximised window that is already where it should be stays maximised.
    if (job.before == job.wanted)
        job.end(PlacementOutcome::done);
    return job;
}

void X11WindowMover::request(std::span<Job> jobs) {
    const bool canMoveResize = windowManager_.facts().supports(connection_.atoms().netMoveresizeWindow);
    std::size_t count = 0;
    for (auto& job : jobs) {
        if (job.isOver)
            continue;
        const auto* window = table_.find(job.id);
        if (!window) {
            job.end(PlacementOutcome::gone);
            continue;
        }
        if (job.attempts == 0 && window->states.isPinned()) {
            removeStates(*window);
        } else {
            // Leaving the states has moved the window already.
            if (job.wasPinned && job.attempts == 1)
                job.before = seen(*window);
            job.borders = window->borders();
            const auto client = clientRect(job.wanted, job.borders);
            if (canMoveResize)
                moveResize(*window, client);
            else
                configure(*window, client);
        }
        ++job.attempts;
        if (++count % windowsPerFence == 0)
            requestFence();
    }
    if (count % windowsPerFence != 0)
        requestFence();
}

void X11WindowMover::judge(std::span<Job> jobs) {
    for (const auto& job : jobs)
        if (!job.isOver)
            table_.markOutdated(job.id, WindowPart::geometry);
    table_.refresh(Freshness::recent);
    for (auto& job : jobs)
        if (!job.isOver)
            judge(job);
}

void X11WindowMover::judge(Job& job) {
    const auto* window = table_.find(job.id);
    if (!window)
        return job.end(PlacementOutcome::gone);
    const auto now = seen(*window);
    if (now == job.wanted)
        return job.end(PlacementOutcome::done);
    if (window->states.isPinned())
        return job.end(PlacementOutcome::timedOut);
    // Leaving the states took the first attempt.
    const int attempts = job.attempts - (job.wasPinned ? 1 : 0);
    const bool haveBordersChanged = window->borders() != job.borders;
    if (attempts < (haveBordersChanged ? attemptLimit : usualAttempts))
        return;
    const bool isAtPlace = hasSamePlace(now, job.wanted) || !hasSamePlace(now, job.before);
    job.end(isAtPlace ? PlacementOutcome::adjusted : PlacementOutcome::timedOut);
}

void X11WindowMover::awaitUnpinned(std::span<const Job> jobs, Clock::time_point deadline) {
    std::vector<const Job*> leaving;
    for (const auto& job : jobs)
        if (job.wasPinned && job.attempts == 1 && !job.isOver)
            leaving.push_back(&job);
    if (leaving.empty())
        return;
    // Some window managers set the state later than they answer, and some clients then draw their shadows
    // again; some do neither.
    const auto isAnyPinned = [&] {
        return std::ranges::any_of(leaving, [&](const Job* job) {
            const auto* window = table_.find(job->id);
            return window && window->states.isPinned();
        });
    };
    const auto hasAnyOldShadows = [&] {
        return std::ranges::any_of(leaving, [&](const Job* job) {
            const auto* window = table_.find(job->id);
            return window && window->drawsOwnShadows && window->shadows == job->pinnedShadows;
        });
    };
    const auto await = [&](auto isWaiting, std::chrono::milliseconds patience) {
        const auto end = std::min(deadline, Clock::now() + patience);
        do
            table_.refresh(Freshness::recent);
        while (isWaiting() && Clock::now() < end && connection_.waitForEvents(end));
    };
    await(isAnyPinned, statePatience);
    await(hasAnyOldShadows, shadowPatience);
}

bool X11WindowMover::awaitRelapses(std::span<Job> jobs, Clock::time_point deadline) {
    const auto isSuspect = [](const Job& job) {
        return job.wasFullscreen &&
               (job.outcome == PlacementOutcome::done || job.outcome == PlacementOutcome::adjusted);
    };
    const auto end = std::min(deadline, Clock::now() + relapsePatience);
    while (std::ranges::any_of(jobs, isSuspect) && Clock::now() < end && connection_.waitForEvents(end)) {
        table_.refresh(Freshness::recent);
        for (auto& job : jobs)
            if (const auto* window = isSuspect(job) ? table_.find(job.id) : nullptr) {
                if (window->states.isPinned())
                    job.outcome = PlacementOutcome::timedOut;
                else if (window->borders() != job.borders && job.attempts <= attemptLimit)
                    job.isOver = false;
            }
    }
    return !std::ranges::all_of(jobs, &Job::isOver);
}

bool X11WindowMover::awaitFences(Clock::time_point deadline) {
    auto progress = answeredFence_;
    auto end = std::min(deadline, Clock::now() + answerPatience);
    while (answeredFence_ != requestedFence_) {
        if (Clock::now() >= end || !connection_.waitForEvents(end))
            return false;
        if (std::exchange(progress, answeredFence_) != answeredFence_)
            end = std::min(deadline, Clock::now() + answerPatience);
    }
    return true;
}

void X11WindowMover::moveResize(const X11Window& window, const PixelRect& client) {
    constexpr std::uint32_t position = 0x300, size = 0xc00;
    const bool isResized = client.width != window.client.width || client.height != window.client.height;
    // The corner of the frame is asked for, not that of the client, because the frame may change with the
    // state of the window.
    const auto& decorations = window.borders().decorations;
    sendToWindowManager(window.id, connection_.atoms().netMoveresizeWindow,
                        {XCB_GRAVITY_NORTH_WEST | position | (isResized ? size : 0) | sourcePager << 12,
                         static_cast<std::uint32_t>(client.x - decorations.left),
                         static_cast<std::uint32_t>(client.y - decorations.top),
                         static_cast<std::uint32_t>(client.width),
                         static_cast<std::uint32_t>(client.height)});
}

void X11WindowMover::configure(const X11Window& window, const PixelRect& client) {
    const auto hints =
        cardinals(owned(xcb_get_property_reply(connection_.get(),
                                               requestProperty(connection_.get(), window.id,
                                                               XCB_ATOM_WM_NORMAL_HINTS, hintCount * 4),
                                               nullptr))
                      .get());
    const std::uint32_t gravity = hints.size() >= hintCount && (hints[0] & hasGravityFlag) != 0
                                      ? hints[hintCount - 1]
                                      : static_cast<std::uint32_t>(XCB_GRAVITY_NORTH_WEST);
    const auto request = configureRequestRect(client, window.borders().decorations, gravity);
    const std::array values{static_cast<std::uint32_t>(request.x), static_cast<std::uint32_t>(request.y),
                            static_cast<std::uint32_t>(request.width),
                            static_cast<std::uint32_t>(request.height)};
    xcb_configure_window(connection_.get(), window.id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
}

void X11WindowMover::removeStates(const X11Window& window) {
    const auto& atoms = connection_.atoms();
    const auto remove = [&](xcb_atom_t first, xcb_atom_t second) {
        sendToWindowManager(window.id, atoms.netWmState, {stateRemove, first, second, sourcePager, 0});
    };
    if (window.states.isFullscreen)
        remove(atoms.netWmStateFullscreen, XCB_ATOM_NONE);
    if (window.states.isMaximizedHorizontally || window.states.isMaximizedVertically)
        remove(atoms.netWmStateMaximizedHorz, atoms.netWmStateMaximizedVert);
    if (window.states.isShaded)
        remove(atoms.netWmStateShaded, XCB_ATOM_NONE);
}

void X11WindowMover::requestFence() {
    if (fenceWindow_ == XCB_WINDOW_NONE) {
        fenceWindow_ = xcb_generate_id(connection_.get());
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, fenceWindow_, connection_.root(), -1, -1,
                          fenceSide, fenceSide, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK, &mask);
        requestedFence_ = answeredFence_ = 0;
    }
    // The size tells the answers apart, so that a late one is not taken for the next.
    requestedFence_ = (requestedFence_ + 1) % (fenceSide * fenceSide - 1);
    const std::array size{requestedFence_ % fenceSide + 1, requestedFence_ / fenceSide + 1};
    xcb_configure_window(connection_.get(), fenceWindow_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         size.data());
}

void X11WindowMover::sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                                         const std::array<std::uint32_t, 5>& values) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::ranges::copy(values, message.data.data32);
    xcb_send_event(connection_.get(), 0, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void X11WindowMover::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY)
        return;
    const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    if (change.window == fenceWindow_)
        answeredFence_ = change.width - 1U + (change.height - 1U) * fenceSide;
}

void X11WindowMover::forget() {
    if (fenceWindow_ != XCB_WINDOW_NONE)
        xcb_destroy_window(connection_.get(), fenceWindow_);
    fenceWindow_ = XCB_WINDOW_NONE;
}

} // namespace tavrin
