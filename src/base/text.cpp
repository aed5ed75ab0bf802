#include "base/text.h"

#include "base/fatal.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>
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

/// The character set that an escape sequence of COMPOUND_TEXT selects for the bytes of one half.
struct CompoundCharset {
    std::string_view escape;
    const char* converter; ///< reads bytes with the eighth bit set
    bool isRightHalf = true;
};

// The sets of two bytes are the same in both halves, and the converters know them in the right one.
constexpr CompoundCharset compoundCharsets[] = {
    {"-A", "ISO-8859-1"},     {"-B", "ISO-8859-2"},     {"-C", "ISO-8859-3"},   {"-D", "ISO-8859-4"},
    {"-F", "ISO-8859-7"},     {"-G", "ISO-8859-6"},     {"-H", "ISO-8859-8"},   {"-L", "ISO-8859-5"},
    {"-M", "ISO-8859-9"},     {"-T", "TIS-620"},        {"-b", "ISO-8859-15"},  {")I", "Shift_JIS"},
    {"$)A", "GB2312"},        {"$)B", "EUC-JP"},        {"$)C", "EUC-KR"},      {"$(A", "GB2312", false},
    {"$(B", "EUC-JP", false}, {"$(C", "EUC-KR", false}, {"(B", nullptr, false}, {"(J", nullptr, false},
};

/// Converts bytes of one character set. Unknown sets, and what they do not hold, become U+FFFD.
icu::UnicodeString converted(const std::string& bytes, const char* charset) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(charset, &status),
                                                                       ucnv_close);
    if (U_SUCCESS(status)) {
        icu::UnicodeString text(bytes.data(), static_cast<int32_t>(bytes.size()), converter.get(), status);
        if (U_SUCCESS(status))
            return text;
    }
    return icu::UnicodeString(char16_t{0xFFFD});
}

bool isRightHalf(char c) {
    return static_cast<unsigned char>(c) >= 0x80;
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

std::string utf8FromCompoundText(std::string_view bytes) {
    constexpr char escape = 0x1b;
    constexpr std::string_view utf8Begin = "%G", utf8End = "\x1b%@";
    icu::UnicodeString text;
    const char* left = nullptr; // ASCII
    const char* right = "ISO-8859-1";
    while (!bytes.empty()) {
        if (bytes.front() != escape) {
            const bool isRight = isRightHalf(bytes.front());
            std::size_t size = 1;
            while (size < bytes.size() && bytes[size] != escape && isRightHalf(bytes[size]) == isRight)
                ++size;
            std::string run(bytes.substr(0, size));
            bytes.remove_prefix(size);
            const char* charset = isRight ? right : left;
            if (charset && !isRight)
                for (char& c : run)
                    if (c > ' ')
                        c = static_cast<char>(c | 0x80);
            text += charset ? converted(run, charset) : decoded(run);
            continue;
        }
        bytes.remove_prefix(1);
        if (bytes.starts_with(utf8Begin)) {
            bytes.remove_prefix(utf8Begin.size());
            const auto piece = bytes.substr(0, bytes.find(utf8End));
            text += decoded(piece);
            bytes.remove_prefix(std::min(piece.size() + utf8End.size(), bytes.size()));
            continue;
        }
        const auto* const charset = std::ranges::find_if(
            compoundCharsets, [&](const CompoundCharset& known) { return bytes.starts_with(known.escape); });
        if (charset != std::end(compoundCharsets)) {
            (charset->isRightHalf ? right : left) = charset->converter;
            bytes.remove_prefix(charset->escape.size());
            continue;
        }
        // Another sequence: intermediate bytes and a final one.
        text += char16_t{0xFFFD};
        while (!bytes.empty() && bytes.front() >= ' ' && bytes.front() <= '/')
            bytes.remove_prefix(1);
        bytes.remove_prefix(std::min<std::size_t>(1, bytes.size()));
    }
    return encoded(text);
}

std::string sanitizedUtf8(std::string_view bytes, std::size_t maximumBytes) {
    const auto beginning = bytes.substr(0, maximumBytes);
    if (std::ranges::all_of(beginning, [](char c) { return U8_IS_SINGLE(static_cast<std::uint8_t>(c)); }))
        return std::string(beginning);
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
