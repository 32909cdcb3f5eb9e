#include "main_window.h"

using namespace ui_main;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A set of known CVs is current.
struct Cv_Panel_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        start();
        std::int16_t number = 0;
        set = database.DB_Add_CVSet(QStringLiteral("Probe"), number, 8);
        window->Refresh_Sets();
        sets().select_row(*sets().row_of(set));
        ASSERT_EQ(database.AktCVSetID(), set);
        ASSERT_EQ(cvs().count(), 0);
    }

    void write(std::initializer_list<store::CVRec> records) {
        for (store::CVRec record : records) ASSERT_TRUE(database.DB_Write_CV(record));
        window->Show_CVs(0);
    }

    void fill(const char* hi, const char* lo, const char* number, const char* value) {
        field("txt_cv_page_0").setText(QString::fromUtf8(hi));
        field("txt_cv_page_1").setText(QString::fromUtf8(lo));
        field("txt_cv_nummer").setText(QString::fromUtf8(number));
        field("txt_cv_wert").setText(QString::fromUtf8(value));
        field("txt_cv_wert").setFocus();
    }

    std::vector<std::string> fields() {
        return {text("txt_cv_page_0"), text("txt_cv_page_1"), text("txt_cv_nummer"),
                text("txt_cv_wert")};
    }

    bool all_selected(const char* name) { return field(name).selectedText() == field(name).text(); }

    std::int32_t set = 0;
};

store::CVRec cv(int number, int value, int hi = 0, int lo = 1) {
    return {static_cast<std::uint8_t>(hi),
            static_cast<std::uint8_t>(lo),
            static_cast<std::int16_t>(number),
            static_cast<std::int16_t>(value),
            0,
            false};
}

} // namespace

TEST_F(Cv_Panel_Test, enter_leads_through_the_fields_and_stores) {
    field("txt_cv_page_0").setFocus();
    type("3");
    press(Qt::Key_Return);
    EXPECT_EQ(focus(), "txt_cv_page_1");
    type("4");
    press(Qt::Key_Enter);
    EXPECT_EQ(focus(), "txt_cv_nummer");
    type("29");
    press(Qt::Key_Return);
    EXPECT_EQ(focus(), "txt_cv_wert");
    type("7");
    press(Qt::Key_Return);
    EXPECT_THAT(rows(cvs()), ElementsAre("CV#    29 = 7"));
    EXPECT_THAT(fields(), ElementsAre("3", "4", "30", "0")); // the page fields stay
    EXPECT_EQ(focus(), "txt_cv_wert");
    EXPECT_TRUE(all_selected("txt_cv_wert"));
    EXPECT_EQ(count_label(), "1");
    type("8");
    press(Qt::Key_Return);
    EXPECT_THAT(rows(cvs()), ElementsAre("CV#    29 = 7", "CV#    30 = 8"));
}

