// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The handle/implementation pair: who is deleted when, and who points where.
#include "Sio/API_Base.h"

#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace {

/// Counts its own destructions.
class CountedImpl final : public API::ImplObjectC
{
public:
    explicit CountedImpl(int& destroyed) : m_destroyed(destroyed) {}
    ~CountedImpl() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

class CountedHandle final : public API::BaseC
{
public:
    explicit CountedHandle(int& destroyed) : m_destroyed(destroyed) {}
    CountedHandle(int& destroyed, API::ImplObjectC* impl) : API::BaseC(impl), m_destroyed(destroyed) {}
    ~CountedHandle() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

class HandlePair : public testing::Test
{
protected:
    int handles = 0; ///< destroyed so far
    int impls = 0;   ///< likewise
};

TEST_F(HandlePair, ANewHandleIsEmptyAndANewImplementationHasNoOwner)
{
    const API::BaseC handle;
    const API::ImplObjectC impl;
    EXPECT_EQ(handle.GetImpl(), nullptr);
    EXPECT_EQ(impl.GetOwner(), nullptr);
}

TEST_F(HandlePair, SetImplMakesTheTwoPointAtEachOther)
{
    API::BaseC handle;
    auto* impl = new CountedImpl(impls);
    handle.SetImpl(impl);
    EXPECT_EQ(handle.GetImpl(), impl);
    EXPECT_EQ(impl->GetOwner(), &handle);
    EXPECT_EQ(impls, 0);
}

TEST_F(HandlePair, DestroyingTheHandleDestroysTheImplementation)
{
    auto handle = std::make_unique<CountedHandle>(handles);
    handle->SetImpl(new CountedImpl(impls));
    handle.reset();
    EXPECT_EQ(handles, 1);
    EXPECT_EQ(impls, 1);
}

TEST_F(HandlePair, DestroyingTheImplementationDestroysTheHandle)
{
    auto* impl = new CountedImpl(impls);
    (new CountedHandle(handles))->SetImpl(impl);
    delete impl;
    EXPECT_EQ(handles, 1);
    EXPECT_EQ(impls, 1);
}

TEST_F(HandlePair, TheHandleConstructorTakesTheImplementation)
{
    auto* impl = new CountedImpl(impls);
    auto handle = std::make_unique<CountedHandle>(handles, impl);
    EXPECT_EQ(handle->GetImpl(), impl);
    EXPECT_EQ(impl->GetOwner(), handle.get());
    handle.reset();
    EXPECT_EQ(impls, 1);
}

TEST_F(HandlePair, TheHandleConstructorTakesAnImplementationFromItsFormerOwner)
{
    auto* impl = new CountedImpl(impls);
    new CountedHandle(handles, impl);
    const CountedHandle second(handles, impl);
    EXPECT_EQ(handles, 1);
    EXPECT_EQ(impls, 0);
    EXPECT_EQ(impl->GetOwner(), &second);
}

TEST_F(HandlePair, SettingTheImplementationAlreadyHeldDoesNothing)
{
    CountedHandle handle(handles);
    auto* impl = new CountedImpl(impls);
    handle.SetImpl(impl);
    handle.SetImpl(impl);
    EXPECT_EQ(handle.GetImpl(), impl);
    EXPECT_EQ(impl->GetOwner(), &handle);
    EXPECT_EQ(handles + impls, 0);
}

TEST_F(HandlePair, AnImplementationHeldBeforeIsForgottenNotDeleted)
{
    CountedHandle handle(handles);
    auto* first = new CountedImpl(impls);
    handle.SetImpl(first);
    handle.SetImpl(new CountedImpl(impls));
    EXPECT_EQ(impls, 0);
    // Its deletion must not reach the handle any more.
    delete first;
    EXPECT_EQ(handles, 0);
    EXPECT_NE(handle.GetImpl(), nullptr);
}

TEST_F(HandlePair, SettingNullEmptiesTheHandle)
{
    CountedHandle handle(handles);
    const std::unique_ptr<CountedImpl> impl(new CountedImpl(impls));
    handle.SetImpl(impl.get());
    handle.SetImpl(nullptr);
    EXPECT_EQ(handle.GetImpl(), nullptr);
    EXPECT_EQ(impls, 0);
}

TEST_F(HandlePair, TakingAnOwnedImplementationDeletesTheFormerHandle)
{
    auto* former = new CountedHandle(handles);
    auto* impl = new CountedImpl(impls);
    former->SetImpl(impl);
    API::BaseC handle;
    handle.SetImpl(impl);
    EXPECT_EQ(handles, 1);
    EXPECT_EQ(impls, 0);
    EXPECT_EQ(impl->GetOwner(), &handle);
}

TEST_F(HandlePair, NeitherHalfCanBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<API::BaseC>);
    EXPECT_FALSE(std::is_copy_assignable_v<API::BaseC>);
    EXPECT_FALSE(std::is_copy_constructible_v<API::ImplObjectC>);
    EXPECT_FALSE(std::is_copy_assignable_v<API::ImplObjectC>);
}

} // namespace
