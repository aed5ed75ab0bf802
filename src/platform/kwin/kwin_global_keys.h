#pragma once

#include "base/signal.h"
#include "platform/kwin/kwin_keys.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

class QDBusMessage;

namespace tavrin {

/// Key combinations that Plasma reports while another program has the keyboard. Each is an action of this
/// program in System Settings, where the user may give it other keys. Nothing here waits for an answer.
class KWinGlobalKeys : public QObject {
    Q_OBJECT
public:
    explicit KWinGlobalKeys(QDBusConnection bus);
    /// The actions stay in System Settings; their keys are free for others.
    ~KWinGlobalKeys() override;

    /// Replaces the set watched before.
    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed);

    /// What the keys give. Without a map no combination is reported.
    void setKeyboard(std::optional<KeyboardMap> map, KeypadKeys keypad);

    /// Those that are not reported, or under other keys than wished.
    std::vector<RefusedKey> refused() const;

    Token observeRefusals(std::function<void()> handler) { return changed_.connect(std::move(handler)); }

private Q_SLOTS:
    void pressed(const QString& component, const QString& action, qlonglong time);
    void released(const QString& component, const QString& action, qlonglong time);
    void keysChanged(const QDBusMessage& message);
    void layoutChanged(uint layout);
    void askForLayout();

private:
    struct Action {
        KeyCombo combo;
        std::vector<int> keys; ///< what its press looks like to Plasma
    };

    void update();
    void registerAction(const QString& name, const Action& action);
    void decide(const QString& name, const std::vector<int>& current, const std::vector<int>& usual);
    void refuse(const QString& name, std::string reason);
    using Answer = std::function<void(const QDBusMessage&)>;
    void send(const char* method, const QVariantList& arguments);
    void ask(const char* method, const QVariantList& arguments, Answer answered);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::function<void(const KeyCombo&)> pressed_;
    std::vector<KeyCombo> combos_;
    std::optional<KeyboardMap> map_;
    KeypadKeys keypad_ = KeypadKeys::plain;
    std::size_t layout_ = 0;
    std::map<QString, Action> actions_; ///< those that are wanted, by name
    std::set<QString> registered_;      ///< since Plasma's service started
    std::set<QString> held_;
    std::map<QString, std::string> refusals_;
    unsigned generation_ = 0; ///< counts the changes; answers about an earlier one are dropped
    Signal<> changed_;
};

} // namespace tavrin
