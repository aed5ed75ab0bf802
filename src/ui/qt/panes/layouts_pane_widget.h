#pragma once

#include "ui/layouts_pane.h"
#include "ui/qt/panes/settings_pane_widget.h"

#include <QIcon>
#include <QPointer>

#include <map>
#include <memory>

class QPushButton;

namespace tavrin {

class KeyboardList;
class LayoutCardWidget;
class QuestionSheet;
class SettingsGroup;
class SetupHeaderWidget;
class TextField;
class TextLabel;

/// The layouts pane. Setups and cards are made once and changed in place: nothing is rebuilt under the
/// pointer or the focus.
class LayoutsPaneWidget final : public SettingsPaneWidget {
public:
    /// `showAdvancedPane` leads to the details of a restore.
    LayoutsPaneWidget(const SettingsCollaborators& collaborators, std::function<void()> showAdvancedPane);
    ~LayoutsPaneWidget() override;

    void appear() override { pane_.appear(); }
    QWidget* makeHeaderControl() override;

private:
    struct Section {
        QWidget* widget = nullptr;
        SetupHeaderWidget* header = nullptr;
        SettingsGroup* group = nullptr;
        QWidget* emptyNote = nullptr;
        std::map<Uuid, LayoutCardWidget*> cards;
    };

    QWidget* makeSuggestion();
    QWidget* makeEmptyState();
    void setFilter(const QString& text);
    void showContent();
    void showSetups();
    void showNextCards();
    std::unique_ptr<Section> makeSection(const Uuid& profileID);
    LayoutCardWidget* makeCard(const Uuid& layoutID);
    void showSection(Section& section, const SetupCard& setup);
    void updateList();
    void ask(const std::optional<DeletionQuestion>& question, std::function<void()> confirmed);
    QIcon icon(const std::string& bundleIdentifier);

    LayoutsPane pane_;
    ApplicationCatalog& catalog_;
    std::function<void()> showAdvancedPane_;
    TextLabel* suggestionTitle_ = nullptr;
    TextLabel* suggestionMessage_ = nullptr;
    TextLabel* noteText_ = nullptr;
    QWidget* suggestion_; // made of those above
    QWidget* note_;
    QWidget* emptyState_;
    TextField* filter_;
    TextLabel* noMatch_;
    QVBoxLayout* setupRows_;
    KeyboardList* list_;
    QPointer<QPushButton> saveButton_;
    QPointer<QuestionSheet> question_; ///< while one is asked; it covers the whole window
    std::map<Uuid, std::unique_ptr<Section>> sections_;
    std::map<std::string, QIcon> icons_;
    std::size_t cardBudget_ = 0; ///< cards that may still be made before the next ones are put off
    bool isWaitingForCards_ = false;
    bool hadCards_ = false;
    Token subscription_;
};

} // namespace tavrin
