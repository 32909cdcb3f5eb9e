#include "sim/SimDecoderState.h"

namespace sim {

Simulated_Decoder& SimDecoderState() {
    static Simulated_Decoder decoder;
    return decoder;
}

} // namespace sim
