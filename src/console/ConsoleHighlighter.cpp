// SPDX-License-Identifier: MIT
#include "console/ConsoleHighlighter.h"

#include <QRegExp>

const char* const ConsoleHighlighter::ErrorPattern = "\\[ERROR\\]";
const char* const ConsoleHighlighter::WarningPattern = "\\[WARNING\\]";

ConsoleHighlighter::ConsoleHighlighter(QTextDocument* parent) : QSyntaxHighlighter(parent)
{
    mErrorFormat.setForeground(QBrush(Qt::red, Qt::SolidPattern));
    mWarningFormat.setForeground(QBrush(Qt::yellow, Qt::SolidPattern));
}

void ConsoleHighlighter::highlightBlock(const QString& text)
{
    const struct
    {
        const char* pattern;
        const QTextCharFormat& format;
    } rows[] = {{ErrorPattern, mErrorFormat}, {WarningPattern, mWarningFormat}};
    QRegExp expression(QString(), Qt::CaseSensitive, QRegExp::RegExp);
    for (const auto& row : rows)
    {
        expression.setPattern(QLatin1String(row.pattern));
        int index = text.indexOf(expression, 0);
        while (index >= 0)
        {
            const int length = expression.matchedLength();
            setFormat(index, length, row.format);
            index = text.indexOf(expression, index + length);
        }
    }
}
