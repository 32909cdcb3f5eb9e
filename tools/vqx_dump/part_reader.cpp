#include "part_reader.h"

#include <limits>

namespace vqx_dump {

namespace {

/// Type byte of the shortest form of a number, of those that the writer has.
std::uint8_t shortest(std::uint64_t number) {
    if (number < 0x80) return static_cast<std::uint8_t>(number);
    if (number < 0x100) return 0xCC;
    return number < 0x10000 ? 0xCD : 0xCE;
}

const char* form_of(std::uint8_t type) {
    const std::uint8_t with_argument[9] = {type};
    return Msgpack_Reader(with_argument).next().name;
}

} // namespace

Item Part_Reader::expect(Kind kind, std::string_view kind_name, std::string_view what) {
    if (!ok_) return {};
    const Item item = reader_.next();
    last_offset_ = item.offset;
    if (item.kind == kind) return item;
    ok_ = false;
    if (item.kind == Kind::ended)
        findings_.inconsistency(item.offset, sentence("the file ends within ", what, "."));
    else
        findings_.inconsistency(item.offset, sentence("here should stand ", kind_name, " (", what,
                                                      "), but there is a ", item.name, "."));
    return {};
}

void Part_Reader::hold_against(const Item& item, std::uint8_t type, std::string_view what) {
    if (ok_ && item.type != type)
        findings_.inconsistency(item.offset, sentence(what, " (", item.number, ") is written as ",
                                                      item.name, ", not as ", form_of(type), "."));
}

std::uint32_t Part_Reader::number(std::string_view what) {
    const Item item = expect(Kind::number, "a number", what);
    hold_against(item, shortest(item.number), what);
    return item.number > std::numeric_limits<std::uint32_t>::max()
               ? std::numeric_limits<std::uint32_t>::max()
               : static_cast<std::uint32_t>(item.number);
}

std::uint32_t Part_Reader::number_as(std::uint8_t type, std::string_view what) {
    const Item item = expect(Kind::number, "a number", what);
    hold_against(item, type, what);
    return static_cast<std::uint32_t>(item.number & 0xFFFFFFFF);
}

std::size_t Part_Reader::map(std::string_view what) {
    const Item item = expect(Kind::map, "a map", what);
    hold_against(
        item, item.number < 16 ? static_cast<std::uint8_t>(0x80 + item.number) : std::uint8_t{0xDE},
        what);
    return static_cast<std::size_t>(item.number);
}

void Part_Reader::pair(std::string_view what) {
    const Item item = expect(Kind::array, "an array of 2", what);
    if (!ok_) return;
    if (item.number != 2) {
        findings_.inconsistency(item.offset,
                                sentence(what, " is an array of ", item.number, ", not of 2."));
        ok_ = false;
    }
    hold_against(item, 0x92, what);
}

std::size_t Part_Reader::bin(std::string_view what) {
    const Item item = expect(Kind::bin, "a bin", what);
    hold_against(item, item.number < 256 ? 0xC4 : 0xC5, what);
    if (ok_ && item.number > reader_.left()) {
        findings_.inconsistency(item.offset,
                                sentence(what, " is ", item.number, " bytes long, but only ",
                                         reader_.left(), " follow."));
        ok_ = false;
    }
    return ok_ ? static_cast<std::size_t>(item.number) : 0;
}

} // namespace vqx_dump
