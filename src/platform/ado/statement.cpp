#include "platform/ado/statement.h"

#include "platform/ado/error.h"

#include <QRegularExpression>
#include <QStringList>

namespace ado {

namespace {

const QRegularExpression& select_form() {
    static const QRegularExpression form(
        QStringLiteral(R"(\ASELECT \* FROM (?<t>\w+))"
                       R"((?: WHERE (?<where>\w+ = -?\d+(?: AND \w+ = -?\d+)*))?)"
                       R"((?: ORDER BY (?<order>\w+(?:, \w+)*))?\z)"));
    return form;
}

const QRegularExpression& joined_form() {
    static const QRegularExpression form(
        QStringLiteral(R"(\ASELECT DISTINCT (?<t>\w+)\.(?<a>\w+), (?<u>\w+)\.(?<b>\w+) FROM \k<t> )"
                       R"(LEFT JOIN \k<u> ON \k<t>\.\k<a> = \k<u>\.(?<c>\w+) )"
                       R"(ORDER BY \k<t>\.\k<a>\z)"));
    return form;
}

const QRegularExpression& erase_form() {
    static const QRegularExpression form(
        QStringLiteral(R"(\ADELETE FROM (?<t>\w+) WHERE (?<where>\w+ = -?\d+)\z)"));
    return form;
}

Error refusal(const QString& sql) {
    return {Failure::statement, sql.toStdString(), "this SQL is not understood"};
}

std::vector<Condition> conditions(const QString& where, const QString& sql) {
    std::vector<Condition> found;
    if (where.isEmpty()) return found;
    for (const QString& part : where.split(QStringLiteral(" AND "))) {
        const QStringList sides = part.split(QStringLiteral(" = "));
        bool valid = false;
        found.push_back({sides.at(0), sides.at(1).toInt(&valid)});
        if (!valid) throw refusal(sql); // beyond 32 bits
    }
    return found;
}

Statement joined(const QRegularExpressionMatch& match) {
    Statement statement;
    statement.kind = Statement::Kind::select_joined;
    statement.table = match.captured(u"t");
    statement.order_by = {match.captured(u"a")};
    statement.joined_table = match.captured(u"u");
    statement.shown_column = match.captured(u"b");
    statement.joined_column = match.captured(u"c");
    return statement;
}

} // namespace

Statement parse(const QString& sql) {
    Statement statement;
    if (const auto match = select_form().match(sql); match.hasMatch()) {
        statement.table = match.captured(u"t");
        statement.where = conditions(match.captured(u"where"), sql);
        const QString order = match.captured(u"order");
        if (!order.isEmpty())
            for (const QString& column : order.split(QStringLiteral(", ")))
                statement.order_by.push_back(column);
        return statement;
    }
    if (const auto match = joined_form().match(sql); match.hasMatch()) return joined(match);
    if (const auto match = erase_form().match(sql); match.hasMatch()) {
        statement.kind = Statement::Kind::erase;
        statement.table = match.captured(u"t");
        statement.where = conditions(match.captured(u"where"), sql);
        return statement;
    }
    throw refusal(sql);
}

} // namespace ado
