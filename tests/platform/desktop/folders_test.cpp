#include "platform/desktop/folders.h"

#include "platform/desktop/desktop.h"

#include <gtest/gtest.h>

TEST(Common_Data, beside_the_program_comes_first_and_the_users_own_folder_is_not_among_them) {
    qputenv("XDG_DATA_DIRS", "/usr/local/share:/usr/share:/srv/prefix/share");
    qputenv("XDG_DATA_HOME", "/home/anna/data");
    EXPECT_EQ(desktop::common_data_folders(QStringLiteral("/srv/prefix/bin")),
              QStringList({QStringLiteral("/srv/prefix/share"), QStringLiteral("/usr/local/share"),
                           QStringLiteral("/usr/share")}));
    EXPECT_EQ(desktop::local_data_folder(), QStringLiteral("/home/anna/data"));
}

TEST(Extension, is_added_to_names_that_lack_it) {
    const struct {
        const char16_t* given;
        const char16_t* made;
    } cases[] = {
        {u"/a/Anlage", u"/a/Anlage.mdb"},         {u"/a/Anlage.mdb", u"/a/Anlage.mdb"},
        {u"/a/Anlage.MDB", u"/a/Anlage.MDB"},     {u"/a/Anlage 1.2", u"/a/Anlage 1.2.mdb"},
        {u"/a.mdb/Anlage", u"/a.mdb/Anlage.mdb"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(desktop::with_extension(QString::fromUtf16(c.given), QStringLiteral(".mdb")),
                  QString::fromUtf16(c.made));
    }
}
