// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

#include <cstddef>

/// Counts what the calling thread allocates on the heap, in this program and in every library that it loads.
namespace AllocationCount
{

/// Begins to count; what was counted before is forgotten.
void Start();
/// Ends it.
void Stop();
/// An allocation: its size, and who asked for it, which is the file name of the library or program and, where
/// exported, the function.
struct Request
{
    size_t bytes = 0;
    QString library;
    QString function;
};

/// What was counted, in order.
QVector<Request> Requests();

} // namespace AllocationCount
