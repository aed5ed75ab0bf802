#pragma once

#include "ui/layouts_pane.h"
#include "ui/qt/panes/settings_pane_widget.h"

#include <QIcon>
#include <QPointer>

#include <map>

class QPushButton;

namespace tavrin {

class NameEditor;
class QuestionSheet;

/// The layouts pane.
class LayoutsPaneWidget final : public SettingsPaneWidget {
public:
    explicit LayoutsPaneWidget(const SettingsCollaborators& collaborators);
    ~LayoutsPaneWidget() override;

    void appear() override { pane_.appear(); }
    QWidget* makeHeaderControl() override;

private:
    /// Once, after whatever is going on: a change may come from a button that would be deleted.
    void rebuildSoon();
    void rebuild();
    void addSuggestion(const SetupSuggestion& suggestion);
    void addNote(const QString& text);
    void addEmptyState();
    void addSetup(const SetupCard& setup);
    QPushButton* makeSaveButton();
    QWidget* makeSetupHeader(const SetupCard& setup);
    QWidget* makeCard(const SetupCard& setup, const LayoutCard& layout);
    void ask(const std::optional<DeletionQuestion>& question, std::function<void()> confirmed);
    QIcon icon(const std::string& bundleIdentifier);

    LayoutsPane pane_;
    ApplicationCatalog& catalog_;
    QWidget* content_ = nullptr;
    QVBoxLayout* rows_ = nullptr;
    QPointer<QWidget> saveButton_;
    QPointer<QuestionSheet> question_;    ///< while one is asked; it covers the whole window
    std::map<Uuid, NameEditor*> editors_; ///< of layouts and setups
    std::map<std::string, QIcon> icons_;
    bool isRebuildPending_ = false;
    Token subscription_;
};

} // namespace tavrin
