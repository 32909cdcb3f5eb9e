// Operations on the table CVs.

#include "store/clsDBConn_inside.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

QString cvs_in_order(std::int32_t set_id) {
    return u"SELECT * FROM CVs WHERE SetID = "_s + QString::number(set_id) +
           u" ORDER BY CVPageHi, CVPageLo, CVNr"_s;
}

QString one_cv(std::int32_t cv_id) {
    return u"SELECT * FROM CVs WHERE CVID = "_s + QString::number(cv_id);
}

QString cv_in_place(std::int32_t set_id, const CVRec& rec) {
    return u"SELECT * FROM CVs WHERE SetID = "_s + QString::number(set_id) + u" AND CVPageHi = "_s +
           QString::number(rec.CVPageHi) + u" AND CVPageLo = "_s + QString::number(rec.CVPageLo) +
           u" AND CVNr = "_s + QString::number(rec.CVNr);
}

std::vector<QString> cv_columns() {
    return {u"CVID"_s, u"CVPageHi"_s, u"CVPageLo"_s, u"CVNr"_s, u"CVWert"_s};
}

constexpr bool is_byte(std::int32_t number) { return number >= 0 && number <= 255; }

/// The fields of CVs, found once for many rows; null reads as 0.
class CV_Fields {
public:
    explicit CV_Fields(ado::Recordset& rows)
        : rows_(rows), hi_(rows.field(u"CVPageHi")), lo_(rows.field(u"CVPageLo")),
          nr_(rows.field(u"CVNr")), wert_(rows.field(u"CVWert")), id_(rows.field(u"CVID")) {}

    std::int32_t hi() { return number(hi_); }
    std::int32_t lo() { return number(lo_); }
    std::int32_t nr() { return number(nr_); }
    std::int32_t wert() { return number(wert_); }
    std::int32_t id() { return number(id_); }

    /// Numbers beyond the record's fields become the nearest that fit.
    CVRec record() {
        return {.CVPageHi = static_cast<std::uint8_t>(std::clamp(hi(), 0, 255)),
                .CVPageLo = static_cast<std::uint8_t>(std::clamp(lo(), 0, 255)),
                .CVNr = to_16_bits(nr()),
                .CVWert = to_16_bits(wert()),
                .CVID = id()};
    }

private:
    std::int32_t number(ado::Recordset::Field field) { return rows_.number_or_0(field); }

    ado::Recordset& rows_;
    ado::Recordset::Field hi_, lo_, nr_, wert_, id_;
};

/// Numbers of up to four digits stand under each other: a digit is as wide as two blanks.
QString entry_text(CV_Fields& cv) {
    const QString number = QString::number(cv.nr());
    QString text;
    if (cv.lo() > 3 || cv.hi() > 0) text = u"Page %1:%2 "_s.arg(cv.hi()).arg(cv.lo());
    text += u"CV#"_s + QString(2 * std::max<qsizetype>(0, 4 - number.size()), u' ');
    return text + number + u" = "_s + QString::number(cv.wert());
}

} // namespace

void clsDBConn::Inside::fill_cvs(cls_CV_Set& set) {
    set.Clear();
    set.CVs_Left_Out = 0;
    ado::Recordset& rows = query(cvs_in_order(set.SetID), cv_columns());
    for (CV_Fields cv(rows); !rows.at_end(); rows.move_next()) {
        const std::int32_t number = cv.nr();
        if (is_byte(cv.hi()) && is_byte(cv.lo()) && is_byte(cv.wert()) &&
            number == to_16_bits(number))
            set.Add_CV(cv.hi() * 256 + cv.lo(), to_16_bits(number),
                       static_cast<std::uint8_t>(cv.wert()));
        else
            ++set.CVs_Left_Out;
    }
}

std::vector<CVRec> clsDBConn::Inside::cvs_of(std::int32_t set_id) {
    std::vector<CVRec> found;
    reading(ado::Extent::some, [&] {
        ado::Recordset& rows = query(cvs_in_order(set_id), cv_columns());
        for (CV_Fields cv(rows); !rows.at_end(); rows.move_next()) found.push_back(cv.record());
    });
    return found;
}

