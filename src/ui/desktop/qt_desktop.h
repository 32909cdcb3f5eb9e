#pragma once

#include "platform/desktop/desktop.h"

namespace ui_desktop {

/// The desktop that this program runs on, with Qt's own dialogs on top of the active window.
class Qt_Desktop final : public desktop::Desktop {
public:
    QString documents_folder() override;
    QString local_data_folder() override;
    QStringList common_data_folders() override;
    std::vector<desktop::Monitor> monitors() override;

    desktop::Clipboard Get_Clipboard_Text() override;
    bool Set_Clipboard_Text(const desktop::Clipboard& content) override;

    std::optional<QString> ask_open_file(const desktop::File_Choice& choice) override;
    std::optional<QString> ask_save_file(const desktop::File_Choice& choice) override;
    std::optional<QString> ask_folder(const QString& initial) override;
    Answer ask_yes_no_cancel(const QString& title, const QString& text) override;
    Answer ask_whether_to_keep(const QString& title, const QString& text) override;
    bool ask_yes_no(const QString& title, const QString& text) override;
    void inform(const QString& title, const QString& text) override;
};

} // namespace ui_desktop
