#pragma once

#include "store/clsDBConn.h"

#include <QObject>
#include <functional>
#include <optional>

namespace ui_main {

class Main_Form;
class Status_Line;

/// What the CV panel asks of the window around it.
class Cv_Panel_Owner {
public:
    virtual ~Cv_Panel_Owner() = default;
    /// Refills the CV list of a set, 0 for the current one, with its count.
    virtual void Show_CVs(std::int32_t SetID) = 0;
    virtual void say(const QString& sentence) = 0;
    /// Says what kept the database from the last operation, if anything did. @return whether so
    virtual bool say_trouble() = 0;
    /// Takes the selected set out of view if it has been deleted elsewhere, and says so. @return
    /// whether so
    virtual bool leave_gone_set() = 0;
    virtual Status_Line& status_line() = 0;
};

/// Entering, walking and deleting CVs with the keyboard, in the list and the four fields.
class Cv_Panel final : public QObject {
    Q_OBJECT
public:
    Cv_Panel(Main_Form& form, store::clsDBConn& database, Cv_Panel_Owner& owner);

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
    Cv_Panel_Owner& owner_;
};

} // namespace ui_main
