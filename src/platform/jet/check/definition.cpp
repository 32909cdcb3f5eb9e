#include "platform/jet/check/definition.h"

namespace jet::check {

namespace {

// 255 columns and 32 indexes with the longest names need fewer.
constexpr std::size_t most_pages = 64, chain_head = 8;
// Jet allows 32 indexes; the double leaves room for those that it may make for itself.
constexpr std::uint32_t most_indexes = 64;
constexpr std::uint32_t constant_at = 0x0C, type_at = 0x28, system_type = 0x53;
constexpr std::uint32_t definition_constant = 0x659, index_constant = 0x783;

/// The joined bytes of a chain of definition pages.
class Chain {
public:
    Chain(Inspection& inspection, std::uint32_t first, const std::string& table)
        : inspection_(inspection), first_(first), table_(table) {}

    bool read() {
        std::uint32_t page = first_;
        while (page != 0) {
            if (!take(page)) return false;
            page = next_;
        }
        return true;
    }

    Bytes joined() const { return Bytes(joined_); }

    /// The free field counts what is left of a page whose predecessors are full.
    void check_free() {
        if (!inspection_.format.jet4) return;
        const std::size_t size = inspection_.format.page_size;
        std::size_t left = Bytes(joined_).u32(8);
        for (std::size_t i = 0; i < pages_.size(); ++i) {
            const std::size_t room = i == 0 ? size : size - chain_head;
            const std::size_t used = std::min(left, room) + (size - room);
            left -= std::min(left, room);
            const std::size_t free = size - used < chain_head ? 0 : size - used - chain_head;
            if (frees_[i] != free)
                inspection_.findings.warning(What::definition_free, pages_[i],
                                             words(table_, ", definition page ", pages_[i], " has ",
                                                   free, " free bytes, but says ", frees_[i], "."));
        }
    }

private:
    bool take(std::uint32_t page) {
        const Owner owner{.use = Owner::Use::definition, .table = first_};
        if (!inspection_.ledger.exists(page))
            return refuse(What::definition_page, page, "lies beyond the file");
        if (inspection_.ledger.owner(page) == owner || pages_.size() == most_pages)
            return refuse(What::definition_loop, page, "makes the chain go in a circle");
        const Page held = inspection_.pages.page(page);
        if (held.bytes.u16(0) != (0x100 | page_type::definition))
            return refuse(What::definition_page, page, "is no definition page");
        if (!inspection_.ledger.claim(page, owner)) return false;
        const Bytes part = pages_.empty() ? held.bytes : held.bytes.from(chain_head);
        joined_.insert(joined_.end(), part.span().begin(), part.span().end());
        pages_.push_back(page);
        frees_.push_back(held.bytes.u16(2));
        next_ = held.bytes.u32(4);
        return true;
    }

    bool refuse(What what, std::uint32_t page, std::string_view why) {
        inspection_.findings.fault(what, pages_.empty() ? page : pages_.back(),
                                   words(table_, ": page ", page, " of its definition ", why, "."));
        return false;
    }

    Inspection& inspection_;
    std::uint32_t first_;
    const std::string& table_;
    std::vector<std::byte> joined_;
    std::vector<std::uint32_t> pages_;
    std::vector<std::size_t> frees_;
    std::uint32_t next_ = 0;
};

/// Parses the joined bytes block by block.
class Parser {
public:
    Parser(Inspection& inspection, Bytes bytes, Definition& definition)
        : inspection_(inspection), format_(inspection.format), bytes_(bytes), out_(definition) {}

