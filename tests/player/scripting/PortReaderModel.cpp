// SPDX-License-Identifier: MIT
#include "scripting/PortReaderModel.h"

#include "scripting/CommandPortReader.h"

#include <QRandomGenerator>
#include <QStringList>

#include <algorithm>

namespace
{

const char* const KindWords[] = {"token", "list", "run", "eval", "script", "stop"};

QByteArray Shown(const QByteArray& word)
{
    QByteArray shown;
    for (const char each : word.left(40))
    {
        const bool isPlain = (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') ||
                             (each >= '0' && each <= '9') || QByteArray("-._~ ").contains(each);
        shown += isPlain ? QByteArray(1, each) : '\\' + QByteArray(1, each).toHex().toUpper();
    }
    return shown;
}

} // namespace

PortReaderModel::Reading PortReaderModel::Read(const QByteArray& bytes)
{
    Reading reading;
    int at = 0;
    for (bool first = true; at < bytes.size(); first = false)
    {
        const int longest = first ? 128 : 65536;
        const int end = bytes.indexOf('\n', at);
        QByteArray line = bytes.mid(at, end < 0 ? -1 : end - at);
        if (end < 0)
        {
            if (line.size() > longest + 1)
                reading.problem = "a line is too long";
            return reading;
        }
        at = end + 1;
        if (line.size() > 0 && line.back() == '\r')
            line = line.left(line.size() - 1);
        if (line.size() > longest)
        {
            reading.problem = "a line is too long";
            return reading;
        }
        const QByteArray word = line.split(' ').first();
        QByteArray argument = line.mid(word.size() + 1);
        if (first != (word == "token"))
        {
            reading.problem = first ? QByteArray("the first line is no token")
                                    : "there is no request \"" + Shown(word) + '"';
            return reading;
        }
        const bool isAlone = word == "list" || word == "stop";
        const bool hasArgument = word == "run" || word == "eval" || word == "script";
        if (!first && !isAlone && !hasArgument)
            reading.problem = "there is no request \"" + Shown(word) + '"';
        else if (isAlone && !argument.trimmed().isEmpty())
            reading.problem = word + " takes no argument";
        else if (hasArgument && argument.trimmed().isEmpty())
            reading.problem = word + " needs an argument";
        if (!reading.problem.isEmpty())
            return reading;
        if (word == "run")
            argument = argument.trimmed();
        if (word == "script")
        {
            qint64 size = 0;
            for (const char each : argument)
            {
                if (each < '0' || each > '9' || argument.size() > 9)
                {
                    reading.problem = "the size of the script is no number";
                    return reading;
                }
                size = size * 10 + (each - '0');
            }
            if (size > 1048576)
            {
                reading.problem = "the script is too large";
                return reading;
            }
            if (bytes.size() - at < size)
                return reading;
            argument = bytes.mid(at, static_cast<int>(size));
            at += static_cast<int>(size);
        }
        reading.requests << qMakePair(word, argument);
    }
    return reading;
}

QString PortReaderModel::Difference(const QByteArray& bytes, int longest, unsigned seed)
{
    const Reading expected = Read(bytes);
    CommandPortReader reader;
    std::deque<CommandPortReader::Request> requests;
    QRandomGenerator random(seed);
    int at = 0;
    while (at < bytes.size())
    {
        const int size = std::min(1 + random.bounded(longest), bytes.size() - at);
        const bool fine = reader.Feed(bytes.mid(at, size), &requests);
        at += size;
        if (fine != reader.Problem().isEmpty())
            return QStringLiteral("its answer and its problem disagree");
        if (reader.Held() > CommandPortReader::LargestScript)
            return QStringLiteral("it holds %1 bytes").arg(reader.Held());
    }
    if (reader.Problem() != expected.problem)
        return QStringLiteral("its problem is \"%1\" instead of \"%2\"")
            .arg(QString::fromLatin1(reader.Problem()), QString::fromLatin1(expected.problem));
    if (static_cast<int>(requests.size()) != expected.requests.size())
        return QStringLiteral("it has %1 requests instead of %2")
            .arg(requests.size())
            .arg(expected.requests.size());
    for (int index = 0; index < expected.requests.size(); ++index)
    {
        const CommandPortReader::Request& request = requests[static_cast<size_t>(index)];
        const auto& [word, argument] = expected.requests.at(index);
        // Lines that stand alone have nothing but blanks behind them.
        const bool isAlone = word == "list" || word == "stop";
        if (word != KindWords[static_cast<int>(request.kind)] ||
            (isAlone ? !request.argument.trimmed().isEmpty() : request.argument != argument))
            return QStringLiteral("request %1 differs").arg(index);
    }
    return {};
}
