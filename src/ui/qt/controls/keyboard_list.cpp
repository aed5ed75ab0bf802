#include "ui/qt/controls/keyboard_list.h"

#include "base/token.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>

#include <algorithm>

namespace tavrin {
namespace {

constexpr std::uint64_t typingPause = 1000; ///< milliseconds; after it a new word begins

} // namespace

void FocusRow::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void FocusRow::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

void FocusRow::keyPressEvent(QKeyEvent* event) {
    const int key = event->key() == Qt::Key_Enter ? Qt::Key_Return : event->key();
    const auto action = actions_.find(key);
    const bool isPress = key == Qt::Key_Return || key == Qt::Key_Space;
    if (action == actions_.end() || (isPress && !hasFocus()))
        QWidget::keyPressEvent(event);
    else
        callCopy(action->second);
}

void FocusRow::paintEvent(QPaintEvent*) {
    if (!hasFocus())
        return;
    QPainter painter(this);
    drawFocusRing(painter, QRectF(rect()).adjusted(2, 2, -2, -2), groupRadius - 2, palette());
}

void KeyboardList::setRows(std::vector<Row> rows) {
    const QWidget* before = current();
    rows_.clear();
    for (Row& row : rows) {
        Watched watched{row.widget, std::move(row.text), {}, std::move(row.keepsKeys)};
        row.widget->removeEventFilter(this);
        row.widget->installEventFilter(this);
        for (QWidget* control : row.controls) {
            control->removeEventFilter(this);
            control->installEventFilter(this);
            control->setFocusPolicy(Qt::ClickFocus);
            watched.controls.emplace_back(control);
        }
        rows_.push_back(std::move(watched));
    }
    const int kept = rowOf(before);
    const int last = static_cast<int>(rows_.size()) - 1;
    makeCurrent(kept >= 0 ? kept : std::min(std::max(current_, 0), last));
}

QWidget* KeyboardList::current() const {
    return current_ >= 0 && current_ < static_cast<int>(rows_.size())
               ? rows_[static_cast<std::size_t>(current_)].widget.data()
               : nullptr;
}

void KeyboardList::setCurrent(const QWidget* widget) {
    if (const int index = rowOf(widget); index >= 0)
        makeCurrent(index);
}

bool KeyboardList::hasFocus() const {
    return rowOf(QApplication::focusWidget()) >= 0;
}

bool KeyboardList::contains(const Watched& row, const QObject* object) const {
    return row.widget == object ||
           std::ranges::any_of(row.controls, [&](const auto& control) { return control == object; });
}

int KeyboardList::rowOf(const QObject* object) const {
    const auto found =
        std::ranges::find_if(rows_, [&](const Watched& row) { return object && contains(row, object); });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void KeyboardList::makeCurrent(int index) {
    current_ = index;
    for (int i = 0; i < static_cast<int>(rows_.size()); ++i)
        if (QWidget* widget = rows_[static_cast<std::size_t>(i)].widget)
            widget->setFocusPolicy(i == index ? Qt::StrongFocus : Qt::ClickFocus);
}

void KeyboardList::focusRow(int index) {
    if (rows_.empty())
        return;
    makeCurrent(std::clamp(index, 0, static_cast<int>(rows_.size()) - 1));
    current()->setFocus(Qt::TabFocusReason);
}

bool KeyboardList::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        if (const int index = rowOf(object); index >= 0 && index != current_)
            makeCurrent(index);
    } else if (event->type() == QEvent::KeyPress && rowOf(object) >= 0) {
        return handleKey(*object, *static_cast<QKeyEvent*>(event));
    }
    return false;
}

bool KeyboardList::handleKey(const QObject& object, const QKeyEvent& event) {
    const auto& keepsKeys = rows_[static_cast<std::size_t>(rowOf(&object))].keepsKeys;
    if ((keepsKeys && keepsKeys()) || event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier))
        return false;
    const auto* widget = qobject_cast<const QWidget*>(&object);
    const bool isLeftToRight = !widget || widget->layoutDirection() == Qt::LeftToRight;
    switch (event.key()) {
    case Qt::Key_Up:
        focusRow(current_ - 1);
        return true;
    case Qt::Key_Down:
        focusRow(current_ + 1);
        return true;
    case Qt::Key_Home:
        focusRow(0);
        return true;
    case Qt::Key_End:
        focusRow(static_cast<int>(rows_.size()) - 1);
        return true;
    case Qt::Key_PageUp:
        focusRow(pageAway(-1));
        return true;
    case Qt::Key_PageDown:
        focusRow(pageAway(1));
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        return moveWithin(object, (event.key() == Qt::Key_Right) == isLeftToRight);
    default:
        return findTyped(event);
    }
}

bool KeyboardList::moveWithin(const QObject& object, bool isForward) {
    std::vector<QWidget*> stops = {current()};
    for (const auto& control : rows_[static_cast<std::size_t>(current_)].controls)
        if (control && control->isVisible() && control->isEnabled())
            stops.push_back(control);
    const auto here = std::ranges::find(stops, &object, [](QWidget* stop) -> const QObject* { return stop; });
    const auto place = here - stops.begin() + (isForward ? 1 : -1);
    if (place >= 0 && place < static_cast<std::ptrdiff_t>(stops.size()))
        stops[static_cast<std::size_t>(place)]->setFocus(Qt::TabFocusReason);
    return true;
}

int KeyboardList::pageAway(int direction) const {
    const QWidget* area = current();
    while (area && !qobject_cast<const QScrollArea*>(area))
        area = area->parentWidget();
    const int page = area ? area->height() : 0;
    const auto top = [&](int index) {
        const QWidget* widget = rows_[static_cast<std::size_t>(index)].widget;
        return widget->mapToGlobal(QPoint(0, 0)).y();
    };
    int index = current_;
    for (int next = index + direction; next >= 0 && next < static_cast<int>(rows_.size());
         next += direction) {
        index = next;
        if (std::abs(top(next) - top(current_)) + rows_[static_cast<std::size_t>(next)].widget->height() >=
            page)
            break;
    }
    return index;
}

bool KeyboardList::findTyped(const QKeyEvent& event) {
    const QString text = event.text();
    const bool continues = !typed_.isEmpty() && event.timestamp() - typedAt_ < typingPause;
    if (text.isEmpty() || !text.front().isPrint() || (text.front().isSpace() && !continues))
        return false;
    typed_ = continues ? typed_ + text : text;
    typedAt_ = event.timestamp();
    // One letter leads to the next row with it; more of them refine the word.
    const int count = static_cast<int>(rows_.size());
    for (int step = typed_.size() > 1 ? 0 : 1; step <= count; ++step) {
        const int index = (current_ + step) % count;
        if (rows_[static_cast<std::size_t>(index)].text.startsWith(typed_, Qt::CaseInsensitive)) {
            focusRow(index);
            break;
        }
    }
    return true;
}

} // namespace tavrin
