#include "platform/ado/error.h"
#include "platform/ado/statement.h"

#include <gtest/gtest.h>

namespace {

/// The parts of a statement, so that a table can hold them.
QString taken_apart(const ado::Statement& statement) {
    static const char* const kinds[] = {"select", "joined", "erase"};
    QString text = QString::fromLatin1(kinds[static_cast<int>(statement.kind)]) + QChar(u' ') +
                   statement.table;
    for (const auto& condition : statement.where)
        text += QStringLiteral(" %1=%2").arg(condition.column).arg(condition.number);
    for (const QString& column : statement.order_by) text += QStringLiteral(" /") + column;
    if (!statement.joined_table.isEmpty())
        text += QStringLiteral(" + %1.%2 as %3")
                    .arg(statement.joined_table, statement.joined_column, statement.shown_column);
    return text;
}

TEST(Statement, is_taken_apart) {
    const struct {
        const char* sql;
        const char* parts;
    } cases[] = {
        {"SELECT * FROM Sets", "select Sets"},
        {"SELECT * FROM Sets WHERE SetID = 12", "select Sets SetID=12"},
        {"SELECT * FROM Sets WHERE ResCV = -2147483648", "select Sets ResCV=-2147483648"},
        {"SELECT * FROM CVs WHERE SetID = 0 ORDER BY CVPageHi, CVPageLo, CVNr",
         "select CVs SetID=0 /CVPageHi /CVPageLo /CVNr"},
        {"SELECT * FROM CVs WHERE SetID = 7 AND CVPageHi = 0 AND CVPageLo = 1 AND CVNr = 29",
         "select CVs SetID=7 CVPageHi=0 CVPageLo=1 CVNr=29"},
        {"SELECT DISTINCT Scripte.SetID, Sets.Nummer FROM Scripte LEFT JOIN Sets ON "
         "Scripte.SetID = Sets.SetID ORDER BY Scripte.SetID",
         "joined Scripte /SetID + Sets.SetID as Nummer"},
        {"DELETE FROM Scriptstates WHERE ScriptID = 3", "erase Scriptstates ScriptID=3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql);
        EXPECT_EQ(taken_apart(ado::parse(QString::fromLatin1(c.sql))).toStdString(), c.parts);
    }
}

TEST(Statement, anything_else_is_refused_and_quoted) {
    const char* const cases[] = {
        "",
        "SELECT",
        "select * from Sets",
        "SELECT * FROM Sets ",
        "SELECT  * FROM Sets",
        "SELECT Name FROM Sets",
        "SELECT * FROM Sets;",
        "SELECT * FROM Sets\n",
        "SELECT * FROM Sets, CVs",
        "SELECT * FROM Sets WHERE",
        "SELECT * FROM Sets WHERE Name = 'a'",
        "SELECT * FROM Sets WHERE SetID = 2147483648",
        "SELECT * FROM Sets WHERE SetID = 1.5",
        "SELECT * FROM Sets WHERE SetID > 1",
        "SELECT * FROM Sets WHERE SetID = 1 OR SetID = 2",
        "SELECT * FROM Sets ORDER BY",
        "SELECT * FROM Sets ORDER BY Name DESC",
        "SELECT * FROM Sets ORDER BY Name WHERE SetID = 1",
        "DELETE FROM Sets",
        "DELETE FROM Sets WHERE SetID = 1 AND ResCV = 8",
        "UPDATE Sets SET Name = 1",
        "DROP TABLE Sets",
        "SELECT DISTINCT A.x, B.y FROM A LEFT JOIN C ON A.x = C.x ORDER BY A.x",
        "SELECT DISTINCT A.x, B.y FROM A LEFT JOIN B ON A.x = B.x ORDER BY A.z",
    };
    for (const char* const sql : cases) {
        SCOPED_TRACE(sql);
        try {
            ado::parse(QString::fromLatin1(sql));
            ADD_FAILURE() << "was understood";
        } catch (const ado::Error& error) {
            EXPECT_EQ(error.kind, ado::Failure::statement);
            EXPECT_EQ(error.subject, sql);
        }
    }
}

} // namespace
