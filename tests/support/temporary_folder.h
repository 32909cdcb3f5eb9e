#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace support {

/// A folder of its own on the real disk, gone with everything in it at the end.
class Temporary_Folder {
public:
    Temporary_Folder() {
        std::random_device source;
        path_ = std::filesystem::temp_directory_path() /
                ("cv-sets-test-" + std::to_string(source()) + "-" + std::to_string(source()));
        std::filesystem::create_directory(path_);
    }
    ~Temporary_Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Temporary_Folder(const Temporary_Folder&) = delete;
    Temporary_Folder& operator=(const Temporary_Folder&) = delete;

    std::string path() const { return path_.string(); }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

} // namespace support
