#include "main_window.h"

#include "app/twips.h"
#include "ui/main/frm_get_2_string.h"

#include <QAbstractButton>

using namespace ui_main;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using Looks = Main_Window_Test;

/// Name and caption of each entry.
std::vector<std::string> entries(const QList<QAction*>& actions) {
    std::vector<std::string> all;
    for (const QAction* action : actions)
        all.push_back((action->objectName() + u' ' + action->text().remove(u'&')).toStdString());
    return all;
}

bool is_ours(const QWidget& widget) {
    const QString name = widget.objectName();
    return widget.isVisible() && !name.startsWith(u"qt_") &&
           (widget.inherits("QAbstractButton") || widget.inherits("QLineEdit") ||
            widget.inherits("QAbstractItemView") || widget.inherits("QLabel") ||
            widget.inherits("QGroupBox")) &&
           !widget.inherits("QHeaderView");
}

std::string shown_text(const QWidget& widget) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->text().toStdString();
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget))
        return label->text().toStdString();
    if (const auto* box = qobject_cast<const QGroupBox*>(&widget))
        return box->title().toStdString();
    return {};
}

// Everything that a person who cannot see the window or has large fonts would stumble over.
std::vector<std::string> faults(const QWidget& window) {
    std::vector<std::string> found;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!is_ours(*widget)) continue;
        const std::string who =
            widget->objectName().toStdString() + " (" + widget->metaObject()->className() + ")";
        if (widget->objectName().isEmpty()) found.push_back(who + " has no name");
        if (shown_text(*widget).empty() && widget->accessibleName().isEmpty() &&
            !widget->inherits("QLabel")) {
            found.push_back(who + " has nothing to be read out");
        }
        const QSize needed = widget->minimumSizeHint();
        if (!shown_text(*widget).empty() && widget->objectName() != u"lab_status" &&
            (widget->width() < needed.width() || widget->height() < needed.height())) {
            found.push_back(who + " is cut off");
        }
    }
    return found;
}

} // namespace

TEST_F(Looks, nothing_is_nameless_or_cut_off) {
    if (samples_missing()) GTEST_SKIP();
    start();
    window->resize(window->width(), window->minimumHeight());
    QApplication::processEvents();
    EXPECT_THAT(faults(*window), IsEmpty());
    in_set_dialog([](QDialog& dialog) { EXPECT_THAT(faults(dialog), IsEmpty()); });
    choose("mnu_cvset_hinzu");
}

TEST_F(Looks, tab_follows_the_reading_order) {
    if (samples_missing()) GTEST_SKIP();
    start();
    sets().setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 12; ++i) {
        order.push_back(focus());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(order, ElementsAre("lst_sets", "opt_rescv_0", "opt_dec_0", "lst_CVs",
                                   "txt_cv_page_0", "txt_cv_page_1", "txt_cv_nummer", "txt_cv_wert",
                                   "lvw_Scripts", "cmd_Add", "cmd_import", "lst_sets"));
}

