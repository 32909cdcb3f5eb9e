#include "ui/desktop/german_files.h"

#include <QDateTime>
#include <QFileSystemModel>
#include <QLocale>

namespace ui_desktop {
namespace {

// Columns of Qt's model; they have no names there.
constexpr int size_column = 1;
constexpr int date_column = 3;

// Qt says "Bytes" in every language.
QString shown_size(qint64 bytes) {
    constexpr qint64 kilobyte = 1024;
    return bytes < kilobyte ? QStringLiteral("%1 Byte").arg(bytes)
                            : QLocale().formattedDataSize(bytes);
}

} // namespace

QVariant German_Files::data(const QModelIndex& index, int role) const {
    const auto* files = qobject_cast<const QFileSystemModel*>(sourceModel());
    const QModelIndex file = mapToSource(index);
    if (role == Qt::DisplayRole && files != nullptr && file.isValid()) {
        if (file.column() == size_column && !files->isDir(file))
            return shown_size(files->size(file));
        if (file.column() == date_column)
            return QLocale().toString(files->lastModified(file), QLocale::ShortFormat);
    }
    return QIdentityProxyModel::data(index, role);
}

} // namespace ui_desktop
