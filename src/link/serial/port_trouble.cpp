#include "link/serial/port_trouble.h"

namespace link_serial {
namespace {

using serial::Failure;

struct Trouble_Text {
    Failure kind;
    const char16_t* german; ///< %1 port or device
};

constexpr Trouble_Text trouble_texts[] = {
    {Failure::not_found,
     u"„%1“ gibt es nicht: Interface einstecken oder einen anderen Port wählen."},
    {Failure::locked_elsewhere,
     u"„%1“ wird von einem anderen Programm benutzt; bitte dort schließen."},
    {Failure::no_port, u"„%1“ ist kein serieller Port; bitte einen anderen wählen."},
    {Failure::settings,
     u"„%1“ kennt diese Übertragungsart nicht; bitte einen anderen Port wählen."},
    {Failure::vanished,
     u"„%1“ ist verschwunden: Interface wieder einstecken und noch einmal versuchen."},
    {Failure::not_open, u"„%1“ ist nicht geöffnet."},
    {Failure::device,
     u"„%1“ meldet einen Fehler: Interface neu einstecken und noch einmal versuchen."},
};

QString held_sentence(const serial::Error& trouble) {
    return QStringLiteral("„%1“ wird von „%2“ benutzt; bitte dort schließen.")
        .arg(QString::fromStdString(trouble.subject), QString::fromStdString(trouble.holder));
}

QString rights_sentence(const serial::Error& trouble) {
    const serial::Missing_Rights& rights = trouble.rights;
    const QString group = QString::fromStdString(rights.group);
    QString said = QStringLiteral("„%1“ darf nicht benutzt werden: ")
                       .arg(QString::fromStdString(trouble.subject));
    if (rights.joined)
        said += QStringLiteral("Die Gruppe „%1“ gilt erst nach neuem Anmelden.").arg(group);
    else if (!rights.group.empty())
        said += QStringLiteral("Es fehlt die Gruppe „%1“ (sudo adduser $USER %1, neu anmelden).")
                    .arg(group);
    else
        said += QStringLiteral("Nur „%1“ darf es.").arg(QString::fromStdString(rights.owner));
    return said;
}

} // namespace

QString sentence(const serial::Error& trouble) {
    if (trouble.kind == Failure::denied) return rights_sentence(trouble);
    if (trouble.kind == Failure::locked_elsewhere && !trouble.holder.empty())
        return held_sentence(trouble);
    for (const Trouble_Text& each : trouble_texts)
        if (each.kind == trouble.kind)
            return QString::fromUtf16(each.german).arg(QString::fromStdString(trouble.subject));
    return QString::fromStdString(trouble.detail);
}

} // namespace link_serial
