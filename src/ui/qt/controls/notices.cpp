#include "ui/qt/controls/notices.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"

#include <QHBoxLayout>
#include <QPainter>

namespace tavrin {

NoticeBar::NoticeBar(LayoutChanges& changes)
    : changes_(changes), text_(makeText({})), action_(new ActionButton({})),
      close_(new SymbolButton(QStringLiteral("xmark.circle"), QStringLiteral("Dismiss"),
                              SymbolButton::Ground::onHover)) {
    setAccessibleRole(*this, QAccessible::Grouping);
    setObjectName(QStringLiteral("notice"));
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(rowMargin, 6, 8, 6);
    line->setSpacing(10);
    line->addWidget(text_, 1);
    line->addWidget(action_);
    line->addWidget(close_);
    connect(action_, &QPushButton::clicked, this, [this] { changes_.act(); });
    connect(close_, &QToolButton::clicked, this, [this] { changes_.dismiss(); });
    subscription_ = changes_.notice.subscribe([this](const auto& notice) { showNotice(notice); });
}

void NoticeBar::undo() {
    if (const auto& notice = changes_.notice.value(); notice && notice->isUndo)
        changes_.act();
}

void NoticeBar::showNotice(const std::optional<LayoutChanges::Notice>& notice) {
    setVisible(notice.has_value());
    if (!notice)
        return;
    const QString text = qText(notice->text);
    QPalette colors = palette();
    if (notice->kind == LayoutChanges::Notice::Kind::failed)
        colors.setColor(QPalette::WindowText, warningColor(palette()));
    text_->setPalette(colors);
    text_->setText(text);
    action_->setText(qText(notice->actionLabel));
    action_->setVisible(!notice->actionLabel.empty());
    action_->setToolTip(notice->isUndo ? QStringLiteral("Ctrl+Z") : QString());
    setAccessibleName(text);
    announce(*this, notice->isUndo ? QStringLiteral("%1 Ctrl+Z to undo.").arg(text) : text);
}

void NoticeBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(shapeColor(palette()), 1));
    painter.setBrush(groupColor(palette()));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), groupRadius, groupRadius);
}

TroubleBanners::TroubleBanners(Troubles& troubles, Callbacks callbacks)
    : troubles_(troubles), callbacks_(std::move(callbacks)), rows_(new SettingsGroup) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->addWidget(rows_);
    subscription_ = troubles_.changed.connect([this] { showTroubles(); });
    showTroubles();
}

void TroubleBanners::showTroubles() {
    rows_->clear();
    for (const Trouble& trouble : troubles_.list())
        rows_->addRow(makeBanner(trouble));
    setVisible(!troubles_.list().empty());
}

QWidget* TroubleBanners::makeBanner(const Trouble& trouble) {
    auto* banner = new QWidget;
    setAccessibleRole(*banner, QAccessible::AlertMessage);
    banner->setAccessibleName(qText(trouble.title));
    banner->setAccessibleDescription(qText(trouble.message));
    auto* line = new QHBoxLayout(banner);
    setRowMargins(*line);
    line->setSpacing(12);
    line->addWidget(makeSymbol(QStringLiteral("exclamationmark.triangle.fill"), warningColor(palette())), 0,
                    Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    auto* title = makeText(qText(trouble.title), TextRole::warning);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    texts->addWidget(title);
    texts->addWidget(makeText(qText(trouble.message)));
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 6, 0, 2);
    buttons->setSpacing(8);
    const auto add = [&](const char* text, std::function<void()> action) {
        auto* button = new ActionButton(QString::fromUtf8(text));
        connect(button, &QPushButton::clicked, this, [action = std::move(action)] { callCopy(action); });
        buttons->addWidget(button);
    };
    if (!trouble.request.empty())
        add(trouble.request.c_str(), [this] { troubles_.requestPermission(); });
    if (trouble.kind == Trouble::Kind::permission) {
        add("How to fix it", [this] { troubles_.showHowToFix(); });
        add("Recheck", [this] { troubles_.recheckPermission(); });
    } else if (callbacks_.showAdvancedPane) {
        add("Open Advanced", callbacks_.showAdvancedPane);
    } else {
        add("Set Aside and Start Fresh", [this] { troubles_.setFilesAside(); });
    }
    buttons->addStretch(1);
    texts->addLayout(buttons);
    line->addLayout(texts, 1);
    return banner;
}

} // namespace tavrin
