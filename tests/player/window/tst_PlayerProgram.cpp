// SPDX-License-Identifier: MIT
#include "media/NumberedMedia.h"
#include "support/TestRegistry.h"
#include "window/PlayerProbe.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_PlayerProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void PlayThroughCountsEveryFrame();
    void PlayThroughNamesAMissingFile();
    void WrongOptionsAreRefused_data();
    void WrongOptionsAreRefused();
    void AScreenshotShowsTheFirstFrame();
    void TellsItsVersion();

private:
    /// Runs the program. Returns its exit status, -1 if it did not end.
    int Run(const QStringList& arguments);

    QByteArray mOutput;
    QByteArray mErrors;
};

int tst_PlayerProgram::Run(const QStringList& arguments)
{
    QProcess program;
    program.start(QStringLiteral(TORVALEN_PROGRAM), arguments);
    const bool ended = program.waitForFinished(60000);
    mOutput = program.readAllStandardOutput();
    mErrors = program.readAllStandardError();
    return ended && program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
}

void tst_PlayerProgram::PlayThroughCountsEveryFrame()
{
    QCOMPARE(Run({"--play-through", PlayerProbe::SampleMovie(), "--size", "640x360"}), 0);
    QVERIFY2(mOutput.startsWith("frames 60 seconds "), mOutput);
    QVERIFY2(mOutput.trimmed().endsWith("broken 0"), mOutput);
}

void tst_PlayerProgram::PlayThroughNamesAMissingFile()
{
    QCOMPARE(Run({"--play-through", "/nowhere/at/all.mov"}), 1);
    QVERIFY2(mErrors.contains("/nowhere/at/all.mov"), mErrors);
}

void tst_PlayerProgram::WrongOptionsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("complaint");
    QTest::newRow("layout") << QStringList{"--layout", "round"} << QByteArray("\"round\"");
    QTest::newRow("size") << QStringList{"--play-through", "x.mov", "--size", "0x10"}
                          << QByteArray("\"0x10\"");
    QTest::newRow("size without a number")
        << QStringList{"--play-through", "x.mov", "--size", "large"} << QByteArray("\"large\"");
}

void tst_PlayerProgram::WrongOptionsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, complaint);
    QCOMPARE(Run(arguments), 2);
    QVERIFY2(mErrors.contains(complaint), mErrors);
}

void tst_PlayerProgram::AScreenshotShowsTheFirstFrame()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("window.png"));
    QCOMPARE(Run({"--screenshot", path, PlayerProbe::SampleMovie()}), 0);
    const QImage window(path);
    QVERIFY(!window.isNull());
    // The timelines and bars take their part of the window's height; the picture's own is searched for.
    int number = -1;
    for (int height = window.height(); height > window.height() / 2 && number != 1; height -= 2)
    {
        const QSize size = QSize(320, 180).scaled(QSize(window.width(), height), Qt::KeepAspectRatio);
        for (int top = 0; top + size.height() <= window.height() && number != 1; top += 4)
            number = NumberedMedia::NumberIn(
                window.copy((window.width() - size.width()) / 2, top, size.width(), size.height()));
    }
    QCOMPARE(number, 1);
}

void tst_PlayerProgram::TellsItsVersion()
{
    QCOMPARE(Run({"--version"}), 0);
    QVERIFY2(mOutput.startsWith("Torvalen "), mOutput);
}

static const TestRegistration<tst_PlayerProgram> PlayerProgramRegistration;

#include "tst_PlayerProgram.moc"
