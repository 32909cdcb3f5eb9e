#pragma once

#include "app/mod_main.h"
#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"
#include "platform/jet/database.h"
#include "platform/serial/fake_scomm.h"
#include "scripts/cls_script_coll.h"
#include "store/clsDBConn.h"
#include "support/scripted_desktop.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/entry_list.h"

#include <QtTest>
#include <QtWidgets>
#include <gmock/gmock.h>
#include <map>
#include <memory>

namespace ui_main {

using Answer = support::Scripted_Desktop::Answer;

/// The whole window on a disk in memory, worked through its front door: real keys and clicks on
/// controls found by their names.
class Main_Window_Test : public testing::Test {
protected:
    static constexpr const char* default_path = "/home/anna/Dokumente/KELDA/CV-Sets/CV-Sets.mdb";
    static constexpr const char* template_path = "/usr/share/KELDA/TRV/CV-Sets_leer.mdb";

    Main_Window_Test() {
        app::reset_globals();
        for (const char* folder :
             {"/home", "/home/anna", "/home/anna/Dokumente", "/home/anna/Dokumente/KELDA",
              "/home/anna/Dokumente/KELDA/CV-Sets", "/usr", "/usr/share", "/usr/share/KELDA",
              "/usr/share/KELDA/TRV"}) {
            disk.make_folder(folder);
        }
    }

    ~Main_Window_Test() override {
        window.reset();
        app::reset_globals();
        scripts::AktScripts().Clear();
    }

    static bool samples_missing() { return !files::real_disk().folder_exists(CV_SETS_SAMPLES); }

    void put_sample(const char* sample, const char* path) {
        disk.set_bytes(path, files::read_file(files::real_disk(), std::string(CV_SETS_SAMPLES) +
                                                                      "/" + sample + ".mdb"));
    }

    /// Puts the empty library where an installed program has it.
    void put_template() {
        disk.set_bytes(template_path, files::read_file(files::real_disk(), CV_SETS_BIN
                                                       "/../share/KELDA/TRV/CV-Sets_leer.mdb"));
    }

    /// Starts the program with a sample as its library.
    void start(const char* sample = "library_2000") {
        put_sample(sample, default_path);
        start_bare();
    }

