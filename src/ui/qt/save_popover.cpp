#include "ui/qt/save_popover.h"

#include "base/text.h"
#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/style.h"

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>
#include <vector>

namespace tavrin {
namespace {

constexpr int gap = 6; ///< to the anchor and to the edges of the screen

int inside(int position, int extent, int from, int length) {
    // What does not fit shows its beginning.
    return std::max(from, std::min(position, from + length - extent));
}

} // namespace

QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& screen, const QRect& available) {
    const int above = anchor.top() - screen.top();
    const int below = screen.bottom() - anchor.bottom();
    const int left = anchor.left() - screen.left();
    const int right = screen.right() - anchor.right();

    int x = anchor.center().x() - size.width() / 2;
    int y = anchor.center().y() - size.height() / 2;
    if (std::min(above, below) <= std::min(left, right))
        y = above <= below ? anchor.bottom() + 1 + gap : anchor.top() - gap - size.height();
    else
        x = left <= right ? anchor.right() + 1 + gap : anchor.left() - gap - size.width();
    const QRect space = available.adjusted(gap, gap, -gap, -gap);
    return {inside(x, size.width(), space.left(), space.width()),
            inside(y, size.height(), space.top(), space.height())};
}

namespace {

constexpr int cornerRadius = 8;
constexpr int margin = 16;
constexpr int messageSpacing = 5;

QLabel* makeLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

void setTextColor(QWidget& widget, const QColor& color) {
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, color);
    widget.setPalette(palette);
}

/// Every text that the form may show, so that there is room for it from the start.
std::vector<QString> possibleMessages() {
    const std::string longName(4096, 'x');
    SaveLayoutPopoverView form({longName}, {}, {});
    std::vector<QString> messages = {QString::fromStdString(form.errorMessage().value_or(""))};
    form.setLayoutName(longName);
    messages.push_back(QString::fromStdString(form.errorMessage().value_or("")));
    messages.push_back(QString::fromStdString(form.notice().value_or("")));
    return messages;
}

} // namespace

SavePopoverWindow::SavePopoverWindow(std::shared_ptr<SaveLayoutPopoverView> view,
                                     std::function<void()> dismissed)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), view_(std::move(view)),
      dismissed_(std::move(dismissed)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Save Layout"));
    setAccessibleRole(*this, QAccessible::Dialog);
    build();
    nameField_->setText(QString::fromStdString(view_->layoutName()));
    showState();

    const int width =
        std::max(static_cast<int>(SaveLayoutPopoverView::contentSize.width), layout()->minimumSize().width());
    reserveSpaceForMessages(width - 2 * margin - messageIconSide() - messageSpacing);
    const int height = std::max(static_cast<int>(SaveLayoutPopoverView::contentSize.height),
                                layout()->minimumHeightForWidth(width));
    setFixedSize(width, height);
}

void SavePopoverWindow::build() {
    auto* header = makeLabel(windowTitle());
    QFont headerFont = font();
    headerFont.setBold(true);
    if (headerFont.pointSizeF() > 0)
        headerFont.setPointSizeF(headerFont.pointSizeF() * 1.15);
    header->setFont(headerFont);

    auto* explanation = makeLabel(QString::fromUtf8(SaveLayoutPopoverView::explanation));
    setTextColor(*explanation, secondaryTextColor(palette()));

    nameField_ = new TextField(QStringLiteral("Layout name"));
    nameField_->setPlaceholderText(nameField_->accessibleName());
    connect(nameField_, &QLineEdit::textChanged, this, &SavePopoverWindow::nameChanged);

    messageIcon_ = new QLabel;
    message_ = makeLabel({});

    cancelButton_ = new ActionButton(QStringLiteral("Cancel"));
    saveButton_ = new ActionButton(QStringLiteral("Save"), ActionButton::Role::suggested);
    connect(cancelButton_, &QPushButton::clicked, this, &SavePopoverWindow::cancel);
    connect(saveButton_, &QPushButton::clicked, this, &SavePopoverWindow::save);

    auto* messageRow = new QHBoxLayout;
    messageRow->setSpacing(messageSpacing);
    messageRow->addWidget(messageIcon_, 0, Qt::AlignTop);
    messageRow->addWidget(message_, 1, Qt::AlignTop);

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(margin, margin - 4, margin, margin - 2);
    rows->setSpacing(0);
    rows->addWidget(header);
    rows->addSpacing(6);
    rows->addWidget(explanation);
    rows->addSpacing(12);
    rows->addWidget(nameField_);
    rows->addSpacing(5);
    rows->addLayout(messageRow);
    rows->addStretch();
    rows->addSpacing(6);
    rows->addWidget(makeAnswerLine(saveButton_, cancelButton_));

    setTabOrder(nameField_, saveButton_);
    setTabOrder(saveButton_, cancelButton_);
    setFocusProxy(nameField_);
}