    bool parse() {
        header();
        if (out_.column_count > most_columns || out_.real_count > most_indexes ||
            out_.logical_count > most_indexes)
            return refuse(What::definition_counts,
                          words("claims ", out_.column_count, " columns, ", out_.logical_count,
                                " indexes and ", out_.real_count, " trees"));
        at_ = format_.blocks + std::size_t{format_.real_count} * out_.real_count;
        if (!counts_fit()) return refuse(What::definition_length, "is too short for its parts");
        columns();
        reals();
        logicals();
        return long_values();
    }

private:
    void header() {
        out_.rows = bytes_.u32(format_.rows);
        out_.autonumber = bytes_.u32(format_.autonumber);
        out_.max_columns = bytes_.u16(format_.max_columns);
        out_.variable_slots = bytes_.u16(format_.variable);
        out_.column_count = bytes_.u16(format_.columns);
        out_.logical_count = bytes_.u32(format_.logicals);
        out_.real_count = bytes_.u32(format_.reals);
        out_.owned = bytes_.u32(format_.owned);
        out_.free = bytes_.u32(format_.free);
        if (format_.jet4) constant(constant_at, definition_constant, "header");
    }

    // Keeps the loops below within what the bytes can hold.
    bool counts_fit() const {
        const std::uint64_t needed = at_ + std::uint64_t{format_.column} * out_.column_count +
                                     std::uint64_t{format_.real} * out_.real_count +
                                     std::uint64_t{format_.logical} * out_.logical_count;
        return bytes_.u32(8) <= bytes_.size() && needed <= bytes_.u32(8);
    }

    void columns() {
        for (std::uint32_t i = 0; i < out_.column_count; ++i) {
            const Bytes record = bytes_.part(at_, format_.column);
            Column column;
            column.type = record.u8(0);
            column.number = record.u16(format_.number);
            column.slot = record.u16(format_.slot);
            column.collation = format_.jet4 ? record.u32(format_.collation) : 0;
            column.flags = record.u8(format_.flags);
            column.fixed_offset = record.u16(format_.fixed_offset);
            column.length = record.u16(format_.length);
            if (format_.jet4) constant(at_ + 1, definition_constant, "a column");
            out_.columns.push_back(std::move(column));
            at_ += format_.column;
        }
        for (Column& column : out_.columns) column.name = name();
    }

    void reals() {
        constexpr std::uint32_t key_columns = 10, unused = 0xFFFF;
        for (std::uint32_t i = 0; i < out_.real_count; ++i) {
            const Bytes record = bytes_.part(at_, format_.real);
            Real_Index index;
            for (std::uint32_t k = 0; k < key_columns; ++k) {
                const std::size_t at = format_.real_columns + std::size_t{3} * k;
                if (record.u16(at) == unused) continue;
                index.columns.push_back({record.u16(at), record.u8(at + 2) == 1});
            }
            index.map = record.u32(format_.map);
            index.root = record.u32(format_.root);
            index.flags = record.u8(format_.real_flags);
            if (format_.jet4) constant(at_, index_constant, "an index");
            out_.reals.push_back(std::move(index));
            at_ += format_.real;
        }
    }

    void logicals() {
        for (std::uint32_t i = 0; i < out_.logical_count; ++i) {
            const Bytes record = bytes_.part(at_ + format_.logical_body, format_.logical);
            Logical_Index index;
            index.number = record.u32(0);
            index.real = record.u32(4);
            index.side = record.u8(8);
            index.partner_number = record.u32(9);
            index.partner_table = record.u32(13);
            index.cascade_update = record.u8(17);
            index.cascade_delete = record.u8(18);
            index.type = record.u8(19);
            if (format_.jet4) constant(at_, definition_constant, "an index name");
            out_.logicals.push_back(std::move(index));
            at_ += format_.logical;
        }
        for (Logical_Index& index : out_.logicals) index.name = name();
    }

    bool long_values() {
        constexpr std::uint32_t end = 0xFFFF, record = 10;
        const std::uint32_t length = bytes_.u32(8);
        while (at_ + 2 < length && bytes_.u16(at_) != end) {
            out_.long_values.push_back({bytes_.u16(at_), bytes_.u32(at_ + 2), bytes_.u32(at_ + 6)});
            at_ += record;
        }
        if (at_ + 2 > length) return refuse(What::definition_length, "is too short for its parts");
        if (bytes_.u16(at_) != end)
            return refuse(What::definition_end, "does not end with its mark");
        if (at_ + 2 != length)
            return refuse(What::definition_length, "ends before the length that it gives");
        return true;
    }

