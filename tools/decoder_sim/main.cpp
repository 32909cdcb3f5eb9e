// decoder_sim: a programming interface with a decoder, to try the program without hardware.

#include "options.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <poll.h>
#include <unistd.h>

namespace {

using namespace decoder_sim;

std::array<int, 2> end_pipe{};

extern "C" void end_asked(int) {
    [[maybe_unused]] const ssize_t count = ::write(end_pipe[1], "", 1);
}

void catch_end_signals() {
    if (::pipe(end_pipe.data()) != 0) throw Unusable("no pipe");
    struct sigaction action {};
    action.sa_handler = end_asked;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // whoever read our sentences may go before us
}

void print(const Entry& entry, bool show_bytes, Time start) {
    const double seconds = std::chrono::duration<double>(entry.at - start).count();
    switch (entry.kind) {
    case Entry::Kind::note:
        std::printf("%s\n", entry.text.c_str());
        break;
    case Entry::Kind::fault:
        std::printf("FAULT at %.3f s: %s\n", seconds, entry.text.c_str());
        break;
    default:
        if (!show_bytes) return;
        std::printf("%.4f s %s %s\n", seconds,
                    entry.kind == Entry::Kind::from_host ? "from the host:" : "to the host:",
                    hex(entry.bytes).c_str());
    }
    std::fflush(stdout);
}

/// @return false: end
bool obey(Simulator& simulator, const std::string& line) {
    if (line == "quit") return false;
    if (line.empty()) return true;
    if (line.starts_with("cv ")) {
        const auto [cv, value] = parsed_cv(line.substr(3));
        simulator.put_cv(cv, value);
    } else if (const auto trouble = parsed_trouble(line)) {
        simulator.trouble(trouble->trouble, trouble->number);
    } else {
        throw Unusable("'" + line + "' is not understood; --help lists the troubles");
    }
    return true;
}

/// Obeys all lines that are complete. @return false: end
bool obey_lines(Simulator& simulator, std::string& text) {
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
        const std::string line = text.substr(0, end);
        text.erase(0, end + 1);
        try {
            if (!obey(simulator, line)) return false;
        } catch (const Unusable& error) {
            std::cerr << "decoder_sim: " << error.what() << '\n';
        }
    }
    return true;
}

void run_until_end(Simulator& simulator, bool end_with_input) {
    std::string text;
    std::array<pollfd, 2> watched{{{end_pipe[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    for (;;) {
        if (::poll(watched.data(), watched.size(), -1) < 0) continue;
        if (watched[0].revents != 0) return;
        if (watched[1].revents == 0) continue;
        std::array<char, 512> some{};
        const ssize_t count = ::read(STDIN_FILENO, some.data(), some.size());
        if (count <= 0) {
            if (end_with_input) return;
            watched[1].fd = -1;
            continue;
        }
        text.append(some.data(), static_cast<std::size_t>(count));
        if (!obey_lines(simulator, text)) return;
    }
}

int run(Options options) {
    const Time start = Clock::now();
    if (!options.quiet)
        options.settings.listener = [start, bytes = options.show_bytes](const Entry& entry) {
            print(entry, bytes, start);
        };
    catch_end_signals();
    Simulator simulator(options.settings);
    for (const auto& [cv, value] : options.cvs) simulator.put_cv(cv, value);
    for (const auto& [trouble, number] : options.troubles) simulator.trouble(trouble, number);
    if (!options.quiet) {
        std::printf("port %s\n", simulator.port().c_str());
        std::fflush(stdout);
    }
    run_until_end(simulator, options.end_with_input);
    return simulator.faults().empty() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    try {
        const Options options =
            parsed_options(std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
        if (options.help) {
            print_help(std::cout);
            return 0;
        }
        return run(options);
    } catch (const std::exception& error) {
        std::cerr << "decoder_sim: " << error.what() << '\n';
        return 2;
    }
}
