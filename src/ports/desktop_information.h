#pragma once

#include <string>

namespace tavrin {

/// What a person who looks into a fault wants to know of the desktop. A text is empty when it is not known.
struct DesktopFacts {
    std::string desktopName;       ///< for example "XFCE"
    std::string windowManagerName; ///< for example "Openbox"
    std::string sessionType;       ///< for example "x11"
    std::string toolkitVersion;    ///< for example "Qt 6.4.2"

    bool operator==(const DesktopFacts&) const = default;
};

/// Describes the desktop for troubleshooting. Nothing is decided by it.
class DesktopInformation {
public:
    virtual ~DesktopInformation() = default;

    /// The facts now. Texts are valid UTF-8 of bounded length.
    virtual DesktopFacts currentFacts() = 0;
};

} // namespace tavrin
