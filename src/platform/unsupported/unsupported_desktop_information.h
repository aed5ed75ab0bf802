#pragma once

#include "ports/session.h"

namespace tavrin {

/// Knows nothing of the desktop. A real one tells what a person who looks into a fault would ask first.
class UnsupportedDesktopInformation final : public DesktopInformation {
public:
    DesktopFacts currentFacts() override { return {}; }
};

} // namespace tavrin
