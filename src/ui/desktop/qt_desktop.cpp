#include "ui/desktop/qt_desktop.h"

#include "platform/desktop/folders.h"
#include "ui/desktop/german_files.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTreeView>
#include <utility>

namespace ui_desktop {
namespace {

// The proposed name of the folder dialog: any name will do, only its folder is taken.
const QString ignored_name = QStringLiteral("Filename will be ignored");

/// A dialog over the window that is active. That may go while the dialog is shown, and takes it along:
/// then it ends as if it had been closed.
template <class Dialog>
class Over_Window {
public:
    template <class... Given>
    explicit Over_Window(Given&&... given)
        : dialog_(new Dialog(std::forward<Given>(given)..., QApplication::activeWindow())) {}
    ~Over_Window() { delete dialog_.data(); }
    Over_Window(const Over_Window&) = delete;
    Over_Window& operator=(const Over_Window&) = delete;
    Dialog& operator*() const { return *dialog_; }
    Dialog* operator->() const { return dialog_.data(); }

private:
    const QPointer<Dialog> dialog_;
};

void prepare(QFileDialog& dialog, const desktop::File_Choice& choice) {
    dialog.resize(820, 480); // wide enough for names, sizes and dates
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
    dialog.setProxyModel(new German_Files(&dialog));
    if (QDir(choice.folder).exists()) dialog.setDirectory(choice.folder);
    if (!choice.filter.isEmpty()) dialog.setNameFilter(QString(choice.filter).replace(u';', u' '));
    if (!choice.file.isEmpty()) dialog.selectFile(choice.file);
}

std::optional<QString> answer(QFileDialog& dialog) {
    if (auto* parts = dialog.findChild<QSplitter*>(QStringLiteral("splitter")))
        parts->setSizes({160, 640}); // places keep their names
    if (auto* details = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        details->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    }
    if (dialog.exec() != QDialog::Accepted) return {};
    const QString path = dialog.selectedFiles().value(0);
    if (path.isEmpty()) return {};
    return QDir::toNativeSeparators(path);
}

desktop::Desktop::Answer answer(QMessageBox& box) {
    using enum desktop::Desktop::Answer;
    box.setTextFormat(Qt::PlainText);
    const int said = box.exec();
    return said == QMessageBox::Yes ? yes : said == QMessageBox::No ? no : cancel;
}

desktop::Desktop::Answer ask(const QString& title, const QString& text,
                             QMessageBox::StandardButtons buttons) {
    const Over_Window<QMessageBox> box(QMessageBox::Question, title, text, buttons);
    const bool can_cancel = buttons.testFlag(QMessageBox::Cancel);
    // what cannot be taken back is not one key away
    box->setDefaultButton(can_cancel ? QMessageBox::Cancel : QMessageBox::No);
    return answer(*box);
}

desktop::Bounds bounds(const QRect& place) {
    return {place.left(), place.top(), place.left() + place.width(), place.top() + place.height()};
}

} // namespace

QString Qt_Desktop::documents_folder() { return desktop::documents_folder(); }

QString Qt_Desktop::local_data_folder() { return desktop::local_data_folder(); }

QStringList Qt_Desktop::common_data_folders() {
    return desktop::common_data_folders(QCoreApplication::applicationDirPath());
}

std::vector<desktop::Monitor> Qt_Desktop::monitors() {
    std::vector<desktop::Monitor> all;
    for (const QScreen* screen : QGuiApplication::screens())
        all.push_back({bounds(screen->geometry()), bounds(screen->availableGeometry())});
    return all;
}

std::optional<QString> Qt_Desktop::ask_open_file(const desktop::File_Choice& choice) {
    const Over_Window<QFileDialog> dialog;
    prepare(*dialog, choice);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setDefaultSuffix(choice.extension.mid(1));
    return answer(*dialog);
}

std::optional<QString> Qt_Desktop::ask_save_file(const desktop::File_Choice& choice) {
    const Over_Window<QFileDialog> dialog;
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    prepare(*dialog, choice);
    const std::optional<QString> path = answer(*dialog);
    if (!path) return {};
    return desktop::with_extension(*path, choice.extension);
}

std::optional<QString> Qt_Desktop::ask_folder(const QString& initial) {
    const Over_Window<QFileDialog> dialog;
    prepare(*dialog, {initial, ignored_name, {}, {}});
    dialog->setFileMode(QFileDialog::AnyFile);
    const std::optional<QString> path = answer(*dialog);
    if (!path) return {};
    return path->left(path->lastIndexOf(desktop::separator) + 1);
}

desktop::Desktop::Answer Qt_Desktop::ask_yes_no_cancel(const QString& title, const QString& text) {
    return ask(title, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
}

desktop::Desktop::Answer Qt_Desktop::ask_whether_to_keep(const QString& title,
                                                         const QString& text) {
    const Over_Window<QMessageBox> box(QMessageBox::Question, title, text,
                                       QMessageBox::Yes | QMessageBox::No);
    QPushButton* nothing = box->addButton(QMessageBox::Cancel); // else Escape would press No
    nothing->hide();
    box->setEscapeButton(nothing);
    box->setDefaultButton(QMessageBox::Yes);
    return answer(*box);
}

bool Qt_Desktop::ask_yes_no(const QString& title, const QString& text) {
    return ask(title, text, QMessageBox::Yes | QMessageBox::No) == Answer::yes;
}

void Qt_Desktop::inform(const QString& title, const QString& text) {
    const Over_Window<QMessageBox> box(QMessageBox::Information, title, text, QMessageBox::Ok);
    box->setTextFormat(Qt::PlainText);
    box->exec();
}

} // namespace ui_desktop
