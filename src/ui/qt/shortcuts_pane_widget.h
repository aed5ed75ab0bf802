#pragma once

#include "ui/qt/settings_pane_widget.h"
#include "ui/settings_collaborators.h"
#include "ui/shortcuts_pane.h"

namespace tavrin {

/// The shortcuts pane.
class ShortcutsPaneWidget final : public SettingsPaneWidget {
public:
    explicit ShortcutsPaneWidget(const SettingsCollaborators& collaborators);
    ~ShortcutsPaneWidget() override;

    void appear() override { pane_.appear(); }
    QString description() const override;

private:
    void rebuildGroups();

    ShortcutsPane pane_;
    QWidget* autoDetect_ = nullptr;
    QWidget* groups_ = nullptr;
    Token subscription_;
};

} // namespace tavrin
