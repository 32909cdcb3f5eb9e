#include "platform/desktop/fonts_ahead.h"

#include <dlfcn.h>

namespace desktop {
namespace {

using Read_Fonts = int();

// Looked up in what the program has loaded anyway, so that it is the same library, with the same
// list, that the windows ask later; it may be called from any thread and remembers what it read.
Read_Fonts* font_reader() { return reinterpret_cast<Read_Fonts*>(dlsym(RTLD_DEFAULT, "FcInit")); }

} // namespace

Fonts_Ahead::Fonts_Ahead() {
    if (Read_Fonts* read_fonts = font_reader()) reading_ = std::thread([=] { read_fonts(); });
}

Fonts_Ahead::~Fonts_Ahead() {
    if (reading_.joinable()) reading_.join();
}

} // namespace desktop
