#pragma once

#include "ports/application_catalog.h"

namespace tavrin {

/// Knows no application. A real one gives every window of an application the same identifier, whatever the
/// application was started from, today and after the next login.
class UnsupportedApplicationCatalog final : public ApplicationCatalog {
public:
    ApplicationIdentity identify(const ApplicationClues&) override { return {}; }
    ApplicationIdentity installedApplication(const std::string&) override { return {}; }
};

} // namespace tavrin