TEST_F(Cv_Panel_Test, what_is_stored_and_what_is_offered_next) {
    write({cv(30, 33), cv(257, 44, 3, 7), cv(513, 55), cv(301, 66, 0, 1)});
    const struct {
        const char* name;
        const char *hi, *lo, *number, *value;
        const char* row; ///< empty: nothing stored
        const char *next, *offered;
    } cases[] = {
        {"plain", "3", "4", "29", "7", "CV#    29 = 7", "30", "33"},
        {"paged", "3", "4", "300", "5", "Page 3:4 CV#  300 = 5", "301", "0"},
        {"paged, both bytes 0", "0", "0", "300", "6", "CV#  300 = 6", "301", "66"},
        {"paged, low byte only", "0", "7", "300", "8", "Page 0:7 CV#  300 = 8", "301", "0"},
        {"into the paged range", "3", "7", "256", "1", "CV#  256 = 1", "257", "44"},
        {"out of the paged range", "3", "7", "512", "2", "Page 3:7 CV#  512 = 2", "513", "55"},
        {"last", "0", "1", "1024", "255", "CV#1024 = 255", "1025", "0"},
        {"value too high", "0", "1", "29", "256", "", "30", "33"},
        {"CV 0", "0", "1", "0", "5", "", "1", "0"},
        {"CV 1025", "0", "1", "1025", "5", "", "1026", "0"},
        {"nothing typed", "", "", "", "", "", "1", "0"},
        {"number beyond 16 bits", "0", "1", "32768", "5", "", "32768", "5"},
        {"value beyond 16 bits", "0", "1", "29", "99999999999", "", "29", "99999999999"},
        {"last number of all", "0", "1", "32767", "5", "", "32767", "5"},
        {"high byte beyond 255", "256", "1", "29", "5", "", "29", "5"},
        {"low byte beyond 255", "0", "256", "300", "5", "", "300", "5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = rows(cvs());
        fill(c.hi, c.lo, c.number, c.value);
        press(Qt::Key_Return);
        if (*c.row == 0) {
            EXPECT_EQ(rows(cvs()), before);
            EXPECT_THAT(status(), HasSubstr("Nichts gespeichert"));
        } else {
            EXPECT_THAT(rows(cvs()), testing::Contains(c.row));
        }
        EXPECT_THAT(fields(), ElementsAre(c.hi, c.lo, c.next, c.offered));
        EXPECT_EQ(focus(), "txt_cv_wert");
        EXPECT_TRUE(all_selected("txt_cv_wert"));
    }
}

TEST_F(Cv_Panel_Test, the_offered_entry_is_selected_by_its_key_and_none_where_there_is_none) {
    write({cv(1, 11), cv(2, 22), cv(4, 44)});
    fill("0", "1", "1", "5");
    press(Qt::Key_Return);
    EXPECT_THAT(selected(cvs()), ElementsAre("CV#      2 = 22"));
    press(Qt::Key_Return);
    EXPECT_THAT(selected(cvs()), IsEmpty()); // CV 3 is not there, and the first entry is not it
    press(Qt::Key_Down);                     // back to the entry that was written last
    EXPECT_THAT(selected(cvs()), ElementsAre("CV#      2 = 22"));
}

TEST_F(Cv_Panel_Test, arrows_walk_the_list_and_stop_at_its_ends) {
    write({cv(1, 11), cv(2, 22), cv(300, 33, 5, 6)});
    click_row(cvs(), 1);
    EXPECT_EQ(focus(), "txt_cv_wert");
    const struct {
        Qt::Key key;
        const char* row;
        std::vector<std::string> fields;
    } steps[] = {
        {Qt::Key_Up, "CV#      1 = 11", {"0", "1", "1", "11"}},
        {Qt::Key_Up, "CV#      1 = 11", {"0", "1", "1", "11"}},
        {Qt::Key_Down, "CV#      2 = 22", {"0", "1", "2", "22"}},
        {Qt::Key_Down, "Page 5:6 CV#  300 = 33", {"5", "6", "300", "33"}},
        {Qt::Key_Down, "Page 5:6 CV#  300 = 33", {"5", "6", "300", "33"}},
    };
    for (const auto& step : steps) {
        press(step.key);
        EXPECT_THAT(selected(cvs()), ElementsAre(step.row));
        EXPECT_EQ(fields(), step.fields);
        EXPECT_TRUE(all_selected("txt_cv_wert"));
    }
}

TEST_F(Cv_Panel_Test, clicks_and_plain_arrows_go_to_the_value_and_others_select_more) {
    write({cv(1, 11), cv(2, 22), cv(3, 33), cv(4, 44)});
    click_row(cvs(), 0);
    EXPECT_EQ(focus(), "txt_cv_wert");
    click_row(cvs(), 2, Qt::ShiftModifier);
    EXPECT_EQ(focus(), "txt_cv_wert");
    EXPECT_EQ(cvs().selected_rows(), (std::vector{0, 1, 2}));
    EXPECT_EQ(text("txt_cv_nummer"), "3");
    cvs().setFocus();
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(focus(), "lst_CVs");
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(focus(), "lst_CVs");
    EXPECT_EQ(cvs().selected_rows().size(), 4U);
    press(Qt::Key_Up);
    EXPECT_EQ(focus(), "txt_cv_wert");
    EXPECT_EQ(cvs().selected_rows(), (std::vector{2}));
    cvs().setFocus();
    press(Qt::Key_Delete);
    EXPECT_THAT(rows(cvs()), ElementsAre("CV#      1 = 11", "CV#      2 = 22", "CV#      4 = 44"));
    EXPECT_EQ(focus(), "lst_CVs");

    const struct {
        const char* name;
        std::function<void()> go;
        const char* loaded;
    } ways[] = {{"search", [] { type("c"); }, "1"},
                {"search that goes on", [] { type("v"); }, "1"},
                {"right button", [&] { click_row(cvs(), 2, {}, Qt::RightButton); }, "4"},
                {"Shift and arrow", [] { press(Qt::Key_Up, Qt::ShiftModifier); }, "2"},
                {"all", [] { press(Qt::Key_A, Qt::ControlModifier); }, "2"}};
    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        for (const char* name : {"txt_cv_nummer", "txt_cv_wert"}) field(name).clear();
        way.go();
        EXPECT_EQ(text("txt_cv_nummer"), way.loaded);
        EXPECT_EQ(text("txt_cv_wert"), std::string(2, *way.loaded));
        EXPECT_EQ(focus(), "lst_CVs");
    }
}

