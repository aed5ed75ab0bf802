#include "platform/kwin/kwin_global_keys.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>

#include <algorithm>
#include <memory>
#include <utility>

namespace tavrin {

/// A key sequence as Plasma sends it: four keys, of which a global shortcut uses the first.
struct WireKeys {
    QList<int> keys;
};

QDBusArgument& operator<<(QDBusArgument& argument, const WireKeys& wire) {
    argument.beginStructure();
    argument << wire.keys;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, WireKeys& wire) {
    argument.beginStructure();
    argument >> wire.keys;
    argument.endStructure();
    return argument;
}

} // namespace tavrin

Q_DECLARE_METATYPE(tavrin::WireKeys)

namespace tavrin {
namespace {

const QString service = QStringLiteral("org.kde.kglobalaccel");
const QString path = QStringLiteral("/kglobalaccel");
const QString interface = QStringLiteral("org.kde.KGlobalAccel");
const QString componentInterface = QStringLiteral("org.kde.kglobalaccel.Component");
const QString component = QStringLiteral("org.tavrin.Tavrin");
const QString componentName = QStringLiteral("Tavrin");

const QString layouts = QStringLiteral("org.kde.keyboard");
const QString layoutsPath = QStringLiteral("/Layouts");
const QString layoutsInterface = QStringLiteral("org.kde.KeyboardLayouts");

constexpr auto taken = "Another program uses this combination.";
constexpr auto unreachable = "No key of this keyboard gives this combination.";
constexpr auto switchedOff = "Switched off in System Settings.";

// What setShortcutKeys does.
constexpr uint activate = 2; ///< with the keys that are stored, if any
constexpr uint replaceStored = 4;
constexpr uint setUsual = 8;

/// Stays the same for a combination, so that what the user chose for it in System Settings is found again.
QString actionName(const KeyCombo& combo) {
    return QStringLiteral("key-%1-%2").arg(combo.keyCode).arg(combo.modifiers.rawValue, 0, 16);
}

QDBusMessage question(const char* method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, QLatin1String(method));
    message.setArguments(arguments);
    return message;
}

QVariant toWire(const std::vector<int>& keys) {
    QList<WireKeys> list;
    for (const int key : keys)
        list.append({{key, 0, 0, 0}});
    return QVariant::fromValue(list);
}

std::vector<int> fromWire(const QVariant& value) {
    std::vector<int> keys;
    if (value.userType() == qMetaTypeId<QDBusArgument>() &&
        value.value<QDBusArgument>().currentSignature() == QLatin1String("a(ai)"))
        for (const auto& sequence : qdbus_cast<QList<WireKeys>>(value))
            if (const int key = sequence.keys.value(0); key != 0)
                keys.push_back(key);
    return keys;
}

} // namespace

KWinGlobalKeys::KWinGlobalKeys(QDBusConnection bus)
    : bus_(std::move(bus)), watcher_(service, bus_, QDBusServiceWatcher::WatchForRegistration) {
    qDBusRegisterMetaType<WireKeys>();
    qDBusRegisterMetaType<QList<WireKeys>>();
    // Before the first registration: a press right after it would be missed.
    const auto follow = [this](const char* name, const char* slot) {
        bus_.connect(service, QString(), componentInterface, QLatin1String(name), {component}, QString(),
                     this, slot);
    };
    follow("globalShortcutPressed", SLOT(pressed(QString, QString, qlonglong)));
    follow("globalShortcutReleased", SLOT(released(QString, QString, qlonglong)));
    bus_.connect(service, path, interface, QStringLiteral("yourShortcutsChanged"), this,
                 SLOT(keysChanged(QDBusMessage)));
    bus_.connect(layouts, layoutsPath, layoutsInterface, QStringLiteral("layoutChanged"), this,
                 SLOT(layoutChanged(uint)));
    bus_.connect(layouts, layoutsPath, layoutsInterface, QStringLiteral("layoutListChanged"), this,
                 SLOT(askForLayout()));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        registered_.clear();
        actions_.clear();
        askForLayout();
        update();
    });
    askForLayout();
}

KWinGlobalKeys::~KWinGlobalKeys() {
    watch({}, {});
}

void KWinGlobalKeys::watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    combos_ = std::move(combos);
    pressed_ = std::move(pressed);
    update();
}

void KWinGlobalKeys::setKeyboard(std::optional<KeyboardMap> map, KeypadKeys keypad) {
    map_ = std::move(map);
    keypad_ = keypad;
    askForLayout();
    update();
}

void KWinGlobalKeys::update() {
    std::map<QString, Action> wanted;
    for (const auto& combo : combos_)
        wanted.emplace(
            actionName(combo),
            Action{combo, map_ ? qtKeys(combo, *map_, std::min(layout_, map_->layoutCount() - 1), keypad_)
                               : std::vector<int>()});
    // Without any they are only let go: recording a shortcut is no reason to forget the user's keys.
    for (const auto& name : registered_)
        send("setInactive", {QStringList{component, name, componentName, name}});
    registered_.clear();
    ++generation_;
    held_.clear();
    actions_ = std::move(wanted);
    const auto dropped =
        std::erase_if(refusals_, [this](const auto& refusal) { return !actions_.contains(refusal.first); });
    if (dropped > 0)
        changed_.emit();
    if (actions_.empty())
        return;
    // Actions of an earlier run that are no longer wanted would keep their keys. The answers come in the
    // order of the questions.
    ask("allActionsForComponent", {QStringList{component, "", componentName, ""}},
        [this](const QDBusMessage& answer) {
            for (const auto& identifier : qdbus_cast<QList<QStringList>>(answer.arguments().value(0)))
                if (const auto name = identifier.value(1); !name.isEmpty() && !actions_.contains(name))
                    send("unregister", {component, name});
            for (const auto& [name, action] : actions_)
                registerAction(name, action);
        });
}

