#include "platform/display_identity/edid.h"

#include "fuzz_support.h"

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tavrin;
    // Exactly as large as the input, so that a look beyond its end is seen.
    const std::vector<std::uint8_t> block(data, data + size);
    const auto identity = edidIdentity(block);
    if (identity) {
        fuzz::require(identity->manufacturer <= 0xFFFF && identity->product <= 0xFFFF,
                      "a number larger than its field");
        fuzz::require(identity == edidIdentity(std::span(block).first(128)),
                      "the identity depends on more than the base block");
    }
    const auto connector = fuzz::textOf(data, size);
    fuzz::require(connectorNumber(connector) == connectorNumber(connector), "two numbers for one connector");
    static_cast<void>(isBuiltinConnector(connector));
    return 0;
}
