#pragma once

#include "platform/wayland/wayland_outputs.h"
#include "support/desktop/desktop.h"
#include "support/desktop/wayland_client.h"

#include <QJsonValue>
#include <QTimer>

#include <map>

namespace tavrin::desktop {

/// GNOME Shell as it is asked to run a script of the harness's own, which an extension of the harness
/// permits.
class GnomeTalk {
public:
    explicit GnomeTalk(MessageBus& bus) : bus_(bus) {}

    /// What the script gives; null when it fails.
    QJsonValue run(const QString& script);

private:
    MessageBus& bus_;
};

/// The shell's virtual monitors, each of the size it began with. Their identity comes from a folder that
/// stands in for the kernel's.
class GnomeOutputs final : public Outputs {
public:
    GnomeOutputs(GnomeTalk& shell, WaylandConnection& connection, QString systemRoot)
        : shell_(shell), outputs_(connection), systemRoot_(std::move(systemRoot)) {}

    bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {}) override;
    bool unplug(int output) override;
    std::vector<Rect> areas() override;
    std::string name(int output) override { return "Meta-" + std::to_string(output); }

private:
    bool apply();

    GnomeTalk& shell_;
    WaylandOutputs outputs_;
    QString systemRoot_;
    std::map<int, Rect> plugged_;
};

/// Keys from a virtual keyboard, as a remote desktop has one.
class GnomeKeyboard final : public PlayedKeyboard {
public:
    GnomeKeyboard(GnomeTalk& shell, WaylandConnection& connection)
        : PlayedKeyboard(connection), shell_(shell) {}

private:
    void change(std::uint32_t position, Change change) override;

    GnomeTalk& shell_;
};

class GnomeWindows final : public ListedWindows {
public:
    explicit GnomeWindows(GnomeTalk& shell) : shell_(shell) {}

    bool place(const WindowHandle& window, const Rect& frame) override;
    void tell(const WindowHandle& window, const Rect& frame) override;
    bool maximise(const WindowHandle& window) override;
    bool unmaximise(const WindowHandle& window) override;
    bool makeFullscreen(const WindowHandle& window) override;
    void activate(const WindowHandle& window) override;
    void close(const WindowHandle& window) override;

private:
    std::vector<Listed> list() override;
    /// Calls a method of the window.
    QJsonValue with(const WindowHandle& window, const QString& call);

    GnomeTalk& shell_;
};

/// GNOME Shell without a screen, with virtual monitors and the program's extension enabled.
class GnomeDesktop final : public Desktop {
public:
    explicit GnomeDesktop(const Options& options);

    bool has(Ability) const override { return false; }
    /// The server in which the shell shows the windows of X programs.
    XConnection& x() override { return *x_; }
    GnomeOutputs& outputs() override { return *outputs_; }
    GnomeWindows& windows() override { return windows_; }
    Keyboard& keyboard() override { return *keyboard_; }
    void crash() override { process_.kill(); }
    Process* compositor() override { return &process_; }

    /// Disables the program's extension, as the user does.
    bool disableExtension();
    /// What the shell does with its extensions while the lock screen is there.
    void setLockScreen(bool isShown);

private:
    void installExtensions();

    QTimer heartbeat_;
    HarnessLoop loop_;
    Process process_;
    GnomeTalk shell_{sessionBus()};
    GnomeWindows windows_{shell_};
    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<GnomeOutputs> outputs_;
    std::unique_ptr<GnomeKeyboard> keyboard_;
    std::unique_ptr<XConnection> x_;
};

} // namespace tavrin::desktop