TEST_F(Looks, menus_have_their_names_and_captions) {
    start_bare();
    EXPECT_THAT(entries(window->menuBar()->actions()),
                ElementsAre("mnu_datei Datei", "mnu_cv_set CV Set", "mxu_FENTO FENTO",
                            "mnu_einstellungen Einstellungen", "mnu_extras Extras"));
    const struct {
        const char* menu;
        std::vector<std::string> entries;
    } menus[] = {
        {"mnu_datei",
         {"mnu_export_oem CV-Sets als vqx speichern (oem)",
          "mnu_export_user CV-Sets als vqx speichern (user)", "nix1 ",
          "mnu_open_database Datenbank öffnen", "mnu_open_last Datenbank öffnen letzte Datei",
          "mnu_create_database Datenbank erstellen", "nix2 ", "mnu_datei_beenden Beenden"}},
        {"mnu_cv_set",
         {"mnu_cvset_hinzu Hinzufügen", "mnu_cvset_rename Umbenennen (Doppelklick)",
          "mnu_cvset_del Löschen (Entf)", "mnu_cvset_copy Kopieren", "mnu_cvset_paste Einfügen",
          "mnu_cvset_export_txt In Zwischenablage"}},
        {"mxu_FENTO",
         {"mnu_CVSet_Laden Gewähltes CV-Set in QD-Decoder laden",
          "mnu_get_decodertyp Decodertyp abfragen"}},
        {"mnu_copymenu", {"mnu_copy Kopieren", "mnu_paste Einfügen"}},
        {"mnu_extras",
         {"mnu_undo Rückgängig", "mnu_redo Wiederholen", "nix3 ",
          "mnu_restore Sicherung wiederherstellen", "nix4 ",
          "mnu_alle_lesen Alle CVs aus Decoder lesen",
          "mnu_alle_schreiben Alle CVs in Decoder schreiben", "mnu_susi Über SUSI",
          "mnu_protokoll Protokoll der Übertragung", "nix5 ",
          "mnu_vergleichen CV-Sets vergleichen"}},
    };
    for (const auto& menu : menus)
        EXPECT_EQ(entries(get<QMenu>(menu.menu).actions()), menu.entries);
    const auto ours = get<QMenu>("mnu_extras").actions();
    for (QAction* action : window->findChildren<QAction*>()) {
        EXPECT_TRUE(ours.contains(action) || action->shortcut().isEmpty())
            << action->text().toStdString();
    }
}

TEST_F(Looks, the_decoder_family_decides_what_is_offered) {
    if (samples_missing()) GTEST_SKIP();
    start();
    const auto enabled = [&](const char* name) { return get<QAction>(name).isEnabled(); };
    const auto visible = [&](const char* name) { return get<QWidget>(name).isVisible(); };
    for (const bool qd : {false, true, false}) {
        SCOPED_TRACE(qd);
        click_option(qd ? "opt_dec_1" : "opt_dec_0");
        EXPECT_EQ(enabled("mnu_export_oem"), !qd);
        EXPECT_EQ(enabled("mnu_export_user"), !qd);
        EXPECT_EQ(visible("Frame_Reset"), !qd);
        for (const char* part :
             {"lab_cv_page_hi", "lab_cv_page_lo", "txt_cv_page_0", "txt_cv_page_1"}) {
            EXPECT_EQ(visible(part), !qd) << part;
        }
    }
}

TEST_F(Looks, frames_and_lists_follow_the_height) {
    start_bare();
    EXPECT_EQ(window->minimumWidth(), 1063);
    EXPECT_EQ(window->maximumWidth(), 1063);
    EXPECT_EQ(window->minimumHeight(), 504);
    for (const int height : {504, 505, 700, 811}) {
        SCOPED_TRACE(height);
        window->resize(1063, height);
        QApplication::processEvents();
        const int inner = window->centralWidget()->height();
        const auto pixels = [&](int twips) { return to_pixels(app::Twips{inner * 15 - twips}); };
        EXPECT_EQ(get<QGroupBox>("Frame_Sets").height(), pixels(100));
        EXPECT_EQ(get<QGroupBox>("Frame_CVs").height(), pixels(100));
        EXPECT_EQ(sets().height(), pixels(1600));
        EXPECT_EQ(cvs().height(), pixels(1605));
        EXPECT_EQ(get<QLabel>("lab_anz_cvs_txt").y(), pixels(400));
        EXPECT_EQ(get<QLabel>("lab_Anz_CVs").y(), pixels(400));
    }
}

