#include "scripts/ui/debug_panel.h"

#include "app/mod_main.h"
#include "scripts/cls_script.h"

#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>

namespace {

using scripts_ui::Debug_Panel;
using sim::Value_Kind;
using sim::Value_Ref;

/// Runs the script: 0 loads the timer, 1 switches FA1, 2 goes back to 1.
struct Debug_Panel_Test : testing::Test {
    Debug_Panel_Test() {
        const std::array<std::array<std::int32_t, 3>, 3> lines{
            {{12, 5, 0}, {15, 2, 31}, {6, 1, 0}}};
        for (const auto& each : lines) {
            auto& line = script.GetState(script.StateCount++);
            line.SetCommand(each[0]);
            line.SetPar(0, each[1]);
            line.SetPar(1, each[2]);
        }
        panel.resize(900, 160);
        panel.show();
        QObject::connect(&panel, &Debug_Panel::line_wanted, [this](int line) { wanted += line; });
        QObject::connect(&panel, &Debug_Panel::breaks_changed, [this] { ++breaks; });
    }
    ~Debug_Panel_Test() override { app::reset_globals(); }

    void step(int count = 1) {
        for (int i = 0; i < count; ++i) {
            debugger.record(interpreter.execute(script, decoder), script);
            panel.refresh();
        }
        QCoreApplication::processEvents();
    }
    template <class Widget = QTreeView>
    Widget* find(const char* name) {
        auto* found = panel.findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) throw std::runtime_error(name);
        return found;
    }
    std::string row(const char* list, int number) {
        const auto* model = find(list)->model();
        QStringList cells;
        for (int i = 0; i < model->columnCount(); ++i)
            cells += model->index(number, i).data().toString();
        return cells.join(u'|').toStdString();
    }
    bool marked(int number) {
        return find("debug_watch")->model()->index(number, 0).data(Qt::BackgroundRole).isValid();
    }
    static void activate(QWidget* window) {
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([window] { return QApplication::activeWindow() == window; }));
    }
    void press(const char* list, int number, Qt::Key key) {
        activate(&panel);
        find(list)->setFocus();
        find(list)->setCurrentIndex(find(list)->model()->index(number, 0));
        QTest::keyClick(find(list), key);
    }
    void enter(const char* field, const char* typed, Qt::Key end = Qt::Key_Return) {
        auto* box = find<QWidget>(field);
        activate(box->window());
        auto* combo = qobject_cast<QComboBox*>(box);
        QWidget* edit = combo != nullptr ? combo->lineEdit() : box;
        QTest::keyClicks(edit, QString::fromUtf8(typed));
        if (combo != nullptr) combo->completer()->popup()->hide();
        QTest::keyClick(edit, end);
        QCoreApplication::processEvents();
    }

    scripts::cls_script script;
    sim::Simulated_Decoder decoder;
    sim::Interpreter interpreter{[](int) { return 0; }};
    sim::Debugger debugger;
    Debug_Panel panel{debugger, decoder, nullptr};
    QList<int> wanted;
    int breaks = 0;
};

} // namespace

TEST_F(Debug_Panel_Test, trace_shows_what_steps_did_and_follows_the_end) {
    auto* list = find("debug_trace");
    step(3);
    script.GetState(0) = {}; // the steps say what they did, whatever becomes of their lines
    EXPECT_EQ(row("debug_trace", 0), "1|0|Timer laden: 5, Nein, 100ms|1|Timer-Wert 0 → 5");
    EXPECT_EQ(row("debug_trace", 1), "2|1|Ausgang einschalten: FA1, 31, Nein|2|FA1 0 → 31");
    EXPECT_EQ(row("debug_trace", 2), "3|2|Gehe zu State: 1|1|Timer-Wert 5 → 4, Zyklusende");
    press("debug_trace", 1, Qt::Key_Return);
    EXPECT_EQ(wanted, QList<int>{1});
    step(1000);
    const auto* bar = list->verticalScrollBar();
    ASSERT_EQ(list->model()->rowCount(), 1000);
    EXPECT_EQ(row("debug_trace", 0), "4|1|Ausgang einschalten: FA1, 31, Nein|2|");
    EXPECT_EQ(row("debug_trace", 999).substr(0, 5), "1003|");
    EXPECT_EQ(bar->value(), bar->maximum());
    list->verticalScrollBar()->setValue(400);
    press("debug_trace", 400, Qt::Key_Down);
    step(7);
    EXPECT_EQ(bar->value(), 393) << "what the user looks at stays";
    EXPECT_EQ(list->currentIndex().row(), 394);
    panel.hide();
    step(7);
    EXPECT_EQ(row("debug_trace", 0), "||||") << "gone from the debugger";
    step(500);
    panel.show();
    EXPECT_EQ(row("debug_trace", 999).substr(0, 5), "1517|");
    debugger.forget_steps();
    step(2);
    EXPECT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(row("debug_trace", 1).substr(0, 2), "2|");
}

