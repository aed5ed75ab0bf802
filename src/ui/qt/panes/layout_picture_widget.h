#pragma once

#include "ui/layout_picture.h"

#include <QIcon>
#include <QWidget>

#include <functional>

namespace tavrin {

/// Draws the displays of a layout to scale with the windows as labelled rectangles. The tool tip tells which
/// window the pointer is on.
class LayoutPictureWidget final : public QWidget {
public:
    /// `iconOf` gives the icon of an application; a null icon where there is none.
    explicit LayoutPictureWidget(std::function<QIcon(const std::string&)> iconOf);

    void setPicture(LayoutPicture picture);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where a rectangle of the picture lies in the widget.
    QRectF placed(const Rect& rect) const;
    void drawScreenName(QPainter& painter, const LayoutPicture::Screen& screen) const;
    void drawWindow(QPainter& painter, const LayoutPicture::Window& window, const QIcon& icon) const;
    void drawLabel(QPainter& painter, const QRectF& space, const QString& label, const QIcon& icon) const;

    LayoutPicture picture_;
    std::function<QIcon(const std::string&)> iconOf_;
};

} // namespace tavrin
