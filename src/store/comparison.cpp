#include "store/comparison.h"

#include "app/one_line.h"

#include <map>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace store {
namespace {

using Place = std::tuple<std::int16_t, std::uint8_t, std::uint8_t>;
using Values = std::pair<std::optional<std::int16_t>, std::optional<std::int16_t>>;

/// The page of a CV that has none says nothing, whatever stands in its row.
Place place_of(const CVRec& cv) {
    if (!is_paged(cv.CVNr)) return {cv.CVNr, 0, 1};
    return {cv.CVNr, cv.CVPageHi, cv.CVPageLo};
}

QString cell(const std::optional<std::int16_t>& value) {
    return value ? QString::number(*value) : QString();
}

/// A name of several columns or lines would shift all others.
QString heading(const QString& name) { return app::in_one_line(name).replace(u'\t', u' '); }

} // namespace

Comparison compare(const std::vector<CVRec>& left, const std::vector<CVRec>& right) {
    std::map<Place, Values> found;
    for (const CVRec& cv : left) found[place_of(cv)].first = cv.CVWert;
    for (const CVRec& cv : right) found[place_of(cv)].second = cv.CVWert;
    Comparison result;
    for (const auto& [place, values] : found) {
        const auto& [number, hi, lo] = place;
        if (values.first == values.second)
            ++result.equal;
        else
            result.differences.push_back({hi, lo, number, values.first, values.second});
    }
    return result;
}

QString cv_name(const Difference& difference) {
    const QString number = QString::number(difference.CVNr);
    if (difference.CVPageHi == 0 && difference.CVPageLo == 1) return number;
    return u"%1 (CV31 = %2, CV32 = %3)"_s.arg(number)
        .arg(difference.CVPageHi)
        .arg(difference.CVPageLo);
}

QString comparison_text(const std::vector<Difference>& differences, const QString& left,
                        const QString& right) {
    QString text = u"CV\t"_s + heading(left) + u'\t' + heading(right) + u"\r\n"_s;
    for (const Difference& each : differences)
        text += cv_name(each) + u'\t' + cell(each.left) + u'\t' + cell(each.right) + u"\r\n"_s;
    return text;
}

} // namespace store
