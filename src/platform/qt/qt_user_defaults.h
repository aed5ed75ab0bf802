#pragma once

#include "ports/runtime.h"

#include <QSettings>

#include <filesystem>

namespace tavrin {

/// User defaults in an ini file that is written through at every change.
class QtUserDefaults final : public UserDefaults {
public:
    /// `file` and its folder are created by the first write.
    explicit QtUserDefaults(const std::filesystem::path& file = defaultFile());

    /// $XDG_CONFIG_HOME/Tavrin/defaults.ini, with ~/.config where the variable is not set.
    static std::filesystem::path defaultFile();

    bool isUsable() override;
    bool isEmpty() override;
    std::int64_t integer(const std::string& key) override;
    bool boolean(const std::string& key) override;
    void setInteger(const std::string& key, std::int64_t value) override;
    void setBoolean(const std::string& key, bool value) override;

private:
    QString text(const std::string& key);
    void setText(const std::string& key, const QString& text);

    QSettings settings_;
};

} // namespace tavrin
