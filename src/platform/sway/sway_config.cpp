#include "platform/sway/sway_config.h"

#include "base/text.h"
#include "platform/applications/environment.h"
#include "platform/wayland/wayland_keyboard.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <glob.h>
#include <ranges>
#include <set>
#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {
namespace {

constexpr std::size_t fileLimit = 1024 * 1024;
constexpr std::size_t filesLimit = 64;
constexpr std::size_t bindingLimit = 4096;
constexpr std::size_t lineLimit = 16 * 1024;

/// The words of a command; quotes hold one together.
std::vector<std::string> words(std::string_view line) {
    std::vector<std::string> result;
    std::string word;
    bool isInWord = false;
    char quote = '\0';
    for (const char c : line) {
        if (quote ? c == quote : c == '"' || c == '\'') {
            quote = quote ? '\0' : c;
            isInWord = true;
        } else if (!quote && (c == ' ' || c == '\t')) {
            if (isInWord)
                result.push_back(std::exchange(word, {}));
            isInWord = false;
        } else {
            word += c;
            isInWord = true;
        }
    }
    if (isInWord)
        result.push_back(word);
    return result;
}

/// A modifier by its name; absent for a name that is none. Locks never count.
std::optional<ModifierSet> modifier(const std::string& name) {
    static const std::map<std::string, ModifierSet> known = {{"shift", ModifierSet::shift},
                                                             {"control", ModifierSet::control},
                                                             {"ctrl", ModifierSet::control},
                                                             {"mod1", ModifierSet::option},
                                                             {"alt", ModifierSet::option},
                                                             {"mod4", ModifierSet::command},
                                                             {"super", ModifierSet::command},
                                                             {"logo", ModifierSet::command},
                                                             {"mod2", {}},
                                                             {"lock", {}}};
    const auto found = known.find(lowercased(name));
    return found == known.end() ? std::nullopt : std::optional(found->second);
}

class Reader {
public:
    void readText(const std::string& text, const std::filesystem::path& file) {
        std::string line;
        for (std::size_t begin = 0; begin < text.size();) {
            const auto end = std::min(text.find('\n', begin), text.size());
            line.append(text, begin, end - begin);
            begin = end + 1;
            if (line.ends_with('\\') && line.size() < lineLimit)
                line.pop_back();
            else
                readLine(trimmed(std::exchange(line, {})), file);
        }
        readLine(trimmed(line), file);
    }

    std::vector<SwayUserBinding> take() { return std::move(bindings_); }

private:
    void readLine(const std::string& raw, const std::filesystem::path& file) {
        if (raw.empty() || raw.front() == '#' || raw.size() >= lineLimit)
            return;
        if (raw == "}") {
            if (!blocks_.empty())
                blocks_.pop_back();
            return;
        }
        if (raw.ends_with('{')) {
            blocks_.push_back(words(replaced(trimmed(raw.substr(0, raw.size() - 1)))));
            return;
        }
        std::vector<std::string> command;
        for (const auto& block : blocks_)
            command.insert(command.end(), block.begin(), block.end());
        const bool isSet = raw.starts_with("set ") || raw.starts_with("set\t");
        const auto own = words(isSet ? raw : replaced(raw));
        command.insert(command.end(), own.begin(), own.end());
        if (command.empty())
            return;
        if (isSet && own.size() >= 3 && own[1].starts_with('$'))
            variables_[own[1]] = replaced(trimmed(raw.substr(raw.find(own[1]) + own[1].size())));
        else if (command[0] == "include" && command.size() == 2)
            include(command[1], file);
        else if (command[0] == "bindsym" || command[0] == "bindcode")
            bind(command);
    }

    std::string replaced(std::string line) const {
        // The longest name that fits counts.
        for (const auto& [name, value] : variables_ | std::views::reverse)
            for (std::size_t at = 0; (at = line.find(name, at)) != std::string::npos; at += value.size()) {
                if (line.size() > lineLimit)
                    return {};
                line.replace(at, name.size(), value);
            }
        return line;
    }

    void bind(const std::vector<std::string>& command) {
        auto word = command.begin() + 1;
        while (word != command.end() && word->starts_with("--"))
            ++word;
        if (word == command.end() || bindings_.size() >= bindingLimit)
            return;
        SwayUserBinding binding;
        const bool isByCode = command[0] == "bindcode";
        bool hasKey = false;
        for (const auto part : std::views::split(*word, '+')) {
            const std::string name(part.begin(), part.end());
            if (const auto known = modifier(name)) {
                binding.modifiers = binding.modifiers | *known;
                continue;
            }
            if (hasKey)
                return; // several keys at once, or a modifier that the program's shortcuts do not have
            hasKey = true;
            if (isByCode) {
                std::uint32_t code = 0;
                if (std::from_chars(name.data(), name.data() + name.size(), code).ec != std::errc() ||
                    code < keyOffset)
                    return;
                binding.position = code - keyOffset;
            } else {
                binding.symbol = xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_CASE_INSENSITIVE);
                if (binding.symbol == XKB_KEY_NoSymbol)
                    return;
            }
        }
        if (hasKey)
            bindings_.push_back(binding);
    }

    void include(std::string pattern, const std::filesystem::path& file) {
        for (std::size_t at = 0; (at = pattern.find('$', at)) != std::string::npos;) {
            const auto end = std::find_if_not(pattern.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                              pattern.end(), [](char c) {
                                                  return c == '_' || (c >= '0' && c <= '9') ||
                                                         (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
                                              });
            const auto length = static_cast<std::size_t>(end - pattern.begin()) - at;
            const char* value = std::getenv(pattern.substr(at + 1, length - 1).c_str());
            const std::string text = value ? value : "";
            if (pattern.size() + text.size() > lineLimit)
                return;
            pattern.replace(at, length, text);
            at += text.size();
        }
        if (!pattern.starts_with('/') && !pattern.starts_with('~'))
            pattern = file.parent_path() / pattern;
        glob_t found{};
        if (::glob(pattern.c_str(), GLOB_TILDE, nullptr, &found) == 0)
            for (std::size_t i = 0; i < found.gl_pathc; ++i)
                includeFile(found.gl_pathv[i]);
        ::globfree(&found);
    }

    void includeFile(const std::filesystem::path& path) {
        std::error_code error;
        const auto file = std::filesystem::canonical(path, error);
        if (error || seen_.size() >= filesLimit || !seen_.insert(file.string()).second)
            return;
        const auto blocks = std::exchange(blocks_, {});
        readText(readSmallFile(file, fileLimit).value_or(""), file);
        blocks_ = blocks;
    }

    std::map<std::string, std::string> variables_;
    std::vector<std::vector<std::string>> blocks_;
    std::set<std::string> seen_;
    std::vector<SwayUserBinding> bindings_;
};

} // namespace

std::vector<SwayUserBinding> readSwayBindings(const std::string& mainText,
                                              const std::filesystem::path& mainFile) {
    Reader reader;
    reader.readText(mainText, mainFile);
    return reader.take();
}

} // namespace tavrin
