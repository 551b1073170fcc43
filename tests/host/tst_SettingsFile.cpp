// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// What the settings' file may hold, and what becomes of it.
class tst_SettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AMissingFileChangesNothing();
    void UnknownKeysSurvive();
    void ABrokenFileIsKeptBeside_data();
    void ABrokenFileIsKeptBeside();
    void EachBrokenFileGetsABackupOfItsOwn();
    void WritingOverABrokenFileKeepsIt();
    void AValueOfTheWrongKindIsLeftOut_data();
    void AValueOfTheWrongKindIsLeftOut();
    void ANumberOutOfRangeIsClamped_data();
    void ANumberOutOfRangeIsClamped();
    void AWrongValueLeavesTheOthersAlone();
    void TruthValuesMayBeNumbers();
    void ATextMayHoldCommasWithoutQuotes();
    void WritingMakesTheDirectory();
    void AnUnwritablePathIsReported();
    void ADirectoryInPlaceOfTheFileIsReported();

private:
    void WriteFile(const QByteArray& content);
    QByteArray FileContent(const QString& name) const;
    QStringList Messages(const std::unique_ptr<QSignalSpy>& spy) const;

    std::unique_ptr<QTemporaryDir> mDirectory;
    std::unique_ptr<QSignalSpy> mErrors;
    std::unique_ptr<QSignalSpy> mWarnings;
};

void tst_SettingsFile::init()
{
    mDirectory = std::make_unique<QTemporaryDir>();
    Settings::SetUserConfigPath(mDirectory->filePath(QStringLiteral("user.ini")));
    Settings::RestoreDefaults();
    mErrors = std::make_unique<QSignalSpy>(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)));
    mWarnings = std::make_unique<QSignalSpy>(Logger::GetInstance(), SIGNAL(WarningLogged(QString)));
}

void tst_SettingsFile::cleanup()
{
    mErrors.reset();
    mWarnings.reset();
    Settings::RestoreDefaults();
    Settings::SetUserConfigPath(QString());
}

void tst_SettingsFile::WriteFile(const QByteArray& content)
{
    QFile file(Settings::UserConfigPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QByteArray tst_SettingsFile::FileContent(const QString& name) const
{
    QFile file(mDirectory->filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QStringList tst_SettingsFile::Messages(const std::unique_ptr<QSignalSpy>& spy) const
{
    QStringList messages;
    for (const QList<QVariant>& arguments : *spy)
        messages << arguments.first().toString();
    return messages;
}

void tst_SettingsFile::AMissingFileChangesNothing()
{
    Settings::cacheSize = 777;
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 777);
    QVERIFY(mErrors->isEmpty());
    QVERIFY(mWarnings->isEmpty());
    QVERIFY(!QFile::exists(Settings::UserConfigPath()));
}

void tst_SettingsFile::UnknownKeysSurvive()
{
    WriteFile("loose=1\n[Application]\ncacheSize=512\nfromTheFuture=\"a, b\"\n[Plugins]\nnames=x, y\n");
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 512);
    Settings::cacheSize = 1024;
    Settings::WriteUserConfig();
    const QSettings file(Settings::UserConfigPath(), QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("Application/cacheSize")).toInt(), 1024);
    QCOMPARE(file.value(QStringLiteral("loose")).toInt(), 1);
    QCOMPARE(file.value(QStringLiteral("Application/fromTheFuture")).toString(), QStringLiteral("a, b"));
    QCOMPARE(file.value(QStringLiteral("Plugins/names")).toStringList(),
             (QStringList{QStringLiteral("x"), QStringLiteral("y")}));
}

void tst_SettingsFile::ABrokenFileIsKeptBeside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("prose") << QByteArray("Dear player,\nplease remember my choices.\n");
    QTest::newRow("a broken line behind good ones")
        << QByteArray("[Application]\ncacheSize=512\nthis is no setting\n");
    QTest::newRow("a section without an end") << QByteArray("[Application\ncacheSize=512\n");
    QTest::newRow("null bytes") << QByteArray(4096, '\0');
    QTest::newRow("null bytes behind good lines")
        << QByteArray("[Application]\ncacheSize=512\n") + QByteArray(100, '\0');
    QTest::newRow("bytes") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0", 18);
}

void tst_SettingsFile::ABrokenFileIsKeptBeside()
{
    QFETCH(QByteArray, content);
    WriteFile(content);
    QVERIFY(!Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 2048);
    QVERIFY(!QFile::exists(Settings::UserConfigPath()));
    QCOMPARE(FileContent(QStringLiteral("user.ini.bak")), content);
    const QStringList errors = Messages(mErrors);
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors.first().contains(Settings::UserConfigPath()), qPrintable(errors.first()));
    QVERIFY2(errors.first().contains(mDirectory->filePath(QStringLiteral("user.ini.bak"))),
             qPrintable(errors.first()));

    Settings::cacheSize = 600;
    Settings::WriteUserConfig();
    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 600);
    QCOMPARE(FileContent(QStringLiteral("user.ini.bak")), content);
    QCOMPARE(mErrors->size(), 1);
}

