#include "platform/kwin/kwin_window_system.h"

#include <QJsonArray>

#include <algorithm>
#include <utility>

namespace tavrin {
namespace {

constexpr Seconds shortPatience{0.8};
constexpr double coordinateLimit = 32'000; ///< Wayland and X11 clients count in 16 bits at many places

QJsonObject question(const char* operation) {
    return {{QStringLiteral("operation"), QLatin1String(operation)}};
}

} // namespace

KWinWindowSystem::Conversation::Conversation(const QDBusConnection& bus, const std::string& scriptFolder)
    : channel(bus, {.folder = scriptFolder}), keys(bus) {}

KWinWindowSystem::Client::Client(std::unique_ptr<WaylandConnection> wayland)
    : connection(std::move(wayland)) {}

std::expected<std::unique_ptr<KWinWindowSystem>, std::string>
KWinWindowSystem::open(BusLink& bus, KWinSession session, EventLoop& eventLoop, Scheduler& scheduler) {
    std::unique_ptr<KWinWindowSystem> system(
        new KWinWindowSystem(bus, std::move(session), eventLoop, scheduler));
    if (const auto connected = system->connect(); !connected)
        return std::unexpected(connected.error());
    return system;
}

KWinWindowSystem::KWinWindowSystem(BusLink& bus, KWinSession session, EventLoop& eventLoop,
                                   Scheduler& scheduler)
    : session_(std::move(session)), eventLoop_(eventLoop), scheduler_(scheduler), bus_(bus) {
    if (bus_.isOpen())
        converse();
    isMissing_ = !isAvailable();
    watches_.push_back(bus_.observeOpened([this] {
        converse();
        availabilityMayHaveChanged();
    }));
    watches_.push_back(bus_.observeClosed([this] {
        conversation_.reset();
        availabilityMayHaveChanged();
    }));
}

void KWinWindowSystem::converse() {
    conversation_ = std::make_unique<Conversation>(bus_.connection(), session_.scriptFolder);
    conversation_->watches.push_back(
        conversation_->channel.observe([this] { availabilityMayHaveChanged(); }));
    conversation_->watches.push_back(conversation_->keys.observeRefusals(
        [this] { signals_[WindowSystemEvent::refusedKeysChanged].emit(); }));
    readAreas();
    keyboardChanged();
    conversation_->keys.watch(combos_, pressed_);
}

std::expected<void, std::string> KWinWindowSystem::connect() {
    auto connection = WaylandConnection::open(eventLoop_, session_.waylandDisplay);
    if (!connection)
        return std::unexpected(connection.error());
    client_ = std::make_unique<Client>(std::move(*connection));
    client_->watches.push_back(
        client_->outputs.observeChanges([this] { signals_[WindowSystemEvent::screensChanged].emit(); }));
    client_->watches.push_back(client_->keyboard.observeChanges([this] { keyboardChanged(); }));
    client_->watches.push_back(client_->connection->observeLoss([this] { client_.reset(); }));
    keyboardChanged();
    return {};
}

/// A short absence is not reported to the user and does not cancel a pending restore.
void KWinWindowSystem::availabilityMayHaveChanged() {
    const auto tell = [this](bool isMissing) {
        if (std::exchange(isMissing_, isMissing) != isMissing)
            signals_[WindowSystemEvent::availabilityChanged].emit();
    };
    if (!isAvailable()) {
        if (!grace_ && !isMissing_)
            grace_ = scheduler_.after(session_.grace, [this, tell] {
                grace_.release();
                tell(true);
            });
        return;
    }
    grace_.release();
    if (!client_ && connect()) {
        readAreas();
        signals_[WindowSystemEvent::screensChanged].emit();
    }
    tell(false);
}

std::optional<QJsonObject> KWinWindowSystem::ask(const QJsonObject& question, Seconds patience) {
    return conversation_ ? conversation_->channel.ask(question, patience) : std::nullopt;
}

void KWinWindowSystem::readAreas() {
    if (const auto answer = ask(question("areas"), shortPatience))
        areas_ = tavrin::readAreas(*answer);
}

void KWinWindowSystem::keyboardChanged() {
    if (conversation_ && client_)
        conversation_->keys.setKeyboard(client_->keyboard.map(),
                                        areas_.version >= 6 ? KeypadKeys::marked : KeypadKeys::plain);
}

std::string KWinWindowSystem::name() {
    return areas_.version == 0 ? "KWin" : "KWin " + std::to_string(areas_.version);
}

std::optional<WindowSystemObstacle> KWinWindowSystem::obstacle() {
    return isMissing_ ? std::optional(WindowSystemObstacle::notAnswering) : std::nullopt;
}

std::expected<WindowListing, WindowSystemObstacle> KWinWindowSystem::list() {
    const auto answer = ask(question("list"), shortPatience);
    auto result = answer ? readListing(*answer) : std::nullopt;
    if (!result)
        return std::unexpected(WindowSystemObstacle::notAnswering);
    identifiers_ = std::move(result->identifiers);
    if (client_)
        result->listing.primaryScreen = client_->outputs.primaryFrame();
    return std::move(result->listing);
}

std::vector<PlacementOutcome> KWinWindowSystem::place(std::span<const WindowPlacement> placements,
                                                      Seconds patience) {
    std::vector<PlacementOutcome> outcomes(placements.size(), PlacementOutcome::timedOut);
    std::vector<std::size_t> asked;
    QJsonArray windows;
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const auto& [window, frame] = placements[i];
        const auto identifier = identifiers_.find(window);
        if (!isSaneFrame(frame, coordinateLimit)) {
            outcomes[i] = PlacementOutcome::refused;
        } else if (identifier == identifiers_.end()) {
            outcomes[i] = PlacementOutcome::gone;
        } else {
            asked.push_back(i);
            windows.append(QJsonObject{
                {QStringLiteral("id"), identifier->second},
                {QStringLiteral("frame"), QJsonArray{frame.x, frame.y, frame.width, frame.height}}});
        }
    }
    if (asked.empty())
        return outcomes;
    auto request = question("place");
    request[QStringLiteral("windows")] = windows;
    // The script gives up a little earlier, so that its answer about the others still arrives.
    request[QStringLiteral("patience")] = patience.count() * 1000 * 0.8;
    const auto answer = ask(request, patience);
    const auto results = answer ? readOutcomes(*answer, asked.size()) : std::nullopt;
    for (std::size_t i = 0; results && i < asked.size(); ++i)
        outcomes[asked[i]] = (*results)[i];
    return outcomes;
}

