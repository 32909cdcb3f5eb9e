#include "ui/main/kept_copies.h"

#include "app/mod_main.h"
#include "store/clsDBConn.h"

namespace ui_main {

Kept_Copies::Kept_Copies(files::Disk& disk, store::clsDBConn& database)
    : disk_(disk), database_(database) {}

Kept_Copies::~Kept_Copies() { database_.keep_copies(nullptr); }

store::Backups& Kept_Copies::get() {
    if (!backups_) {
        backups_ = std::make_unique<store::Backups>(disk_, app::globals.UserDataDir);
        database_.keep_copies(backups_.get());
    }
    return *backups_;
}

} // namespace ui_main
