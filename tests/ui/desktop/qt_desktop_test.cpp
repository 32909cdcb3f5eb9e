#include "ui/desktop/qt_desktop.h"

#include "ui/desktop/german.h"

#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <gmock/gmock.h>
#include <set>

namespace {

/// Asked last, for what nobody has translated.
struct Untranslated final : QTranslator {
    QString translate(const char* context, const char* source, const char*, int) const override {
        const bool parsed = qstrcmp(context, "QShortcut") == 0 || qstrncmp(source, "Alt+", 4) == 0;
        const bool of_system = qstrcmp(context, "QIODevice") == 0; // for logs
        if (!parsed && !of_system) texts.insert(std::string(context) + ": " + source);
        return {};
    }
    bool isEmpty() const override { return false; }
    mutable std::set<std::string> texts;
} untranslated;

/// Closes whatever comes to the front of a dialog and is waited for.
struct Closer {
    Closer() {
        QObject::connect(&timer, &QTimer::timeout, [] {
            if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                box->reject();
        });
        timer.start(1);
    }
    QTimer timer;
};

/// Real dialogs, in German, answered as soon as they are shown.
struct Qt_Desktop_Test : testing::Test {
    static void SetUpTestSuite() {
        QCoreApplication::installTranslator(&untranslated);
        ui_desktop::speak_german(QStringLiteral("/nowhere")); // as without Qt's translations
        untranslated.texts.clear();
    }
    static void TearDownTestSuite() { QCoreApplication::removeTranslator(&untranslated); }

    void in_dialog(std::function<void(QDialog&)> act) {
        QTimer::singleShot(0, qApp, [act = std::move(act)] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            if (dialog->isVisible()) dialog->reject();
        });
    }
    static void enter(QDialog& dialog, const char* name) {
        auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        field->setText(QString::fromUtf8(name));
        QTest::keyClick(field, Qt::Key_Return);
    }
    void type_name(const char* name) {
        in_dialog([name](QDialog& dialog) { enter(dialog, name); });
    }
    /// Gives the dialog's files to `act` when they have all been listed.
    void in_list(int files, std::function<void(QDialog&, QTreeView&)> act) {
        in_dialog([=](QDialog& dialog) {
            auto& view = *dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
            ASSERT_TRUE(
                QTest::qWaitFor([&] { return view.model()->rowCount(view.rootIndex()) == files; }));
            act(dialog, view);
        });
    }
    static std::string cell(const QTreeView& view, int row, int column) {
        return view.model()->index(row, column, view.rootIndex()).data().toString().toStdString();
    }
    /// Presses the key, or the button where there is none.
    void answer(Qt::Key key, const char* button, const std::vector<std::string>& buttons) {
        in_dialog([=](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Achtung"));
            std::vector<std::string> texts;
            for (QPushButton* each : dialog.findChildren<QPushButton*>()) {
                if (each->isHidden()) continue;
                texts.push_back(each->text().remove(u'&').toStdString());
                if (texts.back() == button) each->click();
            }
            EXPECT_THAT(texts, testing::UnorderedElementsAreArray(buttons));
            if (key != 0) QTest::keyClick(&dialog, key);
        });
    }
    desktop::File_Choice choice(const char* file, const char* filter = "Datenbank (*.mdb)") {
        return {folder.path(), QString::fromUtf8(file), QStringLiteral(".mdb"),
                QString::fromUtf8(filter)};
    }
    QString path(const char* name) { return folder.filePath(QString::fromUtf8(name)); }
    void make(const char* name) { QFile(path(name)).open(QFile::WriteOnly); }

    QTemporaryDir folder;
    ui_desktop::Qt_Desktop desktop;
    const QString title = QStringLiteral("Achtung");
};

} // namespace

TEST_F(Qt_Desktop_Test, saving_adds_the_extension_and_asks_nothing_of_its_own) {
    make("alt.mdb");
    for (const auto& [typed, file] : {std::pair("neu", "neu.mdb"),
                                      {"alt.mdb", "alt.mdb"},
                                      {"alt", "alt.mdb"},
                                      {"Anlage 1.2", "Anlage 1.2.mdb"}}) {
        type_name(typed);
        EXPECT_EQ(desktop.ask_save_file(choice("")), path(file)) << typed;
    }
    in_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QDialogButtonBox*>()->buttons().at(0)->text(), u"S&peichern");
    });
    EXPECT_EQ(desktop.ask_save_file(choice("alt.mdb")), std::nullopt);
}

TEST_F(Qt_Desktop_Test, opening_takes_files_that_exist_and_choosing_a_folder_any_name_in_it) {
    make("alt.mdb");
    type_name("alt");
    EXPECT_EQ(desktop.ask_open_file(choice("")), path("alt.mdb"));
    in_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
                  QStringLiteral("alt.mdb"));
    });
    EXPECT_EQ(desktop.ask_open_file(choice("alt.mdb")), std::nullopt);
    type_name("gibt es nicht");
    EXPECT_EQ(desktop.ask_folder(folder.path()), folder.path() + u'/');
}

TEST_F(Qt_Desktop_Test, files_of_several_patterns_have_german_sizes_and_dates_sorted_by_value) {
    make("c.vqx");
    const struct {
        const char* name;
        int size;
        QDateTime changed;
        std::string shown_size, shown_date;
    } files[] = {
        {"klein.mdb", 700, QDateTime({2026, 5, 14}, {9, 7}), "700 Byte", "14.05.26 09:07"},
        {"mittel.vqs", 1536, QDateTime({2025, 12, 31}, {18, 30}), "1,50 KiB", "31.12.25 18:30"},
        {"zz gross.mdb", 2'097'152, QDateTime({2026, 1, 2}, {0, 0}), "2,00 MiB", "02.01.26 00:00"},
    };
    for (const auto& file : files) {
        QFile made(path(file.name));
        ASSERT_TRUE(made.open(QFile::WriteOnly) && made.resize(file.size) &&
                    made.setFileTime(file.changed, QFile::FileModificationTime));
    }
    in_list(3, [&](QDialog&, QTreeView& view) {
        view.sortByColumn(1, Qt::AscendingOrder);
        for (int row = 0; row < 3; ++row) {
            EXPECT_EQ(cell(view, row, 1), files[row].shown_size);
            EXPECT_EQ(cell(view, row, 3), files[row].shown_date);
        }
    });
    desktop.ask_open_file(choice("", "Beide (*.mdb;*.vqs)"));
}

