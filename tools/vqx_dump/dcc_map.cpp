#include "part_reader.h"
#include "parts.h"

#include <bitset>
#include <map>
#include <set>

namespace vqx_dump {

namespace {

std::string set_text(const Cv_Set& set) {
    return sentence("the set with reset CV ", set.reset_cv, " and number ", set.number);
}

std::string page_text(const Cv_Page& page) { return sentence("page ", page.high, ":", page.low); }

void judge_cvs(Bytes file, const Cv_Page& page, Findings& findings) {
    if (page.size == 0) findings.warning(page.cvs, sentence(page_text(page), " holds no CVs."));
    if (page.size % 2 != 0)
        findings.inconsistency(page.cvs, sentence(page_text(page), " has ", page.size,
                                                  " bytes, an odd number; a CV takes two."));
    std::bitset<256> seen;
    for (std::size_t at = 0; at + 1 < page.size; at += 2) {
        const auto cv_byte = file[page.cvs + at];
        if (seen.test(cv_byte)) {
            findings.inconsistency(
                page.cvs + at,
                sentence(page_text(page), " has two values for CV byte ", unsigned{cv_byte}, "."));
            return; // one sentence for a page is enough
        }
        seen.set(cv_byte);
    }
}

unsigned page_byte(Part_Reader& reader, std::string_view what, Findings& findings) {
    const auto value = reader.number(what);
    if (value > 255)
        findings.inconsistency(reader.last_offset(),
                               sentence(what, " is ", value, "; page bytes go up to 255."));
    return value;
}

void read_pages(Bytes file, Part_Reader& reader, Cv_Set& set, Findings& findings) {
    std::set<std::pair<unsigned, unsigned>> keys;
    const auto count = reader.map(sentence("the pages of ", set_text(set)));
    for (std::size_t i = 0; i < count && reader.ok(); ++i) {
        Cv_Page page;
        reader.pair("the key of a page");
        const auto key_offset = reader.last_offset();
        page.high = page_byte(reader, "the high page byte", findings);
        page.low = page_byte(reader, "the low page byte", findings);
        page.size = reader.bin(page_text(page));
        page.cvs = reader.position();
        if (!reader.ok()) return;
        reader.skip(page.size);
        if (!keys.emplace(page.high, page.low).second)
            findings.inconsistency(key_offset,
                                   sentence(set_text(set), " has ", page_text(page), " twice."));
        judge_cvs(file, page, findings);
        set.pages.push_back(page);
    }
}

std::uint32_t key_number(Part_Reader& reader, std::string_view what, Findings& findings) {
    const auto value = reader.number(what);
    if (value > 32767)
        findings.inconsistency(reader.last_offset(),
                               sentence(what, " is ", value, "; it goes up to 32767."));
    return value;
}

Cv_Set read_set(Bytes file, Part_Reader& reader, Findings& findings) {
    Cv_Set set;
    reader.pair("the key of a set");
    set.offset = reader.last_offset();
    set.reset_cv = key_number(reader, "the reset CV of a set", findings);
    set.number = key_number(reader, "the number of a set", findings);
    if (reader.ok() && set.reset_cv != 8 && set.reset_cv != 265)
        findings.warning(set.offset,
                         sentence(set_text(set), ": decoders know reset CV 8 and 265."));
    read_pages(file, reader, set, findings);
    return set;
}

} // namespace

Dcc_Map read_dcc_map(Bytes file, std::size_t start, Findings& findings) {
    Part_Reader reader(file, start, findings);
    Dcc_Map map;
    map.start = start;
    std::set<std::pair<std::uint32_t, std::uint32_t>> keys;
    const auto count = reader.map("the map of CV sets");
    for (std::size_t i = 0; i < count && reader.ok(); ++i) {
        map.sets.push_back(read_set(file, reader, findings));
        const auto& set = map.sets.back();
        if (reader.ok() && !keys.emplace(set.reset_cv, set.number).second)
            findings.warning(set.offset, sentence(set_text(set), " comes twice."));
    }
    map.complete = reader.ok();
    map.end = reader.position();
    return map;
}

} // namespace vqx_dump
