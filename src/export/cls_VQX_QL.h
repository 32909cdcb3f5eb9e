#pragma once

#include "export/cls_QL_project.h"
#include "platform/files/disk.h"

#include <array>
#include <string>

namespace vqx_export {

/// Writes a decoder project file: a header of 128 bytes, then the body.
class cls_VQX_QL {
public:
    static constexpr std::size_t header_size = 128;

    explicit cls_VQX_QL(files::Disk& disk) : disk_(disk) {}

    /// Puts the file in place in one step; a file of that name stands whole until then.
    /// @throws files::Error; msgpack::Error (overflow) for a body of 4 GiB and more
    void Write_VQX(const std::string& file_name, cls_QL_project& project);

private:
    void write_header(File_Type type, std::size_t body_length);
    void put_byte(std::size_t offset, std::uint8_t value);
    void put_uint16(std::size_t offset, std::uint16_t value);
    void put_uint32(std::size_t offset, std::uint32_t value);

    files::Disk& disk_;
    std::array<std::uint8_t, header_size> header_{};
};

} // namespace vqx_export
