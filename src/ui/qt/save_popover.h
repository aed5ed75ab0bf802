#pragma once

#include "base/geometry.h"
#include "ports/runtime.h"
#include "ui/save_popover.h"

#include <QRect>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tavrin {

/// Where a popover of that size stands: beside `anchor`, away from the edge of the screen that the anchor
/// is nearest to, centred on it, and moved as far as needed to lie inside `available`. Everything in Qt's
/// desktop coordinates; the anchor may lie outside of `available`, as items of a panel do.
QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& screen, const QRect& available);

/// The form for saving a layout, drawn as a small window without decorations.
class SavePopoverWindow final : public QWidget {
public:
    /// `dismissed` is called when the user turns to another window.
    SavePopoverWindow(std::shared_ptr<SaveLayoutPopoverView> view, std::function<void()> dismissed);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void build();
    void nameChanged(const QString& name);
    void showState();
    int messageIconSide() const;
    void reserveSpaceForMessages(int messageWidth);
    void save();
    void cancel();

    std::shared_ptr<SaveLayoutPopoverView> view_;
    std::function<void()> dismissed_;
    QLineEdit* nameField_ = nullptr;
    QLabel* messageIcon_ = nullptr;
    QLabel* message_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* saveButton_ = nullptr;
};

/// The save-layout popover as a window of its own. It is an ordinary window to the window manager and not a
/// grabbing popup: a grab fails while the panel still holds the one of its menu, and would keep the screen
/// from being locked.
class QtSavePopover final : public PopoverSurface {
public:
    /// `anchor` answers where the status item stands, in Qt's desktop coordinates.
    QtSavePopover(ApplicationHost& host, std::function<std::optional<Rect>()> anchor);
    ~QtSavePopover() override;

    void show(std::shared_ptr<SaveLayoutPopoverView> view, std::optional<Rect> beside) override;
    void close() override;

private:
    void place(const std::optional<Rect>& beside);

    ApplicationHost& host_;
    std::function<std::optional<Rect>()> anchor_;
    std::unique_ptr<SavePopoverWindow> window_;
};

} // namespace tavrin
