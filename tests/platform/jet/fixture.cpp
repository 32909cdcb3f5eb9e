#include "platform/jet/fixture.h"

namespace fixture {

bool load(files::Memory_Disk& disk, const std::string& from) {
    if (!files::real_disk().file_exists(from)) return false;
    const auto file = files::real_disk().open(from, files::Access::read);
    std::vector<std::byte> bytes(file->size());
    bytes.resize(file->read_at(0, bytes));
    disk.set_bytes(path, bytes);
    return true;
}

std::string faults(jet::Database& database, bool warnings) {
    using Grade = jet::check::Finding::Grade;
    const auto report = database.check();
    std::string all = report.readable ? "" : "not readable\n";
    for (const auto& finding : report.findings)
        if (warnings || finding.grade != Grade::warning) all += finding.sentence + "\n";
    return all;
}

Content content(jet::Database& database) {
    Content all;
    for (const auto& table : database.tables()) {
        auto& rows = all[table.name()];
        for (auto cursor = table.rows(); cursor.next();) rows.push_back(cursor.values());
    }
    return all;
}

jet::Column column(std::u16string name, jet::Column_Type type, std::size_t length) {
    jet::Column made;
    made.name = std::move(name);
    made.type = type;
    made.length = length;
    made.allow_zero_length = true;
    return made;
}

jet::Index primary_key(std::u16string column_name) {
    jet::Index index;
    index.name = u"PrimaryKey";
    index.columns = {{std::move(column_name), true}};
    index.primary = true;
    return index;
}

} // namespace fixture
