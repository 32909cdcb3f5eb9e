#include "platform/jet/check/definition.h"

#include <set>

namespace jet::check {

namespace {

constexpr std::uint32_t any_length = 0xFFFFFFFF;

struct Type_Rule {
    std::uint32_t type;
    std::uint32_t length; ///< the only one allowed
};

// Text and Binary have the length that they were declared with, at most 510.
constexpr Type_Rule type_rules[] = {
    {column_type::boolean, any_length},  {column_type::byte, 1},
    {column_type::integer, 2},           {column_type::long_integer, 4},
    {column_type::currency, 8},          {column_type::single_float, 4},
    {column_type::double_float, 8},      {column_type::date, 8},
    {column_type::binary, any_length},   {column_type::text, any_length},
    {column_type::ole, any_length},      {column_type::memo, any_length},
    {column_type::internal, any_length}, {column_type::guid, 16},
    {column_type::decimal, 17},          {column_type::internal_fixed, any_length},
    {column_type::complex, 4},
};

constexpr std::uint32_t most_text_bytes = 510, most_name_units = 64;

/// The rules of one definition. A rule that readers of rows and trees rely on clears usable_.
class Definition_Rules {
public:
    Definition_Rules(Inspection& inspection, const Definition& definition)
        : inspection_(inspection), table_(definition) {}

    bool check() {
        if (table_.columns.size() > table_.max_columns)
            fault(What::column_count, words("has ", table_.columns.size(),
                                            " columns, but room for ", table_.max_columns));
        if (table_.max_columns > most_columns)
            fault(What::column_count, words("has room for ", table_.max_columns,
                                            " columns, more than a table can have"));
        for (const Column& column : table_.columns) check_column(column);
        check_overlap();
        for (const Real_Index& index : table_.reals) check_real(index);
        for (const Logical_Index& index : table_.logicals) check_logical(index);
        check_purposes();
        check_long_values();
        return usable_;
    }

private:
    void fault(What what, std::string_view why) {
        inspection_.findings.fault(what, table_.page, words(table_.words, " ", why, "."));
        usable_ = false;
    }

    void check_column(const Column& column) {
        const std::string who = words("column ", quoted(column.name));
        if (column.name.empty() || column.name.size() > most_name_units)
            fault(What::column_name,
                  words("has a column name of ", column.name.size(), " characters"));
        else if (!names_.insert(folded(column.name)).second)
            fault(What::column_name, words("has two columns named ", quoted(column.name)));
        if (column.number >= table_.max_columns)
            fault(What::column_number, words("gives ", who, " the number ", column.number,
                                             ", but has numbers below ", table_.max_columns));
        else if (!numbers_.insert(column.number).second)
            fault(What::column_number, words("has two columns with the number ", column.number));
        if (!column.fixed()) check_slot(column, who);
        check_type(column, who);
    }

    void check_slot(const Column& column, const std::string& who) {
        if (column.slot >= table_.variable_slots)
            fault(What::column_slot, words("gives ", who, " the slot ", column.slot,
                                           ", but has slots below ", table_.variable_slots));
        else if (!slots_.insert(column.slot).second)
            fault(What::column_slot, words("has two columns with the slot ", column.slot));
    }

    void check_type(const Column& column, const std::string& who) {
        const auto* rule = std::ranges::find(type_rules, column.type, &Type_Rule::type);
        if (rule == std::end(type_rules)) {
            fault(What::column_type, words("gives ", who, " the unknown type ", column.type));
            return;
        }
        const bool varying = column.type == column_type::text || column.type == column_type::binary;
        if ((rule->length != any_length && column.length != rule->length) ||
            (varying && column.length > most_text_bytes))
            fault(What::column_length, words("gives ", who, " the length ", column.length));
    }

