#pragma once

#include "decoder.h"
#include "journal.h"
#include "troubles.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace decoder_sim {

struct Settings {
    Traits decoder = usual_traits(201);
    bool knows_basu = true;       ///< answers BASU_EIN: the programming track
    bool knows_susi = true;       ///< answers SUSIV2
    std::filesystem::path link{}; ///< to the port; empty: none
    std::string name{};           ///< of the device, in a file beside the link; empty: none
    std::chrono::milliseconds answer_delay{2};
    std::chrono::milliseconds ok_delay{10};
    /// What the host's waits are judged by; they are told in ticks of 10 ms. The timing of
    /// calibration and preamble is the track's and does not follow it.
    std::chrono::milliseconds tick{10};
    /// Called in the simulator's thread for everything that happens.
    std::function<void(const Entry&)> listener{};
};

/// A programming interface with a decoder behind it, on a pseudo-terminal, in a thread of its own.
/// All calls may come from any thread.
class Simulator {
public:
    /// @throws std::system_error, std::filesystem::filesystem_error
    explicit Simulator(Settings settings);
    ~Simulator();

    /// Path of the device to open; another one after each plugging in, empty while unplugged.
    std::string port() const;
    /// From now on, or to the number-th event from now on. Plugs are pulled when it returns.
    void trouble(Trouble trouble, int number = 1);

    std::vector<Fault> faults() const;
    std::vector<Entry> log() const;
    /// What the host has sent since a moment.
    Bytes sent_since(Time moment) const;

    int cv(int number) const; ///< @param number 1..1024 on page 0:1, else std::out_of_range
    void put_cv(int number, int value);
    std::vector<Set_Cv> loaded_set() const; ///< in the order of loading, also half a set
    bool set_open() const;                  ///< started and not ended

private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

} // namespace decoder_sim
