#include "export/msgpack/cls_wr_msgpack.h"

#include "export/msgpack/error.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <string>

#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

namespace {

using msgpack::Bytes;
using msgpack::cls_wr_msgpack;
using msgpack::Failure;
using testing::ElementsAre;
using testing::ElementsAreArray;

Bytes followed_by(Bytes bytes, std::size_t number, std::uint8_t value) {
    bytes.insert(bytes.end(), number, value);
    return bytes;
}

struct Encoding {
    std::string what;
    std::function<void(cls_wr_msgpack&)> write;
    Bytes expected;
};

const Encoding encodings[] = {
    {"int 0", [](auto& w) { w.Add_Int(0); }, {0x00}},
    {"int 127", [](auto& w) { w.Add_Int(127); }, {0x7F}},
    {"int 128", [](auto& w) { w.Add_Int(128); }, {0xCC, 0x80}},
    {"int 255", [](auto& w) { w.Add_Int(255); }, {0xCC, 0xFF}},
    {"int 256", [](auto& w) { w.Add_Int(256); }, {0xCD, 0x01, 0x00}},
    {"int 65535", [](auto& w) { w.Add_Int(65535); }, {0xCD, 0xFF, 0xFF}},
    {"int 65536", [](auto& w) { w.Add_Int(65536); }, {0xCE, 0x00, 0x01, 0x00, 0x00}},
    {"int max", [](auto& w) { w.Add_Int(0x7FFFFFFF); }, {0xCE, 0x7F, 0xFF, 0xFF, 0xFF}},
    {"uint8 5", [](auto& w) { w.Add_uInt8(5); }, {0xCC, 0x05}},
    {"uint32 1", [](auto& w) { w.Add_uInt32(1); }, {0xCE, 0x00, 0x00, 0x00, 0x01}},
    {"uint32 mixed", [](auto& w) { w.Add_uInt32(0x89ABCDEF); }, {0xCE, 0x89, 0xAB, 0xCD, 0xEF}},
    {"address", [](auto& w) { w.Add_uInt32_Addr(); }, {0xCE, 0, 0, 0, 0}},
    {"ident empty", [](auto& w) { w.Add_Ident_uInt32(""); }, {0xCE, 0, 0, 0, 0}},
    {"ident AB", [](auto& w) { w.Add_Ident_uInt32("AB"); }, {0xCE, 0, 0, 0x41, 0x42}},
    {"ident main", [](auto& w) { w.Add_Ident_uInt32("main"); }, {0xCE, 0x6D, 0x61, 0x69, 0x6E}},
    {"ident tail", [](auto& w) { w.Add_Ident_uInt32("domain"); }, {0xCE, 0x6D, 0x61, 0x69, 0x6E}},
    {"string empty", [](auto& w) { w.Add_String(""); }, {0xA0}},
    {"string 8-bit", [](auto& w) { w.Add_String("\xFC"); }, {0xA1, 0xFC}},
    {"string 31", [](auto& w) { w.Add_String(std::string(31, 'x')); },
     followed_by({0xBF}, 31, 'x')},
    {"string 32", [](auto& w) { w.Add_String(std::string(32, 'x')); },
     followed_by({0xD9, 0x20}, 32, 'x')},
    {"string 255", [](auto& w) { w.Add_String(std::string(255, 'x')); },
     followed_by({0xD9, 0xFF}, 255, 'x')},
    {"string 256", [](auto& w) { w.Add_String(std::string(256, 'x')); }, {}},
    {"string 300", [](auto& w) { w.Add_String(std::string(300, 'x')); }, {}},
    {"map 0", [](auto& w) { w.Add_Map(0); }, {0x80}},
    {"map 15", [](auto& w) { w.Add_Map(15); }, {0x8F}},
    {"map 16", [](auto& w) { w.Add_Map(16); }, {0xDE, 0x00, 0x10}},
    {"map 65535", [](auto& w) { w.Add_Map(65535); }, {0xDE, 0xFF, 0xFF}},
    {"array 2", [](auto& w) { w.Add_ItemArray(2); }, {0x92}},
    {"array 15", [](auto& w) { w.Add_ItemArray(15); }, {0x9F}},
    {"array 16", [](auto& w) { w.Add_ItemArray(16); }, {0xDC, 0x00, 0x10}},
    {"bin 0", [](auto& w) { w.Add_ByteArray(0); }, {0xC4, 0x00}},
    {"bin 200", [](auto& w) { w.Add_ByteArray(200); }, {0xC4, 0xC8}},
    {"bin 255", [](auto& w) { w.Add_ByteArray(255); }, {0xC4, 0xFF}},
    {"bin 256", [](auto& w) { w.Add_ByteArray(256); }, {0xC5, 0x01, 0x00}},
    {"bin 300", [](auto& w) { w.Add_ByteArray(300); }, {0xC5, 0x01, 0x2C}},
    {"raw",
     [](auto& w) {
         w.Add_Byte_to_Array(0xFE);
         w.Add_Bytes_to_Array(Bytes{1, 2});
     },
     {0xFE, 1, 2}},
};

TEST(Msgpack_Writer, chooses_the_described_bytes) {
    for (const auto& encoding : encodings) {
        SCOPED_TRACE(encoding.what);
        cls_wr_msgpack writer;
        encoding.write(writer);
        EXPECT_EQ(writer.Get_Array(), encoding.expected);
        EXPECT_EQ(static_cast<std::size_t>(writer.Get_Len()), encoding.expected.size());
    }
}

Failure failure_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const msgpack::Error& error) {
        return error.kind;
    }
    throw std::logic_error("nothing was refused");
}

