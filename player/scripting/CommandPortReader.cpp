// SPDX-License-Identifier: MIT
#include "scripting/CommandPortReader.h"

#include <algorithm>

namespace
{

struct RequestWord
{
    const char* word;
    CommandPortReader::Kind kind;
    bool takesArgument;
};

constexpr RequestWord RequestWords[] = {
    {"list", CommandPortReader::Kind::List, false}, {"run", CommandPortReader::Kind::Run, true},
    {"eval", CommandPortReader::Kind::Eval, true},  {"script", CommandPortReader::Kind::Script, true},
    {"stop", CommandPortReader::Kind::Stop, false},
};

} // namespace

bool CommandPortReader::Break(const QByteArray& problem)
{
    mProblem = problem;
    mHeld.clear();
    return false;
}

bool CommandPortReader::Feed(const QByteArray& bytes, std::deque<Request>* requests)
{
    if (!mProblem.isEmpty())
        return false;
    int at = 0;
    while (at < bytes.size())
    {
        if (mScriptSize >= 0)
        {
            const int taken = std::min(mScriptSize - mHeld.size(), bytes.size() - at);
            mHeld.append(bytes.constData() + at, taken);
            at += taken;
            if (mHeld.size() < mScriptSize)
                return true;
            requests->push_back({Kind::Script, mHeld});
            mHeld.clear();
            mScriptSize = -1;
            continue;
        }
        const int end = bytes.indexOf('\n', at);
        const int longest = mHasToken ? LongestLine : LongestTokenLine;
        const int length = (end < 0 ? bytes.size() : end) - at;
        // One more for the "\r" of its end.
        if (length > longest + 1 - mHeld.size())
            return Break("a line is too long");
        mHeld.append(bytes.constData() + at, length);
        if (end < 0)
            return true;
        at = end + 1;
        QByteArray line;
        line.swap(mHeld);
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.size() > longest)
            return Break("a line is too long");
        if (!TakeLine(line, requests))
            return false;
    }
    return true;
}

bool CommandPortReader::TakeLine(QByteArray line, std::deque<Request>* requests)
{
    const int blank = line.indexOf(' ');
    const QByteArray word = blank < 0 ? line : line.left(blank);
    const QByteArray argument = blank < 0 ? QByteArray() : line.mid(blank + 1);
    if (!mHasToken)
    {
        if (word != "token")
            return Break("the first line is no token");
        mHasToken = true;
        requests->push_back({Kind::Token, argument});
        return true;
    }
    const auto* const known = std::find_if(std::begin(RequestWords), std::end(RequestWords),
                                           [&](const RequestWord& each) { return word == each.word; });
    if (known == std::end(RequestWords))
        return Break("there is no request \"" + word.left(40).toPercentEncoding(" ", {}, '\\') + "\"");
    if (known->takesArgument == argument.trimmed().isEmpty())
        return Break(word + (known->takesArgument ? " needs an argument" : " takes no argument"));
    if (known->kind == Kind::Script)
        return TakeScriptLine(argument, requests);
    requests->push_back({known->kind, known->kind == Kind::Run ? argument.trimmed() : argument});
    return true;
}

bool CommandPortReader::TakeScriptLine(const QByteArray& argument, std::deque<Request>* requests)
{
    // Digits alone: a sign, a blank or a larger number's wrap-around is no size.
    const bool isNumber =
        argument.size() <= 9 &&
        std::all_of(argument.begin(), argument.end(), [](char each) { return each >= '0' && each <= '9'; });
    const int size = isNumber ? argument.toInt() : -1;
    if (size < 0)
        return Break("the size of the script is no number");
    if (size > LargestScript)
        return Break("the script is too large");
    if (size == 0)
        requests->push_back({Kind::Script, {}});
    else
        mScriptSize = size;
    return true;
}
