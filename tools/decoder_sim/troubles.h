#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace decoder_sim {

/// What can be made to go wrong while the simulator runs. Those with a number N hit the N-th such
/// event from now on, once; several may wait.
enum class Trouble {
    no_answer,
    answer,
    no_ok,
    ok,
    noise_before_ok,
    late,
    wrong_answer,
    refuse_write,
    ignore_write,
    lose_answer,
    double_answer,
    change_answer,
    lose_byte,
    double_byte,
    change_byte,
    noise,
    no_noise,
    decoder_off,
    decoder_on,
    unplug,
    plug
};

struct Trouble_Row {
    Trouble trouble;
    std::string_view name;
    std::string_view argument; ///< "", "N" or "MS"
    std::string_view meaning;
};
extern const std::array<Trouble_Row, 21> trouble_rows;

struct Ordered_Trouble {
    Trouble trouble;
    int number;
};
/// @param text "lose-answer 3"; nothing where it is no such order
std::optional<Ordered_Trouble> parsed_trouble(const std::string& text);

/// What is to go wrong with bytes and answers, and counts until it does. Plugs and the decoder's
/// place on the track are the simulator's.
class Troubles {
public:
    void order(Trouble trouble, int number);

    bool answers_silent() const { return silent_; }
    bool ok_silent() const { return no_ok_; }
    bool noise_before_ok() const { return noise_before_ok_; }
    bool noise_always() const { return noise_; }
    int late_ms() const { return late_ms_; }
    /// Called once at each event that the trouble counts: is it this one?
    bool hits(Trouble trouble);

private:
    bool silent_ = false, no_ok_ = false, noise_before_ok_ = false, noise_ = false;
    int late_ms_ = 0;
    std::map<Trouble, std::vector<int>> waiting_;
};

} // namespace decoder_sim
