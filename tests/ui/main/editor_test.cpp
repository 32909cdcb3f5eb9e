// The script editor, opened from the main window and worked with keys and clicks.

#include "main_window.h"
#include "scripts/ui/frm_script.h"
#include "scripts/ui/row_fields.h"
#include "scripts/ui/row_view.h"
#include "scripts/ui/script_safety.h"
#include "sim/SimDecoderState.h"
#include "sim/ui/frm_Sim_Fahrpult.h"

#include <set>

using namespace ui_main;
using testing::HasSubstr;

namespace {

struct Editor_Test : Main_Window_Test {

    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        make_cab = [this](sim::Cab_Listener& listener, timing::Time& time, sim::Script_CV cv) {
            auto cab =
                std::make_unique<sim_ui::frm_Sim_Fahrpult>(listener, time, std::move(cv), desktop);
            cab->load();
            return cab;
        };
        start();
        show_set();
        ASSERT_GE(scripts::AktScripts().Count(), 2);
        open();
    }
    void show_set() {
        for (const char* view : {"opt_rescv_0", "opt_rescv_1"}) {
            click_option(view);
            for (int i = 0; i < sets().count(); ++i) {
                click_row(sets(), i);
                const scripts::cls_script_coll& there = scripts::AktScripts();
                if (there.Count() < 2 || there.Item(1)->StateCount < 5) continue;
                set_with_scripts = database.AktCVSetID();
                ScriptID = there.Item(1)->ScriptID;
                return;
            }
        }
    }
    void open(int position = 1) {
        window->Open_Script(position);
        QApplication::setActiveWindow(editor());
    }
    static QWidget* editor() {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == QStringLiteral("frm_script") && top->isVisible()) return top;
        return nullptr;
    }
    template <class Kind = QWidget>
    static Kind& at(const char* kind, int line) {
        auto* found = editor()->findChild<Kind*>(
            QStringLiteral("%1_%2").arg(QLatin1StringView(kind)).arg(line));
        if (found == nullptr) throw std::runtime_error(std::string("no control ") + kind);
        return *found;
    }
    static std::string shown(const char* kind, int line) {
        return at<QComboBox>(kind, line).currentText().toStdString();
    }
    static std::string number(int line) { return at<QLabel>("lab_nr", line).text().toStdString(); }
    static void push(const char* name) {
        editor()->findChild<QPushButton*>(QLatin1StringView(name))->click();
    }
    /// As somebody writes into a box and goes on.
    void write(const char* kind, int line, const char* keys) {
        at(kind, line).setFocus();
        QApplication::processEvents();
        press(Qt::Key_A, Qt::ControlModifier);
        type(keys);
        press(Qt::Key_Tab);
    }
    void click_number(int line) {
        QTest::mouseClick(&at("lab_nr", line), Qt::LeftButton);
        QApplication::processEvents();
    }
    std::vector<std::pair<int, std::string>> stored_lines() {
        auto library = jet::Database::open(disk, default_path, jet::Mode::read_only);
        const jet::Table states = library.table(u"Scriptstates").value();
        const auto column = [&](const char16_t* name) { return states.column(name).value(); };
        std::map<int, std::pair<int, std::string>> lines;
        for (auto row = states.rows(); row.next();) {
            if (row.integer(column(u"ScriptID")) != ScriptID) continue;
            const jet::Value info = row.value(column(u"Info"));
            const auto* text = std::get_if<std::u16string>(&info);
            lines[row.integer(column(u"State"))] = {
                row.integer(column(u"Command")),
                text == nullptr ? "" : QString::fromStdU16String(*text).toStdString()};
        }
        std::vector<std::pair<int, std::string>> all;
        for (const auto& [number, line] : lines) all.push_back(line);
        return all;
    }
    std::int32_t set_with_scripts = 0, ScriptID = 0;
    const QString title = QStringLiteral("Änderungen Speichern?");
    const QString question = QStringLiteral("Änderungen im Script speichern?");
};

} // namespace