void tst_SettingsFile::EachBrokenFileGetsABackupOfItsOwn()
{
    WriteFile("first\n");
    QVERIFY(!Settings::ReadUserConfig());
    WriteFile("second\n");
    QVERIFY(!Settings::ReadUserConfig());
    QCOMPARE(FileContent(QStringLiteral("user.ini.bak")), QByteArray("first\n"));
    QCOMPARE(FileContent(QStringLiteral("user.ini.bak2")), QByteArray("second\n"));
}

void tst_SettingsFile::WritingOverABrokenFileKeepsIt()
{
    WriteFile("[Application]\nmy notes\n");
    Settings::cacheSize = 600;
    Settings::WriteUserConfig();
    QCOMPARE(FileContent(QStringLiteral("user.ini.bak")), QByteArray("[Application]\nmy notes\n"));
    QCOMPARE(mErrors->size(), 1);
    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 600);
}

void tst_SettingsFile::AValueOfTheWrongKindIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("line");
    const QList<QByteArray> lines = {
        "Application/cacheSize=lots",
        "Application/cacheSize=",
        "Application/cacheSize=512.5",
        "Application/cacheSize=nan",
        "Application/cacheSize=512, 1024",
        "Annotations/drawWidth=thick",
        "Annotations/drawWidth=inf",
        "Annotations/drawColor=mud",
        "Annotations/drawColor=",
        "Annotations/annotationTool=7",
        "Annotations/annotationTool=-1",
        "Annotations/annotationTool=pencil",
        "Annotations/annotationGhostPrevious=perhaps",
        "Annotations/annotationGhostPrevious=2",
        "Viewer/viewerLayout=3",
        "Viewer/loopType=3",
        "Timelines/globalTimelineDisplayType=4",
        "Timelines/rangeTimelineDisplayType=-1",
        "Export/exportProfile=3",
        "Export/exportQuality=4",
        "Export/exportPreset=9",
        "Application/globalImageSequenceFrameRate=fast",
        "Application/consoleShowOnType=5",
        "Application/consoleWindowGeometry=%%%",
    };
    for (const QByteArray& line : lines)
        QTest::newRow(line.constData()) << line;
}

void tst_SettingsFile::AValueOfTheWrongKindIsLeftOut()
{
    QFETCH(QByteArray, line);
    const int slash = line.indexOf('/');
    // What the file should hold if the value is left out: the defaults.
    Settings::WriteUserConfig();
    const QByteArray defaults = FileContent(QStringLiteral("user.ini"));
    QVERIFY(QFile::remove(Settings::UserConfigPath()));

    WriteFile("[" + line.left(slash) + "]\n" + line.mid(slash + 1) + "\n");
    QVERIFY(!Settings::ReadUserConfig());
    const QStringList warnings = Messages(mWarnings);
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.first().contains(QString::fromLatin1(line.left(line.indexOf('=')))),
             qPrintable(warnings.first()));
    QVERIFY2(warnings.first().contains(Settings::UserConfigPath()), qPrintable(warnings.first()));
    QVERIFY(mErrors->isEmpty());

    QVERIFY(QFile::remove(Settings::UserConfigPath()));
    Settings::WriteUserConfig();
    QCOMPARE(FileContent(QStringLiteral("user.ini")), defaults);
}

void tst_SettingsFile::ANumberOutOfRangeIsClamped_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    const double narrowest = static_cast<double>(Settings::MINIMUM_DRAW_WIDTH);
    QTest::newRow("cacheSize low") << "Application/cacheSize" << -1.0 << double(Settings::MINIMUM_CACHE_SIZE);
    QTest::newRow("cacheSize high") << "Application/cacheSize" << 1e30
                                    << double(Settings::MAXIMUM_CACHE_SIZE);
    QTest::newRow("numRecentFiles low") << "Application/numRecentFiles" << -1.0 << 0.0;
    QTest::newRow("numRecentProjects high")
        << "Application/numRecentProjects" << 1000.0 << double(Settings::MAXIMUM_RECENT_FILES);
    QTest::newRow("cmdPort low") << "Application/cmdPort" << -1.0 << 0.0;
    QTest::newRow("cmdPort high") << "Application/cmdPort" << 65536.0 << 65535.0;
    QTest::newRow("frame rate low") << "Application/globalImageSequenceFrameRate" << 0.0 << 1.0;
    QTest::newRow("frame rate high") << "Application/globalImageSequenceFrameRate" << 61.0 << 60.0;
    QTest::newRow("pencilWidth low") << "Annotations/pencilWidth" << 0.0 << narrowest;
    QTest::newRow("drawWidth low") << "Annotations/drawWidth" << -0.5 << 0.0;
    QTest::newRow("drawWidth high") << "Annotations/drawWidth" << 1.5 << 1.0;
    QTest::newRow("zoomMaximum low") << "Viewer/zoomMaximum" << 0.5 << 1.0;
    QTest::newRow("alpha low") << "Annotations/annotationGhostAlphaMin" << 9.0 << 10.0;
    QTest::newRow("alpha high") << "Annotations/annotationGhostAlphaMax" << 256.0 << 255.0;
    QTest::newRow("ghosts low") << "Annotations/annotationGhostNextNumFrames" << -1.0 << 0.0;
    QTest::newRow("interval low") << "Timelines/timelineUpdateInterval" << 0.0 << 1.0;
    QTest::newRow("width low") << "Export/globalExportWidth" << 239.0 << 240.0;
    QTest::newRow("height high") << "Export/globalExportHeight" << 4097.0 << 4096.0;
}

