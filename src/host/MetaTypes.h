// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

#include <cstdint>

/// Makes `int64_t` known to Qt's meta-type system under that very name, so that queued connections and signal
/// spies carry it. Every host header whose types pass through signals includes this one.
inline const int Int64MetaType = qRegisterMetaType<int64_t>("int64_t");
