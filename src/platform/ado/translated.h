#pragma once

#include "platform/ado/error.h"
#include "platform/jet/format/error.h"

namespace ado {

/// Runs work on the engine; its errors leave as those of this folder.
template <class Work>
auto translated(Work&& work) -> decltype(work()) {
    try {
        return work();
    } catch (const jet::Error& error) {
        throw Error(error);
    }
}

} // namespace ado
