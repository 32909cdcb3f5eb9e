#include "app/text_records.h"

#include <cmath>

namespace app {

namespace {

constexpr qsizetype longest_text = 255;

bool ends_line(QChar c) { return c == u'\r' || c == u'\n'; }
bool is_blank(QChar c) { return c == u' ' || c == u'\t'; }

} // namespace

void Record_Reader::advance(qsizetype count) {
    for (qsizetype i = 0; i < count; ++i) {
        const bool in_pair = rest_[i] == u'\r' && rest_.mid(i + 1).startsWith(u'\n');
        if (ends_line(rest_[i]) && !in_pair) ++line_;
    }
    rest_ = rest_.mid(count);
}

void Record_Reader::skip_separator() {
    at_record_start_ = !rest_.startsWith(u',');
    if (!rest_.isEmpty()) advance(rest_.startsWith(u"\r\n") ? 2 : 1);
}

QStringView Record_Reader::skip_rest_of_record() {
    const QStringView whole = rest_;
    QStringView passed;
    while (!at_record_start_) {
        const bool readable = text().has_value();
        passed = whole.first(whole.size() - rest_.size());
        if (!readable)
            at_record_start_ = true; // no end to be found: what follows is another record
    }
    while (!passed.isEmpty() && ends_line(passed.back())) passed.chop(1);
    return passed;
}

std::optional<QString> Record_Reader::quoted() {
    QString value;
    advance(1);
    while (!rest_.isEmpty()) {
        const QChar c = rest_.front();
        if (c == u'"') {
            advance(1);
            if (!rest_.startsWith(u'"')) return value;
        } else if (text_end_ == Text_End::line && ends_line(c)) {
            return value;
        }
        value += c;
        advance(1);
        if (text_end_ == Text_End::quote && value.size() > longest_text) return std::nullopt;
    }
    if (text_end_ == Text_End::line) return value;
    return std::nullopt;
}

std::optional<QString> Record_Reader::text() {
    while (!rest_.isEmpty() && is_blank(rest_.front())) advance(1);
    std::optional<QString> value;
    const bool in_quotes = rest_.startsWith(u'"');
    if (in_quotes) {
        value = quoted();
        if (!value) return value;
    }
    qsizetype end = 0; // what stands behind a closing quote belongs to no field
    while (end < rest_.size() && rest_[end] != u',' && !ends_line(rest_[end])) ++end;
    if (in_quotes && !rest_.first(end).trimmed().isEmpty()) ++texts_cut_short_;
    if (!in_quotes) value = rest_.first(end).toString().trimmed();
    advance(end);
    skip_separator();
    return value;
}

std::optional<std::int32_t> Record_Reader::number(std::int32_t lowest, std::int32_t highest) {
    const std::optional<QString> field = text();
    if (!field) return std::nullopt;
    bool is_number = false;
    const double value = std::nearbyint(field->toDouble(&is_number));
    if (!is_number || !(value >= lowest && value <= highest)) return std::nullopt;
    return static_cast<std::int32_t>(value);
}

std::optional<bool> Record_Reader::boolean() {
    const std::optional<QString> field = text();
    if (field == QStringView(u"#TRUE#")) return true;
    if (field == QStringView(u"#FALSE#")) return false;
    return std::nullopt;
}

void Record_Writer::separate() {
    if (in_record_) written_ += u',';
    in_record_ = true;
}

Record_Writer& Record_Writer::text(QStringView value) {
    separate();
    written_ += u'"';
    written_ += value.toString().replace(u'"', QStringLiteral("\"\""));
    written_ += u'"';
    return *this;
}

Record_Writer& Record_Writer::number(std::int64_t value) {
    separate();
    written_ += QString::number(value);
    return *this;
}

Record_Writer& Record_Writer::boolean(bool value) {
    separate();
    written_ += value ? QStringLiteral("#TRUE#") : QStringLiteral("#FALSE#");
    return *this;
}

void Record_Writer::end_record() {
    written_ += QStringLiteral("\r\n");
    in_record_ = false;
}

} // namespace app
