// SPDX-License-Identifier: MIT
#include "project/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace
{

QByteArray CompactText(const QJsonArray& array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

void AppendJson(QByteArray& text, const QJsonValue& value, int depth);

void StartLine(QByteArray& text, int depth)
{
    text += '\n';
    text.append(depth, '\t');
}

void AppendScalar(QByteArray& text, const QJsonValue& value)
{
    const QByteArray wrapped = CompactText({value});
    text += wrapped.mid(1, wrapped.size() - 2);
}

void AppendObject(QByteArray& text, const QJsonObject& object, int depth)
{
    text += '{';
    for (auto member = object.constBegin(); member != object.constEnd(); ++member)
    {
        if (member != object.constBegin())
            text += ',';
        StartLine(text, depth + 1);
        AppendScalar(text, member.key());
        text += ": ";
        AppendJson(text, member.value(), depth + 1);
    }
    if (!object.isEmpty())
        StartLine(text, depth);
    text += '}';
}

void AppendArray(QByteArray& text, const QJsonArray& array, int depth)
{
    const bool isPlain =
        std::none_of(array.begin(), array.end(),
                     [](const QJsonValue& value) { return value.isObject() || value.isArray(); });
    if (isPlain)
    {
        text += CompactText(array);
        return;
    }
    text += '[';
    for (int index = 0; index < array.size(); ++index)
    {
        if (index > 0)
            text += ',';
        StartLine(text, depth + 1);
        AppendJson(text, array[index], depth + 1);
    }
    StartLine(text, depth);
    text += ']';
}

void AppendJson(QByteArray& text, const QJsonValue& value, int depth)
{
    if (value.isObject())
        AppendObject(text, value.toObject(), depth);
    else if (value.isArray())
        AppendArray(text, value.toArray(), depth);
    else
        AppendScalar(text, value);
}

} // namespace

QByteArray JsonText(const QJsonObject& object)
{
    QByteArray text;
    AppendJson(text, object, 0);
    text += '\n';
    return text;
}