TEST_F(Editor_Test, closes_with_its_questions_and_stores_what_is_wanted) {
    struct Way {
        const char* what;
        std::function<void()> close;
        bool asks;
        std::optional<Answer> answer;
        bool open, stored;
    };
    const auto by_box = [] { editor()->close(); };
    const auto by_other = [this] { open(2); };
    const Way ways[] = {{"OK", [] { push("cmd_ok"); }, false, {}, false, true},
                        {"Abbrechen", [] { push("cmd_cancel"); }, false, {}, false, false},
                        {"box, yes", by_box, true, Answer::yes, false, true},
                        {"box, no", by_box, true, Answer::no, false, false},
                        {"box, cancel", by_box, true, Answer::cancel, true, false},
                        {"another script, yes", by_other, true, Answer::yes, true, true},
                        {"another script, no", by_other, true, Answer::no, true, false},
                        {"another script, Escape", by_other, true, Answer::cancel, true, false}};
    const auto untouched = stored_lines();
    int n = 0;
    for (const Way& way : ways) {
        SCOPED_TRACE(way.what);
        const auto before = stored_lines();
        const std::string info = "Bemerkung " + std::to_string(++n);
        write("txt_State_Info", 0, info.c_str());
        if (way.answer) desktop.expect_question(title, question, *way.answer);
        way.close();
        EXPECT_EQ(editor() != nullptr, way.open);
        auto expected = before;
        if (way.stored) expected[0].second = info;
        EXPECT_EQ(stored_lines(), expected);
        if (editor() != nullptr) push("cmd_cancel");
        EXPECT_FALSE(app::globals.ScriptWindowOpen);
        EXPECT_FALSE(scripts::AktScripts().Item(1)->EditActive);
        open();
    }
    push("cmd_ok");
    choose("mnu_undo");
    choose("mnu_undo");
    choose("mnu_undo");
    EXPECT_EQ(stored_lines(), untouched) << "each storing is one step";
}

TEST_F(Editor_Test, lines_are_written_inserted_copied_and_deleted) {
    const int lines = scripts::AktScripts().Item(1)->StateCount;
    ASSERT_GT(lines, 3);
    const auto commands = [] {
        std::vector<std::string> all;
        for (int line = 0; line < 5; ++line)
            all.push_back(number(line) + shown("combo_Command", line));
        return all;
    };
    const auto untouched = commands();
    const std::string first = shown("combo_Command", 0), third = shown("combo_Command", 2);
    const auto* rows = editor()->findChild<scripts_ui::Row_View*>();
    at("combo_Command", 1).setFocus();
    press(Qt::Key_Z, Qt::ControlModifier); // there is nothing yet
    press(Qt::Key_Down);
    EXPECT_EQ(rows->focus_line(), 2) << "keys go on";
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Insert);
    EXPECT_TRUE(rows->isAncestorOf(QApplication::focusWidget())) << "the unused line";
    const auto before = commands();
    press(Qt::Key_5, Qt::ControlModifier); // which no field wants, though it has a letter
    EXPECT_EQ(commands(), before);
    write("combo_Command", 1, "warten");
    EXPECT_EQ(shown("combo_Command", 1), "Auf Sound Ende warten");
    write("combo_Command", 1, "das ist kein Befehl");
    EXPECT_EQ(shown("combo_Command", 1), "Auf Sound Ende warten");
    write("combo_Command", 1, "gehe zu");
    write("combo_Param1", 1, "2");
    EXPECT_EQ(number(2), "-> 2");
    write("combo_Param1", 1, "256");
    EXPECT_EQ(shown("combo_Param1", 1), "2") << "what is no entry is taken back";
    at("combo_Param1", 1).setFocus();
    type("x");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown("combo_Param1", 1), "2") << "only the letter";
    click_number(0);
    EXPECT_EQ(shown("combo_Command", 0), "-");
    EXPECT_EQ(shown("combo_Command", 1), first);
    EXPECT_EQ(number(3), "-> 3") << "the jump has followed";
    click_number(3);
    EXPECT_EQ(shown("combo_Command", 0), third);
    desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                            Answer::no);
    write("combo_Command", 0, "-");
    EXPECT_EQ(shown("combo_Command", 0), third);
    desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                            Answer::yes);
    write("combo_Command", 0, "-");
    EXPECT_EQ(shown("combo_Command", 0), first);
    for (int step = 0; step < 5; ++step) press(Qt::Key_Z, Qt::ControlModifier);
    push("cmd_undo");
    EXPECT_EQ(commands(), untouched);
    EXPECT_FALSE(editor()->findChild<QPushButton*>(QStringLiteral("cmd_undo"))->isEnabled());
    EXPECT_TRUE(editor()->isVisible()) << "the library's own undo would have asked to close";
    const auto half_written = [](int line, const char* keys) {
        at("combo_Command", line).setFocus();
        press(Qt::Key_A, Qt::ControlModifier);
        type(keys);
    };
    half_written(1, "warten");
    press(Qt::Key_Escape);
    EXPECT_EQ(commands(), untouched);
    half_written(1, "-");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(commands(), untouched) << "and nothing is asked";
    half_written(1, "-");
    {
        QWidget other;
        other.show();
        QApplication::setActiveWindow(&other);
    }
    QApplication::setActiveWindow(editor());
    EXPECT_EQ(commands(), untouched) << "whoever goes to another window has not decided yet";
    half_written(0, "-");
    desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                            Answer::yes);
    press(Qt::Key_Insert);
    push("cmd_undo");
    EXPECT_EQ(commands(), untouched) << "nothing is inserted before the line that has moved up";
    const QPoint middle = at("combo_Command", 2).rect().center();
    QWheelEvent wheel(middle, at("combo_Command", 2).mapToGlobal(middle), {}, {0, -120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&at("combo_Command", 2), &wheel);
    EXPECT_EQ(shown("combo_Command", 2), third) << "the wheel scrolls and chooses nothing";
}

