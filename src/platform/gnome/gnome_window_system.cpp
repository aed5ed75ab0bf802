#include "platform/gnome/gnome_window_system.h"

#include "base/text.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrin {

/// A wish as the extension takes it.
struct WirePlacement {
    qulonglong window = 0;
    int x = 0, y = 0, width = 0, height = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const WirePlacement& wire) {
    argument.beginStructure();
    argument << wire.window << wire.x << wire.y << wire.width << wire.height;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, WirePlacement& wire) {
    argument.beginStructure();
    argument >> wire.window >> wire.x >> wire.y >> wire.width >> wire.height;
    argument.endStructure();
    return argument;
}

} // namespace tavrin

Q_DECLARE_METATYPE(tavrin::WirePlacement)

namespace tavrin {
namespace {

constexpr Seconds shortPatience{0.8};
constexpr double coordinateLimit = 32'000; ///< Wayland and X11 clients count in 16 bits at many places
constexpr std::size_t nameLimit = 32;

} // namespace

std::expected<std::unique_ptr<GnomeWindowSystem>, std::string>
GnomeWindowSystem::open(BusLink& bus, GnomeSession session, EventLoop& eventLoop) {
    auto connection = WaylandConnection::open(eventLoop, session.waylandDisplay);
    if (!connection)
        return std::unexpected(connection.error());
    return std::unique_ptr<GnomeWindowSystem>(
        new GnomeWindowSystem(bus, std::move(session), std::move(*connection)));
}

GnomeWindowSystem::GnomeWindowSystem(BusLink& bus, GnomeSession session,
                                     std::unique_ptr<WaylandConnection> connection)
    : bus_(bus), session_(std::move(session)), connection_(std::move(connection)), outputs_(*connection_) {
    qDBusRegisterMetaType<WirePlacement>();
    qDBusRegisterMetaType<QList<WirePlacement>>();
    if (bus_.isOpen())
        converse();
    obstacle_ = obstacle();
    watches_.push_back(bus_.observeOpened([this] {
        converse();
        availabilityMayHaveChanged();
    }));
    watches_.push_back(bus_.observeClosed([this] {
        conversation_.reset();
        availabilityMayHaveChanged();
    }));
    watches_.push_back(outputs_.observeChanges([this] {
        haveScreensChanged_ = obstacle_.has_value();
        signals_[WindowSystemEvent::screensChanged].emit();
    }));
    watches_.push_back(
        connection_->observeLoss([this] { signals_[WindowSystemEvent::connectionLost].emit(); }));
}

void GnomeWindowSystem::converse() {
    conversation_ = std::make_unique<Conversation>(bus_.connection());
    auto& [extension, keys, watches] = *conversation_;
    watches.push_back(extension.observeState([this] { availabilityMayHaveChanged(); }));
    watches.push_back(extension.observeAreas([this] { signals_[WindowSystemEvent::screensChanged].emit(); }));
    watches.push_back(
        keys.observeRefused([this] { signals_[WindowSystemEvent::refusedKeysChanged].emit(); }));
    keys.watch(combos_, pressed_);
}

std::optional<QJsonObject> GnomeWindowSystem::ask(const char* method, const QVariantList& arguments,
                                                  Seconds patience) {
    return conversation_ ? conversation_->extension.ask(method, arguments, patience) : std::nullopt;
}

void GnomeWindowSystem::availabilityMayHaveChanged() {
    const auto now = obstacle();
    if (std::exchange(obstacle_, now) == now)
        return;
    signals_[WindowSystemEvent::availabilityChanged].emit();
    // Nothing could be moved behind the lock screen.
    if (!obstacle_ && std::exchange(haveScreensChanged_, false))
        signals_[WindowSystemEvent::screensChanged].emit();
}

std::string GnomeWindowSystem::name() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call.setAutoStartService(false);
    call << QStringLiteral("org.gnome.Shell") << QStringLiteral("ShellVersion");
    const auto answer =
        bus_.connection().call(call, QDBus::Block, static_cast<int>(shortPatience.count() * 1000));
    const auto version = answer.arguments().value(0).value<QDBusVariant>().variant().toString();
    return sanitizedUtf8(("GNOME Shell " + version.toStdString()).c_str(), nameLimit);
}

