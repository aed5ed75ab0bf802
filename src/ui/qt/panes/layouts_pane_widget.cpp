#include "ui/qt/panes/layouts_pane_widget.h"

#include "ports/application_catalog.h"
#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/keyboard_list.h"
#include "ui/qt/controls/question_sheet.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"
#include "ui/qt/panes/layout_card_widget.h"

#include <QApplication>
#include <QShortcut>
#include <QTimer>

namespace tavrin {
namespace {

constexpr auto saveText = "Save Layout…";
constexpr std::size_t cardsAtOnce = 6; ///< about what a window shows

Rect placeOnDesktop(const QWidget& widget) {
    const QPoint corner = widget.mapToGlobal(QPoint(0, 0));
    return {static_cast<double>(corner.x()), static_cast<double>(corner.y()),
            static_cast<double>(widget.width()), static_cast<double>(widget.height())};
}

void discard(QWidget& widget) {
    // It may be the one whose button is being clicked.
    widget.hide();
    widget.deleteLater();
}

} // namespace

LayoutsPaneWidget::LayoutsPaneWidget(const SettingsCollaborators& collaborators,
                                     std::function<void()> showAdvancedPane)
    : pane_(collaborators), catalog_(collaborators.applicationCatalog),
      showAdvancedPane_(std::move(showAdvancedPane)), suggestion_(makeSuggestion()), note_(new QWidget),
      emptyState_(makeEmptyState()), filter_(new TextField(QStringLiteral("Filter layouts"))),
      noMatch_(makeText(QStringLiteral("No layout name contains this."), TextRole::secondary)),
      setupRows_(new QVBoxLayout), list_(new KeyboardList(this)) {
    filter_->setPlaceholderText(filter_->accessibleName());
    filter_->setClearButtonEnabled(true);
    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) { setFilter(text); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] { filter_->setFocus(Qt::ShortcutFocusReason); });

    auto* noteLines = new QVBoxLayout(note_);
    noteLines->setContentsMargins(0, 0, 0, 0);
    auto* noteGroup = new SettingsGroup;
    noteText_ = makeText({}, TextRole::secondary);
    auto* noteRow = new QWidget;
    auto* noteLine = new QHBoxLayout(noteRow);
    setRowMargins(*noteLine);
    noteLine->addWidget(noteText_);
    noteGroup->addRow(noteRow);
    noteLines->addWidget(noteGroup);

    setupRows_->setSpacing(20);
    sections().setSpacing(16);
    sections().addWidget(suggestion_);
    sections().addWidget(note_);
    sections().addWidget(emptyState_);
    sections().addWidget(filter_);
    sections().addWidget(noMatch_);
    sections().addLayout(setupRows_);
    showContent();
    subscription_ = pane_.changed.connect([this] { showContent(); });
}

LayoutsPaneWidget::~LayoutsPaneWidget() {
    delete question_;
}

QWidget* LayoutsPaneWidget::makeHeaderControl() {
    auto* button = new ActionButton(QString::fromUtf8(saveText), ActionButton::Role::suggested);
    connect(button, &QPushButton::clicked, this,
            [this, button] { pane_.saveLayout(placeOnDesktop(*button)); });
    saveButton_ = button;
    showContent();
    return saveButton_;
}

QWidget* LayoutsPaneWidget::makeSuggestion() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(12);
    line->addWidget(makeSymbol(QStringLiteral("info.circle.fill"), accentLineColor(palette())), 0,
                    Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(suggestionTitle_ = makeText({}));
    texts->addWidget(suggestionMessage_ = makeText({}, TextRole::secondary));
    line->addLayout(texts, 1);
    auto* group = new SettingsGroup;
    group->addRow(row);
    return group;
}

