#include "ui/qt/settings_window.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/notices.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"
#include "ui/qt/panes/advanced_pane_widget.h"
#include "ui/qt/panes/apps_pane_widget.h"
#include "ui/qt/panes/automation_pane_widget.h"
#include "ui/qt/panes/layouts_pane_widget.h"
#include "ui/qt/panes/shortcuts_pane_widget.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QListWidget>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QVBoxLayout>

namespace tavrin {
namespace {

constexpr QSize contentSize(820, 620);
constexpr QSize smallestSize(760, 560);
constexpr int columnWidth = 720; ///< lines that are longer are hard to read
constexpr int sideMargin = 28;

class SideListDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int width = option.fontMetrics.horizontalAdvance(index.data().toString());
        return {width + iconSide(option) + 48, option.fontMetrics.height() * 9 / 4};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool isSelected = option.state & QStyle::State_Selected;
        const QRectF row = QRectF(option.rect).adjusted(8, 2, -8, -2);
        // The colour of the chosen row tells whether the keyboard is here.
        const bool isAccented = isSelected && option.widget && option.widget->hasFocus();
        if (isSelected || option.state & QStyle::State_MouseOver) {
            QColor ground = option.palette.color(QPalette::Active, QPalette::WindowText);
            ground.setAlphaF(isSelected ? 0.14F : 0.06F);
            painter->setPen(Qt::NoPen);
            painter->setBrush(isAccented ? accentColor(option.palette) : ground);
            painter->drawRoundedRect(row, controlRadius, controlRadius);
        }
        const int side = iconSide(option);
        const QRect iconPlace = QStyle::visualRect(
            option.direction, option.rect,
            QRect(option.rect.left() + 18, option.rect.center().y() - side / 2, side, side));
        index.data(Qt::DecorationRole)
            .value<QIcon>()
            .paint(painter, iconPlace, Qt::AlignCenter, isAccented ? QIcon::Selected : QIcon::Normal);
        painter->setPen(isAccented ? accentTextColor(option.palette)
                                   : option.palette.color(QPalette::Active, QPalette::WindowText));
        const QRect textPlace =
            QStyle::visualRect(option.direction, option.rect, option.rect.adjusted(30 + side, 0, -12, 0));
        drawTextLine(*painter, textPlace, option.direction, Qt::AlignVCenter | Qt::AlignLeft,
                     index.data().toString());
        painter->restore();
    }

private:
    static int iconSide(const QStyleOptionViewItem& option) { return option.fontMetrics.height() * 5 / 4; }
};

std::unique_ptr<SettingsPaneWidget> makePane(SettingsPane pane, const SettingsCollaborators& collaborators,
                                             bool& isTroubleshootingExpanded,
                                             std::function<void()> showAdvancedPane) {
    switch (pane) {
    case SettingsPane::layouts:
        return std::make_unique<LayoutsPaneWidget>(collaborators, std::move(showAdvancedPane));
    case SettingsPane::automation:
        return std::make_unique<AutomationSettingsWidget>(collaborators);
    case SettingsPane::shortcuts:
        return std::make_unique<ShortcutsPaneWidget>(collaborators);
    case SettingsPane::apps:
        return std::make_unique<AppsPaneWidget>(collaborators);
    case SettingsPane::advanced:
        return std::make_unique<AdvancedPaneWidget>(collaborators, isTroubleshootingExpanded);
    }
    return nullptr;
}

QString titleOf(SettingsPane pane) {
    for (const SettingsPaneDescription& description : settingsPanes)
        if (description.pane == pane)
            return qText(description.title);
    return {};
}

QWidget* makeHeader(SettingsPane pane, SettingsPaneWidget& widget) {
    auto* header = new QWidget;
    auto* line = new QHBoxLayout(header);
    line->setContentsMargins(0, 0, 0, 0);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(makePaneTitle(titleOf(pane)));
    if (const QString description = widget.description(); !description.isEmpty())
        texts->addWidget(makeText(description, TextRole::secondary));
    line->addLayout(texts, 1);
    if (QWidget* control = widget.makeHeaderControl())
        line->addWidget(control, 0, Qt::AlignTop);
    return header;
}

} // namespace