void KWinGlobalKeys::registerAction(const QString& name, const Action& action) {
    if (action.keys.empty()) {
        refuse(name, unreachable);
        return;
    }
    const QStringList identifier{
        component, name, componentName,
        QStringLiteral("Restore the layout of %1").arg(QString::fromStdString(action.combo.displayString()))};
    registered_.insert(name);
    send("doRegister", {identifier});
    auto current = std::make_shared<std::vector<int>>();
    ask("shortcutKeys", {identifier},
        [current](const QDBusMessage& answer) { *current = fromWire(answer.arguments().value(0)); });
    ask("defaultShortcutKeys", {identifier}, [this, current, name](const QDBusMessage& answer) {
        decide(name, *current, fromWire(answer.arguments().value(0)));
    });
}

/// Plasma stores the keys of an action and those it has by default. Where the two differ, the user chose.
void KWinGlobalKeys::decide(const QString& name, const std::vector<int>& current,
                            const std::vector<int>& usual) {
    const auto keys = actions_.at(name).keys;
    const bool isRebound = !usual.empty() && current != usual && current != keys;
    const QStringList identifier{component, name, componentName, name};
    ask("setShortcutKeys", {identifier, toWire(keys), isRebound ? activate : activate | replaceStored},
        [this, identifier, name, isRebound, keys](const QDBusMessage& answer) {
            const auto granted = fromWire(answer.arguments().value(0));
            if (isRebound)
                refuse(name, granted.empty()
                                 ? switchedOff
                                 : "Changed to " + keyText(granted.front()) + " in System Settings.");
            else
                refuse(name, granted.empty() ? taken : "");
            // Keys that were not granted must not look like ones that the user took away later.
            const bool isTaken = granted.empty() && !isRebound;
            send("setShortcutKeys", {identifier, toWire(isTaken ? std::vector<int>() : keys), setUsual});
        });
}

void KWinGlobalKeys::refuse(const QString& name, std::string reason) {
    const auto old = refusals_.find(name);
    if (reason == (old == refusals_.end() ? "" : old->second))
        return;
    if (reason.empty())
        refusals_.erase(name);
    else
        refusals_[name] = std::move(reason);
    changed_.emit();
}

std::vector<RefusedKey> KWinGlobalKeys::refused() const {
    std::vector<RefusedKey> result;
    for (const auto& [name, reason] : refusals_)
        if (const auto action = actions_.find(name); action != actions_.end())
            result.push_back({action->second.combo, reason});
    return result;
}

void KWinGlobalKeys::send(const char* method, const QVariantList& arguments) {
    bus_.send(question(method, arguments));
}

void KWinGlobalKeys::ask(const char* method, const QVariantList& arguments, Answer answered) {
    auto* waiting = new QDBusPendingCallWatcher(bus_.asyncCall(question(method, arguments)), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this,
            [this, waiting, generation = generation_, answered = std::move(answered)] {
                waiting->deleteLater();
                if (generation == generation_ && !waiting->isError())
                    answered(waiting->reply());
            });
}

void KWinGlobalKeys::askForLayout() {
    auto call =
        QDBusMessage::createMethodCall(layouts, layoutsPath, layoutsInterface, QStringLiteral("getLayout"));
    call.setAutoStartService(false);
    auto* waiting = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting] {
        waiting->deleteLater();
        // Plasma has no such service while there is only one layout.
        layoutChanged(waiting->isError() ? 0 : waiting->reply().arguments().value(0).toUInt());
    });
}

void KWinGlobalKeys::layoutChanged(uint layout) {
    if (std::exchange(layout_, layout) != layout)
        update();
}

/// A held key repeats the signal; only what comes after its release is a new press.
void KWinGlobalKeys::pressed(const QString& /*component*/, const QString& action, qlonglong /*time*/) {
    const auto found = actions_.find(action);
    if (found == actions_.end() || !held_.insert(action).second || !pressed_)
        return;
    const auto combo = found->second.combo;
    const auto handler = pressed_;
    handler(combo);
}

void KWinGlobalKeys::released(const QString& /*component*/, const QString& action, qlonglong /*time*/) {
    held_.erase(action);
}

/// Somebody else changed the keys of an action.
void KWinGlobalKeys::keysChanged(const QDBusMessage& message) {
    const auto identifier = message.arguments().value(0).toStringList();
    const auto action = actions_.find(identifier.value(1));
    if (identifier.value(0) == component && action != actions_.end())
        registerAction(action->first, action->second);
}

} // namespace tavrin
