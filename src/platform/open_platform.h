#pragma once

#include "base/geometry.h"
#include "ports/platform.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

/// The desktop that the program runs on, with its event loop.
class OpenedPlatform {
public:
    virtual ~OpenedPlatform() = default;

    virtual const Platform& platform() = 0;

    /// Where the status item stands, in the toolkit's desktop coordinates; absent when the panel does not
    /// tell.
    virtual std::optional<Rect> statusItemAnchor() = 0;

    /// `handler` is called when another start of the program asks this one to come forward.
    virtual void setOnActivate(std::function<void()> handler) = 0;

    /// Runs the event loop until the program ends; returns the exit status of the process.
    virtual int run() = 0;
};

/// Opens the desktop of this session and makes the application object of its toolkit, which may take its
/// own arguments out of `argc` and `argv`. The one place that knows which platforms there are. The error
/// is a text for the user.
std::expected<std::unique_ptr<OpenedPlatform>, std::string> openPlatform(int& argc, char** argv);

} // namespace tavrin
