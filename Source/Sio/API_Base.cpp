// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Each destructor clears the other half's pointer before it deletes that half, so that the deletion does not
// come back.
#include "Sio/API_Base.h"

#include <utility>

namespace API {

BaseC::BaseC(ImplObjectC* poImpl)
{
    Adopt(poImpl);
}

BaseC::~BaseC()
{
    ImplObjectC* poImpl = std::exchange(m_poImpl, nullptr);
    if (poImpl == nullptr) return;
    poImpl->m_poOwner = nullptr;
    delete poImpl;
}

void BaseC::SetImpl(ImplObjectC* poImpl)
{
    Adopt(poImpl);
}

void BaseC::Adopt(ImplObjectC* poImpl)
{
    if (poImpl == m_poImpl) return;
    // The one held before must not come back to this handle when it is destroyed.
    if (m_poImpl != nullptr) m_poImpl->m_poOwner = nullptr;
    m_poImpl = poImpl;
    if (poImpl == nullptr) return;
    if (BaseC* poFormer = poImpl->m_poOwner; poFormer != nullptr && poFormer != this) {
        poFormer->m_poImpl = nullptr;
        delete poFormer;
    }
    poImpl->m_poOwner = this;
}

ImplObjectC::~ImplObjectC()
{
    BaseC* poOwner = std::exchange(m_poOwner, nullptr);
    if (poOwner == nullptr) return;
    poOwner->m_poImpl = nullptr;
    delete poOwner;
}

} // namespace API
