#include "options.h"

#include <algorithm>
#include <charconv>
#include <iomanip>
#include <ostream>

namespace decoder_sim {

namespace {

using std::chrono::milliseconds;

int number_in(std::string_view text, int lowest, int highest) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < lowest ||
        number > highest)
        throw Unusable("'" + std::string(text) + "' is not a number from " +
                       std::to_string(lowest) + " to " + std::to_string(highest));
    return number;
}

Ordered_Trouble ordered(const std::string& text) {
    if (const auto trouble = parsed_trouble(text)) return *trouble;
    throw Unusable("'" + text + "' is not in the list of troubles");
}

int size_in(const std::string& text) {
    const int size = number_in(text, 256, last_cv);
    if (size == 256 || size >= 1023) return size;
    throw Unusable("a decoder has 256, 1023 or 1024 CVs");
}

void choose_interface(Settings& settings, const std::string& text) {
    if (text != "both" && text != "track" && text != "susi")
        throw Unusable("an interface is 'track', 'susi' or 'both', not '" + text + "'");
    settings.knows_basu = text != "susi";
    settings.knows_susi = text != "track";
}

struct Option_Row {
    std::string_view name;
    std::string_view argument; ///< empty: none
    std::string_view meaning;
    void (*take)(Options&, const std::string&);
};

/// The type of decoder comes first wherever it stands: what others say of it is finer.
constexpr std::string_view type_option = "--decoder";

const Option_Row option_rows[] = {
    {type_option, "CODE", "type code of the decoder, 0 to 255 (201)",
     [](Options& o, const std::string& text) {
         o.settings.decoder = usual_traits(number_in(text, 0, 255));
     }},
    {"--size", "N", "highest CV: 256, 1023 or 1024",
     [](Options& o, const std::string& text) { o.settings.decoder.size = size_in(text); }},
    {"--protocol", "N", "protocol version, or 'none': it does not answer the question",
     [](Options& o, const std::string& text) {
         auto& protocol = o.settings.decoder.protocol;
         protocol = text == "none" ? std::nullopt : std::optional(number_in(text, 0, 255));
     }},
    {"--capacity", "CLASS", "of CV sets: 0 none, 1 to 7; above it only says so",
     [](Options& o, const std::string& text) {
         o.settings.decoder.capacity_class = number_in(text, 0, 255);
     }},
    {"--cv", "N=VALUE",
     "a CV as it shall be (8 manufacturer, 7.65 version, 250 to 253 serial number)",
     [](Options& o, const std::string& text) { o.cvs.push_back(parsed_cv(text)); }},
    {"--interface", "KIND", "'track' (BASU_EIN), 'susi' (SUSIV2) or 'both' (both)",
     [](Options& o, const std::string& text) { choose_interface(o.settings, text); }},
    {"--link", "PATH", "makes a symbolic link to the port, removed at the end",
     [](Options& o, const std::string& text) { o.settings.link = text; }},
    {"--name", "TEXT", "device name, written to PATH.name (KELDA Interface)",
     [](Options& o, const std::string& text) { o.settings.name = text; }},
    {"--delay", "MS", "the decoder's time for each answer (2)",
     [](Options& o, const std::string& text) {
         o.settings.answer_delay = milliseconds(number_in(text, 0, 100'000));
     }},
    {"--ok-delay", "MS", "the interface's time for its OK (10)",
     [](Options& o, const std::string& text) {
         o.settings.ok_delay = milliseconds(number_in(text, 0, 100'000));
     }},
    {"--trouble", "TEXT", "what goes wrong, see below",
     [](Options& o, const std::string& text) { o.troubles.push_back(ordered(text)); }},
    {"--bytes", "", "prints the bytes of both directions, too",
     [](Options& o, const std::string&) { o.show_bytes = true; }},
    {"--quiet", "", "prints nothing", [](Options& o, const std::string&) { o.quiet = true; }},
    {"--until-end-of-input", "", "ends with standard input",
     [](Options& o, const std::string&) { o.end_with_input = true; }},
    {"--help", "", "prints this", [](Options& o, const std::string&) { o.help = true; }},
};

using Chosen = std::vector<std::pair<const Option_Row*, std::string>>;

Chosen chosen(std::span<char*> arguments) {
    Chosen all;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view name = arguments[i];
        const auto* row = std::ranges::find(option_rows, name, &Option_Row::name);
        if (row == std::end(option_rows))
            throw Unusable("there is no option '" + std::string(name) + "'; --help lists them");
        const bool takes = !row->argument.empty();
        if (takes && ++i == arguments.size())
            throw Unusable(std::string(name) + " needs " + std::string(row->argument));
        all.emplace_back(row, takes ? arguments[i] : "");
    }
    return all;
}

void print_row(std::ostream& out, std::string_view name, std::string_view argument,
               std::string_view meaning) {
    constexpr int width = 24;
    out << "  " << std::left << std::setw(width)
        << std::string(name) + (argument.empty() ? "" : " " + std::string(argument)) << meaning
        << '\n';
}

} // namespace

std::pair<int, int> parsed_cv(const std::string& text) {
    const std::size_t between = text.find_first_of("= ");
    if (between == std::string::npos) throw Unusable("'" + text + "' is not NUMBER=VALUE");
    const std::string_view all = text;
    return {number_in(all.substr(0, between), 1, last_cv),
            number_in(all.substr(between + 1), 0, 255)};
}

Options parsed_options(std::span<char*> arguments) {
    Options options;
    options.settings.name = "KELDA Interface";
    const Chosen all = chosen(arguments);
    for (const bool of_type : {true, false})
        for (const auto& [row, text] : all)
            if ((row->name == type_option) == of_type) row->take(options, text);
    return options;
}

void print_help(std::ostream& out) {
    out << "usage: decoder_sim [OPTION...]\n"
           "A programming interface with a decoder behind it, on a pseudo-terminal. Prints the "
           "path\n"
           "of its port and what happens; a line beginning with FAULT tells what the program at "
           "the\n"
           "other end did against the protocol. Runs until Ctrl+C.\n\n";
    for (const Option_Row& row : option_rows) print_row(out, row.name, row.argument, row.meaning);
    out << "\nDecoders (any other code does what is usual in its family):\n";
    for (const Example& row : examples) print_row(out, std::to_string(row.type_code), "", row.what);
    out << "\nTroubles, as --trouble TEXT or one a line on standard input:\n";
    for (const Trouble_Row& row : trouble_rows) print_row(out, row.name, row.argument, row.meaning);
    out << "\nOn standard input also: 'cv N VALUE' and 'quit'.\n"
           "Exit status: 0, 1 when there was a fault, 2 when it could not start.\n";
}

} // namespace decoder_sim
