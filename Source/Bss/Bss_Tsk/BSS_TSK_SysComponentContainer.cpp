// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_SysComponentContainer.h"

#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <algorithm>
#include <utility>

namespace BSS::TSK {

namespace {

SysComponentC* AsComponent(UTI::NodeC* node) noexcept
{
    return static_cast<SysComponentC*>(node); // nothing else is ever put into the list
}

// For a component or null: it, and then those before it. The one before is looked up first, as a component
// may take itself out.
template<typename ActionT>
void Backwards(SysComponentC* component, const ActionT& action)
{
    while (component != nullptr) {
        SysComponentC* const before = AsComponent(component->getPrevious());
        action(*component);
        component = before;
    }
}

} // namespace

SysComponentContainerC::SysComponentContainerC(std::string name) : m_name(std::move(name)) {}

SysComponentContainerC::~SysComponentContainerC() = default;

void SysComponentContainerC::add(SysComponentC& component)
{
    m_components.append(component);
}

void SysComponentContainerC::remove(SysComponentC& component) noexcept
{
    m_components.remove(component);
}

ResultCodeT SysComponentContainerC::init()
{
    for (UTI::NodeC* node = m_components.getFirst(); node != nullptr; node = node->getNext()) {
        const ResultCodeT rc = AsComponent(node)->init();
        if (rc == RC_OK) continue;
        Backwards(AsComponent(node->getPrevious()), [](SysComponentC& each) { each.cleanup(); });
        return rc;
    }
    return RC_OK;
}

void SysComponentContainerC::start()
{
    for (UTI::NodeC* node = m_components.getFirst(); node != nullptr; node = node->getNext()) {
        try {
            AsComponent(node)->start();
        } catch (...) {
            SysComponentC* const last = AsComponent(node->getPrevious());
            Backwards(last, [](SysComponentC& each) { each.stop(); });
            Backwards(last, [](SysComponentC& each) { each.waitForStop(-1); });
            throw;
        }
    }
    setState(ComponentState::Started);
}

void SysComponentContainerC::stop()
{
    Backwards(AsComponent(m_components.getLast()), [](SysComponentC& each) { each.stop(); });
    setState(ComponentState::Stopped);
}

bool SysComponentContainerC::waitForStop(int timeoutMs)
{
    const std::uint64_t begin = HAL::TickCount64();
    bool all = true;
    Backwards(AsComponent(m_components.getLast()), [&](SysComponentC& each) {
        const auto passed = static_cast<std::int64_t>(HAL::TickCount64() - begin);
        const int left = timeoutMs < 0 ? -1 : static_cast<int>(std::max<std::int64_t>(timeoutMs - passed, 0));
        all = each.waitForStop(left) && all;
    });
    return all;
}

void SysComponentContainerC::kill()
{
    Backwards(AsComponent(m_components.getLast()), [](SysComponentC& each) { each.kill(); });
    setState(ComponentState::Stopped);
}

void SysComponentContainerC::cleanup()
{
    Backwards(AsComponent(m_components.getLast()), [](SysComponentC& each) { each.cleanup(); });
}

const char* SysComponentContainerC::getComponentName() const noexcept
{
    return m_name.c_str();
}

} // namespace BSS::TSK
