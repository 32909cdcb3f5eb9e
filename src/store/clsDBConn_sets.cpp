// Operations on the table Sets, and the whole library as a model.

#include "store/clsDBConn_inside.h"

#include <functional>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

QString all_sets() { return u"SELECT * FROM Sets"_s; }

QString one_set(std::int32_t id) {
    return u"SELECT * FROM Sets WHERE SetID = "_s + QString::number(id);
}

/// Numbers for sets that have none, in the order in which rows are visited.
class Running_Number {
public:
    /// The row's number, or the running one where it has none. The next row continues from it, so
    /// the running number may also fall.
    std::int32_t visit(const std::optional<std::int32_t>& stored) {
        const std::int32_t number = stored.value_or(next_);
        next_ = number < std::numeric_limits<std::int32_t>::max() ? number + 1 : number;
        return number;
    }

private:
    std::int32_t next_ = 10;
};

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

std::vector<QString> set_columns() { return {u"SetID"_s, u"Name"_s, u"Nummer"_s, u"ResCV"_s}; }

Set_Row clsDBConn::Inside::set_row(ado::Recordset& rows) {
    Set_Row row{rows.number(u"SetID"), rows.text(u"Name").value_or(QString()),
                rows.number(u"Nummer"), rows.number(u"ResCV")};
    if (completed.empty() || !row.SetID) return row;
    if (const auto found = completed.find(*row.SetID); found != completed.end()) {
        if (!row.Nummer) row.Nummer = found->second.Nummer;
        if (!row.ResCV) row.ResCV = found->second.ResCV;
    }
    return row;
}

void clsDBConn::Inside::store_repair(const Set_Row& repair) {
    ado::Recordset& row = query(one_set(*repair.SetID), set_columns());
    if (row.at_end()) return;
    if (repair.ResCV) row.set(u"ResCV"_s, ado::value(*repair.ResCV));
    if (repair.Nummer) row.set(u"Nummer"_s, ado::value(*repair.Nummer));
    row.update();
}

void clsDBConn::Inside::complete(const Set_Row& repair) {
    Set_Row& row = completed[*repair.SetID];
    if (repair.ResCV) row.ResCV = repair.ResCV;
    if (repair.Nummer) row.Nummer = repair.Nummer;
}

void clsDBConn::Inside::visit_sets(const std::function<void(const Set_Row&)>& visit) {
    ado::Recordset& rows = query(all_sets(), set_columns());
    for (; !rows.at_end(); rows.move_next()) visit(set_row(rows));
}

void clsDBConn::Fill_Sets_in_Listbox(List_Filler& list, std::int16_t ResCV) {
    Inside& inside = *inside_;
    if (!inside.active) return;
    Listing listing;
    const auto walk = [&] {
        listing = {};
        inside.visit_sets([&](const Set_Row& row) { listing.visit(row, ResCV); });
    };
    inside.reading(ado::Extent::some, walk);
    if (!listing.repairs.empty() && inside.blocked() == Blocked::no) {
        const Listing found = listing;
        const bool stored = inside.changing([&] {
            inside.record.upkeep = inside.depth == 1;
            walk(); // another copy may have been here in between
            for (const Set_Row& repair : listing.repairs) inside.store_repair(repair);
        });
        if (!stored) listing = found;
    } else {
        for (const Set_Row& repair : listing.repairs) inside.complete(repair);
    }
    inside.sets_in_no_view = listing.in_no_view;
    list.clear();
    for (const Entry& entry : listing.entries) list.add(entry.text, entry.id);
}

void clsDBConn::Fill_Sets_in_SetObj(cls_Sets_Coll& sets) {
    Inside& inside = *inside_;
    if (!inside.active) return;
    sets.Clear();
    sets.CVs_Left_Out = 0;
    inside.reading(ado::Extent::whole, [&] {
        Running_Number numbers;
        inside.visit_sets([&](const Set_Row& row) {
            const std::int32_t number = numbers.visit(row.Nummer);
            if (!row.SetID || sets.contains(QString::number(*row.SetID))) return;
            sets.Add_CVSet(row.Name, to_16_bits(row.ResCV.value_or(8)), to_16_bits(number),
                           *row.SetID);
        });
        for (const auto& set : sets) {
            inside.fill_cvs(*set);
            sets.CVs_Left_Out += set->CVs_Left_Out;
        }
        inside.recordset.close(); // it would keep the table that was held in memory
    });
}

std::int16_t clsDBConn::Get_Set_Nummer(std::int32_t SetID) {
    Inside& inside = *inside_;
    if (!inside.active) return 0;
    inside.make_current(SetID);
    std::int16_t number = 0;
    inside.reading(ado::Extent::some, [&] {
        Running_Number numbers;
        inside.visit_sets([&](const Set_Row& row) {
            const std::int32_t visited = numbers.visit(row.Nummer);
            if (row.SetID == inside.akt_set) number = to_16_bits(visited);
        });
    });
    return number;
}

