#pragma once

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <iostream>
#include <pty.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace support {

/// Counts how often a byte comes late through a pseudo-terminal, as others have the processor.
class Watch {
public:
    Watch() {
        EXPECT_EQ(openpty(&near_, &far_, nullptr, nullptr, nullptr), 0);
        termios line{};
        tcgetattr(far_, &line);
        cfmakeraw(&line);
        tcsetattr(far_, TCSANOW, &line);
        thread_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) look();
        });
    }
    ~Watch() {
        thread_ = {};
        close(near_);
        close(far_);
    }
    int late() const { return late_; }

private:
    using Clock = std::chrono::steady_clock;
    void look() {
        using namespace std::chrono_literals;
        const auto begin = Clock::now();
        std::this_thread::sleep_for(5ms);
        char byte = 'x';
        if (write(near_, &byte, 1) != 1 || read(far_, &byte, 1) != 1 || Clock::now() - begin > 20ms)
            ++late_;
    }
    int near_ = -1, far_ = -1;
    std::atomic<int> late_ = 0;
    std::jthread thread_;
};

/// For what ends otherwise where bytes come late: a test that fails meanwhile is tried again.
template <class Test>
void in_peace(const Watch& watch, Test test) {
    using testing::ScopedFakeTestPartResultReporter;
    for (int tries = 1;; ++tries) {
        const int late = watch.late();
        testing::TestPartResultArray failures;
        {
            const ScopedFakeTestPartResultReporter intercept(
                ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
            test();
        }
        const bool last = tries == 5 || watch.late() == late;
        for (int i = 0; i < failures.size() && last; ++i)
            ADD_FAILURE() << failures.GetTestPartResult(i).message();
        if (last || failures.size() == 0) return;
        std::cout << "again, as bytes come late: " << failures.GetTestPartResult(0).message()
                  << std::endl;
    }
}

} // namespace support
