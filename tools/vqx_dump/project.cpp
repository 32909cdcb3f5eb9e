#include "project.h"

#include "parts.h"

#include <algorithm>
#include <map>

namespace vqx_dump {

namespace {

unsigned big_endian(Bytes file, std::size_t at, std::size_t size) {
    unsigned value = 0;
    for (const auto byte : file.subspan(at, size)) value = value << 8 | byte;
    return value;
}

struct Magic {
    const char* text;
    bool oem;
};

constexpr Magic magics[] = {{"QL", true}, {"LZ", false}};

bool is_oem(Bytes file) {
    if (file.size() < header_size)
        throw Not_A_Project_File(
            sentence("it has ", file.size(), " bytes; the header alone takes 128"));
    for (const auto& magic : magics)
        if (big_endian(file, 0, 2) == identifier(magic.text)) return magic.oem;
    throw Not_A_Project_File(sentence("it begins with ", hex(big_endian(file, 0, 2)),
                                      ", neither \"QL\" (oem) nor \"LZ\" (user)"));
}

struct Range {
    std::size_t first, last;
};

constexpr Range zero_ranges[] = {{4, 4}, {6, 8}, {13, 127}};

void read_header(Bytes file, Project& project, Findings& findings) {
    project.oem = is_oem(file);
    project.format = big_endian(file, 2, 2);
    project.body_length = big_endian(file, 9, 4);
    if (project.format != 2)
        findings.inconsistency(2, sentence("the format number is ", project.format, ", not 2."));
    if (file[5] != header_size)
        findings.inconsistency(5, sentence("the header says that the body starts at ",
                                           unsigned{file[5]}, "; it starts at 128."));
    for (const auto& range : zero_ranges)
        for (auto at = range.first; at <= range.last; ++at)
            if (file[at] != 0)
                findings.inconsistency(
                    at, sentence("byte ", at, " of the header is ", hex(file[at], 2), ", not 0."));
    if (project.body_length != file.size() - header_size)
        findings.inconsistency(9, sentence("the header says that the body has ",
                                           project.body_length, " bytes, but ",
                                           file.size() - header_size, " follow the header."));
}

/// Finds the parts of the body one behind the other and holds the addresses against them.
class Body_Reader {
public:
    Body_Reader(Bytes file, Project& project, Findings& findings)
        : file_(file), project_(project), findings_(findings) {}

    void read() {
        end_ = header_size;
        if (project_.oem) read_main_map();
        read_directory();
        read_dcc();
        read_scripts();
        if (end_ && *end_ < file_.size())
            findings_.inconsistency(
                *end_, sentence(file_.size() - *end_, " bytes follow the last part of the body."));
    }

private:
    /// A part lies right behind the one before. Where its address says something else, both places
    /// are tried, and the one at which more can be read tells whether the address or the place is
    /// wrong.
    template <typename Read>
    auto place(std::string_view name, std::optional<Address> address, std::size_t base, Read read) {
        const auto named = address ? std::optional(base + address->value) : std::nullopt;
        if (!named || named == end_) return read(end_.value_or(header_size), findings_);
        Findings unheard;
        const auto there = read(std::min(*named, file_.size()), unheard);
        if (!end_) return choose(there.start, read);
        const auto here = read(*end_, unheard);
        if (!there.complete || (here.complete && here.size() >= there.size())) {
            findings_.inconsistency(address->written_at,
                                    sentence("the address of the ", name, " is ", address->value,
                                             ", but the ", name, " should start at ", *end_ - base,
                                             " (counted from ", hex(base), ")."));
            return choose(*end_, read);
        }
        report_distance(name, *end_, *named);
        return choose(*named, read);
    }

    template <typename Read>
    auto choose(std::size_t start, Read read) {
        return read(start, findings_);
    }

    void report_distance(std::string_view name, std::size_t behind, std::size_t start) {
        if (start > behind)
            findings_.inconsistency(behind, sentence("a gap of ", start - behind,
                                                     " bytes lies before the ", name, "."));
        else
            findings_.inconsistency(start,
                                    sentence("the ", name, " overlaps the last ", behind - start,
                                             " bytes of the part before it."));
    }

    void end_at(const Part& part) { end_ = part.complete ? std::optional(part.end) : std::nullopt; }

