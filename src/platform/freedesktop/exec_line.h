#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The words of an Exec key's value, its quoting undone and its field codes (%U and the like) left out;
/// absent for a broken value.
std::optional<std::vector<std::string>> execWords(std::string_view exec);

/// The name of the program that a command starts, without its folder: the first word, or what `env` starts
/// when that is the first word. Empty when there is none.
std::string programOfCommand(const std::vector<std::string>& words);

/// Programs that run other programs; their name says nothing about the application.
bool isInterpreter(std::string_view program);

/// `word` as it stands in the value of an Exec key: quoted where needed, no part of it taken for a field
/// code, and with the escapes of the file itself.
std::string quotedExecWord(std::string_view word);

} // namespace tavrin
