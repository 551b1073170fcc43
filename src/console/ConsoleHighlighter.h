// SPDX-License-Identifier: MIT
#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

/// Colours the severity tags of a log: "[ERROR]" red and "[WARNING]" yellow, wherever they stand in a line,
/// and nothing else of the line. It knows text, not the kinds of messages.
class ConsoleHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    /// Colours @p parent, which owns the highlighter.
    explicit ConsoleHighlighter(QTextDocument* parent);

protected:
    void highlightBlock(const QString& text) override;

private:
    static const char* const ErrorPattern;
    static const char* const WarningPattern;

    QTextCharFormat mErrorFormat;
    QTextCharFormat mWarningFormat;
};
