// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <stdexcept>

/// What is wrong with a JSON document, with the place in it.
class JsonError : public std::runtime_error
{
public:
    explicit JsonError(const QString& text) : std::runtime_error(text.toStdString()) {}
    QString Text() const { return QString::fromStdString(what()); }
};

/// A value of a JSON document and its place there. What it is asked for it gives or throws a JsonError that
/// names the place, e.g. "objects[3].source.path: a text is missing".
class JsonPart
{
public:
    JsonPart(const QJsonValue& value, const QString& place);

    const QString& Place() const { return mPlace; }
    [[noreturn]] void Fail(const QString& text) const;

    bool Has(const char* name) const;
    JsonPart Member(const char* name) const;
    QJsonObject Object() const;
    QJsonArray Array() const;
    QList<JsonPart> Items() const;
    /// The same of member @p name; none where that is absent.
    QList<JsonPart> ItemsOf(const char* name) const;
    QString Text() const;
    bool Flag() const;
    double Number() const;
    int Integer(int minimum, int maximum) const;
    int64_t LongInteger() const;
    QUuid Id() const;

    QString TextOr(const char* name, const QString& fallback = QString()) const;
    bool FlagOr(const char* name, bool fallback) const;
    int IntegerOr(const char* name, int minimum, int maximum, int fallback) const;
    int64_t LongIntegerOr(const char* name, int64_t fallback) const;

    /// The object's members that are none of @p known.
    QJsonObject Rest(const QStringList& known) const;

private:
    QJsonValue mValue;
    QString mPlace;
};
