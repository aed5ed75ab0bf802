#include "records/layouts.h"

#include "data_file_laws.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tavrin;
    return fuzz::checkDataFile<std::vector<SavedLayout>>(fuzz::textOf(data, size));
}
