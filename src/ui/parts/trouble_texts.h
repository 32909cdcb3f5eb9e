#pragma once

#include "platform/files/disk.h"
#include "store/trouble.h"

#include <QString>

namespace ui_parts {

/// The sentence about what kept an operation from its work: the thing, and the way out.
QString sentence(const store::Trouble& trouble);
/// The sentence about a default or new database that could not be made.
/// @param template_path an error about this file is about a missing template
QString sentence(const files::Error& error, const QString& database, const QString& template_path);
/// Why a file could not be written, as the end of a sentence.
QString reason(files::Failure failure);
/// Why a library cannot be changed, as the end of a sentence.
/// @param journal_owner whose journal stands in the way, if one does
QString reason(store::Blocked blocked, const QString& journal_owner);
/// The same, as the library was found. A change that is unfinished under another name of the file
/// makes the usual advice, to copy it, wrong.
QString reason(const store::Opening& opening);
/// That the open library is no place for another file.
QString sentence_is_open_library();
/// A name as sentences and menus quote it: not so long that it hides what else is said.
QString shortened(const QString& name);

} // namespace ui_parts
