#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

namespace app {

/// Reads the fields of a record file one after the other. Fields are separated by commas or line
/// ends (CR LF, LF or CR); a text may stand in double quotes, a quote inside it is doubled.
class Record_Reader {
public:
    /// Where an open quote ends.
    enum class Text_End {
        line,     ///< with its line
        quote,    ///< only at the closing quote, at most 255 characters on
        far_quote ///< only at the closing quote
    };
    Record_Reader(QStringView text, Text_End text_end) : rest_(text), text_end_(text_end) {}

    bool at_end() const { return rest_.isEmpty(); }
    /// Whether the next field begins a record: the last one ended with its line, or was the last of
    /// the file, or none was read yet. A comma at the end of a line is followed by an empty field.
    bool at_record_start() const { return at_record_start_; }
    /// Line of the next field in the file, counted from 1.
    int line() const { return line_; }
    /// Passes over what is left of the record: fields nobody knows, a comment, a record of a
    /// foreign section. Quotes count, so a text over several lines is passed as a whole.
    /// @return what was passed over, as it stands in the file without the line end; empty at the
    /// start of a record
    QStringView skip_rest_of_record();
    /// The next field without its quotes; nothing when it is no proper text (too long, or still
    /// open at the end of the file).
    std::optional<QString> text();
    /// How many texts had something behind their closing quote, which is lost: a quote within that
    /// was not doubled, or one that was missing.
    int texts_cut_short() const { return texts_cut_short_; }
    /// The next field; nothing when it is not a number within the bounds. A fraction is rounded.
    std::optional<std::int32_t> number(std::int32_t lowest, std::int32_t highest);
    /// The next field: #TRUE# or #FALSE#.
    std::optional<bool> boolean();

private:
    std::optional<QString> quoted();
    void skip_separator();
    void advance(qsizetype count); ///< counts lines on the way

    QStringView rest_;
    int line_ = 1;
    int texts_cut_short_ = 0;
    bool at_record_start_ = true;
    Text_End text_end_;
};

/// Writes records: fields separated by commas, each record ending with CR LF.
class Record_Writer {
public:
    Record_Writer& text(QStringView value);
    Record_Writer& number(std::int64_t value);
    Record_Writer& boolean(bool value);
    void end_record();
    const QString& written() const { return written_; }

private:
    void separate();

    QString written_;
    bool in_record_ = false;
};

} // namespace app
