// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>

/// A flag that ends work on another thread early. Copies share the flag; any thread may raise or ask it.
class CancelToken
{
public:
    CancelToken() : mCancelled(std::make_shared<std::atomic<bool>>(false)) {}

    /// Raises the flag, for good.
    void Cancel() const { mCancelled->store(true); }
    bool IsCancelled() const { return mCancelled->load(); }

private:
    std::shared_ptr<std::atomic<bool>> mCancelled;
};
