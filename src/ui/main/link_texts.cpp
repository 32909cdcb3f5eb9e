#include "ui/main/link_texts.h"

#include "link/serial/port_trouble.h"

#include <QDateTime>
#include <QStringList>

namespace ui_main {

using End = link_jobs::Outcome::End;

QString failure_sentence(const link_jobs::Outcome& outcome) {
    if (outcome.end == End::cancelled) return QStringLiteral("Abgebrochen.");
    if (outcome.trouble) return link_serial::sentence(*outcome.trouble);
    if (outcome.out_of_step)
        return QStringLiteral(
            "Es kamen mehr Antworten als Fragen: Das Gelesene ist falsch und wurde "
            "nicht gespeichert; bitte noch einmal versuchen.");
    switch (outcome.end) {
    case End::not_connected:
        return QStringLiteral(
            "Kein Decoder gefunden: Steht die Lok auf dem Programmiergleis, und ist "
            "das Interface eingeschaltet?");
    case End::unsupported:
        return QStringLiteral("Der Decoder kann keine CV-Sets laden.");
    case End::failed:
        return QStringLiteral("Der Decoder hat nicht geantwortet; bitte noch einmal versuchen.");
    default:
        return {};
    }
}

QString losses(const link_jobs::Outcome& outcome) {
    QStringList parts;
    if (outcome.refused > 0)
        parts.append(QStringLiteral("Vom Decoder abgelehnte CVs: %1.").arg(outcome.refused));
    if (outcome.not_admitted > 0)
        parts.append(
            QStringLiteral("CVs, die dieser Decoder nicht lädt: %1.").arg(outcome.not_admitted));
    return parts.join(u' ');
}

QString name_of_read(const link_jobs::Outcome& outcome, const QDateTime& date) {
    QString name = outcome.values.decoder.name + date.toString(QStringLiteral(" yyyy-MM-dd HH:mm"));
    if (outcome.end != End::done) name += QStringLiteral(" (bis CV %1)").arg(outcome.last_read);
    return name;
}

} // namespace ui_main
