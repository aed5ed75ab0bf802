#include "ui/qt/controls/settings_group.h"

#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/style.h"

#include <QMouseEvent>
#include <QPainter>

#include <vector>

namespace tavrin {
namespace {

class SwitchRow final : public QWidget {
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
        if (widget->focusPolicy() & Qt::TabFocus)
            stops.push_back(widget);
        if (const QLayout* inner = widget->layout())
            collectTabStops(*inner, stops);
    }
}

void fillRow(QWidget& row, const QString& title, const QString& subtitle, QWidget* control) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    auto* label = makeText(title);
    texts->addWidget(label);
    if (!subtitle.isEmpty())
        texts->addWidget(makeText(subtitle, TextRole::secondary));
    auto* line = new QHBoxLayout(&row);
    setRowMargins(*line);
    line->setSpacing(16);
    line->addLayout(texts, 1);
    if (control) {
        label->nameControl(control);
        if (!subtitle.isEmpty() && control->accessibleDescription().isEmpty())
            control->setAccessibleDescription(subtitle);
        line->addWidget(control, 0, Qt::AlignVCenter);
    }
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

QWidget* makeRow(const QString& title, const QString& subtitle, QWidget* control) {
    auto* row = new QWidget;
    fillRow(*row, title, subtitle, control);
    return row;
}

QWidget* makeSwitchRow(const QString& title, const QString& subtitle, SwitchControl* control) {
    auto* row = new SwitchRow(control);
    fillRow(*row, title, subtitle, control);
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
