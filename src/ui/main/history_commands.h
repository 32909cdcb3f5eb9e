#pragma once

#include "store/undo_history.h"
#include "ui/main/surroundings.h"

#include <QObject>

namespace ui_main {

class File_Commands;
struct Command;
enum class Text;

/// The ways back: undo, redo and copies of the library.
class History_Commands final : public QObject {
    Q_OBJECT
public:
    History_Commands(const Surroundings& at, File_Commands& files);

private:
    bool leave_for_history();
    void undo();
    void redo();
    void go_through_history(const store::Undo_Result& result, Text done, Text nothing);
    void restore_backup();

    Surroundings at_;
    File_Commands& files_;
    store::Undo_History history_;
};

} // namespace ui_main
