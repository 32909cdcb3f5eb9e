#include "ui/main/text_rows.h"

#include <QListView>
#include <QStringListModel>
#include <gtest/gtest.h>

using namespace ui_main;

namespace {

/// As high as our rows, drawn by the style alone.
class Rows_Of_The_Style final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
    }
};

struct Case {
    const char* name;
    int row;      ///< current and selected
    int pixels;   ///< size of the font
    double scale; ///< device pixels per pixel
    bool enabled = true;
};

const std::vector<Case> cases{
    {"nothing selected", -1, 13, 1}, {"plain row selected", 0, 13, 1},
    {"long row selected", 2, 13, 1}, {"small font", -1, 9, 1},
    {"large font", -1, 22, 1},       {"two pixels for one", 1, 13, 2},
    {"one and a half", -1, 13, 1.5}, {"switched off", -1, 13, 1, false},
};

QImage picture(const Case& look, QAbstractItemDelegate& delegate) {
    QStringListModel texts({u"3  Köf II"_qs, u"17  E 94 & Bügel, ÄÖÜ ß"_qs,
                            u"255  Ein Name, für den die Zeile nicht genug Platz hat"_qs, u""_qs});
    QListView list;
    list.setModel(&texts);
    list.setItemDelegate(&delegate);
    list.setUniformItemSizes(true);
    list.resize(240, 160);
    QFont font = list.font();
    font.setPixelSize(look.pixels);
    list.setFont(font);
    list.setEnabled(look.enabled);
    if (look.row >= 0) list.setCurrentIndex(texts.index(look.row));
    QImage image((QSizeF(list.size()) * look.scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(look.scale);
    list.render(&image);
    return image;
}

} // namespace

TEST(Text_Rows, look_as_the_style_draws_them) {
    for (const Case& look : cases) {
        Text_Rows ours;
        Rows_Of_The_Style theirs;
        EXPECT_EQ(picture(look, ours), picture(look, theirs)) << look.name;
    }
}