std::optional<Set_Row> clsDBConn::Inside::find_set(std::int32_t id) {
    std::optional<Set_Row> found;
    reading(ado::Extent::some, [&] {
        ado::Recordset& rows = query(one_set(id), set_columns());
        if (!rows.at_end()) found = set_row(rows);
    });
    return found;
}

std::int16_t clsDBConn::Get_Set_Nummer2(std::int32_t SetID) {
    if (!inside_->active) return 0;
    inside_->make_current(SetID);
    const auto found = inside_->find_set(inside_->akt_set);
    return found ? to_16_bits(found->Nummer.value_or(0)) : std::int16_t{0};
}

QString clsDBConn::Get_Set_Name(std::int32_t SetID) {
    if (!inside_->active) return {};
    inside_->make_current(SetID);
    const auto found = inside_->find_set(inside_->akt_set);
    return found ? found->Name : QString();
}

std::int16_t clsDBConn::reset_cv(std::int32_t SetID) {
    const auto found = inside_->find_set(SetID);
    return found ? to_16_bits(found->ResCV.value_or(8)) : std::int16_t{0};
}

std::int16_t clsDBConn::Get_Anz_CVSets() {
    int count = 0;
    inside_->reading(ado::Extent::some,
                     [&] { count = inside_->query(all_sets(), {u"SetID"_s}).record_count(); });
    return to_16_bits(count);
}

std::int16_t clsDBConn::DB_Get_Free_SetNr(std::int16_t ResCV) {
    Inside& inside = *inside_;
    if (!inside.active) return 0;
    std::int64_t candidate = ResCV == 8 ? 10 : 1;
    const auto pass = [&](const std::optional<std::int32_t>& number) {
        if (number && *number >= candidate) candidate = std::int64_t{*number} + 1;
    };
    inside.reading(ado::Extent::some, [&] {
        ado::Recordset& rows = inside.query(
            u"SELECT * FROM Sets WHERE ResCV = "_s + QString::number(ResCV), set_columns());
        for (; !rows.at_end(); rows.move_next()) pass(rows.number(u"Nummer"));
        if (!inside.completed.empty()) // reset CVs that are not in the file
            inside.visit_sets([&](const Set_Row& row) {
                if (row.ResCV == ResCV) pass(row.Nummer);
            });
    });
    return to_16_bits(candidate);
}

std::int32_t clsDBConn::DB_Add_CVSet(const QString& Name, std::int16_t& Nummer,
                                     std::int16_t ResCV) {
    Inside& inside = *inside_;
    std::int32_t id = 0;
    const bool done = inside.changing([&] {
        if (Nummer == 0) Nummer = DB_Get_Free_SetNr(ResCV);
        ado::Recordset& row = inside.query(all_sets());
        row.add_new();
        row.set(u"Name"_s, ado::value(Name));
        row.set(u"Nummer"_s, ado::value(Nummer));
        row.set(u"ResCV"_s, ado::value(ResCV));
        row.update();
        id = row.number(u"SetID").value_or(0);
    });
    return done ? id : 0;
}

bool clsDBConn::DB_Rename_CVSet(const QString& Name, std::int16_t Nummer) {
    Inside& inside = *inside_;
    return inside.changing_current_set([&] {
        ado::Recordset& row = inside.query(one_set(inside.akt_set));
        if (row.at_end()) throw inside.gone(u"Sets"_s, inside.akt_set);
        row.set(u"Name"_s, ado::value(Name));
        if (Nummer > 0) row.set(u"Nummer"_s, ado::value(Nummer));
        row.update();
    });
}

bool clsDBConn::set_gone(std::int32_t SetID) {
    bool gone = false;
    inside_->reading(ado::Extent::some,
                     [&] { gone = inside_->query(one_set(SetID), {u"SetID"_s}).at_end(); });
    return gone;
}

void clsDBConn::Inside::refuse_if_referred(std::int32_t set_id) {
    catalog.refuse_if_referred(u"Sets"_s, u"SetID"_s, set_id, {u"CVs"_s, u"Scripte"_s});
}

bool clsDBConn::DB_Del_CVSet(std::int32_t SetID) {
    Inside& inside = *inside_;
    const bool done = inside.changing([&] {
        const std::size_t before = inside.record.rows.size();
        inside.refuse_if_referred(SetID);
        inside.whole([&] {
            inside.delete_scripts_of(SetID);
            inside.delete_rows(u"SELECT * FROM CVs WHERE SetID = "_s + QString::number(SetID));
            inside.delete_rows(one_set(SetID));
        });
        if (inside.record.rows.size() == before) throw inside.gone(u"Sets"_s, SetID);
    });
    if (done) inside.akt_set = 0;
    return done;
}

} // namespace store
