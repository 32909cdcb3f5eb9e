#include "platform/jet/check/key.h"

#include <gmock/gmock.h>

namespace jet::check {
namespace {

Key bytes(std::string_view hex) {
    std::string digits(hex);
    std::erase(digits, ' ');
    Key key;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        key.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return key;
}

// Each line shows one way in which a text key is put together; those of Latin letters were found
// in files made by Access.
TEST(Check_Keys, of_texts) {
    const struct {
        std::u16string text;
        bool ascending;
        const char* key;
    } cases[] = {
        {u"", true, "01 00"},
        {u"a", true, "4A 01 00"},
        {u"A  ", true, "4A 01 00"},
        {u"Ä", true, "4A 01 13 00"},
        {u"Ä", false, "B5 FE EC FF 00"},
        {u"ümlaut", true, "6F 60 5E 4A 6F 6D 01 13 00"},
        {u"Straße", true, "6B 6D 69 4A 6B 6B 51 01 00"},
        {u"ABC-Bremsen, Pendelzug", true,
         "4A 4C 4D 4C 69 51 60 6B 51 62 1A 07 66 51 62 4F 51 5E 78 6F 55 01 01 01 01 80 13 06 82 "
         "00"},
        {u"Müller-Lüdenscheid", true,
         "60 6F 5E 5E 51 69 5E 6F 4F 51 62 6B 4D 57 51 59 4F 01 02 13 02 02 02 02 02 13 01 01 01 "
         "80 1F 06 82 00"},
        {u"ääkkösiä", true, "4A 4A 5C 5C 64 6B 59 4A 01 13 13 02 02 13 02 02 13 00"},
        {u"a\u0301", true, "4A 01 0E 00"},
        {u"\u01C4", true, "4F 78 01 02 14 00"},
        {u"漢字仮名交じり文", true,
         "C0 B6 AC AC A0 0D A5 47 9F BE 7F 13 7F 43 B6 F6 01 02 02 02 02 02 03 01 01 FF 02 80 FF "
         "80 00"},
        {u"😀", true, "B0 3F B6 FC 01 3F 3F 00"},
        {std::u16string(255, u'a') + u"Ä", true, nullptr}, // only 255 units count
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.key == nullptr ? "long" : c.key);
        Key key, expected(255, 0x4A);
        append_text_key(key, c.text, c.ascending);
        expected.insert(expected.end(), {1, 0});
        EXPECT_EQ(key, c.key == nullptr ? expected : bytes(c.key));
    }
}

// Sign, exponent and chunk rules of each type, in both directions; value bytes as in a row.
TEST(Check_Keys, of_other_types) {
    using namespace column_type;
    const struct {
        std::uint32_t type;
        const char* value; ///< nothing: null
        const char* ascending;
        const char* descending;
    } cases[] = {
        {long_integer, nullptr, "00", "FF"},
        {long_integer, "01 00 00 00", "7F 80 00 00 01", "80 7F FF FF FE"},
        {long_integer, "ED FF FF FF", "7F 7F FF FF ED", "80 80 00 00 12"},
        {integer, "FF FF", "7F 7F FF", "80 80 00"},
        {byte, "B4", "7F B4", "80 4B"},
        {currency, "10 27 00 00 00 00 00 00", "7F 80 00 00 00 00 00 27 10",
         "80 7F FF FF FF FF FF D8 EF"},
        {single_float, "00 00 80 3F", "7F BF 80 00 00", "80 40 7F FF FF"},
        {single_float, "00 00 80 BF", "7F 40 7F FF FF", "80 BF 80 00 00"},
        {date, "00 00 00 00 00 00 F0 3F", "7F BF F0 00 00 00 00 00 00",
         "80 40 0F FF FF FF FF FF FF"},
        {binary, "", "7F", "80"},
        {binary, "01 02", "7F 01 02 00 00 00 00 00 00 02", "80 FE FD FF FF FF FF FF FF FD"},
        {binary, "01 02 03 04 05 06 07 08 AA",
         "7F 01 02 03 04 05 06 07 08 09 AA 00 00 00 00 00 00 00 01",
         "80 FE FD FC FB FA F9 F8 F7 09 55 FF FF FF FF FF FF FF FE"},
        {guid, "44 33 22 11 66 55 88 77 99 AA BB CC DD EE FF 00",
         "7F 11 22 33 44 55 66 77 88 09 99 AA BB CC DD EE FF 00 08",
         "80 EE DD CC BB AA 99 88 77 09 66 55 44 33 22 11 00 FF F7"},
        {decimal, "00 00000000 00000000 00000000 01000000",
         "7F FF 00000000 00000000 00000000 00000001", "80 FF FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFE"},
        {decimal, "80 00000000 00000000 00000000 01000000",
         "7F 00 FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFE", "80 00 00000000 00000000 00000000 00000001"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.ascending);
        const Key stored = bytes(c.value == nullptr ? "" : c.value);
        Column column;
        column.type = c.type;
        const Value value{.null = c.value == nullptr,
                          .bytes = Bytes(std::as_bytes(std::span(stored)))};
        for (const bool ascending : {true, false}) {
            Key key;
            append_key(key, column, value, {}, ascending);
            EXPECT_EQ(key, bytes(ascending ? c.ascending : c.descending));
        }
    }
}

} // namespace
} // namespace jet::check