TEST_F(Editor_Test, a_second_click_means_the_number_that_was_seen) {
    const std::string one = shown("combo_Command", 1), two = shown("combo_Command", 2);
    ASSERT_NE(one, two);
    auto* rows = editor()->findChild<scripts_ui::Row_View*>();
    for (const quint64 later : {0U, 60'000U}) { // before the new numbers are drawn, and after
        Q_EMIT rows->number_clicked(0, 1000);
        Q_EMIT rows->number_clicked(2, 1000 + later);
        EXPECT_EQ(shown("combo_Command", 0), later == 0 ? two : one);
        push("cmd_undo");
        push("cmd_undo");
    }
    push("cmd_cancel");
}

TEST_F(Editor_Test, a_script_that_another_copy_has_changed_is_not_stored_over_it) {
    write("txt_State_Info", 0, "meins");
    elsewhere([this](store::clsDBConn& other) {
        scripts::AktScripts().Clear(); // shared by both in this program
        other.AktCVSetID(set_with_scripts);
        other.DB_Load_Scripts();
        scripts::AktScripts().Item(1)->GetState(1).Info = QStringLiteral("seins");
        return other.DB_Save_Script_States(1);
    });
    const auto theirs = stored_lines();
    EXPECT_EQ(theirs[1].second, "seins");
    const QString file = QStringLiteral("/home/anna/meins.vqs");
    desktop.expect_question(
        title,
        QStringLiteral("In „CV-Sets.mdb“ wurde dieser Eintrag inzwischen anderswo "
                       "geändert; es wurde nichts gespeichert.\nDas Script "
                       "bleibt offen. Jetzt als Scriptdatei sichern?"),
        Answer::yes);
    disk.set_bytes(file.toStdString(), {});
    desktop.expect_save(file);
    desktop.expect_question(QStringLiteral("Achtung"),
                            QStringLiteral("Script vorhanden. Überschreiben?"), Answer::yes);
    push("cmd_ok");
    EXPECT_NE(editor(), nullptr) << "what is not stored stays";
    EXPECT_EQ(stored_lines(), theirs);
    const auto bytes = disk.bytes(file.toStdString());
    EXPECT_THAT(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()),
                HasSubstr("\"Info\",\"meins\""));
    EXPECT_EQ(app::globals.LastScriptdir, QStringLiteral("/home/anna/"));
    push("cmd_cancel");
}

TEST_F(Editor_Test, what_others_store_meanwhile_is_shown_when_it_is_closed) {
    const int shown = sets().count();
    write("txt_State_Info", 0, "meins");
    put_row(u"Sets", {{u"Name", std::u16string(u"Neues")}, {u"ResCV", 8}, {u"Nummer", 99}});
    push("cmd_ok");
    leave_and_return();
    EXPECT_EQ(sets().count(), shown + 1);
    open();
    write("txt_State_Info", 0, "verloren?");
    elsewhere([this](store::clsDBConn& other) { return other.DB_Del_CVSet(set_with_scripts); });
    leave_and_return();
    EXPECT_EQ(editor(), nullptr);
    EXPECT_THAT(status(), testing::AllOf(HasSubstr("war nicht gespeichert und liegt nun in"),
                                         HasSubstr("nicht mehr vorhanden")));
}

