#include "platform/freedesktop/installed_application.h"

#include "base/text.h"
#include "platform/freedesktop/exec_line.h"

#include <algorithm>
#include <utility>

namespace tavrin {

std::string foldedApplicationName(std::string_view name) {
    auto folded = lowercased(name);
    std::ranges::replace(folded, ' ', '-');
    return folded;
}

InstalledApplication::InstalledApplication(DesktopEntry description) : entry(std::move(description)) {
    constexpr std::string_view extension = ".desktop";
    foldedID = foldedApplicationName(entry.id);
    foldedStem = foldedID;
    if (foldedStem.ends_with(extension))
        foldedStem.resize(foldedStem.size() - extension.size());
    if (std::ranges::count(foldedStem, '.') >= 2)
        foldedLastPart = foldedStem.substr(foldedStem.rfind('.') + 1);
    foldedStartupClass = foldedApplicationName(entry.startupWMClass);
    const auto words = execWords(entry.exec).value_or(std::vector<std::string>());
    auto name = programOfCommand(words);
    hasArguments = words.size() > 1;
    isFlatpak = !entry.flatpak.empty() || name == "flatpak";
    if (!isInterpreter(name)) {
        foldedProgram = foldedApplicationName(name);
        program = std::move(name);
    }
}

} // namespace tavrin