TEST_F(Cv_Panel_Test, delete_takes_the_selected_rows_and_never_text) {
    const struct {
        const char* name;
        std::vector<int> chosen;
        std::vector<std::string> left;
        std::vector<std::string> then_selected;
    } cases[] = {
        {"three in the middle",
         {1, 2, 3},
         {"CV#      1 = 1", "CV#      5 = 5"},
         {"CV#      5 = 5"}},
        {"apart",
         {0, 2},
         {"CV#      2 = 2", "CV#      4 = 4", "CV#      5 = 5"},
         {"CV#      2 = 2"}},
        {"the last",
         {4},
         {"CV#      1 = 1", "CV#      2 = 2", "CV#      3 = 3", "CV#      4 = 4"},
         {"CV#      4 = 4"}},
        {"all", {0, 1, 2, 3, 4}, {}, {}},
        {"none",
         {},
         {"CV#      1 = 1", "CV#      2 = 2", "CV#      3 = 3", "CV#      4 = 4", "CV#      5 = 5"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        write({cv(1, 1), cv(2, 2), cv(3, 3), cv(4, 4), cv(5, 5)});
        for (const int row : c.chosen) click_row(cvs(), row, Qt::ControlModifier);
        field("txt_cv_wert").setFocus();
        field("txt_cv_wert").setText(QStringLiteral("77"));
        const auto before = rows(cvs());
        for (const auto with : {Qt::ShiftModifier, Qt::ControlModifier}) { // they are for text
            field("txt_cv_wert").setText(QStringLiteral("77"));
            for (QWidget* place : {static_cast<QWidget*>(&field("txt_cv_wert")),
                                   static_cast<QWidget*>(&cvs()), static_cast<QWidget*>(&sets())}) {
                QTest::keyClick(place, Qt::Key_Delete, with);
                EXPECT_EQ(rows(cvs()), before) << place->objectName().toStdString();
            }
        }
        press(Qt::Key_Delete);
        EXPECT_EQ(rows(cvs()), c.left);
        EXPECT_EQ(selected(cvs()), c.then_selected);
        EXPECT_EQ(count_label(), std::to_string(c.left.size()));
        EXPECT_EQ(focus(), "txt_cv_wert");
        EXPECT_NE(text("txt_cv_wert"), "");
    }
}

TEST_F(Cv_Panel_Test, only_digits_reach_the_fields_and_what_is_rejected_changes_nothing) {
    using Bring = void (*)(QLineEdit&, const QString&);
    const Bring by_key = [](QLineEdit& box, const QString& text) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, {}, text);
        QApplication::sendEvent(&box, &key);
    };
    const Bring composed = [](QLineEdit& box, const QString& text) {
        QInputMethodEvent composing(text, {});
        QApplication::sendEvent(&box, &composing);
        QInputMethodEvent commit;
        commit.setCommitString(text);
        QApplication::sendEvent(&box, &commit);
    };
    const Bring ctrl_v = [](QLineEdit& box, const QString& text) {
        QApplication::clipboard()->setText(text);
        QTest::keyClick(&box, Qt::Key_V, Qt::ControlModifier);
    };
    const Bring shift_insert = [](QLineEdit& box, const QString& text) {
        QApplication::clipboard()->setText(text);
        QTest::keyClick(&box, Qt::Key_Insert, Qt::ShiftModifier);
    };
    const Bring by_menu = [](QLineEdit& box, const QString& text) {
        QApplication::clipboard()->setText(text);
        QContextMenuEvent wanted(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&box, &wanted);
        auto& menu = dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
        for (QAction* action : menu.actions())
            if (action->text().contains(u"Ctrl+V")) menu.setActiveAction(action);
        QTest::keyClick(&menu, Qt::Key_Return);
        menu.close();
    };
    const Bring dropped = [](QLineEdit& box, const QString& text) {
        QMimeData data;
        data.setText(text);
        const QPoint end = box.rect().center();
        QDragEnterEvent enter(end, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&box, &enter);
        QDropEvent drop(end, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&box, &drop);
        EXPECT_EQ(drop.isAccepted(), text.contains(u'7'));
    };
    const struct {
        const char* name;
        Bring bring;
        const char *accepted, *then;
    } ways[] = {{"key", by_key, "7", "7"},
                {"input method", composed, "7", "7"},
                {"Ctrl+V", ctrl_v, " 7\r\n", "7"},
                {"Shift+Insert", shift_insert, "\t7 ", "7"},
                {"context menu", by_menu, "7\n", "7"},
                {"drag", dropped, " 7 ", "457"}};
    const auto state = [](const QLineEdit& box) {
        return std::tuple(box.text(), box.selectedText(), box.selectionStart(),
                          box.cursorPosition(), box.isUndoAvailable(), box.isRedoAvailable());
    };
    for (const char* name : {"txt_cv_page_0", "txt_cv_page_1", "txt_cv_nummer", "txt_cv_wert"}) {
        for (const auto& way : ways) {
            SCOPED_TRACE(std::string(name) + ", " + way.name);
            QLineEdit& box = field(name);
            const auto rejects_all = [&] {
                const auto before = state(box);
                for (const char* text : {"-", "x", " ", "5x", "4 5", "-5", "²", "٣"}) {
                    way.bring(box, QString::fromUtf8(text));
                    EXPECT_EQ(state(box), before) << text;
                }
            };
            box.setText(QStringLiteral("12"));
            box.setFocus();
            box.selectAll();
            rejects_all();
            type("45");
            rejects_all();
            press(Qt::Key_Z, Qt::ControlModifier);
            rejects_all(); // with a selection, and with typing that can be done again
            press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
            EXPECT_EQ(text(name), "45");
            box.selectAll();
            way.bring(box, QString::fromUtf8(way.accepted));
            EXPECT_EQ(text(name), way.then);
            press(Qt::Key_Z, Qt::ControlModifier);
            EXPECT_EQ(text(name), "45");
            box.setText(QStringLiteral("4x")); // as screen readers do
            EXPECT_EQ(text(name), "45");
        }
    }
    QTest::mouseClick(&field("txt_cv_nummer"), Qt::LeftButton);
    QTest::mouseClick(&field("txt_cv_wert"), Qt::LeftButton);
    QTest::mouseClick(&field("txt_cv_wert"), Qt::LeftButton); // also when it has the focus already
    EXPECT_TRUE(all_selected("txt_cv_wert"));
}