void SavePopoverWindow::nameChanged(const QString& name) {
    view_->setLayoutName(name.toStdString());
    showState();
}

void SavePopoverWindow::showState() {
    const auto error = view_->errorMessage();
    const auto notice = view_->notice();
    const auto text = QString::fromStdString(error.value_or(notice.value_or("")));
    // An empty field is the start, not a mistake.
    const bool isMistake = error && !trimmed(view_->layoutName()).empty();
    const QColor color = isMistake ? warningColor(palette()) : secondaryTextColor(palette());

    if (isVisible() && message_->text() != text && (isMistake || notice))
        announce(*this, text);
    message_->setText(text);
    setTextColor(*message_, color);
    const bool hasIcon = isMistake || (!error && notice);
    messageIcon_->setVisible(hasIcon);
    if (hasIcon) {
        const auto name =
            isMistake ? QStringLiteral("exclamationmark.triangle.fill") : QStringLiteral("info.circle.fill");
        const int side = messageIconSide();
        messageIcon_->setPixmap(symbolIcon(name, color).pixmap(QSize(side, side), devicePixelRatioF()));
    }
    nameField_->setAccessibleDescription(text);
    saveButton_->setEnabled(view_->canSave());
    saveButton_->setToolTip(error ? text : QString());
}

int SavePopoverWindow::messageIconSide() const {
    return fontMetrics().height();
}

void SavePopoverWindow::reserveSpaceForMessages(int messageWidth) {
    int height = 0;
    for (const QString& text : possibleMessages())
        height = std::max(height,
                          fontMetrics().boundingRect(0, 0, messageWidth, 0, Qt::TextWordWrap, text).height());
    message_->setMinimumHeight(height);
}

void SavePopoverWindow::save() {
    view_->save();
}

void SavePopoverWindow::cancel() {
    view_->cancel();
}

void SavePopoverWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (cancelButton_->hasFocus())
            cancel();
        else
            save();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

bool SavePopoverWindow::event(QEvent* event) {
    // A menu of the name field is not another window.
    const bool leaves = event->type() == QEvent::WindowDeactivate && !QApplication::activePopupWidget();
    const bool handled = QWidget::event(event);
    if (leaves && isVisible())
        dismissed_();
    return handled;
}

void SavePopoverWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // Without a compositor nothing is translucent: the mask cuts off what lies outside of the round
    // corners, as well as whole points can.
    QPainterPath shape;
    shape.addRoundedRect(rect(), cornerRadius - 1, cornerRadius - 1);
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}

void SavePopoverWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor line =
        mixedColor(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.35);
    // What lies between the mask and the round corner would be black where nothing is translucent.
    painter.fillRect(rect(), line);
    painter.setPen(QPen(line, 1));
    painter.setBrush(palette().window());
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5,
                            cornerRadius - 0.5);
}

QtSavePopover::QtSavePopover(ApplicationHost& host, std::function<std::optional<Rect>()> anchor)
    : host_(host), anchor_(std::move(anchor)) {}

QtSavePopover::~QtSavePopover() = default;

void QtSavePopover::show(std::shared_ptr<SaveLayoutPopoverView> view, std::optional<Rect> beside) {
    close();
    window_ = std::make_unique<SavePopoverWindow>(std::move(view), [this] { close(); });
    place(beside ? beside : anchor_());
    window_->show();
    window_->setFocus();
    host_.activate();
}

void QtSavePopover::close() {
    if (!window_)
        return;
    // Usually asked for from inside the window's own events, and hiding it brings another one about.
    SavePopoverWindow* window = window_.release();
    window->hide();
    window->deleteLater();
}

void QtSavePopover::place(const std::optional<Rect>& beside) {
    const QRect anchor = beside ? QRectF(beside->x, beside->y, beside->width, beside->height).toRect()
                                : QRect(QCursor::pos(), QSize(1, 1));
    QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (screen)
        window_->move(
            popoverPosition(anchor, window_->size(), screen->geometry(), screen->availableGeometry()));
}

} // namespace tavrin
