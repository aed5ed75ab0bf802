#include "ui/qt/text_label.h"

#include <QPainter>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

constexpr int preferredCharacters = 60;
constexpr int leastCharacters = 8;

} // namespace

TextLabel::TextLabel(const QString& text) : QLabel(text) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

int TextLabel::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    QTextLayout layout(brokenText(), font());
    const double height = lay(layout, std::max(1, width - margins.left() - margins.right())).height();
    return static_cast<int>(std::ceil(height)) + margins.top() + margins.bottom();
}

QSize TextLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    QTextLayout layout(brokenText(), font());
    const QSizeF size = lay(layout, fontMetrics().averageCharWidth() * preferredCharacters);
    const QSize whole(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
    return whole.grownBy(margins);
}

QSize TextLabel::minimumSizeHint() const {
    const QSize wanted = sizeHint();
    return {std::min(wanted.width(), fontMetrics().averageCharWidth() * leastCharacters),
            std::min(wanted.height(), fontMetrics().height())};
}

void TextLabel::nameControl(QWidget* control) {
    const QString name = text();
    setText(QString(name).replace(QLatin1Char('&'), QLatin1String("&&")));
    setAccessibleName(name);
    setBuddy(control);
}

void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    const QRectF space = contentsRect();
    QTextLayout layout(brokenText(), font());
    const QSizeF size = lay(layout, space.width());
    const double spare = space.height() - size.height();
    const double top = alignment() & Qt::AlignVCenter ? spare / 2 : alignment() & Qt::AlignBottom ? spare : 0;
    layout.draw(&painter, {space.left(), space.top() + std::max(0.0, std::floor(top))});
}

QString TextLabel::shownText() const {
    return buddy() ? text().replace(QLatin1String("&&"), QLatin1String("&")) : text();
}

QString TextLabel::brokenText() const {
    return shownText().replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
}

QSizeF TextLabel::lay(QTextLayout& layout, double width) const {
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(layoutDirection());
    layout.setTextOption(option);
    QSizeF size(0, 0);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, size.height()});
        size = {std::max(size.width(), line.naturalTextWidth()), size.height() + line.height()};
    }
    layout.endLayout();
    return size;
}

} // namespace tavrin
