#include "ui/qt/panes/layout_card_widget.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/name_editor.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/panes/layout_picture_widget.h"
#include "ui/shortcuts_pane.h"

#include <QContextMenuEvent>
#include <QDateTime>
#include <QLocale>
#include <QMenu>

#include <algorithm>

namespace tavrin {
namespace {

constexpr int narrowWidth = 30; ///< in line heights

QDateTime dateTime(Timestamp time) {
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

QFont boldFont(QFont font) {
    font.setBold(true);
    return font;
}

} // namespace

LayoutCardWidget::LayoutCardWidget(Callbacks callbacks)
    : callbacks_(std::move(callbacks)), picture_(new LayoutPictureWidget(callbacks_.iconOf)),
      menu_(new QMenu(this)), parts_(new QHBoxLayout(this)) {
    setAccessibleRole(*this, QAccessible::ListItem);
    detail_ = makeText({}, TextRole::secondary);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(3);
    texts->addWidget(makeNameLine());
    texts->addWidget(detail_);
    texts->addWidget(makeReportLine());
    texts->addStretch(1);
    texts->addWidget(makeButtonLine());
    setRowMargins(*parts_);
    parts_->setSpacing(16);
    parts_->addWidget(picture_, 0, Qt::AlignVCenter | Qt::AlignLeft);
    parts_->addLayout(texts, 1);
    connect(menu_, &QMenu::aboutToShow, this, [this] { fillMenu(); });
    onKey(Qt::Key_Return, [this] { restore_->click(); });
    onKey(Qt::Key_Space, [this] { restore_->click(); });
    onKey(Qt::Key_F2, [this] { nameEditor_->startEditing(); });
    onKey(Qt::Key_Delete, callbacks_.askDelete);
}

QWidget* LayoutCardWidget::makeNameLine() {
    nameEditor_ = new NameEditor({}, boldFont(font()), QStringLiteral("Name of the layout"),
                                 {.refusal = callbacks_.nameRefusal, .rename = callbacks_.rename});
    nameEditor_->setFocusAfterEditing(this);
    defaultBadge_ = new Badge(QStringLiteral("Default"));
    defaultBadge_->setToolTip(QStringLiteral("Restored automatically on this display setup."));
    shortcutBadge_ = new Badge({});
    auto* content = new QWidget;
    auto* line = new QHBoxLayout(content);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(nameEditor_, 1);
    line->addWidget(defaultBadge_, 0, Qt::AlignVCenter);
    line->addWidget(shortcutBadge_, 0, Qt::AlignVCenter);
    return content;
}

QWidget* LayoutCardWidget::makeReportLine() {
    reportLine_ = new QWidget;
    report_ = makeText({});
    details_ = new ActionButton(QStringLiteral("Details"));
    details_->setToolTip(QStringLiteral("Shows the last restore attempt in full."));
    connect(details_, &QPushButton::clicked, this, [this] { callCopy(callbacks_.showDetails); });
    auto* line = new QHBoxLayout(reportLine_);
    line->setContentsMargins(0, 2, 0, 2);
    line->setSpacing(8);
    line->addWidget(report_, 1);
    line->addWidget(details_, 0, Qt::AlignTop);
    return reportLine_;
}

QWidget* LayoutCardWidget::makeButtonLine() {
    restore_ = new ActionButton(QStringLiteral("Restore"));
    connect(restore_, &QPushButton::clicked, this, [this] { callCopy(callbacks_.restore); });
    more_ = new SymbolButton(QStringLiteral("ellipsis"), {}, SymbolButton::Ground::always);
    more_->setToolTip(QStringLiteral("Update, rename, default, delete"));
    more_->setAccessibleDescription(QStringLiteral("Menu: update, rename, default, delete"));
    more_->setMenu(menu_);
    auto* content = new QWidget;
    auto* line = new QHBoxLayout(content);
    line->setContentsMargins(0, 4, 0, 0);
    line->setSpacing(8);
    line->addWidget(restore_);
    line->addWidget(more_);
    line->addStretch(1);
    return content;
}

void LayoutCardWidget::showCard(const LayoutCard& card, const QString& setupName) {
    const QString name = qText(card.name);
    setAccessibleName(QStringLiteral("%1, %2").arg(name, setupName));
    if (card_ == card)
        return;
    const bool isNewPicture = !card_ || card_->picture != card.picture;
    const bool isNewReport = card_ && card_->report != card.report;
    card_ = card;
    if (isNewPicture)
        picture_->setPicture(card.picture);
    nameEditor_->setName(name);
    restore_->setAccessibleName(QStringLiteral("Restore %1").arg(name));
    restore_->setEnabled(card.canRestore);
    more_->setAccessibleName(QStringLiteral("More for %1").arg(name));
    showTexts();
    if (isNewReport)
        announce(*this, report_->text());
}

void LayoutCardWidget::showTexts() {
    const QDateTime changed = dateTime(card_->updatedAt);
    const QString when = card_->age ? qText(*card_->age) : QLocale().toString(changed, QLocale::ShortFormat);
    detail_->setText(QStringLiteral("%1 · Changed %2").arg(qText(windowCountText(card_->windowCount)), when));
    detail_->setToolTip(QLocale().toString(changed, QLocale::LongFormat));
    defaultBadge_->setVisible(card_->isDefault);
    shortcutBadge_->setVisible(card_->shortcut.has_value());
    if (card_->shortcut) {
        const QString words = qText(shortcutInWords(*card_->shortcut));
        shortcutBadge_->setText(qText(card_->shortcut->displayString()));
        shortcutBadge_->setToolTip(words);
        shortcutBadge_->setAccessibleName(QStringLiteral("Shortcut %1").arg(words));
    }
    setAccessibleDescription(card_->isDefault ? QStringLiteral("%1 · Default").arg(detail_->text())
                                              : detail_->text());
    const RestoreReport& report = card_->report;
    reportLine_->setVisible(!report.text.empty());
    details_->setVisible(report.hasDetails);
    report_->setText(qText(report.text));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText,
                    report.isWarning ? warningColor(palette()) : secondaryTextColor(palette()));
    report_->setPalette(colors);
}

void LayoutCardWidget::fillMenu() {
    menu_->clear();
    auto* update = menu_->addAction(QStringLiteral("Update"), this, [this] { callCopy(callbacks_.update); });
    update->setEnabled(card_->canUpdate);
    update->setToolTip(
        card_->canUpdate ? QStringLiteral("Replaces the saved windows by those that are open now.")
                         : QStringLiteral("Only the layouts of the connected display setup can be updated."));
    menu_->setToolTipsVisible(true);
    menu_->addAction(QStringLiteral("Rename"), this, [this] { nameEditor_->startEditing(); });
    menu_->addAction(card_->isDefault ? QStringLiteral("Do Not Restore Automatically")
                                      : QStringLiteral("Make Default"),
                     this, [this] { callCopy(callbacks_.toggleDefault); });
    menu_->addSeparator();
    menu_->addAction(QStringLiteral("Delete…"), this, [this] { callCopy(callbacks_.askDelete); });
}

KeyboardList::Row LayoutCardWidget::row() {
    return {this, card_ ? qText(card_->name) : QString(), {details_, restore_, more_}};
}

QSize LayoutCardWidget::minimumSizeHint() const {
    // Whatever stands side by side now fits one above the other.
    int width = 0;
    for (int i = 0; i < parts_->count(); ++i)
        width = std::max(width, parts_->itemAt(i)->minimumSize().width());
    const QMargins margins = parts_->contentsMargins();
    return {width + margins.left() + margins.right(), QWidget::minimumSizeHint().height()};
}

void LayoutCardWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isNarrow = width() < fontMetrics().height() * narrowWidth;
    parts_->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

void LayoutCardWidget::contextMenuEvent(QContextMenuEvent* event) {
    menu_->popup(event->reason() == QContextMenuEvent::Mouse
                     ? event->globalPos()
                     : more_->mapToGlobal(QPoint(0, more_->height())));
}

SetupHeaderWidget::SetupHeaderWidget(Callbacks callbacks)
    : callbacks_(std::move(callbacks)),
      fold_(new SymbolButton(QStringLiteral("chevron.down"), QStringLiteral("Fold"),
                             SymbolButton::Ground::onHover)),
      nameEditor_(new NameEditor({}, boldFont(font()), QStringLiteral("Name of the display setup"),
                                 {.refusal = callbacks_.nameRefusal, .rename = callbacks_.rename})),
      detail_(makeText({}, TextRole::secondary)),
      connected_(new Badge(QStringLiteral("Connected now"), Badge::Ground::accented)),
      confirm_(new ActionButton(QStringLiteral("This is the connected one"), ActionButton::Role::suggested)),
      more_(new SymbolButton(QStringLiteral("ellipsis"), {}, SymbolButton::Ground::always)),
      menu_(new QMenu(this)) {
    setAccessibleRole(*this, QAccessible::Heading);
    more_->setToolTip(QStringLiteral("Rename, delete"));
    more_->setAccessibleDescription(QStringLiteral("Menu: rename, delete"));
    menu_->addAction(QStringLiteral("Rename"), this, [this] { nameEditor_->startEditing(); });
    menu_->addSeparator();
    menu_->addAction(QStringLiteral("Delete…"), this, [this] { callCopy(callbacks_.askDelete); });
    more_->setMenu(menu_);
    nameEditor_->setFocusAfterEditing(this);
    connect(confirm_, &QPushButton::clicked, this, [this] { callCopy(callbacks_.confirm); });
    connect(fold_, &QToolButton::clicked, this, [this] { callCopy(callbacks_.toggleExpanded); });
    onKey(Qt::Key_Return, callbacks_.toggleExpanded);
    onKey(Qt::Key_Space, callbacks_.toggleExpanded);
    onKey(Qt::Key_F2, [this] { nameEditor_->startEditing(); });
    onKey(Qt::Key_Delete, callbacks_.askDelete);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(nameEditor_);
    texts->addWidget(detail_);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(8, 6, 8, 6);
    line->setSpacing(8);
    line->addWidget(fold_, 0, Qt::AlignVCenter);
    line->addLayout(texts, 1);
    line->addWidget(connected_, 0, Qt::AlignVCenter);
    line->addWidget(confirm_, 0, Qt::AlignVCenter);
    line->addWidget(more_, 0, Qt::AlignVCenter);
}

void SetupHeaderWidget::showSetup(const SetupCard& setup, bool isFoldable) {
    name_ = qText(setup.name);
    nameEditor_->setName(name_);
    QString detail = qText(setup.detail);
    if (!setup.isExpanded)
        detail += QStringLiteral(" · ") + qText(layoutCountText(setup.layoutCount));
    detail_->setText(detail);
    connected_->setVisible(setup.isCurrent);
    confirm_->setVisible(setup.isCandidate);
    confirm_->setAccessibleName(QStringLiteral("%1 is the connected one").arg(name_));
    more_->setAccessibleName(QStringLiteral("More for %1").arg(name_));
    fold_->setVisible(isFoldable);
    fold_->setSymbol(setup.isExpanded                       ? QStringLiteral("chevron.down")
                     : layoutDirection() == Qt::LeftToRight ? QStringLiteral("chevron.right")
                                                            : QStringLiteral("chevron.left"));
    fold_->setAccessibleName(setup.isExpanded ? QStringLiteral("Fold %1").arg(name_)
                                              : QStringLiteral("Unfold %1").arg(name_));
    setAccessibleName(setup.isCurrent ? QStringLiteral("%1, connected now").arg(name_) : name_);
    setAccessibleDescription(!isFoldable        ? detail
                             : setup.isExpanded ? QStringLiteral("%1, expanded").arg(detail)
                                                : QStringLiteral("%1, collapsed").arg(detail));
}

KeyboardList::Row SetupHeaderWidget::row() {
    return {this, name_, {fold_, confirm_, more_}};
}

void SetupHeaderWidget::contextMenuEvent(QContextMenuEvent* event) {
    menu_->popup(event->reason() == QContextMenuEvent::Mouse
                     ? event->globalPos()
                     : more_->mapToGlobal(QPoint(0, more_->height())));
}

} // namespace tavrin