void tst_SettingsFile::ANumberOutOfRangeIsClamped()
{
    QFETCH(QString, key);
    QFETCH(double, value);
    QFETCH(double, expected);
    WriteFile(QStringLiteral("[%1]\n%2=%3\n")
                  .arg(key.section(QLatin1Char('/'), 0, 0), key.section(QLatin1Char('/'), 1))
                  .arg(value)
                  .toLatin1());
    QVERIFY(!Settings::ReadUserConfig());
    QCOMPARE(mWarnings->size(), 1);
    QVERIFY2(Messages(mWarnings).first().contains(key), qPrintable(Messages(mWarnings).first()));
    Settings::WriteUserConfig();
    const QSettings file(Settings::UserConfigPath(), QSettings::IniFormat);
    QCOMPARE(file.value(key).toFloat(), static_cast<float>(expected));
}

void tst_SettingsFile::AWrongValueLeavesTheOthersAlone()
{
    WriteFile("[Application]\ncacheSize=lots\ncmdPort=5000\n[Annotations]\npencilWidth=0.5\n");
    QVERIFY(!Settings::ReadUserConfig());
    QCOMPARE(Settings::cacheSize, 2048);
    QCOMPARE(Settings::cmdPort, 5000);
    QCOMPARE(Settings::pencilWidth, 0.5f);
    QVERIFY(QFile::exists(Settings::UserConfigPath()));
}

void tst_SettingsFile::TruthValuesMayBeNumbers()
{
    WriteFile("[Annotations]\nannotationGhostPrevious=1\nannotationGhostNext=TRUE\n"
              "[Viewer]\nhighDpiScaling=0\npanZoomMouseControls=False\n");
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY(Settings::annotationGhostPrevious);
    QVERIFY(Settings::annotationGhostNext);
    QVERIFY(!Settings::highDpiScaling);
    QVERIFY(!Settings::panZoomMouseControls);
}

void tst_SettingsFile::ATextMayHoldCommasWithoutQuotes()
{
    WriteFile("[Application]\nglobalSourceRootDirectory=/plates/a,b\n");
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::globalSourceRootDirectory, QStringLiteral("/plates/a,b"));
}

void tst_SettingsFile::WritingMakesTheDirectory()
{
    Settings::SetUserConfigPath(mDirectory->filePath(QStringLiteral("a/b/user.ini")));
    Settings::WriteUserConfig();
    QVERIFY(QFile::exists(mDirectory->filePath(QStringLiteral("a/b/user.ini"))));
    QVERIFY(mErrors->isEmpty());
}

void tst_SettingsFile::AnUnwritablePathIsReported()
{
    // A file stands where a directory is needed: this fails for every user.
    WriteFile("[Application]\n");
    const QString path = Settings::UserConfigPath() + QStringLiteral("/user.ini");
    Settings::SetUserConfigPath(path);
    Settings::WriteUserConfig();
    QCOMPARE(mErrors->size(), 1);
    QVERIFY2(Messages(mErrors).first().contains(path), qPrintable(Messages(mErrors).first()));
}

void tst_SettingsFile::ADirectoryInPlaceOfTheFileIsReported()
{
    QVERIFY(QDir().mkpath(Settings::UserConfigPath()));
    QVERIFY(!Settings::ReadUserConfig());
    QCOMPARE(mErrors->size(), 1);
    QVERIFY(QFileInfo(Settings::UserConfigPath()).isDir());
    Settings::WriteUserConfig();
    QVERIFY(QFileInfo(Settings::UserConfigPath()).isDir());
    QCOMPARE(mErrors->size(), 2);
    for (const QString& message : Messages(mErrors))
        QVERIFY2(message.contains(Settings::UserConfigPath()), qPrintable(message));
}

static const TestRegistration<tst_SettingsFile> SettingsFileRegistration;

#include "tst_SettingsFile.moc"
