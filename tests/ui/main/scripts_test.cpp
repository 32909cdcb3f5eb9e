#include "main_window.h"

#include "scripts/ui/UC_Scripte.h"

using namespace ui_main;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::string_literals;

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
            all.push_back(list().topLevelItem(i)->text(1).toStdString());
        return all;
    }
    QPoint place(int row, int column) {
        return list().visualRect(list().model()->index(row, column)).center();
    }
    QPoint box(int row) { // of the flag, which stands at the left of its cell
        return {list().visualRect(list().model()->index(row, 0)).left() + 10, place(row, 0).y()};
    }
    void click(const QPoint& where, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(list().viewport(), button, {}, where);
        QApplication::processEvents();
    }
    QLineEdit& name_box() { return *list().viewport()->findChild<QLineEdit*>(); }
    void add(int count) {
        for (int i = 0; i < count; ++i) get<QPushButton>("cmd_Add").click();
    }
    /// Positions of the active ones, with what the CV list says of the flags.
    std::string active() {
        std::string shown;
        for (int i = 0; i < list().topLevelItemCount(); ++i)
            if (list().topLevelItem(i)->checkState(0) == Qt::Checked)
                shown += std::to_string(i + 1) + ' ';
        for (const std::string& cv : cv_rows()) shown += cv + ' ';
        return shown;
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
    put("Scripts\nScript\nName,A\nState,0\nCommand,6\nParameter,1,256\nState,1\nInfo,\"a \"b\" "
        "c\"\n"
        "/Scripts");
    import();
    EXPECT_THAT(status(), HasSubstr("Zeilen mit Zahlen außerhalb von 0 bis 255"));
    EXPECT_THAT(status(), HasSubstr("nur der Anfang lesbar war: 1"));
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

TEST_F(Scripts_Test, never_take_the_place_of_the_open_library) {
    add(1);
    const auto bytes = disk.bytes(default_path);
    disk.link(default_path, file.toStdString());
    for (const bool project : {false, true}) {
        desktop.expect_save(file);
        desktop.expect_information(QStringLiteral("Achtung"),
                                   QStringLiteral("Unter diesem Namen liegt die geöffnete "
                                                  "Datenbank; bitte einen anderen wählen."));
        if (!project) desktop.expect_save({});
        project ? choose("mnu_export_oem") : get<QPushButton>("cmd_export").click();
    }
    EXPECT_EQ(disk.bytes(file.toStdString()), bytes);
}

TEST_F(Scripts_Test, are_added_up_to_sixteen) {
    add(15);
    EXPECT_TRUE(list().topLevelItem(14)->isSelected());
    add(1);
    desktop.expect_information(QStringLiteral("Information"),
                               QStringLiteral("Maximal 16 Scripte möglich!"));
    add(1);
    EXPECT_EQ(names().back(), "Script16");
    EXPECT_TRUE(scripts::AktScripts().Item(16)->HeaderFlag);
    list().setCurrentItem(list().topLevelItem(3));
    leave_and_return([&] {
        put_row(u"Scripte", {{u"SetID", database.AktCVSetID()}, {u"ScriptName", u"17"s}});
    });
    EXPECT_EQ(names().size(), 17U);
    EXPECT_FALSE(list().topLevelItem(16)->data(0, Qt::CheckStateRole).isValid()) << "has no flag";
    choose("mnu_undo");
    EXPECT_THAT(names(), testing::AllOf(testing::SizeIs(16), testing::Contains("Script15")));
    EXPECT_TRUE(list().topLevelItem(3)->isSelected()) << "the same script";
}

TEST_F(Scripts_Test, that_others_have_added_or_deleted_are_seen_before_a_position_is_used) {
    add(14);
    const auto others = [&](const char16_t* name) {
        put_row(u"Scripte",
                {{u"SetID", database.AktCVSetID()}, {u"ScriptName", std::u16string(name)}});
    };
    others(u"15");
    add(1);
    EXPECT_THAT(names(), testing::AllOf(testing::SizeIs(15), testing::Contains("15")));
    EXPECT_THAT(status(), HasSubstr("anderswo geändert"));
    others(u"16");
    put(two);
    const auto too_many = [&] {
        desktop.expect_information(QStringLiteral("Information"),
                                   QStringLiteral("Maximal 16 Scripte möglich!"));
    };
    import(too_many); // written apart: the word makes clang-format lose its place
    EXPECT_THAT(names(), testing::AllOf(testing::SizeIs(16), testing::Contains("16")));
    {
        auto library = jet::Database::open(disk, default_path, jet::Mode::read_write);
        const jet::Table stored = library.table(u"Scripte").value();
        const auto set = stored.column(u"SetID").value();
        for (auto row = stored.rows(); row.next();)
            if (row.integer(set) == database.AktCVSetID()) {
                stored.erase(row.id());
                break;
            }
    }
    click(box(1));
    EXPECT_THAT(names(), testing::SizeIs(15));
    EXPECT_THAT(active(), HasSubstr("1 2 3 ")) << "another script would have been switched off";
    EXPECT_THAT(active(), testing::Not(HasSubstr("CV#837")));
}

TEST_F(Scripts_Test, are_renamed_in_place) {
    add(2);
    for (const int column : {0, 2, 3, 4}) {
        click(place(0, column), Qt::RightButton);
        EXPECT_FALSE(name_box().isVisible()) << column;
    }
    const struct {
        bool by_mouse;
        const char* typed;
        const char* name;
        const char* said;
    } edits[] = {{true, "Pfiff", "Pfiff", "Script umbenannt: „Pfiff“."},
                 {false, "Glocke", "Glocke", "Script umbenannt: „Glocke“."},
                 {false, "Glocke", "Glocke", "Script umbenannt: „Glocke“."},
                 {false, "  ", "Glocke", "Nicht umbenannt: Ein Script braucht einen Namen."}};
    for (const auto& each : edits) {
        SCOPED_TRACE(each.typed);
        if (each.by_mouse)
            click(place(0, 1), Qt::RightButton);
        else
            press(Qt::Key_F2);
        type(each.typed);
        press(Qt::Key_Return);
        EXPECT_THAT(names(), ElementsAre(each.name, "Script2"));
        EXPECT_TRUE(list().hasFocus() && list().topLevelItem(0)->isSelected());
        EXPECT_EQ(status(), each.said);
    }
    press(Qt::Key_F2);
    type("Horn");
    window->Redraw_Script_List();
    EXPECT_FALSE(name_box().isVisible());
    press(Qt::Key_F2);
    type("Horn");
    auto& menu = get<QMenu>("mnu_extras");
    menu.popup({});
    EXPECT_THAT(get<QAction>("mnu_undo").text().toStdString(), HasSubstr("„Horn“"));
    menu.close();
    EXPECT_THAT(names(), ElementsAre("Horn", "Script2"));
    for (const char* name : {"Glocke", "Pfiff", "Script1"}) {
        choose("mnu_undo");
        EXPECT_THAT(names(), ElementsAre(name, "Script2"));
    }
}

TEST_F(Scripts_Test, are_active_where_their_bit_of_a_cv_is_clear) {
    add(9);
    const std::string eight = "1 2 3 4 5 6 7 8 ";
    EXPECT_EQ(active(), eight + "9 ");
    click(box(8));
    EXPECT_EQ(active(), eight + "CV#843=1 ");
    EXPECT_THAT(status(), HasSubstr("„Script9“ ist nicht mehr aktiv: CV 843 = 1"));
    list().setCurrentItem(list().topLevelItem(1));
    list().setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(active(), "1 3 4 5 6 7 8 CV#837=2 CV#843=1 ");
    press(Qt::Key_Space);
    click(box(8));
    EXPECT_EQ(active(), eight + "9 CV#837=0 CV#843=0 ");
    choose("mnu_undo");
    choose("mnu_undo");
    EXPECT_EQ(active(), "1 3 4 5 6 7 8 CV#837=2 CV#843=1 ");
    store_cv("837", "129");
    EXPECT_EQ(active(), "2 3 4 5 6 7 CV#837=129 CV#843=1 ");
    click_row(cvs(), 0);
    list().setCurrentItem(list().topLevelItem(0));
    list().setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(text("txt_cv_wert"), "128");
    EXPECT_THAT(selected(cvs()), testing::SizeIs(1));
}

TEST_F(Scripts_Test, of_a_library_that_cannot_be_written_stay_as_they_are) {
    add(1);
    window.reset();
    disk.protect(default_path);
    start_bare();
    click_row(sets(), sets().count() - 1);
    click(box(0));
    EXPECT_EQ(active(), "1 ");
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
    press(Qt::Key_F2);
    type("Neu");
    press(Qt::Key_Return);
    add(1);
    EXPECT_THAT(names(), ElementsAre("Script1"));
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
}

TEST_F(Scripts_Test, are_opened_by_double_click_and_enter) {
    std::vector<int> opened;
    QObject::connect(&get<scripts_ui::UC_Scripte>("UC_Scripte1"),
                     &scripts_ui::UC_Scripte::open_wanted, window.get(),
                     [&](int position) { opened.push_back(position); });
    press(Qt::Key_Return);
    add(2);
    list().setFocus();
    press(Qt::Key_Return);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    const auto double_click = [&](const QPoint& where, Qt::MouseButton button = Qt::LeftButton) {
        click(where, button); // as the display tells it
        QTest::mouseDClick(list().viewport(), button, {}, where);
        QApplication::processEvents();
    };
    double_click(place(0, 3));
    double_click(place(0, 3), Qt::RightButton);
    double_click(box(0));
    double_click({20, list().viewport()->height() - 5});
    EXPECT_THAT(opened, ElementsAre(2, 2, 1));
}

TEST_F(Scripts_Test, have_columns_and_buttons_in_three_languages) {
    const struct {
        const char *columns, *buttons, *first_line;
    } languages[] = {
        {"Aktiv Name Tasten Ausgänge CVs ", "Hinzufügen Importieren Exportieren ",
         "Öffnen mit Doppelklick"},
        {"Active Name Keys Outputs CVs ", "Add Import from file Export to file ",
         "Open with double-click"},
        {"Actif Nom Touches Sorties CVs ",
         "Ajouter Importer d'un fichier Exporter vers un fichier ", "Ouvrir par double-clic"},
    };
    for (const auto& expected : languages) {
        window->Redraw_Script_List();
        ++app::globals.LanguageIndex;
        QApplication::processEvents();
        std::string columns, buttons;
        for (int i = 0; i < list().columnCount(); ++i) {
            columns += list().headerItem()->text(i).toStdString() + ' ';
            EXPECT_LE(list().header()->sectionSizeHint(i), list().columnWidth(i));
        }
        EXPECT_EQ(columns, expected.columns);
        for (const char* name : {"cmd_Add", "cmd_import", "cmd_export"}) {
            auto& button = get<QPushButton>(name);
            buttons += button.text().toStdString() + ' ';
            EXPECT_LE(button.sizeHint().width(), button.width()) << name;
        }
        EXPECT_EQ(buttons, expected.buttons);
        auto& legend = get<QLabel>("lab_legende");
        EXPECT_EQ(legend.text().section(u'\n', 0, 0).toStdString(), expected.first_line);
        EXPECT_EQ(legend.size(), legend.sizeHint());
    }
}
