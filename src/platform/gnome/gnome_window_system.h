#pragma once

#include "platform/gnome/gnome_extension.h"
#include "platform/gnome/gnome_keys.h"
#include "platform/session_bus/bus_link.h"
#include "platform/wayland/wayland_keyboard.h"
#include "platform/wayland/wayland_outputs.h"
#include "platform/window_scripts/script_answers.h"
#include "platform/windows/window_system.h"
#include "ports/runtime.h"

#include <filesystem>
#include <map>
#include <memory>

namespace tavrin {

/// Where a GNOME session is.
struct GnomeSession {
    std::string waylandDisplay{};             ///< empty means the one of the environment
    std::filesystem::path systemRoot{"/sys"}; ///< see `outputHardware`
};

/// The windows of a GNOME session on Wayland, by the program's extension of the shell; its outputs, as the
/// shell tells every client.
class GnomeWindowSystem final : public WindowSystem {
public:
    /// The collaborators must outlive it. The error is a text for the user.
    static std::expected<std::unique_ptr<GnomeWindowSystem>, std::string>
    open(BusLink& bus, GnomeSession session, EventLoop& eventLoop);

    std::string name() override;
    std::optional<WindowSystemObstacle> obstacle() override;
    void requestAccess() override;
    std::expected<WindowListing, WindowSystemObstacle> list() override;
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements,
                                        Seconds patience) override;
    std::vector<DesktopScreen> screens() override;
    void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) override;
    std::vector<RefusedKey> refusedKeys() override;
    bool reservesKeys() const override { return true; }
    std::optional<std::uint32_t> keyPosition(std::uint32_t nativeScanCode) override;
    bool activate(WindowID window, const std::string& token) override;
    std::optional<Point> pointer() override;
    Token observe(WindowSystemEvent event, std::function<void()> handler) override;

private:
    /// What is said over the session's bus; made anew with every connection to it.
    struct Conversation {
        explicit Conversation(const QDBusConnection& bus) : extension(bus), keys(extension) {}

        GnomeExtension extension;
        GnomeKeys keys;
        std::vector<Token> watches;
    };

    GnomeWindowSystem(BusLink& bus, GnomeSession session, std::unique_ptr<WaylandConnection> connection);

    void converse();
    std::optional<QJsonObject> ask(const char* method, const QVariantList& arguments, Seconds patience);
    void availabilityMayHaveChanged();

    BusLink& bus_;
    GnomeSession session_;
    std::unique_ptr<WaylandConnection> connection_;
    WaylandOutputs outputs_;
    std::unique_ptr<Conversation> conversation_; ///< null while there is no bus
    std::vector<KeyCombo> combos_;
    std::function<void(const KeyCombo&)> pressed_;
    ScriptAreas areas_;                            ///< as last read
    std::optional<WindowSystemObstacle> obstacle_; ///< as last told
    bool haveScreensChanged_ = false;              ///< while there was one
    std::map<WindowSystemEvent, Signal<>> signals_;
    std::vector<Token> watches_;
};

} // namespace tavrin
