#include "ui/qt/shortcuts_pane_widget.h"

#include "ui/qt/settings_group.h"
#include "ui/qt/shortcut_recorder_widget.h"

namespace tavrin {

ShortcutsPaneWidget::ShortcutsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_({.shortcutManager = collaborators.shortcutManager,
             .keyMonitors = collaborators.keyMonitors,
             .profileStore = collaborators.profileStore,
             .profileListViewModel = collaborators.profileListViewModel,
             .currentProfileViewModel = collaborators.currentProfileViewModel}) {
    auto* autoDetect = new SettingsGroup;
    autoDetect_ = autoDetect;
    const QString title = qText(ShortcutsPane::autoDetectTitle);
    autoDetect->addRow(new ShortcutRecorderRow(title, qText(ShortcutsPane::autoDetectExplanation), title,
                                               pane_.recorder(std::nullopt)));
    addSection(sections(), QStringLiteral("Connected Display Setup"), {}, autoDetect);
    rebuildGroups();
    subscription_ = pane_.changed.connect([this] { rebuildGroups(); });
}

ShortcutsPaneWidget::~ShortcutsPaneWidget() {
    // The rows refer to the recorders of the pane.
    delete groups_;
    delete autoDetect_;
}

QString ShortcutsPaneWidget::description() const {
    return QStringLiteral("Shortcuts work in every app. Each one contains Control.");
}

void ShortcutsPaneWidget::rebuildGroups() {
    // The recorders of rows that are gone are gone too, and with them everything that shows them.
    delete groups_;
    groups_ = new QWidget;
    auto* rows = new QVBoxLayout(groups_);
    rows->setContentsMargins(0, 22, 0, 0);
    rows->setSpacing(0);
    sections().addWidget(groups_);
    for (const ShortcutsPane::Group& group : pane_.groups()) {
        auto* recorders = new SettingsGroup;
        for (const ShortcutsPane::Row& row : group.rows) {
            const QString name = qText(row.title);
            recorders->addRow(new ShortcutRecorderRow(name, {},
                                                      QStringLiteral("%1, %2").arg(name, qText(group.title)),
                                                      pane_.recorder(row.layoutID)));
        }
        addSection(*rows,
                   group.isCurrent ? QStringLiteral("%1 (connected)").arg(qText(group.title))
                                   : qText(group.title),
                   {}, recorders);
    }
    if (pane_.groups().empty()) {
        auto* note = new SettingsGroup;
        note->addRow(makeNoteRow(qText(ShortcutsPane::emptyText)));
        addSection(*rows, QStringLiteral("Layouts"), {}, note);
    }
    groups_->show();
    followLayoutWithTab(*this);
}

} // namespace tavrin
