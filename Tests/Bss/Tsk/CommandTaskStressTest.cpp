// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Everything at once, of bounded length: each message is counted in and out.
#include "Bss/Bss_Tsk/BSS_TSK_MsgQueue.h"
#include "CommandTaskFixture.h"

#include <random>
#include <thread>

using namespace BSS::TSK;
using TaskTests::CommandTaskTest;

namespace {

constexpr int PRODUCERS = 10;

// What one producer posts, and what is seen of it.
struct LedgerT
{
    std::uint32_t posted[2] = {0, 0};            ///< of each priority; the producer's
    std::atomic<std::uint32_t> executed[2] = {}; ///< the task's
    std::atomic<std::uint32_t> last[2] = {};     ///< the number executed last, from 1
    std::atomic<int> outOfOrder{0};
    std::atomic<int> alive{0};
};

class NumberedC final : public CommandC
{
public:
    NumberedC(LedgerT& ledger, bool bHigh, std::uint32_t number)
        : CommandC("numbered"), m_ledger(ledger), m_bHigh(bHigh), m_number(number)
    {
        ++m_ledger.alive;
    }
    ~NumberedC() override { --m_ledger.alive; }
    void execute() override
    {
        const std::size_t priority = m_bHigh ? 1 : 0;
        if (m_ledger.last[priority].exchange(m_number) + 1 != m_number) ++m_ledger.outOfOrder;
        ++m_ledger.executed[priority];
    }

private:
    LedgerT& m_ledger;
    const bool m_bHigh;
    const std::uint32_t m_number;
};

void Produce(CommandTaskC& task, LedgerT& ledger, unsigned seed, int count)
{
    std::mt19937 random(seed);
    for (int i = 0; i < count;) {
        const bool bHigh = random() % 4 == 0;
        std::uint32_t& posted = ledger.posted[bHigh ? 1 : 0];
        const auto message = BSS::UTI::MakeShared<NumberedC>(ledger, bHigh, posted + 1);
        if (task.AddNewMsg(message, bHigh) == BSS::RC_OK) {
            ++posted;
            ++i;
        } else {
            std::this_thread::yield();
        }
    }
}

using CommandTaskStress = CommandTaskTest;

TEST_F(CommandTaskStress, NoMessageIsLostOrRunTwiceOrOutOfOrderHoweverTheTaskIsTreated)
{
    log->setLevel(8);
    Make(64);                          // small, so that it overflows often
    task->setFriendlyKillLimit(20000); // a thread that is ended by force takes messages with it
    TaskTests::CountingObserverC overflows;
    task->getOverflowSubject().attach(overflows);
    std::vector<LedgerT> ledgers(PRODUCERS);
    std::atomic<bool> producing{true};
    std::vector<std::thread> threads;
    for (int n = 0; n < PRODUCERS; ++n)
        threads.emplace_back(
            [&, n] { Produce(*task, ledgers[static_cast<std::size_t>(n)], static_cast<unsigned>(n), 1000); });
    std::thread attacher([&] {
        while (producing.load()) {
            EventC event;
            std::atomic<int> calls{0};
            EXPECT_EQ(task->attachEvent(event.getHandle(), [&](BSS::HAL::WaitHandleT) { ++calls; }),
                      BSS::RC_OK);
            event.set();
            std::this_thread::yield();
            EXPECT_EQ(task->detachEvent(event.getHandle()), BSS::RC_OK);
        }
    });
    std::thread owner([&] {
        std::mt19937 random(99);
        while (producing.load()) {
            task->start();
            const auto rounds = random() % 200;
            for (std::uint32_t i = 0; i < rounds; ++i)
                std::this_thread::yield();
            if (random() % 4 == 0) {
                task->kill(); // friendly: the loop reaches it at the next message
            } else {
                task->setStopInOrder(random() % 2 == 0);
                task->stop();
            }
            EXPECT_TRUE(task->waitForStop(20000));
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    producing = false;
    owner.join();
    attacher.join();
    task->start();
    EXPECT_TRUE(Idle());
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
    std::uint32_t all = 0;
    for (const LedgerT& ledger : ledgers) {
        EXPECT_EQ(ledger.executed[0].load(), ledger.posted[0]);
        EXPECT_EQ(ledger.executed[1].load(), ledger.posted[1]);
        EXPECT_EQ(ledger.outOfOrder.load(), 0);
        EXPECT_EQ(ledger.alive.load(), 0);
        all += ledger.posted[0] + ledger.posted[1];
    }
    EXPECT_EQ(all, 10000u);
    EXPECT_FALSE(overflows.Codes().empty());
}

TEST(MsgQueue, NeverHoldsMoreThanItsMaximumAndLosesNothing)
{
    constexpr std::uint32_t MAXIMUM = 16;
    constexpr int EACH = 5000;
    MsgQueueC queue(MAXIMUM);
    std::atomic<std::uint32_t> most{0};
    std::vector<std::thread> threads;
    for (int n = 0; n < 3; ++n) {
        threads.emplace_back([&] {
            const MsgPtrT message = MakeCommand("shared", [] {});
            for (int i = 0; i < EACH;) {
                const std::uint32_t count = queue.push(message, false);
                if (count > most.load()) most = count;
                if (count == 0) std::this_thread::yield();
                i += count != 0 ? 1 : 0;
            }
        });
    }
    TakenMsgsT taken;
    int out = 0;
    while (out < 3 * EACH)
        out += queue.take(taken) ? 1 : 0;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(queue.take(taken));
    EXPECT_LE(most.load(), MAXIMUM);
    EXPECT_EQ(queue.getCount(), 0);
    EXPECT_EQ(queue.getPostCount(), 3u * EACH);
}

} // namespace
