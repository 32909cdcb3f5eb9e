#include "ui/main/script_window.h"

#include "app/text_table.h"
#include "platform/files/replace.h"
#include "platform/timing/time.h"
#include "scripts/cls_script_coll.h"
#include "scripts/script_file.h"
#include "scripts/ui/UC_Scripte.h"
#include "store/script_import.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/messages.h"
#include "ui/parts/trouble_texts.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace ui_main {

Script_Window::Script_Window(const Surroundings& at, scripts_ui::Make_Cab make_cab)
    : at_(at), make_cab_(std::move(make_cab)) {
    constexpr int milliseconds = 100;
    tmr_reopen_.setInterval(milliseconds);
    connect(&tmr_reopen_, &QTimer::timeout, this, [this] { Open_Script(waiting_); });
    connect(at.form.UC_Scripte1, &scripts_ui::UC_Scripte::open_wanted, this, [this](int position) {
        at_.messages.command([this, position] { Open_Script(position); })();
    });
    connect(&at.view, &Library_View::scripts_shown, this, [this] {
        if (window_) window_->scripts_loaded();
    });
}

void Script_Window::Open_Script(int position) {
    tmr_reopen_.stop();
    if (!scripts::AktScripts().exists(position)) return;
    if (window_ && window_->is_closing()) { // by a question that is still being asked
        waiting_ = position;
        tmr_reopen_.start();
        return;
    }
    if (!close()) return;
    if (!window_)
        window_ = std::make_unique<scripts_ui::frm_script>(scripts_ui::Script_Place{
            at_.desktop, at_.disk, at_.database, at_.gate, timing::real_time(), make_cab_,
            [this](const QString& sentence) { at_.messages.say(sentence); },
            [this] { at_.view.Redraw_Script_List(); }});
    window_->open(position);
}

void Script_Window::offer_kept_scripts() {
    const auto one = at_.messages.one_command();
    using enum desktop::Desktop::Answer;
    for (const scripts_ui::Kept_Script& kept :
         scripts_ui::kept_scripts(at_.disk, at_.database.database_file())) {
        at_.view.show_set(kept.SetID);
        if (at_.view.selected_set() == 0 || !at_.database.writable()) {
            at_.messages.say(
                QStringLiteral("Ein nicht gespeichertes Script liegt in %1.").arg(kept.path));
            continue;
        }
        const bool in_its_set = at_.view.selected_set() == kept.SetID;
        const auto wanted = at_.desktop.ask_whether_to_keep(
            app::TextTable.text(198),
            (in_its_set ? u"Das Script „%1“ des CV-Sets „%2“ war am Ende des Programms nicht "
                          u"gespeichert. Jetzt als neues Script in das CV-Set übernehmen?"_s
                        : u"Das Script „%1“ war am Ende des Programms nicht gespeichert, und sein "
                          u"CV-Set gibt es nicht mehr. Jetzt als neues Script in das CV-Set „%2“ "
                          u"übernehmen?"_s)
                .arg(ui_parts::shortened(kept.name), at_.view.shown_set()));
        const bool done = wanted == no || (wanted == yes && take_kept_script(kept));
        if (done && !scripts_ui::set_kept_aside(at_.disk, kept))
            at_.messages.say(
                QStringLiteral("%1 wird wieder angeboten: der Ordner kann nicht geändert werden.")
                    .arg(kept.path));
    }
}

/// @return false: it could not be taken, and is there the next time
bool Script_Window::take_kept_script(const scripts_ui::Kept_Script& kept) {
    try {
        const std::string path = kept.path.toStdString();
        if (!at_.disk.file_exists(path)) {
            at_.messages.say(QStringLiteral("Das Script „%1“ hat inzwischen wohl eine andere Kopie "
                                            "des Programms übernommen.")
                                 .arg(ui_parts::shortened(kept.name)));
            return false;
        }
        const std::vector<std::byte> bytes = files::read_file(at_.disk, path);
        const auto file = scripts::read_script_file(QByteArray(
            reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
        const bool room = scripts::AktScripts().Count() < scripts::cls_script_coll::max_scripts;
        if (!room || file.scripts.size() != 1) {
            at_.messages.say(
                (room
                     ? u"Nicht übernommen, da unvollständig; das Script liegt in %1."_s
                     : u"Nicht übernommen, weil das CV-Set 16 Scripte hat; das Script liegt in %1."_s)
                    .arg(kept.path));
            return false;
        }
        const bool taken = store::import_scripts(at_.database, file.scripts).kept;
        at_.view.Redraw_Script_List();
        if (taken)
            at_.form.UC_Scripte1->choose(scripts::AktScripts().Count());
        else
            at_.messages.say_trouble();
        return taken;
    } catch (const files::Error& error) {
        at_.messages.say_and_log(QStringLiteral("%1: ").arg(kept.path) +
                                     ui_parts::reason(error.kind),
                                 QString::fromUtf8(error.what()));
        return false;
    }
}

bool Script_Window::close() { return !window_ || window_->request_close(); }

} // namespace ui_main
