#include "ui/main/link_commands.h"

#include "app/mod_main.h"
#include "link/jobs/cv_tables.h"
#include "store/clipboard_texts.h"
#include "store/clsDBConn.h"
#include "ui/main/library_view.h"
#include "ui/main/link_texts.h"
#include "ui/main/menus.h"
#include "ui/main/messages.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <algorithm>

namespace ui_main {
namespace {

using link_jobs::Job_Mode;
using link_jobs::Outcome;
using End = Outcome::End;

constexpr int milliseconds_for_writing = 100; ///< a CV, about

/// Both sentences, of which either may be missing.
QString joined(const QString& first, const QString& second) {
    return first.isEmpty() || second.isEmpty() ? first + second : first + u' ' + second;
}

} // namespace

Link_Commands::Link_Commands(const Surroundings& at, link_ui::Link_Center& center)
    : at_(at), center_(center) {
    const auto run = [this](void (Link_Commands::*work)(bool), bool susi) {
        return at_.messages.command([this, work, susi] { (this->*work)(susi); });
    };
    at.menus.bring({
        {"mnu_CVSet_Laden", run(&Link_Commands::load_set, false), Family::qd},
        {"mnu_get_decodertyp", run(&Link_Commands::query, false), Family::qd},
        {"mnu_alle_lesen", run(&Link_Commands::read_all, false)},
        {"mnu_alle_schreiben", run(&Link_Commands::write_all, false)},
        {"mnu_susi_laden", run(&Link_Commands::load_set, true)},
        {"mnu_susi_typ", run(&Link_Commands::query, true)},
        {"mnu_susi_lesen", run(&Link_Commands::read_all, true)},
        {"mnu_susi_schreiben", run(&Link_Commands::write_all, true)},
        {.name = "mnu_protokoll", .run = [this] { center_.show_log(); }, .during_job = true},
    });
    connect(&at.view, &Library_View::shown, &center, &link_ui::Link_Center::look_at_repeat);
}

bool Link_Commands::expect_set() {
    if (at_.view.selected_set() == 0) {
        at_.messages.say_no_set();
        return false;
    }
    const store::Blocked why = at_.database.opening().blocked;
    if (!store::is_incomplete(why)) return true;
    at_.messages.say(QStringLiteral("Nichts geladen: ") + ui_parts::reason(why, {}));
    return false;
}

std::optional<std::vector<store::CVRec>> Link_Commands::cvs_of(std::int32_t SetID) {
    std::vector<store::CVRec> cvs = at_.database.cvs_of(SetID);
    if (at_.messages.say_trouble() || at_.view.leave_gone_set()) return std::nullopt;
    return cvs;
}

link_ui::Job Link_Commands::job_on_set(Job_Mode mode, bool susi) {
    const std::int32_t SetID = at_.view.selected_set();
    const QString file = at_.database.database_file();
    link_ui::Job job;
    job.mode = mode;
    job.susi = susi;
    job.what = at_.view.shown_set();
    job.cvs = [this, SetID] { return cvs_of(SetID); };
    job.may_repeat = [this, SetID, file] {
        return at_.view.selected_set() == SetID && at_.database.database_file() == file;
    };
    return job;
}

void Link_Commands::load_set(bool susi) {
    if (!expect_set()) return;
    link_ui::Job job = job_on_set(Job_Mode::write_set, susi);
    job.caption = QStringLiteral("CV-Set schreiben");
    job.done = [this, set = job.what, susi](const Outcome& outcome) {
        return set_loaded(set, susi, outcome);
    };
    center_.start(std::move(job));
}

QString Link_Commands::set_loaded(const QString& set, bool susi, const Outcome& outcome) {
    if (outcome.end == End::done) {
        const QString done =
            QStringLiteral("CV-Set „%1“ in „%2“ geladen.").arg(set, outcome.values.decoder.name);
        at_.messages.say_and_log(joined(done, losses(outcome)), QString());
        return losses(outcome);
    }
    QString why = failure_sentence(outcome);
    if (outcome.begun)
        why += QStringLiteral(" Der Decoder enthält „%1“ vielleicht nur zum Teil.").arg(set);
    at_.messages.say_and_log(why, QString());
    if (outcome.end == End::unsupported)
        why += (susi ? QStringLiteral(" Menü „Extras“, „Über SUSI“, „Alle CVs schreiben“")
                     : QStringLiteral(" Menü „Extras“, „Alle CVs in Decoder schreiben“")) +
               QStringLiteral(" schreibt sie einzeln.");
    return why;
}

void Link_Commands::query(bool susi) {
    link_ui::Job job;
    job.mode = Job_Mode::query;
    job.susi = susi;
    job.caption = QStringLiteral("Decoder-Infos abfragen");
    job.done = [this](const Outcome& outcome) {
        QString why = failure_sentence(outcome);
        at_.messages.say_and_log(
            why.isEmpty()
                ? QStringLiteral("Decoder gefunden: „%1“.").arg(outcome.values.decoder.name)
                : why,
            QString());
        return why;
    };
    center_.start(std::move(job));
}

void Link_Commands::write_all(bool susi) {
    if (!expect_set()) return;
    link_ui::Job job = job_on_set(Job_Mode::write_all, susi);
    const auto cvs = job.cvs();
    if (!cvs) return;
    const auto values = link_jobs::values_to_write(*cvs);
    const auto count =
        std::ranges::count_if(values, [](const auto& value) { return value.has_value(); });
    const auto seconds = std::max<std::int64_t>(1, count * milliseconds_for_writing / 1000);
    const QString question =
        QStringLiteral(
            "Alle CVs von „%1“ einzeln in den Decoder schreiben? CVs: %2, Dauer etwa %3 s.")
            .arg(job.what)
            .arg(count)
            .arg(seconds);
    if (!at_.desktop.ask_yes_no(text(Text::attention), question)) return;
    job.caption = QStringLiteral("Daten werden in Decoder übertragen");
    job.done = [this, set = job.what](const Outcome& outcome) { return all_written(set, outcome); };
    center_.start(std::move(job));
}

QString Link_Commands::all_written(const QString& set, const Outcome& outcome) {
    QString said = failure_sentence(outcome);
    if (said.isEmpty())
        said = QStringLiteral("Alle CVs von „%1“ in „%2“ geschrieben.")
                   .arg(set, outcome.values.decoder.name);
    else if (outcome.begun)
        said += QStringLiteral(" Der Decoder enthält „%1“ vielleicht nur zum Teil.").arg(set);
    at_.messages.say_and_log(said, QString());
    return outcome.end == End::done ? QString() : said;
}

void Link_Commands::read_all(bool susi) {
    if (!at_.messages.expect_library()) return;
    if (!at_.database.writable()) {
        at_.messages.say(
            QStringLiteral("Nichts gelesen, weil es nicht gespeichert werden könnte: ") +
            ui_parts::reason(at_.database.opening()));
        return;
    }
    link_ui::Job job;
    job.mode = Job_Mode::read_all;
    job.susi = susi;
    job.caption = QStringLiteral("Daten werden aus Decoder geladen");
    job.done = [this](const Outcome& outcome) { return all_read(outcome); };
    center_.start(std::move(job));
}

QString Link_Commands::all_read(const Outcome& outcome) {
    QString why = failure_sentence(outcome);
    if (outcome.last_read == 0) {
        at_.messages.say_and_log(why, QString());
        return why;
    }
    const QString name = name_of_read(outcome, center_.date());
    if (store_read(outcome, name)) {
        const QString said = QStringLiteral("Gelesen und als CV-Set „%1“ gespeichert.").arg(name);
        at_.view.say_outcome(joined(why, said));
        return joined(why, said);
    }
    at_.messages.say_trouble();
    if (at_.gate.nobody_to_ask()) return why;
    const auto records = link_jobs::records_read(outcome.read, outcome.values.decoder.cv_space);
    const QString question = QStringLiteral(
        "Die gelesenen CVs konnten nicht gespeichert werden. In die Zwischenablage legen?");
    const auto wanted = at_.desktop.ask_whether_to_keep(text(Text::attention), question);
    if (wanted != desktop::Desktop::Answer::no) // minutes of reading are not lost by a wrong key
        at_.messages.say(at_.desktop.Set_Clipboard_Text({store::cvs_text(records), {}})
                             ? text(Text::cvs_copied).arg(static_cast<int>(records.size()))
                             : text(Text::clipboard_refused));
    return why;
}

bool Link_Commands::store_read(const Outcome& outcome, const QString& name) {
    const auto records = link_jobs::records_read(outcome.read, outcome.values.decoder.cv_space);
    std::int32_t SetID = 0;
    bool kept = false;
    {
        store::Operation operation(at_.database);
        std::int16_t number = 0;
        SetID = at_.database.DB_Add_CVSet(name, number, app::globals.AktResCV);
        if (SetID != 0) at_.database.AktCVSetID(SetID);
        bool written = SetID != 0;
        for (store::CVRec cv : records) written = written && at_.database.DB_Write_CV(cv);
        kept = written && operation.keep();
    }
    // Whoever edits a script goes on with its set, most of all while he is asked about it.
    const bool stays = !kept || at_.gate.somebody_may_stay();
    at_.view.refill_sets(stays ? at_.view.selected_set() : SetID);
    return kept;
}

} // namespace ui_main
