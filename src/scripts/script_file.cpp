// Records in quotes, parted by commas (docs/formats/script_files.md).

#include "scripts/script_file.h"

#include "app/code_page.h"
#include "app/text_records.h"
#include "scripts/catalogue/commands.h"

#include <limits>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace scripts {
namespace {

const QByteArray utf8_mark = "\xEF\xBB\xBF";

class Section_Reader {
public:
    explicit Section_Reader(const QString& text)
        : records_(text, app::Record_Reader::Text_End::far_quote) {}

    Script_File read() {
        if (find_section()) {
            const int of_others = records_.texts_cut_short();
            read_section();
            file_.texts_cut_short = records_.texts_cut_short() - of_others;
        }
        return std::move(file_);
    }

private:
    /// The first field of the next record; nothing at the end, which may lie within a text.
    std::optional<QString> keyword() {
        records_.skip_rest_of_record();
        if (records_.at_end()) return std::nullopt;
        return records_.text();
    }

    /// Comments and sections of others are passed over.
    bool find_section() {
        bool foreign = false;
        while (const auto word = keyword()) {
            if (foreign)
                foreign = !word->startsWith(u'/');
            else if (word == u"Scripts"_s)
                return file_.has_section = true;
            else
                foreign = !word->startsWith(u';') && !word->isEmpty();
        }
        return false;
    }

    void read_section() {
        while (const auto word = keyword()) {
            if (word == u"/Scripts"_s) return take_script();
            if (word == u"Script"_s) {
                take_script();
                if (file_.scripts.size() == cls_script_coll::max_scripts) {
                    file_.too_many = true;
                    return;
                }
                script_ = std::make_shared<cls_script>();
            } else if (script_) {
                read_record(*word);
            }
        }
        if (script_) file_.broken_off.append(script_->ScriptName);
    }

    void take_script() {
        if (script_) file_.scripts.push_back(std::move(script_));
        script_ = nullptr;
        line_ = nullptr;
    }

    void read_record(const QString& word) {
        if (word == u"Name"_s) {
            script_->ScriptName = text();
        } else if (word == u"State"_s) {
            begin_line();
        } else if (line_ != nullptr) {
            if (word == u"Command"_s) line_->SetCommand(number());
            if (word == u"Info"_s) line_->Info = text();
            if (word == u"Parameter"_s) read_parameter();
        }
    }

    /// What follows a line that no script has belongs to nothing.
    void begin_line() {
        const std::int32_t place = number();
        const bool exists = place >= 0 && place < cls_script::max_states;
        line_ = exists ? &script_->GetState(place) : nullptr;
        if (exists)
            script_->StateCount = place + 1;
        else
            ++file_.places_skipped;
    }

    void read_parameter() {
        const std::int32_t place = number();
        const std::int32_t value = number();
        if (place >= 1 && place <= cls_Scriptstate::par_count)
            line_->SetPar(place - 1, value);
        else
            ++file_.places_skipped;
    }

    /// Fields that are missing are not looked for in the next record.
    QString text() {
        return records_.at_record_start() ? QString() : records_.text().value_or(QString());
    }

    std::int32_t number() {
        using Limits = std::numeric_limits<std::int32_t>;
        if (!records_.at_record_start())
            if (const auto found = records_.number(Limits::min(), Limits::max())) return *found;
        ++file_.numbers_lost;
        return 0;
    }

    app::Record_Reader records_;
    Script_File file_;
    std::shared_ptr<cls_script> script_;
    cls_Scriptstate* line_ = nullptr;
};

} // namespace

Script_File read_script_file(const QByteArray& bytes) {
    const QString text = bytes.startsWith(utf8_mark)
                             ? QString::fromUtf8(bytes.sliced(utf8_mark.size()))
                             : app::from_code_page(bytes);
    return Section_Reader(text).read();
}

namespace {

QString records_of(const cls_script& script) {
    app::Record_Writer records;
    const auto word = [&records](const char16_t* text) -> app::Record_Writer& {
        return records.text(QStringView(text));
    };
    word(u"Scripts").end_record();
    word(u"Script").text(u"1").end_record();
    word(u"Name").text(script.ScriptName).end_record();
    for (int place = 0; place < script.StateCount; ++place) {
        const cls_Scriptstate& line = script.GetState(place);
        word(u"State").number(place).end_record();
        word(u"Command").number(line.GetCommand()).end_record();
        for (int i = 0; i < scripts_catalogue::ParameterCount(line.GetCommand()); ++i)
            word(u"Parameter").number(i + 1).number(line.GetPar(i)).end_record();
        word(u"Info").text(line.Info).end_record();
    }
    word(u"/Scripts").end_record();
    return records.written();
}

} // namespace

QByteArray script_file_of(const cls_script& script, int& replaced) {
    return app::to_code_page(records_of(script), replaced);
}

QByteArray whole_script_file_of(const cls_script& script) {
    return utf8_mark + records_of(script).toUtf8();
}

} // namespace scripts