    void read_main_map() {
        static constexpr Expected_Entry expected[] = {{"main", true}, {"ext", true}};
        project_.main_map = read_address_map(file_, header_size, "main map", expected, findings_);
        end_at(project_.main_map);
        const auto extent = project_.main_map.find(identifier("ext"));
        const auto rounded = (file_.size() - header_size + 4095) / 4096 * 4096;
        if (extent && extent->value != rounded)
            findings_.inconsistency(extent->written_at,
                                    sentence("\"ext\" is ", extent->value,
                                             "; the body length rounded up ",
                                             "to a multiple of 4096 is ", rounded, "."));
    }

    void read_directory() {
        static constexpr Expected_Entry expected[] = {{"dcc", true}, {"scr", false}};
        const auto address = project_.main_map.find(identifier("main"));
        project_.directory =
            place("directory", address, header_size, [&](std::size_t start, Findings& findings) {
                return read_address_map(file_, start, "directory", expected, findings);
            });
        end_at(project_.directory);
    }

    void read_dcc() {
        const auto address = project_.directory.find(identifier("dcc"));
        if (!address && !end_) return;
        project_.dcc = place("map of CV sets", address, project_.directory.start,
                             [&](std::size_t start, Findings& findings) {
                                 return read_dcc_map(file_, start, findings);
                             });
        end_at(project_.dcc);
    }

    void read_scripts() {
        const auto address = project_.directory.find(identifier("scr"));
        if (!address) return;
        project_.scripts = place("script map", address, project_.directory.start,
                                 [&](std::size_t start, Findings& findings) {
                                     return read_script_map(file_, start, findings);
                                 });
        end_at(*project_.scripts);
        if (project_.dcc.complete) judge_owners();
        for (std::size_t i = 0; i < project_.scripts->entries.size(); ++i) read_block(i);
    }

    /// Every entry of the script map needs a set of its number.
    void judge_owners() {
        std::map<std::uint32_t, std::size_t> sets;
        for (const auto& set : project_.dcc.sets) ++sets[set.number];
        for (const auto& entry : project_.scripts->entries) {
            auto& left = sets[entry.number];
            if (left == 0)
                findings_.inconsistency(entry.offset, sentence("the script map names set number ",
                                                               entry.number, ", but there is no ",
                                                               "(further) set of this number."));
            else
                --left;
        }
    }

    std::size_t block_start(const Script_Entry& entry) const {
        return project_.scripts->start + entry.address.value;
    }

    /// What is stated to follow block `i`: the next block or the end of the file.
    std::size_t stated_next(std::size_t i) const {
        const auto& entries = project_.scripts->entries;
        return i + 1 < entries.size() ? std::min(block_start(entries[i + 1]), file_.size())
                                      : file_.size();
    }

    void read_block(std::size_t i) {
        const auto& entry = project_.scripts->entries[i];
        const auto name = sentence("script block of set number ", entry.number);
        // Behind an unreadable map the first address has to be believed.
        if (!end_) end_ = std::clamp(block_start(entry), project_.scripts->end, file_.size());
        auto block = place(name, entry.address, project_.scripts->start,
                           [&](std::size_t start, Findings& findings) {
                               return believable_block(start, entry.length, findings);
                           });
        block.number = entry.number;
        for (const auto& script : block.scripts) judge_commands(file_, script, findings_);
        judge_length(block, entry, name, i);
        project_.blocks.push_back(std::move(block));
    }

    /// A block that starts before the end of what is already read is refused: so no byte is read
    /// twice.
    Script_Block believable_block(std::size_t start, std::size_t length, Findings& findings) const {
        if (start >= *end_) return read_script_block(file_, start, length, findings);
        Script_Block refused;
        refused.start = refused.end = start;
        return refused;
    }

    void judge_length(const Script_Block& block, const Script_Entry& entry, std::string_view name,
                      std::size_t i) {
        const auto stated_end = block.start + entry.length;
        if (block.complete && block.end < stated_end)
            findings_.inconsistency(entry.address.written_at,
                                    sentence("the ", name, " has a length of ", entry.length,
                                             " bytes, but its scripts end after ", block.size(),
                                             "."));
        if (stated_end > file_.size())
            findings_.inconsistency(entry.address.written_at,
                                    sentence("the ", name, " ends beyond the file."));
        end_ = std::max(*end_, stated_end == stated_next(i) ? stated_end : block.end);
    }

    Bytes file_;
    Project& project_;
    Findings& findings_;
    std::optional<std::size_t> end_; ///< of the parts read so far, where that is known
};

} // namespace

Project read_project(Bytes file, Findings& findings) {
    Project project;
    read_header(file, project, findings);
    Body_Reader(file, project, findings).read();
    return project;
}

} // namespace vqx_dump
