#include "platform/jet/pages/pager_support.h"
#include "support/crash_sweep.h"

using namespace pager_tests;
using files::Disk;
using files::Memory_Disk;
using support::Outcome;

namespace {

/// A script of transactions and the contents that the file has after each; `done` of them are
/// reported.
class Script {
public:
    explicit Script(Page_Number pages) : pages_(pages) {
        Memory_Disk disk = disk_with(pages);
        states_.push_back(disk.bytes(name));
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        for (std::size_t i = 0; i < steps; ++i) {
            step(*pager, i);
            states_.push_back(disk.bytes(name));
        }
    }

    void run(Disk& disk) {
        done = 0;
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        for (; done < steps; ++done) step(*pager, done);
    }

    /// Reopened, the file must hold the state after the reported transactions or after the next.
    void check(Disk& disk, Outcome outcome) const {
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        const auto found = content(*pager);
        EXPECT_TRUE(found == states_[done] ||
                    (outcome == Outcome::unknown && found == states_[done + 1]));
        EXPECT_FALSE(pager->report().foreign_journal);
        EXPECT_FALSE(pager->report().refusal);
        put(*pager, {1}, 77); // and it can be worked on
        EXPECT_EQ(content(*pager).size(), found.size());
    }

    std::size_t done = 0;
    static constexpr std::size_t steps = 6;

private:
    static void step(jet::Pager& pager, std::size_t index) {
        static const std::initializer_list<Page_Number> pages[steps] = {
            {2}, {1, 2, 3, 5}, {7, 8}, {2, 3, 8, 9, 10}, {4}, {0, 1, 9}};
        pager.begin_write();
        for (const Page_Number number : pages[index]) {
            while (number >= pager.page_count()) pager.append();
            // Page 0 keeps its header, and some pages change in a few bytes only.
            if (number == 0 || index == 4)
                pager.change(number)[2000] = static_cast<std::byte>(index);
            else
                set_page(pager, number, static_cast<int>(index) + 1);
        }
        pager.commit();
    }

