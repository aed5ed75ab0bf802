#pragma once

#include "ports/status_item.h"

#include <QString>
#include <QStringList>

namespace tavrin {

/// The most characters of a menu title that are shown; of a longer one the middle is left out. Every text of
/// the program itself is shorter.
inline constexpr int longestMenuTitle = 120;

/// A title as it may stand in a menu: one line, without control characters and without characters that
/// would turn the direction of the text after it, elided in the middle.
QString menuTitle(const std::string& title);

/// A title for a QAction, which reads "&" as the mark of a mnemonic.
QString actionText(const std::string& title);

/// A title for the menu protocol of the session bus, which reads "_" as the mark of a mnemonic.
QString busMenuLabel(const std::string& title);

/// What is printed beside an item: "q", "⌃⌥R".
QString keyEquivalentText(const KeyEquivalent& equivalent);

/// How panels read the name of a key in the menu protocol of the session bus, which leaves it open: as the
/// printed character, or as the name that X11 gives to it ("comma").
enum class KeyNaming { characters, keysyms };

/// How the panels of this desktop do.
KeyNaming panelKeyNaming();

/// The names of the modifiers and of the key in the menu protocol of the session bus; empty for a key that
/// has no name there.
QStringList busMenuShortcut(const KeyEquivalent& equivalent, KeyNaming naming);

} // namespace tavrin
