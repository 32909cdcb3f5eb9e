#include "app/code_page.h"
#include "app/mod_main.h"
#include "app/mod_save_settings.h"
#include "app/text_records.h"
#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"

#include <gmock/gmock.h>

using namespace app;

namespace {

constexpr Window_Place design{{8000}, {15945}, {100}, {200}};

struct Settings : testing::Test {
    void SetUp() override {
        reset_globals();
        if (!disk.folder_exists("/u")) disk.make_folder("/u");
        globals.UserDataDir = QStringLiteral("/u/");
        globals.Database_Path = QStringLiteral("/std/");
        globals.Database_File = QStringLiteral("CV-Sets.mdb");
    }
    void TearDown() override { reset_globals(); }

    void load(const QByteArray& bytes) {
        files::replace_file(disk, "/u/CVSets_Inits.ini", std::as_bytes(std::span(bytes)));
        Load_Settings(disk, place);
    }
    QByteArray saved() {
        EXPECT_FALSE(Save_Settings(disk, place));
        const auto bytes = files::read_file(disk, "/u/CVSets_Inits.ini");
        return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                          static_cast<qsizetype>(bytes.size()));
    }

    files::Memory_Disk disk;
    Window_Place place = design;
};

TEST_F(Settings, are_written_in_their_order_and_read_back) {
    globals.comport = 7;
    globals.StdSetdir = QString::fromUtf8("/home/Jörg \"Lok\"/Züge/");
    globals.Script_Window_Max = true;
    globals.Script_Info_Size = 40; // of our own: stands only where it is no default
    globals.LastFiles = {QStringLiteral("/a,b.mdb"), QString::fromUtf8("/日本.mdb")};
    const QByteArray bytes = saved();
    EXPECT_EQ(bytes,
              QByteArray("\"Version\",1\r\n\"comport\",7\r\n"
                         "\"StdSetdir\",\"/home/Jörg \"\"Lok\"\"/Züge/\"\r\n"
                         "\"Database_Path\",\"/std/\"\r\n\"Database_File\",\"CV-Sets.mdb\"\r\n"
                         "\"Main_Window_Height\",8000\r\n\"Main_Window_Width\",15945\r\n"
                         "\"Main_Window_Left\",100\r\n\"Main_Window_Top\",200\r\n"
                         "\"Script_Window_Height\",13665\r\n\"Scriptwindow_Width\",12285\r\n"
                         "\"Scriptwindow_Left\",8250\r\n\"Scriptwindow_Top\",2175\r\n"
                         "\"Scriptwindow_Max\",#TRUE#\r\n\"Script_Info_Off\",#FALSE#\r\n"
                         "\"LastScriptdir\",\"\"\r\n\"Last_mdb_file\",\"/a,b.mdb\"\r\n"
                         "\"Last_mdb_file\",\"/日本.mdb\"\r\n\"Script_Info_Size\",40\r\n"));
    reset_globals();
    globals.UserDataDir = QStringLiteral("/u/");
    place = {};
    Load_Settings(disk, place);
    EXPECT_EQ(place, design);
    EXPECT_EQ(saved(), bytes);
}

TEST_F(Settings, the_thirty_newest_files_are_written_and_old_project_paths_are_among_them) {
    load("\"Last_vqx_file\",\"b\"\r\n\"Last_mdb_file\",\"b\"\r\n");
    EXPECT_EQ(globals.LastFiles, QStringList(2, QStringLiteral("b"))); // doubles stay
    for (int i = 3; i <= 35; ++i) globals.LastFiles.append(QString::number(i));
    globals.LastFiles[10] = QStringLiteral("line\nend"); // would come back as another path
    const QByteArray bytes = saved();
    EXPECT_FALSE(bytes.contains("\"5\""));
    EXPECT_TRUE(bytes.contains("\"Last_mdb_file\",\"6\"\r\n"));
    EXPECT_TRUE(bytes.endsWith("\"Last_mdb_file\",\"35\"\r\n"));
    EXPECT_EQ(bytes.count("Last_"), 29);
}

