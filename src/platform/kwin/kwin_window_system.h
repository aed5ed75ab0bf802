#pragma once

#include "platform/kwin/kwin_global_keys.h"
#include "platform/kwin/kwin_script_channel.h"
#include "platform/session_bus/bus_link.h"
#include "platform/wayland/wayland_keyboard.h"
#include "platform/wayland/wayland_outputs.h"
#include "platform/window_scripts/script_answers.h"
#include "platform/windows/window_system.h"
#include "ports/runtime.h"

#include <filesystem>
#include <memory>

namespace tavrin {

/// Where a Plasma session is.
struct KWinSession {
    std::string scriptFolder;                 ///< see `KWinScriptChannel`
    std::string waylandDisplay{};             ///< empty means the one of the environment
    std::filesystem::path systemRoot{"/sys"}; ///< see `outputHardware`
    Seconds grace{3};                         ///< how long KWin may be away before it counts as missing
};

/// The windows of a Plasma session on Wayland: by a script in KWin, by Plasma's global shortcuts, and its
/// outputs as KWin tells every client. KWin may crash and come back.
class KWinWindowSystem final : public WindowSystem {
public:
    /// The collaborators must outlive it. The error is a text for the user.
    static std::expected<std::unique_ptr<KWinWindowSystem>, std::string>
    open(BusLink& bus, KWinSession session, EventLoop& eventLoop, Scheduler& scheduler);

    std::string name() override;
    std::optional<WindowSystemObstacle> obstacle() override;
    std::expected<WindowListing, WindowSystemObstacle> list() override;
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements,
                                        Seconds patience) override;
    std::vector<DesktopScreen> screens() override;
    void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) override;
    bool reservesKeys() const override { return true; }
    std::vector<RefusedKey> refusedKeys() override;
    std::optional<std::uint32_t> keyPosition(std::uint32_t nativeScanCode) override;
    bool activate(WindowID window, const std::string& token) override;
    std::optional<Point> pointer() override;
    Token observe(WindowSystemEvent event, std::function<void()> handler) override;

private:
    /// What is said over the session's bus; made anew with every connection to it.
    struct Conversation {
        Conversation(const QDBusConnection& bus, const std::string& scriptFolder);

        KWinScriptChannel channel;
        KWinGlobalKeys keys;
        std::vector<Token> watches;
    };

    /// What KWin tells its clients; made anew when another KWin took over.
    struct Client {
        explicit Client(std::unique_ptr<WaylandConnection> wayland);

        std::unique_ptr<WaylandConnection> connection;
        WaylandOutputs outputs{*connection};
        WaylandKeyboard keyboard{*connection};
        std::vector<Token> watches;
    };

    KWinWindowSystem(BusLink& bus, KWinSession session, EventLoop& eventLoop, Scheduler& scheduler);

    void converse();
    std::expected<void, std::string> connect();
    std::optional<QJsonObject> ask(const QJsonObject& question, Seconds patience);
    bool isAvailable() const { return conversation_ && conversation_->channel.isAvailable(); }
    void availabilityMayHaveChanged();
    void readAreas();
    void keyboardChanged();

    KWinSession session_;
    EventLoop& eventLoop_;
    Scheduler& scheduler_;
    BusLink& bus_;
    std::unique_ptr<Conversation> conversation_; ///< null while there is no bus
    std::unique_ptr<Client> client_;             ///< null while KWin is away
    std::vector<KeyCombo> combos_;
    std::function<void(const KeyCombo&)> pressed_;
    std::map<WindowID, QString> identifiers_; ///< of the windows of the last listing
    ScriptAreas areas_;                       ///< as last read
    bool isMissing_ = false;
    Token grace_;
    std::map<WindowSystemEvent, Signal<>> signals_;
    std::vector<Token> watches_;
};

} // namespace tavrin
