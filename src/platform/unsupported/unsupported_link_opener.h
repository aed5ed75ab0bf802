#pragma once

#include "ports/session.h"

namespace tavrin {

/// Opens nothing. A real one does not wait for the program that opens.
class UnsupportedLinkOpener final : public LinkOpener {
public:
    bool openAccessibilitySettings() override { return false; }
    bool openFolder(const std::filesystem::path&) override { return false; }
};

} // namespace tavrin
