// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The messages of command tasks. A message is a shared object: whoever posts it may keep a pointer to it and
// post it again. It is executed on the thread of the task that it was posted to.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace BSS::TSK {

enum class MsgKind : std::uint8_t
{
    Command,
    SmartCommand, ///< a command with a shared payload object
    Timer,
    StopRequest
};

class MsgObjectI;

/// A message's place in a queue. Every message has one of its own; where it waits in a second place as well,
/// the queue makes one more.
struct MsgNodeT
{
    MsgNodeT* next = nullptr;
    MsgObjectI* msg = nullptr;
    bool bHigh = false;
    bool bOwn = false; ///< the message's own
};

/// The next of the numbers that messages and requests go by in the log.
std::int32_t NextCmdReqId() noexcept;

class MsgObjectI : public UTI::SharedObjectC
{
public:
    /// `pszCmdClientType` names the posting client in the log. Not copied: a literal.
    MsgObjectI(MsgKind kind, const char* pszCmdClientType) noexcept;
    ~MsgObjectI() override;

    MsgKind getKind() const noexcept { return m_kind; }

    /// Stands in every log line about the message; drawn from one counter for all messages unless it is set.
    std::int32_t getCmdReqId() const noexcept { return m_iCmdReqId; }
    void setCmdReqId(std::int32_t id) noexcept { m_iCmdReqId = id; }
    const char* getCmdClientType() const noexcept { return m_pszCmdClientType; }

    /// What the message is for. What it throws is logged by the task, which goes on;
    /// boost::thread_interrupted ends the task.
    virtual void execute() = 0;

    // Small messages come from a pool, which knows no greater alignment than every type of the language has.
    static void* operator new(std::size_t bytes);
    static void* operator new(std::size_t bytes, std::align_val_t alignment) = delete;
    static void operator delete(void* message, std::size_t bytes) noexcept;

private:
    friend class MsgQueueC;

    std::int32_t m_iCmdReqId; // fills what the count of the base leaves
    const char* const m_pszCmdClientType;
    MsgNodeT m_node;
    std::atomic<bool> m_bNodeInUse{false};
    const MsgKind m_kind;
};

using MsgPtrT = UTI::RefPtrT<MsgObjectI>;

class CommandC : public MsgObjectI
{
public:
    explicit CommandC(const char* pszCmdClientType) noexcept : MsgObjectI(MsgKind::Command, pszCmdClientType)
    {}

protected:
    CommandC(MsgKind kind, const char* pszCmdClientType) noexcept : MsgObjectI(kind, pszCmdClientType) {}
};

using SharedObjectPtrT = UTI::RefPtrT<UTI::SharedObjectC>;

/// A command that is given its payload when it is posted.
class SmartCommandC : public CommandC
{
public:
    explicit SmartCommandC(const char* pszCmdClientType) noexcept
        : CommandC(MsgKind::SmartCommand, pszCmdClientType)
    {}

    /// Not to be called while the command is in a queue.
    void setSmartObject(SharedObjectPtrT object) noexcept { m_object = std::move(object); }
    const SharedObjectPtrT& getSmartObject() const noexcept { return m_object; }

private:
    SharedObjectPtrT m_object;
};

/// What a timer posts.
class TimerMsgC : public MsgObjectI
{
public:
    explicit TimerMsgC(const char* pszCmdClientType) noexcept : MsgObjectI(MsgKind::Timer, pszCmdClientType)
    {}
};

using CommandPtrT = UTI::RefPtrT<CommandC>;
using SmartCommandPtrT = UTI::RefPtrT<SmartCommandC>;
using TimerMsgPtrT = UTI::RefPtrT<TimerMsgC>;

/// A message that carries something of any type and does nothing with it when it is executed: for those who
/// wait for the message itself.
template<typename T>
class MsgObjectT : public CommandC
{
public:
    template<typename... Arguments>
    explicit MsgObjectT(const char* pszCmdClientType, Arguments&&... arguments)
        : CommandC(pszCmdClientType), m_payload(std::forward<Arguments>(arguments)...)
    {}

    void execute() override {}
    T& getPayload() noexcept { return m_payload; }

private:
    T m_payload;
};

template<typename FunctionT>
class FunctionCommandT final : public CommandC
{
public:
    FunctionCommandT(const char* pszCmdClientType, FunctionT function)
        : CommandC(pszCmdClientType), m_function(std::move(function))
    {}
    void execute() override { m_function(); }

private:
    FunctionT m_function;
};

/// A command that calls a function.
template<typename FunctionT>
CommandPtrT MakeCommand(const char* pszCmdClientType, FunctionT function)
{
    return UTI::MakeShared<FunctionCommandT<FunctionT>>(pszCmdClientType, std::move(function));
}

} // namespace BSS::TSK
