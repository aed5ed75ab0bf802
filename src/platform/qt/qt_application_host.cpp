#include "platform/qt/qt_application_host.h"

#include "platform/qt/panel_icon.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPointer>
#include <QSessionManager>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace tavrin {
namespace {

/// How much a window is to be in front: a dialog more than the window under it, even one in use.
int rank(const QWidget& widget) {
    return (widget.windowType() != Qt::Window ? 2 : 0) + (widget.isActiveWindow() ? 1 : 0);
}

/// The window that shall get the focus.
QWidget* frontWindow() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    QWidget* front = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        const auto type = widget->windowType();
        const bool takesFocus = type == Qt::Window || type == Qt::Dialog || type == Qt::Tool;
        if (!widget->isVisible() || !takesFocus)
            continue;
        if (!front || rank(*widget) > rank(*front))
            front = widget;
    }
    return front;
}

/// The program's icon, which is looked up when the first window is shown and not before: most starts show
/// none.
class WindowIcon final : public QIconEngine {
public:
    QIconEngine* clone() const override { return new WindowIcon; }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        found().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return found().pixmap(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return found().availableSizes(mode, state);
    }

private:
    const QIcon& found() {
        if (icon_.isNull())
            icon_ = QIcon::fromTheme(QtApplicationHost::applicationId,
                                     QIcon(QStringLiteral(":/icons/org.tavrin.Tavrin.svg")));
        return icon_;
    }

    QIcon icon_;
};

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
    registerResources();
    application.setWindowIcon(QIcon(new WindowIcon));

    connect(&application, &QGuiApplication::focusWindowChanged, this, &QtApplicationHost::focusMoved);

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
    if (bringForward_)
        return bringForward(front, 40);
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

void QtApplicationHost::bringForward(QPointer<QWidget> window, int attempts) {
    if (!window || !window->isVisible() || attempts == 0 ||
        bringForward_(
            {.title = window->windowTitle().toStdString(), .isPopover = window->windowType() == Qt::Tool}))
        return;
    // No event tells when the compositor has taken the window up.
    QTimer::singleShot(25, this, [this, window, attempts] { bringForward(window, attempts - 1); });
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

bool QtApplicationHost::isActive() const {
    // An open menu takes the keyboard without taking the focus.
    if (QApplication::activePopupWidget())
        return true;
    // Qt goes on calling the program active when the window with the focus is hidden.
    return QGuiApplication::applicationState() == Qt::ApplicationActive && window_ && window_->isVisible();
}

void QtApplicationHost::focusMoved(QWindow* window) {
    // The menu of the status item is no window of its own.
    if (window && window->type() == Qt::Popup)
        return;
    const bool wasActive = window_ && window_->isVisible();
    window_ = window;
    if (window && !wasActive)
        didBecomeActive_.emit();
}

} // namespace tavrin
