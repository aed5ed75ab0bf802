#include "ui/qt/panes/layouts_pane_widget.h"

#include "ports/application_catalog.h"
#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/labels.h"
#include "ui/qt/controls/name_editor.h"
#include "ui/qt/controls/question_sheet.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/panes/layout_card_widget.h"

#include <QMenu>
#include <QTimer>

namespace tavrin {
namespace {

constexpr auto saveText = "Save Layout…";

Rect placeOnDesktop(const QWidget& widget) {
    const QPoint corner = widget.mapToGlobal(QPoint(0, 0));
    return {static_cast<double>(corner.x()), static_cast<double>(corner.y()),
            static_cast<double>(widget.width()), static_cast<double>(widget.height())};
}

} // namespace

LayoutsPaneWidget::LayoutsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_(collaborators), catalog_(collaborators.applicationCatalog) {
    rebuild();
    subscription_ = pane_.changed.connect([this] { rebuildSoon(); });
}

LayoutsPaneWidget::~LayoutsPaneWidget() {
    delete question_;
}

QPushButton* LayoutsPaneWidget::makeSaveButton() {
    auto* button = new ActionButton(QString::fromUtf8(saveText), ActionButton::Role::suggested);
    connect(button, &QPushButton::clicked, this,
            [this, button] { pane_.saveLayout(placeOnDesktop(*button)); });
    return button;
}

QWidget* LayoutsPaneWidget::makeHeaderControl() {
    auto* button = makeSaveButton();
    saveButton_ = button;
    button->setVisible(!pane_.content().isEmpty());
    return button;
}

void LayoutsPaneWidget::rebuildSoon() {
    if (isRebuildPending_)
        return;
    isRebuildPending_ = true;
    QTimer::singleShot(0, this, [this] {
        isRebuildPending_ = false;
        rebuild();
    });
}

void LayoutsPaneWidget::rebuild() {
    // What the user is in the middle of goes on in the new content.
    std::optional<std::pair<Uuid, QString>> edited;
    for (const auto& [id, editor] : editors_)
        if (editor->isEditing())
            edited.emplace(id, editor->editedText());
    const bool hadFocus = content_ && content_->isAncestorOf(focusWidget());
    const QString focusedName = hadFocus ? focusWidget()->objectName() : QString();

    editors_.clear();
    delete content_;
    content_ = new QWidget;
    rows_ = new QVBoxLayout(content_);
    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(0);
    sections().addWidget(content_);
    const LayoutsPaneContent& content = pane_.content();
    if (content.suggestion)
        addSuggestion(*content.suggestion);
    if (content.isEmpty())
        addEmptyState();
    else if (!content.suggestion && !content.setups.front().isCurrent)
        addNote(qText(content.currentSetupText));
    for (const SetupCard& setup : content.setups)
        addSetup(setup);
    if (saveButton_)
        saveButton_->setVisible(!content.isEmpty());
    content_->show();
    followLayoutWithTab(*this);

    if (edited)
        if (const auto editor = editors_.find(edited->first); editor != editors_.end())
            return editor->second->startEditing(edited->second);
    if (!hadFocus)
        return;
    auto* widget = focusedName.isEmpty() ? nullptr : content_->findChild<QWidget*>(focusedName);
    if (!widget && content.isEmpty())
        widget = content_->findChild<QWidget*>(QStringLiteral("save"));
    if (!widget)
        widget = saveButton_;
    if (widget)
        widget->setFocus();
}

void LayoutsPaneWidget::addSuggestion(const SetupSuggestion& suggestion) {
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
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(makeText(qText(suggestion.title)));
    texts->addWidget(makeText(qText(suggestion.message), TextRole::secondary));
    line->addLayout(texts, 1);
    if (suggestion.canConfirm) {
        auto* confirm = new ActionButton(QStringLiteral("Confirm"));
        confirm->setObjectName(QStringLiteral("confirm"));
        confirm->setAccessibleName(QStringLiteral("Confirm %1").arg(qText(suggestion.title)));
        connect(confirm, &QPushButton::clicked, this, [this] { pane_.confirmSuggestion(); });
        line->addWidget(confirm, 0, Qt::AlignVCenter);
    }
    auto* group = new SettingsGroup;
    group->addRow(row);
    addSection(*rows_, {}, {}, group);
}

void LayoutsPaneWidget::addNote(const QString& text) {
    auto* group = new SettingsGroup;
    group->addRow(makeNoteRow(text));
    addSection(*rows_, {}, {}, group);
}

void LayoutsPaneWidget::addEmptyState() {
    auto* state = new QWidget;
    auto* lines = new QVBoxLayout(state);
    lines->setContentsMargins(40, 70, 40, 40);
    lines->setSpacing(18);
    auto* icon = new QLabel;
    const int side = fontMetrics().height() * 4;
    icon->setPixmap(symbolIcon(QStringLiteral("rectangle.3.group"), secondaryTextColor(palette()))
                        .pixmap(QSize(side, side), devicePixelRatioF()));
    icon->setAlignment(Qt::AlignCenter);
    auto* text = makeText(qText(LayoutsPane::emptyText), TextRole::secondary);
    text->setAlignment(Qt::AlignCenter);
    auto* save = makeSaveButton();
    save->setObjectName(QStringLiteral("save"));
    lines->addWidget(icon);
    lines->addWidget(text);
    lines->addWidget(save, 0, Qt::AlignHCenter);
    rows_->addWidget(state);
}

void LayoutsPaneWidget::addSetup(const SetupCard& setup) {
    if (rows_->count() > 0)
        rows_->addSpacing(24);
    rows_->addWidget(makeSetupHeader(setup));
    rows_->addSpacing(8);
    auto* group = new SettingsGroup;
    if (setup.layouts.empty())
        group->addRow(makeNoteRow(qText(LayoutsPane::emptySetupText)));
    for (const LayoutCard& layout : setup.layouts)
        group->addRow(makeCard(setup, layout));
    rows_->addWidget(group);
}

QWidget* LayoutsPaneWidget::makeSetupHeader(const SetupCard& setup) {
    const Uuid id = setup.id;
    QFont bold = font();
    bold.setBold(true);
    auto* name =
        new NameEditor(qText(setup.name), bold, QStringLiteral("Name of the display setup"),
                       {.refusal = [this](const std::string& text) { return pane_.setupNameRefusal(text); },
                        .rename = [this, id](const std::string& text) { pane_.renameSetup(id, text); }});
    editors_[id] = name;

    auto* more =
        new SymbolButton(QStringLiteral("ellipsis"), QStringLiteral("More for %1").arg(qText(setup.name)),
                         SymbolButton::Ground::always);
    more->setObjectName(qText(id.text()) + QStringLiteral("/setup"));
    more->setToolTip(QStringLiteral("Rename, delete"));
    auto* menu = new QMenu(more);
    menu->addAction(QStringLiteral("Rename"), this, [name] { name->startEditing(); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Delete…"), this, [this, id] {
        ask(pane_.setupDeletionQuestion(id), [this, id] { pane_.deleteSetup(id); });
    });
    more->setMenu(menu);
    name->setFocusAfterEditing(more);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(name);
    texts->addWidget(makeText(qText(setup.detail), TextRole::secondary));
    auto* header = new QWidget;
    auto* line = new QHBoxLayout(header);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addLayout(texts, 1);
    if (setup.isCurrent)
        line->addWidget(new Badge(QStringLiteral("Connected now"), Badge::Ground::accented), 0,
                        Qt::AlignVCenter);
    line->addWidget(more, 0, Qt::AlignVCenter);
    return header;
}

QWidget* LayoutsPaneWidget::makeCard(const SetupCard& setup, const LayoutCard& layout) {
    const Uuid id = layout.id;
    const auto wanted =
        layout.isDefault ? LayoutsPane::DefaultLayout::cleared : LayoutsPane::DefaultLayout::set;
    auto* card = new LayoutCardWidget(
        layout, pane_.now(),
        {.restore = [this, id] { pane_.restore(id); },
         .update = [this, id] { pane_.update(id); },
         .toggleDefault = [this, id, wanted] { pane_.setDefault(id, wanted); },
         .askDelete = [this,
                       id] { ask(pane_.layoutDeletionQuestion(id), [this, id] { pane_.deleteLayout(id); }); },
         .nameRefusal = [this, id](const std::string& name) { return pane_.layoutNameRefusal(id, name); },
         .rename = [this, id](const std::string& name) { pane_.renameLayout(id, name); },
         .iconOf = [this](const std::string& identifier) { return icon(identifier); }});
    card->setAccessibleName(QStringLiteral("%1, %2").arg(qText(layout.name), qText(setup.name)));
    editors_[id] = &card->nameEditor();
    return card;
}

void LayoutsPaneWidget::ask(const std::optional<DeletionQuestion>& question,
                            std::function<void()> confirmed) {
    if (question && (!question_ || question_->isHidden()))
        question_ = new QuestionSheet(*window(), *question, std::move(confirmed));
}

QIcon LayoutsPaneWidget::icon(const std::string& bundleIdentifier) {
    const auto known = icons_.find(bundleIdentifier);
    if (known != icons_.end())
        return known->second;
    return icons_[bundleIdentifier] =
               applicationIcon(catalog_.installedApplication(bundleIdentifier).iconName);
}

} // namespace tavrin
