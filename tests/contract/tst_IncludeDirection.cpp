// SPDX-License-Identifier: MIT
#include "SourceTree.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_IncludeDirection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TheLibraryKeepsTheDirection();
    void AWrongArrowIsSeen_data();
    void AWrongArrowIsSeen();
    void ARightArrowIsFine_data();
    void ARightArrowIsFine();
};

namespace
{

void AddArrows()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QByteArray>("line");
}

/// A tree with a header in every folder that matters, and @p line in @p source.
SourceTree TreeWith(const QString& source, const QByteArray& line)
{
    SourceTree tree;
    for (const char* path :
         {"src/TorvalenUIExport.h", "src/host/Settings.h", "src/host/Logger.h", "src/kit/FlatButton.h",
          "src/viewers/ViewerWidget.h", "src/viewers/DrawSpace.h", "src/timelines/UiHelpers.h",
          "src/dialogs/output/ExportDialog.h", "src/dialogs/settings/AboutDialog.h",
          "player/media/MediaReader.h", "tests/support/InputEvents.h"})
        tree[QString::fromLatin1(path)] = "#pragma once\n";
    tree[source] += "// first\n" + line + "\nclass After;\n";
    return tree;
}

} // namespace

void tst_IncludeDirection::TheLibraryKeepsTheDirection()
{
    SourceTree tree = ReadSources(QStringLiteral("src"));
    QVERIFY2(tree.size() > 40, "the sources were not found");
    for (const char* other : {"player", "tests"})
    {
        const SourceTree others = ReadSources(QString::fromLatin1(other));
        for (auto each = others.cbegin(); each != others.cend(); ++each)
            tree[each.key()] = each.value();
    }
    const QStringList wrong = WrongIncludes(tree);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
}

void tst_IncludeDirection::AWrongArrowIsSeen_data()
{
    AddArrows();
    QTest::newRow("host to kit") << "src/host/Settings.h" << QByteArray("#include \"kit/FlatButton.h\"");
    QTest::newRow("host to viewers") << "src/host/Settings.cpp"
                                     << QByteArray("#include \"viewers/ViewerWidget.h\"");
    QTest::newRow("kit to viewers") << "src/kit/FlatButton.cpp"
                                    << QByteArray("#include \"viewers/ViewerWidget.h\"");
    QTest::newRow("viewers to timelines")
        << "src/viewers/ViewerWidget.cpp" << QByteArray("#include \"timelines/UiHelpers.h\"");
    QTest::newRow("timelines to viewers")
        << "src/timelines/UiHelpers.h" << QByteArray("#include \"viewers/DrawSpace.h\"");
    QTest::newRow("between dialogs") << "src/dialogs/settings/AboutDialog.cpp"
                                     << QByteArray("#include \"dialogs/output/ExportDialog.h\"");
    QTest::newRow("between dialogs, relative")
        << "src/dialogs/settings/AboutDialog.cpp" << QByteArray("#include \"../output/ExportDialog.h\"");
    QTest::newRow("relative") << "src/viewers/ViewerWidget.cpp"
                              << QByteArray("#include \"../timelines/UiHelpers.h\"");
    QTest::newRow("to the player") << "src/viewers/ViewerWidget.cpp"
                                   << QByteArray("#include \"media/MediaReader.h\"");
    QTest::newRow("to the player, relative")
        << "src/host/Settings.cpp" << QByteArray("#include \"../../player/media/MediaReader.h\"");
    QTest::newRow("to the tests") << "src/viewers/ViewerWidget.cpp"
                                  << QByteArray("#include \"tests/support/InputEvents.h\"");
    QTest::newRow("to nowhere") << "src/viewers/ViewerWidget.cpp"
                                << QByteArray("#include \"libavutil/frame.h\"");
    QTest::newRow("with blanks") << "src/host/Settings.h"
                                 << QByteArray("  #  include   \"kit/FlatButton.h\" // why");
    QTest::newRow("another library") << "src/host/Settings.h"
                                     << QByteArray("#include <OpenImageIO/imageio.h>");
    QTest::newRow("the system") << "src/host/Settings.h" << QByteArray("#include <unistd.h>");
    QTest::newRow("another module") << "src/host/Settings.h" << QByteArray("#include <QtSvg/QSvgRenderer>");
    QTest::newRow("a whole other module") << "src/host/Settings.h" << QByteArray("#include <QtTest>");
}

void tst_IncludeDirection::AWrongArrowIsSeen()
{
    QFETCH(QString, source);
    QFETCH(QByteArray, line);
    const QStringList wrong = WrongIncludes(TreeWith(source, line));
    QCOMPARE(wrong.size(), 1);
    QVERIFY2(wrong.first().startsWith(source + QLatin1String(" includes ")), qPrintable(wrong.first()));
}

void tst_IncludeDirection::ARightArrowIsFine_data()
{
    AddArrows();
    QTest::newRow("own folder") << "src/viewers/ViewerWidget.cpp"
                                << QByteArray("#include \"viewers/DrawSpace.h\"");
    QTest::newRow("beside") << "src/viewers/ViewerWidget.cpp" << QByteArray("#include \"DrawSpace.h\"");
    QTest::newRow("kit to host") << "src/kit/FlatButton.cpp" << QByteArray("#include \"host/Settings.h\"");
    QTest::newRow("viewers to host") << "src/viewers/ViewerWidget.cpp"
                                     << QByteArray("#include \"host/Logger.h\"");
    QTest::newRow("viewers to kit") << "src/viewers/ViewerWidget.cpp"
                                    << QByteArray("#include \"kit/FlatButton.h\"");
    QTest::newRow("dialogs to host") << "src/dialogs/output/ExportDialog.cpp"
                                     << QByteArray("#include \"host/Settings.h\"");
    QTest::newRow("export header") << "src/viewers/ViewerWidget.h"
                                   << QByteArray("#include \"TorvalenUIExport.h\"");
    QTest::newRow("a form") << "src/dialogs/output/ExportDialog.cpp"
                            << QByteArray("#include \"ui_ExportDialog.h\"");
    QTest::newRow("Qt") << "src/host/Settings.h" << QByteArray("#include <QOpenGLFunctions_3_3_Core>");
    QTest::newRow("Qt's module") << "src/host/Settings.h" << QByteArray("#include <QtGlobal>");
    QTest::newRow("Qt's namespace") << "src/host/Settings.h" << QByteArray("#include <Qt>");
    QTest::newRow("the standard library") << "src/host/Settings.h" << QByteArray("#include <type_traits>");
    QTest::newRow("player to the library")
        << "player/media/MediaReader.cpp" << QByteArray("#include \"viewers/ViewerWidget.h\"");
}

void tst_IncludeDirection::ARightArrowIsFine()
{
    QFETCH(QString, source);
    QFETCH(QByteArray, line);
    QCOMPARE(WrongIncludes(TreeWith(source, line)), QStringList());
}

static const TestRegistration<tst_IncludeDirection> IncludeDirectionRegistration;

#include "tst_IncludeDirection.moc"