TEST(Msgpack_Writer, refuses_what_its_bytes_cannot_hold_and_writes_nothing) {
    cls_wr_msgpack writer;
    const auto slot = writer.Add_uInt32_Addr();
    std::size_t position = 100;
    writer.Skip_Array(position);
    const auto before = writer.Get_Array();
    EXPECT_EQ(failure_of([&] { writer.Add_Int(-1); }), Failure::negative);
    EXPECT_EQ(failure_of([&] { writer.Add_Map(65536); }), Failure::overflow);
    EXPECT_EQ(failure_of([&] { writer.Add_ItemArray(65536); }), Failure::overflow);
    EXPECT_EQ(failure_of([&] { writer.Add_ByteArray(65536); }), Failure::overflow);
    EXPECT_EQ(failure_of([&] { writer.Set_uInt32_Addr(slot + 1, 100); }), Failure::outside);
    EXPECT_EQ(failure_of([&] { writer.Set_uInt32_Addr(-1, 100); }), Failure::outside);
    EXPECT_EQ(failure_of([&] { writer.Set_uInt32_Addr(slot, 99); }), Failure::negative);
    EXPECT_EQ(failure_of([&] { writer.Set_uInt32_Addr(slot, 100 + (std::size_t{1} << 32)); }),
              Failure::overflow);
    Bytes short_target(104);
    EXPECT_EQ(failure_of([&] { writer.Array_Override(short_target); }), Failure::outside);
    EXPECT_EQ(writer.Get_Array(), before);
}

TEST(Msgpack_Writer, counts_bytes_in_16_bits_but_copies_any_length) {
    cls_wr_msgpack writer;
    for (int i = 0; i < 32767; ++i) writer.Add_Byte_to_Array(7);
    EXPECT_EQ(writer.Get_Len(), 32767);
    EXPECT_EQ(writer.Get_Array().size(), 32767U);
    for (int i = 0; i < 40000; ++i) writer.Add_Byte_to_Array(8);
    EXPECT_EQ(failure_of([&] { (void)writer.Get_Len(); }), Failure::overflow);
    EXPECT_EQ(failure_of([&] { (void)writer.Get_Array(); }), Failure::overflow);
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
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    cls_wr_msgpack content;
    content.Add_uInt8(9);

    std::size_t position = 100;
    Bytes target(100);
    directory.Skip_Array(position);
    EXPECT_EQ(position, 111U);
    directory.Set_uInt32_Addr(second, 164);
    directory.Set_uInt32_Addr(first, position);
    content.Get_Array_Add(target, position);
    directory.Array_Override(target);
    ASSERT_EQ(target.size(), 113U);
    EXPECT_THAT(std::vector(target.begin() + 100, target.end()),
                ElementsAre(0x92, 0xCE, 0, 0, 0, 0x0B, 0xCE, 0, 0, 0, 0x40, 0xCC, 9));

    directory.Clear();
    EXPECT_EQ(directory.Get_Len(), 0);
    EXPECT_EQ(directory.Add_uInt32_Addr(), 0);
}

TEST(Msgpack_Writer, patches_every_byte_of_an_address_and_no_other) {
    cls_wr_msgpack writer;
    writer.Add_uInt8(1);
    const auto slot = writer.Add_uInt32_Addr();
    writer.Add_uInt8(2);
    writer.Set_uInt32_Addr(slot, 0x89ABCDEF);
    EXPECT_THAT(writer.Get_Array(),
                ElementsAreArray({0xCC, 1, 0xCE, 0x89, 0xAB, 0xCD, 0xEF, 0xCC, 2}));
}

TEST(Msgpack_Writer, is_understood_by_another_reader) {
    cls_wr_msgpack writer;
    writer.Add_ItemArray(17);
    for (std::int32_t i = 0; i < 12; ++i) writer.Add_Int(1 << (2 * i));
    writer.Add_String(std::string(40, 'q'));
    writer.Add_Ident_uInt32("scr");
    writer.Add_uInt32(std::numeric_limits<std::uint32_t>::max());
    writer.Add_ByteArray(400);
    writer.Add_Bytes_to_Array(Bytes(400, 0xC1)); // a byte that is no value of the format
    writer.Add_Map(1);
    writer.Add_ItemArray(2); // keys may be arrays
    writer.Add_Int(8);
    writer.Add_Int(300);
    writer.Add_uInt8(4);

    std::size_t read = 0;
    const auto bytes = writer.Get_Array();
    const auto handle =
        msgpack::unpack(reinterpret_cast<const char*>(bytes.data()), bytes.size(), read);
    EXPECT_EQ(read, bytes.size());
    const auto items = handle.get().as<std::vector<msgpack::object>>();
    ASSERT_EQ(items.size(), 17U);
    for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(items[i].as<int>(), 1 << (2 * i));
    EXPECT_EQ(items[12].as<std::string>(), std::string(40, 'q'));
    EXPECT_EQ(items[13].as<std::uint32_t>(), 0x00736372U);
    EXPECT_EQ(items[14].as<std::uint32_t>(), std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(items[15].as<std::vector<char>>(), std::vector<char>(400, '\xC1'));
    const auto map = items[16].as<std::map<std::vector<int>, int>>();
    EXPECT_EQ(map, (std::map<std::vector<int>, int>{{{8, 300}, 4}}));
}

} // namespace
