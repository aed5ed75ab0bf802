#pragma once

#include "platform/windows/window_system.h"

#include <QJsonObject>
#include <QString>

#include <map>

namespace tavrin {

/// What the script in KWin answers, checked: whatever has another form than expected is left out, texts are
/// valid UTF-8 of bounded length, frames are finite.

struct KWinListing {
    WindowListing listing;
    std::map<WindowID, QString> identifiers; ///< KWin's own, of every listed window
};

/// Absent when the answer is no listing at all.
std::optional<KWinListing> readListing(const QJsonObject& answer);

/// A screen as far as the script knows it.
struct KWinScreenAreas {
    Rect frame;
    Rect workArea;

    bool operator==(const KWinScreenAreas&) const = default;
};

struct KWinAreas {
    std::vector<KWinScreenAreas> screens;
    int version = 0; ///< of Plasma: 5 or 6
};

KWinAreas readAreas(const QJsonObject& answer);

/// One for each of `count` placements; absent when the answer does not hold as many.
std::optional<std::vector<PlacementOutcome>> readOutcomes(const QJsonObject& answer, std::size_t count);

std::optional<Point> readPointer(const QJsonObject& answer);

} // namespace tavrin
