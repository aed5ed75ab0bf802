#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

/// Small values that the program keeps between runs, beside its data files.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// False when values cannot be read or would not last until the next run.
    virtual bool isUsable() = 0;

    /// 0 when the key is absent or holds something else.
    virtual std::int64_t integer(const std::string& key) = 0;
    /// false when the key is absent or holds something else.
    virtual bool boolean(const std::string& key) = 0;

    /// Written through at once; a failure to write is not reported.
    virtual void setInteger(const std::string& key, std::int64_t value) = 0;
    virtual void setBoolean(const std::string& key, bool value) = 0;
};

} // namespace tavrin