QWidget* LayoutsPaneWidget::makeEmptyState() {
    auto* state = new QWidget;
    auto* lines = new QVBoxLayout(state);
    lines->setContentsMargins(40, 56, 40, 40);
    lines->setSpacing(18);
    auto* icon = makeSymbol(QStringLiteral("rectangle.3.group"), secondaryTextColor(palette()), 4);
    icon->setAlignment(Qt::AlignCenter);
    auto* text = makeText(qText(LayoutsPane::emptyText), TextRole::secondary);
    text->setAlignment(Qt::AlignCenter);
    lines->addWidget(icon);
    lines->addWidget(text);
    return state;
}

void LayoutsPaneWidget::showContent() {
    const LayoutsPaneContent& content = pane_.content();
    suggestion_->setVisible(!content.suggestionTitle.empty());
    suggestionTitle_->setText(qText(content.suggestionTitle));
    suggestionMessage_->setText(qText(content.suggestionMessage));
    const bool isRecognised = !content.setups.empty() && content.setups.front().isCurrent;
    note_->setVisible(content.suggestionTitle.empty() && !content.setups.empty() && !isRecognised &&
                      !content.isUnreadable && filter_->text().isEmpty());
    noteText_->setText(qText(content.currentSetupText));
    emptyState_->setVisible(content.isEmpty());
    if (saveButton_)
        saveButton_->setEnabled(content.canSave);
    filter_->setVisible(content.offersFilter);
    noMatch_->setVisible(content.offersFilter && content.setups.empty());
    showSetups();
}

void LayoutsPaneWidget::setFilter(const QString& text) {
    pane_.setFilter(text.toStdString());
    std::size_t count = 0;
    for (const SetupCard& setup : pane_.content().setups)
        count += setup.layouts.size();
    announce(*this, count == 0 ? noMatch_->text() : qText(layoutCountText(count)));
}

void LayoutsPaneWidget::showSetups() {
    const LayoutsPaneContent& content = pane_.content();
    const bool hadFocus = list_->hasFocus();
    cardBudget_ = cardsAtOnce;
    for (auto section = sections_.begin(); section != sections_.end();) {
        const bool isGone =
            std::ranges::find(content.setups, section->first, &SetupCard::id) == content.setups.end();
        if (isGone)
            discard(*section->second->widget);
        section = isGone ? sections_.erase(section) : std::next(section);
    }
    int place = 0;
    for (const SetupCard& setup : content.setups) {
        auto& section = sections_[setup.id];
        if (!section)
            section = makeSection(setup.id);
        if (const auto* there = setupRows_->itemAt(place); !there || there->widget() != section->widget) {
            setupRows_->removeWidget(section->widget);
            setupRows_->insertWidget(place, section->widget);
            section->widget->show();
        }
        ++place;
        showSection(*section, setup);
    }
    updateList();
    if (hadFocus && !list_->hasFocus() && list_->current() &&
        (!QApplication::focusWidget() || !QApplication::focusWidget()->inherits("QLineEdit")))
        list_->current()->setFocus();
    else if (hadFocus && !list_->current() && saveButton_)
        saveButton_->setFocus();
}

void LayoutsPaneWidget::showNextCards() {
    isWaitingForCards_ = false;
    showSetups();
}

std::unique_ptr<LayoutsPaneWidget::Section> LayoutsPaneWidget::makeSection(const Uuid& profileID) {
    const Uuid id = profileID;
    auto section = std::make_unique<Section>();
    section->header = new SetupHeaderWidget(
        {.toggleExpanded =
             [this, id] {
                 for (const SetupCard& setup : pane_.content().setups)
                     if (setup.id == id) {
                         announce(*this, setup.isExpanded ? QStringLiteral("collapsed")
                                                          : QStringLiteral("expanded"));
                         return pane_.setExpanded(id, !setup.isExpanded);
                     }
             },
         .confirm = [this, id] { pane_.confirmSetup(id); },
         .askDelete = [this,
                       id] { ask(pane_.setupDeletionQuestion(id), [this, id] { pane_.deleteSetup(id); }); },
         .nameRefusal = [this](const std::string& text) { return pane_.setupNameRefusal(text); },
         .rename = [this, id](const std::string& text) { pane_.renameSetup(id, text); }});
    section->group = new SettingsGroup;
    setAccessibleRole(*section->group, QAccessible::List);
    section->emptyNote = makeNoteRow(qText(LayoutsPane::emptySetupText));
    section->emptyNote->setParent(section->group);
    section->emptyNote->hide();
    section->widget = new QWidget;
    auto* lines = new QVBoxLayout(section->widget);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(6);
    lines->addWidget(section->header);
    lines->addWidget(section->group);
    return section;
}