TEST_F(Looks, an_empty_list_says_what_to_do_first) {
    const auto says = [&](const char* list) {
        auto& view = get<QAbstractItemView>(list);
        const QImage picture = view.viewport()->grab().toImage();
        QImage blank = picture;
        blank.fill(picture.pixel(0, 0));
        const std::string said = view.accessibleDescription().toStdString();
        EXPECT_EQ(view.model()->rowCount() > 0, said.empty());
        EXPECT_NE(picture, blank) << "rows or the hint";
        return said;
    };
    const auto cvs_say = [&] { return says("lst_CVs"); };
    start_bare();
    EXPECT_THAT(says("lst_sets"), HasSubstr("Keine Datenbank geöffnet: Menü „Datei“"));
    EXPECT_THAT(cvs_say(), HasSubstr("CVs des gewählten"));
    window.reset();
    put_template();
    start_bare();
    EXPECT_EQ(says("lst_sets"),
              "Noch keine CV-Sets: Menü „CV Set“, „Hinzufügen“, oder eine Datenbank öffnen");
    EXPECT_THAT(says("lvw_Scripts"), HasSubstr("Scripte des gewählten"));
    add_set("Neu");
    EXPECT_EQ(says("lst_sets"), "");
    EXPECT_THAT(cvs_say(), HasSubstr("Noch keine CVs"));
    EXPECT_THAT(says("lvw_Scripts"), HasSubstr("Keine Scripte in diesem"));
    field("txt_cv_nummer").setText(QStringLiteral("3"));
    field("txt_cv_wert").setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(cvs_say(), "");
    click_option("opt_rescv_1");
    EXPECT_THAT(says("lst_sets"), HasSubstr("unten die andere Reset-CV"));
    EXPECT_THAT(cvs_say(), HasSubstr("CVs des gewählten"));
    add_set("Fuer QR");
    click_option("opt_rescv_0");
    window->Delete_Set(get<Entry_List>("lst_sets").key(0));
    click_option("opt_dec_1");
    EXPECT_THAT(says("lst_sets"), HasSubstr("die anderen zeigt der Decoder „QR“"));
    click_option("opt_dec_0");
    click_option("opt_rescv_1");
    window->Delete_Set(get<Entry_List>("lst_sets").key(0));

    database.Connection_Close();
    disk.protect(default_path);
    window->Open_Database();
    EXPECT_THAT(says("lst_sets"), Not(HasSubstr("Hinzufügen"))) << "nothing can be added";
}

TEST_F(Looks, words_of_the_trade_are_explained_in_a_sentence) {
    start_bare();
    const struct {
        const char* control;
        const char* explained;
    } tips[] = {{"Frame_Reset", "Reset-CV"}, {"opt_rescv_1", "Reset-CV"},
                {"opt_dec_0", "QR"},         {"opt_dec_1", "QD"},
                {"txt_cv_page_0", "höhere"}, {"txt_cv_page_1", "niedrigere"}};
    for (const auto& c : tips) {
        const std::string tip = get<QWidget>(c.control).toolTip().toStdString();
        EXPECT_THAT(tip, AllOf(HasSubstr(c.explained), testing::EndsWith("."))) << c.control;
    }
}

TEST(Entry_List_Test, refilling_keeps_the_place_and_keys_find_their_rows) {
    Entry_List list(nullptr);
    const QAbstractItemModelTester tester(list.model());
    const auto fill = [](int first) {
        return [first](store::List_Filler& filler) {
            filler.add(QStringLiteral("dropped"), 1);
            filler.clear();
            for (int i = first; i < 200; ++i) filler.add(QString::number(i), 1000 + i);
        };
    };
    list.refill(fill(0));
    list.resize(100, 200);
    list.show();
    list.select_row(150);
    int changes = 0;
    QObject::connect(&list, &Entry_List::selection_changed, [&] { ++changes; });
    const QRect before = list.visualRect(list.model()->index(150, 0));
    list.refill(fill(0));
    EXPECT_EQ(list.visualRect(list.model()->index(150, 0)), before);
    EXPECT_THAT(list.selected_rows(), IsEmpty());
    EXPECT_EQ(list.selected_key(), 0);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(list.row_of(1150), 150);
    list.refill(fill(150));
    EXPECT_EQ(list.row_of(1150), 0);
    EXPECT_EQ(list.row_of(1149), std::nullopt);
    EXPECT_EQ(list.key(50), 0);
}
