#pragma once

#include "fuzz_support.h"
#include "storage/store_migration.h"

namespace tavrin::fuzz {

/// A file is refused, or what was read of it is written as a file that reads the same and is written the
/// same again: no save may leave a file that the next start cannot read.
/// Returns what libFuzzer wants to know: -1 for a refused file, so that all that it builds on are good ones,
/// and most runs get further than the parser.
template <class Payload>
int checkDataFile(std::string_view bytes) {
    const StoreMigration migration{1};
    const auto payload = migration.decode<Payload>(bytes);
    if (!payload)
        return -1;
    const Timestamp now{std::chrono::seconds{1'800'000'000}};
    const auto written = migration.encode(*payload, now);
    require(written.has_value(), "what was read cannot be written");
    const auto readAgain = migration.decode<Payload>(*written);
    require(readAgain.has_value(), "what was written cannot be read");
    require(migration.encode(*readAgain, now) == written, "written twice, the bytes differ");
    return 0;
}

} // namespace tavrin::fuzz
