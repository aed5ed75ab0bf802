#pragma once

#include "ui/layouts_pane.h"
#include "ui/qt/controls/keyboard_list.h"

#include <QIcon>

class QBoxLayout;
class QMenu;

namespace tavrin {

class ActionButton;
class Badge;
class LayoutPictureWidget;
class NameEditor;
class SymbolButton;
class TextLabel;

/// One layout: its picture, what there is to say about it, and what can be done with it.
class LayoutCardWidget final : public FocusRow {
public:
    struct Callbacks {
        std::function<void()> restore;
        std::function<void()> update;
        std::function<void()> toggleDefault;
        std::function<void()> askDelete;
        std::function<void()> showDetails;
        std::function<std::optional<std::string>(const std::string&)> nameRefusal;
        std::function<void(const std::string&)> rename;
        std::function<QIcon(const std::string&)> iconOf;
    };

    explicit LayoutCardWidget(Callbacks callbacks);

    /// Shows the card in place: what is the same stays as it is.
    void showCard(const LayoutCard& card, const QString& setupName);

    KeyboardList::Row row();

    QSize minimumSizeHint() const override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeNameLine();
    QWidget* makeReportLine();
    QWidget* makeButtonLine();
    void fillMenu();
    void showTexts();

    Callbacks callbacks_;
    std::optional<LayoutCard> card_;
    LayoutPictureWidget* picture_;
    NameEditor* nameEditor_ = nullptr;
    Badge* defaultBadge_ = nullptr;
    Badge* shortcutBadge_ = nullptr;
    TextLabel* detail_ = nullptr;
    QWidget* reportLine_ = nullptr;
    TextLabel* report_ = nullptr;
    ActionButton* details_ = nullptr;
    ActionButton* restore_ = nullptr;
    SymbolButton* more_ = nullptr;
    QMenu* menu_;
    QBoxLayout* parts_; ///< the picture and the texts: side by side, or one above the other when it is narrow
};

/// The head of a display setup: its name and what there is to say about it.
class SetupHeaderWidget final : public FocusRow {
public:
    struct Callbacks {
        std::function<void()> toggleExpanded;
        std::function<void()> confirm;
        std::function<void()> askDelete;
        std::function<std::optional<std::string>(const std::string&)> nameRefusal;
        std::function<void(const std::string&)> rename;
    };

    explicit SetupHeaderWidget(Callbacks callbacks);

    void showSetup(const SetupCard& setup, bool isFoldable);

    KeyboardList::Row row();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    Callbacks callbacks_;
    SymbolButton* fold_;
    NameEditor* nameEditor_;
    TextLabel* detail_;
    Badge* connected_;
    ActionButton* confirm_;
    SymbolButton* more_;
    QMenu* menu_;
    QString name_;
};

} // namespace tavrin
