// SPDX-License-Identifier: MIT
#include "GoldenFile.h"
#include "SharedLibrary.h"
#include "SourceTree.h"
#include "support/TestRegistry.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

/// The shared libraries export the classes that are marked so, and nothing else.
class tst_ExportedSymbols : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void OnlyMarkedClassesAreExported();
    void EachMarkedClassIsExported();
    void TheClassesAreThoseOfTheGoldenFile();
    void TheOwnerOfASymbolIsFound_data();
    void TheOwnerOfASymbolIsFound();

private:
    QMap<QString, QSet<QString>> mExported;
    QMap<QString, QSet<QString>> mMarked;
};

namespace
{

/// The outermost class, namespace or function that the C++ name @p symbol belongs to; empty for an instance
/// of a template of Qt or the standard library, which many libraries define and share.
QString OwnerOf(QString symbol)
{
    static const QRegularExpression prefix(QStringLiteral(
        "^(vtable for|typeinfo for|typeinfo name for|VTT for|guard variable for|(non-)?virtual thunk to|"
        "covariant return thunk to|construction vtable for) "));
    while (prefix.match(symbol).hasMatch())
        symbol.remove(prefix);
    // What stands before the name of a template's function is its result type; arguments don't matter.
    QString name;
    int depth = 0;
    for (const QChar character : qAsConst(symbol))
    {
        if (character == QLatin1Char('<'))
            ++depth;
        else if (character == QLatin1Char('>'))
            --depth;
        else if (depth > 0)
            continue;
        else if (character == QLatin1Char('('))
            break;
        else if (character == QLatin1Char(' '))
            name.clear();
        else
            name += character;
    }
    const QString owner = name.section(QLatin1String("::"), 0, 0);
    static const QRegularExpression foreign(
        QStringLiteral("^(std|__gnu_cxx|__cxxabiv1|Q[A-Z]\\w*|q[A-Z]\\w*|Qt\\w*)$"));
    return foreign.match(owner).hasMatch() ? QString() : owner;
}

QStringList Sorted(const QSet<QString>& names)
{
    QStringList list = names.values();
    list.sort();
    return list;
}

} // namespace

void tst_ExportedSymbols::initTestCase()
{
    if (SharedLibraries().isEmpty())
        QSKIP("static libraries export nothing");
    for (const QString& path : SharedLibraries())
    {
        const QString library = QFileInfo(path).baseName().mid(3);
        const QStringList names = ExportedNames(path);
        QVERIFY2(!names.isEmpty(), qPrintable(path));
        for (const QString& name : names)
        {
            // Names that the linker makes.
            if (name.startsWith(QLatin1String("__")) || name == QLatin1String("_init") ||
                name == QLatin1String("_fini") || name == QLatin1String("_end") ||
                name == QLatin1String("_edata"))
                continue;
            const QString owner = OwnerOf(Demangled(name));
            if (!owner.isEmpty())
                mExported[library] << owner;
        }
        const QRegularExpression marked(
            QStringLiteral("\\b(?:class|struct|namespace)\\s+%1_EXPORT\\s+(\\w+)").arg(library.toUpper()));
        const SourceTree sources = ReadSources(QStringLiteral("src"));
        for (const QByteArray& source : sources)
        {
            auto matches = marked.globalMatch(QString::fromUtf8(source));
            while (matches.hasNext())
                mMarked[library] << matches.next().captured(1);
        }
    }
}

void tst_ExportedSymbols::OnlyMarkedClassesAreExported()
{
    for (auto each = mExported.cbegin(); each != mExported.cend(); ++each)
    {
        const QString unmarked = Sorted(each.value() - mMarked.value(each.key())).join(QLatin1Char(' '));
        QVERIFY2(unmarked.isEmpty(), qPrintable(each.key() + QStringLiteral(" exports ") + unmarked));
    }
}

void tst_ExportedSymbols::EachMarkedClassIsExported()
{
    for (auto each = mMarked.cbegin(); each != mMarked.cend(); ++each)
    {
        const QString missing = Sorted(each.value() - mExported.value(each.key())).join(QLatin1Char(' '));
        QVERIFY2(missing.isEmpty(), qPrintable(each.key() + QStringLiteral(" lacks ") + missing));
    }
}

void tst_ExportedSymbols::TheClassesAreThoseOfTheGoldenFile()
{
    QString text;
    for (auto each = mExported.cbegin(); each != mExported.cend(); ++each)
    {
        text += each.key() + QLatin1Char('\n');
        for (const QString& name : Sorted(each.value()))
            text += QStringLiteral("    %1\n").arg(name);
    }
    const QString difference = GoldenDifference(QStringLiteral("exported-classes.txt"), text);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ExportedSymbols::TheOwnerOfASymbolIsFound_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("owner");
    QTest::newRow("operation") << "Settings::WriteUserConfig()"
                               << "Settings";
    QTest::newRow("arguments") << "Logger::Error(QString const&)"
                               << "Logger";
    QTest::newRow("data") << "Settings::drawWidth"
                          << "Settings";
    QTest::newRow("vtable") << "vtable for ViewerWidget"
                            << "ViewerWidget";
    QTest::newRow("type name") << "typeinfo name for ViewerWidget"
                               << "ViewerWidget";
    QTest::newRow("thunk") << "non-virtual thunk to ViewerWidget::~ViewerWidget()"
                           << "ViewerWidget";
    QTest::newRow("namespace") << "UserFile::SetAside(QString const&, QString const&)"
                               << "UserFile";
    QTest::newRow("function") << "DrawSpaceOf(QPoint const&)"
                              << "DrawSpaceOf";
    QTest::newRow("variable") << "Int64MetaType"
                              << "Int64MetaType";
    QTest::newRow("static") << "guard variable for Hidden::Instance()::instance"
                            << "Hidden";
    QTest::newRow("Qt's list") << "QList<TimeBookmark>::~QList()"
                               << "";
    QTest::newRow("standard pointer")
        << "std::_Sp_counted_ptr<Hidden*, (__gnu_cxx::_Lock_policy)2>::~_Sp_counted_ptr()"
        << "";
    QTest::newRow("function template") << "void std::vector<int>::push_back(int)"
                                       << "";
    QTest::newRow("own template") << "Hidden<QString>::Run(int)"
                                  << "Hidden";
}

void tst_ExportedSymbols::TheOwnerOfASymbolIsFound()
{
    QFETCH(QString, symbol);
    QTEST(OwnerOf(symbol), "owner");
}

static const TestRegistration<tst_ExportedSymbols> ExportedSymbolsRegistration;

#include "tst_ExportedSymbols.moc"
