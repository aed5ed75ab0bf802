#include "platform/freedesktop/exec_line.h"

#include "platform/freedesktop/desktop_entry.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace tavrin {
namespace {

constexpr std::string_view escapedInQuotes = "\"`$\\";

/// True when `word` begins with a shell-like name and an equal sign.
bool isAssignment(std::string_view word) {
    const auto equals = word.find('=');
    return equals != std::string_view::npos && equals > 0 &&
           std::ranges::all_of(word.substr(0, equals),
                               [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

std::string baseName(std::string_view program) {
    return std::string(program.substr(program.rfind('/') + 1));
}

} // namespace

std::optional<std::vector<std::string>> execWords(std::string_view exec) {
    std::vector<std::string> words;
    std::string word;
    bool isInWord = false;
    bool isInQuotes = false;
    bool isFieldCode = false; // the word holds one
    const auto finishWord = [&] {
        if (isInWord && !(isFieldCode && word.empty()))
            words.push_back(word);
        word.clear();
        isInWord = isFieldCode = false;
    };
    for (std::size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (c == '"') {
            isInQuotes = !isInQuotes;
            isInWord = true;
        } else if (c == '\\' && isInQuotes && i + 1 < exec.size() &&
                   escapedInQuotes.find(exec[i + 1]) != std::string_view::npos) {
            word += exec[++i];
        } else if (c == '%' && i + 1 < exec.size()) {
            isInWord = true;
            if (exec[++i] == '%')
                word += '%';
            else
                isFieldCode = true;
        } else if (!isInQuotes && (c == ' ' || c == '\t' || c == '\n')) {
            finishWord();
        } else {
            word += c;
            isInWord = true;
        }
    }
    if (isInQuotes)
        return std::nullopt;
    finishWord();
    return words;
}

std::string programOfCommand(const std::vector<std::string>& words) {
    if (words.empty())
        return {};
    if (const auto first = baseName(words.front()); first != "env")
        return first;
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "-u" || words[i] == "-C") // these options have an argument of their own
            ++i;
        else if (!words[i].starts_with('-') && !isAssignment(words[i]))
            return baseName(words[i]);
    }
    return {};
}

bool isInterpreter(std::string_view program) {
    constexpr std::string_view names =
        " sh bash dash zsh fish ksh env nohup setsid sudo pkexec gksu kdesu systemd-run dbus-launch "
        " java node nodejs electron mono gjs ruby lua guile php ld-linux-x86-64.so.2 "
        " wine wine64 wine-preloader wine64-preloader flatpak snap bwrap xdg-open gtk-launch gio ";
    const bool isOneWord = !program.empty() && program.find(' ') == std::string_view::npos;
    return (isOneWord && names.find(" " + std::string(program) + " ") != std::string_view::npos) ||
           program.starts_with("python") || program.starts_with("perl") || program.starts_with("tclsh") ||
           program.starts_with("wish");
}

std::string quotedExecWord(std::string_view word) {
    const bool needsQuotes =
        word.empty() || !std::ranges::all_of(word, [](unsigned char c) {
            return std::isalnum(c) || c >= 0x80 ||
                   std::string_view("/._-+,:@%=").find(static_cast<char>(c)) != std::string_view::npos;
        });
    std::string quoted;
    for (const char c : word) {
        if (escapedInQuotes.find(c) != std::string_view::npos)
            quoted += '\\';
        quoted += c;
        if (c == '%')
            quoted += '%';
    }
    if (needsQuotes)
        quoted = '"' + quoted + '"';

    return escapedDesktopEntryText(quoted); // once more, for the file's own escapes
}

} // namespace tavrin
