// SPDX-License-Identifier: MIT
#include "GoldenFile.h"
#include "SharedLibrary.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QLibrary>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QtTest>

/// The meta objects that hosts connect to by name: what changes here breaks their connections.
class tst_MetaObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void SignaturesAreThoseOfTheGoldenFiles_data();
    void SignaturesAreThoseOfTheGoldenFiles();
    void EachGoldenFileHasItsClass();
    void ADifferenceIsTold();

private:
    QMap<QString, const QMetaObject*> mMetaObjects;
};

namespace
{

QString AccessOf(const QMetaMethod& method)
{
    switch (method.access())
    {
    case QMetaMethod::Private:
        return QStringLiteral("private");
    case QMetaMethod::Protected:
        return QStringLiteral("protected");
    case QMetaMethod::Public:
        break;
    }
    return QStringLiteral("public");
}

QString KindOf(const QMetaMethod& method)
{
    switch (method.methodType())
    {
    case QMetaMethod::Signal:
        return QStringLiteral("signal");
    case QMetaMethod::Slot:
        return AccessOf(method) + QStringLiteral(" slot");
    case QMetaMethod::Method:
    case QMetaMethod::Constructor:
        break;
    }
    return AccessOf(method) + QStringLiteral(" method");
}

/// What @p metaObject itself declares, a line each.
QString Describe(const QMetaObject* metaObject)
{
    const auto* base = metaObject->superClass();
    QStringList lines = {
        QStringLiteral("class %1 : %2")
            .arg(QLatin1String(metaObject->className()), QLatin1String(base ? base->className() : ""))};
    for (int index = metaObject->methodOffset(); index < metaObject->methodCount(); ++index)
    {
        const QMetaMethod method = metaObject->method(index);
        lines << QStringLiteral("%1 %2 %3")
                     .arg(KindOf(method), QLatin1String(method.typeName()),
                          QString::fromLatin1(method.methodSignature()));
    }
    for (int index = metaObject->propertyOffset(); index < metaObject->propertyCount(); ++index)
    {
        const QMetaProperty property = metaObject->property(index);
        lines << QStringLiteral("property %1 %2")
                     .arg(QLatin1String(property.typeName()), QLatin1String(property.name()));
    }
    for (int index = metaObject->enumeratorOffset(); index < metaObject->enumeratorCount(); ++index)
        lines << QStringLiteral("enumeration %1").arg(QLatin1String(metaObject->enumerator(index).name()));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace

void tst_MetaObjects::initTestCase()
{
    if (SharedLibraries().isEmpty())
        QSKIP("static libraries export nothing");
    const QString suffix = QStringLiteral("::staticMetaObject");
    for (const QString& path : SharedLibraries())
    {
        const QStringList names = ExportedNames(path);
        QVERIFY2(!names.isEmpty(), qPrintable(path));
        QLibrary library(path);
        for (const QString& name : names)
        {
            const QString demangled = Demangled(name);
            if (!demangled.endsWith(suffix))
                continue;
            const auto* metaObject =
                reinterpret_cast<const QMetaObject*>(library.resolve(name.toLatin1().constData()));
            QVERIFY2(metaObject, qPrintable(name));
            mMetaObjects[demangled.chopped(suffix.size())] = metaObject;
        }
    }
    QVERIFY(mMetaObjects.contains(QStringLiteral("Logger")));
}

void tst_MetaObjects::SignaturesAreThoseOfTheGoldenFiles_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : mMetaObjects.keys())
        QTest::newRow(qPrintable(name)) << name;
}

void tst_MetaObjects::SignaturesAreThoseOfTheGoldenFiles()
{
    QFETCH(QString, name);
    const QString difference =
        GoldenDifference(name + QStringLiteral(".txt"), Describe(mMetaObjects.value(name)));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_MetaObjects::EachGoldenFileHasItsClass()
{
    const QStringList files = QDir(GoldenFolder()).entryList({QStringLiteral("*.txt")}, QDir::Files);
    QVERIFY(!files.isEmpty());
    for (const QString& file : files)
    {
        // Classes begin with a capital; other lists don't.
        if (!file.at(0).isUpper())
            continue;
        QVERIFY2(mMetaObjects.contains(file.chopped(4)),
                 qPrintable(file + QStringLiteral(" has no class any more")));
    }
}

void tst_MetaObjects::ADifferenceIsTold()
{
    if (IsUpdatingGoldenFiles())
        QSKIP("the golden files are being written");
    const QString logger = Describe(mMetaObjects.value(QStringLiteral("Logger")));
    const QString file = QStringLiteral("Logger.txt");
    QVERIFY(GoldenDifference(file, logger + QStringLiteral("signal void More()\n"))
                .contains(QStringLiteral("More")));
    QVERIFY(!GoldenDifference(file, logger.section(QLatin1Char('\n'), 0, -3)).isEmpty());
    QVERIFY(!GoldenDifference(file, QString(logger).replace(QLatin1String("QString"), QLatin1String("int")))
                 .isEmpty());
    QVERIFY(GoldenDifference(QStringLiteral("NoSuchClass.txt"), logger)
                .contains(QStringLiteral("update-golden")));
}

static const TestRegistration<tst_MetaObjects> MetaObjectsRegistration;

#include "tst_MetaObjects.moc"
