#pragma once

#include "platform/wayland/wayland_connection.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct wl_keyboard;
struct wl_seat;
struct xkb_keymap;

namespace tavrin {

/// Keymaps, Qt and sway number a key so much higher than the input layer does.
inline constexpr std::uint32_t keyOffset = 8;

/// The position (evdev code) of the key that the toolkit reports by this native scan code; absent for none.
std::optional<std::uint32_t> evdevPosition(std::uint32_t nativeScanCode);

/// What the keys of a keyboard give. Keys are positions (evdev codes), symbols are X key symbols, layouts
/// (a French and a Russian one, say) are counted from 0.
class KeyboardMap {
public:
    /// A keymap in its text form; absent when it is none.
    static std::optional<KeyboardMap> parse(const std::string& text);

    std::size_t layoutCount() const;

    /// What the key gives in that layout, with or without Shift; 0 for nothing.
    enum class Shift { isUp, isDown };
    std::uint32_t symbol(std::uint32_t position, std::size_t layout, Shift shift = Shift::isUp) const;

    /// The first key that gives the symbol without Shift, in the first layout that has one.
    std::optional<std::uint32_t> position(std::uint32_t symbol) const;

private:
    explicit KeyboardMap(std::shared_ptr<xkb_keymap> keymap) : keymap_(std::move(keymap)) {}

    std::shared_ptr<xkb_keymap> keymap_;
};

/// The keyboard as the compositor describes it to every client. Key presses reach only the program with
/// the focus and are not read here.
class WaylandKeyboard {
public:
    /// The connection must outlive this.
    explicit WaylandKeyboard(WaylandConnection& connection);
    ~WaylandKeyboard();
    WaylandKeyboard(const WaylandKeyboard&) = delete;
    WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

    /// Absent when there is no keyboard, or the compositor does not describe it.
    const std::optional<KeyboardMap>& map() const { return map_; }

    /// Another keyboard, or another choice of layouts. The same description again is no change.
    Token observeChanges(std::function<void()> handler) { return changed_.connect(std::move(handler)); }

private:
    struct Listeners;

    void setKeyboard(bool isThere);
    void setMap(std::string text);

    WaylandConnection& connection_;
    Signal<> changed_;
    std::uint32_t seatName_ = 0;
    wl_seat* seat_ = nullptr;
    wl_keyboard* keyboard_ = nullptr;
    std::string text_;
    std::optional<KeyboardMap> map_;
    Token watch_;
};

} // namespace tavrin