TEST_F(Debug_Panel_Test, watched_values_are_found_by_typing_and_marked_when_changed) {
    const struct {
        const char *typed, *shown;
    } values[] = {{"timer", "Timer-Wert|0"},
                  {"fa1", "FA1|0"},
                  {"F0", "F0|0"},
                  {"steuern: not", "Lok steuern: Notstopp|0"},
                  {"nirgends", "|"},
                  {"timer-wert", "|"}};
    for (int i = 0; const auto& each : values) {
        enter("debug_add_watch", each.typed);
        EXPECT_EQ(row("debug_watch", i++), each.shown) << each.typed;
        EXPECT_EQ(find<QComboBox>("debug_add_watch")->currentText(), QString());
    }
    enter("debug_add_watch", "event", Qt::Key_Tab); // left without Enter
    auto* choice = find<QComboBox>("debug_add_watch");
    EXPECT_EQ(choice->currentText(), QString());
    QTest::keyClick(choice, Qt::Key_Down); // looks at the values, takes none
    EXPECT_TRUE(choice->view()->isVisible());
    choice->hidePopup();
    EXPECT_EQ(find("debug_watch")->model()->rowCount(), 4);
    EXPECT_LT(choice->findText(QStringLiteral("MAN (Taste)")), 0);
    step();
    EXPECT_TRUE(marked(0) && !marked(1));
    step();
    EXPECT_TRUE(!marked(0) && marked(1));
    EXPECT_EQ(row("debug_watch", 0) + row("debug_watch", 1), "Timer-Wert|5FA1|31");
    press("debug_watch", 0, Qt::Key_Delete);
    EXPECT_EQ(row("debug_watch", 0), "FA1|31");
    EXPECT_EQ(debugger.watched(decoder).size(), 3U);
}

TEST_F(Debug_Panel_Test, break_points_are_listed_edited_and_removed) {
    const sim::Condition old{{Value_Kind::key, 28}, 1, 7};
    debugger.put_break(9, old);
    panel.refresh();
    EXPECT_EQ(row("debug_breaks", 0), "9|F0 ≠ 7");
    panel.edit_break(4); // Enter at once: no condition
    enter("debug_condition_value", "");
    EXPECT_EQ(row("debug_breaks", 0), "4|ohne Bedingung");
    press("debug_breaks", 0, Qt::Key_F2);
    enter("debug_condition_value", "nirgends");
    EXPECT_FALSE(find<QPushButton>("debug_condition_ok")->isEnabled());
    find<QComboBox>("debug_condition_value")->clearEditText();
    find<QComboBox>("debug_condition_comparison")->setCurrentIndex(2);
    find<QLineEdit>("debug_condition_number")->selectAll();
    enter("debug_condition_number", "327671", Qt::Key_Tab); // the last digit is too much
    enter("debug_condition_value", "variable 2");
    EXPECT_EQ(row("debug_breaks", 0), "4|Variable 2 > 32767");
    EXPECT_EQ(debugger.condition_of(4), (sim::Condition{{Value_Kind::variable, 1}, 2, 32767}));
    press("debug_breaks", 0, Qt::Key_Down);
    find<QPushButton>("debug_condition")->click();
    EXPECT_EQ(find<QComboBox>("debug_condition_value")->currentText(),
              QStringLiteral("F0 (Taste)"));
    QTest::keyClick(find<QDialog>("debug_condition_dialog"), Qt::Key_Escape);
    EXPECT_EQ(debugger.condition_of(9), old);
    EXPECT_EQ(breaks, 2);
    press("debug_breaks", 1, Qt::Key_Return);
    press("debug_breaks", 1, Qt::Key_Delete);
    EXPECT_EQ(wanted, QList<int>{9});
    EXPECT_FALSE(debugger.has_break(9));
    EXPECT_EQ(breaks, 3);
    panel.edit_break(256);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Debug_Panel_Test, own_clock_is_asked_for_by_the_user_only) {
    QList<bool> asked;
    QObject::connect(&panel, &Debug_Panel::own_clock_wanted, [&](bool on) { asked += on; });
    panel.show_own_clock(true);
    QTest::keyClick(find<QCheckBox>("debug_own_clock"), Qt::Key_Space);
    EXPECT_EQ(asked, QList<bool>{false});
}
