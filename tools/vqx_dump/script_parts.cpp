#include "part_reader.h"
#include "parts.h"

#include <algorithm>

namespace vqx_dump {

Script_Map read_script_map(Bytes file, std::size_t start, Findings& findings) {
    Part_Reader reader(file, start, findings);
    Script_Map map;
    map.start = start;
    const auto count = reader.map("the script map");
    map.end = reader.position();
    if (reader.ok() && count == 0)
        findings.inconsistency(start, "the script map is empty; without scripts there is none.");
    std::vector<bool> seen(256);
    for (std::size_t i = 0; i < count && reader.ok(); ++i) {
        Script_Entry entry;
        entry.number = reader.number_as(0xCC, "the set number in the script map");
        entry.offset = reader.last_offset();
        reader.pair("the value of a script map entry");
        entry.address.value = reader.number_as(0xCE, "the address of a script block");
        entry.address.written_at = reader.last_offset();
        entry.length = reader.number_as(0xCE, "the length of a script block");
        if (!reader.ok()) break;
        const auto number = std::min<std::size_t>(entry.number, 255);
        if (seen[number])
            findings.warning(entry.offset,
                             sentence("set number ", entry.number, " has scripts twice."));
        seen[number] = true;
        map.entries.push_back(entry);
        map.end = reader.position();
    }
    map.complete = reader.ok();
    return map;
}

namespace {

unsigned big_endian_16(Bytes file, std::size_t at) { return file[at] * 256U + file[at + 1]; }

/// Reads scripts one behind the other; the offset table only confirms or, where it disagrees, says
/// where to go on. So no byte is read twice, whatever the table says.
class Block_Reader {
public:
    Block_Reader(Bytes file, std::size_t start, std::size_t limit, Findings& findings)
        : file_(file), limit_(limit), findings_(findings) {
        block_.start = start;
        block_.end = start + 1;
    }

    Script_Block read() {
        const std::size_t count = file_[block_.start];
        if (count == 0) findings_.warning(block_.start, "a script block holds no scripts.");
        if (count > most_scripts)
            findings_.inconsistency(block_.start, sentence("a script block announces ", count,
                                                           " scripts; a set has at most 16."));
        block_.end = block_.start + 1 + 2 * count;
        if (block_.end > limit_) return cut_off(block_.start, "its offset table");
        for (std::size_t i = 0; i < std::min(count, most_scripts); ++i)
            if (go_to_script(i); !read_script(i)) return block_;
        block_.complete = count <= most_scripts;
        return block_;
    }

private:
    Script_Block cut_off(std::size_t at, std::string_view what) {
        block_.end = limit_;
        findings_.inconsistency(at, sentence("the script block ends within ", what, "."));
        return block_;
    }

    bool looks_like_header(std::size_t at) const {
        if (at + 8 > limit_) return false;
        const auto zeros = file_.subspan(at + 2, 5);
        return file_[at] + file_[at + 1] * 256U <= most_states && file_[at + 7] <= 1 &&
               std::all_of(zeros.begin(), zeros.end(), [](auto byte) { return byte == 0; });
    }

    /// Sets the end of what is read to the start of script `i`.
    void go_to_script(std::size_t i) {
        const auto entry = block_.start + 1 + 2 * i;
        const auto said = big_endian_16(file_, entry);
        const auto real = block_.end - block_.start;
        if (said == real) return;
        findings_.inconsistency(entry, sentence("script ", i + 1, " should start ", real,
                                                " bytes into its block, behind ",
                                                i == 0 ? "the offset table" : "the script before",
                                                ", but its offset is ", said, "."));
        const auto target = block_.start + said;
        if (!looks_like_header(target)) return;
        if (target > block_.end) {
            block_.end = target;
        } else if (i > 0 && target >= block_.scripts.back().offset + 8) {
            auto& before = block_.scripts.back();
            before.states = (target - before.offset - 8) / state_size;
            block_.end = target;
        }
    }

    bool read_script(std::size_t i) {
        const auto name = sentence("script ", i + 1);
        const auto at = block_.end;
        if (at + 8 > limit_) {
            cut_off(at, sentence("the header of ", name));
            return false;
        }
        judge_header(at, name);
        const std::size_t count = file_[at] + file_[at + 1] * 256U;
        Script script{at, std::min({count, most_states, (limit_ - at - 8) / state_size}),
                      file_[at + 7]};
        block_.scripts.push_back(script);
        block_.end = script.end();
        if (count > most_states || script.states == count) return true;
        cut_off(at, sentence("the ", count, " states of ", name));
        return false;
    }

    void judge_header(std::size_t at, const std::string& name) {
        const auto count = file_[at] + file_[at + 1] * 256U;
        if (count > most_states)
            findings_.inconsistency(at,
                                    sentence(name, " has ", count, " states; at most 256 fit."));
        for (std::size_t i = 2; i < 7; ++i)
            if (file_[at + i] != 0)
                findings_.inconsistency(at + i,
                                        sentence("byte ", i, " in the header of ", name, " is ",
                                                 unsigned{file_[at + i]}, ", not 0."));
        if (file_[at + 7] > 1)
            findings_.inconsistency(at + 7,
                                    sentence("the flag of ", name, " is ", unsigned{file_[at + 7]},
                                             ", neither 0 nor 1."));
    }

    Bytes file_;
    std::size_t limit_;
    Findings& findings_;
    Script_Block block_;
};

} // namespace

Script_Block read_script_block(Bytes file, std::size_t start, std::size_t length,
                               Findings& findings) {
    if (length == 0 || start >= file.size()) {
        findings.inconsistency(start,
                               "a script block has no bytes; at least one says how many scripts.");
        Script_Block nothing;
        nothing.start = nothing.end = start;
        return nothing;
    }
    return Block_Reader(file, start, start + std::min(length, file.size() - start), findings)
        .read();
}

void judge_commands(Bytes file, const Script& script, Findings& findings) {
    for (std::size_t i = 0; i < script.states; ++i) {
        const auto at = script.offset + 8 + i * state_size;
        if (file[at] > 33)
            findings.warning(
                at, sentence("state ", i, " has the unknown command ", unsigned{file[at]}, "."));
    }
}

} // namespace vqx_dump