    Page_Number pages_;
    std::vector<std::vector<std::byte>> states_;
};

TEST(Journal_Crash, every_loss_of_power_leaves_a_whole_state) {
    Script script(7);
    Memory_Disk before = disk_with(7);
    const int checked = support::sweep_crashes(
        before, [&](Disk& disk) { script.run(disk); },
        [&](Disk& disk, Outcome outcome) { script.check(disk, outcome); });
    EXPECT_EQ(script.done, Script::steps);
    EXPECT_GT(checked, 200);
    RecordProperty("disks", checked);
}

TEST(Journal_Crash, a_crash_while_taking_back_does_no_harm) {
    Script script(7);
    Memory_Disk before = disk_with(7);
    int nested = 0;
    support::sweep_crashes(
        before, [&](Disk& disk) { script.run(disk); },
        [&](Disk& disk, Outcome outcome) {
            auto& found = dynamic_cast<Memory_Disk&>(disk);
            if (!support::long_tests() && ++nested % 7 != 0) return;
            support::sweep_crashes(
                found, [](Disk& again) { open_pager(again, name, Open_Mode::read_write); },
                [&](Disk& again, Outcome) { script.check(again, outcome); });
        });
}

/// What was seen after the program was killed and started again must still be there when the power
/// goes then: killed programs leave their writes in memory, so finding them is no proof that they
/// arrived.
TEST(Journal_Crash, what_was_seen_after_a_restart_stays) {
    Script script(7);
    bool struck = true;
    for (int nth = 1; struck; nth += support::long_tests() ? 1 : 3) {
        SCOPED_TRACE(nth);
        Memory_Disk before = disk_with(7);
        files::Crash_Disk disk(before);
        files::Faulty_Disk killing(disk);
        killing.set_fault({{}, nth, files::Failure::device, true, ""});
        try {
            script.run(killing);
        } catch (const jet::Error&) {
        }
        struck = killing.struck();
        const auto seen = content(*open_pager(disk, name, Open_Mode::read_write));
        for (const auto& loss : support::power_losses(disk.pending(), 1, false)) {
            SCOPED_TRACE(loss.name);
            std::mt19937 torn(1);
            Memory_Disk found = disk.after_power_loss(loss.fates, torn);
            ASSERT_EQ(content(*open_pager(found, name, Open_Mode::read_write)), seen);
        }
    }
}

TEST(Journal_Crash, every_refused_call_leaves_the_state_before) {
    Script script(7);
    const Memory_Disk before = disk_with(7);
    const int met = support::sweep_refusals(
        before, [&](Disk& disk) { script.run(disk); },
        [&](Disk& disk, Outcome outcome) { script.check(disk, outcome); });
    EXPECT_GT(met, 200);
}

/// A program that goes on after a refusal sees the state before, at once or once the disk works
/// again.
TEST(Journal_Crash, work_goes_on_after_a_refusal) {
    using Call = files::Faulty_Disk::Call;
    for (const Call call : {Call::write, Call::sync, Call::resize, Call::sync_folder, Call::look,
                            Call::read, Call::open, Call::lock}) {
        for (const bool lasting : {false, true}) {
            bool struck = true;
            for (int nth = 1; struck && !HasFailure(); ++nth) {
                SCOPED_TRACE(testing::Message()
                             << static_cast<int>(call) << " " << nth << " " << lasting);
                Memory_Disk disk = disk_with(5);
                files::Faulty_Disk faulty(disk);
                const auto pager = open_pager(faulty, name, Open_Mode::read_write);
                const auto other = open_pager(disk, name, Open_Mode::read_write);
                auto expected = content(*pager);
                faulty.set_fault({call, nth, files::Failure::device, lasting, ""});
                try {
                    put(*pager, {1, 2, 6}, 1);
                    expected = disk.bytes(name);
                    EXPECT_EQ(expected.size(), file_of(7).size());
                } catch (const jet::Error&) {
                    EXPECT_FALSE(pager->in_write());
                }
                struck = faulty.struck();
                faulty.clear_fault();
                EXPECT_EQ(content(*other), expected);
                EXPECT_EQ(content(*pager), expected);
                put(*pager, {3}, 4);
                EXPECT_EQ(content(*other), content(*pager));
            }
        }
    }
}

/// After a refused sync the pages read as new and may not be on the medium. When they cannot be put
/// back either, whoever comes next must not take the operation for a complete one.
TEST(Journal_Crash, pages_whose_sync_failed_are_not_believed) {
    using Call = files::Faulty_Disk::Call;
    Memory_Disk disk = disk_with(5);
    {
        files::Faulty_Disk faulty(disk);
        const auto pager = open_pager(faulty, name, Open_Mode::read_write);
        faulty.set_fault({Call::sync, 1, files::Failure::device, false, name});
        faulty.add_fault({Call::write, 2, files::Failure::device, true, name}); // the putting back
        pager->begin_write();
        pager->change(2)[4000] = std::byte{1}; // behind what a short write puts back
        EXPECT_THROW(pager->commit(), jet::Error);
        EXPECT_NE(disk.bytes(name), file_of(5));
    }
    EXPECT_EQ(content(*open_pager(disk, name, Open_Mode::read_write)), file_of(5));
}

/// The copy itself knows, even where it could not mark the journal.
TEST(Journal_Crash, pages_whose_sync_failed_are_not_believed_by_the_next_operation) {
    using Call = files::Faulty_Disk::Call;
    Memory_Disk disk = disk_with(5);
    files::Faulty_Disk faulty(disk);
    const auto pager = open_pager(faulty, name, Open_Mode::read_write);
    faulty.set_fault({Call::sync, 1, files::Failure::device, false, name});
    faulty.add_fault({Call::write, 2, files::Failure::device, false, journal_name}); // the mark
    faulty.add_fault({Call::write, 2, files::Failure::device, false, name}); // the putting back
    pager->begin_write();
    pager->change(2)[4000] = std::byte{1};
    EXPECT_THROW(pager->commit(), jet::Error);
    EXPECT_NE(disk.bytes(name), file_of(5));
    faulty.clear_fault();
    EXPECT_EQ(content(*pager), file_of(5));
    EXPECT_EQ(disk.bytes(name), file_of(5));
}

/// After a failed sync the system takes the pages for written, so the next sync says nothing.
TEST(Journal_Crash, pages_are_written_again_where_the_sync_of_a_recovery_failed) {
    using Call = files::Faulty_Disk::Call;
    for (const std::byte state : {std::byte{0x5A}, std::byte{0xA5}}) {
        Memory_Disk disk = disk_with(5);
        files::Faulty_Disk faulty(disk);
        const auto pager = open_pager(faulty, name, Open_Mode::read_write);
        put(*pager, {1, 3}, 1);
        auto journal = disk.bytes(journal_name);
        journal[504] = state; // as if the emptying had been lost
        disk.set_bytes(journal_name, journal);
        faulty.set_fault({Call::sync, 1, files::Failure::device, false, name});
        EXPECT_THROW(pager->begin_read(), jet::Error);
        const int before = faulty.calls(Call::write);
        content(*pager);
        EXPECT_EQ(faulty.calls(Call::write) - before, 3); // two pages and the emptying
    }
}

TEST(Journal_Crash, a_full_disk_takes_the_operation_back) {
    for (std::uint64_t room = 0; room < 60000; room += 512) {
        Memory_Disk disk = disk_with(5);
        files::Faulty_Disk faulty(disk);
        const auto pager = open_pager(faulty, name, Open_Mode::read_write);
        faulty.limit_room(room);
        auto expected = disk.bytes(name);
        try {
            put(*pager, {1, 2, 3, 5, 6}, 1);
            expected = disk.bytes(name);
            EXPECT_EQ(expected.size(), file_of(7).size());
        } catch (const jet::Error& error) {
            EXPECT_EQ(error.kind, jet::Failure::disk_full);
        }
        ASSERT_EQ(disk.bytes(name), expected) << room;
        ASSERT_EQ(content(*pager), expected) << room;
    }
}

} // namespace
