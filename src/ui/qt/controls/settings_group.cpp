#include "ui/qt/controls/settings_group.h"

#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/style.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>

#include <vector>

namespace tavrin {
namespace {

constexpr int leastTextCharacters = 22; ///< beside a control; a narrower text stands above it

class SwitchRow final : public StackingRow {
public:
    explicit SwitchRow(SwitchControl* control) : control_(control) {}

protected:
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
            control_->click();
    }

private:
    SwitchControl* control_;
};

void collectTabStops(const QLayout& layout, std::vector<QWidget*>& stops) {
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* item = layout.itemAt(i);
        if (const QLayout* inner = item->layout())
            collectTabStops(*inner, stops);
        QWidget* widget = item->widget();
        if (!widget)
            continue;
        if (widget->focusPolicy() != Qt::NoFocus)
            stops.push_back(widget);
        if (const auto* area = qobject_cast<QScrollArea*>(widget))
            widget = area->widget();
        if (const QLayout* inner = widget ? widget->layout() : nullptr)
            collectTabStops(*inner, stops);
    }
}

void fillRow(StackingRow& row, const QString& title, QLabel* subtitle, QWidget* control) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    auto* label = makeText(title);
    texts->addWidget(label);
    if (subtitle)
        texts->addWidget(subtitle);
    if (control) {
        label->nameControl(control);
        if (subtitle && control->accessibleDescription().isEmpty())
            control->setAccessibleDescription(subtitle->text());
    }
    row.fill(texts, control);
}

QLabel* subtitleOf(const QString& text) {
    return text.isEmpty() ? nullptr : makeText(text, TextRole::secondary);
}

} // namespace

SettingsGroup::SettingsGroup(Frame frame) : rows_(new QVBoxLayout(this)), frame_(frame) {
    const int line = frame == Frame::rounded ? 1 : 0;
    rows_->setContentsMargins(line, line, line, line);
    rows_->setSpacing(1);
}

void SettingsGroup::addRow(QWidget* row) {
    rows_->addWidget(row);
    row->show();
}

void SettingsGroup::setRows(const std::vector<QWidget*>& rows) {
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
        QWidget* row = rows[static_cast<std::size_t>(i)];
        if (QLayoutItem* there = rows_->itemAt(i); there && there->widget() == row)
            continue;
        rows_->removeWidget(row);
        rows_->insertWidget(i, row);
        row->show();
    }
    while (rows_->count() > static_cast<int>(rows.size()))
        delete rows_->takeAt(rows_->count() - 1);
}

void SettingsGroup::clear() {
    while (QLayoutItem* item = rows_->takeAt(0)) {
        // The row may be the one whose button is being clicked.
        if (QWidget* row = item->widget()) {
            row->hide();
            row->deleteLater();
        }
        delete item;
    }
}

void SettingsGroup::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (frame_ == Frame::rounded) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(lineColor(palette()), 1));
        painter.setBrush(groupColor(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), groupRadius, groupRadius);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
    bool isFirst = true;
    for (int i = 0; i < rows_->count(); ++i) {
        const QWidget* row = rows_->itemAt(i)->widget();
        if (!row || row->isHidden())
            continue;
        if (!isFirst)
            painter.fillRect(QRect(rowMargin, row->y() - 1, width() - 2 * rowMargin, 1),
                             lineColor(palette()));
        isFirst = false;
    }
}

void StackingRow::fill(QLayout* texts, QWidget* control) {
    parts_ = new QHBoxLayout(this);
    setRowMargins(*parts_);
    parts_->setSpacing(16);
    parts_->addLayout(texts, 1);
    control_ = control;
    if (control)
        parts_->addWidget(control, 0, Qt::AlignVCenter);
}

void StackingRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (!control_)
        return;
    const int left = width() - 2 * rowMargin - parts_->spacing() - control_->sizeHint().width();
    const bool isNarrow = left < fontMetrics().averageCharWidth() * leastTextCharacters;
    parts_->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    parts_->setAlignment(control_, isNarrow ? Qt::AlignLeft : Qt::AlignVCenter);
    parts_->setSpacing(isNarrow ? 6 : 16);
}

QSize StackingRow::minimumSizeHint() const {
    // What stands side by side now fits one above the other.
    const QSize whole = QWidget::minimumSizeHint();
    return {std::min(whole.width(), control_ ? control_->sizeHint().width() + 2 * rowMargin : whole.width()),
            whole.height()};
}

QWidget* makeRow(const QString& title, const QString& subtitle, QWidget* control) {
    return makeRow(title, subtitleOf(subtitle), control);
}

QWidget* makeRow(const QString& title, QLabel* subtitle, QWidget* control) {
    auto* row = new StackingRow;
    fillRow(*row, title, subtitle, control);
    return row;
}

QWidget* makeSwitchRow(const QString& title, const QString& subtitle, SwitchControl* control) {
    auto* row = new SwitchRow(control);
    fillRow(*row, title, subtitleOf(subtitle), control);
    return row;
}

QWidget* makeNoteRow(const QString& text) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->addWidget(makeText(text, TextRole::secondary));
    return row;
}

void setRowMargins(QLayout& layout) {
    layout.setContentsMargins(rowMargin, 10, rowMargin, 10);
}

void addSection(QVBoxLayout& sections, const QString& title, const QString& explanation, QWidget* content) {
    if (sections.count() > 0)
        sections.addSpacing(22);
    if (!title.isEmpty()) {
        sections.addWidget(makeSectionTitle(title));
        sections.addSpacing(explanation.isEmpty() ? 8 : 3);
    }
    if (!explanation.isEmpty()) {
        sections.addWidget(makeText(explanation, TextRole::secondary));
        sections.addSpacing(8);
    }
    sections.addWidget(content);
}

void followLayoutWithTab(QWidget& root) {
    std::vector<QWidget*> stops;
    if (const QLayout* layout = root.layout())
        collectTabStops(*layout, stops);
    for (std::size_t i = 1; i < stops.size(); ++i)
        QWidget::setTabOrder(stops[i - 1], stops[i]);
}

} // namespace tavrin
