// SPDX-License-Identifier: MIT
#include "project/DrawingJson.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QRgba64>

#include <array>
#include <cmath>

namespace DrawingJson
{

namespace
{

/// The names of the types, at the index of each type's value.
const std::array<const char*, 8> TypeNames = {"pencil", "eraser", "text", "line",
                                              "oval",   "arrow",  "none", "rectangle"};
const QStringList KnownMembers = {QStringLiteral("id"),    QStringLiteral("type"),   QStringLiteral("width"),
                                  QStringLiteral("color"), QStringLiteral("points"), QStringLiteral("text")};

QString ExtraName(uint64_t id)
{
    return QStringLiteral("drawing %1").arg(id);
}

QList<QPointF> ReadPoints(const JsonPart& part)
{
    const QJsonArray numbers = part.Array();
    if (numbers.size() % 2 != 0)
        part.Fail(QCoreApplication::translate("ProjectFile", "points are pairs of numbers"));
    QList<QPointF> points;
    points.reserve(numbers.size() / 2);
    for (int index = 0; index < numbers.size(); index += 2)
    {
        // A part for each number would cost more than all else.
        if (!numbers[index].isDouble() || !numbers[index + 1].isDouble())
            part.Fail(QCoreApplication::translate("ProjectFile", "points are pairs of numbers"));
        points.append(QPointF(numbers[index].toDouble(), numbers[index + 1].toDouble()));
    }
    return points;
}

bool FindType(const QString& name, DrawType* type)
{
    for (uint32_t value = 0; value < TypeNames.size(); ++value)
    {
        if (name == QLatin1String(TypeNames[value]))
        {
            *type = static_cast<DrawType>(value);
            return true;
        }
    }
    return false;
}

} // namespace

QJsonObject Write(const DrawData& drawing)
{
    QJsonObject json;
    // As a text: a number of JSON isn't exact over all 64 bits.
    json[QLatin1String("id")] = QString::number(drawing.id);
    const size_t type = drawing.type;
    json[QLatin1String("type")] = QLatin1String(TypeNames[type < TypeNames.size() ? type : size_t(DrawNone)]);
    json[QLatin1String("width")] = std::isfinite(drawing.width) ? static_cast<double>(drawing.width) : 0.0;
    if (drawing.color.isValid())
    {
        const QRgba64 color = drawing.color.rgba64();
        json[QLatin1String("color")] = QJsonArray{color.red(), color.green(), color.blue(), color.alpha()};
    }
    QJsonArray points;
    for (const QPointF& point : drawing.points)
    {
        if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
            continue;
        points.append(point.x());
        points.append(point.y());
    }
    json[QLatin1String("points")] = points;
    if (!drawing.text.isEmpty())
        json[QLatin1String("text")] = drawing.text;
    return json;
}

QJsonArray WriteList(const QList<DrawData>& drawings, const ExtraParts& extras)
{
    QJsonArray list;
    for (const DrawData& drawing : drawings)
    {
        QJsonObject json = Write(drawing);
        const QJsonObject extra = extras.inner.value(ExtraName(drawing.id));
        for (auto member = extra.constBegin(); member != extra.constEnd(); ++member)
            json.insert(member.key(), member.value());
        list.append(json);
    }
    return list;
}

DrawData Read(const JsonPart& part)
{
    DrawData drawing;
    if (part.Has("id"))
    {
        bool ok = false;
        drawing.id = part.Member("id").Text().toULongLong(&ok);
        if (!ok)
            part.Member("id").Fail(
                QCoreApplication::translate("ProjectFile", "a whole number in a text belongs here"));
    }
    // A drawing of a type that this version doesn't know shows nothing; its list keeps what it is.
    if (!FindType(part.Member("type").Text(), &drawing.type))
        return drawing;
    drawing.width = static_cast<float>(part.Member("width").Number());
    if (!std::isfinite(drawing.width))
        part.Member("width").Fail(QCoreApplication::translate("ProjectFile", "the number is too large"));
    if (part.Has("color"))
    {
        const QList<JsonPart> channels = part.Member("color").Items();
        if (channels.size() != 4)
            part.Member("color").Fail(
                QCoreApplication::translate("ProjectFile", "a colour has four channels"));
        const auto channel = [&](int index)
        { return static_cast<quint16>(channels[index].Integer(0, 65535)); };
        drawing.color = QColor::fromRgba64(channel(0), channel(1), channel(2), channel(3));
    }
    drawing.points = ReadPoints(part.Member("points"));
    drawing.text = part.TextOr("text");
    return drawing;
}

QList<DrawData> ReadList(const JsonPart& part, ExtraParts& extras)
{
    QList<DrawData> drawings;
    for (const JsonPart& item : part.Items())
    {
        DrawData drawing = Read(item);
        DrawType type = DrawNone;
        QJsonObject rest =
            FindType(item.Member("type").Text(), &type) ? item.Rest(KnownMembers) : item.Object();
        rest.remove(QStringLiteral("id"));
        if (!rest.isEmpty())
        {
            // What hangs on a drawing is found by its id.
            while (drawing.id == 0 || extras.inner.contains(ExtraName(drawing.id)))
                drawing.id = QRandomGenerator::global()->generate64() >> 12;
            extras.inner.insert(ExtraName(drawing.id), rest);
        }
        drawings.append(drawing);
    }
    return drawings;
}

} // namespace DrawingJson
