#include "ui/main/menus.h"

#include "app/mod_fileverwaltung.h"
#include "ui/main/status_line.h"

#include <QMenu>
#include <QMenuBar>

namespace ui_main {
namespace {

struct Menu {
    const char* name;
    const char16_t* caption;
    bool in_bar;
};

constexpr Menu menus[] = {
    {"mnu_datei", u"&Datei", true},
    {"mnu_cv_set", u"&CV Set", true},
    {"mxu_FENTO", u"&FENTO", true},
    {"mnu_copymenu", u"Copy", false},  // pops up on the CV list only
    {"mnu_extras", u"E&xtras", false}, // comes last into the bar
};

// A menu with its name on both faces: the menu itself and the entry that opens it.
QMenu* named_menu(const char* name, const char16_t* caption, QWidget* parent) {
    auto* menu = new QMenu(QString::fromUtf16(caption), parent);
    menu->setObjectName(QString::fromLatin1(name));
    menu->menuAction()->setObjectName(menu->objectName());
    return menu;
}

// The path as a caption: "&" is no mnemonic in it.
QString caption_of(QString path) { return path.replace(u'&', QStringLiteral("&&")); }

} // namespace

const std::vector<Menu_Entry>& Frm_Main::menu_entries() {
    using Family = Menu_Entry::Family;
    static const std::vector<Menu_Entry> entries{
        {"mnu_datei", "mnu_export_oem", u"CV-Sets als vqx speichern (&oem)", &Frm_Main::export_oem,
         Family::qr},
        {"mnu_datei", "mnu_export_user", u"CV-Sets als vqx speichern (&user)",
         &Frm_Main::export_user, Family::qr},
        {"mnu_datei", "nix1", u""},
        {"mnu_datei", "mnu_open_database", u"Datenbank ö&ffnen", &Frm_Main::open_database},
        {"mnu_datei", "mnu_open_last", u"Datenbank öffnen &letzte Datei"},
        {"mnu_datei", "mnu_create_database", u"Datenbank &erstellen", &Frm_Main::create_database},
        {"mnu_datei", "nix2", u""},
        {"mnu_datei", "mnu_datei_beenden", u"&Beenden", &Frm_Main::end_program},
        {"mnu_cv_set", "mnu_cvset_hinzu", u"&Hinzufügen", &Frm_Main::add_set},
        {"mnu_cv_set", "mnu_cvset_rename", u"&Umbenennen (Doppelklick)", &Frm_Main::rename_set},
        {"mnu_cv_set", "mnu_cvset_del", u"&Löschen (Entf)", &Frm_Main::delete_set},
        {"mnu_cv_set", "mnu_cvset_copy", u"&Kopieren", &Frm_Main::copy_set},
        {"mnu_cv_set", "mnu_cvset_paste", u"&Einfügen", &Frm_Main::paste_set},
        {"mnu_cv_set", "mnu_cvset_export_txt", u"In &Zwischenablage", &Frm_Main::copy_listing},
        {"mxu_FENTO", "mnu_CVSet_Laden", u"&Gewähltes CV-Set in QD-Decoder laden", nullptr,
         Family::qd},
        {"mxu_FENTO", "mnu_get_decodertyp", u"&Decodertyp abfragen", nullptr, Family::qd},
        {"mnu_copymenu", "mnu_copy", u"&Kopieren", &Frm_Main::copy_cvs},
        {"mnu_copymenu", "mnu_paste", u"&Einfügen", &Frm_Main::paste_cvs},
        {"", "mnu_einstellungen", u"&Einstellungen", &Frm_Main::settings},
        {"mnu_extras", "mnu_undo", u"&Rückgängig", &Frm_Main::undo},
        {"mnu_extras", "mnu_redo", u"&Wiederholen", &Frm_Main::redo},
        {"mnu_extras", "nix3", u""},
        {"mnu_extras", "mnu_restore", u"&Sicherung wiederherstellen", &Frm_Main::restore_backup},
    };
    return entries;
}

void Frm_Main::build_menus() {
    for (const Menu& each : menus) {
        QMenu* menu = named_menu(each.name, each.caption, this);
        if (each.in_bar) menuBar()->addMenu(menu);
    }
    for (const Menu_Entry& entry : menu_entries()) {
        QWidget* place = menuBar();
        if (*entry.menu != 0) place = findChild<QMenu*>(QString::fromLatin1(entry.menu));
        if (qstrcmp(entry.name, "mnu_open_last") == 0) {
            mnu_open_last_ = named_menu(entry.name, entry.caption, this);
            place->addAction(mnu_open_last_->menuAction());
            continue;
        }
        auto* action = new QAction(QString::fromUtf16(entry.caption), this);
        action->setObjectName(QString::fromLatin1(entry.name));
        action->setSeparator(action->text().isEmpty());
        action->setData(action->text()); // for entries that change theirs
        if (entry.run != nullptr) connect(action, &QAction::triggered, this, command(entry.run));
        place->addAction(action);
    }
    mnu_cv_set_ = findChild<QMenu*>(QStringLiteral("mnu_cv_set"));
    mnu_copymenu_ = findChild<QMenu*>(QStringLiteral("mnu_copymenu"));
    build_extras();
    Fill_Last_Files_Menu();
    enable_commands();
}

void Frm_Main::build_extras() {
    menu_extras_ = findChild<QMenu*>(QStringLiteral("mnu_extras"));
    menuBar()->addMenu(menu_extras_);
    mnu_undo_ = findChild<QAction*>(QStringLiteral("mnu_undo"));
    mnu_redo_ = findChild<QAction*>(QStringLiteral("mnu_redo"));
    mnu_undo_->setShortcut(Qt::CTRL | Qt::Key_Z);
    mnu_redo_->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    connect(menu_extras_, &QMenu::aboutToShow, this, [this] { name_steps(true); });
    connect(menu_extras_, &QMenu::aboutToHide, this, [this] { name_steps(false); });
}

void Frm_Main::enable_commands() {
    const auto own = family_ == 0 ? Menu_Entry::Family::qr : Menu_Entry::Family::qd;
    for (const Menu_Entry& entry : menu_entries()) {
        auto* action = findChild<QAction*>(QString::fromLatin1(entry.name));
        if (action == nullptr || action->menu() != nullptr) continue;
        action->setEnabled(entry.run != nullptr &&
                           (entry.family == Menu_Entry::Family::any || entry.family == own));
    }
}

// Entries beyond the list stay as they are; one without a path says so by its dashes.
void Frm_Main::Fill_Last_Files_Menu() {
    QStringList paths = app::last_files_newest_first();
    if (paths.isEmpty() && mnu_open_last_->isEmpty()) paths.append(QStringLiteral("---"));
    for (int i = 0; i < paths.size(); ++i) {
        if (i == mnu_open_last_->actions().size()) {
            QAction* action = mnu_open_last_->addAction(QString());
            action->setObjectName(QStringLiteral("mnu_last_files_%1").arg(i));
            connect(action, &QAction::triggered, this, [this, i] {
                const Status_Line::One_Command one(*status_);
                reopen(i);
            });
        }
        QAction* entry = mnu_open_last_->actions().at(i);
        entry->setText(caption_of(paths[i]));
        entry->setData(paths[i]);
    }
}

} // namespace ui_main
