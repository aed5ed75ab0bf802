#include "base/text.h"

#include "base/fatal.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <memory>

namespace tavrin {
namespace {

icu::UnicodeString decoded(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string encoded(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

bool isAscii(std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    return true;
}

/// Turkish and Azerbaijani tell a dotted from a dotless i.
uint32_t caseFoldingOptions() {
    const std::string_view language = icu::Locale::getDefault().getLanguage();
    return language == "tr" || language == "az" ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

} // namespace

std::string trimmed(std::string_view text) {
    const auto size = static_cast<int32_t>(text.size());
    int32_t begin = 0;
    while (begin < size) {
        int32_t next = begin;
        UChar32 c;
        U8_NEXT(text.data(), next, size, c);
        if (c < 0 || !u_isUWhiteSpace(c))
            break;
        begin = next;
    }
    int32_t end = size;
    while (end > begin) {
        int32_t previous = end;
        UChar32 c;
        U8_PREV(text.data(), begin, previous, c);
        if (c < 0 || !u_isUWhiteSpace(c))
            break;
        end = previous;
    }
    return std::string(text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
}

std::string foldedTitle(std::string_view text) {
    const auto options = caseFoldingOptions();
    std::string title = trimmed(text);
    if (options == U_FOLD_CASE_DEFAULT && isAscii(title)) {
        for (char& c : title)
            if (c >= 'A' && c <= 'Z')
                c = static_cast<char>(c - 'A' + 'a');
        return title;
    }
    UErrorCode status = U_ZERO_ERROR;
    const auto* decomposition = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        fatal("the ICU normalisation data is missing");
    const icu::UnicodeString decomposed = decomposition->normalize(decoded(title).foldCase(options), status);
    if (U_FAILURE(status))
        return title;
    icu::UnicodeString folded;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 c = decomposed.char32At(i);
        // A mark without a combining class is part of the spelling (vowel signs), not a diacritic.
        if (u_charType(c) != U_NON_SPACING_MARK || u_getCombiningClass(c) == 0)
            folded.append(c);
    }
    return encoded(folded.foldCase(options));
}

std::string lowercased(std::string_view text) {
    return encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::size_t characterCount(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status))
        fatal("the ICU text boundary data is missing");
    const icu::UnicodeString content = decoded(text);
    iterator->setText(content);
    std::size_t count = 0;
    while (iterator->next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

std::string sanitizedUtf8(std::string_view bytes, std::size_t maximumBytes) {
    std::string clean;
    const auto size = static_cast<int32_t>(std::min(bytes.size(), maximumBytes + U8_MAX_LENGTH));
    clean.reserve(static_cast<std::size_t>(size));
    for (int32_t i = 0; i < size;) {
        const int32_t start = i;
        UChar32 c;
        U8_NEXT(bytes.data(), i, size, c);
        const std::string_view piece =
            c < 0 ? std::string_view("\xEF\xBF\xBD")
                  : bytes.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(i - start));
        if (clean.size() + piece.size() > maximumBytes)
            break;
        clean += piece;
    }
    return clean;
}

} // namespace tavrin