std::optional<WindowSystemObstacle> GnomeWindowSystem::obstacle() {
    if (!conversation_)
        return WindowSystemObstacle::notAnswering;
    switch (conversation_->extension.state()) {
    case GnomeExtension::State::missing:
        return conversation_->extension.isEnabledAtNextLogin() ? WindowSystemObstacle::loginNeeded
                                                               : WindowSystemObstacle::extensionMissing;
    case GnomeExtension::State::mismatched:
        return WindowSystemObstacle::extensionMismatch;
    case GnomeExtension::State::silent:
        return WindowSystemObstacle::notAnswering;
    case GnomeExtension::State::ready:
        break;
    }
    return std::nullopt;
}

void GnomeWindowSystem::requestAccess() {
    if (conversation_)
        conversation_->extension.enable();
}

std::expected<WindowListing, WindowSystemObstacle> GnomeWindowSystem::list() {
    const auto answer = ask("List", {}, shortPatience);
    auto result = answer ? readListing(*answer) : std::nullopt;
    if (!result)
        return std::unexpected(obstacle().value_or(WindowSystemObstacle::notAnswering));
    return std::move(result->listing);
}

std::vector<PlacementOutcome> GnomeWindowSystem::place(std::span<const WindowPlacement> placements,
                                                       Seconds patience) {
    std::vector<PlacementOutcome> outcomes(placements.size(), PlacementOutcome::refused);
    std::vector<std::size_t> asked;
    QList<WirePlacement> wishes;
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const auto& [window, frame] = placements[i];
        if (!isSaneFrame(frame, coordinateLimit))
            continue;
        asked.push_back(i);
        outcomes[i] = PlacementOutcome::timedOut;
        wishes.append({static_cast<qulonglong>(window), whole(frame.x), whole(frame.y), whole(frame.width),
                       whole(frame.height)});
    }
    if (asked.empty())
        return outcomes;
    // The extension gives up a little earlier, so that its answer about the others still arrives.
    const auto milliseconds = static_cast<uint>(patience.count() * 1000 * 0.8);
    const auto answer = ask("Place", {QVariant::fromValue(wishes), milliseconds}, patience);
    const auto results = answer ? readOutcomes(*answer, asked.size()) : std::nullopt;
    for (std::size_t i = 0; results && i < asked.size(); ++i)
        outcomes[asked[i]] = (*results)[i];
    return outcomes;
}

std::vector<DesktopScreen> GnomeWindowSystem::screens() {
    if (const auto answer = ask("Areas", {}, shortPatience))
        areas_ = readAreas(*answer);
    return screensOf(outputs_, areas_, session_.systemRoot);
}

void GnomeWindowSystem::watchKeys(std::vector<KeyCombo> combos,
                                  std::function<void(const KeyCombo&)> pressed) {
    combos_ = std::move(combos);
    pressed_ = std::move(pressed);
    if (conversation_)
        conversation_->keys.watch(combos_, pressed_);
}

std::vector<RefusedKey> GnomeWindowSystem::refusedKeys() {
    return conversation_ ? conversation_->keys.refused() : std::vector<RefusedKey>();
}

std::optional<std::uint32_t> GnomeWindowSystem::keyPosition(std::uint32_t nativeScanCode) {
    return evdevPosition(nativeScanCode);
}

bool GnomeWindowSystem::activate(WindowID window, const std::string& /*token*/) {
    const auto answer = ask("Activate", {static_cast<qulonglong>(window)}, shortPatience);
    return answer && (*answer)["activated"].toBool();
}

std::optional<Point> GnomeWindowSystem::pointer() {
    const auto answer = ask("Areas", {}, shortPatience);
    return answer ? readPointer(*answer) : std::nullopt;
}

Token GnomeWindowSystem::observe(WindowSystemEvent event, std::function<void()> handler) {
    return signals_[event].connect(std::move(handler));
}

} // namespace tavrin
