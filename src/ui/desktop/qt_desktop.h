#pragma once

#include "platform/desktop/desktop.h"

namespace ui_desktop {

/// The desktop that this program runs on, with Qt's own dialogs on top of the active window.
class Qt_Desktop final : public desktop::Desktop {
public:
    QString documents_folder() override;
    QString local_data_folder() override;
    QStringList common_data_folders() override;
    std::vector<desktop::Bounds> monitors() override;

    QString clipboard_text() override;
    bool set_clipboard_text(const QString& text) override;

    std::optional<QString> ask_open_file(const desktop::File_Choice& choice) override;
    std::optional<QString> ask_save_file(const desktop::File_Choice& choice) override;
    std::optional<QString> ask_folder(const QString& initial) override;
    bool ask_yes_no(const QString& title, const QString& text) override;
    void inform(const QString& title, const QString& text) override;
};

} // namespace ui_desktop