TEST_F(Editor_Test, undo_in_the_library_does_not_take_what_it_makes_the_editor_store) {
    const auto untouched = stored_lines();
    write("txt_State_Info", 0, "eins");
    push("cmd_ok");
    open();
    for (const char* command : {"mnu_undo", "mnu_redo"}) {
        SCOPED_TRACE(command);
        if (command == std::string("mnu_redo")) choose("mnu_undo");
        if (editor() == nullptr) open();
        const std::string info = std::string("gerade ") + command;
        write("txt_State_Info", 0, info.c_str());
        desktop.expect_question(title, question, Answer::yes);
        choose(command);
        EXPECT_EQ(stored_lines()[0].second, info);
        EXPECT_THAT(status(), HasSubstr("Das offene Script wurde zuerst gespeichert"));
    }
    for (int i = 0; i < 2; ++i) choose("mnu_undo");
    EXPECT_EQ(stored_lines(), untouched);
}

TEST_F(Editor_Test, what_is_not_stored_when_the_program_has_to_end_is_offered_at_the_next_start) {
    for (const bool wanted : {false, true}) {
        const auto untouched = stored_lines();
        const int scripts = scripts::AktScripts().Count();
        const QString name = scripts::AktScripts().Item(1)->ScriptName;
        write("txt_State_Info", 0, "gerettet");
        const QString set = QString::fromStdString(selected(sets()).front());
        window->unload();
        EXPECT_EQ(stored_lines(), untouched);
        for (const Answer answer : {Answer::cancel, wanted ? Answer::yes : Answer::no}) {
            desktop.expect_question(
                title,
                QStringLiteral("Das Script „%1“ des CV-Sets „%2“ war am Ende des Programms nicht "
                               "gespeichert. Jetzt als neues Script in das CV-Set übernehmen?")
                    .arg(name, set),
                answer);
            start_bare();
            QApplication::processEvents();
        }
        EXPECT_EQ(database.AktCVSetID(), set_with_scripts);
        ASSERT_EQ(scripts::AktScripts().Count(), scripts + (wanted ? 1 : 0));
        if (wanted) {
            EXPECT_EQ(scripts::AktScripts().Item(scripts + 1)->GetState(0).Info,
                      QStringLiteral("gerettet"));
        }
        start_bare(); // asks no more
        QApplication::processEvents();
        show_set();
        open();
    }
    push("cmd_cancel");
    const QString library = database.database_file();
    const QByteArray good = "\"Scripts\"\n\"Script\"\n\"Name\",\"B\"\n\"/Scripts\"\n";
    scripts_ui::keep_script(disk, good.left(20), QStringLiteral("A"), set_with_scripts, 1, library);
    scripts_ui::keep_script(disk, good, QStringLiteral("B"), 99999, 1, library);
    const QString set = QString::fromStdString(selected(sets()).front());
    const QString of_broken_off =
        QStringLiteral("Das Script „A“ des CV-Sets „%1“ war am Ende des Programms nicht "
                       "gespeichert. Jetzt als neues Script in das CV-Set übernehmen?");
    for (const QString& question :
         {of_broken_off,
          QStringLiteral("Das Script „B“ war am Ende des Programms nicht gespeichert, und sein "
                         "CV-Set gibt es nicht mehr. Jetzt als neues Script in das CV-Set „%1“ "
                         "übernehmen?")})
        desktop.expect_question(title, question.arg(set), Answer::yes);
    const int scripts_before = scripts::AktScripts().Count();
    start_bare();
    QApplication::processEvents();
    EXPECT_EQ(scripts::AktScripts().Count(), scripts_before + 1);
    EXPECT_THAT(status(), HasSubstr("da unvollständig; das Script liegt in"));
    std::set<QString> kept; // by several copies of the program that end at once
    for (const char* content : {"one", "another"})
        kept.insert(scripts_ui::keep_script(disk, content, {}, 1, 2, {}));
    EXPECT_EQ(kept.size(), 2U);
    disk.protect_folder(app::globals.UserDataDir.toStdString() + "Scripte");
    open();
    write("txt_State_Info", 0, "verloren");
    window->gate().pass_at_once();
    EXPECT_THAT(status(), HasSubstr("konnte nicht gesichert werden"));
    desktop.expect_question(title, of_broken_off.arg(set), Answer::no);
    start_bare();
    QApplication::processEvents();
    EXPECT_THAT(status(), HasSubstr("wird wieder angeboten"));
}

