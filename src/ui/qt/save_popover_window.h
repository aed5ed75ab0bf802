#pragma once

#include "ui/save_layout_popover_view.h"

#include <QWidget>

#include <functional>
#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tavrin {

/// The form for saving a layout, drawn as a small window without decorations.
class SavePopoverWindow final : public QWidget {
public:
    /// `dismissed` is called when the user turns to another window.
    SavePopoverWindow(std::shared_ptr<SaveLayoutPopoverView> view, std::function<void()> dismissed);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void build();
    void nameChanged(const QString& name);
    void showState();
    int messageIconSide() const;
    void reserveSpaceForMessages(int messageWidth);
    void save();
    void cancel();

    std::shared_ptr<SaveLayoutPopoverView> view_;
    std::function<void()> dismissed_;
    QLineEdit* nameField_ = nullptr;
    QLabel* messageIcon_ = nullptr;
    QLabel* message_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* saveButton_ = nullptr;
};

} // namespace tavrin
