#include "ui/qt/controls/question_sheet.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/style.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tavrin {
namespace {

constexpr int cardMargin = 20;
constexpr int cardCharacters = 62;

class Card final : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(lineColor(palette()), 1));
        painter.setBrush(groupColor(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
    }
};

} // namespace

QuestionSheet::QuestionSheet(QWidget& window, const DeletionQuestion& question,
                             std::function<void()> confirmed)
    : QWidget(&window), confirmed_(std::move(confirmed)), formerFocus_(QApplication::focusWidget()),
      cancel_(new ActionButton(QStringLiteral("Cancel"))),
      confirm_(new ActionButton(qText(question.confirmLabel), ActionButton::Role::destructive)) {
    auto* card = new Card;
    auto* lines = new QVBoxLayout(card);
    lines->setContentsMargins(cardMargin, cardMargin, cardMargin, cardMargin);
    lines->setSpacing(8);
    lines->addWidget(makeSectionTitle(qText(question.title)));
    lines->addWidget(makeText(qText(question.message), TextRole::secondary));
    lines->addSpacing(10);
    lines->addWidget(makeAnswerLine(confirm_, cancel_));
    card->setFixedWidth(qMin(fontMetrics().averageCharWidth() * cardCharacters, window.width() - 40));
    auto* centring = new QVBoxLayout(this);
    centring->addWidget(card, 0, Qt::AlignCenter);

    setAccessibleRole(*this, QAccessible::Dialog);
    // A screen reader tells the question with the button that gets the focus.
    setAccessibleName(qText(question.title));
    cancel_->setAccessibleDescription(qText(question.title + " " + question.message));
    connect(cancel_, &QPushButton::clicked, this, [this] { answer(false); });
    connect(confirm_, &QPushButton::clicked, this, [this] { answer(true); });

    window.installEventFilter(this);
    setGeometry(window.rect());
    show();
    raise();
    cancel_->setFocus();
}

void QuestionSheet::answer(bool isConfirmed) {
    const auto confirmed = std::exchange(confirmed_, nullptr);
    hide();
    deleteLater();
    if (formerFocus_)
        formerFocus_->setFocus();
    if (isConfirmed && confirmed)
        confirmed();
}

bool QuestionSheet::eventFilter(QObject* object, QEvent* event) {
    if (object == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(object, event);
}

bool QuestionSheet::focusNextPrevChild(bool) {
    (cancel_->hasFocus() ? confirm_ : cancel_)->setFocus(Qt::TabFocusReason);
    return true;
}

void QuestionSheet::keyPressEvent(QKeyEvent* event) {
    // Keys do not reach what the sheet covers.
    if (event->key() == Qt::Key_Escape)
        answer(false);
    else
        pressFocusedControl(*event);
    event->accept();
}

void QuestionSheet::mousePressEvent(QMouseEvent*) {}

void QuestionSheet::wheelEvent(QWheelEvent* event) {
    event->accept();
}

void QuestionSheet::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), QColor(0, 0, 0, 110));
}

} // namespace tavrin
