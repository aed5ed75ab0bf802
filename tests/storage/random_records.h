#pragma once

#include "base/record_fields.h"
#include "records/app_settings.h"
#include "records/layouts.h"
#include "records/profiles.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace tavrin::testing {

/// Fills records with values that are the same in every run and on every machine, field by field from the
/// records' own descriptions: a field that is added later is filled too.
class RandomRecords {
public:
    template <class T>
    T make() {
        T value{};
        fill(value);
        return value;
    }

private:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    void fill(bool& value) { value = below(2) == 0; }
    void fill(std::uint16_t& value) { value = static_cast<std::uint16_t>(random_()); }
    void fill(std::uint64_t& value) { value = random_() >> below(64); }
    void fill(std::int64_t& value) { value = static_cast<std::int64_t>(random_()) >> below(64); }
    void fill(ModifierSet& value) { fill(value.rawValue); }
    void fill(SavedLayoutKind& value) {
        value = below(2) == 0 ? SavedLayoutKind::generic : SavedLayoutKind::appSpecific;
    }
    void fill(Uuid& value) {
        for (auto& byte : value.bytes)
            byte = static_cast<std::uint8_t>(random_());
    }
    void fill(Timestamp& value) {
        value = Timestamp{std::chrono::seconds{below(7'000'000'000) - 3'000'000'000}};
    }
    void fill(double& value) {
        switch (below(5)) {
        case 0: // a coordinate
            value = static_cast<double>(below(8000)) - 4000;
            break;
        case 1: // a fraction of a display
            value = static_cast<double>(below(4000)) / static_cast<double>(1 + below(4000));
            break;
        case 2: // where the way of writing changes
            value = std::pow(10.0, static_cast<double>(below(40)) - 20) * (below(2) ? 1 : -1.25);
            break;
        case 3:
            value = below(2) ? 0.0 : -0.0;
            break;
        default:
            do
                value = std::bit_cast<double>(random_());
            while (!std::isfinite(value));
        }
    }
    void fill(std::string& value) {
        static constexpr const char* pieces[] = {"a",
                                                 "Z",
                                                 " ",
                                                 "\"",
                                                 "\\",
                                                 "/",
                                                 "\b",
                                                 "\f",
                                                 "\n",
                                                 "\r",
                                                 "\t",
                                                 "\x01",
                                                 "\x1f",
                                                 "\x7f",
                                                 "é",
                                                 "…",
                                                 "\xf0\x9f\x98\x80",
                                                 "<",
                                                 ":",
                                                 "0"};
        value.clear();
        for (auto length = below(12); length > 0; --length)
            value += pieces[below(std::size(pieces))];
        if (below(20) == 0)
            value += '\0';
    }
    template <class T>
    void fill(std::optional<T>& value) {
        value.reset();
        if (below(2))
            fill(value.emplace());
    }
    template <class T>
    void fill(std::vector<T>& values) {
        values.resize(below(4));
        for (T& value : values)
            fill(value);
    }
    template <class T>
    void fill(std::map<std::string, T>& values) {
        for (auto count = below(4); count > 0; --count) {
            std::string key;
            fill(key);
            fill(values[key]);
        }
    }
    template <class T>
        requires requires { T::fields(); }
    void fill(T& record) {
        std::apply([&](const auto&... fields) { (fill(record.*fields.member), ...); }, T::fields());
    }

    std::mt19937_64 random_{1};
};

} // namespace tavrin::testing
