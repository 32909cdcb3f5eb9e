#include "platform/jet/pages/journal_trust.h"

namespace jet {
namespace {

constexpr unsigned all_rights = 06;

/// What the mode gives to one class of users: 0 all others, 1 the group, 2 the owner.
unsigned given(const files::Standing& file, unsigned user_class) {
    return file.mode >> (3 * user_class) & all_rights;
}

} // namespace

bool made_by_a_writer(files::Disk& disk, const files::Standing& journal,
                      const files::Standing& library) {
    return journal.owner == disk.user() || files::may_write(disk, journal.owner, library);
}

bool opens_no_more(const files::Standing& journal, const files::Standing& library,
                   unsigned rights) {
    const unsigned for_group = given(library, journal.group == library.group ? 1 : 0);
    return (given(journal, 0) & rights & ~given(library, 0)) == 0 &&
           (given(journal, 1) & rights & ~for_group) == 0;
}

bool serves_all(files::Disk& disk, const files::Standing& journal, const files::Standing& library,
                bool owners_tell) {
    const bool same_group = journal.group == library.group;
    const bool group = given(journal, 1) == all_rights;
    const bool others = given(journal, 0) == all_rights;
    // Members of the library's group are others to a journal of another one, or of that one, too.
    const bool for_group = same_group ? group : group && others;
    const bool for_others = others && (same_group || group);
    if ((given(library, 1) & 2) != 0 && !for_group) return false;
    if ((given(library, 0) & 2) != 0 && !for_others) return false;
    if (!opens_no_more(journal, library, all_rights)) return false;
    return !owners_tell || (files::may_write(disk, journal.owner, library) &&
                            files::may_write(disk, library.owner, journal));
}

} // namespace jet
