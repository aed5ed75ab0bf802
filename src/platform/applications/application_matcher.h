#pragma once

#include "platform/applications/desktop_entry_index.h"
#include "platform/applications/process_facts.h"
#include "ports/application_catalog.h"

namespace tavrin {

/// The installed application that a window belongs to; null when none fits. `clues` hold no empty texts.
/// Same clues, same facts, same entries: same answer. The first of these that names an entry decides:
///
/// 1. The identifier that the application declares.
/// 2. The Flatpak that the process lives in; of several entries of it the one that fits the window class.
/// 3. The window class: against StartupWMClass, then the name of the entry, then the last part of a name
///    such as org.gnome.Nautilus, then the program that Exec starts; at each step the instance before the
///    class, since web applications share the class of their browser. Of entries that fit equally well
///    those of a Flatpak stand back when the process is in none, then the process's own program counts,
///    then one that menus show wins, then one that starts its program without arguments, then the first by
///    name. But when the application that the session manager or snap started the process as fits the
///    window class in any way, it is the one.
/// 4. The program of the process against the program that Exec starts.
/// 5. The application that the process was started as.
///
/// What the process was started as comes that late because programs inherit it from whatever starts them: a
/// program called from a terminal, a file manager or a game launcher counts as part of these. So 5 is left
/// out as well when that application is of a kind that starts others (by its categories), or when one of
/// the process's parents already is that application's program.
const InstalledApplication* matchApplication(const DesktopEntryIndex& index, const ApplicationClues& clues,
                                             const ProcessFacts& facts);

} // namespace tavrin
