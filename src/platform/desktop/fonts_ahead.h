#pragma once

#include <thread>

namespace desktop {

/// Reads the system's list of fonts on a thread of its own while the program connects to the
/// display: two waits of about the same length that do not need each other. Where the system knows
/// no such list, it does nothing.
class Fonts_Ahead {
public:
    Fonts_Ahead();
    ~Fonts_Ahead(); ///< waits for the end of the reading
    Fonts_Ahead(const Fonts_Ahead&) = delete;
    Fonts_Ahead& operator=(const Fonts_Ahead&) = delete;

private:
    std::thread reading_;
};

} // namespace desktop
