#include "ui/qt/settings_window.h"

#include "ui/qt/settings_root_view.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

namespace tavrin {
namespace {

constexpr QSize contentSize(820, 620);
constexpr QSize smallestSize(760, 560);

} // namespace

SettingsWindow::SettingsWindow(SettingsCollaborators collaborators)
    : QWidget(nullptr, Qt::Window), collaborators_(std::move(collaborators)) {
    setWindowTitle(QStringLiteral("Tavrin Settings"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* closeShortcut = new QShortcut(QKeySequence::Close, this);
    connect(closeShortcut, &QShortcut::activated, this, &QWidget::close);
}

void SettingsWindow::open(SettingsPane pane, SettingsWindowSurface::ResetNotice notice) {
    notice_ = notice;
    fill(pane);
    fitIntoScreen();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    rootView_->setFocus();
}

bool SettingsWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::WindowActivate:
        if (rootView_)
            rootView_->appear();
        break;
    case QEvent::ApplicationPaletteChange:
    case QEvent::ApplicationFontChange:
    case QEvent::StyleChange:
        refillSoon();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    delete rootView_;
    rootView_ = nullptr;
    if (onClose)
        onClose();
}

void SettingsWindow::fill(SettingsPane pane) {
    delete rootView_;
    rootView_ = new SettingsRootView(collaborators_, pane, notice_);
    layout()->addWidget(rootView_);
}

void SettingsWindow::refillSoon() {
    // A change of the desktop's look arrives in several parts.
    if (!rootView_ || isRefillPending_)
        return;
    isRefillPending_ = true;
    QTimer::singleShot(0, this, [this] {
        isRefillPending_ = false;
        if (!rootView_)
            return;
        fill(rootView_->selectedPane());
        rootView_->setFocus();
    });
}

void SettingsWindow::fitIntoScreen() {
    const QScreen* screen = isVisible() ? this->screen() : QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    setMinimumSize(smallestSize.boundedTo(available.size()));
    if (!hasBeenShown_)
        resize(contentSize.boundedTo(available.size()));
    hasBeenShown_ = true;
    move(available.center() - QPoint(width() / 2, height() / 2));
}

} // namespace tavrin
