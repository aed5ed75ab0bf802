#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace tavrin {

/// Variables of this process that are other ones for as long as a test lasts.
class EnvironmentChange {
public:
    EnvironmentChange() = default;
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;
    ~EnvironmentChange() {
        for (const auto& [name, value] : before_)
            put(name, value);
    }

    /// An absent value takes the variable away.
    void set(const std::string& name, const std::optional<std::string>& value) {
        const char* old = std::getenv(name.c_str());
        before_.try_emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
        put(name, value);
    }

private:
    static void put(const std::string& name, const std::optional<std::string>& value) {
        if (value)
            ::setenv(name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name.c_str());
    }

    std::map<std::string, std::optional<std::string>> before_;
};

} // namespace tavrin
