#include "platform/jet/pages/journal_trust.h"

namespace jet {
namespace {

constexpr unsigned all_rights = 06;

/// What the mode gives to one class of users: 0 all others, 1 the group, 2 the owner.
unsigned given(const files::Standing& file, unsigned user_class) {
    return file.mode >> (3 * user_class) & all_rights;
}

/// Where a list says who may do what, only one that says the same as the library's is good: which
/// of two lists gives more depends on who is a member of what, and no honest copy makes another.
bool has_list(const files::Standing& journal, const files::Standing& library) {
    return journal.acl == files::acl_for(journal.owner, journal.group, library);
}

/// Whether the mode of the journal is enough for group and others who may write the library.
bool lets_write(const files::Standing& journal, const files::Standing& library) {
    const bool same_group = journal.group == library.group;
    const bool group = given(journal, 1) == all_rights;
    const bool others = given(journal, 0) == all_rights;
    // Members of the library's group are others to a journal of another one, or of that one, too.
    const bool for_group = same_group ? group : group && others;
    const bool for_others = others && (same_group || group);
    return ((given(library, 1) & 2) == 0 || for_group) &&
           ((given(library, 0) & 2) == 0 || for_others);
}

} // namespace

bool made_by_a_writer(files::Disk& disk, const files::Standing& journal,
                      const files::Standing& library) {
    return journal.owner == disk.user() || files::may_write(disk, journal.owner, library);
}

bool opens_no_more(const files::Standing& journal, const files::Standing& library,
                   unsigned rights) {
    if (!has_list(journal, library)) return false;
    if (!library.acl.empty()) return true;
    const bool same_group = journal.group == library.group;
    const unsigned for_group = given(library, same_group ? 1 : 0);
    // Members of the library's group are others to a journal of another one.
    const unsigned for_others = given(library, 0) & (same_group ? all_rights : given(library, 1));
    return (given(journal, 0) & rights & ~for_others) == 0 &&
           (given(journal, 1) & rights & ~for_group) == 0;
}

bool serves_all(files::Disk& disk, const files::Standing& journal, const files::Standing& library,
                bool owners_tell) {
    if (!opens_no_more(journal, library, all_rights)) return false;
    if (library.acl.empty() && !lets_write(journal, library)) return false;
    return !owners_tell || (files::may_write(disk, journal.owner, library) &&
                            files::may_write(disk, library.owner, journal));
}

} // namespace jet
