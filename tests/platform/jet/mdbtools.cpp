#include "platform/jet/mdbtools.h"

#include "platform/jet/expected.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

namespace mdbtools {
namespace {

/// Texts hold every single character.
const QString cell_end = QStringLiteral("<|cell|>");
const QString row_end = QStringLiteral("<|row|>");

QString run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment([] {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        return environment;
    }());
    process.start(program, arguments);
    process.waitForFinished(-1);
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString cell(const jet::Value& value) {
    if (const auto* truth = std::get_if<bool>(&value)) return QString::number(*truth ? 1 : 0);
    if (const auto* number = std::get_if<double>(&value))
        return QString::number(*number, 'g', QLocale::FloatingPointShortest);
    auto text = expected::json(value).toVariant().toString();
    if (std::holds_alternative<jet::Guid>(value)) // it prints them so, one hyphen short
        return QString::fromLatin1(text.remove(24, 1).toLatin1().toHex().toUpper());
    return std::holds_alternative<jet::Bytes>(value) ? text.toUpper() : text;
}

/// Floating point numbers are printed with fewer digits there.
bool alike(const QString& one, const QString& other) {
    if (one == other) return true;
    bool numbers[2] = {};
    const double a = one.toDouble(&numbers[0]);
    const double b = other.toDouble(&numbers[1]);
    return numbers[0] && numbers[1] && std::abs(a - b) <= 1e-6 * std::abs(a);
}

/// Rows that have moved stand elsewhere in their order.
QString difference(QList<QStringList> ours, QList<QStringList> theirs) {
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    if (ours.size() != theirs.size())
        return QStringLiteral("%1 rows against %2").arg(ours.size()).arg(theirs.size());
    for (qsizetype row = 0; row < ours.size(); ++row)
        for (qsizetype i = 0; i < ours[row].size(); ++i)
            if (!alike(ours[row][i], theirs[row].value(i)))
                return QStringLiteral("row %1 column %2: \"%3\" against \"%4\"")
                    .arg(row)
                    .arg(i)
                    .arg(ours[row][i], theirs[row].value(i));
    return {};
}

} // namespace

bool available() { return !QStandardPaths::findExecutable(QStringLiteral("mdb-export")).isEmpty(); }

QList<QStringList> rows(const std::string& file, const QString& table) {
    const auto all =
        run(QStringLiteral("mdb-export"),
            {QStringLiteral("-H"), QStringLiteral("-Q"), QStringLiteral("-d"), cell_end,
             QStringLiteral("-R"), row_end, QStringLiteral("-b"), QStringLiteral("hex"),
             QStringLiteral("-T"), QStringLiteral("%Y-%m-%dT%H:%M:%S"), QStringLiteral("-D"),
             QStringLiteral("%Y-%m-%dT%H:%M:%S"), QString::fromStdString(file), table});
    QList<QStringList> rows;
    for (const auto& row : all.split(row_end)) rows.append(row.split(cell_end));
    rows.removeLast(); // what follows the last row
    return rows;
}

QString schema(const std::string& file) {
    return run(QStringLiteral("mdb-schema"),
               {QString::fromStdString(file), QStringLiteral("postgres")});
}

QList<QStringList> our_rows(const jet::Table& table) {
    QList<QStringList> rows;
    for (auto cursor = table.rows(jet::Order::file); cursor.next();) {
        auto& cells = rows.emplaceBack();
        for (const auto& value : cursor.values()) cells.append(cell(value));
    }
    return rows;
}

QString difference(const std::string& file) {
    auto database = jet::Database::open(files::real_disk(), file, jet::Mode::read_only);
    for (const auto& table : database.tables()) {
        const auto name = expected::text(table.name());
        const auto found = difference(our_rows(table), rows(file, name));
        if (!found.isEmpty()) return name + QStringLiteral(": ") + found;
    }
    return {};
}

} // namespace mdbtools
