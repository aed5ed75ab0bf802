#include "base/geometry.h"
#include "base/observable.h"
#include "base/text.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "doubles/fake_time.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavrin {
namespace {

TEST(Geometry, ARectangleWithANaNOverlapsNothing) {
    const Rect whole{0, 0, 4, 3};
    EXPECT_EQ(overlapArea(whole, {3, 4, 5, -2}), 1) << "a negative size extends the other way";
    for (double Rect::* member : {&Rect::x, &Rect::y, &Rect::width, &Rect::height}) {
        Rect broken = whole;
        broken.*member = std::nan("");
        EXPECT_EQ(overlapArea(whole, broken), 0);
        EXPECT_EQ(overlapArea(broken, whole), 0);
    }
}

TEST(Text, TrimsWhiteSpaceAndLineBreaksOfAllScripts) {
    EXPECT_EQ(trimmed(" \t\r\n a b\u00a0\u2003\u2028\n"), "a b");
    EXPECT_EQ(trimmed("\u3000\n"), "");
    EXPECT_EQ(trimmed("\xff x \xff"), "\xff x \xff") << "broken bytes are no white space";
}

TEST(Text, FoldsTitlesWithoutCaseAndDiacritics) {
    EXPECT_EQ(foldedTitle("  ÉCOLE\n"), foldedTitle("ecole"));
    EXPECT_EQ(foldedTitle("STRASSE"), foldedTitle("straße"));
    EXPECT_EQ(foldedTitle("Ångström"), foldedTitle("A\u030angstrom"));
    EXPECT_EQ(foldedTitle("ИЙ"), foldedTitle("ии"));
    EXPECT_NE(foldedTitle("กิ"), foldedTitle("กี")) << "vowel signs are no diacritics";
    EXPECT_NE(foldedTitle("Report 1"), foldedTitle("Report 2"));
}

TEST(Text, MakesForeignTextSafe) {
    EXPECT_EQ(sanitizedUtf8("a\xffz", 100), "a\uFFFDz");
    EXPECT_EQ(sanitizedUtf8("\xed\xa0\x80", 100).find('\xed'), std::string::npos) << "no lone surrogates";
    EXPECT_EQ(sanitizedUtf8("ab€", 4), "ab") << "never half a character";
    EXPECT_EQ(sanitizedUtf8("ab€", 5), "ab€");
    EXPECT_EQ(sanitizedUtf8(std::string(10'000'000, '\xff'), 9).size(), 9u);
}

TEST(Text, ReadsTheOlderEncodingOfTitles) {
    const std::pair<const char*, const char*> cases[] = {
        {"plain \xe9t\xe9", "plain été"},
        {"\x1b-BL\xb6"
         "d\xbc \x1b-L\xbf\xe0\x1b-A\xe9",
         "Lśdź Прé"},
        {"a\x1b$)B\xc6\xfc\xcb\xdc\x1b$(BF|K\\\x1b(B z", "a日本日本 z"},
        {"\x1b$(C0!\x1b(B\x1b%G\xc3\xa9\xe2\x82\xac\x1b%@\xe9", "가é€é"},
        {"\x1b$(0bad", "\uFFFDbad"},
        {"\x1b%Gcut\xff", "cut\uFFFD"},
        {"\x1b", "\uFFFD"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(utf8FromCompoundText(bytes), text);
}

TEST(Uuid, IsReadInEitherCaseAndWrittenInUpperCase) {
    const auto uuid = Uuid::parse("0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "0F9A2B3C-4D5E-6F70-8192-A3B4C5D6E7F8");
    EXPECT_EQ(Uuid::parse(uuid->text()), uuid);
    for (const char* text : {"", "0f9a2b3c4d5e6f708192a3b4c5d6e7f8", "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7fg",
                             "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8 "})
        EXPECT_FALSE(Uuid::parse(text)) << text;
    EXPECT_NE(Uuid::random(), Uuid::random());
}

TEST(Timestamp, ReadsAndWritesIso8601) {
    EXPECT_EQ(iso8601Text(testing::at(1'772'357'400)), "2026-03-01T09:30:00Z");
    EXPECT_EQ(iso8601Text(testing::at(-1)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(parseIso8601("2026-03-01T09:30:00Z"), testing::at(1'772'357'400));
    EXPECT_EQ(parseIso8601("2026-03-01T10:30:00+01:00"), testing::at(1'772'357'400));
    EXPECT_EQ(parseIso8601("2026-02-28T24:00:00Z"), parseIso8601("2026-03-01T00:00:00Z"));
    for (const char* text : {"0001-01-01T00:00:00Z", "9999-12-31T23:59:59Z"})
        EXPECT_EQ(parseIso8601(text).transform(iso8601Text), text);
    for (const char* text :
         {"", "2026-03-01", "2026-03-01T09:30:00+24:00", "2026-02-30T00:00:00Z", "2026-03-01T24:00:01Z",
          "2026-03-01T24:01:00Z", "2026-03-01T25:00:00Z", "2026-03-01T09:30:00", "2026-03-01T09:30:00.5Z",
          "2026-03-01 09:30:00Z", "2026-03-01T09:30:00Zx", "-026-03-01T09:30:00Z", "0000-12-31T23:59:59Z",
          // In UTC a year that cannot be read again once it is written.
          "9999-12-31T23:59:59-00:01", "9999-12-31T24:00:00Z", "0001-01-01T00:00:00+00:01"})
        EXPECT_FALSE(parseIso8601(text)) << text;
}

TEST(Signal, SurvivesCallbacksThatDisconnectAndDestroy) {
    auto signal = std::make_unique<Signal<>>();
    int calls = 0;
    Token second;
    Token first = signal->connect([&] {
        ++calls;
        second.release();
    });
    second = signal->connect([&] { calls += 100; });
    Token third = signal->connect([&] {
        ++calls;
        signal.reset();
    });
    Token fourth = signal->connect([&] { calls += 100; });
    signal->emit();
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace tavrin
