#include "platform/ado/error.h"

#include "platform/jet/format/error.h"

namespace ado {

namespace {

Failure translated(jet::Failure kind) {
    switch (kind) {
    case jet::Failure::not_found:
        return Failure::not_found;
    case jet::Failure::denied:
        return Failure::denied;
    case jet::Failure::not_a_database:
        return Failure::not_a_database;
    case jet::Failure::unsupported:
        return Failure::unsupported;
    case jet::Failure::damaged:
        return Failure::damaged;
    case jet::Failure::read_only:
        return Failure::read_only;
    case jet::Failure::locked_elsewhere:
        return Failure::locked_elsewhere;
    case jet::Failure::replaced:
        return Failure::replaced;
    case jet::Failure::disk_full:
        return Failure::disk_full;
    case jet::Failure::device:
        return Failure::device;
    case jet::Failure::refused:
        return Failure::refused;
    }
    return Failure::device;
}

} // namespace

Error::Error(Failure kind_, const QString& subject_, const QString& detail_)
    : std::runtime_error((subject_ + QStringLiteral(": ") + detail_).toStdString()), kind(kind_),
      subject(subject_), detail(detail_) {}

Error::Error(const jet::Error& error)
    : Error(translated(error.kind), QString::fromStdString(error.subject),
            QString::fromStdString(error.detail)) {
    by_others = error.by_others;
}

} // namespace ado
