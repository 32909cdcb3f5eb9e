#include "export/msgpack/cls_wr_msgpack.h"

#include "export/msgpack/error.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using msgpack::Bytes;
using msgpack::cls_wr_msgpack;
using msgpack::Failure;
using testing::ElementsAre;

struct Encoding {
    std::function<void(cls_wr_msgpack&)> write;
    Bytes expected;
};

const Encoding encodings[] = {
    {[](auto& w) { w.Add_Int(127); }, {0x7F}},
    {[](auto& w) { w.Add_Int(128); }, {0xCC, 0x80}},
    {[](auto& w) { w.Add_Int(255); }, {0xCC, 0xFF}},
    {[](auto& w) { w.Add_Int(256); }, {0xCD, 0x01, 0x00}},
    {[](auto& w) { w.Add_Int(65535); }, {0xCD, 0xFF, 0xFF}},
    {[](auto& w) { w.Add_Int(65536); }, {0xCE, 0x00, 0x01, 0x00, 0x00}},
    {[](auto& w) { w.Add_uInt8(5); }, {0xCC, 0x05}},
    {[](auto& w) { w.Add_uInt32(0x89ABCDEF); }, {0xCE, 0x89, 0xAB, 0xCD, 0xEF}},
    {[](auto& w) { w.Add_Ident_uInt32("AB"); }, {0xCE, 0, 0, 0x41, 0x42}},
    {[](auto& w) { w.Add_Ident_uInt32("domain"); }, {0xCE, 0x6D, 0x61, 0x69, 0x6E}},
    {[](auto& w) { w.Add_Map(15); }, {0x8F}},
    {[](auto& w) { w.Add_Map(16); }, {0xDE, 0x00, 0x10}},
    {[](auto& w) { w.Add_Map(65535); }, {0xDE, 0xFF, 0xFF}},
    {[](auto& w) { w.Add_ItemArray(15); }, {0x9F}},
    {[](auto& w) { w.Add_ItemArray(16); }, {0xDC, 0x00, 0x10}},
    {[](auto& w) { w.Add_ByteArray(255); }, {0xC4, 0xFF}},
    {[](auto& w) { w.Add_ByteArray(256); }, {0xC5, 0x01, 0x00}},
};

TEST(Msgpack_Writer, chooses_the_described_bytes) {
    for (const auto& encoding : encodings) {
        SCOPED_TRACE(testing::PrintToString(encoding.expected));
        cls_wr_msgpack writer;
        encoding.write(writer);
        EXPECT_EQ(writer.Get_Array(), encoding.expected);
    }
    const std::pair<std::size_t, Bytes> texts[] = {
        {31, {0xBF}}, {32, {0xD9, 0x20}}, {255, {0xD9, 0xFF}}, {256, {}}}; // the last has no room
    for (auto [length, expected] : texts) {
        cls_wr_msgpack writer;
        writer.Add_String(std::string(length, '\xFC'));
        if (!expected.empty()) expected.insert(expected.end(), length, 0xFC);
        EXPECT_EQ(writer.Get_Array(), expected);
    }
}

auto refuses(Failure kind) {
    return testing::Throws<msgpack::Error>(testing::Field(&msgpack::Error::kind, kind));
}

TEST(Msgpack_Writer, refuses_what_its_bytes_cannot_hold_and_writes_nothing) {
    cls_wr_msgpack writer;
    const auto slot = writer.Add_uInt32_Addr();
    std::size_t position = 100;
    writer.Skip_Array(position);
    const auto before = writer.Get_Array();
    EXPECT_THAT([&] { writer.Add_Int(-1); }, refuses(Failure::negative));
    EXPECT_THAT([&] { writer.Add_Map(65536); }, refuses(Failure::overflow));
    EXPECT_THAT([&] { writer.Set_uInt32_Addr(slot + 1, 100); }, refuses(Failure::outside));
    EXPECT_THAT([&] { writer.Set_uInt32_Addr(-1, 100); }, refuses(Failure::outside));
    EXPECT_THAT([&] { writer.Set_uInt32_Addr(slot, 99); }, refuses(Failure::negative));
    EXPECT_THAT([&] { writer.Set_uInt32_Addr(slot, 100 + (std::size_t{1} << 32)); },
                refuses(Failure::overflow));
    Bytes short_target(104);
    EXPECT_THAT([&] { writer.Array_Override(short_target); }, refuses(Failure::outside));
    EXPECT_EQ(writer.Get_Array(), before);
}

TEST(Msgpack_Writer, counts_bytes_in_16_bits_but_copies_any_length) {
    cls_wr_msgpack writer;
    writer.Add_Bytes_to_Array(Bytes(32767, 7));
    EXPECT_EQ(writer.Get_Array().size(), 32767U);
    for (int i = 0; i < 40000; ++i) writer.Add_Byte_to_Array(8);
    EXPECT_THAT([&] { (void)writer.Get_Array(); }, refuses(Failure::overflow));
    Bytes copied;
    std::size_t position = 3;
    writer.Get_Array_Add(copied, position);
    EXPECT_EQ(position, 72770U);
    ASSERT_EQ(copied.size(), 72770U);
    EXPECT_EQ(copied[3], 7);
    EXPECT_EQ(copied.back(), 8);
}

TEST(Msgpack_Writer, addresses_count_from_the_start_of_their_stream) {
    cls_wr_msgpack directory;
    directory.Add_ItemArray(2);
    const auto first = directory.Add_uInt32_Addr();
    const auto second = directory.Add_uInt32_Addr();
    cls_wr_msgpack content;
    content.Add_uInt8(9);

    std::size_t position = 100;
    Bytes target(100);
    directory.Skip_Array(position);
    directory.Set_uInt32_Addr(second, 100 + 0x89ABCDEF);
    directory.Set_uInt32_Addr(first, position);
    content.Get_Array_Add(target, position);
    directory.Array_Override(target);
    EXPECT_THAT(std::vector(target.begin() + 100, target.end()),
                ElementsAre(0x92, 0xCE, 0, 0, 0, 0x0B, 0xCE, 0x89, 0xAB, 0xCD, 0xEF, 0xCC, 9));

    directory.Clear();
    EXPECT_EQ(directory.Get_Len(), 0);
    EXPECT_EQ(directory.Add_uInt32_Addr(), 0);
}

} // namespace
