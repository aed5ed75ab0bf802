#include "ui/qt/controls/labels.h"

#include "ui/qt/controls/style.h"

#include <QPainter>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

constexpr int preferredCharacters = 60;
constexpr int leastCharacters = 8;

QFont scaled(QFont font, double factor) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
    return font;
}

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

Badge::Badge(const QString& text, Ground ground) : QLabel(text), ground_(ground) {
    setTextFormat(Qt::PlainText);
    setContentsMargins(8, 2, 8, 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Badge::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
    painter.setBrush(ground_ == Ground::plain ? badgeColor(palette())
                                              : mixedColor(groupColor(palette()), accent, 0.28));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    QLabel::paintEvent(event);
}

TextLabel* makeText(const QString& text, TextRole role) {
    auto* label = new TextLabel(text);
    if (role != TextRole::ordinary) {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText,
                         role == TextRole::secondary ? secondaryTextColor(palette) : warningColor(palette));
        label->setPalette(palette);
    }
    return label;
}

TextLabel* makeSectionTitle(const QString& text) {
    auto* label = makeText(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

TextLabel* makePaneTitle(const QString& text) {
    auto* label = makeSectionTitle(text);
    label->setFont(scaled(label->font(), 1.5));
    return label;
}

} // namespace tavrin