    void start_bare() {
        window = std::make_unique<Frm_Main>(desktop, disk, database, ports, make_cab);
        window->load();
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    /// Adds a row behind the back of the program. @return its key
    std::int32_t put_row(const char16_t* table, const std::map<const char16_t*, jet::Value>& row) {
        auto library = jet::Database::open(disk, default_path, jet::Mode::read_write);
        const jet::Table stored = library.table(table).value();
        std::vector<jet::Cell> cells;
        for (const auto& [name, value] : row) cells.push_back({stored.column(name).value(), value});
        return stored.insert(cells).auto_number;
    }

    template <class Kind>
    Kind& get(const char* name) {
        auto* found = window->findChild<Kind*>(QString::fromLatin1(name));
        if (found == nullptr) throw std::runtime_error(std::string("no control ") + name);
        return *found;
    }

    Entry_List& sets() { return get<Entry_List>("lst_sets"); }
    Entry_List& cvs() { return get<Entry_List>("lst_CVs"); }
    QLineEdit& field(const char* name) { return get<QLineEdit>(name); }
    std::string text(const char* name) { return field(name).text().toStdString(); }
    std::string status() { return get<QLabel>("lab_status").text().toStdString(); }
    std::string count_label() { return get<QLabel>("lab_Anz_CVs").text().toStdString(); }

    static std::string row(Entry_List& list, int row) {
        return list.model()->index(row, 0).data().toString().toStdString();
    }
    static std::vector<std::string> rows(Entry_List& list) {
        std::vector<std::string> all;
        for (int i = 0; i < list.count(); ++i) all.push_back(row(list, i));
        return all;
    }
    /// Rows of the CV list without the blanks that align them.
    std::vector<std::string> cv_rows() {
        std::vector<std::string> all = rows(cvs());
        for (std::string& one : all) {
            QString text = QString::fromStdString(one);
            one = text.removeIf([](QChar c) { return c.isSpace(); }).toStdString();
        }
        return all;
    }
    /// Texts of the selected rows.
    static std::vector<std::string> selected(Entry_List& list) {
        std::vector<std::string> all;
        for (const int i : list.selected_rows()) all.push_back(row(list, i));
        return all;
    }

    void choose(const char* command) {
        get<QAction>(command).trigger();
        QApplication::setActiveWindow(
            window.get()); // no window manager gives it back after a dialog
    }
    /// Another window comes to the front for a while.
    void leave_and_return(const std::function<void()>& meanwhile = [] {}) {
        QWidget other;
        other.show();
        QApplication::setActiveWindow(&other);
        meanwhile();
        QApplication::setActiveWindow(window.get());
        QApplication::processEvents();
    }
    void click_option(const char* name) { get<QRadioButton>(name).click(); }
    void click_row(Entry_List& list, int row, Qt::KeyboardModifiers modifiers = {},
                   Qt::MouseButton button = Qt::LeftButton) {
        const QModelIndex index = list.model()->index(row, 0);
        list.scrollTo(index);
        QTest::mouseClick(list.viewport(), button, modifiers, list.visualRect(index).center());
    }
    /// Keys to whatever control has the focus.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    static void type(const char* keys) {
        QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(keys));
    }
    /// By its key, which asks nothing.
    void delete_chosen_set() {
        sets().setFocus();
        press(Qt::Key_Delete);
    }
    void store_cv(const char* number, const char* value) {
        field("txt_cv_nummer").setFocus();
        type(number);
        press(Qt::Key_Return);
        type(value);
        press(Qt::Key_Return);
    }
    void add_set(const char* name, const char* number = "") {
        answer_set_dialog(name, number);
        choose("mnu_cvset_hinzu");
    }
    /// What another running copy of the program does.
    void elsewhere(const std::function<bool(store::clsDBConn&)>& work) {
        store::clsDBConn other(disk);
        other.Connection_Start(QString::fromUtf8(default_path));
        EXPECT_TRUE(work(other));
    }
    static std::string focus() {
        const QWidget* widget = QApplication::focusWidget();
        return widget == nullptr ? "nothing" : widget->objectName().toStdString();
    }

    /// Fills frm_get_2_string, which the next command must open, and presses one of its buttons.
    void in_set_dialog(std::function<void(QDialog&)> act) {
        ++expected_dialogs_;
        QTimer::singleShot(0, window.get(), [this, act = std::move(act)] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr) << "no dialog came";
            --expected_dialogs_;
            act(*dialog);
            if (dialog->isVisible()) dialog->reject();
        });
    }
    static void press_button(QDialog& dialog, const char* name) {
        dialog.findChild<QPushButton*>(QString::fromLatin1(name))->click();
    }
    static QLineEdit& dialog_field(QDialog& dialog, const char* name) {
        return *dialog.findChild<QLineEdit*>(QString::fromLatin1(name));
    }
    void answer_set_dialog(const char* name, const char* number) {
        in_set_dialog(
            [name = QString::fromUtf8(name), number = QString::fromUtf8(number)](QDialog& dialog) {
                dialog_field(dialog, "Text1").setText(name);
                dialog_field(dialog, "Text2").setText(number);
                press_button(dialog, "cmd_ok");
            });
    }

    void TearDown() override { EXPECT_EQ(expected_dialogs_, 0) << "a dialog never came"; }

    files::Memory_Disk disk;
    support::Scripted_Desktop desktop;
    store::clsDBConn database{disk};
    timing::Virtual_Time link_time;
    scripts_ui::Make_Cab make_cab;
    link_ui::Link_Ports ports{[this] { return std::make_unique<serial::Fake_SComm>(link_time); },
                              link_time, link_transport::real_bit_loop()};
    std::unique_ptr<Frm_Main> window;

private:
    int expected_dialogs_ = 0;
};

} // namespace ui_main
