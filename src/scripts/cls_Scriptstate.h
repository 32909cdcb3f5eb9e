#pragma once

#include "scripts/catalogue/forms.h"

#include <QString>
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

    /// How many references to a script CV the command can have.
    int CVRefCount() const;
    /// The CV that reference 0 or 1 points to; 0 when there is a plain value. Of command 32 the CV
    /// that is read, in editor form; those of page 145 are 65536 times the page above their number.
    int GetCVRef(int which) const;
    /// The same with those that an import leaves where they are, of which CVRefCount knows nothing.
    int used_cv(int which) const;
    /// Makes a reference that points to a CV point to another one, 980..1019.
    void SetCVRef(int which, int cv);

    // The same line in another form; `vqx` is that of the decoder, `Listindex` that of the editor,
    // `vqr` that of script files.
    void Import_vqr_2_Listindex(const cls_Scriptstate& source);
    void Import_Listindex_2_vqr(const cls_Scriptstate& source);
    void Import_vqr_2_vqx(const cls_Scriptstate& source);
    void Import_vqr_2_vqr(const cls_Scriptstate& source);
    void Import_vqx_2_vqr(const cls_Scriptstate& source);
    void Import_vqx_2_Listindex(const cls_Scriptstate& source);
    void Import_Listindex_2_vqx(const cls_Scriptstate& source);

    // Columns of commands 1 and 4 in editor form, as entries of their lists. What is no entry
    // changes nothing.
    int volume() const;
    void choose_volume(int entry);
    int loop_mode() const;
    void choose_loop_mode(int entry); ///< the end stays
    int end_mode() const;
    void choose_end_mode(int entry); ///< the loop stays
    int key() const;
    void choose_key(int entry);

    bool operator==(const cls_Scriptstate&) const = default;

private:
    void import(const cls_Scriptstate& source, scripts_catalogue::Form from,
                scripts_catalogue::Form to);

    std::int32_t Command_ = 0;
    scripts_catalogue::Parameters Par_{};
};

} // namespace scripts
