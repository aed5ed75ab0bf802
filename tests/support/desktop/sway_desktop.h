#pragma once

#include "platform/i3/i3_connection.h"
#include "support/desktop/desktop.h"
#include "support/desktop/x_keyboard.h"
#include "support/desktop/x_server.h"

#include <QJsonValue>
#include <QTimer>

namespace tavrin::desktop {

/// What sway says of itself over its socket. It tells of no move, so whoever waits asks again and again.
class SwayTalk {
public:
    void open(const std::string& socketPath) { questions_.emplace(socketPath); }

    /// Whether sway carried out all of these commands.
    bool run(const QString& commands);
    QJsonValue tree();

private:
    std::optional<I3Questions> questions_;
};

/// The outputs of a sway that runs in windows of an X server: a window each. Their identity comes from a
/// folder that stands in for the kernel's.
class SwayOutputs final : public Outputs {
public:
    SwayOutputs(SwayTalk& sway, QString systemRoot) : sway_(sway), systemRoot_(std::move(systemRoot)) {}

    bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {}) override;
    bool unplug(int output) override;
    std::vector<Rect> areas() override;
    std::string name(int output) override { return names_[output].toStdString(); }

    void adopt(XConnection& server) { server_ = &server; }
    /// The X window in which the output is seen; none when it is off.
    xcb_window_t window(const QString& name);
    /// What keeps them as they are now when sway reads its configuration again.
    QString configuration();
    /// One of them, whichever.
    xcb_window_t anyWindow() { return names_.empty() ? XCB_NONE : window(names_.begin()->second); }

private:
    std::map<QString, Rect> active();

    SwayTalk& sway_;
    QString systemRoot_;
    XConnection* server_ = nullptr;
    std::map<int, QString> names_;
    int lastNumber_ = 0;
};

class SwayWindows final : public ListedWindows {
public:
    explicit SwayWindows(SwayTalk& sway) : sway_(sway) {}

    bool place(const WindowHandle& window, const Rect& frame) override;
    void tell(const WindowHandle& window, const Rect& frame) override;
    bool maximise(const WindowHandle& window) override { return setFullscreen(window, true); }
    bool unmaximise(const WindowHandle& window) override { return setFullscreen(window, false); }
    bool makeFullscreen(const WindowHandle& window) override { return setFullscreen(window, true); }
    void activate(const WindowHandle& window) override { tell(window, "focus"); }
    void close(const WindowHandle& window) override { tell(window, "kill"); }

    /// Has sway do something with the window.
    bool tell(const WindowHandle& window, const QString& command);
    /// It is not for the user to place.
    bool isTiled(const WindowHandle& window);
    bool isShown(const WindowHandle& window);

private:
    static void collect(const QJsonValue& node, std::vector<Listed>& leaves);
    std::vector<Listed> list() override;
    bool setFullscreen(const WindowHandle& window, bool isWanted);

    SwayTalk& sway_;
};

/// Keys for the X window of a sway output, which takes them as its keyboard.
class SwayKeyboard final : public XKeyboard {
public:
    SwayKeyboard(XConnection& server, SwayOutputs& outputs)
        : XKeyboard(server), server_(server), outputs_(outputs) {}

    bool press(std::uint32_t symbol) override { return focus() && XKeyboard::press(symbol); }
    using Keyboard::pressWith;
    bool pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) override {
        return focus() && XKeyboard::pressWith(std::move(modifiers), symbol);
    }

private:
    bool focus();

    XConnection& server_;
    SwayOutputs& outputs_;
};

/// sway in windows of an X server. It refuses to run as root; then it and the applications run as "nobody",
/// while the program under test stays the harness's own.
class SwayDesktop final : public Desktop {
public:
    explicit SwayDesktop(const Options& options);
    ~SwayDesktop() override;

    bool has(Ability) const override { return false; }
    XConnection& x() override { return *x_; }
    SwayOutputs& outputs() override { return outputs_; }
    SwayWindows& windows() override { return windows_; }
    Keyboard& keyboard() override { return *keyboard_; }
    void crash() override { sway_.kill(); }
    SwayTalk& talk() { return talk_; }
    Process* compositor() override { return &sway_; }
    /// Its folder for sockets and the like.
    QString runtime() const { return scratch_.filePath("sway"); }

    /// Adds lines to sway's configuration and has it read again.
    bool configure(const QString& lines);

private:
    QStringList commandLine(const QString& program, const QStringList& arguments) override;
    void start(std::size_t outputCount);

    QTimer heartbeat_;
    XServer server_;
    std::unique_ptr<XConnection> x_;
    Process sway_;
    pid_t session_ = 0;
    SwayTalk talk_;
    SwayOutputs outputs_{talk_, scratch_.filePath("sys")};
    SwayWindows windows_{talk_};
    std::unique_ptr<SwayKeyboard> keyboard_;
};

} // namespace tavrin::desktop