LayoutCardWidget* LayoutsPaneWidget::makeCard(const Uuid& layoutID) {
    const Uuid id = layoutID;
    return new LayoutCardWidget(
        {.restore = [this, id] { pane_.restore(id); },
         .update = [this, id] { pane_.update(id); },
         .toggleDefault =
             [this, id] {
                 for (const SetupCard& setup : pane_.content().setups)
                     for (const LayoutCard& layout : setup.layouts)
                         if (layout.id == id)
                             return pane_.setDefault(id, layout.isDefault
                                                             ? LayoutsPane::DefaultLayout::cleared
                                                             : LayoutsPane::DefaultLayout::set);
             },
         .askDelete = [this,
                       id] { ask(pane_.layoutDeletionQuestion(id), [this, id] { pane_.deleteLayout(id); }); },
         .showDetails = showAdvancedPane_,
         .nameRefusal = [this, id](const std::string& name) { return pane_.layoutNameRefusal(id, name); },
         .rename = [this, id](const std::string& name) { pane_.renameLayout(id, name); },
         .iconOf = [this](const std::string& identifier) { return icon(identifier); }});
}

void LayoutsPaneWidget::showSection(Section& section, const SetupCard& setup) {
    section.header->showSetup(setup, pane_.content().isFoldable);
    section.group->setAccessibleName(qText(setup.name));
    std::vector<QWidget*> rows;
    for (const LayoutCard& layout : setup.layouts) {
        auto& card = section.cards[layout.id];
        if (!card) {
            if (cardBudget_ == 0) {
                // What cannot be seen yet waits until the window has been drawn.
                section.cards.erase(layout.id);
                if (!isWaitingForCards_)
                    QTimer::singleShot(0, this, [this] { showNextCards(); });
                isWaitingForCards_ = true;
                break;
            }
            --cardBudget_;
            card = makeCard(layout.id);
        }
        card->showCard(layout, qText(setup.name));
        rows.push_back(card);
    }
    std::erase_if(section.cards, [&](const auto& entry) {
        const bool isGone =
            std::ranges::find(setup.layouts, entry.first, &LayoutCard::id) == setup.layouts.end();
        if (isGone)
            discard(*entry.second);
        return isGone;
    });
    section.emptyNote->setVisible(setup.layoutCount == 0);
    if (setup.layoutCount == 0)
        rows.push_back(section.emptyNote);
    section.group->setRows(rows);
    section.group->setVisible(!rows.empty());
}

void LayoutsPaneWidget::updateList() {
    std::vector<KeyboardList::Row> rows;
    const QWidget* firstCard = nullptr;
    for (const SetupCard& setup : pane_.content().setups) {
        Section& section = *sections_.at(setup.id);
        rows.push_back(section.header->row());
        for (const LayoutCard& layout : setup.layouts)
            if (const auto card = section.cards.find(layout.id); card != section.cards.end()) {
                rows.push_back(card->second->row());
                firstCard = firstCard ? firstCard : card->second;
            }
    }
    list_->setRows(std::move(rows));
    // The focus goes to the first card, if there is one.
    if (firstCard && !hadCards_ && !list_->hasFocus())
        list_->setCurrent(firstCard);
    hadCards_ = firstCard;
    followLayoutWithTab(*window());
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
