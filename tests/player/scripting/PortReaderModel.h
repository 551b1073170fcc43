// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

/// The rules of CommandPortReader, stated a second time: read from all the bytes at once. For tests and for
/// the fuzzer.
namespace PortReaderModel
{

struct Reading
{
    /// Word and argument of each request.
    QList<QPair<QByteArray, QByteArray>> requests;
    /// Empty while nothing is wrong.
    QByteArray problem;
};

Reading Read(const QByteArray& bytes);

/// Feeds @p bytes to a reader in pieces of 1 to @p longest bytes, chosen by @p seed. Returns how it differs
/// from Read(), or what it holds too much; empty if nothing.
QString Difference(const QByteArray& bytes, int longest, unsigned seed);

} // namespace PortReaderModel
