#include "platform/jet/check/ledger.h"

namespace jet::check {

std::string Ledger::describe(Owner owner) const {
    using Use = Owner::Use;
    if (const auto named = names_.find(owner); named != names_.end()) return named->second;
    switch (owner.use) {
    case Use::header:
        return "the file's header";
    case Use::global_map:
        return "the map of free pages";
    case Use::map_rows:
        return "the rows of usage maps";
    case Use::map_bits:
        return "the bits of a usage map";
    case Use::definition:
        return words("the definition of the table on page ", owner.table);
    case Use::data:
        return words("the rows of the table on page ", owner.table);
    case Use::index:
        return words("index ", owner.part, " of the table on page ", owner.table);
    case Use::long_values:
        return words("long values of column ", owner.part, " of the table on page ", owner.table);
    case Use::none:
        break;
    }
    return "nothing";
}

bool Ledger::claim(std::uint32_t page, Owner owner) {
    if (!exists(page)) return false;
    Owner& present = owners_[page];
    if (present.use == Owner::Use::none) {
        present = owner;
        return true;
    }
    findings_.fault(
        What::page_owned_twice, page,
        words("Page ", page, " belongs to ", describe(present), " and to ", describe(owner), "."));
    return false;
}

} // namespace jet::check
