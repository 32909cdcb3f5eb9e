#include "platform/serial/port_numbers.h"
#include "support/temporary_folder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace serial {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A computer with the devices that a test plugs in.
struct Computer : testing::Test {
    void write(const std::string& file, const std::string& text) const {
        fs::create_directories(fs::path(root / file).parent_path());
        std::ofstream(root / file) << text;
    }
    void link(const std::string& link, const fs::path& target) const {
        fs::create_directories(fs::path(root / link).parent_path());
        fs::create_symlink(target, root / link);
    }
    void add(const std::string& name, const std::string& bus, const std::string& type = "") const {
        write("sys/devices/" + bus + "/tty/" + name + "/type", type);
        link("sys/class/tty/" + name, root / ("sys/devices/" + bus + "/tty/" + name));
        write("dev/" + name, "");
    }
    void plug_in(const std::string& name, const std::string& id, const std::string& product = "",
                 const std::string& interface = "") const {
        write("sys/devices/" + name + "/product", product);
        write("sys/devices/" + name + "/1.0/interface", interface);
        add(name, name + "/1.0");
        if (!id.empty()) link("dev/serial/by-id/" + id, root / ("dev/" + name));
    }
    Port_Places places(std::chrono::milliseconds settling = {}) const {
        return {{root / "dev", root / "sys/class/tty", settling}, root / "user"};
    }
    /// As the program shows them after its next start.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const Port& port : Port_Numbers(files::real_disk(), places()).ports()) {
            all.push_back(port.name.toStdString());
        }
        return all;
    }

    support::Temporary_Folder root;
};

TEST_F(Computer, an_adapter_keeps_its_number_and_nobody_else_gets_it) {
    write("user/any", "");
    plug_in("ttyUSB1", "usb-B", "CP2102");
    plug_in("ttyACM0", "usb-C", "Dual", "KELDA Interface");
    EXPECT_THAT(names(), ElementsAre("CP2102 (COM5)", "Dual, KELDA Interface (COM6)"));
    plug_in("ttyUSB0", "usb-A", "KELDA Interface", "Interface");
    fs::remove(root / "dev/ttyUSB1");
    plug_in("ttyUSB2", ""); // which says nothing
    EXPECT_THAT(names(), ElementsAre("Dual, KELDA Interface (COM6)", "KELDA Interface (COM7)",
                                     "ttyUSB2 (COM8)"));
    fs::remove(root / "dev/serial/by-id/usb-B");
    plug_in("ttyUSB9", "usb-B", "CP2102"); // the first one again
    EXPECT_EQ(names().front(), "CP2102 (COM5)");
    Port_Numbers hasty(files::real_disk(), places(std::chrono::hours{1}));
    EXPECT_EQ(hasty.ports().size(), 3U); // ttyUSB2 may still get a link
}

TEST_F(Computer, links_come_first_then_the_built_in_ports_that_really_exist) {
    add("ttyS0", "platform/serial8250", "0");
    add("ttyS2", "platform/serial8250"); // is asked, and is no device at all
    add("ttyS3", "pnp0/00:01");
    add("ttyS10", "pci0000:00/0000:00:16.3", "4");
    add("ttyS9", "platform/serial8250", "4");
    add("tty7", "virtual");
    plug_in("ttyUSB0", "usb-A", "CP2102");
    plug_in("ttyUSB1", "usb-B", "FT232");
    EXPECT_THAT(names(), ElementsAre("ttyS3 (COM1)", "ttyS9 (COM2)", "ttyS10 (COM3)",
                                     "CP2102 (COM5)", "FT232 (COM6)"));
    link("user/ports/com2", "/nowhere"); // and stays free for what was there
    link("user/ports/com5", "../../dev/serial/by-id/usb-B");
    write("user/ports/com7.name", "  KELDA  Interface\nsecond line\n");
    for (const char* name : {"com64", "com7", "com0", "com65", "com07", "COM8", "com9.name"}) {
        link("user/ports/" + std::string(name), root / "dev/tty7");
    }
    EXPECT_THAT(names(), ElementsAre("ttyS3 (COM1)", "ttyS9 (COM3)", "ttyS10 (COM4)",
                                     "FT232 (COM5)", "CP2102 (COM6)", "KELDA Interface (COM7)",
                                     root / "dev/tty7" + " (COM64)"));
}

TEST(Number_Memory, numbers_above_32_come_last) {
    std::vector<int> expected;
    for (int n = 5; n <= 32; ++n) expected.push_back(n);
    for (const int n : {1, 3, 4}) expected.push_back(n);
    for (int n = 33; n <= 63; ++n) expected.push_back(n);
    std::vector<std::string> adapters;
    for (const int n : expected) adapters.push_back("id:" + std::to_string(n));
    Number_Memory memory;
    EXPECT_EQ(memory.numbers(adapters, {2, 64}), expected);
    for (const char* away : {"id:6", "id:5"}) {
        std::erase(adapters, away);
        memory.numbers(adapters, {2, 64});
    }
    adapters.insert(adapters.end(), {"id:new", "id:newer", "id:too-late"});
    const std::vector<int> given = memory.numbers(adapters, {2, 64});
    EXPECT_THAT(std::vector(given.end() - 4, given.end()), ElementsAre(63, 6, 5, 0));
}

TEST_F(Computer, a_damaged_memory_is_begun_anew) {
    plug_in("ttyUSB0", "usb-A", "CP2102");
    const std::string good = "CV-SETS-PORTS 1\n64 id:x\n12 id:usb-A\n";
    write("user/port_numbers.txt", good);
    EXPECT_THAT(names(), ElementsAre("CP2102 (COM12)"));
    std::vector<std::string> damaged = {"CV-SETS-PORTS 2\n12 id:usb-A\n", std::string(99'999, 0)};
    for (const char* line : {"12 id:y", "13 id:x", "0 id:y", "65 id:y", "013 id:y", "13 ", " id:y",
                             "", "-3 id:y", "13 a b", "99999999999 id:y", "13"}) {
        damaged.push_back(good + line + "\n");
    }
    for (std::size_t cut = 1; cut < good.size(); ++cut) {
        if (good[cut - 1] != '\n') damaged.push_back(good.substr(0, cut));
    }
    for (const std::string& text : damaged) {
        write("user/port_numbers.txt", text);
        EXPECT_THAT(names(), ElementsAre("CP2102 (COM5)")) << text.substr(0, 300);
    }
}

TEST_F(Computer, numbers_hold_for_the_run_where_they_cannot_be_kept) {
    plug_in("ttyUSB1", "usb-B", "CP2102");
    Port_Numbers numbers(files::real_disk(), places()); // whose folder is not there
    numbers.look();
    ASSERT_TRUE(numbers.trouble());
    plug_in("ttyUSB0", "usb-A", "FT232");
    numbers.look();
    EXPECT_EQ(numbers.port(5)->name, QStringLiteral("CP2102 (COM5)"));
    write("user/any", "");
    numbers.look();
    EXPECT_FALSE(numbers.trouble());
    EXPECT_THAT(names(), ElementsAre("CP2102 (COM5)", "FT232 (COM6)"));
}

} // namespace
} // namespace serial
