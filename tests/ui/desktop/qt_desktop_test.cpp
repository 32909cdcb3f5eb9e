#include "ui/desktop/qt_desktop.h"

#include "ui/desktop/german.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTranslator>
#include <QTreeView>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace {

/// Real dialogs, in German, answered as soon as they are shown.
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
    void type_name(const QString& name) {
        in_dialog([name](QDialog& dialog) {
            auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            field->setText(name);
            QTest::keyClick(field, Qt::Key_Return);
        });
    }
    static std::vector<std::string> button_texts(QDialog& dialog) {
        std::vector<std::string> texts;
        for (const QPushButton* button : dialog.findChildren<QPushButton*>()) {
            texts.push_back(button->text().remove(u'&').toStdString());
        }
        return texts;
    }
    desktop::File_Choice choice(const char* file) {
        return {folder.path(), QString::fromUtf8(file), QStringLiteral(".mdb"),
                QStringLiteral("Datenbank (*.mdb)")};
    }
    QString path(const char* name) { return folder.filePath(QString::fromUtf8(name)); }
    void make(const char* name) { QFile(path(name)).open(QFile::WriteOnly); }

    QTemporaryDir folder;
    ui_desktop::Qt_Desktop desktop;
};

} // namespace

TEST_F(Qt_Desktop_Test, saving_adds_the_extension_and_asks_nothing_of_its_own) {
    make("alt.mdb");
    const struct {
        const char* typed;
        const char* path;
    } cases[] = {{"neu", "neu.mdb"},
                 {"alt", "alt.mdb"},
                 {"alt.mdb", "alt.mdb"},
                 {"Anlage 1.2", "Anlage 1.2.mdb"}};
    for (const auto& c : cases) {
        type_name(QString::fromUtf8(c.typed));
        EXPECT_EQ(desktop.ask_save_file(choice("")), path(c.path)) << c.typed;
    }
    in_dialog([](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(desktop.ask_save_file(choice("alt.mdb")), std::nullopt);
}

TEST_F(Qt_Desktop_Test, opening_takes_files_that_exist) {
    make("alt.mdb");
    type_name(QStringLiteral("alt"));
    EXPECT_EQ(desktop.ask_open_file(choice("")), path("alt.mdb"));
    in_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
                  QStringLiteral("alt.mdb"));
    });
    EXPECT_EQ(desktop.ask_open_file(choice("alt.mdb")), std::nullopt);
}

TEST_F(Qt_Desktop_Test, a_filter_may_have_several_patterns) {
    for (const char* const name : {"a.vqs", "b.vqr", "c.mdb"}) make(name);
    in_dialog([&](QDialog& dialog) {
        auto& view = *dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return view.model()->rowCount(view.rootIndex()) == 2; }));
    });
    desktop::File_Choice scripts = choice("");
    scripts.filter = QStringLiteral("Scripts (*.vqs;*.vqr)");
    desktop.ask_open_file(scripts);
}

TEST_F(Qt_Desktop_Test, sizes_and_dates_are_german_and_sorted_by_their_values) {
    const struct {
        const char* name;
        int size;
        QDateTime changed;
        std::string shown;
    } files[] = {
        {"ganz klein.mdb", 700, QDateTime({2026, 5, 14}, {9, 7}), "700 Byte; 14.05.26 09:07"},
        {"klein.mdb", 1200, QDateTime({2026, 5, 14}, {9, 7}), "1,17 KiB; 14.05.26 09:07"},
        {"mittel.mdb", 1536, QDateTime({2025, 12, 31}, {18, 30}), "1,50 KiB; 31.12.25 18:30"},
        {"zz gross.mdb", 2'097'152, QDateTime({2026, 1, 2}, {0, 0}), "2,00 MiB; 02.01.26 00:00"},
    };
    for (const auto& file : files) {
        QFile made(path(file.name));
        ASSERT_TRUE(made.open(QFile::WriteOnly) && made.resize(file.size) &&
                    made.setFileTime(file.changed, QFile::FileModificationTime));
    }
    in_dialog([&](QDialog& dialog) {
        auto& view = *dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
        const auto shown = [&](int row) {
            const auto cell = [&](int column) {
                return view.model()->index(row, column, view.rootIndex()).data().toString();
            };
            return (cell(1) + QStringLiteral("; ") + cell(3)).toStdString();
        };
        ASSERT_TRUE(QTest::qWaitFor([&] { return view.model()->rowCount(view.rootIndex()) == 4; }));
        view.sortByColumn(1, Qt::AscendingOrder);
        for (int row = 0; row < 4; ++row) EXPECT_EQ(shown(row), files[row].shown);
    });
    desktop.ask_open_file(choice(""));
}

TEST_F(Qt_Desktop_Test, a_folder_is_chosen_by_any_name_in_it) {
    type_name(QStringLiteral("gibt es nicht"));
    EXPECT_EQ(desktop.ask_folder(folder.path()), folder.path() + u'/');
}

TEST_F(Qt_Desktop_Test, questions_are_german_and_closing_them_means_no) {
    in_dialog([](QDialog& dialog) {
        EXPECT_THAT(button_texts(dialog), testing::UnorderedElementsAre("Ja", "Nein"));
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Achtung"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_FALSE(desktop.ask_yes_no(QStringLiteral("Achtung"), QStringLiteral("Löschen?")));
    in_dialog([](QDialog& dialog) {
        qobject_cast<QMessageBox*>(&dialog)->button(QMessageBox::Yes)->click();
    });
    EXPECT_TRUE(desktop.ask_yes_no(QStringLiteral("Achtung"), QStringLiteral("Löschen?")));
    in_dialog([](QDialog& dialog) {
        EXPECT_THAT(button_texts(dialog), testing::UnorderedElementsAre("Ja", "Nein", "Abbrechen"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    EXPECT_EQ(desktop.ask_yes_no_cancel(QStringLiteral("Script"), QStringLiteral("Speichern?")),
              desktop::Desktop::Answer::cancel);
    in_dialog([](QDialog& dialog) {
        qobject_cast<QMessageBox*>(&dialog)->button(QMessageBox::No)->click();
    });
    EXPECT_EQ(desktop.ask_yes_no_cancel(QStringLiteral("Script"), QStringLiteral("Speichern?")),
              desktop::Desktop::Answer::no);
    in_dialog([](QDialog& dialog) {
        EXPECT_THAT(button_texts(dialog), testing::Contains("Abbrechen"));
        EXPECT_THAT(button_texts(dialog), testing::Contains("Speichern"));
    });
    desktop.ask_save_file(choice("x.mdb"));
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
        auto& field = *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        field.setText(QStringLiteral("gibt es nicht"));
        QTest::keyClick(&field, Qt::Key_Return);
    };
    in_dialog([&](QDialog& dialog) {
        auto& view = *dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return view.model()->rowCount(view.rootIndex()) == 2; }));
        look(dialog);
        const Closer closer;
        view.setCurrentIndex(view.model()->index(1, 0, view.rootIndex()));
        QTest::keyClick(&view, Qt::Key_Delete);
        EXPECT_EQ(view.model()->index(0, 2, view.rootIndex()).data().toString(),
                  QStringLiteral("Ordner"));
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
