#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace desktop {

/// A part of the desktop in pixels at 96 dpi; right and bottom are the first pixel beyond.
struct Bounds {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Bounds&) const = default;
};

struct Monitor {
    Bounds bounds;
    Bounds available; ///< what the desktop's panels leave of it, as far as they are known
};

/// What a file dialog shows at first and which files it offers.
struct File_Choice {
    QString folder;    ///< initial folder
    QString file;      ///< proposed file name; may be empty
    QString extension; ///< with its point (".mdb"); added to a name that does not end with it
    /// As shown, with the patterns in brackets: "Datenbank (*.mdb)", "Scripts (*.vqs;*.vqr)".
    QString filter;
};

/// What the clipboard holds, in two forms at most.
struct Clipboard {
    QString text; ///< for everybody; empty: no text there
    QString own;  ///< the same in a form that only copies of this program read; may be empty
    bool operator==(const Clipboard&) const = default;
};

/// What the program asks of the desktop it runs on. The real one lives in ui/desktop, tests bring
/// one that answers from a script. Folders are absolute, without a separator at the end.
class Desktop {
public:
    virtual ~Desktop() = default;

    virtual QString documents_folder() = 0;
    virtual QString local_data_folder() = 0; ///< data of this user on this computer
    /// Data shared by all users, the most fitting folder first; at least one.
    virtual QStringList common_data_folders() = 0;
    virtual std::vector<Monitor> monitors() = 0;

    /// What other programs put there has no form of our own.
    virtual Clipboard Get_Clipboard_Text() = 0;
    /// Takes the place of what was there. @return whether it was accepted
    [[nodiscard]] virtual bool Set_Clipboard_Text(const Clipboard& content) = 0;

    /// @return the full path of an existing file; nothing when the user cancelled.
    [[nodiscard]] virtual std::optional<QString> ask_open_file(const File_Choice& choice) = 0;
    /// @return the full path to write to, extension added; asks no question about existing files.
    [[nodiscard]] virtual std::optional<QString> ask_save_file(const File_Choice& choice) = 0;
    /// @return the chosen folder; nothing when the user cancelled.
    [[nodiscard]] virtual std::optional<QString> ask_folder(const QString& initial) = 0;
    enum class Answer { yes, no, cancel };
    /// A question with the buttons Yes, No and Cancel; closing the box means Cancel.
    [[nodiscard]] virtual Answer ask_yes_no_cancel(const QString& title, const QString& text) = 0;
    /// Whether to keep what would be lost otherwise, with the buttons Yes and No; Enter means Yes.
    /// Closing the box answers nothing: Cancel.
    [[nodiscard]] virtual Answer ask_whether_to_keep(const QString& title, const QString& text) = 0;
    /// A question with the buttons Yes and No; closing the box means No.
    [[nodiscard]] virtual bool ask_yes_no(const QString& title, const QString& text) = 0;
    virtual void inform(const QString& title, const QString& text) = 0;
};

/// The path with the extension, unless it ends with it already, in whatever letter case.
QString with_extension(const QString& path, const QString& extension);

} // namespace desktop
