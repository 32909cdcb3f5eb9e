#include "platform/jet/check/header.h"

namespace jet::check {

namespace {

// XOR-ed over page 0 from 0x18 on, the same in all files.
constexpr std::array<std::uint8_t, 128> mask{
    0xB5, 0x6F, 0x03, 0x62, 0x61, 0x08, 0xC2, 0x55, 0xEB, 0xA9, 0x67, 0x72, 0x43, 0x3F, 0x00, 0x9C,
    0x7A, 0x9F, 0x90, 0xFF, 0x80, 0x9A, 0x31, 0xC5, 0x79, 0xBA, 0xED, 0x30, 0xBC, 0xDF, 0xCC, 0x9D,
    0x63, 0xD9, 0xE4, 0xC3, 0x7B, 0x42, 0xFB, 0x8A, 0xBC, 0x4E, 0x86, 0xFB, 0xEC, 0x37, 0x5D, 0x44,
    0x9C, 0xFA, 0xC6, 0x5E, 0x28, 0xE6, 0x13, 0xB6, 0x8A, 0x60, 0x54, 0x94, 0x7B, 0x36, 0xF5, 0x72,
    0xDF, 0xB1, 0x77, 0xF4, 0x13, 0x43, 0xCF, 0xAF, 0xB1, 0x33, 0x34, 0x61, 0x79, 0x5B, 0x92, 0xB5,
    0x7C, 0x2A, 0x05, 0xF1, 0x7C, 0x99, 0x01, 0x1B, 0x98, 0xFD, 0x12, 0x4F, 0x4A, 0x94, 0x6C, 0x3E,
    0x60, 0x26, 0x5F, 0x95, 0xF8, 0xD0, 0x89, 0x24, 0x85, 0x67, 0xC6, 0x1F, 0x27, 0x44, 0xD2, 0xEE,
    0xCF, 0x65, 0xED, 0xFF, 0x07, 0xC7, 0x46, 0xA1, 0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D, 0x62, 0xD4};

constexpr std::size_t obfuscated_from = 0x18, version_at = 0x14, password_at = 0x42;
constexpr std::size_t password_bytes_jet3 = 20, password_words = 10, date_at = 0x72;

std::vector<std::byte> decoded(Bytes page, const Format& format) {
    std::vector<std::byte> bytes(page.span().begin(), page.span().end());
    const std::size_t length = format.jet4 ? mask.size() : mask.size() - 2;
    for (std::size_t i = 0; i < length && obfuscated_from + i < bytes.size(); ++i)
        bytes[obfuscated_from + i] ^= std::byte{mask[i]};
    return bytes;
}

// With no password the field of Jet 4 shows its mask: the whole days of the creation date.
bool has_password(Bytes page, const Format& format) {
    if (!format.jet4) {
        for (std::size_t i = 0; i < password_bytes_jet3; ++i)
            if (page.u8(password_at + i) != 0) return true;
        return false;
    }
    const double date = std::bit_cast<double>(page.u64(date_at));
    const bool in_range = date > -1e6 && date < 1e7;
    const auto day = in_range ? static_cast<std::uint32_t>(static_cast<std::int32_t>(date)) : 0U;
    for (std::size_t i = 0; i < password_words; ++i)
        if (page.u32(password_at + 4 * i) != day) return true;
    return false;
}

const Format* recognise(Bytes head, Findings& findings) {
    constexpr std::string_view name = "Standard Jet DB";
    bool named = head.u32(0) == 0x100 && head.has(0, obfuscated_from);
    for (std::size_t i = 0; i < name.size(); ++i)
        named = named && head.u8(4 + i) == static_cast<unsigned char>(name[i]);
    if (!named || head.u8(4 + name.size()) != 0) {
        findings.fault(What::not_jet, 0, "The file is no Jet database.");
        return nullptr;
    }
    const std::uint32_t version = head.u32(version_at);
    if (version == 0) return &jet3;
    if (version == 1) return &jet4;
    findings.fault(What::version, 0,
                   words("The file has version ", version,
                         " of the format; only Jet 3 (0) and Jet 4 (1) can be read."));
    return nullptr;
}

Header parse(Bytes page, const Format& format) {
    Header header;
    header.format = &format;
    header.global_map = page.u32(0x18);
    header.second_map = page.u32(0x1C);
    for (std::size_t i = 0; i < header.tables.size(); ++i)
        header.tables[i] = page.u32(0x20 + 4 * i);
    header.code_page = page.u16(0x3C);
    header.page_key = page.u32(0x3E);
    header.password = has_password(page, format);
    return header;
}

bool check_length(Pages& pages, const Format& format, Findings& findings) {
    if (pages.file_bytes() % format.page_size != 0)
        findings.fault(What::file_length, 0,
                       words("The file has ", pages.file_bytes(),
                             " bytes, which is no whole number of pages."));
    if (pages.count() >= 3) return true;
    findings.fault(What::file_length, 0, "The file is shorter than three pages.");
    return false;
}

} // namespace

std::optional<Header> read_header(Pages& pages, Findings& findings) {
    const Page head = pages.head(jet4.page_size);
    const Format* format = recognise(head.bytes, findings);
    if (format == nullptr) return {};
    pages.set_page_size(format->page_size);
    const std::vector<std::byte> bytes = decoded(head.bytes.part(0, format->page_size), *format);
    const Header header = parse(Bytes(bytes), *format);
    if (header.page_key != 0) {
        findings.fault(What::enciphered, 0, "The pages of the file are enciphered.");
        return {};
    }
    if (!check_length(pages, *format, findings)) return {};
    return header;
}

void check_header(Inspection& inspection, const Header& header) {
    constexpr std::uint32_t global_map = 1U << 8, second_map = 1U << 8 | 1;
    Findings& findings = inspection.findings;
    if (header.global_map != global_map || header.second_map != second_map)
        findings.fault(What::header_pointer, 0,
                       "The header does not name page 1 as the place of the map of free pages.");
    if (header.tables != std::array<std::uint32_t, 4>{2, 3, 4, 5})
        findings.warning(What::header_pointer, 0,
                         "The header does not name pages 2 to 5 as those of the system tables.");
    if (header.password)
        findings.warning(What::password, 0, "The file is protected by a password.");
    const Page page = inspection.pages.page(0);
    std::size_t open = 0;
    for (std::uint32_t user = 0; user < 256; ++user)
        if (page.bytes.u16(inspection.format.commit_bytes + std::size_t{2} * user) == 0) ++open;
    if (open > 0)
        findings.warning(What::commit_bytes, 0,
                         words("The commit bytes of ", open, " of 256 users are zero: a write was ",
                               "perhaps interrupted."));
}

} // namespace jet::check