    std::u16string name() {
        const std::uint32_t length = format_.name_length == 1 ? bytes_.u8(at_) : bytes_.u16(at_);
        const Bytes text = bytes_.part(at_ + format_.name_length, length);
        at_ += format_.name_length + std::size_t{length};
        std::u16string out;
        const std::size_t width = format_.jet4 ? 2 : 1;
        for (std::size_t i = 0; i + width <= text.size(); i += width)
            out += static_cast<char16_t>(format_.jet4 ? text.u16(i) : text.u8(i));
        return out;
    }

    void constant(std::size_t at, std::uint32_t expected, std::string_view where) {
        if (bytes_.u32(at) == expected) return;
        inspection_.findings.warning(What::definition_constant, out_.page,
                                     words(out_.words, ": ", where,
                                           " of its definition begins with ", bytes_.u32(at),
                                           " instead of ", expected, "."));
    }

    bool refuse(What what, std::string_view why) {
        inspection_.findings.fault(
            what, out_.page,
            words(out_.words, ": the definition on page ", out_.page, " ", why, "."));
        return false;
    }

    Inspection& inspection_;
    const Format& format_;
    Bytes bytes_;
    Definition& out_;
    std::size_t at_ = 0;
};

// A tree goes by the first logical name that is not a hidden one of a relation.
void name_trees(Inspection& inspection, Definition& definition) {
    for (std::uint32_t i = 0; i < definition.reals.size(); ++i) {
        std::string& name = definition.reals[i].words;
        for (const Logical_Index& logical : definition.logicals)
            if (logical.real == i && (name.empty() || logical.side == 0)) {
                name = words("index ", quoted(logical.name));
                if (logical.side == 0) break;
            }
        if (name.empty()) name = words("index ", i);
        name += words(" of table ", quoted(definition.name));
        inspection.ledger.name({.use = Owner::Use::index,
                                .part = static_cast<std::uint16_t>(i),
                                .table = definition.page},
                               name);
    }
}

void name_pages(Inspection& inspection, const Definition& definition) {
    using Use = Owner::Use;
    const std::string table = quoted(definition.name);
    inspection.ledger.name({.use = Use::definition, .table = definition.page},
                           words("the definition of table ", table));
    inspection.ledger.name({.use = Use::data, .table = definition.page},
                           words("the rows of table ", table));
    for (const Column& column : definition.columns)
        if (column.is_long_value())
            inspection.ledger.name(
                {.use = Use::long_values,
                 .part = static_cast<std::uint16_t>(column.number),
                 .table = definition.page},
                words("the long values of ", quoted(column.name), " of table ", table));
}

} // namespace

const Column* Definition::column(std::uint32_t number) const {
    const auto found = std::ranges::find(columns, number, &Column::number);
    return found == columns.end() ? nullptr : &*found;
}

const Column* Definition::column(std::u16string_view column_name) const {
    const auto found = std::ranges::find_if(
        columns, [&](const Column& column) { return same_name(column.name, column_name); });
    return found == columns.end() ? nullptr : &*found;
}

const Logical_Index* Definition::logical(std::uint32_t number) const {
    const auto found = std::ranges::find(logicals, number, &Logical_Index::number);
    return found == logicals.end() ? nullptr : &*found;
}

std::optional<Definition> read_definition(Inspection& inspection, std::uint32_t page,
                                          const std::u16string& name, bool system) {
    Definition definition;
    definition.page = page;
    definition.name = name;
    definition.words = words("Table ", quoted(name));
    Chain chain(inspection, page, definition.words);
    if (!chain.read()) return {};
    definition.system = system || chain.joined().u8(type_at) == system_type;
    if (!Parser(inspection, chain.joined(), definition).parse()) return {};
    chain.check_free();
    name_trees(inspection, definition);
    name_pages(inspection, definition);
    return definition;
}

} // namespace jet::check
