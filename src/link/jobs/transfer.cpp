#include "link/jobs/transfer.h"

#include "link/jobs/cv_tables.h"
#include "link/jobs/job_texts.h"
#include "link/serial/port_trouble.h"
#include "link/transport/cls_QD_Schiene_Soundload.h"
#include "link/transport/cls_SUSI_Soundload.h"

#include <algorithm>
#include <utility>

namespace link_jobs {
namespace {

using link_types::no_value;
using End = Outcome::End;

struct Capacity_Class {
    const char16_t* warning;
    std::optional<Family_Group> group;
};

/// By the number of the class.
constexpr Capacity_Class capacity_classes[] = {
    {u"", std::nullopt},
    {u"CV-Sets unterstützt (62 CVs max.)", Family_Group::cv256},
    {u"CV-Sets unterstützt (94 CVs max.)", Family_Group::cv256},
    {u"CV-Sets unterstützt (126 CVs max.)", Family_Group::cv256},
    {u"CV-Sets unterstützt (84 CVs max.)", Family_Group::cv1024},
    {u"CV-Sets unterstützt (169 CVs max.)", Family_Group::cv1024},
    {u"CV-Sets unterstützt (255 CVs max.)", Family_Group::cv1024},
    {u"", Family_Group::sound},
};

const QString not_loaded = QStringLiteral("CV-Sets nicht geladen!");
const QString unsupported = QStringLiteral("CV-Sets vom Decoder nicht unterstützt");

} // namespace

Transfer::Transfer(Order order, link_serial::frm_Soundload_cls& host, Job_Board& board,
                   link_transport::Bit_Loop& loop)
    : order_(std::move(order)), host_(host), board_(board), loop_(loop), values_(order_.values) {}

Transfer::~Transfer() = default;

Outcome Transfer::run() {
    values_.DecoderTypeCode = 0;
    values_.decoder.name.clear();
    values_.decoder.group = Family_Group::unknown;
    values_.info = {};
    board_.show([](Job_Display& display) { display = {}; });
    if (connect()) {
        body_start_ = host_.time().now();
        run_body();
    }
    disconnect();
    if (aborted()) outcome_.end = End::cancelled;
    outcome_.values = values_;
    return outcome_;
}

bool Transfer::connect() {
    if (order_.susi) {
        transport_ = std::make_unique<link_transport::cls_SUSI_Soundload>(host_, values_);
        say(QStringLiteral("Verbindung wird hergestellt (SUSI)"));
    } else {
        transport_ =
            std::make_unique<link_transport::cls_QD_Schiene_Soundload>(host_, values_, loop_);
        say(QStringLiteral("Verbindung wird hergestellt (Schiene)"));
    }
    if (transport_->Connect()) {
        say(QStringLiteral("Verbindung hergestellt"));
        show_decoder();
        return true;
    }
    say(QStringLiteral("Verbindung fehlgeschlagen"));
    if (host_.SComm1.is_open()) transport_->ExitProgramming();
    return false;
}

void Transfer::disconnect() {
    transport_->Disconnect();
    outcome_.trouble = transport_->trouble();
    if (outcome_.trouble && outcome_.trouble->kind == failure::Kind::vanished)
        values_.BasuModeActive = false; // an interface without power forgets it
    transport_.reset();
}

void Transfer::run_body() {
    outcome_.end = End::failed;
    switch (order_.mode) {
    case Job_Mode::read_all:
        return read_all();
    case Job_Mode::write_all:
        return write_all();
    case Job_Mode::query:
        return query();
    case Job_Mode::write_set:
        return load_set();
    }
}

void Transfer::say(const QString& Label1) {
    board_.show([&](Job_Display& display) { display.Label1 = Label1; });
}

void Transfer::show_decoder() {
    const link_types::Decoder_Info& info = values_.info;
    QString found = values_.decoder.name;
    if (info.CV7 != 0) found += QStringLiteral(" Version %1.%2").arg(info.CV7).arg(info.CV65);
    QString serial_number;
    if (values_.DecoderTypeCode == info.CV250)
        serial_number = QStringLiteral("Seriennummer = %1:%2:%3:%4")
                            .arg(info.CV250)
                            .arg(info.CV251)
                            .arg(info.CV252)
                            .arg(info.CV253);
    board_.show([&](Job_Display& display) {
        display.lab_decoder = found + QStringLiteral(" gefunden");
        display.lab_sn = serial_number;
    });
}

int Transfer::ask_capacity() {
    const int told = transport_->GetSetCVCapacity();
    const int number = told < static_cast<int>(std::size(capacity_classes)) ? told : 0;
    const Capacity_Class& capacity = capacity_classes[number];
    if (capacity.group) values_.decoder.group = *capacity.group;
    board_.show(
        [&](Job_Display& display) { display.lab_warnung = QString::fromUtf16(capacity.warning); });
    return number;
}

void Transfer::query() {
    if (ask_capacity() == 0)
        board_.show([](Job_Display& display) { display.lab_warnung = unsupported; });
    transport_->ReadDecoderInfo();
    show_decoder();
    outcome_.end = End::done;
}

void Transfer::load_set() {
    if (ask_capacity() == 0) {
        say(aborted() ? not_loaded : unsupported);
        transport_->ReadDecoderInfo();
        show_decoder();
        outcome_.end = End::unsupported;
        return;
    }
    log(QStringLiteral("Set-CV Start ") + boolean_text(transport_->SetCVStart()));
    outcome_.begun = true;
    int done = 0;
    for (const store::CVRec& cv : order_.cvs) {
        if (aborted()) break;
        log(QStringLiteral("Read CV %1").arg(cv.CVNr));
        load_cv(cv);
        show_progress(++done, static_cast<int>(order_.cvs.size()));
    }
    const bool taken = transport_->SetCVEnd();
    log(QStringLiteral("Set-CV End ") + boolean_text(taken));
    say(taken ? QStringLiteral("CV-Set geladen!") : not_loaded);
    if (taken) outcome_.end = End::done;
}

void Transfer::load_cv(const store::CVRec& cv) {
    if (!is_admitted(cv, values_.decoder.group)) {
        ++outcome_.not_admitted;
        return;
    }
    const int number = renumbered(cv.CVNr, values_.decoder.group);
    log(QStringLiteral("Write CV %1").arg(number));
    const bool taken = transport_->WriteSetCV(number, static_cast<std::uint8_t>(cv.CVWert));
    log(QStringLiteral("Write Set-CV ") + boolean_text(taken));
    // what never left was not refused
    if (!taken && !aborted() && host_.SComm1.is_open()) ++outcome_.refused;
}

// Both loops over all CVs

void Transfer::read_all() {
    say(QStringLiteral("Daten werden aus Decoder geladen"));
    const int last = values_.decoder.cv_space;
    bool failed = false;
    for (int cv = 1; cv <= last && !failed && !aborted(); ++cv) {
        const int value = transport_->ReadCV(cv);
        failed = value == no_value;
        if (failed) break;
        outcome_.last_read = cv;
        if (const auto number = kept_as(cv, last))
            outcome_.read.at(static_cast<std::size_t>(*number)) = static_cast<std::uint8_t>(value);
        show_cv(cv, last);
    }
    if (!failed && !aborted() && transport_->out_of_step()) {
        failed = outcome_.out_of_step = true;
        outcome_.last_read = 0;
        outcome_.read = {};
    }
    board_.show([&](Job_Display& display) {
        display.lab_warnung = last == 256 ? QStringLiteral("Achtung: CV355 und CV509-512 können "
                                                           "nicht ausgelesen werden!")
                                          : QString();
    });
    end_all(failed);
}

void Transfer::write_all() {
    say(QStringLiteral("Daten werden in Decoder übertragen"));
    const int last = last_to_write(values_.decoder.cv_space);
    const Cv_Buffer values = values_to_write(order_.cvs);
    bool failed = false;
    for (int cv = 1; cv <= last && !failed && !aborted(); ++cv) {
        const auto value = values.at(static_cast<std::size_t>(cv));
        const auto number = written_as(cv, values_.decoder.cv_space);
        if (value && number) {
            failed = !transport_->WriteCV(*number, *value);
            outcome_.begun = true;
        }
        if (!failed) show_cv(cv, last);
    }
    end_all(failed);
}

void Transfer::end_all(bool failed) {
    if (aborted()) return;
    say(failed ? QStringLiteral("Übertragung fehlgeschlagen")
               : QStringLiteral("Übertragung erfolgreich"));
    outcome_.end = failed ? End::failed : End::done;
}

void Transfer::show_cv(int cv, int last) {
    const int shown = last == 1023 ? 1024 : last;
    board_.show([&](Job_Display& display) {
        display.lab_sn = QStringLiteral("CV %1/%2").arg(cv).arg(shown);
    });
    show_progress(cv, last);
}

void Transfer::show_progress(int done, int all) {
    const timing::Milliseconds taken = host_.time().now() - body_start_;
    const QString left = done < all ? time_left(taken * (all - done) / done) : QString();
    board_.show([&](Job_Display& display) {
        display.ProgressBar1 = done * 100 / all;
        display.lab_time_left = left;
    });
}

Cv_Buffer values_to_write(const std::vector<store::CVRec>& cvs) {
    Cv_Buffer values;
    for (const store::CVRec& cv : cvs) {
        const bool there = cv.CVPageHi == 0 && cv.CVPageLo <= 3 && cv.CVNr >= 1 &&
                           static_cast<std::size_t>(cv.CVNr) < values.size() && cv.CVWert >= 0 &&
                           cv.CVWert <= 255;
        if (there)
            values.at(static_cast<std::size_t>(cv.CVNr)) = static_cast<std::uint8_t>(cv.CVWert);
    }
    values.at(31) = values.at(32) = std::uint8_t{0};
    return values;
}

std::vector<store::CVRec> records_read(const Cv_Buffer& read, int cv_space) {
    std::uint8_t hi = cv_space == 256 ? std::uint8_t{0} : read.at(31).value_or(0);
    std::uint8_t lo = cv_space == 256 ? std::uint8_t{1} : read.at(32).value_or(0);
    if (hi == 0 && lo == 0) lo = 1;
    std::vector<store::CVRec> records;
    for (std::size_t cv = 1; cv < read.size(); ++cv) {
        if (!read.at(cv)) continue;
        store::CVRec record;
        record.CVNr = static_cast<std::int16_t>(cv);
        record.CVWert = *read.at(cv);
        const bool paged = store::is_paged(static_cast<int>(cv));
        record.CVPageHi = paged ? hi : std::uint8_t{0};
        record.CVPageLo = paged ? lo : std::uint8_t{1};
        records.push_back(record);
    }
    return records;
}

} // namespace link_jobs
