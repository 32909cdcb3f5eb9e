#include "ui/main/menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <iterator>

namespace ui_main {
namespace {

enum class Kind {
    command,
    separator,
    menu, ///< stands in a menu or, without the name of one, in the menu bar
    popup ///< a menu that stands nowhere
};

struct Menu_Row {
    const char* menu; ///< name of the menu that holds it; empty for the menu bar itself
    const char* name;
    const char16_t* caption;
    Kind kind = Kind::command;
};

/// Names and captions are those under which people and manuals know the entries.
constexpr Menu_Row menu_rows[] = {
    {"", "mnu_datei", u"&Datei", Kind::menu},
    {"mnu_datei", "mnu_export_oem", u"CV-Sets als vqx speichern (&oem)"},
    {"mnu_datei", "mnu_export_user", u"CV-Sets als vqx speichern (&user)"},
    {"mnu_datei", "nix1", u"", Kind::separator},
    {"mnu_datei", "mnu_open_database", u"Datenbank ö&ffnen"},
    {"mnu_datei", "mnu_open_last", u"Datenbank öffnen &letzte Datei", Kind::menu},
    {"mnu_datei", "mnu_create_database", u"Datenbank &erstellen"},
    {"mnu_datei", "nix2", u"", Kind::separator},
    {"mnu_datei", "mnu_datei_beenden", u"&Beenden"},

    {"", "mnu_cv_set", u"&CV Set", Kind::menu},
    {"mnu_cv_set", "mnu_cvset_hinzu", u"&Hinzufügen"},
    {"mnu_cv_set", "mnu_cvset_rename", u"&Umbenennen (Doppelklick)"},
    {"mnu_cv_set", "mnu_cvset_del", u"&Löschen (Entf)"},
    {"mnu_cv_set", "mnu_cvset_copy", u"&Kopieren"},
    {"mnu_cv_set", "mnu_cvset_paste", u"&Einfügen"},
    {"mnu_cv_set", "mnu_cvset_export_txt", u"In &Zwischenablage"},

    {"", "mxu_FENTO", u"&FENTO", Kind::menu},
    {"mxu_FENTO", "mnu_CVSet_Laden", u"&Gewähltes CV-Set in QD-Decoder laden"},
    {"mxu_FENTO", "mnu_get_decodertyp", u"&Decodertyp abfragen"},

    {"", "mnu_copymenu", u"Copy", Kind::popup},
    {"mnu_copymenu", "mnu_copy", u"&Kopieren"},
    {"mnu_copymenu", "mnu_paste", u"&Einfügen"},

    {"", "mnu_einstellungen", u"&Einstellungen"},

    {"", "mnu_extras", u"E&xtras", Kind::menu},
    {"mnu_extras", "mnu_undo", u"&Rückgängig"},
    {"mnu_extras", "mnu_redo", u"&Wiederholen"},
    {"mnu_extras", "nix3", u"", Kind::separator},
    {"mnu_extras", "mnu_restore", u"&Sicherung wiederherstellen"},
    {"mnu_extras", "nix4", u"", Kind::separator},
    {"mnu_extras", "mnu_alle_lesen", u"Alle CVs aus Decoder &lesen"},
    {"mnu_extras", "mnu_alle_schreiben", u"Alle CVs in Decoder s&chreiben"},
    {"mnu_extras", "mnu_susi", u"Über S&USI", Kind::menu},
    {"mnu_susi", "mnu_susi_laden", u"&Gewähltes CV-Set laden"},
    {"mnu_susi", "mnu_susi_typ", u"&Decodertyp abfragen"},
    {"mnu_susi", "mnu_susi_lesen", u"Alle CVs &lesen"},
    {"mnu_susi", "mnu_susi_schreiben", u"Alle CVs s&chreiben"},
    {"mnu_extras", "mnu_protokoll", u"&Protokoll der Übertragung"},
    {"mnu_extras", "nix5", u"", Kind::separator},
    {"mnu_extras", "mnu_vergleichen", u"CV-Sets &vergleichen"},
};

bool is_menu(const Menu_Row& entry) {
    return entry.kind == Kind::menu || entry.kind == Kind::popup;
}

} // namespace

Menus::Menus(QMainWindow& window, const app::Job_State& job) : window_(window), job_(job) {
    build();
    connect(&job, &app::Job_State::changed, this, &Menus::enable);
    enable();
}

// A menu has its name on both faces: itself and the entry that opens it.
void Menus::build() {
    for (const Menu_Row& each : menu_rows) {
        QAction* action = nullptr;
        if (is_menu(each)) {
            auto* made = new QMenu(QString::fromUtf16(each.caption), &window_);
            made->setObjectName(QString::fromLatin1(each.name));
            connect(made, &QMenu::aboutToShow, this, [this, made] {
                Q_EMIT opening();
                tell_what_is_possible(*made);
            });
            connect(made, &QMenu::aboutToHide, this, &Menus::enable);
            action = made->menuAction();
        } else {
            action = new QAction(QString::fromUtf16(each.caption), &window_);
            action->setSeparator(each.kind == Kind::separator);
        }
        action->setObjectName(QString::fromLatin1(each.name));
        actions_.push_back(action);
        if (each.kind == Kind::popup) continue;
        QWidget* place = window_.menuBar();
        if (*each.menu != 0) place = &menu(each.menu);
        place->addAction(action);
    }
}

QMenu& Menus::menu(const char* name) const { return *entry(name).menu<QMenu*>(); }

QAction& Menus::entry(const char* name) const {
    const auto* found = std::ranges::find_if(
        menu_rows, [&](const Menu_Row& each) { return qstrcmp(each.name, name) == 0; });
    return *actions_.at(static_cast<std::size_t>(found - std::begin(menu_rows)));
}

void Menus::bring(std::vector<Command> commands) {
    for (const Command& command : commands) {
        QAction& action = entry(command.name);
        action.setShortcut(command.keys);
        connect(&action, &QAction::triggered, this, command.run);
    }
    std::ranges::move(commands, std::back_inserter(commands_));
    enable();
}

void Menus::choose_family(Family family) {
    family_ = family;
    enable();
}

// As long as no menu is open.
void Menus::enable() {
    for (const Menu_Row& each : menu_rows) {
        if (each.kind == Kind::menu && *each.menu != 0) entry(each.name).setEnabled(!job_.runs());
        if (each.kind != Kind::command) continue;
        const auto brought = std::ranges::find_if(
            commands_, [&](const Command& one) { return qstrcmp(one.name, each.name) == 0; });
        QAction& action = entry(each.name);
        action.setText(QString::fromUtf16(each.caption));
        action.setEnabled(brought != commands_.end() &&
                          (brought->family == Family::any || brought->family == family_) &&
                          (brought->during_job || !job_.runs()));
    }
}

void Menus::tell_what_is_possible(const QMenu& menu) {
    for (const Command& command : commands_) {
        QAction& action = entry(command.name);
        if (!command.now || !menu.actions().contains(&action)) continue;
        const Command::Now now = command.now();
        if (!now.more.isEmpty()) action.setText(action.text() + u": "_qs + now.more);
        action.setEnabled(action.isEnabled() && now.possible);
    }
}

} // namespace ui_main
