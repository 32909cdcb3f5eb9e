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
        line, ///< with its line
        quote ///< only at the closing quote, at most 255 characters on
    };
    Record_Reader(QStringView text, Text_End text_end) : rest_(text), text_end_(text_end) {}

    bool at_end() const { return rest_.isEmpty(); }
    /// The next field without its quotes; nothing when it is no proper text (too long, or still
    /// open at the end of the file).
    std::optional<QString> text();
    /// The next field; nothing when it is not a number within the bounds. A fraction is rounded.
    std::optional<std::int32_t> number(std::int32_t lowest, std::int32_t highest);
    /// The next field: #TRUE# or #FALSE#.
    std::optional<bool> boolean();

private:
    std::optional<QString> quoted();
    void skip_separator();

    QStringView rest_;
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
