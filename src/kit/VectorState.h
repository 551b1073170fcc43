// SPDX-License-Identifier: MIT
#pragma once

/// The state that one piece of vector code leaves for the next.
namespace VectorState
{

#if defined(__x86_64__) && defined(__GNUC__)

__attribute__((target("avx"))) inline void ClearUpperHalvesWithAvx()
{
    __builtin_ia32_vzeroupper();
}

/// Marks the upper halves of this thread's vector registers as unused.
///
/// Filling a picture leaves them in use, and a thread that is started inherits them. Code of narrower
/// instructions, such as the smooth scaling of pictures, runs at a third of its speed until they are cleared,
/// since each instruction then has to keep them.
inline void ClearUpperHalves()
{
    if (__builtin_cpu_supports("avx"))
        ClearUpperHalvesWithAvx();
}

#else

inline void ClearUpperHalves() {}

#endif

} // namespace VectorState