std::vector<DesktopScreen> KWinWindowSystem::screens() {
    if (!client_ && !connect())
        return {};
    readAreas();
    return screensOf(client_->outputs, areas_, session_.systemRoot);
}

void KWinWindowSystem::watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    combos_ = std::move(combos);
    pressed_ = std::move(pressed);
    if (conversation_)
        conversation_->keys.watch(combos_, pressed_);
}

std::vector<RefusedKey> KWinWindowSystem::refusedKeys() {
    return conversation_ ? conversation_->keys.refused() : std::vector<RefusedKey>();
}

std::optional<std::uint32_t> KWinWindowSystem::keyPosition(std::uint32_t nativeScanCode) {
    return evdevPosition(nativeScanCode);
}

bool KWinWindowSystem::activate(WindowID window, const std::string& /*token*/) {
    const auto identifier = identifiers_.find(window);
    if (identifier == identifiers_.end())
        return false;
    auto request = question("activate");
    request[QStringLiteral("id")] = identifier->second;
    const auto answer = ask(request, shortPatience);
    return answer && (*answer)[QStringLiteral("activated")].toBool();
}

std::optional<Point> KWinWindowSystem::pointer() {
    const auto answer = ask(question("pointer"), shortPatience);
    return answer ? readPointer(*answer) : std::nullopt;
}

Token KWinWindowSystem::observe(WindowSystemEvent event, std::function<void()> handler) {
    return signals_[event].connect(std::move(handler));
}

} // namespace tavrin
