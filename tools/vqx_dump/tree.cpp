#include "project.h"

#include <array>

namespace vqx_dump {

namespace {

constexpr std::array command_names = {"-",
                                      "Start sound",
                                      "Stop sound",
                                      "Wait for end of sound",
                                      "Query function key",
                                      "Query parameter",
                                      "Go to state",
                                      "Control loco",
                                      "Thyristor sample (selection)",
                                      "Wait for end of thyristor sample",
                                      "Thyristor pitch",
                                      "I2C command",
                                      "Load timer",
                                      "Set diesel step",
                                      "Suppress brake squeal",
                                      "Switch output on",
                                      "Set event",
                                      "EMotor sample",
                                      "Wait for end of E-Motor sample",
                                      "Take over diesel sequence",
                                      "Set effect",
                                      "Query reed input",
                                      "Query event",
                                      "Query variable",
                                      "Set variable",
                                      "Change variable/event",
                                      "Generate random value",
                                      "Set parameter",
                                      "Set PWM group",
                                      "Set volume (just QR)",
                                      "Set CV (just QR)",
                                      "Set CV bit (just QR)",
                                      "Read CV (just QR)",
                                      "Read CV Bit (just QR)"};
static_assert(command_names.size() == 34);

constexpr std::size_t cvs_on_a_line = 8;

class Tree {
public:
    Tree(Bytes file, const Project& project) : file_(file), project_(project) {}

    std::string text() {
        line(0, 0, project_.oem ? "oem" : "user", " project file, format ", project_.format,
             ", body of ", project_.body_length, " bytes");
        if (project_.oem) address_map("main map", project_.main_map);
        address_map("directory", project_.directory);
        line(project_.dcc.start, 0, "CV sets: ", project_.dcc.sets.size());
        for (const auto& set : project_.dcc.sets) cv_set(set);
        if (project_.scripts) scripts(*project_.scripts);
        return std::move(out_).str();
    }

private:
    template <typename... Parts>
    void line(std::size_t offset, int depth, const Parts&... parts) {
        out_ << hex(offset) << "  " << std::string(static_cast<std::size_t>(depth) * 2, ' ')
             << sentence(parts...) << '\n';
    }

    void address_map(const char* name, const Address_Map& map) {
        line(map.start, 0, name);
        for (const auto& entry : map.entries)
            line(entry.offset, 1, identifier_text(entry.identifier), " = ", entry.address.value);
    }

    void cv_set(const Cv_Set& set) {
        line(set.offset, 1, "reset CV ", set.reset_cv, ", number ", set.number, ": ",
             set.pages.size(), set.pages.size() == 1 ? " page" : " pages");
        for (const auto& page : set.pages) {
            line(page.cvs, 2, "page ", page.high, ":", page.low, ", ", page.size / 2,
                 page.size / 2 == 1 ? " CV" : " CVs");
            for (std::size_t at = 0; at + 1 < page.size; at += 2 * cvs_on_a_line) cvs(page, at);
        }
    }

    void cvs(const Cv_Page& page, std::size_t from) {
        std::string text;
        for (auto at = from; at + 1 < page.size && at < from + 2 * cvs_on_a_line; at += 2) {
            const auto* pair = &file_[page.cvs + at];
            text +=
                sentence(at == from ? "" : ", ", "CV", first_cv(page) + pair[0], " = ", +pair[1]);
        }
        line(page.cvs + from, 3, text);
    }

    /// Pages 0:0, 0:2 and 0:3 are those of the CVs that have no page; all others show CVs 257 to
    /// 512.
    static unsigned first_cv(const Cv_Page& page) {
        if (page.high != 0) return 257;
        switch (page.low) {
        case 0:
            return 1;
        case 2:
            return 513;
        case 3:
            return 769;
        default:
            return 257;
        }
    }

    void scripts(const Script_Map& map) {
        line(map.start, 0, "script map: ", map.entries.size());
        for (const auto& entry : map.entries)
            line(entry.offset, 1, "set number ", entry.number, ": block at ", entry.address.value,
                 ", ", entry.length, " bytes");
        for (const auto& block : project_.blocks) {
            line(block.start, 0, "scripts of set number ", block.number, ": ",
                 block.scripts.size());
            for (std::size_t i = 0; i < block.scripts.size(); ++i) script(i + 1, block.scripts[i]);
        }
    }

    void script(std::size_t place, const Script& script) {
        line(script.offset, 1, "script ", place, ": ", script.states,
             script.states == 1 ? " state" : " states", ", flag ", script.flag);
        for (std::size_t i = 0; i < script.states; ++i) {
            const auto state = file_.subspan(script.offset + 8 + i * state_size, state_size);
            std::string text = sentence(i, ": ", +state[0], " ");
            text += state[0] < command_names.size() ? command_names[state[0]] : "(unknown command)";
            for (std::size_t par = 1; par < state_size; ++par)
                text += sentence(par == 1 ? " (" : ", ", +state[par]);
            line(script.offset + 8 + i * state_size, 2, text, ")");
        }
    }

    Bytes file_;
    const Project& project_;
    std::ostringstream out_;
};

} // namespace

std::string project_tree(Bytes file, const Project& project) { return Tree(file, project).text(); }

std::string findings_text(const Findings& findings) {
    const auto some = [](std::size_t count, const char* one, const char* several) {
        return sentence(count, " ", count == 1 ? one : several);
    };
    std::ostringstream out;
    out << (findings.inconsistencies() == 0
                ? "consistent"
                : some(findings.inconsistencies(), "inconsistency", "inconsistencies"));
    if (findings.warnings() > 0) out << ", " << some(findings.warnings(), "warning", "warnings");
    out << '\n';
    for (const auto& finding : findings.kept())
        out << hex(finding.offset) << ": "
            << (finding.severity == Severity::warning ? "warning: " : "") << finding.sentence
            << '\n';
    const auto all = findings.inconsistencies() + findings.warnings();
    if (all > findings.kept().size()) out << "and " << all - findings.kept().size() << " more\n";
    return std::move(out).str();
}

} // namespace vqx_dump
