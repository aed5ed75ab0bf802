#pragma once

#include "support/desktop/desktop.h"
#include "support/desktop/x_keyboard.h"
#include "support/desktop/x_outputs.h"
#include "support/desktop/x_server.h"
#include "support/desktop/x_windows.h"

namespace tavrin::desktop {

/// An X server with a window manager.
class XDesktop final : public Desktop {
public:
    explicit XDesktop(const Options& options);
    ~XDesktop() override;

    bool has(Ability ability) const override { return ability != Ability::tilesWindows; }
    XConnection& x() override { return *x_; }
    XOutputs& outputs() override { return *outputs_; }
    XWindows& windows() override { return *windows_; }
    XKeyboard& keyboard() override { return *keyboard_; }
    void crash() override;
    XServer& server() { return server_; }

    /// The one that is tested with unless `command` names another.
    bool startWindowManager(const QString& command = {});
    void stopWindowManager();
    /// It stops answering.
    void hangWindowManager() { windowManager_->sendSignal(SIGSTOP); }
    void resumeWindowManager() { windowManager_->sendSignal(SIGCONT); }

private:
    xcb_window_t openProbe();

    XServer server_;
    std::unique_ptr<XConnection> x_;
    std::unique_ptr<XOutputs> outputs_;
    std::unique_ptr<XWindows> windows_;
    std::unique_ptr<XKeyboard> keyboard_;
    std::unique_ptr<Process> windowManager_;
};

} // namespace tavrin::desktop
