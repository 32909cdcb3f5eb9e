#include "platform/jet/index/index_key.h"

#include "platform/jet/format/error.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

using namespace jet;

namespace {

std::string hex(const Bytes& bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", std::to_integer<unsigned>(byte));
        text += digits;
    }
    if (!text.empty()) text.pop_back();
    return text;
}

std::string key(Column_Type type, bool ascending, const Value& value) {
    Bytes bytes;
    append_key(bytes, {type, ascending}, value);
    return hex(bytes);
}

Bytes bytes_of(std::initializer_list<int> numbers) {
    Bytes bytes;
    for (const int number : numbers) bytes.push_back(static_cast<std::byte>(number));
    return bytes;
}

std::string text_key(std::u16string_view text, bool ascending = true) {
    Bytes bytes;
    append_text_key(bytes, text, ascending);
    return hex(bytes);
}

} // namespace

TEST(Index_Key, texts_as_found_in_files) {
    const struct {
        std::u16string text;
        const char* bytes;
    } cases[] = {
        {u"", "01 00"},
        {u"a", "4A 01 00"},
        {u"A", "4A 01 00"},
        {u"A   ", "4A 01 00"},
        {u"Ä", "4A 01 13 00"},
        {u"ümlaut", "6F 60 5E 4A 6F 6D 01 13 00"},
        {u"Straße", "6B 6D 69 4A 6B 6B 51 01 00"},
        {u"ABC-Bremsen, Pendelzug",
         "4A 4C 4D 4C 69 51 60 6B 51 62 1A 07 66 51 62 4F 51 5E 78 6F 55 01 01 01 01 80 13 06 82 "
         "00"},
        {u"Müller-Lüdenscheid", "60 6F 5E 5E 51 69 5E 6F 4F 51 62 6B 4D 57 51 59 4F 01 02 13 02 02 "
                                "02 02 02 13 01 01 01 80 "
                                "1F 06 82 00"},
        {u"ääkkösiä", "4A 4A 5C 5C 64 6B 59 4A 01 13 13 02 02 13 02 02 13 00"},
        {u"a\u0301", "4A 01 0E 00"},
        {u"á", "4A 01 0E 00"},
        {u"Ǆ", "4F 78 01 02 14 00"},
        {u"漢字仮名交じり文",
         "C0 B6 AC AC A0 0D A5 47 9F BE 7F 13 7F 43 B6 F6 01 02 02 02 02 02 03 "
         "01 01 FF 02 80 FF 80 00"},
        {u"😀", "B0 3F B6 FC 01 3F 3F 00"},
    };
    for (const auto& c : cases) EXPECT_EQ(text_key(c.text), c.bytes);
    EXPECT_EQ(key(Column_Type::text, false, std::u16string(u"Ä")), "80 B5 FE EC FF 00");
}

TEST(Index_Key, rare_turns_of_text) {
    // a mark before any letter covers none; the hyphen behind it counts from the letters again
    EXPECT_EQ(text_key(u"\u0301"), "01 0C 00");
    EXPECT_EQ(text_key(u"\u0301-"), "01 0C 01 01 01 80 07 06 82 00");
    EXPECT_EQ(text_key(u"\u0301a\u0301"), "4A 01 0C 0E 00");
    // after two extra bytes for one letter a hyphen is further right than its letters
    EXPECT_EQ(text_key(u"Ǆ-"), "4F 78 01 02 14 01 01 01 80 0F 06 82 00");
    // kinds of kana: three to a byte, the usual kind cut from the end
    EXPECT_EQ(text_key(u"ぁあ"), "7F 02 7F 02 01 01 01 A0 FF 02 80 FF 80 00");
    EXPECT_EQ(text_key(u"あぁ"), "7F 02 7F 02 01 01 01 B8 FF 02 80 FF 80 00");
    EXPECT_EQ(text_key(u"がぁ-"), "7F 0A 7F 02 01 03 01 01 B8 FF 02 80 FF 80 FF 01 80 0F 06 82 00");
    // a blank in front counts, behind it does not; nor do units past the 255th
    EXPECT_NE(text_key(u" a"), text_key(u"a"));
    EXPECT_EQ(text_key(std::u16string(255, u'x') + u"y"), text_key(std::u16string(255, u'x')));
    EXPECT_EQ(text_key(std::u16string(254, u'x') + u" y"), text_key(std::u16string(254, u'x')));
}

