#pragma once

#include "records/layouts.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A saved layout as a picture: the displays to scale with the windows on them. All rectangles are in
/// points with the origin at the top left corner of the picture, y downwards.
///
/// Windows stand where the user saw them. Their saved frames already count y downwards from the top of the
/// primary display, while the displays count upwards from its bottom. The displays are therefore turned
/// over: the top of a display is the height of the primary one less the display's upper edge. That height
/// is not saved, only what panels leave free of it, so it is worked out (see `primaryHeight`).
struct LayoutPicture {
    struct Screen {
        Rect frame;
        bool isInternal = false;
        std::string name; ///< shown in the picture; empty when the display is connected now
        bool operator==(const Screen&) const = default;
    };
    struct Window {
        Rect frame;             ///< may reach beyond the screens
        Rect visibleFrame;      ///< the part on the screen that shows most of it
        std::size_t screen = 0; ///< the index of that screen; 0 when no displays were saved
        std::string label;      ///< the application's name
        std::string title;      ///< empty when it had none
        std::optional<std::string> bundleIdentifier;
        bool operator==(const Window&) const = default;
    };

    enum class ScreenNames { hidden, shown };

    Size size;
    std::vector<Screen> screens; ///< in the order of the layout; empty when no displays were saved
    std::vector<Window> windows; ///< in the order of drawing: the large ones behind the small ones

    bool operator==(const LayoutPicture&) const = default;

    /// The picture in words, for those who cannot see it.
    std::string description() const;
};

/// Windows that lie on no display, and frames that are no rectangles, are left out.
LayoutPicture makeLayoutPicture(const SavedLayout& layout,
                                LayoutPicture::ScreenNames names = LayoutPicture::ScreenNames::hidden);

} // namespace tavrin
