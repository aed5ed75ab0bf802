#pragma once

#include "ui/settings_window.h"
#include "ui/troubles.h"
#include "ui/user_interface.h"

#include <QWidget>

class QListWidget;
class QScrollArea;
class QVBoxLayout;

namespace tavrin {

class NoticeBar;
class SettingsPaneWidget;

/// The settings window made with Qt: the list of panes on the side and the chosen one beside it. The window
/// is made once, and closing only hides it; its content lives while it is open. A pane is made each time it
/// is chosen, so it always shows what the files hold.
class QtSettingsWindow final : public QWidget, public SettingsWindowSurface {
public:
    explicit QtSettingsWindow(const SettingsCollaborators& collaborators);
    ~QtSettingsWindow() override;

    void show(SettingsPane pane, ResetNotice notice) override;
    bool isOpen() override { return isVisible(); }
    void setOnClose(std::function<void()> onClose) override { onClose_ = std::move(onClose); }

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fill();
    void refillSoon();
    void fitIntoScreen();
    void buildSideList();
    QWidget* makeNotice();
    QWidget* makePage();
    void showPane(SettingsPane pane);
    void showSelectedPane();
    void scrollTo(QWidget* focused);

    SettingsCollaborators collaborators_;
    Troubles troubles_;
    std::function<void()> onClose_;
    ResetNotice notice_ = ResetNotice::hidden;
    SettingsPane selectedPane_ = SettingsPane::layouts;
    bool isTroubleshootingExpanded_ = false;
    bool isRefillPending_ = false;
    bool hasBeenShown_ = false;

    // The content; null while the window is closed.
    QWidget* content_ = nullptr;
    QListWidget* sideList_ = nullptr;
    QVBoxLayout* pageColumn_ = nullptr;
    QWidget* page_ = nullptr;
    QScrollArea* scrollArea_ = nullptr;
    NoticeBar* noticeBar_ = nullptr;
    SettingsPaneWidget* pane_ = nullptr;
};

} // namespace tavrin
