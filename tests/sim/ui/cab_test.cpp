#include "sim/ui/frm_Sim_Fahrpult.h"

#include "app/mod_main.h"
#include "app/text_table.h"
#include "platform/timing/virtual_time.h"
#include "support/scripted_desktop.h"

#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>

using timing::Milliseconds;

namespace {

const QColor green(100, 255, 100);
const QColor red(255, 100, 100);

struct Cab_Test : testing::Test, sim::Cab_Listener {
    Cab_Test() { app::TextTable.fill(); }
    ~Cab_Test() override {
        cab.reset();
        app::reset_globals();
    }
    void AfterSimStart() override { told += "start "; }
    void BeforeSimStop() override { told += "before "; }
    void AfterSimStop() override { told += "after "; }

    void open() {
        cab = std::make_unique<sim_ui::frm_Sim_Fahrpult>(
            *this, time, [](int cv) { return cv == 310 ? 3 : 0; }, desktop, decoder, last_place);
        cab->load();
        ASSERT_TRUE(QTest::qWaitForWindowActive(cab.get()));
    }
    template <class Widget = QPushButton>
    Widget* find(const char* name) {
        auto* found = cab->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) throw std::runtime_error(name);
        return found;
    }
    QString text(const char* label) { return find<QLabel>(label)->text(); }
    void space(const char* button) { QTest::keyClick(find(button), Qt::Key_Space); }
    void expect_light(const char* button, const QString& caption, const QColor& colour) {
        EXPECT_EQ(find(button)->text(), caption) << button;
        const QColor face = colour.isValid() ? colour : cab->palette().color(QPalette::Button);
        EXPECT_EQ(find(button)->palette().color(QPalette::Button), face) << button;
    }
    void edit(const char* label, const char* typed) {
        QTest::mouseClick(find<QLabel>(label), Qt::LeftButton);
        auto* box = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_TRUE(box != nullptr && box->parent() == find<QGroupBox>("Fra_Debug"));
        QTest::keyClicks(box, QString::fromLatin1(typed));
        QTest::keyClick(box, Qt::Key_Return);
    }

    support::Scripted_Desktop desktop;
    timing::Virtual_Time time;
    sim::Simulated_Decoder decoder;
    std::string told;
    std::shared_ptr<std::optional<app::Window_Place>> last_place =
        std::make_shared<std::optional<app::Window_Place>>();
    std::unique_ptr<sim_ui::frm_Sim_Fahrpult> cab;
};

} // namespace

TEST_F(Cab_Test, captions_come_from_the_table_in_three_languages) {
    const struct {
        const char *direction, *off, *forward, *moves, *timer, *event, *values;
    } languages[] = {{"VOR", "aus", "Richtung", "Vw", "Timer-Wert", "2 (Servo Mitte)",
                      "Interne Decoder-Werte (teilweise auch manuell änderbar)"},
                     {"FWD", "off", "Direction", "Fw", "Timer value", "2 (Servo center)",
                      "Internal decoder values (partly changeable)"},
                     {"avant", "Off", "Diréction", "Av.", "Timer valeur", "2 (servo milieu)",
                      "Valeurs internes du décodeur (partiellement modifiables)"}};
    decoder.Events[15] = 2;
    for (const auto& each : languages) {
        app::globals.LanguageIndex = static_cast<int>(&each - languages);
        open();
        const auto group = [&](const char* button) {
            return qobject_cast<QGroupBox*>(find(button)->parentWidget())->title();
        };
        EXPECT_EQ(find("cmd_richtung")->text(), QString::fromUtf8(each.direction));
        for (const char* button : {"cmd_notstop", "cmd_Fahrsound", "cmd_MAN"})
            expect_light(button, QString::fromUtf8(each.off), {});
        EXPECT_EQ(group("cmd_richtung"), QString::fromUtf8(each.forward));
        EXPECT_EQ(text("lab_istrichtung"), QString::fromUtf8(each.moves));
        EXPECT_EQ(text("LabWerte_6"), QString::fromUtf8(each.timer));
        EXPECT_EQ(text("lab_event_15"), QString::fromUtf8(each.event));
        EXPECT_EQ(find<QGroupBox>("Fra_Debug")->title(), QString::fromUtf8(each.values));
        for (int row = 0; row < 23; ++row)
            EXPECT_FALSE(text(qPrintable(QStringLiteral("LabWerte_%1").arg(row))).isEmpty()) << row;
    }
}

