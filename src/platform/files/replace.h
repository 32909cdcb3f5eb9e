#pragma once

#include "platform/files/disk.h"

namespace files {

/// A new content for a name, written beside it and put in its place in one step. Until finish()
/// returns the old file stands whole; given up (destroyed) before, nothing is left behind.
class Replacement {
public:
    /// Follows links, so that the file behind a link is replaced and not the link. The new file has
    /// the rights of the old one; one that is write-protected is not replaced (denied).
    /// @param rights_of whose rights it has when it replaces nothing; null: as any new file.
    [[nodiscard]] Replacement(Disk& disk, const std::string& path, File* rights_of = nullptr);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// Adds to the end.
    void write(std::span<const std::byte> bytes);
    /// Syncs the content, renames, syncs the folder.
    /// An Error of the last step leaves the new file in place, whole, but perhaps not yet on the
    /// medium.
    void finish();

private:
    void open_beside(Access access);

    Disk& disk_;
    std::string path_;
    std::string beside_;
    std::unique_ptr<File> file_;
    std::uint64_t written_ = 0;
};

/// Gives the name a new content in one step; on any Error the old file stands whole.
void replace_file(Disk& disk, const std::string& path, std::span<const std::byte> bytes);

/// Whose rights a copy gets that replaces nothing.
enum class Rights {
    of_new_file, ///< as for any file that the user makes
    of_source    ///< nobody can read it who could not read the other
};

/// Copies in one step in the same sense, a portion at a time. A copy that replaces a file has the
/// rights of that one.
void copy_file(Disk& disk, const std::string& from, const std::string& to,
               Rights rights = Rights::of_new_file);

/// "a.mdb.new7", which a crash may leave beside "a.mdb" -> "a.mdb"; nothing for other names.
std::optional<std::string> replaced_by(const std::string& name);

[[nodiscard]] std::vector<std::byte> read_file(Disk& disk, const std::string& path);

} // namespace files
