// The window under a real window manager, on a display of its own: this program, started anew for
// each display.

#include "main_window.h"

#include "support/temporary_folder.h"
#include "ui/desktop/qt_desktop.h"

using namespace ui_main;

namespace {

const std::string settings_file = "/home/anna/.local/share/KELDA/TRV/CVSets_Inits.ini";
constexpr int panel = 30; ///< at the foot of the display, in its own pixels

QString text_of(const std::string& text) { return QString::fromStdString(text); }

/// A server of its own and openbox on it, both gone at the end.
struct Managed_Display {
    explicit Managed_Display(const char* size) {
        server.start(QStringLiteral("Xvfb"),
                     {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                      QStringLiteral("0"), QString::fromLatin1(size), QStringLiteral("-noreset"),
                      QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        if (!server.waitForReadyRead(20'000)) return;
        environment.insert(QStringLiteral("DISPLAY"),
                           u':' + QString::fromLatin1(server.readLine().trimmed()));
        const QString rules = text_of(folder / "rc.xml");
        QFile file(rules);
        if (!file.open(QFile::WriteOnly)) return;
        file.write("<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><margins><bottom>" +
                   QByteArray::number(panel) + "</bottom></margins></openbox_config>");
        file.close();
        const QString ready = text_of(folder / "ready");
        manager.setProcessEnvironment(environment);
        manager.start(QStringLiteral("openbox"),
                      {QStringLiteral("--sm-disable"), QStringLiteral("--config-file"), rules,
                       QStringLiteral("--startup"), QStringLiteral("touch ") + ready});
        works = QTest::qWaitFor([&] { return QFile::exists(ready); }, 20'000);
    }
    ~Managed_Display() {
        for (QProcess* each : {&manager, &server}) {
            each->terminate();
            each->waitForFinished(5000);
        }
    }
    Managed_Display(const Managed_Display&) = delete;
    Managed_Display& operator=(const Managed_Display&) = delete;

    support::Temporary_Folder folder;
    QProcess server;
    QProcess manager;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    bool works = false;
};

struct Window_Manager_Test : Main_Window_Test {
    void SetUp() override { put_template(); }

    void put_settings(const char* lines) {
        for (const char* folder :
             {"/home/anna/.local", "/home/anna/.local/share", "/home/anna/.local/share/KELDA",
              "/home/anna/.local/share/KELDA/TRV"})
            if (!disk.folder_exists(folder)) disk.make_folder(folder);
        const auto bytes = std::as_bytes(std::span(std::string_view(lines)));
        disk.set_bytes(settings_file, {bytes.begin(), bytes.end()});
    }

    /// Starts the program and waits until all of the window is on the screen.
    QRect placed() {
        app::reset_globals();
        start_bare();
        const QRect room = window->screen()->availableGeometry();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return !window->windowHandle()->frameMargins().isNull() &&
                   room.contains(window->frameGeometry());
        })) << QTest::toString(window->frameGeometry())
            << " is not in " << QTest::toString(room);
        return window->frameGeometry();
    }

    void look() {
        desktop.screens = ui_desktop::Qt_Desktop().monitors();
        ASSERT_EQ(desktop.screens[0].available.bottom, window_room().bottom() + 1);
        const char* stored[] = {"", "\"Main_Window_Left\",30000\r\n\"Main_Window_Top\",30000\r\n",
                                "\"Main_Window_Height\",9000000\r\n\"Main_Window_Top\",-70\r\n",
                                "\"Main_Window_Height\",7560\r\n\"Main_Window_Left\",300\r\n"
                                "\"Main_Window_Top\",600\r\n"};
        for (const char* settings : stored) {
            SCOPED_TRACE(settings);
            put_settings(settings);
            const QRect first = placed();
            window->close();
            EXPECT_EQ(placed(), first) << "the next start brings it to the same place";
            window->close();
        }
        EXPECT_EQ(window->frameGeometry().topLeft(), QPoint(20, 40)) << "left and top of the frame";
    }
    /// A script is opened in front, ready to be written, and gives the front back.
    void look_at_editor() {
        put_settings("");
        placed();
        add_set("Neu");
        get<QPushButton>("cmd_Add").click();
        window->Open_Script(1);
        QWidget* editor = nullptr;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == QStringLiteral("frm_script")) editor = top;
        ASSERT_NE(editor, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return window_room().contains(editor->frameGeometry());
        })) << QTest::toString(editor->frameGeometry());
        EXPECT_TRUE(QTest::qWaitFor([] { return focus() == "combo_Command_0"; })) << focus();
        type("gehe zu");
        press(Qt::Key_Tab);
        EXPECT_EQ(focus(), "combo_Param1_0");
        press(Qt::Key_Down);
        EXPECT_EQ(focus(), "combo_Command_1") << "the unused line has nothing else";
        press(Qt::Key_Up);
        type("-");
        QWidget other;
        other.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
        other.close(); // nobody was asked whether to delete
        EXPECT_TRUE(QTest::qWaitFor([] { return focus() == "combo_Command_0"; })) << focus();
        EXPECT_EQ(editor->findChild<QComboBox*>(QStringLiteral("combo_Command_0"))->currentText(),
                  QStringLiteral("Gehe zu State"));
        for (int i = 0; i < 3; ++i) press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(focus(), "combo_Command_0") << "keys go on with nothing left to undo";
        editor->findChild<QPushButton*>(QStringLiteral("cmd_cancel"))->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->isActiveWindow(); }));
        window->close();
    }
    static QRect window_room() { return QGuiApplication::primaryScreen()->availableGeometry(); }
};

} // namespace

TEST_F(Window_Manager_Test, all_of_the_window_is_seen_and_comes_back_to_its_place) {
    if (qEnvironmentVariableIsSet("CV_SETS_TEST_DISPLAY")) {
        look();
        look_at_editor();
        return;
    }
    for (const char* needed : {"Xvfb", "openbox"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(needed)).isEmpty())
            GTEST_SKIP() << needed << " is not installed";
    const struct {
        const char* size;
        const char* scale;
    } displays[] = {{"1280x720x24", "1"}, {"2560x1440x24", "2"}, {"1920x1200x24", "1"}};
    for (const auto& display : displays) {
        SCOPED_TRACE(display.size);
        Managed_Display session(display.size);
        ASSERT_TRUE(session.works);
        session.environment.insert(QStringLiteral("CV_SETS_TEST_DISPLAY"), QStringLiteral("yes"));
        session.environment.insert(QStringLiteral("QT_SCALE_FACTOR"),
                                   QString::fromLatin1(display.scale));
        QProcess again;
        again.setProcessEnvironment(session.environment);
        again.setProcessChannelMode(QProcess::MergedChannels);
        again.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--gtest_filter=Window_Manager_Test.*")});
        EXPECT_TRUE(again.waitForFinished(120'000));
        EXPECT_EQ(again.exitCode(), 0) << again.readAll().toStdString();
    }
}
