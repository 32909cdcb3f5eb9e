#pragma once

#include "platform/serial/error.h"

#include <QString>

namespace link_serial {

/// What keeps a port from being used, and what the user can do about it.
QString sentence(const serial::Error& trouble);

} // namespace link_serial
