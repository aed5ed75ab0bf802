#include "platform/applications/desktop_entry.h"

#include "base/text.h"
#include "fuzz_support.h"
#include "platform/applications/desktop_entry_index.h"
#include "platform/applications/process_facts.h"

#include <algorithm>

namespace {

using namespace tavrin;

constexpr std::size_t textLimit = 4096;

void checkText(const std::string& text) {
    fuzz::require(text.size() <= textLimit, "a text beyond its limit");
    fuzz::require(sanitizedUtf8(text, textLimit) == text, "a text that is not valid UTF-8");
}

void checkEntry(const DesktopEntry& entry) {
    for (const auto* text :
         {&entry.name, &entry.icon, &entry.exec, &entry.tryExec, &entry.startupWMClass, &entry.flatpak})
        checkText(*text);
    std::ranges::for_each(entry.categories, checkText);
    const InstalledApplication application(entry);
    fuzz::require(application.program.find('/') == std::string::npos, "a program with its folder");
}

/// A command written into an entry is read back as it was, whatever else the entry holds.
void checkCommand(std::string_view entryBytes, const std::string& word) {
    const auto command = quotedExecWord(word);
    if (word.find('\0') != std::string::npos || command.size() > textLimit / 2 ||
        sanitizedUtf8(word, word.size()) != word)
        return;
    const auto changed = withDesktopEntryKeys(entryBytes, {{"Exec", command}});
    const auto entry = parseDesktopEntry(changed);
    if (changed.size() > maximumDesktopEntrySize)
        return;
    fuzz::require(entry.has_value(), "the entry was lost in writing");
    const auto words = execWords(entry->exec);
    fuzz::require(words && *words == std::vector{word}, "a command that reads differently");
    fuzz::require(withDesktopEntryKeys(changed, {{"Exec", command}}) == changed, "written twice, it differs");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto word = input.ConsumeRandomLengthString(64);
    const auto bytes = input.ConsumeRemainingBytesAsString();
    if (const auto entry = parseDesktopEntry(bytes, {"de_DE", "de"}))
        checkEntry(*entry);
    if (const auto words = execWords(bytes))
        fuzz::require(programOfCommand(*words).find('/') == std::string::npos, "a program with its folder");
    checkCommand(bytes, word);
    static_cast<void>(launchedApplication(bytes));
    return 0;
}
