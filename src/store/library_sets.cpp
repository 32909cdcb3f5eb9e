#include "store/library_sets.h"

#include "store/collection.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

std::vector<QString> set_columns() { return {u"SetID"_s, u"Name"_s, u"Nummer"_s, u"ResCV"_s}; }

QString all_sets() { return u"SELECT * FROM Sets"_s; }

QString one_set(std::int32_t id) {
    return u"SELECT * FROM Sets WHERE SetID = "_s + QString::number(id);
}

struct Entry {
    std::int32_t id = 0;
    QString text;
};

/// The list of one view, and what rows lack.
struct Listing {
    std::vector<Entry> entries;
    std::vector<Set_Row> repairs; ///< with only the missing fields set
    int in_no_view = 0;
    Running_Number numbers;

    /// Every row gets its reset CV, also those of the other view; only the rows shown get numbers
    /// and count for the running number.
    void visit(const Set_Row& row, std::int16_t view) {
        Set_Row repair{row.SetID, {}, std::nullopt, std::nullopt};
        if (!row.ResCV) repair.ResCV = 8;
        const std::int32_t res_cv = row.ResCV.value_or(8);
        if (res_cv != 8 && res_cv != 265) ++in_no_view;
        if (res_cv == view) {
            const std::int32_t number = numbers.visit(row.Nummer);
            if (!row.Nummer) repair.Nummer = number;
            entries.push_back(
                {row.SetID.value_or(0), QString::number(number) + u" - "_s + row.Name});
        }
        if (repair.SetID && (repair.ResCV || repair.Nummer)) repairs.push_back(repair);
    }
};

} // namespace

std::int32_t Running_Number::visit(const std::optional<std::int32_t>& stored) {
    const std::int32_t number = stored.value_or(next_);
    next_ = number < std::numeric_limits<std::int32_t>::max() ? number + 1 : number;
    return number;
}

Set_Row Library_Sets::row_of(ado::Recordset& rows) {
    Set_Row row{rows.number(u"SetID"), rows.text(u"Name").value_or(QString()),
                rows.number(u"Nummer"), rows.number(u"ResCV")};
    if (completed_.empty() || !row.SetID) return row;
    if (const auto found = completed_.find(*row.SetID); found != completed_.end()) {
        if (!row.Nummer) row.Nummer = found->second.Nummer;
        if (!row.ResCV) row.ResCV = found->second.ResCV;
    }
    return row;
}

void Library_Sets::store_repair(const Set_Row& repair) {
    ado::Recordset row = file_.rows(one_set(*repair.SetID), set_columns());
    if (row.at_end()) return;
    if (repair.ResCV) row.set(u"ResCV"_s, ado::value(*repair.ResCV));
    if (repair.Nummer) row.set(u"Nummer"_s, ado::value(*repair.Nummer));
    row.update();
}

void Library_Sets::complete(const Set_Row& repair) {
    Set_Row& row = completed_[*repair.SetID];
    if (repair.ResCV) row.ResCV = repair.ResCV;
    if (repair.Nummer) row.Nummer = repair.Nummer;
}

void Library_Sets::visit(const std::function<void(const Set_Row&)>& visit) {
    for (ado::Recordset rows = file_.rows(all_sets(), set_columns()); !rows.at_end();
         rows.move_next())
        visit(row_of(rows));
}

void Library_Sets::fill(List_Filler& list, std::int16_t ResCV) {
    Listing listing;
    const auto walk = [&] {
        listing = {};
        visit([&](const Set_Row& row) { listing.visit(row, ResCV); });
    };
    operation_.reading(ado::Extent::some, walk);
    if (!listing.repairs.empty() && file_.blocked() == Blocked::no) {
        const Listing found = listing;
        const bool stored = operation_.changing([&] {
            operation_.is_upkeep();
            walk(); // another copy may have been here in between
            for (const Set_Row& repair : listing.repairs) store_repair(repair);
        });
        if (!stored) listing = found;
    } else {
        for (const Set_Row& repair : listing.repairs) complete(repair);
    }
    in_no_view_ = listing.in_no_view;
    list.clear();
    for (const Entry& entry : listing.entries) list.add(entry.text, entry.id);
}

std::int32_t Library_Sets::number(std::int32_t SetID) {
    std::int32_t number = 0;
    operation_.reading(ado::Extent::some, [&] {
        Running_Number numbers;
        visit([&](const Set_Row& row) {
            const std::int32_t visited = numbers.visit(row.Nummer);
            if (row.SetID == SetID) number = visited;
        });
    });
    return number;
}

std::optional<Set_Row> Library_Sets::find(std::int32_t SetID) {
    std::optional<Set_Row> found;
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset rows = file_.rows(one_set(SetID), set_columns());
        if (!rows.at_end()) found = row_of(rows);
    });
    return found;
}

int Library_Sets::count() {
    int count = 0;
    operation_.reading(ado::Extent::some,
                       [&] { count = file_.rows(all_sets(), {u"SetID"_s}).record_count(); });
    return count;
}

std::int16_t Library_Sets::free_number(std::int16_t ResCV) {
    std::int64_t candidate = ResCV == 8 ? 10 : 1;
    const auto pass = [&](const std::optional<std::int32_t>& number) {
        if (number && *number >= candidate) candidate = std::int64_t{*number} + 1;
    };
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset rows = file_.rows(
            u"SELECT * FROM Sets WHERE ResCV = "_s + QString::number(ResCV), set_columns());
        for (; !rows.at_end(); rows.move_next()) pass(rows.number(u"Nummer"));
        if (!completed_.empty()) // reset CVs that are not in the file
            visit([&](const Set_Row& row) {
                if (row.ResCV == ResCV) pass(row.Nummer);
            });
    });
    return to_16_bits(candidate);
}

std::int32_t Library_Sets::add(const QString& Name, std::int16_t& Nummer, Reset_Cv view) {
    std::int32_t id = 0;
    const bool done = operation_.changing([&] {
        if (Nummer == 0) Nummer = free_number(view.number);
        ado::Recordset row = file_.rows(all_sets());
        row.add_new();
        row.set(u"Name"_s, ado::value(Name));
        row.set(u"Nummer"_s, ado::value(Nummer));
        row.set(u"ResCV"_s, ado::value(view.number));
        row.update();
        id = row.number(u"SetID").value_or(0);
    });
    return done ? id : 0;
}

bool Library_Sets::rename(std::int32_t SetID, const QString& Name, std::int16_t Nummer) {
    return operation_.changing_set(SetID, [&] {
        ado::Recordset row = file_.rows(one_set(SetID));
        if (row.at_end()) throw gone(u"Sets"_s, SetID);
        row.set(u"Name"_s, ado::value(Name));
        if (Nummer > 0) row.set(u"Nummer"_s, ado::value(Nummer));
        row.update();
    });
}

bool Library_Sets::is_gone(std::int32_t SetID) {
    bool gone = false;
    operation_.reading(ado::Extent::some,
                       [&] { gone = file_.rows(one_set(SetID), {u"SetID"_s}).at_end(); });
    return gone;
}

void Library_Sets::refuse_if_referred(std::int32_t SetID) {
    file_.catalog().refuse_if_referred(u"Sets"_s, u"SetID"_s, SetID, {u"CVs"_s, u"Scripte"_s});
}

void Library_Sets::erase(std::int32_t SetID) { file_.erase_rows(one_set(SetID)); }

} // namespace store
