#include "store/clipboard_texts.h"

#include "app/one_line.h"

#include <QStringList>
#include <QUrl>
#include <limits>
#include <optional>

namespace store {

namespace {

void add_line(QString& text, const QString& key, const QString& value) {
    text += key + u',' + value + QStringLiteral("\r\n");
}

void add_cv(QString& text, const CVRec& cv) {
    add_line(text, QStringLiteral("CVPageHi"), QString::number(cv.CVPageHi));
    add_line(text, QStringLiteral("CVPageLo"), QString::number(cv.CVPageLo));
    add_line(text, QStringLiteral("CVNr"), QString::number(cv.CVNr));
    add_line(text, QStringLiteral("CVWert"), QString::number(cv.CVWert));
    add_line(text, QStringLiteral("Obj"), QStringLiteral("CV"));
}

/// Lines whatever program wrote them; what stands behind a zero character is no text any more.
QStringList lines_of(const QString& text) {
    QString content = text.left(text.indexOf(QChar(u'\0')));
    content.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    content.replace(u'\r', u'\n');
    return content.split(u'\n');
}

std::optional<int> number_within(const QString& field, int lowest, int highest) {
    const QString digits = field.trimmed();
    if (digits.isEmpty()) return std::nullopt;
    for (const QChar c : digits)
        if (c < u'0' || c > u'9') return std::nullopt;
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (!fits || number < lowest || number > highest) return std::nullopt;
    return number;
}

constexpr int largest = std::numeric_limits<std::int16_t>::max();

/// Reads the lines of an object text. The working values pass from object to object.
class Object_Reader {
public:
    Object_Reader(bool with_sets, Names names) : with_sets_(with_sets), names_(names) {}

    Pasted read(const QStringList& lines) {
        for (const QString& line : lines) {
            const QStringList fields = line.split(u',');
            if (fields.size() == 2) take(fields[0], fields[1]);
            if (result_.ended_at_set) break;
        }
        return std::move(result_);
    }

private:
    void take(const QString& key, const QString& value) {
        if (key == u"CVPageHi")
            put(cv_.CVPageHi, value, 0, 255);
        else if (key == u"CVPageLo")
            put(cv_.CVPageLo, value, 0, 255);
        else if (key == u"CVNr")
            put(cv_.CVNr, value, 1, largest);
        else if (key == u"CVWert")
            put(cv_.CVWert, value, 0, 255);
        else if (key == u"Obj" && value == u"CV")
            end_cv();
        else if (with_sets_)
            take_set(key, value);
    }

    void take_set(const QString& key, const QString& value) {
        if (key == u"SetName")
            set_.name = names_ == Names::plain ? value : QUrl::fromPercentEncoding(value.toUtf8());
        else if (key == u"SetNr")
            put(set_.number, value, 0, largest);
        else if (key == u"Obj" && value == u"Set")
            end_set();
    }

    template <class Field>
    void put(Field& field, const QString& value, int lowest, int highest) {
        const std::optional<int> number = number_within(value, lowest, highest);
        if (number) {
            field = static_cast<Field>(*number);
        } else {
            ++result_.lines_skipped;
            spoiled_ = true;
        }
    }

    void end_cv() {
        if (spoiled_ || cv_.CVNr < 1) // no number yet: nothing says which CV is meant
            ++result_.objects_left_out;
        else
            result_.objects.emplace_back(cv_);
        spoiled_ = false;
    }

    void end_set() {
        if (spoiled_) {
            ++result_.objects_left_out;
            result_.ended_at_set = true; // its CVs must not end up in another set
        } else {
            result_.objects.emplace_back(set_);
        }
    }

    bool with_sets_;
    Names names_;
    CVRec cv_;
    Pasted_Set set_;
    bool spoiled_ = false;
    Pasted result_;
};

/// In a line that holds several of them the comma wins, then the semicolon.
QChar separator_of(const QString& first_line) {
    for (const QChar separator : {u',', u';', u'\t'})
        if (first_line.contains(separator)) return separator;
    return {};
}

Pasted read_bare_list(const QStringList& lines) {
    Pasted result;
    const QChar separator = separator_of(lines.front());
    if (separator.isNull()) return result;
    for (const QString& line : lines) {
        const QStringList fields = line.split(separator);
        if (fields.size() != 2) continue;
        const auto number = number_within(fields[0], 1, largest);
        const auto value = number_within(fields[1], 0, 255);
        if (number && value) {
            result.objects.emplace_back(CVRec{.CVPageHi = 0,
                                              .CVPageLo = 1,
                                              .CVNr = static_cast<std::int16_t>(*number),
                                              .CVWert = static_cast<std::int16_t>(*value)});
        } else {
            ++result.lines_skipped;
            ++result.objects_left_out;
        }
    }
    return result;
}

bool has_values(const QStringList& lines) {
    for (const QString& line : lines)
        if (line.startsWith(u"CVWert,") && line.count(u',') == 1) return true;
    return false;
}

} // namespace

QString cvs_text(const std::vector<CVRec>& cvs) {
    QString text;
    for (const CVRec& cv : cvs) add_cv(text, cv);
    return text;
}

QString set_text(const cls_CV_Set& set, Names names) {
    QString text;
    const QString name = names == Names::plain
                             ? app::in_one_line(set.Name)
                             : QString::fromLatin1(QUrl::toPercentEncoding(set.Name, " "));
    add_line(text, QStringLiteral("SetName"), name);
    add_line(text, QStringLiteral("SetNr"), QString::number(set.Nummer));
    add_line(text, QStringLiteral("Obj"), QStringLiteral("Set"));
    for (const auto& page : set)
        for (const auto& cv : *page)
            add_cv(text, {.CVPageHi = page->PageHi(),
                          .CVPageLo = page->PageLo(),
                          .CVNr = cv->CVNr,
                          .CVWert = cv->Wert});
    return text;
}

QString listing_text(const cls_CV_Set& set) {
    constexpr int last_fixed_page = 3;
    const QString line_end = QStringLiteral("\r\n");
    QString text = QStringLiteral("Set-Name: ") + app::in_one_line(set.Name) + line_end +
                   QStringLiteral("Set-Nummer: ") + QString::number(set.Nummer) + line_end;
    for (const auto& page : set) {
        if (page->PageNr > last_fixed_page)
            text += QStringLiteral("CV-Page: CV31 = %1, CV32 = %2")
                        .arg(page->PageHi())
                        .arg(page->PageLo()) +
                    line_end;
        for (const auto& cv : *page)
            text += QStringLiteral("CV %1 = %2").arg(cv->CVNr).arg(cv->Wert) + line_end;
    }
    return text;
}

Pasted parse_cvs(const QString& text) {
    const QStringList lines = lines_of(text);
    if (!has_values(lines)) return read_bare_list(lines);
    return Object_Reader(false, Names::plain).read(lines);
}

Pasted parse_sets(const QString& text, Names names) {
    return Object_Reader(true, names).read(lines_of(text));
}

} // namespace store
