#include "export/cls_VQX_QL.h"

#include "export/msgpack/error.h"
#include "platform/files/replace.h"

#include <limits>
#include <span>

namespace vqx_export {
namespace {

// Offsets of the header fields; all other bytes are 0.
constexpr std::size_t at_magic = 0;
constexpr std::size_t at_format = 2;
constexpr std::size_t at_body_offset = 5;
constexpr std::size_t at_body_length = 9;

constexpr std::uint16_t magic_oem = 0x514C;  // "QL"
constexpr std::uint16_t magic_user = 0x4C5A; // "LZ"
constexpr std::uint16_t format_number = 2;

} // namespace

void cls_VQX_QL::put_byte(std::size_t offset, std::uint8_t value) { header_.at(offset) = value; }

void cls_VQX_QL::put_uint16(std::size_t offset, std::uint16_t value) {
    put_byte(offset, static_cast<std::uint8_t>(value >> 8));
    put_byte(offset + 1, static_cast<std::uint8_t>(value & 0xFF));
}

void cls_VQX_QL::put_uint32(std::size_t offset, std::uint32_t value) {
    put_uint16(offset, static_cast<std::uint16_t>(value >> 16));
    put_uint16(offset + 2, static_cast<std::uint16_t>(value & 0xFFFF));
}

void cls_VQX_QL::write_header(File_Type type, std::size_t body_length) {
    if (body_length > std::numeric_limits<std::uint32_t>::max())
        throw msgpack::Error(msgpack::Failure::overflow, std::to_string(body_length) + " bytes",
                             "the header has 32 bits for the length");
    header_.fill(0);
    put_uint16(at_magic, type == File_Type::oem ? magic_oem : magic_user);
    put_uint16(at_format, format_number);
    put_byte(at_body_offset, static_cast<std::uint8_t>(header_size));
    put_uint32(at_body_length, static_cast<std::uint32_t>(body_length));
}

void cls_VQX_QL::Write_VQX(const std::string& file_name, cls_QL_project& project) {
    const auto body = project.Get_Array();
    write_header(project.file_type, body.size());
    files::Replacement file(disk_, file_name);
    file.write(std::as_bytes(std::span(header_)));
    file.write(std::as_bytes(std::span(body)));
    file.finish();
}

} // namespace vqx_export
