// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The second example of the page on tasks.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

#include <string>

namespace Examples {

// One of these for each post, executed on the task's thread.
class AppendC final : public BSS::TSK::CommandC
{
public:
    AppendC(std::string& text, char letter) : CommandC("Append"), m_text(text), m_letter(letter) {}
    void execute() override { m_text += m_letter; }

private:
    std::string& m_text; // touched by the task's thread alone
    const char m_letter;
};

inline std::string PostedInOrder()
{
    constexpr std::int32_t WORKER = 8;
    BSS::TSK::TskMgr::instance().setTaskOptions(WORKER, {});

    std::string text;
    BSS::TSK::CommandTaskC worker({"worker", WORKER, WORKER, true}, 100);
    worker.setStopInOrder(true);
    worker.start();
    for (const char letter : {'a', 'b', 'c'}) {
        if (worker.postCommand(BSS::UTI::MakeShared<AppendC>(text, letter)) != BSS::RC_OK)
            return "the queue is full";
    }
    worker.postCommand(BSS::TSK::MakeCommand("Append", [&] { text += "."; })); // shorter
    worker.stop();
    worker.waitForStop(-1);
    return text;
}

} // namespace Examples
