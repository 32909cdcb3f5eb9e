#include "platform/desktop/folders.h"

#include <QDir>
#include <QStandardPaths>

namespace desktop {

QString documents_folder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

QString local_data_folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QStringList common_data_folders(const QString& program_folder) {
    QStringList folders{QDir::cleanPath(program_folder + QStringLiteral("/../share"))};
    for (const QString& folder :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        if (folder != local_data_folder()) folders.append(folder);
    }
    folders.removeDuplicates();
    return folders;
}

} // namespace desktop
