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
    LayoutPictureWidget(LayoutPicture picture, const std::function<QIcon(const std::string&)>& iconOf);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where a rectangle of the picture lies in the widget.
    QRectF placed(const Rect& rect) const;
    void drawWindow(QPainter& painter, const LayoutPicture::Window& window, const QIcon& icon) const;
    void drawLabel(QPainter& painter, const QRectF& space, const QString& label, const QIcon& icon) const;

    LayoutPicture picture_;
    std::vector<QIcon> icons_; ///< one per window of the picture
};

} // namespace tavrin
