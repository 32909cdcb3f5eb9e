#include "platform/jet/pages/usage_map.h"

#include "platform/jet/format/error.h"
#include "platform/jet/pages/page_space.h"
#include "platform/jet/pages/tiny_pager.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>

using namespace jet;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr std::size_t per_reference = (4096 - 4) * 8;

std::size_t free_field(Tiny_Pager& pager, Page_Number page) {
    return load_u16(&(*pager.read(page))[2]);
}

/// Lowest row less slot table: what the free field must say.
std::size_t free_truth(Tiny_Pager& pager, Page_Number number) {
    const Page page = pager.read(number);
    const std::size_t slots = load_u16(&(*page)[12]);
    return (load_u16(&(*page)[12 + 2 * slots]) & 0x1FFFU) - (14 + 2 * slots);
}

void append_until(Tiny_Pager& pager, Page_Number count) {
    while (pager.page_count() < count) pager.append();
}

} // namespace

TEST(Usage_Map, inline_map_moves_its_start_then_grows_then_refers) {
    Tiny_Pager pager = bare_file();
    append_until(pager, 40000);
    Page_Space space(pager);
    Usage_Map map = Usage_Map::make(pager, space, 0);
    const Usage_Map neighbour = Usage_Map::make(pager, space, map.place().page);
    EXPECT_EQ(neighbour.place(), (Row_Place{map.place().page, 1}));
    EXPECT_THAT(map.pages(), IsEmpty());

    const auto kind = [&] { return load_u8(&(*pager.read(map.place().page))[4096 - 69]); };
    map.add(space, 600); // an empty map starts anew
    map.add(space, 90);  // and reaches down
    EXPECT_THAT(map.pages(), ElementsAre(90, 600));
    EXPECT_EQ(kind(), 0);
    map.add(space, 1400); // longer row, the neighbour moves
    EXPECT_THAT(map.pages(), ElementsAre(90, 600, 1400));
    EXPECT_THAT(neighbour.pages(), IsEmpty());
    EXPECT_EQ(free_field(pager, map.place().page), free_truth(pager, map.place().page));
    map.add(space, 39999);
    map.add(space, 5);
    EXPECT_THAT(map.pages(), ElementsAre(5, 90, 600, 1400, 39999));
    map.remove(90);
    map.remove(91);
    EXPECT_FALSE(map.contains(90));
    EXPECT_TRUE(map.contains(1400));
    EXPECT_EQ(map.next_from(1401), Page_Number{39999});
    EXPECT_EQ(map.next_from(40000), std::nullopt);
    EXPECT_THAT(neighbour.pages(), IsEmpty());
}

TEST(Usage_Map, a_new_map_goes_where_there_is_room) {
    Tiny_Pager pager = bare_file();
    Page_Space space(pager);
    const Page_Number first = Usage_Map::make(pager, space, 0).place().page;
    for (int row = 1; row < 57; ++row)
        EXPECT_EQ(Usage_Map::make(pager, space, first).place(),
                  (Row_Place{first, static_cast<std::uint8_t>(row)}));
    EXPECT_NE(Usage_Map::make(pager, space, first).place().page, first); // 57 rows are all
    EXPECT_NE(Usage_Map::make(pager, space, 1).place().page, 1u); // the global map's own page
}

TEST(Usage_Map, random_pages_against_a_set) {
    std::mt19937 random(7);
    for (const Page_Number range : {300u, 1400u, 90000u}) {
        Tiny_Pager pager = bare_file();
        append_until(pager, range);
        Page_Space space(pager);
        Usage_Map map = Usage_Map::make(pager, space, 0);
        std::set<Page_Number> expected;
        for (int step = 0; step < 300; ++step) {
            const Page_Number page = static_cast<Page_Number>(random() % range);
            if (random() % 3 != 0) {
                map.add(space, page);
                expected.insert(page);
            } else {
                map.remove(page);
                expected.erase(page);
            }
        }
        EXPECT_THAT(map.pages(), ElementsAreArray(expected));
    }
}

