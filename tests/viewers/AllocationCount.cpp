// SPDX-License-Identifier: MIT
#include "viewers/AllocationCount.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <dlfcn.h>
#include <execinfo.h>

namespace
{

constexpr int MaximumDepth = 24;

struct Allocation
{
    size_t bytes = 0;
    void* caller = nullptr;
    int depth = 0;
    std::array<void*, MaximumDepth> callers{};
};

// Of a fixed size, since whatever notes an allocation must make none.
std::array<Allocation, 4096> allocations;
int allocationCount = 0;
thread_local bool isCounting = false;

/// @p caller is where the function that was asked for @p bytes returns to.
void NoteAllocation(size_t bytes, void* caller)
{
    if (!isCounting)
        return;
    isCounting = false;
    if (allocationCount < static_cast<int>(allocations.size()))
    {
        Allocation& allocation = allocations[static_cast<size_t>(allocationCount)];
        allocation.bytes = bytes;
        allocation.caller = caller;
        allocation.depth = backtrace(allocation.callers.data(), MaximumDepth);
    }
    ++allocationCount;
    isCounting = true;
}

/// Whether the functions of @p library pass requests on that others make.
bool IsAllocator(const QString& library)
{
    return library.startsWith(QLatin1String("libstdc++.")) || library.startsWith(QLatin1String("libc.")) ||
           library.startsWith(QLatin1String("libasan."));
}

AllocationCount::Request RequestOf(const Allocation& allocation)
{
    AllocationCount::Request request;
    request.bytes = allocation.bytes;
    // What lies in front of the caller is the counting itself.
    const auto end = allocation.callers.begin() + allocation.depth;
    for (auto it = std::find(allocation.callers.begin(), end, allocation.caller); it != end; ++it)
    {
        Dl_info info;
        if (dladdr(*it, &info) == 0)
            continue;
        const QString library = QString::fromLocal8Bit(info.dli_fname).section(QLatin1Char('/'), -1);
        if (IsAllocator(library))
            continue;
        request.library = library;
        request.function = QString::fromLocal8Bit(info.dli_sname);
        break;
    }
    return request;
}

} // namespace

#ifdef TORVALEN_SANITIZED

// Its header is missing from one of the compilers.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*mallocHook)(const volatile void*, size_t),
                                                         void (*freeHook)(const volatile void*));

namespace
{

void OnMalloc(const volatile void*, size_t bytes)
{
    NoteAllocation(bytes, __builtin_return_address(0));
}

void OnFree(const volatile void*) {}

} // namespace

#else

// In front of the C library's own, for the whole process.
extern "C"
{
    void* __libc_malloc(size_t bytes);
    void* __libc_calloc(size_t count, size_t bytes);
    void* __libc_realloc(void* data, size_t bytes);
    void* __libc_memalign(size_t alignment, size_t bytes);

    __attribute__((visibility("default"))) void* malloc(size_t bytes)
    {
        NoteAllocation(bytes, __builtin_return_address(0));
        return __libc_malloc(bytes);
    }

    __attribute__((visibility("default"))) void* calloc(size_t count, size_t bytes)
    {
        NoteAllocation(count * bytes, __builtin_return_address(0));
        return __libc_calloc(count, bytes);
    }

    __attribute__((visibility("default"))) void* realloc(void* data, size_t bytes)
    {
        NoteAllocation(bytes, __builtin_return_address(0));
        return __libc_realloc(data, bytes);
    }

    __attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t bytes)
    {
        NoteAllocation(bytes, __builtin_return_address(0));
        return __libc_memalign(alignment, bytes);
    }

    __attribute__((visibility("default"))) int posix_memalign(void** data, size_t alignment, size_t bytes)
    {
        NoteAllocation(bytes, __builtin_return_address(0));
        *data = __libc_memalign(alignment, bytes);
        return *data ? 0 : 12;
    }
}

#endif

namespace AllocationCount
{

void Start()
{
    // The first trace loads what it needs.
    void* caller = nullptr;
    backtrace(&caller, 1);
#ifdef TORVALEN_SANITIZED
    static const bool installed = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree) != 0;
    Q_UNUSED(installed)
#endif
    allocationCount = 0;
    isCounting = true;
}

void Stop()
{
    isCounting = false;
}

QVector<Request> Requests()
{
    QVector<Request> requests;
    const int kept = std::min(allocationCount, static_cast<int>(allocations.size()));
    for (int index = 0; index < kept; ++index)
        requests << RequestOf(allocations[static_cast<size_t>(index)]);
    // What there was no room to trace was asked for by nobody known.
    requests.resize(allocationCount);
    return requests;
}

} // namespace AllocationCount
