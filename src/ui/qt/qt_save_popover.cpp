#include "ui/qt/qt_save_popover.h"

#include "ui/qt/popover_placement.h"
#include "ui/qt/save_popover_window.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tavrin {

QtSavePopover::QtSavePopover(ApplicationHost& host, std::function<std::optional<Rect>()> anchor)
    : host_(host), anchor_(std::move(anchor)) {}

QtSavePopover::~QtSavePopover() = default;

void QtSavePopover::show(std::shared_ptr<SaveLayoutPopoverView> view, std::optional<Rect> beside) {
    close();
    window_ = std::make_unique<SavePopoverWindow>(std::move(view), [this] { close(); });
    place(beside ? beside : anchor_());
    window_->show();
    window_->setFocus();
    host_.activate();
}

void QtSavePopover::close() {
    if (!window_)
        return;
    // Usually asked for from inside the window's own events, and hiding it brings another one about.
    SavePopoverWindow* window = window_.release();
    window->hide();
    window->deleteLater();
}

void QtSavePopover::place(const std::optional<Rect>& beside) {
    const QRect anchor = beside ? QRectF(beside->x, beside->y, beside->width, beside->height).toRect()
                                : QRect(QCursor::pos(), QSize(1, 1));
    QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (screen)
        window_->move(
            popoverPosition(anchor, window_->size(), screen->geometry(), screen->availableGeometry()));
}

} // namespace tavrin
