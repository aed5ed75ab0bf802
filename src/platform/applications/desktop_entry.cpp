#include "platform/applications/desktop_entry.h"

#include "base/text.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <utility>

namespace tavrin {
namespace {

constexpr std::size_t maximumTextLength = 4096;
constexpr std::size_t maximumListLength = 256;
constexpr std::string_view groupHeader = "[Desktop Entry]";

std::string_view withoutSpaces(std::string_view text) {
    constexpr std::string_view spaces = " \t\r\f\v";
    const auto begin = text.find_first_not_of(spaces);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(spaces) - begin + 1);
}

/// Takes the next line off `rest`, without its end.
std::string_view takeLine(std::string_view& rest) {
    const auto end = std::min(rest.find('\n'), rest.size());
    const auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

struct KeyLine {
    std::string_view key;
    std::string locale; ///< without the encoding: every entry is UTF-8
    std::string_view value;
};

std::optional<KeyLine> parseKeyLine(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || line.starts_with('#'))
        return std::nullopt;
    KeyLine found{withoutSpaces(line.substr(0, equals)), {}, withoutSpaces(line.substr(equals + 1))};
    if (const auto bracket = found.key.find('['); bracket != std::string_view::npos) {
        if (!found.key.ends_with(']'))
            return std::nullopt;
        found.locale = found.key.substr(bracket + 1, found.key.size() - bracket - 2);
        found.key = withoutSpaces(found.key.substr(0, bracket));
        if (const auto dot = found.locale.find('.'); dot != std::string::npos)
            found.locale.erase(dot, found.locale.find('@', dot) - dot);
    }
    const bool isName = std::ranges::all_of(found.key, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    });
    return isName && !found.key.empty() ? std::optional(found) : std::nullopt;
}

/// Undoes the escapes of values. `separator` marks the end of a list's item; absent, the value is one text.
std::vector<std::string> unescaped(std::string_view value, std::optional<char> separator) {
    std::vector<std::string> items(1);
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c == separator) {
            if (items.size() == maximumListLength)
                break;
            items.emplace_back();
        } else if (c == '\\' && i + 1 < value.size()) {
            const char next = value[++i];
            switch (next) {
            case 's':
                items.back() += ' ';
                break;
            case 'n':
                items.back() += '\n';
                break;
            case 't':
                items.back() += '\t';
                break;
            case 'r':
                items.back() += '\r';
                break;
            case '\\':
                items.back() += '\\';
                break;
            default:
                if (next != separator)
                    items.back() += '\\';
                items.back() += next;
            }
        } else if (c != '\0') {
            items.back() += c;
        }
    }
    return items;
}

std::string text(std::string_view value) {
    return sanitizedUtf8(unescaped(value, std::nullopt).front(), maximumTextLength);
}

std::vector<std::string> list(std::string_view value) {
    auto items = unescaped(value, ';');
    std::erase(items, std::string());
    for (auto& item : items)
        item = sanitizedUtf8(item, maximumTextLength);
    return items;
}

/// The values of the group's keys as they stand in the file, each in the best language there is.
class KeyCollection {
public:
    explicit KeyCollection(const std::vector<std::string>& locales) : locales_(locales) {}

    void add(const KeyLine& line) {
        auto rank = locales_.size();
        if (!line.locale.empty()) {
            const auto found = std::ranges::find(locales_, line.locale);
            if (found == locales_.end() || line.value.empty())
                return;
            rank = static_cast<std::size_t>(found - locales_.begin());
        }
        const auto [place, isNew] = values_.try_emplace(line.key, Value{rank, line.value});
        if (!isNew && rank <= place->second.rank)
            place->second = {rank, line.value};
    }

    std::string_view value(std::string_view key) const {
        const auto found = values_.find(key);
        return found == values_.end() ? std::string_view() : found->second.value;
    }

    bool boolean(std::string_view key, bool fallback) const {
        const auto found = value(key);
        if (found == "true" || found == "1") // old entries have numbers
            return true;
        if (found == "false" || found == "0")
            return false;
        return fallback;
    }

private:
    struct Value {
        std::size_t rank;
        std::string_view value;
    };
    const std::vector<std::string>& locales_;
    std::map<std::string_view, Value> values_;
};

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

std::optional<DesktopEntry> parseDesktopEntry(std::string_view bytes,
                                              const std::vector<std::string>& locales) {
    if (bytes.size() > maximumDesktopEntrySize)
        return std::nullopt;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);

    KeyCollection keys(locales);
    bool isInGroup = false;
    bool hasGroup = false;
    while (!bytes.empty()) {
        const auto line = withoutSpaces(takeLine(bytes));
        if (line.starts_with('[')) {
            isInGroup = line == groupHeader;
            hasGroup = hasGroup || isInGroup;
        } else if (isInGroup) {
            if (const auto key = parseKeyLine(line))
                keys.add(*key);
        }
    }
    if (!hasGroup)
        return std::nullopt;
    const auto types = list(keys.value("MimeType"));
    return DesktopEntry{
        .name = text(keys.value("Name")),
        .icon = text(keys.value("Icon")),
        .exec = text(keys.value("Exec")),
        .tryExec = text(keys.value("TryExec")),
        .startupWMClass = text(keys.value("StartupWMClass")),
        .flatpak = text(keys.value("X-Flatpak")),
        .snap = text(keys.value("X-SnapInstanceName")),
        .categories = list(keys.value("Categories")),
        .onlyShowIn = list(keys.value("OnlyShowIn")),
        .notShowIn = list(keys.value("NotShowIn")),
        .isApplication = keys.value("Type") == "Application",
        .isHidden = keys.boolean("Hidden", false),
        .isNoDisplay = keys.boolean("NoDisplay", false),
        .runsInTerminal = keys.boolean("Terminal", false),
        .isAutostartEnabled =
            keys.boolean("X-GNOME-Autostart-enabled", true) && keys.boolean("X-MATE-Autostart-enabled", true),
        .opensPages = std::ranges::find(types, "text/html") != types.end(),
    };
}

std::string withDesktopEntryKeys(std::string_view bytes, const std::vector<DesktopEntryKey>& keys) {
    std::string result;
    const auto appendKeys = [&] {
        for (const auto& [key, value] : keys)
            if (value)
                result.append(key).append("=").append(*value).append("\n");
    };
    bool isInGroup = false;
    bool hasKeys = false;
    while (!bytes.empty()) {
        const auto line = takeLine(bytes);
        const auto content = withoutSpaces(line);
        if (isInGroup) {
            const auto key = parseKeyLine(content);
            if (key && key->locale.empty() &&
                std::ranges::any_of(keys, [&](const auto& own) { return own.first == key->key; }))
                continue;
        }
        result.append(line).append("\n");
        if (content.starts_with('[')) {
            isInGroup = content == groupHeader;
            if (isInGroup && !hasKeys) {
                appendKeys();
                hasKeys = true;
            }
        }
    }
    if (!hasKeys) {
        result.append(groupHeader).append("\n");
        appendKeys();
    }
    return result;
}

std::string escapedDesktopEntryText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '\\':
            escaped += "\\\\";
            break;
        case '\n':
            escaped += "\\n";
            break;
        case '\t':
            escaped += "\\t";
            break;
        case '\r':
            escaped += "\\r";
            break;
        default:
            escaped += c;
        }
    }
    if (escaped.starts_with(' '))
        escaped.replace(0, 1, "\\s");
    return escaped;
}

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