    void check_overlap() {
        std::vector<const Column*> fixed;
        for (const Column& column : table_.columns)
            if (column.fixed() && column.fixed_size() > 0) fixed.push_back(&column);
        std::ranges::sort(fixed, {}, &Column::fixed_offset);
        std::uint32_t end = 0;
        for (const Column* column : fixed) {
            if (column->fixed_offset < end)
                fault(What::column_overlap,
                      words("keeps column ", quoted(column->name), " at ", column->fixed_offset,
                            ", inside the column before it, which ends at ", end));
            end = std::max(end, column->fixed_offset + column->fixed_size());
        }
        if (end > inspection_.format.page_size)
            fault(What::column_overlap, words("has a fixed part of ", end, " bytes"));
    }

    void check_real(const Real_Index& index) {
        std::set<std::uint32_t> seen;
        bool good = !index.columns.empty();
        for (const Key_Column& key : index.columns)
            good = good && table_.column(key.number) != nullptr && seen.insert(key.number).second;
        if (!good) {
            inspection_.findings.fault(What::index_columns, table_.page,
                                       words(table_.words, ": ", index.words,
                                             " stands on a column that is not there, ",
                                             "on one column twice, or on none."));
            usable_ = false;
        }
    }

    void check_logical(const Logical_Index& index) {
        const std::string who = words("index ", quoted(index.name));
        if (index.real >= table_.reals.size())
            fault(What::index_real, words("keeps ", who, " in tree ", index.real, ", but has ",
                                          table_.reals.size(), " trees"));
        if (!index_numbers_.insert(index.number).second)
            fault(What::index_number,
                  words("gives the number ", index.number, " to ", who, " and another index"));
        if (index.name.empty() || index.name.size() > most_name_units ||
            !index_names_.insert(folded(index.name)).second)
            fault(What::index_name,
                  words("has ", who, " twice, or an index name that is empty ", "or too long"));
    }

    void check_purposes() {
        std::vector<bool> used(table_.reals.size());
        std::size_t keys = 0;
        for (const Logical_Index& index : table_.logicals) {
            if (index.real < used.size()) used[index.real] = true;
            if (index.type == Logical_Index::primary_key) ++keys;
        }
        if (keys > 1) fault(What::index_keys, words("has ", keys, " primary keys"));
        for (std::size_t i = 0; i < used.size(); ++i)
            if (!used[i])
                inspection_.findings.warning(
                    What::index_unused, table_.page,
                    words(table_.words, ": tree ", i, " belongs to no index."));
    }

    void check_long_values() {
        for (const Long_Value_Maps& maps : table_.long_values) {
            const Column* column = table_.column(maps.column);
            if (column == nullptr || !column->is_long_value())
                fault(What::column_number, words("has maps of long values for the number ",
                                                 maps.column, ", which is no Memo or OLE column"));
        }
    }

    static std::u16string folded(std::u16string_view name);

    Inspection& inspection_;
    const Definition& table_;
    bool usable_ = true;
    std::set<std::u16string> names_, index_names_;
    std::set<std::uint32_t> numbers_, slots_, index_numbers_;
};

char16_t lower(char16_t unit) {
    const bool latin1 = unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
    const bool greek_or_cyrillic =
        (unit >= 0x391 && unit <= 0x3A9) || (unit >= 0x410 && unit <= 0x42F);
    if ((unit >= u'A' && unit <= u'Z') || latin1 || greek_or_cyrillic)
        return static_cast<char16_t>(unit + 0x20);
    if (unit >= 0x400 && unit <= 0x40F) return static_cast<char16_t>(unit + 0x50);
    return unit;
}

std::u16string Definition_Rules::folded(std::u16string_view name) {
    std::u16string out;
    for (const char16_t unit : name) out += lower(unit);
    return out;
}

} // namespace

bool same_name(std::u16string_view a, std::u16string_view b) {
    return std::ranges::equal(a, b, {}, lower, lower);
}

bool check_definition(Inspection& inspection, const Definition& definition) {
    return Definition_Rules(inspection, definition).check();
}

} // namespace jet::check
