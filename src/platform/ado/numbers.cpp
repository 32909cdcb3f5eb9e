#include "platform/ado/numbers.h"

namespace ado {

void Numbers::widen(bool to_long) {
    if (to_long) {
        longs_.assign(bytes_.begin(), bytes_.end());
        longs_.insert(longs_.end(), words_.begin(), words_.end());
        words_ = {};
    } else {
        words_.assign(bytes_.begin(), bytes_.end());
    }
    bytes_ = {};
    width_ = to_long ? 4 : 2;
}

} // namespace ado
