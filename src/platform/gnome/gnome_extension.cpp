#include "platform/gnome/gnome_extension.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QJsonDocument>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <limits>
#include <utility>

namespace tavrin {
namespace {

const QString path = QStringLiteral("/org/tavrin/WindowService");

/// The interface that this program speaks; `VERSION` in the extension's window_service.js.
constexpr int version = 1;

/// A window list of ten thousand windows with long titles is below it.
constexpr qsizetype answerLimit = 32 * 1024 * 1024;

constexpr int greetingMilliseconds = 800;

const QString extension = QStringLiteral("windows@tavrin.org");
const QStringList enabledExtensions{QStringLiteral("org.gnome.shell"), QStringLiteral("enabled-extensions")};
constexpr std::chrono::seconds settingsPatience{10};

/// Absent when it is no object as text.
std::optional<QJsonObject> objectIn(const QDBusMessage& answer) {
    const auto text = answer.arguments().value(0).toString();
    if (answer.type() != QDBusMessage::ReplyMessage || text.size() > answerLimit)
        return std::nullopt;
    const auto document = QJsonDocument::fromJson(text.toUtf8());
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

/// -1 when the answer is none.
int versionIn(const QDBusMessage& answer) {
    const auto object = objectIn(answer);
    return object ? (*object)["version"].toInt(-1) : -1;
}

} // namespace

GnomeExtension::GnomeExtension(QDBusConnection bus)
    : bus_(std::move(bus)), watcher_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    bus_.connect(service, path, service, QStringLiteral("KeyPressed"), this, SLOT(keyPressed(QString)));
    bus_.connect(service, path, service, QStringLiteral("AreasChanged"), this, SLOT(areasChanged()));
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { setOwner(owner); });
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    owner_ = bus_.call(call << service, QDBus::Block, greetingMilliseconds).arguments().value(0).toString();
    if (bus_.lastError().isValid())
        owner_.clear();
    if (owner_.isEmpty())
        return;
    const auto answer = bus_.call(question("Areas"), QDBus::Block, greetingMilliseconds);
    version_ = versionIn(answer);
    if (version_ < 0)
        greet();
}

GnomeExtension::State GnomeExtension::state() const {
    if (owner_.isEmpty() || version_ == 0)
        return State::missing;
    if (isSilent_ || version_ < 0)
        return State::silent;
    return version_ == version ? State::ready : State::mismatched;
}

QDBusMessage GnomeExtension::question(const char* method, const QVariantList& arguments) const {
    auto call = QDBusMessage::createMethodCall(owner_, path, service, QLatin1String(method));
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

std::optional<QJsonObject> GnomeExtension::ask(const char* method, const QVariantList& arguments,
                                               Seconds patience) {
    if (state() != State::ready)
        return std::nullopt;
    const auto answer = bus_.call(question(method, arguments), QDBus::Block,
                                  std::max(1, static_cast<int>(patience.count() * 1000)));
    if (answer.type() == QDBusMessage::ErrorMessage && QDBusError(answer).type() == QDBusError::NoReply) {
        isSilent_ = true;
        QMetaObject::invokeMethod(this, [this] { changed_.emit(); }, Qt::QueuedConnection);
        greet();
    }
    return objectIn(answer);
}

void GnomeExtension::enable() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.gnome.Shell.Extensions"), QStringLiteral("EnableExtension"));
    call.setAutoStartService(false);
    auto* waiting = new QDBusPendingCallWatcher(bus_.asyncCall(call << extension), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting] {
        waiting->deleteLater();
        const auto answer = waiting->reply();
        if (answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0) == false)
            enableAtNextLogin();
    });
}

/// The shell enables only what it knew at its start, and reads this list then.
void GnomeExtension::enableAtNextLogin() {
    runSettings(QStringList{QStringLiteral("get")} + enabledExtensions, [this](const QString& output) {
        auto list = output.trimmed();
        if (list == QLatin1String("@as []"))
            list = QStringLiteral("[]");
        if (!list.startsWith('[') || !list.endsWith(']'))
            return;
        const auto name = "'" + extension + "'";
        if (!list.contains(name))
            list.insert(list.size() - 1, (list.size() > 2 ? ", " : "") + name);
        runSettings(QStringList{QStringLiteral("set")} + enabledExtensions + QStringList{list},
                    [this](const QString&) {
                        isEnabledAtNextLogin_ = true;
                        changed_.emit();
                    });
    });
}

/// `finished` is called only after success.
void GnomeExtension::runSettings(const QStringList& arguments,
                                 std::function<void(const QString& output)> finished) {
    auto* process = new QProcess(this);
    connect(process, &QProcess::errorOccurred, process, &QObject::deleteLater);
    connect(process, &QProcess::finished, this,
            [process, finished = std::move(finished)](int status, QProcess::ExitStatus) {
                process->deleteLater();
                if (status == 0)
                    finished(QString::fromUtf8(process->readAllStandardOutput()));
            });
    QTimer::singleShot(settingsPatience, process, &QProcess::kill);
    process->start(QStringLiteral("gsettings"), arguments);
}

void GnomeExtension::setOwner(const QString& owner) {
    owner_ = owner;
    version_ = 0;
    isSilent_ = false;
    if (!owner_.isEmpty())
        greet();
    changed_.emit();
}

/// Asks for its version, however long the answer takes: until then it is left alone.
void GnomeExtension::greet() {
    auto* waiting =
        new QDBusPendingCallWatcher(bus_.asyncCall(question("Areas"), std::numeric_limits<int>::max()), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting, owner = owner_] {
        waiting->deleteLater();
        if (owner != owner_)
            return;
        version_ = versionIn(waiting->reply());
        isSilent_ = false;
        changed_.emit();
    });
}

void GnomeExtension::keyPressed(const QString& accelerator) {
    keys_.emit(accelerator);
}

void GnomeExtension::areasChanged() {
    areas_.emit();
}

} // namespace tavrin
