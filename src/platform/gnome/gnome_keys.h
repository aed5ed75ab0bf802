#pragma once

#include "platform/gnome/gnome_extension.h"
#include "records/key_combo.h"

#include <functional>
#include <map>
#include <vector>

namespace tavrin {

/// Key combinations that GNOME Shell keeps for the program while its extension is there, by the positions of
/// their keys.
class GnomeKeys {
public:
    /// The extension must outlive this.
    explicit GnomeKeys(GnomeExtension& extension);
    ~GnomeKeys();
    GnomeKeys(const GnomeKeys&) = delete;
    GnomeKeys& operator=(const GnomeKeys&) = delete;

    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed);
    const std::vector<RefusedKey>& refused() const { return refused_; }
    Token observeRefused(std::function<void()> handler) {
        return refusedChanged_.connect(std::move(handler));
    }

private:
    void reserve();
    void pressed(const QString& accelerator);

    GnomeExtension& extension_;
    std::vector<KeyCombo> combos_;
    std::function<void(const KeyCombo&)> pressed_;
    std::map<QString, KeyCombo> reserved_; ///< by the accelerators that were asked for
    std::vector<RefusedKey> refused_;
    Signal<> refusedChanged_;
    std::vector<Token> watches_;
};

} // namespace tavrin
