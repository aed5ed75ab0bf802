#include "ui/qt/panes/apps_pane_widget.h"

#include "ui/qt/controls/buttons.h"
#include "ui/qt/controls/icons.h"
#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/settings_group.h"

#include <QLabel>
#include <QSignalBlocker>

namespace tavrin {
namespace {

QLabel* makeIcon(const QIcon& icon) {
    auto* label = new QLabel;
    const int side = label->fontMetrics().height() * 3 / 2;
    label->setPixmap(icon.pixmap(QSize(side, side), label->devicePixelRatioF()));
    label->setFixedSize(side, side);
    return label;
}

QWidget* makeApplicationRow(const ListedApplication& application, QWidget* control) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(12);
    line->addWidget(makeIcon(applicationIconOrPlaceholder(application.iconName)));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(makeText(qText(application.name)));
    if (application.name != application.bundleIdentifier)
        texts->addWidget(makeText(qText(application.bundleIdentifier), TextRole::secondary));
    line->addLayout(texts, 1);
    line->addWidget(control);
    return row;
}

} // namespace

AppsPaneWidget::AppsPaneWidget(const SettingsCollaborators& collaborators)
    : pane_(collaborators.settingsStore, collaborators.windowProvider, collaborators.applicationCatalog,
            collaborators.processIdentifier),
      placeholder_(
          ExclusionListView::placeholder(collaborators.desktopInformation.texts().exampleApplication)),
      list_(new KeyboardList(this)), openList_(new KeyboardList(this)) {
    auto* excluded = new SettingsGroup;
    excludedRows_ = new SettingsGroup(SettingsGroup::Frame::none);
    excluded->addRow(excludedRows_);
    excluded->addRow(makeAddRow());
    addSection(sections(), qText(ExclusionListView::title), qText(ExclusionListView::explanation), excluded);
    openRows_ = new SettingsGroup;
    addSection(sections(), QStringLiteral("Apps with Open Windows"), {}, openRows_);
    subscription_ = pane_.exclusions.changed.connect([this] { showState(); });
}

void AppsPaneWidget::appear() {
    areListsStale_ = true;
    pane_.exclusions.appear();
}

QWidget* AppsPaneWidget::makeAddRow() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    setRowMargins(*line);
    line->setSpacing(8);
    field_ = new TextField(QStringLiteral("Bundle ID"));
    field_->setPlaceholderText(qText(placeholder_));
    field_->setMaxLength(255);
    addButton_ = new ActionButton(QStringLiteral("Add App"));
    connect(field_, &QLineEdit::textChanged, this,
            [this](const QString& text) { pane_.exclusions.setNewBundleID(text.toStdString()); });
    connect(field_, &QLineEdit::returnPressed, this, [this] { pane_.exclusions.add(); });
    connect(addButton_, &QPushButton::clicked, this, [this] { pane_.exclusions.add(); });
    line->addWidget(field_, 1);
    line->addWidget(addButton_);
    return row;
}

QAbstractButton* AppsPaneWidget::makeExcludedButton(const ListedApplication& application) {
    const QString name = QStringLiteral("Remove ") + qText(application.bundleIdentifier);
    auto* button = new SymbolButton(QStringLiteral("minus.circle.fill"), name, SymbolButton::Ground::onHover,
                                    warningColor(palette()));
    button->setToolTip(Qt::convertFromPlainText(name)); // any program may call itself anything
    button->setAccessibleDescription(qText(application.name));
    connect(button, &QToolButton::clicked, this, [this, bundleID = application.bundleIdentifier] {
        pane_.exclusions.remove(std::string(bundleID));
    });
    return button;
}

QAbstractButton* AppsPaneWidget::makeOpenButton(const ListedApplication& application) {
    auto* button = new ActionButton(QStringLiteral("Exclude"));
    button->setAccessibleName(QStringLiteral("Exclude %1").arg(qText(application.name)));
    connect(button, &QPushButton::clicked, this, [this, bundleID = application.bundleIdentifier] {
        pane_.exclusions.addRunning(std::string(bundleID));
    });
    return button;
}

KeyboardList::Row AppsPaneWidget::addRow(SettingsGroup& group, const ListedApplication& application,
                                         QAbstractButton* button) {
    group.addRow(makeApplicationRow(application, button));
    return {button, qText(application.name), {}};
}

void AppsPaneWidget::showState() {
    const QString text = qText(pane_.exclusions.newBundleID());
    if (field_->text() != text) {
        const QSignalBlocker blocker(field_);
        field_->setText(text);
    }
    addButton_->setEnabled(pane_.exclusions.canAdd());
    showLists();
}

void AppsPaneWidget::showLists() {
    const auto& excluded = pane_.exclusions.excludedBundleIDs();
    if (!areListsStale_ && excluded == shownExcluded_)
        return;
    if (!areListsStale_ && excluded.size() > shownExcluded_.size())
        announce(*this, QStringLiteral("%1 excluded").arg(qText(excluded.back())));
    areListsStale_ = false;
    const bool hadFocusInList = list_->hasFocus();
    const bool hadFocusInOpenList = openList_->hasFocus();
    const auto open = pane_.openApplications();
    shownExcluded_ = excluded;
    excludedRows_->clear();
    if (excluded.empty())
        excludedRows_->addRow(makeNoteRow(qText(ExclusionListView::emptyText)));
    std::vector<KeyboardList::Row> rows;
    for (const ListedApplication& application : pane_.excludedApplications())
        rows.push_back(addRow(*excludedRows_, application, makeExcludedButton(application)));
    list_->setRows(std::move(rows));
    openRows_->clear();
    if (open.empty())
        openRows_->addRow(makeNoteRow(QStringLiteral("No other apps have windows open.")));
    rows.clear();
    for (const ListedApplication& application : open)
        rows.push_back(addRow(*openRows_, application, makeOpenButton(application)));
    openList_->setRows(std::move(rows));
    followLayoutWithTab(*window());
    // The row whose button was pressed is gone; the one in its place is next.
    KeyboardList* focused = hadFocusInList ? list_ : hadFocusInOpenList ? openList_ : nullptr;
    if (focused)
        (focused->current() ? focused->current() : field_)->setFocus();
}

} // namespace tavrin
