#pragma once

#include "ui/layouts_pane.h"

#include <QIcon>
#include <QWidget>

#include <functional>

class QBoxLayout;
class QMenu;

namespace tavrin {

class NameEditor;

/// One layout: its picture, what there is to say about it, and what can be done with it.
class LayoutCardWidget final : public QWidget {
public:
    struct Callbacks {
        std::function<void()> restore;
        std::function<void()> update;
        std::function<void()> toggleDefault;
        std::function<void()> askDelete;
        std::function<std::optional<std::string>(const std::string&)> nameRefusal;
        std::function<void(const std::string&)> rename;
        std::function<QIcon(const std::string&)> iconOf;
    };

    LayoutCardWidget(const LayoutCard& card, Timestamp now, Callbacks callbacks);

    NameEditor& nameEditor() { return *nameEditor_; }

    QSize minimumSizeHint() const override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeNameLine(const LayoutCard& card);
    QWidget* makeButtonLine(const LayoutCard& card);
    void fillMenu(const LayoutCard& card);

    Callbacks callbacks_;
    NameEditor* nameEditor_ = nullptr;
    QMenu* menu_ = nullptr;
    QBoxLayout*
        parts_; ///< the picture and the texts: side by side, or one above the other in a narrow window
};

} // namespace tavrin
