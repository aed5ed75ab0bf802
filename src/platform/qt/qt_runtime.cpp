#include "platform/qt/qt_runtime.h"

#include "platform/session_bus/bus_link.h"

#include <QApplication>
#include <QDBusConnection>
#include <QFile>
#include <QPointer>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>

#include <chrono>
#include <clocale>
#include <cmath>
#include <limits>

namespace tavrin {
namespace {

/// Rounded up, so that nothing runs early; negative and undefined times count as none.
int wholeMilliseconds(Seconds time) {
    const double milliseconds = std::ceil(time.count() * 1000);
    if (!(milliseconds > 0))
        return 0;
    constexpr int longest = std::numeric_limits<int>::max();
    return milliseconds < longest ? static_cast<int>(milliseconds) : longest;
}

} // namespace

// Qt has a connection of its own to the session bus, for accessibility and themes, which it opens on its
// first need and never again. libdbus starts a bus for it where there is none, and lets it wait half a minute
// for one that does not answer. In these cases this has Qt find none for good.
std::unique_ptr<QApplication> QtProgram::makeApplication(int& argc, char** argv) {
    constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
    constexpr std::chrono::milliseconds patience{500};
    const auto address = busAddresses().session;
    const bool answers = address && BusProbe(*address).state(patience) == BusProbe::State::answered;
    const bool wasSet = qEnvironmentVariableIsSet(variable);
    const auto before = qgetenv(variable);
    if (!answers)
        qputenv(variable, "unix:path=/dev/null");
    auto application = std::make_unique<QApplication>(argc, argv);
    if (!answers) {
        static_cast<void>(QDBusConnection::sessionBus());
        // What this program starts may find a bus.
        wasSet ? qputenv(variable, before) : qunsetenv(variable);
    }
    return application;
}

QtProgram::QtProgram(int& argc, char** argv, const std::string& version) {
    QCoreApplication::setApplicationVersion(QString::fromStdString(version));
    application_ = makeApplication(argc, argv);
    // Numbers in files are written with a point, whatever the user's language.
    std::setlocale(LC_NUMERIC, "C");
}

QtProgram::~QtProgram() = default;

int QtProgram::run() {
    return QApplication::exec();
}

void QtProgram::exit(int status) {
    QCoreApplication::exit(status);
}

std::string QtProgram::toolkitVersion() {
    return std::string("Qt ") + qVersion();
}

std::string QtProgram::windowProtocol() {
    const QString name = QGuiApplication::platformName();
    return name == QLatin1String("xcb") ? "x11" : name.toStdString();
}

std::filesystem::path QtProgram::dataFolder() {
    return QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .toStdString();
}

Token QtEventLoop::watchReadable(int fileDescriptor, std::function<void()> handler) {
    // Qt reports a closed other end and an error condition as readable too.
    auto* notifier = new QSocketNotifier(fileDescriptor, QSocketNotifier::Read, &notifiers_);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [handler = std::move(handler)] { handler(); });
    return Token([notifier = QPointer(notifier)] {
        if (!notifier)
            return;
        notifier->setEnabled(false);
        // Not deleted here: the handler itself may be what releases the token.
        notifier->deleteLater();
    });
}

Token QtScheduler::after(Seconds delay, std::function<void()> task) {
    return start(delay, Repetition::once, std::move(task));
}

Token QtScheduler::every(Seconds interval, std::function<void()> task) {
    return start(interval, Repetition::always, std::move(task));
}

Token QtScheduler::start(Seconds interval, Repetition repetition, std::function<void()> task) {
    auto* timer = new QTimer(&timers_);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(repetition == Repetition::once);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, repetition, task = std::move(task)] {
        // The task may release its token; this object lives until the event loop runs again.
        if (repetition == Repetition::once)
            timer->deleteLater();
        task();
    });
    timer->start(wholeMilliseconds(interval));
    return Token([timer = QPointer(timer)] {
        if (!timer)
            return;
        timer->stop();
        timer->deleteLater();
    });
}

} // namespace tavrin
