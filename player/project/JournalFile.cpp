// SPDX-License-Identifier: MIT
#include "project/JournalFile.h"

#include <QJsonDocument>

#include <array>

namespace
{

constexpr int ChecksumDigits = 8;

std::array<quint32, 256> MakeChecksumTable()
{
    // The reflected polynomial of CRC-32.
    constexpr quint32 polynomial = 0xedb88320u;
    std::array<quint32, 256> table{};
    for (quint32 byte = 0; byte < table.size(); ++byte)
    {
        quint32 value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ ((value & 1u) != 0 ? polynomial : 0u);
        table[byte] = value;
    }
    return table;
}

/// CRC-32 of @p data, going on from @p checksum.
quint32 Checksum(quint32 checksum, const QByteArray& data)
{
    static const std::array<quint32, 256> table = MakeChecksumTable();
    quint32 value = ~checksum;
    for (const char character : data)
        value = (value >> 8) ^ table[(value ^ static_cast<unsigned char>(character)) & 0xffu];
    return ~value;
}

QByteArray ChecksumText(quint32 checksum)
{
    return QByteArray::number(checksum, 16).rightJustified(ChecksumDigits, '0');
}

} // namespace

bool JournalFile::Create(const QString& path)
{
    mFile.close();
    mFile.setFileName(path);
    mChecksum = 0;
    mSize = 0;
    return mFile.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
}

bool JournalFile::Append(const QJsonObject& record)
{
    const QByteArray text = QJsonDocument(record).toJson(QJsonDocument::Compact);
    const quint32 checksum = Checksum(mChecksum, text);
    const QByteArray line = ChecksumText(checksum) + ' ' + text + '\n';
    if (!mFile.isOpen() || mFile.write(line) != line.size())
        return false;
    mChecksum = checksum;
    mSize += line.size();
    return true;
}

void JournalFile::Remove()
{
    if (mFile.isOpen())
        mFile.remove();
}

QList<QJsonObject> JournalFile::Read(const QString& path)
{
    QList<QJsonObject> records;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return records;
    quint32 checksum = 0;
    while (!file.atEnd())
    {
        const QByteArray line = file.readLine();
        if (!line.endsWith('\n') || line.size() < ChecksumDigits + 2)
            break;
        const QByteArray text = line.mid(ChecksumDigits + 1, line.size() - ChecksumDigits - 2);
        checksum = Checksum(checksum, text);
        if (line.left(ChecksumDigits) != ChecksumText(checksum) || line[ChecksumDigits] != ' ')
            break;
        const QJsonDocument document = QJsonDocument::fromJson(text);
        if (!document.isObject())
            break;
        records.append(document.object());
    }
    return records;
}