QtSettingsWindow::QtSettingsWindow(const SettingsCollaborators& collaborators)
    : QWidget(nullptr, Qt::Window), collaborators_(collaborators), troubles_(collaborators_) {
    setAccessibleRole(*this, QAccessible::Border); // which AT-SPI calls a frame
    setWindowTitle(QStringLiteral("Tavrin Settings"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* closeShortcut = new QShortcut(QKeySequence::Close, this);
    connect(closeShortcut, &QShortcut::activated, this, &QWidget::close);
    auto* undoShortcut = new QShortcut(QKeySequence::Undo, this);
    connect(undoShortcut, &QShortcut::activated, this, [this] {
        if (noticeBar_)
            noticeBar_->undo();
    });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { scrollTo(now); });
}

QtSettingsWindow::~QtSettingsWindow() {
    // The children go later, when this is a plain widget, and the focus moves with them.
    disconnect(qApp, nullptr, this, nullptr);
}

void QtSettingsWindow::show(SettingsPane pane, ResetNotice notice) {
    notice_ = notice;
    selectedPane_ = pane;
    isTroubleshootingExpanded_ = false;
    fill();
    fitIntoScreen();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    QWidget::show();
    raise();
    activateWindow();
    sideList_->setFocus();
}

bool QtSettingsWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::WindowActivate:
        if (pane_) {
            troubles_.refresh();
            pane_->appear();
        }
        break;
    case QEvent::ApplicationPaletteChange:
    case QEvent::ApplicationFontChange:
    case QEvent::StyleChange:
        refillSoon();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void QtSettingsWindow::keyPressEvent(QKeyEvent* event) {
    if (pressFocusedControl(*event) || !scrollArea_)
        return;
    // Keys that no control uses scroll the pane, so that every text can be read without a mouse.
    QScrollBar* bar = scrollArea_->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Up:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
    case Qt::Key_Down:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    case Qt::Key_PageUp:
        return bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    case Qt::Key_PageDown:
        return bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    default:
        QWidget::keyPressEvent(event);
    }
}

void QtSettingsWindow::showPane(SettingsPane pane) {
    // Not from within the button that was pressed, which goes with its pane.
    QTimer::singleShot(0, sideList_, [this, pane] {
        sideList_->setCurrentRow(static_cast<int>(pane));
        sideList_->setFocus();
    });
}

void QtSettingsWindow::scrollTo(QWidget* focused) {
    // A click is where the pointer is; scrolling would take the button away from under it.
    if (!focused || !scrollArea_ || QApplication::mouseButtons() != Qt::NoButton ||
        !scrollArea_->widget()->isAncestorOf(focused))
        return;
    scrollArea_->ensureWidgetVisible(focused, 0, 16);
}

void QtSettingsWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    delete std::exchange(content_, nullptr);
    pane_ = nullptr;
    page_ = nullptr;
    scrollArea_ = nullptr;
    noticeBar_ = nullptr;
    callCopy(onClose_);
}

void QtSettingsWindow::fill() {
    delete content_;
    page_ = nullptr;
    scrollArea_ = nullptr;
    pane_ = nullptr;
    content_ = new QWidget;
    buildSideList();
    auto* line = new QWidget;
    line->setFixedWidth(1);
    line->setAutoFillBackground(true);
    QPalette linePalette = line->palette();
    linePalette.setColor(QPalette::Window, lineColor(palette()));
    line->setPalette(linePalette);

    auto* columns = new QHBoxLayout(content_);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    auto* side = new QVBoxLayout;
    side->setContentsMargins(0, 12, 0, 12);
    side->addWidget(sideList_);
    columns->addLayout(side);
    columns->addWidget(line);
    pageColumn_ = new QVBoxLayout;
    columns->addLayout(pageColumn_, 1);
    pageColumn_->setContentsMargins(0, 0, 0, 0);
    pageColumn_->setSpacing(0);
    if (notice_ == ResetNotice::shown)
        pageColumn_->addWidget(makeNotice());
    noticeBar_ = new NoticeBar(collaborators_.layoutChanges);
    auto* noticeColumn = new QHBoxLayout;
    noticeColumn->setContentsMargins(sideMargin, 0, sideMargin, 0);
    noticeColumn->addWidget(noticeBar_);
    noticeBar_->setMaximumWidth(columnWidth);
    pageColumn_->addLayout(noticeColumn);
    pageColumn_->addSpacing(10);
    layout()->addWidget(content_);
    troubles_.refresh();
    showSelectedPane();
}

void QtSettingsWindow::refillSoon() {
    // A change of the desktop's look arrives in several parts.
    if (!content_ || isRefillPending_)
        return;
    isRefillPending_ = true;
    QTimer::singleShot(0, this, [this] {
        isRefillPending_ = false;
        if (!content_)
            return;
        fill();
        sideList_->setFocus();
    });
}

void QtSettingsWindow::fitIntoScreen() {
    const QScreen* screen = isVisible() ? this->screen() : QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    // The frame has to fit, too; before the window has one, it is taken for a usual one.
    const QSize frame = hasBeenShown_ ? frameGeometry().size() - size() : QSize(12, 40);
    const QSize largest = available.size() - frame;
    setMinimumSize(smallestSize.boundedTo(largest));
    resize((hasBeenShown_ ? size() : contentSize).boundedTo(largest));
    hasBeenShown_ = true;
    move(available.center() - QPoint((width() + frame.width()) / 2, (height() + frame.height()) / 2));
}

