#include "ui/parts/LabelEditLab.h"
#include "ui/parts/LabelEditUC.h"

#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>

namespace {

struct Cell_Editing : testing::Test {
    Cell_Editing() : window(std::make_unique<QWidget>()), edit(new ui_parts::LabelEditUC) {
        list = new QTreeWidget(window.get());
        list->setColumnCount(3);
        list->setRootIsDecorated(false);
        auto* other = new QLineEdit(window.get());
        (new QVBoxLayout(window.get()))->addWidget(list);
        window->layout()->addWidget(other);
        window->resize(300, 300);
        fill();
        for (int column = 0; column < 3; ++column) list->setColumnWidth(column, 200);
        edit->Init(*list, window.get());
        edit->Activate_Col(2);
        QObject::connect(edit, &ui_parts::LabelEditUC::TextChanged, edit,
                         [this](int row, int column, const QString& text) {
                             told += QStringLiteral("%1,%2=%3 ").arg(row).arg(column).arg(text);
                             if (then) then();
                         });
        QObject::connect(edit, &ui_parts::Label_Edit::EditEnd, edit,
                         [this] { told += QStringLiteral("end "); });
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        box = list->viewport()->findChild<QLineEdit*>();
        EXPECT_TRUE(box->objectName().startsWith(QStringLiteral("txtLabelEdit_")));
    }
    void fill() {
        list->clear();
        for (const char* name : {"Bremse", "Glocke"})
            new QTreeWidgetItem(list, {QStringLiteral("an"), QString::fromLatin1(name)});
    }
    /// The cell of row and column, both from 0.
    QRect cell(int row, int column) { return list->visualRect(list->model()->index(row, column)); }
    void right_click(int row, int column) {
        QTest::mouseClick(list->viewport(), Qt::RightButton, {},
                          cell(row, column).center() + QPoint(-60, 0));
    }
    void type(const char* text) { QTest::keyClicks(box, QString::fromLatin1(text)); }
    QString heard() { return std::exchange(told, {}); }

    std::unique_ptr<QWidget> window;
    QTreeWidget* list = nullptr;
    QPointer<ui_parts::LabelEditUC> edit;
    QPointer<QLineEdit> box;
    QString told;
    std::function<void()> then;
};

TEST_F(Cell_Editing, opens_over_the_cell_under_the_mouse_where_the_column_allows_it) {
    for (const int column : {0, 2}) {
        right_click(1, column);
        EXPECT_FALSE(box->isVisible()) << column;
    }
    for (const int scrolled : {0, 120}) {
        list->horizontalScrollBar()->setValue(scrolled);
        right_click(1, 1);
        ASSERT_TRUE(box->isVisible() && box->hasFocus()) << scrolled;
        EXPECT_EQ(box->geometry(), cell(1, 1));
        EXPECT_EQ(box->text(), QStringLiteral("Glocke"));
        list->horizontalScrollBar()->setValue(60);
        EXPECT_EQ(box->geometry(), cell(1, 1)) << "goes with its cell";
        QTest::keyClick(box, Qt::Key_Return);
    }
    EXPECT_EQ(heard(), QStringLiteral("end end ")) << "the same text";
    edit->longest_text(3);
    right_click(1, 1);
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(heard(), QStringLiteral("end ")) << "cut by the box, not by the user";
}

TEST_F(Cell_Editing, ends_by_enter_another_focus_or_another_edit_and_is_taken_back_by_escape) {
    const struct {
        std::function<void()> end;
        const char* told;
    } ways[] = {
        {[&] { QTest::keyClick(box, Qt::Key_Enter); }, "2,2=neu end "},
        {[&] { QTest::keyClick(box, Qt::Key_Tab); }, "2,2=neu end "},
        {[&] { edit->edit(1, 2); }, "2,2=neu end "},
        {[&] { QTest::keyClick(box, Qt::Key_Escape); }, "end "},
        {[&] { fill(); }, ""},
        {[&] { delete list->takeTopLevelItem(1); }, ""},
    };
    for (const auto& way : ways) {
        fill();
        edit->edit(2, 2);
        QTest::keyClick(box, Qt::Key_Up);
        type("neu");
        way.end();
        EXPECT_EQ(heard(), QString::fromLatin1(way.told)) << &way - ways;
        EXPECT_EQ(box->isVisible(), &way - ways == 2) << &way - ways;
        edit->drop();
    }
    then = [&] { fill(); };
    fill();
    edit->edit(2, 2);
    delete list->topLevelItem(0);
    type("neu");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(heard(), QStringLiteral("1,2=neu end ")) << "the row has moved up";
    EXPECT_TRUE(list->hasFocus());
}

TEST_F(Cell_Editing, survives_the_end_of_list_and_editor) {
    edit->edit(1, 2);
    type("neu");
    delete list;
    EXPECT_TRUE(box.isNull());
    edit->edit(1, 2);
    EXPECT_EQ(heard(), QString());
    window.reset();
    EXPECT_TRUE(edit.isNull());
}

TEST_F(Cell_Editing, may_be_destroyed_by_what_it_tells) {
    then = [&] { delete edit; };
    edit->edit(1, 2);
    type("neu");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(heard(), QStringLiteral("1,2=neu "));
}

TEST(Caption_Editing, tells_which_label_and_leaves_writing_to_others) {
    QWidget window;
    auto* row = new QHBoxLayout(&window);
    std::vector<QLabel*> labels;
    for (const char* text : {"12", "7"}) {
        labels.push_back(new QLabel(QString::fromLatin1(text), &window));
        labels.back()->setFocusPolicy(Qt::StrongFocus);
        row->addWidget(labels.back());
    }
    ui_parts::LabelEditLab edit;
    edit.Init(labels, nullptr);
    QString told;
    QObject::connect(&edit, &ui_parts::LabelEditLab::TextChanged, &edit,
                     [&](int i, const QString& text) { told += QString::number(i) + text; });
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto* box = window.findChild<QLineEdit*>();
    const auto label = [&](int i) { return labels[static_cast<std::size_t>(i)]; };
    for (const int i : {1, 0, 2, -1}) {
        edit.start(i);
        ASSERT_EQ(edit.editing(), i == 0 || i == 1) << i;
        if (!edit.editing()) continue;
        EXPECT_EQ(box->geometry().center().x(), label(i)->geometry().center().x());
        label(i)->setText(QStringLiteral("9")); // the value goes on meanwhile
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(label(i)->hasFocus());
        EXPECT_EQ(told, QString()) << "an untouched text puts nothing back";
        edit.start(i);
        QTest::keyClicks(box, QStringLiteral("x"));
        label(1 - i)->setFocus();
        EXPECT_EQ(std::exchange(told, {}), QString::number(i) + u'x');
        EXPECT_EQ(label(i)->text(), QStringLiteral("9"));
    }
    edit.start(0);
    QTest::keyClicks(box, QStringLiteral("x"));
    delete label(0);
    EXPECT_FALSE(edit.editing());
    EXPECT_EQ(told, QString());
}

} // namespace
