#pragma once

#include "platform/files/replace.h"
#include "platform/timing/time.h"
#include "store/Before_First_Write.h"
#include "store/trouble.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace store {

/// Whether a copy holds all that the library held.
enum class Soundness {
    whole,
    cut_off, ///< its end, or the table of the CVs, is missing
    damaged
};

/// A copy of a library.
struct Backup {
    QString path;
    QDateTime made;          ///< local time, as its name tells
    std::optional<int> sets; ///< how many can be read; nothing: it cannot be read as a library
    Soundness soundness = Soundness::whole;
};

/// Copies of libraries, each as it was before its first change in a run of the program: the newest
/// ten, in the folder `Sicherungen` beside the library, "NAME JJJJ-MM-TT HH-MM-SS.mdb". Where that
/// place does not take them they go to a folder of the same name among the user's own data, and
/// there to a folder per place that they come from, since libraries of one name lie in many.
///
/// Only make_new() throws. Only files of that form for that library are ever removed, and what a
/// crash in an earlier run has left of one.
class Backups final : public Before_First_Write {
public:
    /// @param user_folder where this user's data lie; with or without a separator at its end
    Backups(files::Disk& disk, const QString& user_folder,
            timing::Time& time = timing::real_time());

    [[nodiscard]] bool keep_copy(const QString& file) override;
    /// A file made in this run needs no copy before its first change.
    void made_now(const QString& file);

    /// Newest first. Where all of them together are very large, damage is looked for in the newest
    /// only, as far as it does not show in the rows of Sets.
    std::vector<Backup> copies_of(const QString& file);
    /// Puts a copy in the place of the library, which becomes a copy first; other running copies of
    /// the program notice that it was replaced. To be closed before, opened after. A copy that
    /// cannot be read as a library is refused.
    /// @return false: the library is as it was, and take_trouble() says why.
    [[nodiscard]] bool restore(const QString& copy, const QString& file);

    /// Makes a library as a copy of an empty one. What lies there becomes a copy first; to be
    /// closed before. Throws files::Error, and what lies there is as it was.
    void make_new(const QString& file, const QString& empty);

    /// The latest reason for a copy that was not made, listed or brought back.
    std::optional<Trouble> take_trouble();

private:
    struct Place {
        std::string folder; ///< made where it is missing, with the one above
        std::string above;
    };
    std::vector<Place> places(const std::string& path) const; ///< in the order of preference
    std::string make_copy(const std::string& path);
    std::string copy_to(const Place& place, const std::string& path);
    void remove_old(const std::string& path, const std::string& just_made) noexcept;
    void put(const std::string& source, const std::string& path, files::Rights rights);
    void put_journal_away(const std::string& path);
    std::optional<int> sets_in(const std::string& path);
    Soundness soundness_of(const std::string& path, std::uint64_t& bytes_left);
    template <class Work>
    [[nodiscard]] bool noting(Work work);

    files::Disk& disk_;
    std::string user_folder_;
    timing::Time& time_;
    QDateTime started_; ///< this run
    std::map<std::string, files::Identity>
        copied_; ///< in this run, or made in it; by resolved path
    std::optional<Trouble> trouble_;
};

} // namespace store
