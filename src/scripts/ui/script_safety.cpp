#include "scripts/ui/script_safety.h"

#include "app/mod_main.h"
#include "app/one_line.h"
#include "platform/files/replace.h"

#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>
#include <span>

namespace scripts_ui {
namespace {

QString folder() { return app::globals.UserDataDir + QStringLiteral("Scripte"); }

/// Tells libraries apart: a path would be too long for a name, and has letters that none may have.
QString mark_of(const QString& library) {
    constexpr int length = 12;
    const QByteArray hash = QCryptographicHash::hash(library.toUtf8(), QCryptographicHash::Sha1);
    return QString::fromLatin1(hash.toHex().left(length));
}

} // namespace

QString plain_file_name(const QString& script) {
    constexpr qsizetype longest = 60;
    QString name;
    for (const QChar each : app::in_one_line(script).left(longest))
        name += each.isLetterOrNumber() || each == u' ' || each == u'-' ? each : QChar(u'_');
    name = name.trimmed();
    return name.isEmpty() ? QStringLiteral("Script") : name;
}

QString keep_script(files::Disk& disk, const QByteArray& file, const QString& name,
                    std::int32_t SetID, std::int32_t ScriptID, const QString& library) {
    if (const std::string there = folder().toStdString(); !disk.folder_exists(there))
        disk.make_folder(there);
    const QString plain = folder() + QDir::separator() + plain_file_name(name);
    const QString origin =
        QStringLiteral(" (%1-%2-%3).vqs").arg(SetID).arg(ScriptID).arg(mark_of(library));
    QString path = plain + origin;
    for (int number = 2; disk.file_exists(path.toStdString()); ++number) // of another copy
        path = plain + QStringLiteral(" %1").arg(number) + origin;
    files::replace_file(disk, path.toStdString(),
                        std::as_bytes(std::span(file.begin(), file.end())));
    return path;
}

std::vector<Kept_Script> kept_scripts(files::Disk& disk, const QString& library) {
    static const QRegularExpression form(
        QStringLiteral("^(.*) \\((-?\\d+)-(-?\\d+)-([0-9a-f]+)\\)\\.vqs$"));
    std::vector<Kept_Script> found;
    try {
        if (!disk.folder_exists(folder().toStdString())) return found;
        for (const std::string& name : disk.files_in(folder().toStdString())) {
            const QString file = QString::fromStdString(name);
            const auto parts = form.match(file);
            if (parts.hasMatch() && parts.captured(4) == mark_of(library))
                found.push_back({folder() + QDir::separator() + file, parts.captured(1),
                                 parts.captured(2).toInt()});
        }
    } catch (const files::Error&) {
        found.clear();
    }
    return found;
}

bool set_kept_aside(files::Disk& disk, const Kept_Script& script) {
    try {
        QString aside = script.path + QStringLiteral(".alt");
        for (int number = 2; disk.file_exists(aside.toStdString()); ++number)
            aside = script.path + QStringLiteral(".alt%1").arg(number);
        disk.rename(script.path.toStdString(), aside.toStdString());
        return true;
    } catch (const files::Error&) {
        return false;
    }
}

} // namespace scripts_ui
