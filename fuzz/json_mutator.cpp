#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximumSize);

namespace {

using Json = nlohmann::json;

/// Changes values and structure of JSON. Changes of bytes alone seldom leave a file that is still JSON, so
/// that hardly a run would get further than the parser.
class JsonMutator {
public:
    explicit JsonMutator(unsigned seed) : random_(seed) {}

    /// True in a quarter of the cases; the bytes of the others are changed.
    bool isWanted() { return below(4) == 0; }

    void change(Json& document) {
        std::vector<Json*> values;
        collect(document, values);
        Json& value = *values[below(values.size())];
        switch (below(5)) {
        case 0:
            value = usualValue();
            break;
        case 1: {
            auto copy = *values[below(values.size())];
            value = std::move(copy);
            break;
        }
        case 2:
            if (value.is_structured() && !value.empty()) {
                value.erase(std::next(value.begin(), static_cast<std::ptrdiff_t>(below(value.size()))));
                break;
            }
            [[fallthrough]];
        case 3:
            if (value.is_array()) {
                value.push_back(value.empty() ? usualValue() : value[below(value.size())]);
                break;
            }
            [[fallthrough]];
        default:
            changeText(value);
        }
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    static void collect(Json& value, std::vector<Json*>& values) {
        values.push_back(&value);
        if (value.is_structured())
            for (auto& child : value)
                collect(child, values);
    }

    Json usualValue() {
        static const Json values = {nullptr,
                                    true,
                                    false,
                                    0,
                                    1,
                                    -1,
                                    -0.0,
                                    1.5,
                                    1e308,
                                    65535,
                                    65536,
                                    INT64_MIN,
                                    UINT64_MAX,
                                    "",
                                    "generic",
                                    "2026-03-01T10:30:00+01:00",
                                    "0000-12-31T23:59:59-23:59",
                                    "9999-12-31T24:00:00-23:59",
                                    "8C2F4E10-5B7D-4A31-9E02-0123456789AB",
                                    Json::array(),
                                    Json::object()};
        return values[below(values.size())];
    }

    /// Another text, or another number where what comes out still is one.
    static void changeText(Json& value) {
        if (value.is_structured())
            return;
        auto text = value.is_string() ? value.get<std::string>() : value.dump();
        const auto size = text.size();
        text.resize(size + 16);
        text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
        auto changed = value.is_string() ? Json(text) : Json::parse(text, nullptr, false);
        if (!changed.is_discarded())
            value = std::move(changed);
    }

    std::minstd_rand random_;
};

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximumSize,
                                               unsigned seed) {
    JsonMutator mutator(seed);
    if (mutator.isWanted()) {
        auto document = Json::parse(data, data + size, nullptr, false);
        if (!document.is_discarded()) {
            mutator.change(document);
            const auto text = document.dump(-1, ' ', false, Json::error_handler_t::replace);
            if (text.size() <= maximumSize) {
                std::ranges::copy(text, data);
                return text.size();
            }
        }
    }
    return LLVMFuzzerMutate(data, size, maximumSize);
}
