#pragma once

#include "ui/layout_changes.h"
#include "ui/troubles.h"

#include <QWidget>

namespace tavrin {

class ActionButton;
class SettingsGroup;
class SymbolButton;
class TextLabel;

/// The line at the bottom of the window: what was done last, and the button that takes it back.
class NoticeBar final : public QWidget {
public:
    /// `changes` outlive the bar.
    explicit NoticeBar(LayoutChanges& changes);

    /// Takes the last change back, as the button does; nothing happens when that cannot be done.
    void undo();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void showNotice(const std::optional<LayoutChanges::Notice>& notice);

    LayoutChanges& changes_;
    TextLabel* text_;
    ActionButton* action_;
    SymbolButton* close_;
    Token subscription_;
};

/// The troubles, before the content of a pane.
class TroubleBanners final : public QWidget {
public:
    struct Callbacks {
        std::function<void()>
            showAdvancedPane; ///< empty on that pane itself, which offers to set files aside
    };

    /// `troubles` outlive the banners.
    TroubleBanners(Troubles& troubles, Callbacks callbacks);

private:
    void showTroubles();
    QWidget* makeBanner(const Trouble& trouble);

    Troubles& troubles_;
    Callbacks callbacks_;
    SettingsGroup* rows_;
    Token subscription_;
};

} // namespace tavrin