TEST_F(Cv_Panel_Test, a_negative_value_of_the_library_stays_until_digits_replace_it) {
    write({cv(3, -5), cv(4, 44)});
    click_row(cvs(), 0);
    EXPECT_EQ(text("txt_cv_wert"), "-5");
    press(Qt::Key_Return);
    EXPECT_THAT(fields(), ElementsAre("0", "1", "4", "44"));
    click_row(cvs(), 0);
    press(Qt::Key_End);
    type("7");
    press(Qt::Key_Backspace); // "-" alone would be no number
    EXPECT_EQ(text("txt_cv_wert"), "-5");
    press(Qt::Key_Return);
    EXPECT_THAT(cv_rows(), ElementsAre("CV#3=-5", "CV#4=44"));
    click_row(cvs(), 0);
    type("6");
    press(Qt::Key_Return);
    EXPECT_THAT(cv_rows(), ElementsAre("CV#3=6", "CV#4=44"));
}

TEST_F(Cv_Panel_Test, without_a_set_nothing_is_stored_and_the_reason_is_said) {
    sets().selectionModel()->clearSelection();
    EXPECT_EQ(database.AktCVSetID(), 0);
    fill("0", "1", "29", "7");
    press(Qt::Key_Return);
    EXPECT_THAT(rows(cvs()), IsEmpty());
    EXPECT_THAT(status(), HasSubstr("kein CV-Set"));
    EXPECT_EQ(text("txt_cv_nummer"), "30");
}