TEST_F(Qt_Desktop_Test, questions_are_german_and_closing_them_means_no) {
    using Answer = desktop::Desktop::Answer;
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        answer(key, "", {"Ja", "Nein"});
        EXPECT_FALSE(desktop.ask_yes_no(title, QStringLiteral("Löschen?")));
    }
    answer({}, "Ja", {"Ja", "Nein"});
    EXPECT_TRUE(desktop.ask_yes_no(title, QStringLiteral("Löschen?")));
    for (const auto& [key, button, said] :
         {std::tuple(Qt::Key_Return, "", Answer::cancel), {Qt::Key{}, "Nein", Answer::no}}) {
        answer(key, button, {"Ja", "Nein", "Abbrechen"});
        EXPECT_EQ(desktop.ask_yes_no_cancel(title, QStringLiteral("Speichern?")), said);
    }
    for (const auto& [key, button, said] : {std::tuple(Qt::Key_Escape, "", Answer::cancel),
                                            {Qt::Key_Return, "", Answer::yes},
                                            {Qt::Key{}, "Nein", Answer::no}}) {
        answer(key, button, {"Ja", "Nein"});
        EXPECT_EQ(desktop.ask_whether_to_keep(title, QStringLiteral("Speichern?")), said);
    }
}

TEST_F(Qt_Desktop_Test, questions_end_with_the_window_that_they_belong_to) {
    const auto over_window = [](const std::function<void()>& ask) {
        auto window = std::make_unique<QWidget>();
        window->show();
        QApplication::setActiveWindow(window.get());
        QTimer::singleShot(0, qApp, [&window] { window.reset(); });
        ask();
        EXPECT_EQ(window, nullptr);
    };
    using Answer = desktop::Desktop::Answer;
    over_window([&] { EXPECT_EQ(desktop.ask_yes_no_cancel(title, title), Answer::cancel); });
    over_window([&] { EXPECT_EQ(desktop.ask_whether_to_keep(title, title), Answer::cancel); });
    over_window([&] { desktop.inform(title, title); });
    over_window([&] { EXPECT_FALSE(desktop.ask_save_file(choice("", ""))); });
}

TEST_F(Qt_Desktop_Test, whatever_of_qt_is_met_is_german_without_its_translations) {
    make("alt.mdb");
    QDir(folder.path()).mkdir(QStringLiteral("Ordner"));
    const auto look = [](QDialog& dialog) {
        const Closer closer;
        (new QScrollBar(Qt::Horizontal, &dialog))->show();
        (new QScrollBar(Qt::Vertical, &dialog))->show();
        for (QWidget* each : dialog.findChildren<QWidget*>()) {
            if (!each->isVisible()) continue;
            QContextMenuEvent wanted(QContextMenuEvent::Keyboard, each->rect().center(),
                                     each->mapToGlobal(each->rect().center()));
            QApplication::sendEvent(each, &wanted);
            if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
            QAccessibleInterface* told = QAccessible::queryAccessibleInterface(each);
            if (told == nullptr || told->actionInterface() == nullptr) continue;
            for (const QString& action : told->actionInterface()->actionNames()) {
                told->actionInterface()->localizedActionName(action);
                told->actionInterface()->localizedActionDescription(action);
            }
        }
        enter(dialog, "gibt es nicht");
    };
    in_list(2, [&](QDialog& dialog, QTreeView& view) {
        look(dialog);
        const Closer closer;
        view.setCurrentIndex(view.model()->index(1, 0, view.rootIndex()));
        QTest::keyClick(&view, Qt::Key_Delete);
        EXPECT_EQ(cell(view, 0, 2), "Ordner");
    });
    desktop.ask_open_file(choice(""));
    in_dialog(look);
    desktop.ask_save_file(choice(""));
    for (const auto& [keys, shown] :
         {std::pair(Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "Strg+Umschalt+Z"),
          {Qt::CTRL | Qt::Key_Insert, "Strg+Einfg"}})
        EXPECT_EQ(QKeySequence(keys).toString(QKeySequence::NativeText), QString::fromUtf8(shown));
    EXPECT_THAT(untranslated.texts, testing::IsEmpty());
}

TEST_F(Qt_Desktop_Test, the_clipboard_holds_a_form_of_our_own_beside_the_text) {
    const desktop::Clipboard both{QStringLiteral("SetName,a\r\n"), QStringLiteral("SetName,ä%2C")};
    EXPECT_TRUE(desktop.Set_Clipboard_Text(both));
    EXPECT_EQ(desktop.Get_Clipboard_Text(), both);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), both.text) << "what other programs see";
    QGuiApplication::clipboard()->setText(QStringLiteral("1;3\n"));
    EXPECT_EQ(desktop.Get_Clipboard_Text(), (desktop::Clipboard{QStringLiteral("1;3\n"), {}}));
    auto* picture = new QMimeData;
    picture->setData(QStringLiteral("image/png"), "no text");
    QGuiApplication::clipboard()->setMimeData(picture);
    EXPECT_EQ(desktop.Get_Clipboard_Text(), desktop::Clipboard{});
}
