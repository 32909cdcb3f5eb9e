#pragma once

#include "store/clsDBConn.h"

#include <QObject>
#include <functional>
#include <optional>

namespace ui_main {

class Main_Form;
class Library_View;
class Messages;

/// Entering, walking and deleting CVs with the keyboard, in the list and the four fields.
class Cv_Panel final : public QObject {
    Q_OBJECT
public:
    Cv_Panel(Main_Form& form, store::clsDBConn& database, Library_View& view, Messages& messages);

    /// Stores the CV of the fields and offers the next one.
    void Save_CV();
    /// Row of the CV list with this key; nothing when it is not shown.
    std::optional<int> Find_CV_Index(std::int32_t CVID) const;
    /// Loads the current row of the list into the fields, if it is selected.
    void load_selected();
    void delete_selected();
    /// Takes CVs out of view that have been deleted elsewhere, or their whole set, and says so.
    void leave_gone_cvs(int count);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void chosen();
    void go(int step);
    bool fields_in_range();
    store::CVRec record(int number) const;
    void store_record(store::CVRec record);
    void advance();

    Main_Form& form_;
    store::clsDBConn& database_;
    Library_View& view_;
    Messages& messages_;
};

} // namespace ui_main
