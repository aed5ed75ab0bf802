#include "platform/wayland/wayland_keyboard.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {
namespace {

/// A keymap has some 60 KB.
constexpr std::uint32_t keymapLimit = 4 * 1024 * 1024;

/// The text in the first `size` bytes of a file; empty when it has not that many, since touching what is
/// not there would end the program.
std::string mappedText(int file, std::uint32_t size) {
    struct stat status{};
    if (size == 0 || size > keymapLimit || ::fstat(file, &status) != 0 ||
        status.st_size < static_cast<off_t>(size))
        return {};
    void* bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (bytes == MAP_FAILED)
        return {};
    const std::string_view text(static_cast<const char*>(bytes), size);
    std::string copy(text.substr(0, text.find('\0')));
    ::munmap(bytes, size);
    return copy;
}

} // namespace

std::optional<std::uint32_t> evdevPosition(std::uint32_t nativeScanCode) {
    return nativeScanCode > keyOffset ? std::optional(nativeScanCode - keyOffset) : std::nullopt;
}

std::optional<KeyboardMap> KeyboardMap::parse(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    const std::shared_ptr<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES),
                                               xkb_context_unref);
    if (!context)
        return std::nullopt;
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    std::shared_ptr<xkb_keymap> keymap(xkb_keymap_new_from_string(context.get(), text.c_str(),
                                                                  XKB_KEYMAP_FORMAT_TEXT_V1,
                                                                  XKB_KEYMAP_COMPILE_NO_FLAGS),
                                       xkb_keymap_unref);
    if (!keymap)
        return std::nullopt;
    return KeyboardMap(std::move(keymap));
}

std::size_t KeyboardMap::layoutCount() const {
    return xkb_keymap_num_layouts(keymap_.get());
}

std::uint32_t KeyboardMap::symbol(std::uint32_t position, std::size_t layout, Shift shift) const {
    if (layout >= layoutCount() || position > XKB_KEYCODE_MAX - keyOffset)
        return XKB_KEY_NoSymbol;
    // A key may have fewer layouts than the keyboard; the state knows the rule for those, and which level
    // Shift chooses.
    const std::shared_ptr<xkb_state> state(xkb_state_new(keymap_.get()), xkb_state_unref);
    if (!state)
        return XKB_KEY_NoSymbol;
    const auto index = xkb_keymap_mod_get_index(keymap_.get(), XKB_MOD_NAME_SHIFT);
    const xkb_mod_mask_t held =
        shift == Shift::isDown && index != XKB_MOD_INVALID ? xkb_mod_mask_t{1} << index : 0;
    xkb_state_update_mask(state.get(), held, 0, 0, 0, 0, static_cast<xkb_layout_index_t>(layout));
    return xkb_state_key_get_one_sym(state.get(), position + keyOffset);
}

std::optional<std::uint32_t> KeyboardMap::position(std::uint32_t symbol) const {
    const auto first = std::max(xkb_keymap_min_keycode(keymap_.get()), keyOffset);
    for (std::size_t layout = 0; layout < layoutCount(); ++layout)
        for (auto key = first; key <= xkb_keymap_max_keycode(keymap_.get()); ++key)
            if (this->symbol(key - keyOffset, layout) == symbol)
                return key - keyOffset;
    return std::nullopt;
}

struct WaylandKeyboard::Listeners {
    static WaylandKeyboard& of(void* self) { return *static_cast<WaylandKeyboard*>(self); }

    static constexpr wl_seat_listener seat{
        .capabilities =
            [](void* self, wl_seat*, std::uint32_t capabilities) {
                of(self).setKeyboard((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0);
            },
        .name = [](void*, wl_seat*, const char*) {},
    };

    static constexpr wl_keyboard_listener keyboard{
        .keymap =
            [](void* self, wl_keyboard*, std::uint32_t format, std::int32_t file, std::uint32_t size) {
                of(self).setMap(format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 ? mappedText(file, size)
                                                                           : std::string());
                ::close(file);
            },
        .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
        .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
        .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
        .modifiers = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                        std::uint32_t) {},
        .repeat_info = [](void*, wl_keyboard*, std::int32_t, std::int32_t) {},
    };
};

WaylandKeyboard::WaylandKeyboard(WaylandConnection& connection)
    : connection_(connection),
      watch_(connection.watchGlobals(
          wl_seat_interface.name,
          [this](const auto& global) {
              if (seat_)
                  return; // one person, one keyboard: the first seat
              seatName_ = global.name;
              seat_ = static_cast<wl_seat*>(connection_.bind(global, wl_seat_interface, 4));
              wl_seat_add_listener(seat_, &Listeners::seat, this);
              connection_.flush();
          },
          [this](std::uint32_t name) {
              if (!seat_ || name != seatName_)
                  return;
              setKeyboard(false);
              wl_seat_destroy(std::exchange(seat_, nullptr));
          })) {
    // The first answer has the capabilities of the seat, the second one the keymap.
    if (connection.roundTrip())
        connection.roundTrip();
}

WaylandKeyboard::~WaylandKeyboard() {
    if (keyboard_)
        wl_keyboard_destroy(keyboard_);
    if (seat_)
        wl_seat_destroy(seat_);
    connection_.flush();
}

void WaylandKeyboard::setKeyboard(bool isThere) {
    if (isThere == (keyboard_ != nullptr))
        return;
    if (isThere) {
        keyboard_ = wl_seat_get_keyboard(seat_);
        wl_keyboard_add_listener(keyboard_, &Listeners::keyboard, this);
        connection_.flush();
    } else {
        wl_keyboard_destroy(std::exchange(keyboard_, nullptr));
        setMap({});
    }
}

void WaylandKeyboard::setMap(std::string text) {
    if (text == text_)
        return;
    text_ = std::move(text);
    map_ = KeyboardMap::parse(text_);
    changed_.emit();
}

} // namespace tavrin
