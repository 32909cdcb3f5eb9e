// The checker makes text keys with code of its own: both must agree on every text.

#include "platform/jet/check/key.h"
#include "platform/jet/index/index_key.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

bool agree(std::u16string_view text, bool ascending) {
    jet::Bytes ours;
    jet::append_text_key(ours, text, ascending);
    jet::check::Key theirs;
    jet::check::append_text_key(theirs, text, ascending);
    return ours.size() == theirs.size() &&
           std::memcmp(ours.data(), theirs.data(), ours.size()) == 0;
}

std::string units_of(std::u16string_view text) {
    std::string units;
    for (const char16_t unit : text) units += std::to_string(unit) + ' ';
    return units;
}

} // namespace

TEST(Index_Key_Twin, every_unit_alone_and_between_others) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const auto u = static_cast<char16_t>(unit);
        for (const std::u16string& text : {std::u16string{u}, std::u16string{u'\u00E4', u, u'-', u},
                                           std::u16string{u'-', u, u'\u0301', u'b'}})
            ASSERT_TRUE(agree(text, unit % 2 == 0)) << units_of(text);
    }
}

TEST(Index_Key_Twin, random_texts) {
    // half of the units are taken from the classes with rules of their own
    const std::u16string special =
        u"-'\u0001\u0301\u0308\u3099\u01C4\u00E4\u00DF\u3041\u3042\u30A1\u30AC\u304C "
        u"\xD83D\xDE00\u4E00zZ1";
    std::mt19937 random(29);
    const int runs = std::getenv("LONG_TESTS") != nullptr ? 1000000 : 20000;
    for (int run = 0; run < runs; ++run) {
        std::u16string text;
        const auto length = run % 20 == 0 ? 250 + random() % 12 : random() % 12;
        for (std::size_t i = 0; i < length; ++i)
            text += random() % 2 == 0 ? special[random() % special.size()]
                                      : static_cast<char16_t>(random());
        ASSERT_TRUE(agree(text, run % 2 == 0)) << units_of(text);
    }
}
