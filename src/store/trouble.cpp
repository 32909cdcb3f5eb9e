#include "store/trouble.h"

namespace store {

namespace {

Failure told_as(Failure kind) {
    switch (kind) {
    case Failure::statement: // as if the database did not take what was asked of it
        return Failure::refused;
    case Failure::exists:
    case Failure::no_file:
    case Failure::name_too_long:
        return Failure::device;
    default:
        return kind;
    }
}

} // namespace

Trouble trouble_of(const failure::Error& error) {
    return {told_as(error.kind), QString::fromStdString(error.subject),
            QString::fromStdString(error.detail)};
}

} // namespace store
