#include "data_file_laws.h"
#include "records/app_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tavrin;
    return fuzz::checkDataFile<AppSettings>(fuzz::textOf(data, size));
}
