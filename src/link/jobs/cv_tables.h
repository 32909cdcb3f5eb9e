#pragma once

#include "link/types/link_values.h"
#include "store/CVRec.h"

#include <optional>

namespace link_jobs {

using link_types::Family_Group;

/// Whether a CV of a set goes into the CV set of a decoder.
bool is_admitted(const store::CVRec& cv, Family_Group group);
/// Under which number it goes there.
int renumbered(int cv, Family_Group group);

/// Under which number a set keeps what a decoder has under this one; nothing: it is not kept.
/// @param cv_space of the decoder
std::optional<int> kept_as(int decoder_cv, int cv_space);
/// Under which number a decoder has what a set keeps under this one, when all CVs are written;
/// nothing: it is not written.
std::optional<int> written_as(int cv, int cv_space);
/// The highest number of a set that written_as() may want.
int last_to_write(int cv_space);

} // namespace link_jobs