TEST(Usage_Map, junk_is_passed_over_or_refused) {
    Tiny_Pager pager = bare_file();
    append_until(pager, 10);
    format_maps(pager, 5, 4, 0);
    const auto page = pager.change(5);
    const auto row = [&](std::size_t number) { return page.subspan(4096 - 69 * (number + 1), 69); };
    row(0)[0] =
        std::byte{1}; // references: beyond the file, none, and one to a page of another kind
    store_u32(&row(0)[1], 77);
    row(1)[68] = std::byte{0xFF}; // pages beyond the end of the file
    row(2)[0] = std::byte{2};
    row(3)[0] = std::byte{1};
    store_u32(&row(3)[1], 5);
    EXPECT_THAT(Usage_Map(pager, {5, 0}).pages(), IsEmpty());
    EXPECT_THAT(Usage_Map(pager, {5, 1}).pages(), IsEmpty());
    for (const Row_Place place :
         {Row_Place{5, 2}, Row_Place{5, 3}, Row_Place{5, 9}, Row_Place{3, 0}, Row_Place{99, 0}})
        EXPECT_THROW(Usage_Map(pager, place).pages(), Error) << place.page << ' ' << +place.slot;
    store_u16(&page[14 + 2], 0xC000 | 0xF76); // a deleted row
    EXPECT_THROW(Usage_Map(pager, {5, 1}).contains(1), Error);
    store_u16(&page[14 + 2], 0x10); // a row within the slot table
    EXPECT_THROW(Usage_Map(pager, {5, 1}).contains(1), Error);
}

TEST(Page_Space, free_pages_are_used_again_before_the_file_grows) {
    Tiny_Pager pager = bare_file();
    append_until(pager, 3);
    Page_Space space(pager);
    EXPECT_EQ(space.allocate(), 3u);
    EXPECT_EQ(space.allocate(), 4u);
    EXPECT_EQ(space.allocate(), 5u);
    pager.change(4)[100] = std::byte{9};
    space.release(4);
    EXPECT_EQ(load_u32(pager.read(4)->data()), 0u);
    EXPECT_TRUE(space.is_free(4));
    EXPECT_THROW(space.release(4), Error);
    EXPECT_THROW(space.release(1), Error);
    EXPECT_THROW(space.release(6), Error);
    EXPECT_EQ(space.allocate(), 4u);
    EXPECT_EQ((*pager.read(4))[100], std::byte{0});
    EXPECT_EQ(space.allocate(), 6u);
}

TEST(Page_Space, pages_below_a_moved_map_are_in_use) {
    Tiny_Pager pager = bare_file();
    append_until(pager, 1540);
    const auto row = pager.change(1).subspan(4096 - 69, 69);
    store_u32(&row[1], 1536); // all bits set but of 1536 and 1537
    Page_Space space(pager);
    EXPECT_FALSE(space.is_free(100));
    EXPECT_EQ(space.allocate(), 1538u);
    space.release(100);
    EXPECT_EQ(space.allocate(), 100u);
    EXPECT_EQ(space.allocate(), 1539u);
    EXPECT_EQ(space.allocate(), 1540u);
    EXPECT_FALSE(space.is_free(99));
}

TEST(Page_Space, global_map_follows_a_growing_file) {
    Tiny_Pager pager = bare_file();
    Page_Space space(pager);
    const Page_Number last = static_cast<Page_Number>(2 * per_reference + 100);
    std::set<Page_Number> given;
    while (pager.page_count() < last) {
        const Page_Number page = space.allocate();
        ASSERT_TRUE(given.insert(page).second) << page;
        if (pager.page_count() == 20001) { // still inline, the second map below it unharmed
            EXPECT_EQ(free_field(pager, 1), free_truth(pager, 1));
            EXPECT_THAT(Usage_Map(pager, {1, 1}).pages(), IsEmpty());
            EXPECT_TRUE(space.is_free(20010)); // past the end bits say "free"
        }
    }
    EXPECT_TRUE(space.is_free(last + 50));
    EXPECT_FALSE(space.is_free(last - 50));
    const Usage_Map free(pager, {1, 0});
    EXPECT_THAT(free.pages(), IsEmpty());
    for (const Page_Number page : {3u, 20000u, 33000u, 65600u}) {
        if (!given.contains(page)) continue;
        space.release(page);
        EXPECT_EQ(space.allocate(), page);
    }
}

