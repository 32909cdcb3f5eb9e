#pragma once

#include "ui/main/surroundings.h"

#include <QObject>

namespace store {
class cls_CV_Set;
struct Pasted;
} // namespace store

namespace ui_main {

class Cv_Panel;

/// Copying and pasting CVs and sets.
class Clipboard_Commands final : public QObject {
    Q_OBJECT
public:
    Clipboard_Commands(const Surroundings& at, Cv_Panel& cv_panel);

private:
    void copy_cvs();
    void copy_set();
    void copy_listing();
    void paste_cvs();
    void paste_set();
    void put_on_clipboard(const desktop::Clipboard& content, const QString& sentence);
    bool refuse_incomplete_copy();
    /// Loads the whole library into SetsObj. @return the selected set in it; nullptr: why is said
    const store::cls_CV_Set* load_selected_set();
    void paste(const store::Pasted& pasted);

    Surroundings at_;
    Cv_Panel& cv_panel_;
};

} // namespace ui_main