void clsDBConn::Inside::delete_rows(const QString& sql) {
    for (ado::Recordset& rows = query(sql); !rows.at_end(); rows.move_next()) rows.erase();
}

std::int16_t clsDBConn::Fill_CVs_in_Listbox(List_Filler& list, std::int32_t SetID) {
    Inside& inside = *inside_;
    if (!inside.active) return 0;
    inside.make_current(SetID);
    int count = 0;
    std::vector<std::pair<QString, std::int32_t>> entries;
    inside.reading(ado::Extent::some, [&] {
        ado::Recordset& rows = inside.query(cvs_in_order(inside.akt_set), cv_columns());
        count = rows.record_count();
        for (CV_Fields cv(rows); !rows.at_end(); rows.move_next())
            entries.emplace_back(entry_text(cv), cv.id());
    });
    list.clear();
    for (const auto& [text, id] : entries) list.add(text, id);
    return to_16_bits(count);
}

bool clsDBConn::DB_Del_CVWert(std::int32_t CVID) {
    Inside& inside = *inside_;
    return inside.changing([&] {
        ado::Recordset& row = inside.query(one_cv(CVID));
        if (row.at_end()) throw inside.gone(u"CVs"_s, CVID);
        row.erase();
    });
}

bool clsDBConn::DB_Write_CV(CVRec& rec) {
    Inside& inside = *inside_;
    if (inside.active && inside.akt_set != 0 && !is_paged(rec.CVNr)) {
        rec.CVPageHi = 0;
        rec.CVPageLo = 1;
    }
    return inside.changing_current_set([&] {
        ado::Recordset& row = inside.query(cv_in_place(inside.akt_set, rec));
        const bool is_new = row.at_end();
        if (!is_new && row.number(u"CVWert") == rec.CVWert) {
            rec.CVID = row.number(u"CVID").value_or(0);
            return;
        }
        if (is_new) {
            // a set that another copy has deleted would leave its CVs to nobody
            if (inside.set_there != inside.akt_set) {
                if (!inside.find_set(inside.akt_set)) throw inside.gone(u"Sets"_s, inside.akt_set);
                inside.set_there = inside.akt_set;
                inside.query(cv_in_place(inside.akt_set, rec)); // looked elsewhere meanwhile
            }
            row.add_new();
            row.set(u"SetID"_s, ado::value(inside.akt_set));
            row.set(u"CVPageHi"_s, ado::value(rec.CVPageHi));
            row.set(u"CVPageLo"_s, ado::value(rec.CVPageLo));
            row.set(u"CVNr"_s, ado::value(rec.CVNr));
        }
        row.set(u"CVWert"_s, ado::value(rec.CVWert));
        row.update();
        rec.CVID = row.number(u"CVID").value_or(0);
    });
}

bool clsDBConn::DB_Find_CV(CVRec& rec) {
    Inside& inside = *inside_;
    bool found = false;
    inside.reading(ado::Extent::some, [&] {
        ado::Recordset& row = inside.query(cv_in_place(inside.akt_set, rec), cv_columns());
        if (row.at_end()) return;
        const CVRec stored = CV_Fields(row).record();
        rec.CVWert = stored.CVWert;
        rec.CVID = stored.CVID;
        found = true;
    });
    return found;
}

CVRec clsDBConn::DB_Get_CV(std::int32_t CVID) {
    CVRec found;
    inside_->reading(ado::Extent::some, [&] {
        ado::Recordset& row = inside_->query(one_cv(CVID), cv_columns());
        if (!row.at_end()) found = CV_Fields(row).record();
    });
    return found;
}

std::int16_t clsDBConn::DB_Open_CVs(std::int32_t SetID) {
    DB_Close_CVs();
    inside_->picture = inside_->cvs_of(SetID);
    return to_16_bits(static_cast<std::int64_t>(inside_->picture.size()));
}

CVRec clsDBConn::DB_Next_CV() {
    Inside& inside = *inside_;
    if (inside.next_in_picture >= inside.picture.size()) return {};
    CVRec rec = inside.picture[inside.next_in_picture++];
    rec.LastRecord = inside.next_in_picture == inside.picture.size();
    return rec;
}

void clsDBConn::DB_Close_CVs() {
    inside_->picture.clear();
    inside_->next_in_picture = 0;
}

} // namespace store
