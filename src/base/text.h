#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavrin {

/// `text` without white space and line breaks at both ends.
std::string trimmed(std::string_view text);

/// The form in which titles are compared: trimmed, then folded so that neither case nor diacritics count
/// in the current locale.
std::string foldedTitle(std::string_view text);

/// Lower case, independent of the locale.
std::string lowercased(std::string_view text);

/// The number of characters as a person counts them (grapheme clusters).
std::size_t characterCount(std::string_view text);

/// Text of the X11 encoding COMPOUND_TEXT, which switches between the older national character sets; what
/// cannot be read becomes U+FFFD. The result may be some times longer.
std::string utf8FromCompoundText(std::string_view bytes);

/// Text from outside made safe to keep: every byte that is not valid UTF-8 becomes U+FFFD, and what lies
/// beyond `maximumBytes` is cut off between two code points.
std::string sanitizedUtf8(std::string_view bytes, std::size_t maximumBytes);

} // namespace tavrin
