#pragma once

#include "platform/jet/database.h"

#include <QString>
#include <QStringList>

/// mdbtools, an independent reader of Access files, asked what it sees in a file on the real disk.
namespace mdbtools {

bool available();

/// The rows of a table in the order of the file, one text a cell; null and empty text are alike.
QList<QStringList> rows(const std::string& file, const QString& table);
/// The SQL by which mdb-schema describes the file, with indexes and relations.
QString schema(const std::string& file);

/// The same rows as our engine reads them.
QList<QStringList> our_rows(const jet::Table& table);

/// The first difference between the two readers in any user table; empty if there is none.
QString difference(const std::string& file);

} // namespace mdbtools
