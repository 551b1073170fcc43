// SPDX-License-Identifier: MIT
#include "views/CallLog.h"

#include <QMetaMethod>
#include <QPointF>
#include <QTreeWidgetItem>
#include <QUuid>

namespace
{

QString ShownID(const QUuid& id)
{
    return id.isNull() ? QStringLiteral("null") : QStringLiteral("#%1").arg(id.data1);
}

template<typename Value, typename Show>
QString ShownList(const QVariant& argument, Show show)
{
    QStringList shown;
    for (const Value& value : argument.value<QList<Value>>())
        shown << show(value);
    return QStringLiteral("[%1]").arg(shown.join(QLatin1Char(' ')));
}

QString Shown(const QVariant& argument)
{
    const int type = argument.userType();
    if (type == qMetaTypeId<QUuid>())
        return ShownID(argument.toUuid());
    if (type == qMetaTypeId<QList<QUuid>>())
        return ShownList<QUuid>(argument, ShownID);
    if (type == qMetaTypeId<QList<int>>())
        return ShownList<int>(argument, [](int value) { return QString::number(value); });
    if (type == qMetaTypeId<QList<QString>>() || type == QMetaType::QStringList)
        return ShownList<QString>(argument, [](const QString& value) { return value; });
    if (type == QMetaType::QPointF)
        return QStringLiteral("(%1 %2)").arg(argument.toPointF().x()).arg(argument.toPointF().y());
    if (type == QMetaType::type("QTreeWidgetItem*"))
    {
        auto* const* const row = static_cast<QTreeWidgetItem* const*>(argument.constData());
        return *row != nullptr ? (*row)->text(0) : QStringLiteral("no row");
    }
    if (type == QMetaType::Float)
        return QString::number(static_cast<double>(argument.toFloat()));
    return argument.toString();
}

} // namespace

QUuid NumberedID(int number)
{
    return QUuid(static_cast<uint>(number), 7, 7, 7, 7, 7, 7, 7, 7, 7, 7);
}

CallLog::CallLog(QObject* object)
{
    const QMetaObject* const meta = object->metaObject();
    const QMetaMethod note = staticMetaObject.method(staticMetaObject.indexOfMethod("Note()"));
    for (int index = meta->methodOffset(); index < meta->methodCount(); ++index)
    {
        const QMetaMethod method = meta->method(index);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        mSpies.emplace_back(QString::fromLatin1(method.name()), std::make_unique<QSignalSpy>(object, method));
        // Connected behind its spy, so that the spy has the arguments when the note is made.
        connect(object, method, this, note);
    }
}

QStringList CallLog::Take()
{
    const QStringList calls = mCalls;
    mCalls.clear();
    return calls;
}

void CallLog::Note()
{
    for (auto& [name, spy] : mSpies)
    {
        while (!spy->isEmpty())
        {
            QStringList arguments;
            for (const QVariant& argument : spy->takeFirst())
                arguments << Shown(argument);
            mCalls << QStringLiteral("%1(%2)").arg(name, arguments.join(QStringLiteral(", ")));
        }
    }
}
