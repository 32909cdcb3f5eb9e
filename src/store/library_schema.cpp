// The tables and columns that a library needs, added to old files in place.

#include "store/library_schema.h"

#include <algorithm>
#include <array>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

bool in_any_case(const std::vector<QString>& names, const QString& name) {
    return std::any_of(names.begin(), names.end(), [&](const QString& other) {
        return name.compare(other, Qt::CaseInsensitive) == 0;
    });
}

ado::Column number(const QString& name, bool nullable = true) {
    return {.name = name, .nullable = nullable};
}

ado::Column key(const QString& name) {
    return {.name = name,
            .nullable = false,
            .auto_increment = true,
            .description = u"unique identifier"_s};
}

ado::Column text(const QString& name) {
    return {.name = name, .kind = ado::Column_Kind::text, .length = 255};
}

ado::Table scripte() {
    return {.name = u"Scripte"_s,
            .columns = {key(u"ScriptID"_s), number(u"SetID"_s, false), text(u"ScriptName"_s)},
            .indexes = {{u"PrimaryKey"_s, true, u"ScriptID"_s}},
            .keys = {{u"CVSetIDScripte"_s, u"Sets"_s, u"SetID"_s, u"SetID"_s}}};
}

ado::Table scriptstates() {
    ado::Table table{.name = u"Scriptstates"_s,
                     .columns = {key(u"SSID"_s)},
                     .indexes = {{u"PrimaryKey"_s, true, u"SSID"_s}},
                     .keys = {{u"ScriptIDScripte"_s, u"Scripte"_s, u"ScriptID"_s, u"ScriptID"_s}}};
    for (const QString& name : {u"ScriptID"_s, u"State"_s, u"Command"_s})
        table.columns.push_back(number(name, false));
    for (const QString& name : {u"Par1"_s, u"Par2"_s, u"Par3"_s, u"Par4"_s})
        table.columns.push_back(number(name));
    table.columns.push_back(text(u"Info"_s));
    return table;
}

const QString sets_table = u"Sets"_s;

/// As it is when it is missing: without its keys, since it is never made.
ado::Table cvs() {
    ado::Table table{.name = u"CVs"_s};
    for (const QString& name :
         {u"CVID"_s, u"SetID"_s, u"CVPageHi"_s, u"CVPageLo"_s, u"CVNr"_s, u"CVWert"_s})
        table.columns.push_back(number(name));
    return table;
}

/// What an old file lacks: a table, or a column of one that is there.
struct Addition {
    ado::Table table;
    QString column; ///< empty: the whole table
};

// A name that stands there in another case cannot be added again, and need not be: queries find it.
bool TableExists(const ado::Catalog& catalog, const QString& name) {
    return in_any_case(catalog.tables(), name);
}

bool ColumnExists(const ado::Catalog& catalog, const QString& table, const QString& name) {
    return in_any_case(catalog.columns(table), name);
}

/// In the order in which they must be made: the key of Scriptstates needs Scripte.
std::vector<Addition> missing(const ado::Catalog& catalog) {
    std::vector<Addition> found;
    for (ado::Table& table : std::array{scripte(), scriptstates()})
        if (!TableExists(catalog, table.name)) found.push_back({std::move(table), {}});
    for (const QString& name : {u"Nummer"_s, u"ResCV"_s})
        if (!ColumnExists(catalog, sets_table, name)) found.push_back({{.name = sets_table}, name});
    return found;
}

void add(ado::Catalog& catalog, const Addition& addition) {
    if (addition.column.isEmpty())
        catalog.append(addition.table);
    else
        catalog.append(addition.table.name, number(addition.column));
}

void add_in_memory(ado::Catalog& catalog, const Addition& addition) {
    if (addition.column.isEmpty())
        catalog.append_in_memory(addition.table);
    else
        catalog.append_in_memory(addition.table.name, number(addition.column));
}

} // namespace

/// Finds out what there is. Without CVs the sets are shown, and nothing is changed: what has lost a
/// table, or is of another kind and has a table of that name, is no place to write to.
void Library_Schema::look_for_library() {
    Library_File& file = operation_.file();
    ado::Catalog& catalog = file.catalog();
    Library_File::Contents contents;
    operation_.reading(ado::Extent::some, [&] {
        contents.sets = TableExists(catalog, sets_table) &&
                        ColumnExists(catalog, sets_table, u"SetID"_s) &&
                        ColumnExists(catalog, sets_table, u"Name"_s);
        if (!contents.sets)
            file.note(file.without_sets(), file.path(), u"no table Sets with SetID and Name"_s);
    });
    if (!contents.sets) {
        if (file.is_cut_off()) // else it looks like damage, or like another kind
            file.note(Failure::cut_off, file.path(),
                      file.trouble ? file.trouble->detail : QString());
        contents.no_sets = file.trouble.value_or(Trouble{Failure::no_library, file.path(), {}});
        file.found(contents);
        return;
    }
    file.found(contents);
    operation_.reading(ado::Extent::some, [&] {
        const ado::Table wanted = cvs();
        const bool there = TableExists(catalog, wanted.name);
        contents.cvs = there && std::ranges::all_of(wanted.columns, [&](const ado::Column& column) {
                           return ColumnExists(catalog, wanted.name, column.name);
                       });
        if (!there) catalog.append_in_memory(wanted);
        file.found(contents);
    });
}

void Library_Schema::upgrade() {
    look_for_library();
    Library_File& file = operation_.file();
    ado::Catalog& catalog = file.catalog();
    if (!file.is_library()) return; // nothing is added to databases of other kinds
    std::vector<Addition> lacks;
    const auto look = [&] { lacks = missing(catalog); };
    if (!operation_.reading(ado::Extent::some, look) || lacks.empty()) return;
    if (file.blocked() == Blocked::no && operation_.begin()) {
        // Another copy of the program may have been quicker.
        const bool known = operation_.reading(ado::Extent::some, look);
        // One refused (a key that old files do not have) does not keep the others out.
        if (known && !lacks.empty() && operation_.keep_copy())
            for (const Addition& addition : lacks)
                std::ignore = operation_.changing([&] { add(catalog, addition); });
        std::ignore = operation_.end(true); // what was not kept is completed in memory
    }
    operation_.reading(ado::Extent::some, [&] {
        for (const Addition& addition : missing(catalog)) add_in_memory(catalog, addition);
    });
}

int Library_Schema::width(QLatin1StringView table, QLatin1StringView column) {
    Library_File& file = operation_.file();
    std::size_t characters = 0;
    const bool read = operation_.reading(
        ado::Extent::some, [&] { characters = file.catalog().text_width(table, column); });
    if (read && characters == 0 && file.expect_library())
        file.note(Failure::gone, file.path(),
                  table + QLatin1Char('.') + column + u": no column for texts"_s);
    return static_cast<int>(characters);
}

} // namespace store
