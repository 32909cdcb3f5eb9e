#pragma once

#include "scripts/cls_script_coll.h"

#include <QByteArray>
#include <QStringList>
#include <memory>
#include <vector>

namespace scripts {

/// What a script or project file held.
struct Script_File {
    /// Whole scripts, in file form; 16 at most.
    std::vector<std::shared_ptr<cls_script>> scripts;
    bool has_section = false; ///< there are scripts in it, or could be
    bool too_many = false;    ///< a 17th ended the reading
    QStringList broken_off;   ///< names of scripts that are left out, since the file ends within
    int places_skipped = 0;   ///< parameters and lines that no script has
    int numbers_lost = 0;     ///< fields that are no number; 0 stands there
    int texts_cut_short = 0;  ///< by a quote that was not doubled, or one that was missing
};

/// Reads the scripts of a file, which may be in UTF-8 where it begins with its mark. Whatever stands
/// in it, this ends and refuses nothing.
Script_File read_script_file(const QByteArray& bytes);

/// @param script in file form
/// @param replaced raised by each character that the file's code page does not have
QByteArray script_file_of(const cls_script& script, int& replaced);

/// The same with every character, in UTF-8: for this program only.
QByteArray whole_script_file_of(const cls_script& script);

} // namespace scripts
