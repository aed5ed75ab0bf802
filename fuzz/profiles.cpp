#include "records/profiles.h"

#include "data_file_laws.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tavrin;
    return fuzz::checkDataFile<std::vector<MonitorProfile>>(fuzz::textOf(data, size));
}
