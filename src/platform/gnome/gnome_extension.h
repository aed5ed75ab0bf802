#pragma once

#include "base/signal.h"
#include "base/timestamp.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QJsonObject>
#include <QObject>
#include <QVariantList>

#include <functional>
#include <optional>

namespace tavrin {

/// The program's extension of GNOME Shell, asked over the session bus. It comes and goes: the user enables
/// and disables it, and the shell does so with its lock screen. Main thread only.
class GnomeExtension : public QObject {
    Q_OBJECT
public:
    static constexpr auto service = "org.tavrin.WindowService";

    enum class State {
        missing,    ///< not installed, not enabled, or the screen is locked
        mismatched, ///< of another version than this program
        silent,     ///< did not answer the last question in time
        ready,
    };

    explicit GnomeExtension(QDBusConnection bus);

    State state() const;

    /// The answer: any object. Absent when it is not ready, does not answer within `patience`, or answers
    /// something else. After it did not answer in time, questions fail at once until it does again.
    std::optional<QJsonObject> ask(const char* method, const QVariantList& arguments, Seconds patience);

    /// Has the shell enable it, on the user's word, now or at the next login; nothing is waited for.
    void enable();
    /// It was enabled here and the shell did not know it.
    bool isEnabledAtNextLogin() const { return isEnabledAtNextLogin_; }

    /// `handler` is called after `state` changed, or another extension took over; never from within a call.
    Token observeState(std::function<void()> handler) { return changed_.connect(std::move(handler)); }
    /// The same for what it answers about the screens.
    Token observeAreas(std::function<void()> handler) { return areas_.connect(std::move(handler)); }
    /// `handler` gets the accelerator of every press that it was asked to watch.
    Token observeKeys(std::function<void(const QString&)> handler) {
        return keys_.connect(std::move(handler));
    }

private Q_SLOTS:
    void keyPressed(const QString& accelerator);
    void areasChanged();

private:
    QDBusMessage question(const char* method, const QVariantList& arguments = {}) const;
    void setOwner(const QString& owner);
    void enableAtNextLogin();
    void runSettings(const QStringList& arguments, std::function<void(const QString& output)> finished);
    void greet();

    QDBusConnection bus_;
    QString owner_;
    QDBusServiceWatcher watcher_;
    bool isSilent_ = false;
    bool isEnabledAtNextLogin_ = false;
    int version_ = 0; ///< of its interface; 0 until it has answered
    Signal<> changed_;
    Signal<> areas_;
    Signal<const QString&> keys_;
};

} // namespace tavrin