TEST_F(Editor_Test, the_simulation_ends_in_whatever_way_the_windows_close) {
    const auto cab = [] {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == QStringLiteral("frm_Sim_Fahrpult") && top->isVisible())
                return top;
        return static_cast<QWidget*>(nullptr);
    };
    for (const char* state : {"runs", "paused", "single step"})
        for (const char* way : {"switch", "cab", "ok", "program"}) {
            SCOPED_TRACE(std::string(state) + ", " + way);
            push("cmd_sim");
            EXPECT_NE(cab(), nullptr);
            EXPECT_TRUE(sim::SimDecoderState().SimActive);
            if (state != std::string("runs")) push("cmd_Pause");
            if (state == std::string("single step")) push("cmd_Einzel");
            if (way == std::string("switch")) push("cmd_sim");
            if (way == std::string("cab")) cab()->close();
            if (way == std::string("ok")) push("cmd_ok");
            if (way == std::string("program")) window->gate().pass_at_once();
            QTRY_VERIFY(!sim::SimDecoderState().SimActive);
            EXPECT_EQ(cab(), nullptr);
            if (editor() == nullptr) open();
            if (sim::SimDecoderState().SimPaused) push("cmd_Pause");
        }
    push("cmd_cancel");
}

TEST_F(Editor_Test, looking_for_a_fault_follows_what_is_edited_and_driven) {
    push("cmd_debug");
    auto& breaks = *editor()->findChild<QTreeView*>(QStringLiteral("debug_breaks"))->model();
    const auto places = [&breaks] {
        std::string shown;
        for (int i = 0; i < breaks.rowCount(); ++i)
            shown += breaks.index(i, 0).data().toString().toStdString() + ' ';
        return shown;
    };
    for (const int line : {1, 3}) QTest::mouseClick(&at("break_margin", line), Qt::LeftButton);
    EXPECT_EQ(places(), "1 3 ");
    at("combo_Command", 2).setFocus();
    press(Qt::Key_Insert);
    EXPECT_EQ(places(), "1 4 ");
    desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                            Answer::yes);
    at("combo_Command", 4).setFocus();
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(places(), "1 ");
    for (int i = 0; i < 2; ++i) push("cmd_undo");
    EXPECT_EQ(places(), "1 3 ") << "undo brings them back with their lines";
    for (const int line : {3, 3}) { // the second has none
        desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                                Answer::yes);
        at("combo_Command", line).setFocus();
        press(Qt::Key_Delete, Qt::ControlModifier);
    }
    push("cmd_undo");
    EXPECT_EQ(places(), "1 ");
    push("cmd_undo");
    EXPECT_EQ(places(), "1 3 ");
    const int unused = scripts::AktScripts().Item(1)->StateCount;
    press(Qt::Key_End, Qt::ControlModifier);
    type("sound");
    QTest::mouseClick(&at("break_margin", unused), Qt::LeftButton);
    push("cmd_undo");
    EXPECT_EQ(places(), "1 3 ") << "that of a line that is gone goes with it";

    push("cmd_Pause");
    push("cmd_sim");
    QWidget* cab = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->objectName() == QStringLiteral("frm_Sim_Fahrpult")) cab = top;
    auto* watch = editor()->findChild<QComboBox*>(QStringLiteral("debug_add_watch"));
    watch->setFocus();
    type("F3 (Taste)");
    press(Qt::Key_Return);
    auto& watched = *editor()->findChild<QTreeView*>(QStringLiteral("debug_watch"))->model();
    QTRY_COMPARE(watched.rowCount(), 1);
    cab->findChild<QPushButton*>(QStringLiteral("cmd_func_3"))->click();
    EXPECT_EQ(watched.index(0, 1).data().toString(), QStringLiteral("1")) << "though it stands";
    QTest::keyClick(cab, Qt::Key_F10);
    EXPECT_GT(editor()->findChild<QTreeView*>(QStringLiteral("debug_trace"))->model()->rowCount(),
              0);
    const auto* why = editor()->findChild<QLabel*>(QStringLiteral("debug_reason"));
    const int current = sim::SimDecoderState().SimCurrentState;
    const auto stands_at = [why](int line) {
        EXPECT_EQ(sim::SimDecoderState().SimCurrentState, line);
        EXPECT_THAT(why->text().toStdString(), HasSubstr("State " + std::to_string(line)));
    };
    stands_at(current);
    desktop.expect_question(QStringLiteral("State löschen?"), QStringLiteral("State löschen?"),
                            Answer::yes);
    at("combo_Command", current).setFocus();
    press(Qt::Key_Delete, Qt::ControlModifier);
    push("cmd_undo");
    stands_at(current);
    at("combo_Command", 0).setFocus();
    press(Qt::Key_Insert);
    stands_at(current + 1);
    push("cmd_undo");
    stands_at(current);
    push("cmd_sim");
    EXPECT_TRUE(why->text().isEmpty()) << "nothing stands any more";
    push("cmd_Pause");
    push("cmd_ok");
    open();
    EXPECT_EQ(places(), "1 3 ") << "of the same script";
    at("combo_Command", 0).setFocus();
    press(Qt::Key_Insert);
    push("cmd_cancel");
    open();
    EXPECT_EQ(places(), "") << "the lines are not where they were";
    push("cmd_cancel");
}

