#pragma once

#include "platform/files/disk.h"
#include "platform/jet/format/error.h"

namespace jet {

inline Failure kind_for(files::Failure kind) {
    switch (kind) {
    case files::Failure::not_found:
        return Failure::not_found;
    case files::Failure::denied:
        return Failure::denied;
    case files::Failure::read_only:
        return Failure::read_only;
    case files::Failure::locked_elsewhere:
        return Failure::locked_elsewhere;
    case files::Failure::disk_full:
        return Failure::disk_full;
    case files::Failure::exists:
    case files::Failure::no_file:
    case files::Failure::name_too_long:
    case files::Failure::device:
        break;
    }
    return Failure::device;
}

/// Runs a step and turns what the disk says into what a database says.
template <class Step>
auto at_border(Step step) {
    try {
        return step();
    } catch (const files::Error& error) {
        throw Error(kind_for(error.kind), error.subject, error.detail);
    }
}

/// Errors that say: look, but do not write.
inline bool is_protection(files::Failure kind) {
    return kind == files::Failure::denied || kind == files::Failure::read_only;
}

} // namespace jet
