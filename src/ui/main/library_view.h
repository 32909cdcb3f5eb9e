#pragma once

#include "app/leaving_gate.h"
#include "store/clsDBConn.h"
#include "ui/main/messages.h"

#include <QObject>

namespace ui_main {

class Main_Form;
enum class Text;

/// What the window shows of the open library: the sets of one reset CV, and the CVs and scripts of
/// the selected set.
///
/// The state "no set is current" (AktCVSetID 0, no CVs, no scripts) goes with "nothing is selected
/// in the set list".
class Library_View final : public QObject {
    Q_OBJECT
public:
    Library_View(Main_Form& form, store::clsDBConn& database, Messages& messages,
                 app::Leaving_Gate& gate);

    /// Fills everything anew and shows the first set.
    void Refresh_Sets();
    /// Fills the set list anew and shows the first set.
    void refill_with_first();
    /// Fills the set list anew and shows the set, or its neighbour. @return whether it is there
    bool refill_sets(std::int32_t SetID);
    /// The same in the view that shows the set.
    void show_set(std::int32_t SetID);
    /// Refills the CV list of a set, 0 for the current one, with its count, and what else is shown of
    /// CVs.
    void Show_CVs(std::int32_t SetID);
    void Redraw_Script_List();
    void show_active_scripts();
    void choose_decoder_family(int index); ///< 0 QR, 1 QD
    void Show_Page_Fields(bool visible);

    std::int32_t selected_set() const; ///< 0: none
    QString shown_set() const; ///< the selected entry of the set list, as sentences quote it

    /// Takes a set out of view that another copy of the program has deleted, and says so.
    /// @param shown as it was shown
    /// @return false: it is there
    bool leave_gone_set(std::int32_t SetID, const QString& shown);
    bool leave_gone_set(); ///< the selected one

    /// Fills the lists anew if somebody else has changed the library.
    void refill_if_changed();
    /// What is shown now agrees with the library.
    void note_state();

    /// Whether a damaged library shows no sets, which does not prove that it had none.
    bool sets_unreadable();
    /// Says what a command did, what loading has left out, and what was refused.
    void say_outcome(const QString& done);
    /// A sentence with what loading the scripts has left out.
    static QString with_left_out(const QString& sentence);

Q_SIGNALS:
    void refreshed(); ///< another library may be shown
    void family_chosen(int index);
    void scripts_shown(); ///< of the set, perhaps of another one
    void shown();         ///< a set, perhaps another one

private:
    void wire();
    void fill_sets();
    void fill_cvs(std::int32_t SetID);
    void select_set(std::int32_t SetID);
    void mark(std::int32_t SetID); ///< in the list, as selected; nothing more is shown
    void show_selected();
    void user_selected(); ///< another entry of the set list
    void leave_for_selected();
    void user_chose_view(int index);
    void user_chose_family(int index);
    void say_of_choice();
    void choose_reset_cv(int index);
    void say_set_gone(const QString& shown);
    void show_hints(); ///< to be called when a list was filled or its set has changed
    Text hint_for_sets();

    Main_Form& form_;
    store::clsDBConn& database_;
    Messages& messages_;
    app::Leaving_Gate& gate_;
    std::int32_t set_ = 0;          ///< whose CVs and scripts are shown
    std::uint64_t shown_state_ = 0; ///< of the library, when the lists were last compared with it
    int family_ = 0;                ///< 0 QR, 1 QD
    bool redrawing_scripts_ = false;
};

} // namespace ui_main
