#include "platform/files/acl.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <linux/posix_acl_xattr.h>
#include <stdexcept>
#include <utility>

namespace files {
namespace {

using Of = Acl_Entry::Of;

bool is_named(Of of) { return of == Of::user || of == Of::named_group; }

template <class Number>
Number little_endian(Number value) {
    if constexpr (std::endian::native == std::endian::little) return value;
    auto bytes = std::bit_cast<std::array<std::byte, sizeof value>>(value);
    std::ranges::reverse(bytes);
    return std::bit_cast<Number>(bytes);
}

} // namespace

Acl decode_acl(std::span<const std::byte> bytes) {
    posix_acl_xattr_header header{};
    if (bytes.size() >= sizeof header) std::memcpy(&header, bytes.data(), sizeof header);
    if (little_endian(header.a_version) != POSIX_ACL_XATTR_VERSION)
        throw std::runtime_error("an access list of another version");
    Acl acl;
    for (std::size_t at = sizeof header; at + sizeof(posix_acl_xattr_entry) <= bytes.size();
         at += sizeof(posix_acl_xattr_entry)) {
        posix_acl_xattr_entry entry{};
        std::memcpy(&entry, &bytes[at], sizeof entry);
        const Of of{little_endian(entry.e_tag)};
        acl.push_back(
            {of, little_endian(entry.e_perm), is_named(of) ? little_endian(entry.e_id) : 0});
    }
    put_in_order(acl);
    return acl;
}

std::vector<std::byte> encode(const Acl& acl) {
    std::vector<std::byte> bytes;
    const auto add = [&](const auto& piece) {
        const auto from = std::as_bytes(std::span(&piece, 1));
        bytes.insert(bytes.end(), from.begin(), from.end());
    };
    add(posix_acl_xattr_header{little_endian<std::uint32_t>(POSIX_ACL_XATTR_VERSION)});
    for (const Acl_Entry& entry : acl) {
        const std::uint32_t id = is_named(entry.of) ? entry.id : 0xFFFFFFFF;
        add(posix_acl_xattr_entry{little_endian(static_cast<std::uint16_t>(entry.of)),
                                  little_endian(entry.rights), little_endian(id)});
    }
    return bytes;
}

void put_in_order(Acl& acl) {
    std::ranges::sort(acl, {},
                      [](const Acl_Entry& entry) { return std::pair(entry.of, entry.id); });
}

std::uint16_t rights_of(const Acl& acl, Of of) {
    const auto found = std::ranges::find(acl, of, &Acl_Entry::of);
    return found == acl.end() ? 07 : found->rights;
}

Acl unmasked(const Acl& acl) {
    const std::uint16_t mask = rights_of(acl, Of::mask);
    Acl result;
    for (Acl_Entry entry : acl) {
        if (entry.of == Of::mask) continue;
        if (is_named(entry.of) || entry.of == Of::group) entry.rights &= mask;
        result.push_back(entry);
    }
    return result;
}

} // namespace files
