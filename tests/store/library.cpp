#include "store/library.h"

#include "platform/jet/check/check.h"

#include <QFile>
#include <QJsonDocument>

#include <filesystem>

namespace library {

namespace {

std::string sample_file(const std::string& name) {
    return std::string(CV_SETS_SAMPLES) + "/" + name;
}

QByteArray content(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) ADD_FAILURE() << "cannot read " << path;
    return file.readAll();
}

} // namespace

std::vector<std::string> Shown_List::texts() const {
    std::vector<std::string> texts;
    for (const auto& [text, id] : entries) texts.push_back(text);
    return texts;
}

std::vector<std::string> names() {
    if (!std::filesystem::exists(sample_file("library_2000.mdb"))) return {};
    return {"library_2000",    "library_2003", "old_library",
            "partly_numbered", "worn_library", "orphans"};
}

std::vector<QJsonObject> expected_rows(const std::string& sample, const QString& table) {
    const auto document = QJsonDocument::fromJson(content(sample_file(sample + ".expected.json")));
    std::vector<QJsonObject> found;
    for (const auto entry : document[QStringLiteral("tables")].toArray()) {
        if (entry[QStringLiteral("name")].toString() != table) continue;
        const QJsonArray columns = entry[QStringLiteral("columns")].toArray();
        for (const auto values : entry[QStringLiteral("rows")].toArray()) {
            QJsonObject row;
            for (qsizetype i = 0; i < columns.size(); ++i)
                row[columns[i][QStringLiteral("name")].toString()] = values.toArray()[i];
            found.push_back(row);
        }
    }
    return found;
}

void put(files::Memory_Disk& disk, const std::string& sample, const std::string& path) {
    const QByteArray bytes = content(sample_file(sample + ".mdb"));
    const auto view =
        std::as_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size())));
    disk.set_bytes(path, {view.begin(), view.end()});
}

Shown sets(store::clsDBConn& connection, std::int16_t res_cv) {
    Shown_List list;
    connection.Fill_Sets_in_Listbox(list, res_cv);
    return list.entries;
}

Shown cvs(store::clsDBConn& connection, std::int32_t set_id) {
    Shown_List list;
    const int count = connection.Fill_CVs_in_Listbox(list, set_id);
    EXPECT_EQ(static_cast<std::size_t>(count), list.entries.size());
    return list.entries;
}

store::CVRec cv(int number, int value, int hi, int lo) {
    return {static_cast<std::uint8_t>(hi),
            static_cast<std::uint8_t>(lo),
            static_cast<std::int16_t>(number),
            static_cast<std::int16_t>(value),
            0,
            false};
}

bool write(store::clsDBConn& connection, store::CVRec rec) {
    const bool stored = connection.DB_Write_CV(rec);
    EXPECT_EQ(stored, rec.CVID != 0);
    return stored;
}

int value(store::clsDBConn& connection, int number) {
    store::CVRec rec = cv(number, 0);
    return connection.DB_Find_CV(rec) ? rec.CVWert : -1;
}

std::string trouble(store::clsDBConn& connection) {
    using store::Failure;
    static const std::map<Failure, std::string> kinds{
        {Failure::not_open, "not_open"},
        {Failure::no_set, "no_set"},
        {Failure::not_found, "not_found"},
        {Failure::denied, "denied"},
        {Failure::not_a_database, "not_a_database"},
        {Failure::no_library, "no_library"},
        {Failure::cut_off, "cut_off"},
        {Failure::no_cvs, "no_cvs"},
        {Failure::unsupported, "unsupported"},
        {Failure::damaged, "damaged"},
        {Failure::read_only, "read_only"},
        {Failure::locked_elsewhere, "locked_elsewhere"},
        {Failure::replaced, "replaced"},
        {Failure::disk_full, "disk_full"},
        {Failure::device, "device"},
        {Failure::gone, "gone"},
        {Failure::changed, "changed"},
        {Failure::refused, "refused"}};
    const auto taken = connection.take_trouble();
    return taken ? kinds.at(taken->kind) : "";
}

std::vector<std::string> faults(const files::Memory_Disk& disk, const std::string& path) {
    std::vector<std::string> sentences;
    for (const auto& finding : jet::check::check(disk.bytes(path)).findings)
        if (finding.grade != jet::check::Finding::Grade::warning)
            sentences.push_back(finding.sentence);
    return sentences;
}

jet::Column whole(const char16_t* name, bool key) {
    jet::Column column;
    column.name = name;
    column.auto_number = column.required = key;
    column.fixed = true;
    return column;
}

jet::Column text(const char16_t* name, std::size_t length) {
    jet::Column column;
    column.name = name;
    column.type = jet::Column_Type::text;
    column.length = length;
    column.allow_zero_length = true;
    return column;
}

jet::Index key_on(const char16_t* column) {
    jet::Index index = unique_on({column});
    index.name = u"PrimaryKey";
    index.primary = index.required = true;
    return index;
}

jet::Index unique_on(const std::vector<const char16_t*>& columns) {
    jet::Index index;
    index.name = u"Einmalig";
    for (const auto* column : columns) index.columns.push_back({column, true});
    index.unique = true;
    return index;
}

} // namespace library

void On_Library::SetUp() {
    if (library::names().empty()) GTEST_SKIP() << "no samples";
}

void On_Library::open(const std::string& sample, bool write_protected) {
    library::put(disk, sample, "a.mdb");
    if (write_protected) disk.protect("a.mdb");
    db.Connection_Start(QStringLiteral("a.mdb"));
    ASSERT_TRUE(db.Connection_Active()) << library::trouble(db);
}

void On_Library::reopen() {
    db.Connection_Close();
    db.Connection_Start(QStringLiteral("a.mdb"));
    ASSERT_TRUE(db.Connection_Active()) << library::trouble(db);
}

void On_Library::in_file(const std::function<void(jet::Database&)>& act) {
    auto file = jet::Database::open(disk, "a.mdb", jet::Mode::read_write);
    act(file);
}
