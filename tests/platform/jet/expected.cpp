#include "platform/jet/expected.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <cmath>

namespace expected {
namespace {

using jet::Column_Type;

const char* type_name(Column_Type type) {
    switch (type) {
    case Column_Type::boolean:
        return "Boolean";
    case Column_Type::byte:
        return "Byte";
    case Column_Type::integer:
        return "Integer";
    case Column_Type::long_integer:
        return "Long";
    case Column_Type::currency:
        return "Currency";
    case Column_Type::single_float:
        return "Single";
    case Column_Type::double_float:
        return "Double";
    case Column_Type::date:
        return "Date";
    case Column_Type::binary:
        return "Binary";
    case Column_Type::text:
        return "Text";
    case Column_Type::ole:
        return "OLE";
    case Column_Type::memo:
        return "Memo";
    case Column_Type::guid:
        return "GUID";
    case Column_Type::decimal:
        return "Decimal";
    }
    return "?";
}

QString scaled(qint64 number, int digits) {
    const QString all =
        QString::number(std::abs(number)).rightJustified(digits + 1, QLatin1Char('0'));
    return (number < 0 ? QStringLiteral("-") : QString()) + all.chopped(digits) +
           (digits > 0 ? QStringLiteral(".") + all.right(digits) : QString());
}

QString date_text(double days) {
    const double whole = std::floor(std::abs(days)) * (days < 0 ? -1 : 1);
    const double fraction = std::abs(days) - std::floor(std::abs(days));
    const auto seconds = std::llround(fraction * 86400);
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC)
        .addDays(static_cast<qint64>(whole))
        .addSecs(seconds)
        .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
}

QJsonValue of(jet::Null) { return QJsonValue(QJsonValue::Null); }
QJsonValue of(bool value) { return value; }
QJsonValue of(std::int32_t value) { return value; }
QJsonValue of(double value) { return value; }
QJsonValue of(const jet::Currency& value) {
    return scaled(static_cast<qint64>(value.ten_thousandths), 4);
}
QJsonValue of(const jet::Date& value) { return date_text(value.days); }
QJsonValue of(const jet::Decimal& value) {
    const qint64 magnitude = static_cast<qint64>(value.magnitude[2]) << 32 | value.magnitude[3];
    return scaled(value.negative ? -magnitude : magnitude, value.scale);
}
QJsonValue of(const jet::Guid& value) {
    constexpr int printed[] = {3,  2, 1, 0,  -1, 5,  4,  -1, 7,  6,
                               -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    QString text_ = QStringLiteral("{");
    for (const int at : printed)
        text_ += at < 0 ? QStringLiteral("-")
                        : QStringLiteral("%1").arg(
                              std::to_integer<int>(value.bytes[static_cast<std::size_t>(at)]), 2,
                              16, QLatin1Char('0'));
    return text_.toUpper() + QStringLiteral("}");
}
QJsonValue of(const std::u16string& value) { return text(value); }
QJsonValue of(const jet::Bytes& value) {
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(value.data()),
                                          static_cast<qsizetype>(value.size()))
                                   .toHex());
}

QJsonObject column_json(const jet::Column& column) {
    QJsonObject object{{QStringLiteral("name"), text(column.name)},
                       {QStringLiteral("type"), QLatin1String(type_name(column.type))}};
    if (column.type == Column_Type::text)
        object[QStringLiteral("length")] = static_cast<int>(column.length);
    if (column.auto_number) object[QStringLiteral("autoNumber")] = true;
    if (column.compressed) object[QStringLiteral("compressed")] = true;
    if (column.required) object[QStringLiteral("required")] = true;
    if (!column.description.empty())
        object[QStringLiteral("description")] = text(column.description);
    return object;
}

QJsonObject index_json(const jet::Index& index) {
    QJsonArray columns;
    for (const auto& column : index.columns)
        columns.append(
            QJsonArray{text(column.name), QLatin1String(column.ascending ? "asc" : "desc")});
    return {{QStringLiteral("name"), text(index.name)},
            {QStringLiteral("primary"), index.primary},
            {QStringLiteral("unique"), index.unique},
            {QStringLiteral("foreign"), index.relation},
            {QStringLiteral("columns"), columns}};
}

QJsonArray names(const std::vector<std::u16string>& all) {
    QJsonArray array;
    for (const auto& name : all) array.append(text(name));
    return array;
}

} // namespace

std::vector<std::string> sample_names() {
    std::vector<std::string> names;
    const auto files = QDir(QStringLiteral(CV_SETS_SAMPLES)).entryList({QStringLiteral("*.mdb")});
    for (const auto& file : files) names.push_back(file.chopped(4).toStdString());
    return names;
}

std::string sample_path(const std::string& name) {
    return std::string(CV_SETS_SAMPLES) + "/" + name + ".mdb";
}

QJsonObject load(const std::string& name) {
    QFile file(QString::fromStdString(CV_SETS_SAMPLES "/" + name + ".expected.json"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

QString text(const std::u16string& from) {
    return QString::fromUtf16(from.data(), static_cast<qsizetype>(from.size()));
}

QJsonValue json(const jet::Value& value) {
    return std::visit([](const auto& held) { return of(held); }, value);
}

QJsonArray row(const jet::Cursor& cursor, std::size_t columns) {
    QJsonArray cells;
    for (std::size_t i = 0; i < columns; ++i) cells.append(json(cursor.value(i)));
    return cells;
}

QJsonObject json(const jet::Table& table) {
    QJsonArray columns;
    QJsonArray indexes;
    QJsonArray key;
    QJsonArray rows;
    for (const auto& column : table.columns()) columns.append(column_json(column));
    for (const auto& index : table.indexes()) indexes.append(index_json(index));
    for (const auto column : table.key()) key.append(text(table.columns()[column].name));
    for (auto cursor = table.rows(); cursor.next();)
        rows.append(row(cursor, table.columns().size()));
    return {{QStringLiteral("name"), text(table.name())},
            {QStringLiteral("rowCount"), static_cast<int>(table.row_count())},
            {QStringLiteral("columns"), columns},
            {QStringLiteral("indexes"), indexes},
            {QStringLiteral("key"), key},
            {QStringLiteral("order"), QLatin1String(key.isEmpty() ? "physical" : "key")},
            {QStringLiteral("rows"), rows}};
}

QJsonObject json(const jet::Relation& relation) {
    return {{QStringLiteral("name"), text(relation.name)},
            {QStringLiteral("table"), text(relation.table)},
            {QStringLiteral("columns"), names(relation.columns)},
            {QStringLiteral("foreignTable"), text(relation.foreign_table)},
            {QStringLiteral("foreignColumns"), names(relation.foreign_columns)},
            {QStringLiteral("enforced"), relation.enforced},
            {QStringLiteral("cascadeUpdate"), relation.cascade_update},
            {QStringLiteral("cascadeDelete"), relation.cascade_delete}};
}

} // namespace expected
