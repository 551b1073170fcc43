// SPDX-License-Identifier: MIT
#include "project/NaturalOrder.h"

namespace
{

bool IsAsciiDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

/// The run of digits at @p from without the zeros before it; @p from moves behind the run.
QStringRef DigitsAt(const QString& text, int* from)
{
    int begin = *from;
    int end = begin;
    while (end < text.size() && IsAsciiDigit(text[end]))
        ++end;
    *from = end;
    while (begin < end - 1 && text[begin] == QLatin1Char('0'))
        ++begin;
    return text.midRef(begin, end - begin);
}

} // namespace

bool IsBeforeNaturally(const QString& a, const QString& b)
{
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size())
    {
        if (IsAsciiDigit(a[i]) && IsAsciiDigit(b[j]))
        {
            const QStringRef x = DigitsAt(a, &i);
            const QStringRef y = DigitsAt(b, &j);
            if (x.size() != y.size())
                return x.size() < y.size();
            if (const int order = x.compare(y))
                return order < 0;
            continue;
        }
        const QChar x = a[i++].toCaseFolded();
        const QChar y = b[j++].toCaseFolded();
        if (x != y)
            return x < y;
    }
    return a.size() - i < b.size() - j;
}
