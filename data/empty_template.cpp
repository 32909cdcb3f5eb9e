#include "platform/jet/database.h"

#include <array>
#include <iostream>
#include <string>

/// Makes the library that a new one is copied from: tables Sets and CVs with their keys. The
/// program adds the script tables when it opens one. Nothing but the keys is required, and a name
/// may be empty or missing, so that whatever is in older libraries can be taken over.
namespace {

jet::Column column(std::u16string name) {
    jet::Column made;
    made.name = std::move(name);
    return made;
}

jet::Column counter(std::u16string name) {
    auto made = column(std::move(name));
    made.auto_number = true;
    return made;
}

jet::Column text(std::u16string name) {
    auto made = column(std::move(name));
    made.type = jet::Column_Type::text;
    made.length = 255;
    made.allow_zero_length = true;
    return made;
}

jet::Index index(std::u16string name, std::u16string over, bool primary) {
    jet::Index made;
    made.name = std::move(name);
    made.columns = {{std::move(over), true}};
    made.primary = primary;
    return made;
}

void make(const std::string& path) {
    constexpr double day = 46350; // the same bytes from every build
    auto database = jet::Database::create(files::real_disk(), path, day);
    database.set_date(day);
    database.create_table(
        u"Sets", std::array{counter(u"SetID"), text(u"Name"), column(u"Nummer"), column(u"ResCV")},
        std::array{index(u"PrimaryKey", u"SetID", true)});
    database.create_table(
        u"CVs",
        std::array{counter(u"CVID"), column(u"SetID"), column(u"CVPageHi"), column(u"CVPageLo"),
                   column(u"CVNr"), column(u"CVWert")},
        std::array{index(u"PrimaryKey", u"CVID", true), index(u"SetID", u"SetID", false)});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: empty_template FILE\n";
        return 2;
    }
    try {
        make(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