TEST_F(Settings, a_hand_made_or_damaged_file_is_read_as_far_as_it_goes) {
    const struct {
        QByteArray bytes;
        int comport;
        const char* file;
    } cases[] = {
        {"\"comport\",5\n\"Database_File\",\"x.mdb\"\n", 5, "x.mdb"},
        {"\xEF\xBB\xBF\"comport\",5\r\n", 5, "CV-Sets.mdb"}, // a byte-order mark
        {"comport, 5\r\nDatabase_File, x.mdb \r\n", 5, "x.mdb"},
        {"\"Database_File\",\"Z\xFCge\x80.mdb\"\r\n", 1, "Züge€.mdb"}, // Windows-1252
        {"\"Farbe\",\"comport\",9\r\n\"Database_File\",\"x.mdb\"\r\n", 9, "x.mdb"},
        {"\"Comport\",9\r\n", 1, "CV-Sets.mdb"},
        {"\"comport\",drei\r\n\"Database_File\",\"x.mdb\"\r\n", 1, "x.mdb"},
        {"\"comport\",63.6\r\n", 64, "CV-Sets.mdb"},
        {"\"comport\",65\r\n", 1, "CV-Sets.mdb"},
        {"\"comport\",0\r\n", 1, "CV-Sets.mdb"},
        {"\"comport\",1e300\r\n\"Database_File\",\"x.mdb\"", 1, "x.mdb"},
        {"\"Database_File\",\"x.mdb\r\n\"comport\",5\r\n", 5,
         "x.mdb"}, // a quote ends with its line
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.toStdString());
        SetUp();
        load(c.bytes);
        EXPECT_EQ(globals.comport, c.comport);
        EXPECT_EQ(globals.Database_File, QString::fromUtf8(c.file));
    }
}

TEST_F(Settings, every_cut_and_every_changed_byte_leaves_a_program_that_starts) {
    globals.LastFiles = {QStringLiteral("/a.mdb")};
    const QByteArray whole = saved();
    for (qsizetype at = 0; at < whole.size(); ++at) {
        load(whole.left(at));
        QByteArray changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 0x81);
        load(changed);
        ASSERT_GE(globals.comport, 1);
        ASSERT_LE(globals.comport, 64);
    }
    globals.UserDataDir = QStringLiteral("/nowhere/");
    EXPECT_TRUE(Save_Settings(disk, place)) << "what stood in the way";
}

TEST(Records, texts_over_several_lines_end_at_their_quote_or_end_the_reading) {
    const QString longest(255, u'x');
    const std::pair<QString, std::optional<QString>> cases[] = {
        {QStringLiteral("\"a\r\nb\",1"), QStringLiteral("a\r\nb")},
        {QStringLiteral("\"a\"\"b\""), QStringLiteral("a\"b")},
        {u'"' + longest + u'"', longest},
        {u'"' + longest + QStringLiteral("x\""), std::nullopt},
        {QStringLiteral("\"open"), std::nullopt}};
    for (const auto& [written, text] : cases)
        EXPECT_EQ(Record_Reader(written, Record_Reader::Text_End::quote).text(), text)
            << written.toStdString();
}

TEST(Records, the_reader_knows_where_records_end_and_hands_out_what_nobody_asked_for) {
    Record_Reader file(u"a,\r\n;note, \"over\ntwo lines\", b\r\r\nlast,\"x\" y,z",
                       Record_Reader::Text_End::quote);
    const std::tuple<int, const char*, const char*> fields[] = {
        {1, "a", nullptr}, // else with the rest of the record, behind this field
        {1, "", nullptr},
        {2, ";note", " \"over\ntwo lines\", b"},
        {4, "", ""},
        {5, "last", "\"x\" y,z"}};
    for (const auto& [line, field, passed] : fields) {
        EXPECT_EQ(file.line(), line) << field;
        EXPECT_EQ(file.text(), QString::fromUtf8(field));
        if (passed == nullptr) continue;
        EXPECT_EQ(file.skip_rest_of_record().toString(), QString::fromUtf8(passed));
    }
    EXPECT_TRUE(file.at_end() && file.at_record_start());
    Record_Reader open(u"a,\"never closed", Record_Reader::Text_End::quote);
    open.text();
    EXPECT_FALSE(open.at_record_start());
    open.skip_rest_of_record(); // ends
    EXPECT_TRUE(open.at_end());
}

TEST(Records, code_page_keeps_every_byte_and_counts_what_it_lacks) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    int replaced = 0;
    EXPECT_EQ(to_code_page(from_code_page(all), replaced), all);
    EXPECT_EQ(replaced, 0);
    EXPECT_EQ(to_code_page(QString::fromUtf8("aМ€😀"), replaced), QByteArray("a?\x80?"));
    EXPECT_EQ(replaced, 2);
}

} // namespace
