#pragma once

#include "platform/files/disk.h"

namespace jet {

/// Whether whoever made the journal could have written the library as well, so that believing it
/// gives nobody a right that he has not; we could, too. Links are not looked at. (J11)
bool made_by_a_writer(files::Disk& disk, const files::Standing& journal,
                      const files::Standing& library);

/// Whether nobody may do more with the journal than with the library.
/// @param rights of all classes that are compared: 02 writing, 06 reading and writing
bool opens_no_more(const files::Standing& journal, const files::Standing& library, unsigned rights);

/// Whether everybody who may write the library can use the journal and believes it, and nobody sees
/// more (J12). @param owners_tell false: all files show one owner, so owners are left out
bool serves_all(files::Disk& disk, const files::Standing& journal, const files::Standing& library,
                bool owners_tell);

} // namespace jet
