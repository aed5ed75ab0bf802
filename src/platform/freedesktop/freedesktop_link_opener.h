#pragma once

#include "platform/freedesktop/environment.h"
#include "ports/session.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

/// Opens files and folders with what the desktop has for them: folders in the file manager that offers
/// itself on the session bus, everything else (and folders without such) with xdg-open, or through the
/// desktop portal where that is missing. Nothing waits for the program that opens.
class FreedesktopLinkOpener final : public LinkOpener {
public:
    /// `helpPage` is the installed page that says what this desktop needs; `sessionBus` the bus's address.
    FreedesktopLinkOpener(std::filesystem::path helpPage, std::optional<std::string> sessionBus,
                          Environment environment = processEnvironment);
    ~FreedesktopLinkOpener() override;

    /// Opens the help page; false also when it is not installed.
    bool openAccessibilitySettings() override;

    /// False also when there is no such folder.
    bool openFolder(const std::filesystem::path& folder) override;

private:
    class Bus;
    enum class Kind { file, folder };

    bool openWithProgram(const std::filesystem::path& path) const;
    bool openWithPortal(const std::filesystem::path& path, Kind kind);
    bool openWithFileManager(const std::filesystem::path& folder);
    Bus& bus();

    std::filesystem::path helpPage_;
    std::optional<std::string> sessionBus_;
    Environment environment_;
    std::unique_ptr<Bus> bus_; ///< opened when first needed
};

} // namespace tavrin
