#include "ui/qt/controls/name_editor.h"

#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/labels.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace tavrin {

NameEditor::NameEditor(const QString& name, const QFont& font, const QString& what, Callbacks callbacks)
    : name_(name), callbacks_(std::move(callbacks)), label_(makeText(name)), field_(new TextField(what)),
      message_(makeText({}, TextRole::warning)) {
    label_->setFont(font);
    // Nothing below moves when the field comes and goes: a click that ends the editing meets its button.
    label_->setMinimumHeight(field_->minimumHeight());
    label_->setAlignment(Qt::AlignVCenter);
    field_->installEventFilter(this);
    field_->hide();
    message_->hide();
    connect(field_, &QLineEdit::textChanged, this, [this] { showMessage(); });
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(3);
    rows->addWidget(label_);
    rows->addWidget(field_);
    rows->addWidget(message_);
}

bool NameEditor::isEditing() const {
    return !field_->isHidden();
}

void NameEditor::setName(const QString& name) {
    name_ = name;
    label_->setText(name);
}

void NameEditor::startEditing() {
    label_->hide();
    field_->setText(name_);
    field_->show();
    field_->setFocus();
    field_->selectAll();
    showMessage();
}

bool NameEditor::eventFilter(QObject* object, QEvent* event) {
    if (!isEditing())
        return QWidget::eventFilter(object, event);
    if (event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            commit(OnRefusal::keepEditing);
            return true;
        case Qt::Key_Escape:
            stopEditing();
            return true;
        default:
            break;
        }
    }
    // The field's own menu and another window in front do not end the editing.
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            commit(OnRefusal::discard);
    }
    return QWidget::eventFilter(object, event);
}

void NameEditor::mouseDoubleClickEvent(QMouseEvent* event) {
    if (isEditing())
        QWidget::mouseDoubleClickEvent(event);
    else
        startEditing();
}

void NameEditor::commit(OnRefusal onRefusal) {
    const std::string text = field_->text().toStdString();
    const bool isRefused = callbacks_.refusal(text).has_value();
    if (isRefused && onRefusal == OnRefusal::keepEditing)
        return;
    stopEditing();
    if (!isRefused)
        callbacks_.rename(text);
}

void NameEditor::stopEditing() {
    const bool hadFocus = field_->hasFocus();
    field_->hide();
    message_->hide();
    label_->show();
    if (hadFocus && focusAfterEditing_)
        focusAfterEditing_->setFocus();
}

void NameEditor::showMessage() {
    const auto refusal = callbacks_.refusal(field_->text().toStdString());
    message_->setText(qText(refusal.value_or("")));
    message_->setVisible(refusal.has_value());
    field_->setAccessibleDescription(message_->text());
}

} // namespace tavrin
