#pragma once

#include "base/signal.h"
#include "base/timestamp.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QJsonObject>
#include <QThread>
#include <QTimer>

#include <memory>
#include <optional>

namespace tavrin {

/// Asks KWin questions that only a script inside it can answer. The script is loaded at the first question
/// and unloaded when there was none for a while: it costs nothing while idle, and is never older than the
/// KWin or the program that uses it. Main thread only.
class KWinScriptChannel : public QObject {
public:
    struct Options {
        std::string folder; ///< for the script's file while KWin reads it
        std::chrono::milliseconds idle = std::chrono::seconds(10);
        std::string name = "tavrin-windows"; ///< of the script; one that has it already is unloaded
    };

    KWinScriptChannel(QDBusConnection bus, Options options);
    ~KWinScriptChannel() override;

    /// KWin runs, and has answered the last question in time.
    bool isAvailable() const { return !owner_.isEmpty() && !isStalled_; }

    /// The answer, as the script gave it: any object. Absent when KWin does not run, does not answer within
    /// `patience`, or answers something else. After it did not answer in time, questions fail at once until
    /// it takes part in the bus again.
    std::optional<QJsonObject> ask(const QJsonObject& question, Seconds patience);

    /// `handler` is called after `isAvailable` changed or another KWin took over, never from within a call.
    Token observe(std::function<void()> handler) { return changed_.connect(std::move(handler)); }

private:
    class Agent;
    class Deadline;

    bool load(const Deadline& deadline);
    void run(int script, const Deadline& deadline);
    void unload();
    void forget();
    void stall();
    void setOwner(const QString& owner);
    void announce();

    QDBusConnection bus_;
    Options options_;
    QString name_;
    QString path_;
    QString owner_;
    QDBusServiceWatcher watcher_;
    QTimer idle_;
    QThread thread_;
    std::unique_ptr<Agent> agent_;
    bool isLoaded_ = false;
    bool isStalled_ = false;
    Signal<> changed_;
};

} // namespace tavrin
