#include "main_window.h"

using namespace ui_main;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct Scripts_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        start();
        answer_set_dialog("Neu", "");
        choose("mnu_cvset_hinzu");
    }
    QTreeWidget& list() { return get<QTreeWidget>("lvw_Scripts"); }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int i = 0; i < list().topLevelItemCount(); ++i)
            all.push_back(list().topLevelItem(i)->text(0).toStdString());
        return all;
    }
    void put(const char* content) {
        const QByteArray bytes(content);
        const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
        disk.set_bytes(file.toStdString(), {first, first + bytes.size()});
    }
    /// @param expect what comes after the dialog for the file
    void import(const std::function<void()>& expect = [] {}) {
        desktop.expect_open(file);
        expect();
        get<QPushButton>("cmd_import").click();
    }
    std::string stored() {
        const std::vector<std::byte> bytes = disk.bytes(file.toStdString());
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    const QString file = QStringLiteral("/home/anna/Pfiff.vqs");
    static constexpr const char* two =
        "\"Scripts\"\r\n\"Script\",\"1\"\r\n\"Name\",\"A\"\r\n\"State\",0\r\n\"Command\",12\r\n"
        "\"Parameter\",1,0\r\n\"Parameter\",2,1\r\n\"Parameter\",3,0\r\n\"Info\",\"\"\r\n"
        "\"Script\",\"1\"\r\n\"Name\",\"B\"\r\n\"State\",0\r\n\"Command\",1\r\n\"Parameter\",1,"
        "7\r\n"
        "\"Parameter\",2,3\r\n\"Parameter\",3,1\r\n\"Parameter\",4,0\r\n\"Info\",\"\"\r\n"
        "\"/Scripts\"\r\n";
};

} // namespace

TEST_F(Scripts_Test, go_from_file_to_file_in_one_step_of_undo) {
    put(two);
    import();
    EXPECT_THAT(names(), ElementsAre("A", "B"));
    EXPECT_EQ(scripts::AktScripts().Item(2)->GetState(0).GetPar(1), 91) << "an amplitude";
    EXPECT_THAT(status(), HasSubstr("2."));
    EXPECT_EQ(app::globals.LastScriptdir, QStringLiteral("/home/anna/"));

    desktop.expect_save(file); // B is the chosen one
    desktop.expect_question(QStringLiteral("Achtung"),
                            QStringLiteral("Script vorhanden. Überschreiben?"), Answer::no);
    desktop.expect_save(file);
    desktop.expect_question(QStringLiteral("Achtung"),
                            QStringLiteral("Script vorhanden. Überschreiben?"), Answer::yes);
    get<QPushButton>("cmd_export").click();
    EXPECT_EQ(desktop.last_choice.file, QStringLiteral("B"));
    const std::string whole(two);
    EXPECT_EQ(stored(), "\"Scripts\"\r\n" + whole.substr(whole.rfind("\"Script\",")));

    choose("mnu_undo");
    EXPECT_THAT(names(), ElementsAre());
    choose("mnu_redo");
    EXPECT_THAT(names(), ElementsAre("A", "B"));
}

TEST_F(Scripts_Test, that_use_the_same_cv_are_told_apart_if_the_user_wants) {
    const QString title = QStringLiteral("CV Kollision");
    put(two);
    import();
    for (const Answer answer : {Answer::yes, Answer::no})
        import([&] {
            desktop.expect_question(title, QStringLiteral("CV 980 verschieben?"), answer);
});
std::vector<int> cvs;
for (const auto& script : scripts::AktScripts())
    if (script->ScriptName == u"A") cvs.push_back(script->GetState(0).GetCVRef(0));
EXPECT_THAT(cvs, ElementsAre(980, 981, 980));
}

TEST_F(Scripts_Test, are_sixteen_in_a_set_and_in_a_file) {
    const std::pair<int, int> steps[] = {{9, 9}, {17, 16}, {1, 16}}; // in the file, then in the set
    for (const auto& [in_file, in_set] : steps) {
        put(("Scripts\n" + QByteArray("Script\nName,S\n").repeated(in_file) + "/Scripts")
                .constData());
        import([&] {
            if (in_set == in_file) return;
        desktop.expect_information(QStringLiteral("Information"),
                                   QStringLiteral("Maximal 16 Scripte möglich!"));
    });
    EXPECT_EQ(list().topLevelItemCount(), in_set);
}
}

TEST_F(Scripts_Test, are_deleted_after_a_question) {
    put(two);
    import();
    list().setCurrentItem(list().topLevelItem(0));
    list().setFocus();
    const QString title = QStringLiteral("Script löschen?");
    desktop.expect_question(title, QStringLiteral("Script 'A' löschen?"), Answer::no);
    press(Qt::Key_Delete);
    desktop.expect_question(title, QStringLiteral("Script 'A' löschen?"), Answer::yes);
    press(Qt::Key_Delete);
    EXPECT_THAT(names(), ElementsAre("B"));
    app::globals.ScriptWindowOpen = true;
    desktop.expect_information(QStringLiteral("Information"),
                               QStringLiteral("Bitte zuerst Script-Fenster schließen!"));
    press(Qt::Key_Delete);
    EXPECT_THAT(names(), ElementsAre("B"));
}

TEST_F(Scripts_Test, files_without_scripts_say_so) {
    struct Case {
        const char* content;
        const char* said;
    };
    for (const Case& each : {Case{"", "sind keine Scripte"},
                             {"\"Sounds\"\n/Sounds\n", "sind keine Scripte"},
                             {"Scripts\nScript\nName,Halb\nState,0\nInfo,\"x", "„Halb“"}}) {
        SCOPED_TRACE(each.said);
        put(each.content);
        import();
        EXPECT_THAT(status(), HasSubstr(each.said));
        EXPECT_THAT(names(), ElementsAre());
    }
    desktop.expect_open(QStringLiteral("/home/anna"));
    get<QPushButton>("cmd_import").click();
    EXPECT_THAT(status(), HasSubstr("kann nicht gelesen werden"));
}

TEST_F(Scripts_Test, that_cannot_be_written_leave_the_old_file) {
    put(two);
    import();
    disk.protect_folder("/home/anna");
    desktop.expect_save(file);
    desktop.expect_question(QStringLiteral("Achtung"),
                            QStringLiteral("Script vorhanden. Überschreiben?"), Answer::yes);
    get<QPushButton>("cmd_export").click();
    EXPECT_THAT(status(), HasSubstr("konnte nicht gespeichert werden"));
    EXPECT_EQ(stored(), two);
}
