#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace files {

/// One line of a POSIX access control list.
struct Acl_Entry {
    /// For whom; the numbers are those of the system's extended attribute.
    enum class Of : std::uint16_t {
        owner = 1,
        user = 2, ///< the one named by `id`
        group = 4,
        named_group = 8,
        mask = 16, ///< the most that users named, the group and groups named get
        others = 32
    };
    Of of = Of::others;
    std::uint16_t rights = 0; ///< rwx
    std::uint32_t id = 0;     ///< 0 but for users and groups named
    bool operator==(const Acl_Entry&) const = default;
};

/// In order of `of` and `id`. Empty: the mode says all; else the group bits of the mode are the mask.
using Acl = std::vector<Acl_Entry>;

/// The bytes of `system.posix_acl_access`, as linux/posix_acl_xattr.h has them. Throws
/// std::runtime_error for those of another version.
Acl decode_acl(std::span<const std::byte> bytes);
std::vector<std::byte> encode(const Acl& acl);

void put_in_order(Acl& acl);
/// The rights in a line of which there is one (owner, group, mask, others); rwx where it is missing.
std::uint16_t rights_of(const Acl& acl, Acl_Entry::Of of);
/// The list without the mask: each line has the rights that the mask lets through.
Acl unmasked(const Acl& acl);

} // namespace files
