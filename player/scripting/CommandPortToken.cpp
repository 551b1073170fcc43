// SPDX-License-Identifier: MIT
#include "scripting/CommandPortToken.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t OthersMask = S_IRWXG | S_IRWXO;

QString SystemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Makes @p path a folder of this user alone. Returns what is wrong; empty if nothing is.
QString MakePrivateFolder(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), S_IRWXU) != 0 && errno != EEXIST)
        return QStringLiteral("%1 can't be made: %2").arg(path, SystemError());
    struct stat info = {};
    // Not followed: a link could lead into a folder of somebody else.
    if (::lstat(name.constData(), &info) != 0)
        return QStringLiteral("%1 can't be read: %2").arg(path, SystemError());
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid() || (info.st_mode & OthersMask) != 0)
        return QStringLiteral("%1 is no folder that only you can enter").arg(path);
    return {};
}

QByteArray RandomToken()
{
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QByteArray(reinterpret_cast<const char*>(words.data()), sizeof words).toHex();
}

} // namespace

QString CommandPortToken::DefaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/torvalen");
}

QString CommandPortToken::FilePath(const QString& folder, quint16 port)
{
    return QDir(folder).filePath(QStringLiteral("port-%1.token").arg(port));
}

CommandPortToken::~CommandPortToken()
{
    if (!mPath.isEmpty())
        ::unlink(QFile::encodeName(mPath).constData());
}

bool CommandPortToken::Create(const QString& folder, quint16 port, QString* error)
{
    *error = MakePrivateFolder(folder);
    if (!error->isEmpty())
        return false;
    const QString path = FilePath(folder, port);
    const QByteArray name = QFile::encodeName(path);
    ::unlink(name.constData());
    // Exclusively: what is in its place since, a link above all, is not written through.
    const int file =
        ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
    {
        *error = QStringLiteral("%1 can't be made: %2").arg(path, SystemError());
        return false;
    }
    mPath = path;
    const QByteArray token = RandomToken();
    const QByteArray line = token + '\n';
    const bool written = ::write(file, line.constData(), static_cast<size_t>(line.size())) == line.size();
    if (::close(file) != 0 || !written)
    {
        *error = QStringLiteral("%1 can't be written: %2").arg(path, SystemError());
        return false;
    }
    mToken = token;
    return true;
}

bool CommandPortToken::Matches(const QByteArray& token) const
{
    if (mToken.isEmpty() || token.size() != mToken.size())
        return false;
    unsigned difference = 0;
    for (int index = 0; index < mToken.size(); ++index)
        difference |= static_cast<unsigned char>(mToken.at(index) ^ token.at(index));
    return difference == 0;
}
