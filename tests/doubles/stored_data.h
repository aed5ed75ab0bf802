#pragma once

#include "doubles/fake_desktop.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_time.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"

namespace tavrin::testing {

/// The stores over files in memory, and the displays that the program sees.
struct StoredData {
    FakeFileSystem files;
    FakeTime time;
    AppSupportPaths paths{files, "/data"};
    ProfileStore store{paths, time};
    SettingsStore settings{paths, time};
    FixedDisplays displays;
};

} // namespace tavrin::testing
