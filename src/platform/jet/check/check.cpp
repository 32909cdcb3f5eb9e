#include "platform/jet/check/check.h"

#include "platform/jet/check/header.h"
#include "platform/jet/check/relations.h"
#include "platform/jet/check/usage_map.h"

namespace jet::check {

namespace {

void report_lost(Inspection& inspection, std::uint32_t first, std::uint32_t last) {
    const Page page = inspection.pages.page(first);
    if (page.bytes.u16(0) == (0x100 | page_type::definition)) {
        inspection.findings.warning(
            What::definition_unnamed, first,
            words("Page ", first, " is in use and looks like the definition of a table, but the ",
                  "catalogue does not name it."));
        return;
    }
    const std::string which =
        first == last ? words("Page ", first, " is") : words("Pages ", first, " to ", last, " are");
    inspection.findings.warning(What::page_lost, first,
                                which + " in use, but nothing owns " +
                                    (first == last ? "it." : "them."));
}

// Pages below the first one of the map are not worth a word: the map has forgotten them.
void check_ownership(Inspection& inspection, const Global_Map& map) {
    const std::uint32_t count = inspection.ledger.pages();
    const auto lost = [&](std::uint32_t page) {
        return page >= map.first_page && !map.free[page] &&
               inspection.ledger.owner(page).use == Owner::Use::none;
    };
    const auto alone = [&](std::uint32_t page) {
        return inspection.pages.page(page).bytes.u8(0) == page_type::definition;
    };
    for (std::uint32_t page = 0; page < count; ++page) {
        const Owner owner = inspection.ledger.owner(page);
        if (map.free[page] && owner.use != Owner::Use::none)
            inspection.findings.fault(What::page_free_but_used, page,
                                      words("Page ", page, " is marked as free, but belongs to ",
                                            inspection.ledger.describe(owner), "."));
        if (!inspection.all_seen || !lost(page)) continue;
        std::uint32_t last = page;
        while (!alone(last) && last + 1 < count && lost(last + 1) && !alone(last + 1)) ++last;
        report_lost(inspection, page, last);
        page = last;
    }
}

bool inspect(Pages& pages, Findings& findings) {
    const auto header = read_header(pages, findings);
    if (!header) return false;
    Ledger ledger(findings, pages.count());
    Inspection inspection{.pages = pages,
                          .format = *header->format,
                          .findings = findings,
                          .ledger = ledger,
                          .code_page = header->code_page};
    ledger.claim(0, {.use = Owner::Use::header});
    check_header(inspection, *header);
    const auto map = read_global_map(inspection);
    const auto catalogue = read_catalogue(inspection);
    if (!catalogue) return false;
    check_catalogue(inspection, *catalogue);
    check_relations(inspection, *catalogue);
    if (map) check_ownership(inspection, *map);
    return true;
}

Report run(Pages pages, const Limits& limits) {
    Findings findings(limits);
    const bool readable = inspect(pages, findings);
    return std::move(findings).report(readable);
}

} // namespace

Report check(files::File& file, const Limits& limits) { return run(Pages(file), limits); }

Report check(std::span<const std::byte> file, const Limits& limits) {
    return run(Pages(file), limits);
}

} // namespace jet::check
