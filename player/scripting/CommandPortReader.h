// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <deque>

/// Reads what a caller of the command port sends, however it is cut into pieces.
///
/// A request is a line that ends with "\n" or "\r\n": a word, and behind a blank what belongs to it. Of
/// "script" that is the number of bytes that follow the line. Nothing that comes in makes it hold more than
/// one request of the largest size; what it can't read breaks it for good.
class CommandPortReader
{
public:
    enum class Kind
    {
        Token,
        List,
        Run,
        Eval,
        Script,
        Stop
    };

    struct Request
    {
        Kind kind = Kind::List;
        /// The token, the command's name, or the Python text.
        QByteArray argument;
    };

    /// Longest line but the token's, in bytes, its end not counted.
    static constexpr int LongestLine = 1 << 16;
    /// Longest first line: a caller that holds no token gets no more memory than that.
    static constexpr int LongestTokenLine = 128;
    static constexpr int LargestScript = 1 << 20;

    /// Takes @p bytes and appends the requests that are complete with them to @p requests. The first request
    /// is a token, or the reader breaks. Returns false once it is broken; Problem() then says why.
    bool Feed(const QByteArray& bytes, std::deque<Request>* requests);
    /// What is wrong with what came in; empty while nothing is.
    const QByteArray& Problem() const { return mProblem; }
    /// Bytes that are held of a request that is not complete.
    int Held() const { return mHeld.size(); }

private:
    bool Break(const QByteArray& problem);
    bool TakeLine(QByteArray line, std::deque<Request>* requests);
    bool TakeScriptLine(const QByteArray& argument, std::deque<Request>* requests);

    QByteArray mHeld;
    QByteArray mProblem;
    bool mHasToken = false;
    /// Bytes of a script that are still to come; below 0 while a line is read.
    int mScriptSize = -1;
};
