#include "platform/ado/value.h"

#include <cmath>
#include <limits>

namespace ado {

namespace {

std::optional<std::int32_t> whole(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    const double rounded = std::nearbyint(number); // half to even, as Jet converts
    if (!(rounded >= Limits::min() && rounded <= Limits::max())) return std::nullopt;
    return static_cast<std::int32_t>(rounded);
}

double amount(const jet::Decimal& decimal) {
    double magnitude = 0;
    for (const std::uint32_t word : decimal.magnitude) magnitude = magnitude * 4294967296.0 + word;
    return (decimal.negative ? -magnitude : magnitude) / std::pow(10.0, decimal.scale);
}

struct As_Number {
    std::optional<std::int32_t> operator()(bool flag) const { return flag ? -1 : 0; }
    std::optional<std::int32_t> operator()(std::int32_t number) const { return number; }
    std::optional<std::int32_t> operator()(double number) const { return whole(number); }
    std::optional<std::int32_t> operator()(const jet::Currency& money) const {
        return whole(static_cast<double>(money.ten_thousandths) / 10000.0);
    }
    std::optional<std::int32_t> operator()(const jet::Decimal& decimal) const {
        return whole(amount(decimal));
    }
    std::optional<std::int32_t> operator()(const std::u16string& text) const {
        bool valid = false;
        const double number = QStringView(text).trimmed().toDouble(&valid);
        return valid ? whole(number) : std::nullopt;
    }
    template <class Other>
    std::optional<std::int32_t> operator()(const Other&) const {
        return std::nullopt;
    }
};

struct As_Text {
    std::optional<QString> operator()(const std::u16string& text) const {
        return QStringView(text).toString(); // fromStdU16String takes U+FEFF for a mark
    }
    std::optional<QString> operator()(std::int32_t number) const { return QString::number(number); }
    std::optional<QString> operator()(double number) const { return QString::number(number); }
    template <class Other>
    std::optional<QString> operator()(const Other&) const {
        return std::nullopt;
    }
};

} // namespace

std::optional<std::int32_t> number(const Value& value) { return std::visit(As_Number{}, value); }

std::optional<QString> text(const Value& value) { return std::visit(As_Text{}, value); }

std::int32_t number_in(const Row& row, QAnyStringView column) {
    for (const auto& [name, value] : row)
        if (QAnyStringView::compare(name, column, Qt::CaseInsensitive) == 0)
            return number(value).value_or(0);
    return 0;
}

} // namespace ado
