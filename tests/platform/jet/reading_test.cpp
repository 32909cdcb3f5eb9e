#include "platform/jet/expected.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QMap>

namespace {

using jet::Database;

std::string printed(const QJsonValue& value) {
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).toStdString();
}

QMap<QString, QJsonObject> by_name(const QJsonArray& objects) {
    QMap<QString, QJsonObject> map;
    for (const auto& object : objects) map[object[u"name"].toString()] = object.toObject();
    return map;
}

/// Reports the first difference with its place instead of two whole tables.
void compare(const QJsonObject& found, const QJsonObject& wanted) {
    for (const auto& key : wanted.keys()) {
        if (!wanted[key].isArray()) {
            EXPECT_EQ(printed(found[key]), printed(wanted[key])) << key.toStdString();
            continue;
        }
        const auto one = found[key].toArray();
        const auto other = wanted[key].toArray();
        EXPECT_EQ(one.size(), other.size()) << key.toStdString();
        for (qsizetype i = 0; i < std::min(one.size(), other.size()); ++i)
            if (one[i] != other[i]) {
                ADD_FAILURE() << key.toStdString() << " " << i << ": " << printed(one[i])
                              << " instead of " << printed(other[i]);
                break;
            }
    }
}

class Sample : public testing::TestWithParam<std::string> {
protected:
    Database open() {
        return Database::open(files::real_disk(), expected::sample_path(GetParam()),
                              jet::Mode::read_only);
    }
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Sample);
INSTANTIATE_TEST_SUITE_P(Reading, Sample, testing::ValuesIn(expected::sample_names()),
                         [](const auto& sample) { return sample.param; });

TEST_P(Sample, holds_what_independent_readers_found) {
    auto database = open();
    const auto wanted = expected::load(GetParam());
    ASSERT_FALSE(wanted.isEmpty());
    const auto tables = by_name(wanted[u"tables"].toArray());
    ASSERT_EQ(database.tables().size(), static_cast<std::size_t>(tables.size()));
    for (const auto& table : database.tables()) {
        SCOPED_TRACE(expected::text(table.name()).toStdString());
        auto found = expected::json(table);
        auto other = tables[expected::text(table.name())];
        EXPECT_EQ(by_name(found.take(u"indexes"_qs).toArray()),
                  by_name(other.take(u"indexes"_qs).toArray()));
        compare(found, other);
    }
    QJsonArray relations;
    for (const auto& relation : database.relations()) {
        const bool of_user = tables.contains(expected::text(relation.table));
        if (of_user) relations.append(expected::json(relation));
    }
    EXPECT_EQ(by_name(relations), by_name(wanted[u"relationships"].toArray()));
}

TEST_P(Sample, tells_whether_it_could_be_written) {
    const auto status = open().status();
    EXPECT_EQ(status.jet3, GetParam() == "testV1997");
    EXPECT_NE(status.blocked, jet::Blocked::no) << "it was opened for reading only";
    EXPECT_FALSE(status.detail.empty());
}

} // namespace
