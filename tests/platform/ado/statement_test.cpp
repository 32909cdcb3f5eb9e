#include "platform/ado/error.h"
#include "platform/ado/statement.h"

#include <gmock/gmock.h>

namespace {

TEST(Statement, anything_else_is_refused_and_quoted) {
    const char* const cases[] = {
        "",
        "select * from Sets",
        "SELECT  * FROM Sets",
        "SELECT Name FROM Sets",
        "SELECT * FROM Sets;",
        "SELECT * FROM Sets\n",
        "SELECT * FROM Sets WHERE Name = 'a'",
        "SELECT * FROM Sets WHERE SetID = 2147483648",
        "SELECT * FROM Sets WHERE SetID > 1",
        "SELECT * FROM Sets WHERE SetID = 1 OR SetID = 2",
        "SELECT * FROM Sets ORDER BY Name DESC",
        "SELECT * FROM Sets ORDER BY Name WHERE SetID = 1",
        "DELETE FROM Sets",
        "DELETE FROM Sets WHERE SetID = 1 AND ResCV = 8",
        "SELECT DISTINCT A.x, B.y FROM A LEFT JOIN C ON A.x = C.x ORDER BY A.x",
        "SELECT DISTINCT A.x, B.y FROM A LEFT JOIN B ON A.x = B.x ORDER BY A.z"};
    for (const char* const sql : cases)
        EXPECT_THAT([&] { ado::parse(QString::fromLatin1(sql)); },
                    testing::Throws<ado::Error>(
                        testing::AllOf(testing::Field(&ado::Error::kind, ado::Failure::statement),
                                       testing::Field(&ado::Error::subject, sql))));
}

} // namespace
