#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace scripts {

/// One line of a script: a command, its parameters and a free comment.
///
/// Parameters are kept as they were given, even where they do not fit the byte that the decoder has
/// for them; whoever writes them out refuses them by name.
class cls_Scriptstate {
public:
    static constexpr int par_count = 7;        ///< indexes 0..6
    static constexpr int stored_par_count = 4; ///< 0..3 have a column in the database

    /// @throws Error (not_found) for an index outside 0..6
    std::int32_t GetPar(int index) const;
    void SetPar(int index, std::int32_t value);

    /// 0..33; 0 is the empty line "-".
    std::int32_t GetCommand() const { return Command_; }
    void SetCommand(std::int32_t code) { Command_ = code; }

    QString Info;

    /// Takes over command, comment and Par 0..4; 5 and 6 stay, they are never edited line by line.
    void CopyFrom(const cls_Scriptstate& other);

    bool operator==(const cls_Scriptstate&) const = default;

private:
    std::int32_t Command_ = 0;
    std::array<std::int32_t, par_count> Par_{};
};

} // namespace scripts
