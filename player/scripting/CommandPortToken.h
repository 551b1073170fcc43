// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// The token of a command port: made anew for each, in a file that only the user can read, and gone with it.
class CommandPortToken
{
public:
    /// The folder of the token files: of the user's runtime directory, which other users can't enter.
    static QString DefaultFolder();
    /// Path of the file for @p port in @p folder.
    static QString FilePath(const QString& folder, quint16 port);

    CommandPortToken() = default;
    ~CommandPortToken();

    CommandPortToken(const CommandPortToken&) = delete;
    CommandPortToken& operator=(const CommandPortToken&) = delete;

    /// Makes a token and writes its file for @p port in @p folder, which is made if it is missing; a file
    /// that is there is replaced. Returns whether that went well; @p error says what is wrong with which
    /// path. A folder that other users can enter is refused.
    bool Create(const QString& folder, quint16 port, QString* error);
    /// Whether @p token is the token; takes the same time whatever it is wrong with. Nothing is before
    /// Create().
    bool Matches(const QByteArray& token) const;

private:
    QByteArray mToken;
    QString mPath;
};
