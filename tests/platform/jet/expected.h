#pragma once

#include "platform/jet/database.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <string>
#include <vector>

/// What the sample databases hold, in the form of their NAME.expected.json.
namespace expected {

/// Names of all samples; empty where the folder is absent.
std::vector<std::string> sample_names();
std::string sample_path(const std::string& name);
QJsonObject load(const std::string& name);

QString text(const std::u16string& from);
QJsonValue json(const jet::Value& value);
QJsonArray row(const jet::Cursor& cursor, std::size_t columns);
/// Columns, indexes, key and rows of a table.
QJsonObject json(const jet::Table& table);
QJsonObject json(const jet::Relation& relation);

} // namespace expected