TEST_F(Editor_Test, what_is_typed_stays_with_its_line) {
    for (int i = 0; i < 60; ++i) press(Qt::Key_Insert); // makes a line, copies it
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Up);
    const int last = editor()->findChild<scripts_ui::Row_View*>()->focus_line();
    at("txt_State_Info", last).setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    type("hier");
    editor()->resize(editor()->width(), editor()->height() + 400);
    QApplication::processEvents();
    type(" geht es weiter");
    const auto info = [](int line) {
        return at<QPlainTextEdit>("txt_State_Info", line).toPlainText().toStdString();
    };
    EXPECT_EQ(info(last), "hier geht es weiter");
    const QString emoji = QStringLiteral("🚂");
    QApplication::clipboard()->setText(QString(233, u'x') + u'\n' + emoji + emoji);
    press(Qt::Key_V, Qt::ControlModifier);
    press(Qt::Key_Tab); // of the first engine, half would fit
    const std::string full = "hier geht es weiter" + std::string(233, 'x') + "\n";
    EXPECT_EQ(info(last), full);
    at("txt_State_Info", last).setFocus();
    type("ab");
    EXPECT_EQ(info(last), "a" + full) << "there is room for one";
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(info(last), full);
    press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(info(last), "a" + full);
    press(Qt::Key_Tab);
    push("cmd_undo");
    EXPECT_EQ(info(last), full);
    at("txt_State_Info", last).setFocus();
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(info(last), "hier") << "what is done is undone by the editor, whatever line is here";
    push("cmd_redo");
    auto& scroll = *editor()->findChild<QScrollBar*>(QStringLiteral("VScroll1"));
    const int first = scroll.value();
    const QPoint middle = scroll.rect().center();
    for (int part = 0; part < 3; ++part) { // of a notch, as touchpads send them
        QWheelEvent wheel(middle, scroll.mapToGlobal(middle), {}, {0, 40}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(editor()->findChild<scripts_ui::Row_View*>(), &wheel);
    }
    EXPECT_EQ(scroll.value(), first - 3);
    push("cmd_cancel");
}

TEST_F(Editor_Test, at_the_end_of_the_program_nothing_is_asked_and_nothing_stays) {
    push("cmd_Pause");
    at("combo_Command", 0).setFocus();
    press(Qt::Key_F9, Qt::ShiftModifier); // the condition of a break point
    const QPointer<QDialog> dialog = editor()->findChild<QDialog*>();
    ASSERT_NE(dialog, nullptr);
    at("combo_Command", 1).setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    type("-"); // deletes a line, with a question, when its box is left
    window->gate().pass_at_once();
    EXPECT_EQ(editor(), nullptr);
    EXPECT_TRUE(dialog == nullptr || !dialog->isVisible());
    open();
    EXPECT_TRUE(
        editor()->findChild<QPushButton*>(QStringLiteral("cmd_Pause"))->styleSheet().isEmpty());
    push("cmd_cancel");
}
