#pragma once

#include "ports/store_error.h"
#include "records/app_settings.h"

#include <expected>

namespace tavrin {

/// Reads what the user chose.
class SettingsProviding {
public:
    virtual ~SettingsProviding() = default;

    /// The settings as they are on disk now; the defaults when there is no file.
    virtual std::expected<AppSettings, StoreError> load() = 0;
};

} // namespace tavrin
