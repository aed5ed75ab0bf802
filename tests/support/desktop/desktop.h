#pragma once

#include "support/desktop/keyboard.h"
#include "support/desktop/message_bus.h"
#include "support/desktop/outputs.h"
#include "support/desktop/test_client.h"
#include "support/desktop/tray.h"
#include "support/desktop/windows.h"
#include "support/desktop/x_server.h"

#include <QTemporaryDir>

#include <csignal>
#include <memory>

namespace tavrin::desktop {

/// A whole private desktop: X server, window manager, session bus and a second bus standing in for the system
/// bus, a home directory of its own. Everything ends with this object. Needs a QCoreApplication.
class Desktop {
public:
    struct Options {
        std::string name = "desktop"; ///< names the log folder
        std::vector<Rect> displays{{0, 0, 1920, 1080}};
        bool hasWindowManager = true;
        QString windowManager; ///< with its arguments; empty for the one that is tested with
        bool hasTray = true;
    };

    /// Aborts with the log folder's path when a part does not come up: no test can go on without it.
    explicit Desktop(const Options& options);
    ~Desktop();

    XConnection& x() { return *x_; }
    Outputs& outputs() { return *outputs_; }
    Windows& windows() { return *windows_; }
    Keyboard& keyboard() { return *keyboard_; }
    Tray& tray() { return *tray_; }
    MessageBus& sessionBus() { return sessionBus_; }
    MessageBus& systemBus() { return systemBus_; }
    XServer& server() { return server_; }

    /// What a program started on this desktop gets.
    const QProcessEnvironment& environment() const { return environment_; }
    void setVariable(const QString& name, const QString& value) { environment_.insert(name, value); }
    QString home() const { return scratch_.filePath("home"); }
    /// The folder of this desktop's logs; it stays when the desktop goes.
    const QString& logs() const { return logs_; }
    QString log(const QString& name) const { return logs_ + "/" + name + ".log"; }

    /// The one that is tested with unless `command` names another.
    bool startWindowManager(const QString& command = {});
    void stopWindowManager();
    /// It stops answering.
    void hangWindowManager() { windowManager_->sendSignal(SIGSTOP); }
    void resumeWindowManager() { windowManager_->sendSignal(SIGCONT); }

    /// A test application, started and ready.
    std::unique_ptr<TestClient> startClient();
    /// Any program of the machine; absent when it cannot be started.
    std::unique_ptr<Process> startProgram(const QString& program, const QStringList& arguments = {});

private:
    void prepareEnvironment();
    xcb_window_t openProbe();

    QTemporaryDir scratch_;
    QString logs_;
    QProcessEnvironment environment_;
    XServer server_;
    MessageBus sessionBus_;
    MessageBus systemBus_;
    std::unique_ptr<XConnection> x_;
    std::unique_ptr<Outputs> outputs_;
    std::unique_ptr<Windows> windows_;
    std::unique_ptr<Keyboard> keyboard_;
    std::unique_ptr<Tray> tray_;
    std::unique_ptr<Process> windowManager_;
};

} // namespace tavrin::desktop