TEST(Page_Space, a_global_map_without_room_keeps_what_it_knew) {
    Tiny_Pager pager(2);
    format_maps(pager, 1, 2, 1, 1900); // no room to grow for rows of 15200 pages
    append_until(pager, static_cast<Page_Number>(per_reference - 1));
    pager.change(1)[4096 - 1900 + 25] = std::byte{0x10};
    Page_Space space(pager);
    EXPECT_EQ(space.allocate(), 204u);
    space.release(300);
    const Page_Number page = space.allocate();
    EXPECT_EQ(page, 300u);
    space.release(300);
    space.release(15999); // past the bits that the map had: it grows as far as there is room
    space.release(20000); // and turns into references
    const Usage_Map free(pager, {1, 0});
    EXPECT_THAT(free.pages(), ElementsAre(300, 15999, 20000));
    EXPECT_EQ(space.allocate(), 300u);
    EXPECT_EQ(space.allocate(), 15999u);
    EXPECT_EQ(space.allocate(), 20000u);
    const Page_Number appended = space.allocate();
    EXPECT_EQ(appended, per_reference); // the first of a span, whose bits take a page as well
    EXPECT_FALSE(space.is_free(appended));
    EXPECT_EQ(pager.page_count(), appended + 2);
    EXPECT_FALSE(space.is_free(appended + 1));
    EXPECT_TRUE(space.is_free(appended + 100));
}

TEST(Page_Space, a_missing_reference_of_the_global_map_is_made_good) {
    Tiny_Pager pager = bare_file();
    append_until(pager, 40000);
    const auto row = pager.change(1).subspan(4096 - 69, 69);
    std::ranges::fill(row, std::byte{0});
    row[0] = std::byte{1};
    store_u32(&row[1 + 4],
              9); // nothing for the first span; in the second only page 39999 is in use
    const auto bits = pager.change(9);
    std::ranges::fill(bits, std::byte{0xFF});
    store_u32(bits.data(), 0x0105);
    bits[4 + (39999 - per_reference) / 8] = std::byte{0x7F};
    Page_Space space(pager);
    space.release(100);
    EXPECT_TRUE(space.is_free(100));
    EXPECT_FALSE(space.is_free(99));
    EXPECT_FALSE(space.is_free(40000)); // the page that now holds the bits of the first span
    EXPECT_TRUE(space.is_free(40001));
}

TEST(Usage_Map, maps_of_all_samples_hold_their_pages) {
    if (!std::filesystem::is_directory(CV_SETS_SAMPLES)) GTEST_SKIP() << "no samples";
    int maps = 0;
    for (const auto& entry : std::filesystem::directory_iterator(CV_SETS_SAMPLES)) {
        if (entry.path().extension() != ".mdb") continue;
        SCOPED_TRACE(entry.path().filename());
        Tiny_Pager pager = Tiny_Pager::of_file(entry.path().string());
        const bool jet3 = pager.page_size() == 2048;
        const Usage_Map free(pager, {1, 0});
        for (Page_Number number = 2; number < pager.page_count(); ++number) {
            const Page page = pager.read(number);
            if (page->front() != std::byte{2} || free.contains(number)) continue;
            const Row_Place owned = Row_Place::from(load_u32(&(*page)[jet3 ? 0x23 : 0x37]));
            const std::size_t columns = load_u16(&(*page)[jet3 ? 0x19 : 0x2D]);
            if (owned.page >= pager.page_count() || columns == 0) continue; // a further page
            ++maps;
            for (const Page_Number of_table : Usage_Map(pager, owned).pages()) {
                const Page data = pager.read(of_table);
                EXPECT_EQ(data->front(), std::byte{1});
                EXPECT_EQ(load_u32(&(*data)[4]), number);
                EXPECT_FALSE(free.contains(of_table));
            }
        }
    }
    EXPECT_GT(maps, 100);
}
