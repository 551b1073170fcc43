// SPDX-License-Identifier: MIT
#include "project/JsonPart.h"

#include <QCoreApplication>

#include <cmath>

namespace
{

QString PartText(const char* text)
{
    return QCoreApplication::translate("ProjectFile", text);
}

/// Whole numbers up to here are exact in JSON.
constexpr double LargestWhole = 9007199254740992.0;

} // namespace

JsonPart::JsonPart(const QJsonValue& value, const QString& place) : mValue(value), mPlace(place) {}

void JsonPart::Fail(const QString& text) const
{
    throw JsonError(QStringLiteral("%1: %2").arg(mPlace.isEmpty() ? PartText("the document") : mPlace, text));
}

bool JsonPart::Has(const char* name) const
{
    return mValue.isObject() && mValue.toObject().contains(QLatin1String(name));
}

JsonPart JsonPart::Member(const char* name) const
{
    const QJsonObject object = Object();
    const auto found = object.constFind(QLatin1String(name));
    if (found == object.constEnd())
        Fail(PartText("\"%1\" is missing").arg(QLatin1String(name)));
    return {*found,
            mPlace.isEmpty() ? QString::fromLatin1(name) : mPlace + QLatin1Char('.') + QLatin1String(name)};
}

QJsonObject JsonPart::Object() const
{
    if (!mValue.isObject())
        Fail(PartText("an object belongs here"));
    return mValue.toObject();
}

QJsonArray JsonPart::Array() const
{
    if (!mValue.isArray())
        Fail(PartText("a list belongs here"));
    return mValue.toArray();
}

QList<JsonPart> JsonPart::Items() const
{
    QList<JsonPart> items;
    const QJsonArray array = Array();
    items.reserve(array.size());
    for (int index = 0; index < array.size(); ++index)
        items.append({array[index], QStringLiteral("%1[%2]").arg(mPlace).arg(index)});
    return items;
}

QList<JsonPart> JsonPart::ItemsOf(const char* name) const
{
    return Has(name) ? Member(name).Items() : QList<JsonPart>();
}

QString JsonPart::Text() const
{
    if (!mValue.isString())
        Fail(PartText("a text belongs here"));
    return mValue.toString();
}

bool JsonPart::Flag() const
{
    if (!mValue.isBool())
        Fail(PartText("true or false belongs here"));
    return mValue.toBool();
}

double JsonPart::Number() const
{
    if (!mValue.isDouble() || !std::isfinite(mValue.toDouble()))
        Fail(PartText("a number belongs here"));
    return mValue.toDouble();
}

int JsonPart::Integer(int minimum, int maximum) const
{
    const double number = Number();
    if (std::floor(number) < number || number < minimum || number > maximum)
        Fail(PartText("a whole number from %1 to %2 belongs here").arg(minimum).arg(maximum));
    return static_cast<int>(number);
}

int64_t JsonPart::LongInteger() const
{
    const double number = Number();
    if (std::floor(number) < number || std::abs(number) > LargestWhole)
        Fail(PartText("a whole number belongs here"));
    return static_cast<int64_t>(number);
}

QUuid JsonPart::Id() const
{
    const QUuid id(Text());
    if (id.isNull())
        Fail(PartText("an id belongs here"));
    return id;
}

QString JsonPart::TextOr(const char* name, const QString& fallback) const
{
    return Has(name) ? Member(name).Text() : fallback;
}

bool JsonPart::FlagOr(const char* name, bool fallback) const
{
    return Has(name) ? Member(name).Flag() : fallback;
}

int JsonPart::IntegerOr(const char* name, int minimum, int maximum, int fallback) const
{
    return Has(name) ? Member(name).Integer(minimum, maximum) : fallback;
}

int64_t JsonPart::LongIntegerOr(const char* name, int64_t fallback) const
{
    return Has(name) ? Member(name).LongInteger() : fallback;
}

QJsonObject JsonPart::Rest(const QStringList& known) const
{
    QJsonObject rest = Object();
    for (const QString& name : known)
        rest.remove(name);
    return rest;
}
