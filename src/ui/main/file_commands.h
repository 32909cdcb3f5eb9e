#pragma once

#include "store/clsDBConn.h"
#include "ui/main/surroundings.h"

#include <QObject>

class QMenu;

namespace ui_main {

/// Opening and making libraries.
class File_Commands final : public QObject {
    Q_OBJECT
public:
    explicit File_Commands(const Surroundings& at);

    void Open_Database(); ///< Database_Path + Database_File
    void Fill_Last_Files_Menu();
    /// The file that is opened first is new.
    void default_database_made();
    void no_default_database(const files::Error& reason);

private:
    void open_database();
    void create_database();
    void reopen(int entry); ///< of the recently used files
    bool make_database(const QString& path);
    void say_opening();
    void append_protection(QStringList& parts, const store::Opening& opening) const;
    QString why_not_opened(const QString& path, const store::Trouble& trouble);
    void say_not_made(const QString& path, files::Error reason);

    Surroundings at_;
    QMenu& mnu_open_last_;
};

} // namespace ui_main
