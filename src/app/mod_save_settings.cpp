#include "app/mod_save_settings.h"

#include "app/code_page.h"
#include "app/mod_main.h"
#include "app/text_records.h"
#include "platform/files/replace.h"

#include <QByteArray>
#include <QStringConverter>
#include <algorithm>
#include <limits>
#include <span>
#include <variant>
#include <vector>

namespace app {

namespace {

/// Where a value of the settings file lives, which also says how it is read and written.
struct Number {
    std::int16_t* value;
    std::int32_t lowest;
    std::int32_t highest;
};
struct Text {
    QString* value;
};
struct Length {
    Twips* value;
};
struct Flag {
    bool* value;
};
/// Each record adds one path to LastFiles.
struct Recent_File {};

struct Setting {
    QStringView key;
    std::variant<Number, Text, Length, Flag, Recent_File> place;
    bool written = true;
};

constexpr std::int16_t file_version = 1;
constexpr int most_recent_files = 30;

/// All settings in the order in which they are written.
std::vector<Setting> settings(Window_Place& main_window, std::int16_t& version) {
    Window_Place& script = globals.Script_Window;
    static const Globals defaults;
    return {{u"Version", Number{&version, -32768, 32767}},
            {u"comport", Number{&globals.comport, 1, 64}},
            {u"StdSetdir", Text{&globals.StdSetdir}},
            {u"Database_Path", Text{&globals.Database_Path}},
            {u"Database_File", Text{&globals.Database_File}},
            {u"Main_Window_Height", Length{&main_window.height}},
            {u"Main_Window_Width", Length{&main_window.width}},
            {u"Main_Window_Left", Length{&main_window.left}},
            {u"Main_Window_Top", Length{&main_window.top}},
            {u"Script_Window_Height", Length{&script.height}},
            {u"Scriptwindow_Width", Length{&script.width}},
            {u"Scriptwindow_Left", Length{&script.left}},
            {u"Scriptwindow_Top", Length{&script.top}},
            {u"Scriptwindow_Max", Flag{&globals.Script_Window_Max}},
            {u"Script_Info_Off", Flag{&globals.Script_Info_Off}},
            {u"LastScriptdir", Text{&globals.LastScriptdir}},
            {u"Last_mdb_file", Recent_File{}},
            {u"Last_vqx_file", Recent_File{}, false},
            // of our own: readers that do not know them pass over them
            {u"Script_Info_Single_Line", Flag{&globals.Script_Info_Single_Line},
             globals.Script_Info_Single_Line != defaults.Script_Info_Single_Line},
            {u"Script_Info_Size", Number{&globals.Script_Info_Size, 0, 100},
             globals.Script_Info_Size != defaults.Script_Info_Size}};
}

struct Read_Value {
    Record_Reader& reader;
    void operator()(Number place) const {
        if (const auto value = reader.number(place.lowest, place.highest))
            *place.value = static_cast<std::int16_t>(*value);
    }
    void operator()(Text place) const {
        if (const auto value = reader.text()) *place.value = *value;
    }
    void operator()(Length place) const {
        constexpr int far_away = 10'000'000; // beyond any desktop, and safe to add up
        if (const auto value = reader.number(-far_away, far_away)) *place.value = Twips{*value};
    }
    void operator()(Flag place) const {
        if (const auto value = reader.boolean()) *place.value = *value;
    }
    void operator()(Recent_File /*place*/) const {
        if (const auto value = reader.text()) globals.LastFiles.append(*value);
    }
};

struct Write_Value {
    Record_Writer& writer;
    QStringView key;
    void operator()(Number place) const { writer.text(key).number(*place.value).end_record(); }
    void operator()(Text place) const { write(*place.value); }
    void operator()(Length place) const {
        writer.text(key).number(place.value->value).end_record();
    }
    void operator()(Flag place) const { writer.text(key).boolean(*place.value).end_record(); }
    void operator()(Recent_File /*place*/) const {
        const auto& all = globals.LastFiles;
        for (qsizetype i = std::max<qsizetype>(0, all.size() - most_recent_files); i < all.size();
             ++i)
            write(all[i]);
    }
    void write(const QString& value) const {
        // a text ends with its line, so a path with a line end in it would come back as another one
        if (value.contains(u'\n') || value.contains(u'\r')) return;
        writer.text(key).text(value).end_record();
    }
};

/// UTF-8 where it is valid, else the code page of older files.
QString decoded(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    if (!utf8.hasError()) return text;
    return from_code_page(bytes);
}

std::optional<QString> content(files::Disk& disk) {
    try {
        const std::vector<std::byte> bytes = files::read_file(disk, IniFile().toStdString());
        return decoded(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                  static_cast<qsizetype>(bytes.size())));
    } catch (const files::Error&) {
        return std::nullopt; // the file is optional
    }
}

} // namespace

QString IniFile() { return globals.UserDataDir + QStringLiteral("CVSets_Inits.ini"); }

void Load_Settings(files::Disk& disk, Window_Place& main_window) {
    const std::optional<QString> text = content(disk);
    if (!text) return;
    std::int16_t version = file_version;
    const std::vector<Setting> known = settings(main_window, version);
    Record_Reader reader(*text, Record_Reader::Text_End::line);
    while (!reader.at_end()) {
        const std::optional<QString> key = reader.text();
        // the value of an unknown key is read as the next key and matches nothing either
        const auto setting = std::find_if(known.begin(), known.end(),
                                          [&](const Setting& s) { return s.key == key; });
        if (setting != known.end()) std::visit(Read_Value{reader}, setting->place);
    }
}

std::optional<files::Error> Save_Settings(files::Disk& disk, const Window_Place& main_window) {
    Record_Writer writer;
    Window_Place place = main_window;
    std::int16_t version = file_version;
    for (const Setting& setting : settings(place, version))
        if (setting.written) std::visit(Write_Value{writer, setting.key}, setting.place);
    const QByteArray bytes = writer.written().toUtf8();
    try {
        files::replace_file(disk, IniFile().toStdString(), std::as_bytes(std::span(bytes)));
    } catch (const files::Error& error) {
        return error;
    }
    return std::nullopt;
}

} // namespace app
