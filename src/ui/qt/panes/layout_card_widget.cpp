#include "ui/qt/panes/layout_card_widget.h"

#include "ui/layouts_pane.h"
#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/name_editor.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/panes/layout_picture_widget.h"
#include "ui/qt/panes/settings_pane_widget.h"
#include "ui/qt/panes/shortcuts_pane_widget.h"

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

QLabel* makeDetail(const LayoutCard& card, Timestamp now) {
    const QDateTime changed = dateTime(card.updatedAt);
    const auto relative = relativeTimeText(card.updatedAt, now);
    const QString when = relative ? qText(*relative) : QLocale().toString(changed, QLocale::ShortFormat);
    auto* detail =
        makeText(QStringLiteral("%1 · Changed %2").arg(qText(windowCountText(card.windowCount)), when),
                 TextRole::secondary);
    detail->setToolTip(QLocale().toString(changed, QLocale::LongFormat));
    return detail;
}

} // namespace

LayoutCardWidget::LayoutCardWidget(const LayoutCard& card, Timestamp now, Callbacks callbacks)
    : callbacks_(std::move(callbacks)), menu_(new QMenu(this)), parts_(new QHBoxLayout(this)) {
    fillMenu(card);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(3);
    texts->addWidget(makeNameLine(card));
    texts->addWidget(makeDetail(card, now));
    if (!card.status.empty())
        texts->addWidget(makeText(qText(card.status), TextRole::secondary));
    texts->addStretch(1);
    texts->addWidget(makeButtonLine(card));
    setRowMargins(*parts_);
    parts_->setSpacing(16);
    parts_->addWidget(new LayoutPictureWidget(card.picture, callbacks_.iconOf), 0,
                      Qt::AlignVCenter | Qt::AlignLeft);
    parts_->addLayout(texts, 1);
}

QWidget* LayoutCardWidget::makeNameLine(const LayoutCard& card) {
    QFont bold = font();
    bold.setBold(true);
    nameEditor_ = new NameEditor(qText(card.name), bold, QStringLiteral("Name of the layout"),
                                 {.refusal = callbacks_.nameRefusal, .rename = callbacks_.rename});
    auto* content = new QWidget;
    auto* line = new QHBoxLayout(content);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(nameEditor_, 1);
    if (card.isDefault) {
        auto* badge = new Badge(QStringLiteral("Default"));
        badge->setToolTip(QStringLiteral("Restored automatically on this display setup."));
        line->addWidget(badge, 0, Qt::AlignTop);
    }
    if (card.shortcut) {
        auto* badge = new Badge(qText(card.shortcut->displayString()));
        badge->setToolTip(shortcutInWords(*card.shortcut));
        badge->setAccessibleName(QStringLiteral("Shortcut %1").arg(shortcutInWords(*card.shortcut)));
        line->addWidget(badge, 0, Qt::AlignTop);
    }
    return content;
}

QWidget* LayoutCardWidget::makeButtonLine(const LayoutCard& card) {
    const QString name = qText(card.name);
    const QString id = qText(card.id.text());
    auto* restore = new ActionButton(QStringLiteral("Restore"));
    restore->setObjectName(id + QStringLiteral("/restore"));
    restore->setAccessibleName(QStringLiteral("Restore %1").arg(name));
    connect(restore, &QPushButton::clicked, this, [this] { callbacks_.restore(); });
    auto* update = new ActionButton(QStringLiteral("Update"));
    update->setObjectName(id + QStringLiteral("/update"));
    update->setAccessibleName(QStringLiteral("Update %1").arg(name));
    update->setEnabled(card.canUpdate);
    update->setToolTip(
        card.canUpdate ? QStringLiteral("Replaces the saved windows by those that are open now.")
                       : QStringLiteral("Only the layouts of the connected display setup can be updated."));
    update->setAccessibleDescription(update->toolTip());
    connect(update, &QPushButton::clicked, this, [this] { callbacks_.update(); });
    auto* more = new SymbolButton(QStringLiteral("ellipsis"), QStringLiteral("More for %1").arg(name),
                                  SymbolButton::Ground::always);
    more->setObjectName(id + QStringLiteral("/more"));
    more->setToolTip(QStringLiteral("Rename, default, delete"));
    more->setMenu(menu_);
    nameEditor_->setFocusAfterEditing(more);

    auto* content = new QWidget;
    auto* line = new QHBoxLayout(content);
    line->setContentsMargins(0, 4, 0, 0);
    line->setSpacing(8);
    line->addWidget(restore);
    line->addWidget(update);
    line->addWidget(more);
    line->addStretch(1);
    return content;
}

void LayoutCardWidget::fillMenu(const LayoutCard& card) {
    menu_->addAction(QStringLiteral("Rename"), this, [this] { nameEditor_->startEditing(); });
    menu_->addAction(card.isDefault ? QStringLiteral("Do Not Restore Automatically")
                                    : QStringLiteral("Make Default"),
                     this, [this] { callbacks_.toggleDefault(); });
    menu_->addSeparator();
    menu_->addAction(QStringLiteral("Delete…"), this, [this] { callbacks_.askDelete(); });
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
    menu_->popup(event->globalPos());
}

void LayoutCardWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_F2:
        return nameEditor_->startEditing();
    case Qt::Key_Delete:
        return callbacks_.askDelete();
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace tavrin