TEST_F(Cab_Test, every_control_acts_and_shows_it) {
    decoder.KeyState[7] = decoder.Werte[2] = 1; // from the run before
    decoder.DriveStop = true;
    open();
    EXPECT_EQ(decoder.KeyState[7], 0);
    expect_light("cmd_notstop", QStringLiteral("aus"), {});
    expect_light("cmd_Fahrsound", QStringLiteral("Ein"), green);
    auto* slider = find<QSlider>("sli_speed");
    EXPECT_EQ(slider->value(), 255);
    QTest::keyClick(slider, Qt::Key_Up); // faster
    EXPECT_EQ(decoder.Werte[1], 1);
    slider->setValue(0);
    EXPECT_EQ(text("lab_speed"), QStringLiteral("126"));
    time.advance(Milliseconds{2 * 24});
    EXPECT_EQ(text("lab_SPW_0"), QStringLiteral("2"));
    space("cmd_richtung");
    expect_light("cmd_richtung", QStringLiteral("RÜCK"), red);
    EXPECT_EQ(text("lab_sollrichtung") + text("lab_istrichtung"), QStringLiteral("RwVw"));
    EXPECT_EQ(text("lab_SPW_1"), QStringLiteral("0"));
    time.advance(Milliseconds{3 * 24});
    EXPECT_EQ(text("lab_istrichtung"), QStringLiteral("Rw"));
    space("cmd_notstop");
    expect_light("cmd_notstop", QStringLiteral("STOP"), red);
    EXPECT_EQ(slider->value(), 255);
    EXPECT_EQ(decoder.Werte[9], 0);

    space("cmd_func_0");
    EXPECT_EQ(decoder.KeyState[28], 1);
    expect_light("cmd_func_0", QStringLiteral("F0"), green);
    expect_light("cmd_Fahrsound", QStringLiteral("aus"), {}); // brought in step with F3
    space("cmd_Fahrsound");
    expect_light("cmd_func_3", QStringLiteral("F3"), green);
    QTest::mouseClick(find("cmd_func_3"), Qt::LeftButton);
    expect_light("cmd_Fahrsound", QStringLiteral("aus"), {});
    space("cmd_MAN");
    expect_light("cmd_MAN", QStringLiteral("Ein"), red);
    space("cmd_reed_2");
    EXPECT_TRUE(decoder.ReedLevel[2] && decoder.ReedPulse[2]);
    expect_light("cmd_reed_2", QStringLiteral("Input 3"), red);
    space("cmd_reed_2");
    expect_light("cmd_reed_2", QStringLiteral("Input 3"), {});
}

TEST_F(Cab_Test, rate_of_the_ramp_can_be_typed_and_scrolled) {
    open();
    auto* rate = find<QLineEdit>("txt_cv3");
    auto* place = find<QScrollBar>("spn_cv3");
    EXPECT_EQ(place->value(), 248);
    find<QSlider>("sli_speed")->setValue(0);
    const struct {
        const char *typed, *shown;
        int rate;
    } rates[] = {
        {"0", "1", 1}, {"300", "255", 255}, {"", "", 255}, {"x", "1", 1}, {"20", "20", 20}};
    for (const auto& each : rates) {
        rate->setText(QString::fromLatin1(each.typed));
        EXPECT_EQ(rate->text(), QString::fromLatin1(each.shown)) << each.typed;
        EXPECT_EQ(place->value(), 256 - each.rate) << each.typed;
        const int before = decoder.Werte[0];
        time.advance(Milliseconds{3 * each.rate * 2});
        EXPECT_EQ(decoder.Werte[0] - before, 2) << each.typed;
    }
    place->triggerAction(QScrollBar::SliderSingleStepSub);
    EXPECT_EQ(rate->text(), QStringLiteral("21"));
}

TEST_F(Cab_Test, values_are_edited_in_place_and_what_a_step_changed_is_marked) {
    open();
    decoder.Events[4] = 7;
    edit("lab_event_4", "300");
    edit("LabEvent_5", " 12x"); // its caption
    edit("LabVar_3", "255");
    edit("lab_SPW_12", "1");
    edit("lab_SPW_13", "abc");
    EXPECT_EQ(decoder.Events[4], 7);
    EXPECT_EQ(decoder.Events[5], 12);
    EXPECT_EQ(text("lab_event_5"), QStringLiteral(" 12x")) << "as typed";
    EXPECT_EQ(decoder.Variables[3], 255);
    EXPECT_EQ(decoder.Werte[12], 1);
    EXPECT_EQ(text("lab_SPW_13"), QStringLiteral("abc"));
    QTest::keyClick(find<QLabel>("lab_SPW_13"), Qt::Key_F2);
    EXPECT_TRUE(qobject_cast<QLineEdit*>(QApplication::focusWidget()));
    QTest::mouseClick(find<QGroupBox>("Fra_Debug"), Qt::LeftButton, {}, {3, 300});
    EXPECT_FALSE(qobject_cast<QLineEdit*>(QApplication::focusWidget())) << "ends the edit";
    time.advance(Milliseconds{24});
    EXPECT_EQ(text("lab_event_5"), QStringLiteral("12"));
    EXPECT_EQ(text("lab_sollrichtung"), QStringLiteral("Rw")) << "an inverse consist";

    edit("LabVar_3", "254"); // by the cab, not by the step
    const auto marked = [&](const char* name) { return find<sim_ui::Value_Label>(name)->marked(); };
    decoder.Werte[6] = 40;
    decoder.Outputs[15] = 31;
    cab->show_timer(40);
    EXPECT_EQ(text("lab_SPW_6"), QStringLiteral("40"));
    cab->step_done();
    EXPECT_TRUE(marked("lab_SPW_6"));
    EXPECT_FALSE(marked("lab_event_5") || marked("lab_var_3") || marked("lab_SPW_12"));
    EXPECT_EQ(find<QProgressBar>("ProgressBar1_15")->value(), 31);
    time.advance(Milliseconds{48});
    EXPECT_TRUE(marked("lab_SPW_6")) << "until the next step";
    cab->step_done();
    EXPECT_FALSE(marked("lab_SPW_6"));
}

TEST_F(Cab_Test, closing_is_told_once_and_ends_the_ramp) {
    const QRect place(120, 90, 900, 500);
    for (const bool by_hand : {true, false}) {
        open();
        if (!by_hand) {
            EXPECT_EQ(cab->geometry(), place) << "where it was";
        }
        cab->setGeometry(place);
        find<QSlider>("sli_speed")->setValue(0);
        QTest::mouseClick(find<QLabel>("lab_var_0"), Qt::LeftButton);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("9"));
        const auto before = decoder;
        if (by_hand) cab->close();
        if (by_hand) time.advance(Milliseconds{500});
        EXPECT_EQ(decoder, before);
        cab.reset();
        EXPECT_EQ(std::exchange(told, {}), "start before after ");
    }
}
