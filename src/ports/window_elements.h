#pragma once

#include "base/geometry.h"
#include "records/windows.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// The result codes of element operations; a platform may answer codes beyond these.
enum class AXError : std::int32_t {
    success = 0,
    failure = -25200,
    illegalArgument = -25201,
    invalidUIElement = -25202,
    invalidUIElementObserver = -25203,
    cannotComplete = -25204,
    attributeUnsupported = -25205,
    actionUnsupported = -25206,
    notificationUnsupported = -25207,
    notImplemented = -25208,
    notificationAlreadyRegistered = -25209,
    notificationNotRegistered = -25210,
    apiDisabled = -25211,
    noValue = -25212,
    parameterizedAttributeUnsupported = -25213,
    notEnoughPrecision = -25214,
};

/// The name of a code, for example "cannotComplete"; "unknown(-1)" for a code without one.
std::string axErrorName(AXError error);

/// What can be asked of an element.
enum class AXAttribute {
    focusedApplication, ///< of the system-wide element: an element
    focusedWindow,      ///< of an application: an element
    windows,            ///< of an application: a list of elements, minimised windows included
    title,              ///< of a window: text
    role,               ///< of a window: text
    subrole,            ///< of a window: text
    position,           ///< of a window: a point
    size,               ///< of a window: a size
};

/// The base of what a platform remembers of an element.
class AXElementReference {
public:
    virtual ~AXElementReference() = default;
};

/// An element: the system, an application or a window. Made by the port that is asked about it; it may
/// outlive what it stands for, which then answers `invalidUIElement`.
using AXElement = std::shared_ptr<const AXElementReference>;

/// The value of an attribute; the first alternative is "no value".
using AXValue =
    std::variant<std::monostate, bool, std::string, Point, Size, AXElement, std::vector<AXElement>>;

/// Where a window is to be.
struct AXFrame {
    AXElement element;
    Rect frame;
};

/// What came of setting a frame. A size that the client rounded or limited is a success, and so is a frame
/// that a hidden window takes on when it is shown. After `cannotComplete` it may still happen later.
struct AXFrameResult {
    AXError position = AXError::success;
    AXError size = AXError::success;
    bool isTiled = false; ///< the window manager decides about the place; the window is on the wanted screen

    bool operator==(const AXFrameResult&) const = default;
};

/// Reads the attributes of other applications' windows and sets their frames. Frames are what the user sees
/// (title bar included, invisible shadows not), in points with a top-left origin at the primary screen; what
/// is written and what is read back are the same rectangle.
class WindowElements {
public:
    virtual ~WindowElements() = default;

    virtual AXElement systemWideElement() = 0;

    /// The application of a process; where a process hosts several applications and `bundleIdentifier` is
    /// given, only that one. Cannot fail: an unknown process answers when its attributes are read.
    virtual AXElement applicationElement(ProcessID pid,
                                         const std::optional<std::string>& bundleIdentifier = {}) = 0;

    /// The value now. `apiDisabled` without permission, `invalidUIElement` for an element that is gone,
    /// `attributeUnsupported` for an attribute the element does not have, `noValue` when it is not set.
    virtual std::expected<AXValue, AXError> attribute(const AXElement& element, AXAttribute attribute) = 0;

    /// The element of the window that the window list gives this number, of that process. It may be gone.
    /// Absent where the platform cannot tell which one it is.
    virtual std::optional<AXElement> listedWindowElement(ProcessID pid, std::int64_t number) = 0;

    /// Sets the frames of windows, the position first, then the size, and returns once the desktop has
    /// carried it out, or `cannotComplete` for those for which it did not within a bounded time. States that
    /// pin a window (maximised, fullscreen) are left first. One result for each, in order.
    virtual std::vector<AXFrameResult> setFrames(std::span<const AXFrame> frames) = 0;
};

/// The attribute's value as a `Value`; absent when it cannot be read or is something else.
template <class Value>
std::optional<Value> readAttribute(WindowElements& elements, const AXElement& element,
                                   AXAttribute attribute) {
    auto value = elements.attribute(element, attribute);
    if (!value || !std::holds_alternative<Value>(*value))
        return std::nullopt;
    return std::get<Value>(std::move(*value));
}

/// The desktop's own answer to whether this program may see and move other applications' windows.
class AccessibilityTrust {
public:
    virtual ~AccessibilityTrust() = default;

    /// The answer now, without showing anything; false when the desktop cannot be asked.
    virtual bool isProcessTrusted() = 0;

    enum class Prompt { show, suppress };

    /// As above, after showing the desktop's permission prompt to an untrusted program where there is one.
    virtual bool isProcessTrusted(Prompt prompt) = 0;
};

} // namespace tavrin