void QtSettingsWindow::buildSideList() {
    sideList_ = new QListWidget;
    sideList_->setAccessibleName(QStringLiteral("Settings panes"));
    sideList_->setItemDelegate(new SideListDelegate(sideList_));
    sideList_->setFrameShape(QFrame::NoFrame);
    sideList_->setMouseTracking(true);
    sideList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    sideList_->viewport()->setAutoFillBackground(false);
    for (const SettingsPaneDescription& description : settingsPanes) {
        auto* item = new QListWidgetItem(symbolIcon(qText(description.symbol)), qText(description.title));
        item->setData(Qt::UserRole, static_cast<int>(description.pane));
        sideList_->addItem(item);
        if (description.pane == selectedPane_)
            sideList_->setCurrentItem(item);
    }
    sideList_->setFixedWidth(std::max(180, sideList_->sizeHintForColumn(0) + 24));
    connect(sideList_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        if (!item)
            return;
        selectedPane_ = static_cast<SettingsPane>(item->data(Qt::UserRole).toInt());
        showSelectedPane();
    });
}

QWidget* QtSettingsWindow::makeNotice() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(12);
    auto* icon = new QLabel;
    const int side = fontMetrics().height() * 5 / 4;
    icon->setPixmap(
        symbolIcon(QStringLiteral("info.circle.fill"), palette().color(QPalette::Active, QPalette::Highlight))
            .pixmap(QSize(side, side), devicePixelRatioF()));
    line->addWidget(icon, 0, Qt::AlignTop);
    line->addWidget(makeText(QStringLiteral(
                        "Beta data was reset on this launch. Profiles, layouts, and settings start fresh.")),
                    1);
    auto* group = new SettingsGroup;
    group->addRow(row);
    auto* notice = new QWidget;
    auto* margins = new QVBoxLayout(notice);
    margins->setContentsMargins(sideMargin, 18, sideMargin, 0);
    margins->addWidget(group);
    return notice;
}

QWidget* QtSettingsWindow::makePage() {
    auto pane = makePane(selectedPane_, collaborators_, isTroubleshootingExpanded_,
                         [this] { showPane(SettingsPane::advanced); });
    pane_ = pane.get();

    // The header stays in sight while the pane scrolls.
    auto* page = new QWidget;
    auto* lines = new QVBoxLayout(page);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    auto* header = makeHeader(selectedPane_, *pane);
    header->setMaximumWidth(columnWidth);
    auto* headerLine = new QHBoxLayout;
    headerLine->setContentsMargins(sideMargin, 22, sideMargin, 12);
    headerLine->addWidget(header);
    lines->addLayout(headerLine);

    TroubleBanners::Callbacks callbacks;
    if (selectedPane_ != SettingsPane::advanced)
        callbacks.showAdvancedPane = [this] { showPane(SettingsPane::advanced); };
    auto* column = new QWidget;
    column->setMaximumWidth(columnWidth);
    auto* rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(20);
    rows->addWidget(new TroubleBanners(troubles_, std::move(callbacks)));
    rows->addWidget(pane.release(), 1);

    auto* body = new QWidget;
    auto* centring = new QHBoxLayout(body);
    centring->setContentsMargins(sideMargin, 6, sideMargin, 26);
    centring->addWidget(column);

    scrollArea_ = new QScrollArea;
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setWidgetResizable(true);
    scrollArea_->setFocusPolicy(Qt::NoFocus);
    scrollArea_->setWidget(body);
    QScrollBar* scrollBar = scrollArea_->verticalScrollBar();
    scrollBar->setStyleSheet(scrollBarStyle(palette()));
    // The content keeps its width when the bar comes and goes.
    connect(scrollBar, &QScrollBar::rangeChanged, centring, [centring](int least, int most) {
        const int taken = most > least ? scrollBarWidth : 0;
        centring->setContentsMargins(sideMargin, 6, sideMargin - taken, 26);
    });
    scrollArea_->viewport()->setAutoFillBackground(false);
    body->setAutoFillBackground(false);
    lines->addWidget(scrollArea_, 1);
    return page;
}

void QtSettingsWindow::showSelectedPane() {
    delete page_;
    page_ = makePage();
    pageColumn_->insertWidget(pageColumn_->count() - 2, page_, 1);
    // At once, or keys that are pressed right now would find no control yet.
    page_->show();
    pane_->appear();
    followLayoutWithTab(*this);
}

} // namespace tavrin
