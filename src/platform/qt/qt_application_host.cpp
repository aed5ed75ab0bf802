#include "platform/qt/qt_application_host.h"

#include "platform/qt/icon_resources.h"

#include <QApplication>
#include <QFile>
#include <QPointer>
#include <QSessionManager>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace tavrin {
namespace {

/// The window that shall get the focus: a dialog before the window under it.
QWidget* frontWindow() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    QWidget* front = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        const auto type = widget->windowType();
        const bool takesFocus = type == Qt::Window || type == Qt::Dialog || type == Qt::Tool;
        if (!widget->isVisible() || !takesFocus)
            continue;
        if (!front || widget->isActiveWindow() || (type != Qt::Window && front->windowType() == Qt::Window))
            front = widget;
    }
    return front;
}

void raiseWindow(QWidget& widget) {
    widget.setWindowState(widget.windowState() & ~Qt::WindowMinimized);
    widget.raise();
    widget.activateWindow();
}

} // namespace

QtApplicationHost::QtApplicationHost(QApplication& application) {
    application.setQuitOnLastWindowClosed(false);
    application.setQuitLockEnabled(false);
    // The application name is what Qt makes the window class of.
    application.setApplicationName(applicationId);
    application.setDesktopFileName(applicationId);
    registerIconResources();
    application.setWindowIcon(
        QIcon::fromTheme(applicationId, QIcon(QStringLiteral(":/icons/org.tavrin.Tavrin.svg"))));

    connect(&application, &QGuiApplication::applicationStateChanged, this,
            &QtApplicationHost::updateIsActive);
    connect(&application, &QGuiApplication::focusWindowChanged, this, &QtApplicationHost::updateIsActive);

    // Launching at login is the autostart entry's business. A session manager that restarts the program as
    // well would start it twice.
    const auto neverRestart = [](QSessionManager& manager) {
        manager.setRestartHint(QSessionManager::RestartNever);
    };
    connect(&application, &QGuiApplication::saveStateRequest, this, neverRestart);
    connect(&application, &QGuiApplication::commitDataRequest, this, neverRestart);
}

Token QtApplicationHost::observeDidBecomeActive(std::function<void()> handler) {
    return didBecomeActive_.connect(std::move(handler));
}

void QtApplicationHost::setActivationPolicy(ActivationPolicy) {}

void QtApplicationHost::activate() {
    QWidget* front = frontWindow();
    if (!front)
        return;
    raiseWindow(*front);
    // A window manager refuses the focus to a request older than the user's last action, and Qt dates its
    // requests by the last event that came from the server. A menu shown by another process leaves it with
    // none, so one is provoked by writing a property, and the request is made again with its date.
    QTimer::singleShot(0, this, [front = QPointer(front)] {
        if (!front || !front->isVisible() || front->isActiveWindow() || !front->windowHandle())
            return;
        QWindow* window = front->windowHandle();
        window->setTitle(window->title());
        QGuiApplication::sync();
        if (front && front->isVisible())
            raiseWindow(*front);
    });
}

void QtApplicationHost::terminate() {
    QCoreApplication::exit(0);
}

std::filesystem::path QtApplicationHost::bundlePath() {
    return QFile::encodeName(QCoreApplication::applicationFilePath()).toStdString();
}

std::string QtApplicationHost::shortVersion() {
    return QCoreApplication::applicationVersion().toStdString();
}

void QtApplicationHost::updateIsActive() {
    const bool wasActive = isActive_;
    const QWindow* focus = QGuiApplication::focusWindow();
    if (QGuiApplication::applicationState() != Qt::ApplicationActive)
        isActive_ = false;
    else if (focus && focus->type() != Qt::Popup) // the menu of the status item is no window of its own
        isActive_ = true;
    if (isActive_ && !wasActive)
        didBecomeActive_.emit();
}

} // namespace tavrin
