#include "store/library_cvs.h"

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

void Library_Cvs::fill(cls_CV_Set& set) {
    set.Clear();
    set.CVs_Left_Out = 0;
    ado::Recordset rows = file_.rows(cvs_in_order(set.SetID), cv_columns());
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

int Library_Cvs::fill(List_Filler& list, std::int32_t SetID) {
    int count = 0;
    std::vector<std::pair<QString, std::int32_t>> entries;
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset rows = file_.rows(cvs_in_order(SetID), cv_columns());
        count = rows.record_count();
        for (CV_Fields cv(rows); !rows.at_end(); rows.move_next())
            entries.emplace_back(entry_text(cv), cv.id());
    });
    list.clear();
    for (const auto& [text, id] : entries) list.add(text, id);
    return count;
}

bool Library_Cvs::erase(std::int32_t CVID) {
    return operation_.changing([&] {
        ado::Recordset row = file_.rows(one_cv(CVID));
        if (row.at_end()) throw gone(u"CVs"_s, CVID);
        row.erase();
    });
}

void Library_Cvs::erase_all(std::int32_t SetID) {
    file_.erase_rows(u"SELECT * FROM CVs WHERE SetID = "_s + QString::number(SetID));
}

/// A set that another copy has deleted would leave its CVs to nobody.
void Library_Cvs::expect_set(std::int32_t SetID) {
    if (operation_.set_there == SetID) return;
    const QString set = u"SELECT * FROM Sets WHERE SetID = "_s + QString::number(SetID);
    if (file_.rows(set, {u"SetID"_s}).at_end()) throw gone(u"Sets"_s, SetID);
    operation_.set_there = SetID;
}

bool Library_Cvs::write(std::int32_t SetID, CVRec& rec) {
    if (file_.active() && SetID != 0 && !is_paged(rec.CVNr)) {
        rec.CVPageHi = 0;
        rec.CVPageLo = 1;
    }
    return operation_.changing_set(SetID, [&] {
        ado::Recordset row = file_.rows(cv_in_place(SetID, rec));
        const bool is_new = row.at_end();
        if (!is_new && row.number(u"CVWert") == rec.CVWert) {
            rec.CVID = row.number(u"CVID").value_or(0);
            return;
        }
        if (is_new) {
            expect_set(SetID);
            row.add_new();
            row.set(u"SetID"_s, ado::value(SetID));
            row.set(u"CVPageHi"_s, ado::value(rec.CVPageHi));
            row.set(u"CVPageLo"_s, ado::value(rec.CVPageLo));
            row.set(u"CVNr"_s, ado::value(rec.CVNr));
        }
        row.set(u"CVWert"_s, ado::value(rec.CVWert));
        row.update();
        rec.CVID = row.number(u"CVID").value_or(0);
    });
}

bool Library_Cvs::find(std::int32_t SetID, CVRec& rec) {
    bool found = false;
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset row = file_.rows(cv_in_place(SetID, rec), cv_columns());
        if (row.at_end()) return;
        const CVRec stored = CV_Fields(row).record();
        rec.CVWert = stored.CVWert;
        rec.CVID = stored.CVID;
        found = true;
    });
    return found;
}

CVRec Library_Cvs::get(std::int32_t CVID) {
    CVRec found;
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset row = file_.rows(one_cv(CVID), cv_columns());
        if (!row.at_end()) found = CV_Fields(row).record();
    });
    return found;
}

std::size_t Library_Cvs::open(std::int32_t SetID) {
    close();
    std::vector<CVRec> found;
    operation_.reading(ado::Extent::some, [&] {
        ado::Recordset rows = file_.rows(cvs_in_order(SetID), cv_columns());
        for (CV_Fields cv(rows); !rows.at_end(); rows.move_next()) found.push_back(cv.record());
    });
    picture_ = std::move(found);
    return picture_.size();
}

CVRec Library_Cvs::next() {
    if (next_ >= picture_.size()) return {};
    CVRec rec = picture_[next_++];
    rec.LastRecord = next_ == picture_.size();
    return rec;
}

void Library_Cvs::close() {
    picture_.clear();
    next_ = 0;
}

} // namespace store
