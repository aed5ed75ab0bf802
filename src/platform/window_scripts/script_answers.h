#pragma once

#include "platform/wayland/wayland_outputs.h"
#include "platform/windows/window_system.h"

#include <QJsonObject>
#include <QString>

#include <map>

namespace tavrin {

/// What the program's script in KWin and its extension of GNOME Shell answer, checked: whatever has another
/// form than expected is left out, texts are valid UTF-8 of bounded length, frames are finite.

struct ScriptListing {
    WindowListing listing;
    std::map<WindowID, QString> identifiers; ///< the desktop's own, of every listed window
};

/// Absent when the answer is no listing at all.
std::optional<ScriptListing> readListing(const QJsonObject& answer);

/// A screen as far as the script knows it.
struct ScriptScreen {
    Rect frame;
    Rect workArea;
    bool isPrimary = false; ///< false for all where the script does not know

    bool operator==(const ScriptScreen&) const = default;
};

struct ScriptAreas {
    std::vector<ScriptScreen> screens;
    int version = 0; ///< of Plasma (5 or 6), or of the interface of the extension
};

ScriptAreas readAreas(const QJsonObject& answer);

/// The screens of the outputs, as far as the script knows them with its areas. `systemRoot`: see
/// `outputHardware`.
std::vector<DesktopScreen> screensOf(const WaylandOutputs& outputs, const ScriptAreas& areas,
                                     const std::filesystem::path& systemRoot);

/// One for each of `count` placements; absent when the answer does not hold as many.
std::optional<std::vector<PlacementOutcome>> readOutcomes(const QJsonObject& answer, std::size_t count);

std::optional<Point> readPointer(const QJsonObject& answer);

} // namespace tavrin
