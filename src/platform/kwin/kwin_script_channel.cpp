#include "platform/kwin/kwin_script_channel.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QMutex>
#include <QTemporaryFile>
#include <QWaitCondition>

#include <algorithm>
#include <limits>
#include <utility>

// The macro has to stand outside of every namespace.
static void initializeScript() {
    Q_INIT_RESOURCE(kwin);
}

namespace tavrin {
namespace {

const QString service = QStringLiteral("org.kde.KWin");
const QString scripting = QStringLiteral("/Scripting");
const QString agentInterface = QStringLiteral("org.tavrin.WindowAgent");

/// A window list of ten thousand windows with long titles is below it.
constexpr qsizetype answerLimit = 32 * 1024 * 1024;

constexpr std::chrono::milliseconds silenceLimit{1000};
constexpr std::chrono::milliseconds startLimit{100};

/// How much longer than the idle time of the program the script stays.
constexpr int lifetimeFactor = 2;

QDBusMessage scriptingCall(const QString& method, const QVariantList& arguments) {
    auto call =
        QDBusMessage::createMethodCall(service, scripting, QStringLiteral("org.kde.kwin.Scripting"), method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

QByteArray scriptText() {
    initializeScript();
    QFile file(QStringLiteral(":/kwin/window_script.js"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The time that is left of `patience`.
class KWinScriptChannel::Deadline {
public:
    explicit Deadline(Seconds patience)
        : timer_(std::chrono::duration_cast<std::chrono::milliseconds>(patience), Qt::PreciseTimer) {}

    const QDeadlineTimer& timer() const { return timer_; }
    /// A call that was waited for until then may end a little earlier.
    bool hasExpired() const { return timer_.remainingTime() < 20; }

    /// Blocks until the answer is there; an error message without one.
    QDBusMessage call(const QDBusConnection& bus, const QDBusMessage& message) const {
        return bus.call(message, QDBus::Block, std::max(1, static_cast<int>(timer_.remainingTime())));
    }

private:
    QDeadlineTimer timer_;
};

/// The script's partner. It lives in a thread of its own, so that the main thread can wait for it.
class KWinScriptChannel::Agent : public QDBusVirtualObject {
public:
    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QMutexLocker lock(&mutex_);
        if (owner_.isEmpty() || message.service() != owner_ || message.interface() != agentInterface)
            return false;
        const auto arguments = message.arguments();
        if (message.member() == QLatin1String("Next")) {
            message.setDelayedReply(true);
            next_ = message;
        } else if (arguments.size() == 2) { // Answer or Progress
            if (message.isReplyRequired())
                connection.send(message.createReply());
            if (arguments[0].toInt() != number_)
                return true;
            if (message.member() == QLatin1String("Answer"))
                answer_ = arguments[1].toString();
        } else {
            return false;
        }
        heard_ = std::chrono::steady_clock::now();
        arrived_.wakeAll();
        return true;
    }

    void trust(const QString& owner) {
        const QMutexLocker lock(&mutex_);
        owner_ = owner;
        next_.reset();
    }

    /// The script no longer waits for a question.
    void drop() {
        const QMutexLocker lock(&mutex_);
        next_.reset();
    }

    /// The bus ends a call that was not answered for 25 seconds, without a word to either side.
    bool heardWithin(std::chrono::milliseconds time) {
        const QMutexLocker lock(&mutex_);
        return std::chrono::steady_clock::now() - heard_ < time;
    }

    /// The script waits for a question, at the latest then.
    bool isAskedWithin(std::chrono::milliseconds time) {
        const QMutexLocker lock(&mutex_);
        return waitFor(QDeadlineTimer(time, Qt::PreciseTimer), [this] { return next_.has_value(); });
    }

    std::optional<QString> ask(const QDBusConnection& bus, const QByteArray& question,
                               const QDeadlineTimer& deadline) {
        const QMutexLocker lock(&mutex_);
        answer_.reset();
        ++number_;
        if (!waitFor(deadline, [this] { return next_.has_value(); }))
            return std::nullopt;
        bus.send(next_->createReply({number_, QString::fromUtf8(question)}));
        next_.reset();
        if (!waitFor(deadline, [this] { return answer_.has_value(); }))
            return std::nullopt;
        return std::exchange(answer_, std::nullopt);
    }

private:
    /// Also ends when the script says nothing at all for longer than `silenceLimit`.
    template <class Condition>
    bool waitFor(const QDeadlineTimer& deadline, const Condition& isMet) {
        while (!isMet())
            if (!arrived_.wait(&mutex_, std::min(deadline, QDeadlineTimer(silenceLimit, Qt::PreciseTimer))))
                return false;
        return true;
    }

    QMutex mutex_;
    QWaitCondition arrived_;
    QString owner_;
    std::optional<QDBusMessage> next_; ///< the script's call that waits for a question
    std::chrono::steady_clock::time_point heard_;
    int number_ = 0; ///< of the last question
    std::optional<QString> answer_;
};

KWinScriptChannel::KWinScriptChannel(QDBusConnection bus, Options options)
    : bus_(std::move(bus)), options_(std::move(options)), name_(QString::fromStdString(options_.name)),
      path_(QString::asprintf("/org/tavrin/WindowAgent%p", static_cast<const void*>(this)).remove("0x")),
      watcher_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange), agent_(std::make_unique<Agent>()) {
    bus_.registerVirtualObject(path_, agent_.get());
    agent_->moveToThread(&thread_);
    thread_.start();
    idle_.setSingleShot(true);
    idle_.setInterval(options_.idle);
    idle_.setTimerType(Qt::VeryCoarseTimer);
    connect(&idle_, &QTimer::timeout, this, &KWinScriptChannel::unload);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                setOwner(owner);
                changed_.emit();
            });
    auto question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    question << service;
    const auto reply = Deadline(Seconds(1)).call(bus_, question);
    if (reply.type() == QDBusMessage::ReplyMessage)
        setOwner(reply.arguments().value(0).toString());
}

KWinScriptChannel::~KWinScriptChannel() {
    unload();
    bus_.unregisterObject(path_);
    thread_.quit();
    thread_.wait();
}

std::optional<QJsonObject> KWinScriptChannel::ask(const QJsonObject& question, Seconds patience) {
    if (!isAvailable())
        return std::nullopt;
    const Deadline deadline(patience);
    if (isLoaded_ && !agent_->heardWithin(options_.idle * 3 / 2))
        forget();
    if (!isLoaded_) {
        const Deadline loading(std::min(patience, Seconds(silenceLimit)));
        if (!load(loading)) {
            if (loading.hasExpired())
                stall();
            return std::nullopt;
        }
    }
    idle_.start();
    const auto answer =
        agent_->ask(bus_, QJsonDocument(question).toJson(QJsonDocument::Compact), deadline.timer());
    if (!answer) {
        forget();
        stall();
        return std::nullopt;
    }
    if (answer->size() > answerLimit)
        return std::nullopt;
    const auto document = QJsonDocument::fromJson(answer->toUtf8());
    if (!document.isObject() || document.object().contains(QStringLiteral("error")))
        return std::nullopt;
    return document.object();
}

bool KWinScriptChannel::load(const Deadline& deadline) {
    QTemporaryFile file(QString::fromStdString(options_.folder) + QStringLiteral("/tavrin-XXXXXX.js"));
    if (!file.open())
        return false;
    const QJsonObject agent{
        {QStringLiteral("service"), bus_.baseService()},
        {QStringLiteral("path"), path_},
        {QStringLiteral("interface"), agentInterface},
        {QStringLiteral("name"), name_},
        {QStringLiteral("lifetime"), static_cast<int>(options_.idle.count()) * lifetimeFactor}};
    file.write("var agent = " + QJsonDocument(agent).toJson(QJsonDocument::Compact) + ";\n" + scriptText());
    file.close();
    agent_->drop();
    // One that a killed program left keeps the name.
    deadline.call(bus_, scriptingCall(QStringLiteral("unloadScript"), {name_}));
    const auto loaded =
        deadline.call(bus_, scriptingCall(QStringLiteral("loadScript"), {file.fileName(), name_}));
    if (loaded.type() != QDBusMessage::ReplyMessage || loaded.arguments().value(0).toInt() < 0)
        return false;
    run(loaded.arguments().value(0).toInt(), deadline);
    // KWin counts its scripts, so that one loaded after another was unloaded can have the object of a third.
    if (!agent_->isAskedWithin(startLimit))
        deadline.call(bus_, scriptingCall(QStringLiteral("start"), {}));
    isLoaded_ = !deadline.hasExpired();
    return isLoaded_;
}

/// KWin 6 and KWin 5.27 name the script's object differently. The answer comes when the script has run.
void KWinScriptChannel::run(int script, const Deadline& deadline) {
    for (const auto* path : {"/Scripting/Script%1", "/%1"}) {
        auto call = QDBusMessage::createMethodCall(
            service, QString(path).arg(script), QStringLiteral("org.kde.kwin.Script"), QStringLiteral("run"));
        call.setAutoStartService(false);
        if (deadline.call(bus_, call).type() == QDBusMessage::ReplyMessage)
            return;
    }
}

void KWinScriptChannel::unload() {
    if (isLoaded_)
        bus_.send(scriptingCall(QStringLiteral("unloadScript"), {name_}));
    forget();
}

void KWinScriptChannel::forget() {
    isLoaded_ = false;
    idle_.stop();
    agent_->drop();
}

/// Leaves KWin alone until it answers a call that it can take its time for.
void KWinScriptChannel::stall() {
    isStalled_ = true;
    announce();
    const auto pulse = scriptingCall(QStringLiteral("isScriptLoaded"), {name_});
    auto* waiting = new QDBusPendingCallWatcher(bus_.asyncCall(pulse, std::numeric_limits<int>::max()), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting, owner = owner_] {
        waiting->deleteLater();
        if (owner != owner_ || !isStalled_)
            return;
        isStalled_ = false;
        changed_.emit();
    });
}

void KWinScriptChannel::setOwner(const QString& owner) {
    owner_ = owner;
    isStalled_ = false;
    forget();
    agent_->trust(owner);
}

void KWinScriptChannel::announce() {
    QMetaObject::invokeMethod(this, [this] { changed_.emit(); }, Qt::QueuedConnection);
}

} // namespace tavrin
