#include "platform/files/disk.h"

#include <algorithm>

namespace files {

std::string folder_of(const std::string& path) {
    const std::size_t cut = path.find_last_of('/');
    return cut == std::string::npos ? "" : path.substr(0, std::max<std::size_t>(cut, 1));
}

} // namespace files
