// SPDX-License-Identifier: MIT
#include "SourceTree.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

class tst_SourceFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void EachTellsItsLicence();
    void AFileWithoutALicenceIsSeen_data();
    void AFileWithoutALicenceIsSeen();
};

namespace
{

/// Whether the file at @p path, whose text begins with @p head, is one of the sources.
bool IsSource(const QString& path, const QByteArray& head)
{
    static const QRegularExpression name(
        QStringLiteral("(^|/)CMakeLists\\.txt$|\\.(h|cpp|cmake|in|py|sh|ui|qrc|svg|vert|frag)$|(^|/"
                       ")\\.clang-(format|tidy)$"));
    return name.match(path).hasMatch() || head.startsWith("#!");
}

/// Whether @p head, the first lines of a file, tells the licence; a script and an XML file have a line before
/// it.
bool TellsLicence(const QByteArray& head)
{
    const QList<QByteArray> lines = head.split('\n');
    for (const QByteArray& line : lines.mid(0, 2))
    {
        if (line.contains("SPDX-License-Identifier: MIT"))
            return true;
    }
    return false;
}

/// The files that git tracks, empty where this is no checkout.
QStringList TrackedFiles()
{
    QProcess git;
    git.setWorkingDirectory(RepositoryRoot());
    git.start(QStringLiteral("git"), {QStringLiteral("ls-files"), QStringLiteral("-z")});
    if (!git.waitForFinished() || git.exitCode() != 0)
        return {};
    QStringList paths;
    for (const QByteArray& path : git.readAllStandardOutput().split('\0'))
    {
        if (!path.isEmpty())
            paths << QString::fromUtf8(path);
    }
    return paths;
}

} // namespace

void tst_SourceFiles::EachTellsItsLicence()
{
    const QStringList files = TrackedFiles();
    if (files.isEmpty())
        QSKIP("the sources are no git checkout");
    int sources = 0;
    QStringList without;
    for (const QString& path : files)
    {
        QFile file(QDir(RepositoryRoot()).filePath(path));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray head = file.read(400);
        if (head.isEmpty() || !IsSource(path, head))
            continue;
        ++sources;
        if (!TellsLicence(head))
            without << path;
    }
    QVERIFY2(sources > 50, "the sources were not found");
    QVERIFY2(without.isEmpty(), qPrintable(without.join(QLatin1Char('\n'))));
}

void tst_SourceFiles::AFileWithoutALicenceIsSeen_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isSource");
    QTest::addColumn<bool>("isFine");
    QTest::newRow("source") << "src/a.cpp" << QByteArray("// SPDX-License-Identifier: MIT\n") << true << true;
    QTest::newRow("bare source") << "src/a.cpp" << QByteArray("#include <QString>\n") << true << false;
    QTest::newRow("other licence") << "src/a.h" << QByteArray("// SPDX-License-Identifier: 0BSD\n") << true
                                   << false;
    QTest::newRow("too late") << "src/a.h" << QByteArray("\n\n// SPDX-License-Identifier: MIT\n") << true
                              << false;
    QTest::newRow("script") << "test" << QByteArray("#!/bin/sh\n# SPDX-License-Identifier: MIT\n") << true
                            << true;
    QTest::newRow("bare script") << "test" << QByteArray("#!/bin/sh\nexit 1\n") << true << false;
    QTest::newRow("list") << "a/CMakeLists.txt" << QByteArray("add_library(a)\n") << true << false;
    QTest::newRow("prose") << "README.md" << QByteArray("# Title\n") << false << false;
}

void tst_SourceFiles::AFileWithoutALicenceIsSeen()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, text);
    QTEST(IsSource(path, text), "isSource");
    QTEST(TellsLicence(text), "isFine");
}

static const TestRegistration<tst_SourceFiles> SourceFilesRegistration;

#include "tst_SourceFiles.moc"
