#pragma once

#include "platform/kwin/kwin_script_channel.h"
#include "platform/wayland/wayland_outputs.h"
#include "support/desktop/desktop.h"
#include "support/desktop/wayland_client.h"

#include <QJsonArray>
#include <QTimer>

#include <map>

struct kde_output_configuration_v2;
struct kde_output_device_v2;
struct kde_output_management_v2;
struct org_kde_kwin_fake_input;

namespace tavrin::desktop {

/// KWin as it is asked on the session bus, by a script of the harness's own.
class KWinTalk {
public:
    void open(const QDBusConnection& bus, const QString& folder);

    QJsonObject ask(QJsonObject question);
    /// Does with the active window what the user's shortcut of that name does.
    void invoke(const QString& shortcut);
    QVariantMap facts(const WindowHandle& window);

private:
    std::unique_ptr<KWinScriptChannel> channel_;
    std::optional<QDBusConnection> bus_;
};

/// KWin's virtual outputs, all of one size. Their identity comes from a folder that stands in for the
/// kernel's.
class KWinOutputs final : public Outputs {
public:
    KWinOutputs(WaylandConnection& connection, QString systemRoot);
    ~KWinOutputs() override;

    bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {}) override;
    bool unplug(int output) override;
    std::vector<Rect> areas() override;
    std::string name(int output) override { return "Virtual-" + std::to_string(output); }

private:
    struct Listeners;

    bool configure(int output,
                   const std::function<void(kde_output_configuration_v2*, kde_output_device_v2*)>& change);

    WaylandConnection& connection_;
    QString systemRoot_;
    WaylandOutputs outputs_;
    kde_output_management_v2* management_ = nullptr;
    std::map<std::string, kde_output_device_v2*> devices_; ///< by name
    std::vector<kde_output_device_v2*> all_;
    std::vector<Token> watches_;
};

class KWinWindows final : public ListedWindows {
public:
    explicit KWinWindows(KWinTalk& kwin) : kwin_(kwin) {}

    bool place(const WindowHandle& window, const Rect& frame) override;
    void tell(const WindowHandle& window, const Rect& frame) override;
    bool maximise(const WindowHandle& window) override;
    bool unmaximise(const WindowHandle& window) override;
    bool makeFullscreen(const WindowHandle& window) override;
    bool tileLeft(const WindowHandle& window) override;
    void activate(const WindowHandle& window) override;
    void close(const WindowHandle& window) override;
    bool isFullscreen(const WindowHandle& window) override {
        return kwin_.facts(window)["fullscreen"].toBool();
    }

private:
    std::vector<Listed> list() override;
    /// Does with the window what the user's shortcut of that name does.
    void invoke(const WindowHandle& window, const QString& shortcut);

    KWinTalk& kwin_;
};

/// Keys as KWin takes them from a program that may play a keyboard.
class KWinKeyboard final : public PlayedKeyboard {
public:
    explicit KWinKeyboard(WaylandConnection& connection);
    ~KWinKeyboard() override;

private:
    void change(std::uint32_t position, Change change) override;

    org_kde_kwin_fake_input* input_ = nullptr;
    Token watch_;
};

/// KWin with virtual outputs of the size of the first display; others can have no other size.
class KWinDesktop final : public Desktop {
public:
    explicit KWinDesktop(const Options& options);

    bool has(Ability ability) const override {
        return ability == Ability::tilesWindows || ability == Ability::longTitles;
    }
    /// The server in which KWin shows the windows of X programs.
    XConnection& x() override { return *x_; }
    KWinOutputs& outputs() override { return *outputs_; }
    KWinWindows& windows() override { return windows_; }
    Keyboard& keyboard() override { return *keyboard_; }
    void crash() override { kwin_.kill(); }
    Process* compositor() override { return &kwin_; }
    KWinTalk& talk() { return talk_; }

    /// After a crash.
    void start();

private:
    QTimer heartbeat_;
    Rect size_;
    int outputCount_;
    HarnessLoop loop_;
    Process kwin_;
    KWinTalk talk_;
    KWinWindows windows_{talk_};
    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<KWinOutputs> outputs_;
    std::unique_ptr<KWinKeyboard> keyboard_;
    std::unique_ptr<XConnection> x_;
};

} // namespace tavrin::desktop
