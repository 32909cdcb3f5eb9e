#pragma once

#include "platform/files/crash_disk.h"
#include "platform/files/faulty_disk.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

namespace support {

inline bool long_tests() { return std::getenv("LONG_TESTS") != nullptr; }

/// Runs an operation on some disk: opens, changes, closes. A refusal must leave it as an exception.
using Operation = std::function<void(files::Disk&)>;

/// What the operation had said when the disk was looked at, so which states may be there.
enum class Outcome {
    finished, ///< it had returned: the state after
    refused,  ///< it had thrown and the disk works again: the state before
    unknown   ///< it was cut off, or the disk failed for good: the one or the other
};

/// Looks at what is left. How far a script of several steps had come, the operation can note where
/// the check sees it.
using Disk_Check = std::function<void(files::Disk&, Outcome)>;

/// One way in which a loss of power treats what was under way.
struct Power_Loss {
    std::string name;
    files::Crash_Disk::Fates fates;
};

/// All kept (the program was killed), all lost, every prefix, each single change lost, torn or the
/// only one to arrive, and seeded random mixtures.
inline std::vector<Power_Loss> power_losses(std::size_t pending, unsigned seed, bool thorough) {
    using Fate = files::Crash_Disk::Fate;
    std::vector<Power_Loss> losses = {{"all kept", [](std::size_t) { return Fate::kept; }}};
    if (pending == 0) return losses;
    losses.push_back({"all lost", [](std::size_t) { return Fate::lost; }});
    // Of many changes only the latest are tried one by one, unless time does not matter.
    const std::size_t first = thorough || pending < 8 ? 0 : pending - 6;
    for (std::size_t n = first; n < pending; ++n) {
        const auto add = [&](const std::string& what, Fate before, Fate at, Fate after) {
            losses.push_back({what + " " + std::to_string(n), [=](std::size_t i) {
                                  return i < n ? before : i == n ? at : after;
                              }});
        };
        add("kept before", Fate::kept, Fate::lost, Fate::lost);
        add("lost only", Fate::kept, Fate::lost, Fate::kept);
        add("torn only", Fate::kept, Fate::torn, Fate::kept);
        add("kept only", Fate::lost, Fate::kept, Fate::lost);
        add("torn, others lost", Fate::lost, Fate::torn, Fate::lost);
    }
    for (unsigned i = 0; i < (thorough ? 40U : 4U); ++i) {
        auto random = std::make_shared<std::mt19937>(seed * 1000 + i);
        losses.push_back({"random " + std::to_string(seed * 1000 + i),
                          [=](std::size_t) { return static_cast<Fate>((*random)() % 3); }});
    }
    return losses;
}

/// Stops the operation before each of its writes and syncs and after the last, and checks every
/// disk that a loss of power may leave there. Ends at the first fault. @return how many disks were
/// checked.
inline int sweep_crashes(files::Memory_Disk& before, const Operation& operation,
                         const Disk_Check& check, bool thorough = long_tests()) {
    files::Crash_Disk disk(before);
    int checked = 0;
    unsigned moment = 0;
    bool finished = false;
    const auto look = [&] {
        ++moment;
        for (const Power_Loss& loss : power_losses(disk.pending(), moment, thorough)) {
            if (testing::Test::HasFailure()) return;
            SCOPED_TRACE("moment " + std::to_string(moment) + ", " + loss.name);
            std::mt19937 torn(moment);
            files::Memory_Disk found = disk.after_power_loss(loss.fates, torn);
            check(found, finished ? Outcome::finished : Outcome::unknown);
            ++checked;
        }
    };
    disk.before_change = look;
    operation(disk);
    finished = true;
    look();
    disk.before_change = nullptr;
    return checked;
}

/// Refuses the n-th call of the disk for every n until the operation no longer meets one: once, for
/// good, and as a full disk; and checks what is left each time, when calls succeed again.
/// @return how many refusals were met.
inline int sweep_refusals(const files::Memory_Disk& before, const Operation& operation,
                          const Disk_Check& check) {
    using Fault = files::Faulty_Disk::Fault;
    const Fault faults[] = {
        {{}, 1, files::Failure::device, false, ""},
        {{}, 1, files::Failure::device, true, ""},
        {files::Faulty_Disk::Call::write, 1, files::Failure::disk_full, true, ""},
        {files::Faulty_Disk::Call::sync, 1, files::Failure::device, true, ""},
        {files::Faulty_Disk::Call::lock, 1, files::Failure::locked_elsewhere, false, ""},
        {files::Faulty_Disk::Call::open, 1, files::Failure::denied, false, ""}};
    int met = 0;
    int number = 0;
    for (Fault fault : faults) {
        ++number;
        for (fault.nth = 1; !testing::Test::HasFailure(); ++fault.nth) {
            SCOPED_TRACE("fault " + std::to_string(number) + ", call " + std::to_string(fault.nth));
            files::Memory_Disk disk = before.copy();
            files::Faulty_Disk faulty(disk);
            faulty.set_fault(fault);
            bool finished = true;
            try {
                operation(faulty);
            } catch (const std::exception&) {
                finished = false;
            }
            const bool struck = faulty.struck();
            faulty.clear_fault();
            check(disk, finished        ? Outcome::finished
                        : fault.lasting ? Outcome::unknown
                                        : Outcome::refused);
            if (!struck) break;
            ++met;
        }
    }
    return met;
}

} // namespace support