TEST(Index_Key, values_of_every_type) {
    Guid guid;
    std::ranges::copy(bytes_of({0x44, 0x33, 0x22, 0x11, 0x66, 0x55, 0x88, 0x77, 0x99, 0xAA, 0xBB,
                                0xCC, 0xDD, 0xEE, 0xFF, 0x00}),
                      guid.bytes.begin());
    const Value nine = bytes_of({1, 2, 3, 4, 5, 6, 7, 8, 9});
    const Value eight = bytes_of({1, 2, 3, 4, 5, 6, 7, 8});
    const struct {
        Column_Type type;
        Value value;
        const char* ascending;
        const char* descending;
    } cases[] = {
        {Column_Type::long_integer, Null{}, "00", "FF"},
        {Column_Type::boolean, true, "7F 00", "80 FF"},
        {Column_Type::boolean, false, "7F FF", "80 00"},
        {Column_Type::byte, 200, "7F C8", "80 37"},
        {Column_Type::integer, -2, "7F 7F FE", "80 80 01"},
        {Column_Type::long_integer, 1, "7F 80 00 00 01", "80 7F FF FF FE"},
        {Column_Type::long_integer, -19, "7F 7F FF FF ED", "80 80 00 00 12"},
        {Column_Type::currency, Currency{10000}, "7F 80 00 00 00 00 00 27 10",
         "80 7F FF FF FF FF FF D8 EF"},
        {Column_Type::single_float, 1.5, "7F BF C0 00 00", "80 40 3F FF FF"},
        {Column_Type::single_float, -1.5, "7F 40 3F FF FF", "80 BF C0 00 00"},
        {Column_Type::double_float, 1.0, "7F BF F0 00 00 00 00 00 00",
         "80 40 0F FF FF FF FF FF FF"},
        {Column_Type::date, Date{-1.25}, "7F 40 0B FF FF FF FF FF FF",
         "80 BF F4 00 00 00 00 00 00"},
        {Column_Type::binary, Bytes{}, "7F", "80"},
        {Column_Type::binary, bytes_of({1, 2}), "7F 01 02 00 00 00 00 00 00 02",
         "80 FE FD FF FF FF FF FF FF FD"},
        {Column_Type::binary, eight, "7F 01 02 03 04 05 06 07 08 08",
         "80 FE FD FC FB FA F9 F8 F7 F7"},
        {Column_Type::binary, nine, "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01",
         "80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE"},
        {Column_Type::guid, guid, "7F 11 22 33 44 55 66 77 88 09 99 AA BB CC DD EE FF 00 08",
         "80 EE DD CC BB AA 99 88 77 09 66 55 44 33 22 11 00 FF F7"},
        {Column_Type::decimal, Decimal{false, {0, 0, 0, 1}, 0},
         "7F FF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01",
         "80 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FE"},
        {Column_Type::decimal, Decimal{true, {0, 0, 0, 1}, 0},
         "7F 00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FE",
         "80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(key(c.type, true, c.value), c.ascending);
        EXPECT_EQ(key(c.type, false, c.value), c.descending);
    }
}

TEST(Index_Key, order_of_keys_is_order_of_values) {
    using limits = std::numeric_limits<std::int32_t>;
    const std::vector<std::pair<Column_Type, std::vector<Value>>> rising = {
        {Column_Type::long_integer, {Null{}, limits::min(), -1, 0, 1, 255, 256, limits::max()}},
        {Column_Type::integer, {Null{}, -32768, -1, 0, 1, 32767}},
        {Column_Type::double_float, {Null{}, -1e300, -1.0, -1e-300, 0.0, 1e-300, 1.0, 1e300}},
        {Column_Type::currency, {Currency{-10001}, Currency{-1}, Currency{0}, Currency{1}}},
        {Column_Type::binary,
         {Null{}, bytes_of({0}), bytes_of({0, 0}), bytes_of({1, 2, 3, 4, 5, 6, 7, 8}),
          bytes_of({1, 2, 3, 4, 5, 6, 7, 8, 0}), bytes_of({2})}},
        {Column_Type::text,
         {Null{}, std::u16string(u""), std::u16string(u"1"), std::u16string(u"a"),
          std::u16string(u"ä"), std::u16string(u"aa"), std::u16string(u"B")}},
    };
    for (const auto& [type, values] : rising) {
        for (const bool ascending : {true, false}) {
            std::vector<Bytes> keys;
            for (const Value& value : values)
                append_key(keys.emplace_back(), {type, ascending}, value);
            if (!ascending) std::ranges::reverse(keys);
            EXPECT_TRUE(std::ranges::is_sorted(keys)) << static_cast<int>(type) << ascending;
            EXPECT_EQ(std::ranges::adjacent_find(keys), keys.end()) << static_cast<int>(type);
        }
    }
}

TEST(Index_Key, several_columns_stand_one_after_the_other) {
    const std::vector<Key_Column> columns{
        {Column_Type::long_integer, true}, {Column_Type::text, true}, {Column_Type::byte, false}};
    const std::vector<Value> values{1, std::u16string(u"a"), Null{}};
    EXPECT_EQ(hex(key_of(columns, values)), "7F 80 00 00 01 7F 4A 01 00 FF");
    EXPECT_EQ(hex(key_of(columns, std::span(values).first(1))), "7F 80 00 00 01");
    Bytes bytes;
    EXPECT_THROW(append_key(bytes, columns[0], std::u16string(u"1")), Error);
}

TEST(Index_Key, what_nulls_mean) {
    const Value null = Null{};
    const std::vector<Value> none{1, 2}, some{1, null}, all{null, null};
    const struct {
        Key_Shape shape;
        Null_Rule none, some, all;
    } cases[] = {
        {{}, Null_Rule::entry, Null_Rule::entry, Null_Rule::entry_repeats},
        {{.columns = {}, .ignore_nulls = true},
         Null_Rule::entry,
         Null_Rule::entry,
         Null_Rule::left_out},
        {{.columns = {}, .required = true},
         Null_Rule::entry,
         Null_Rule::refused,
         Null_Rule::refused},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(null_rule(c.shape, none), c.none);
        EXPECT_EQ(null_rule(c.shape, some), c.some);
        EXPECT_EQ(null_rule(c.shape, all), c.all);
    }
}

TEST(Index_Key, only_known_keys_are_made) {
    EXPECT_TRUE(can_compute(Key_Column{Column_Type::text, true, 0x0409}));
    EXPECT_FALSE(can_compute(Key_Column{Column_Type::text, true, 0x0407}));
    EXPECT_FALSE(can_compute(Key_Column{Column_Type::memo, true, 0x01000409})); // order of 2010
    EXPECT_TRUE(can_compute(Key_Column{Column_Type::date, true, 0x0407}));
    EXPECT_FALSE(can_compute(Key_Column{static_cast<Column_Type>(0x12), true, 0x0409}));
}
