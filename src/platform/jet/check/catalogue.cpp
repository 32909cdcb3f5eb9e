#include "platform/jet/check/catalogue.h"

#include "platform/jet/check/properties.h"

namespace jet::check {

namespace {

constexpr std::uint32_t objects_page = 2;
constexpr std::size_t most_property_bytes = 1U << 20;

/// Reads numbers and texts of a row by the names of the columns; what is not there reads as 0.
class Fields {
public:
    Fields(Table_Check& table, const Row& row) : table_(table), row_(row) {}

    std::uint32_t number(std::u16string_view name) const {
        const Column* column = table_.definition().column(name);
        if (column == nullptr) return 0;
        const Value value = row_.value(*column);
        if (column->type == column_type::integer) return value.bytes.u16(0);
        return value.bytes.u32(0);
    }

    std::u16string text(std::u16string_view name) const {
        const Column* column = table_.definition().column(name);
        return column == nullptr ? std::u16string() : table_.text(row_, *column);
    }

    std::vector<std::byte> bytes(std::u16string_view name) const {
        const Column* column = table_.definition().column(name);
        if (column == nullptr) return {};
        return table_.long_value(row_, *column, most_property_bytes);
    }

private:
    Table_Check& table_;
    const Row& row_;
};

bool has_columns(Inspection& inspection, const Definition& objects) {
    bool complete = true;
    for (const std::u16string_view name : {u"Id", u"ParentId", u"Name", u"Type", u"Flags",
                                           u"LvProp", u"Owner", u"DateCreate", u"DateUpdate"})
        if (objects.column(name) == nullptr) {
            inspection.findings.fault(
                What::catalogue_columns, objects_page,
                words("The catalogue MSysObjects has no column ", quoted(name), "."));
            complete = false;
        }
    return complete;
}

/// Reads MSysObjects and checks one table after the other.
class Reader {
public:
    explicit Reader(Inspection& inspection) : inspection_(inspection) {}

    bool read() {
        auto objects = read_definition(inspection_, objects_page, u"MSysObjects", true);
        if (!objects || !check_definition(inspection_, *objects) ||
            !has_columns(inspection_, *objects))
            return false;
        check_rows(std::move(*objects),
                   [this](Table_Check& table, const Row& row, Row_Place) { add(table, row); });
        for (const Object& object : out_.objects)
            if (object.type == Object::table && object.id != objects_page) read_table(object);
        return true;
    }

    Catalogue result() && { return std::move(out_); }

private:
    void add(Table_Check& table, const Row& row) {
        const Fields fields(table, row);
        Object object;
        object.id = fields.number(u"Id");
        object.parent = fields.number(u"ParentId");
        object.name = fields.text(u"Name");
        object.type = fields.number(u"Type");
        object.flags = fields.number(u"Flags");
        if (object.type == Object::table) object.properties = fields.bytes(u"LvProp");
        out_.objects.push_back(std::move(object));
    }

    void check_rows(Definition definition, const Row_Visitor& visit) {
        Table table{std::move(definition), {}};
        table.trees = Table_Check(inspection_, table.definition).run(visit);
        out_.tables.push_back(std::move(table));
    }

    void read_table(const Object& object) {
        if (!leads_to_table(object)) {
            inspection_.all_seen = false;
            return;
        }
        const bool system = (object.flags & Object::system_flags) != 0;
        auto definition = read_definition(inspection_, object.id, object.name, system);
        if (!definition || !check_definition(inspection_, *definition)) {
            inspection_.all_seen = false;
            return;
        }
        if (!object.properties.empty())
            read_properties(inspection_, Bytes(object.properties), *definition);
        check_rows(std::move(*definition), visitor(object));
    }

    bool leads_to_table(const Object& object) {
        const auto refuse = [&](std::string_view why) {
            inspection_.findings.fault(What::catalogue_table, object.id,
                                       words("The catalogue says that table ", quoted(object.name),
                                             " begins on page ", object.id, ", ", why, "."));
            return false;
        };
        if (!inspection_.ledger.exists(object.id)) return refuse("which is not there");
        const Owner owner = inspection_.ledger.owner(object.id);
        if (owner.use == Owner::Use::definition)
            return refuse(words("which belongs to ", inspection_.ledger.describe(owner)));
        const Page page = inspection_.pages.page(object.id);
        if (page.bytes.u8(0) != page_type::definition) return refuse("which is no definition page");
        return true;
    }

    Row_Visitor visitor(const Object& object) {
        if ((object.flags & Object::system_flags) == 0) return {};
        if (object.name == u"MSysRelationships")
            return [this](Table_Check& table, const Row& row, Row_Place) {
                const Fields fields(table, row);
                out_.relation_rows.push_back(
                    {.relation = fields.text(u"szRelationship"),
                     .table = fields.text(u"szObject"),
                     .column = fields.text(u"szColumn"),
                     .referenced_table = fields.text(u"szReferencedObject"),
                     .referenced_column = fields.text(u"szReferencedColumn"),
                     .flags = fields.number(u"grbit"),
                     .count = fields.number(u"ccolumn"),
                     .position = fields.number(u"icolumn")});
            };
        if (object.name != u"MSysACEs") return {};
        out_.has_rights = true;
        return [this](Table_Check& table, const Row& row, Row_Place) {
            out_.objects_with_rights.insert(Fields(table, row).number(u"ObjectId"));
        };
    }

    Inspection& inspection_;
    Catalogue out_;
};

} // namespace

const Table* Catalogue::table(std::u16string_view name) const {
    const auto found = std::ranges::find_if(
        tables, [&](const Table& table) { return same_name(table.definition.name, name); });
    return found == tables.end() ? nullptr : &*found;
}

const Table* Catalogue::table(std::uint32_t page) const {
    const auto found = std::ranges::find_if(
        tables, [&](const Table& table) { return table.definition.page == page; });
    return found == tables.end() ? nullptr : &*found;
}

std::optional<Catalogue> read_catalogue(Inspection& inspection) {
    Reader reader(inspection);
    if (!reader.read()) return {};
    return std::move(reader).result();
}

} // namespace jet::check
