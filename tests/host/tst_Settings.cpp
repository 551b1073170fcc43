// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "host/TimelineDisplayType.h"
#include "host/ViewerLayout.h"
#include "support/TestRegistry.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <type_traits>
#include <vector>

namespace
{

/// One setting that outlives the session: how to give it a value that it doesn't have by default, and how to
/// ask.
struct SettingCase
{
    const char* name;
    std::function<void()> change;
    std::function<bool()> isChanged;
};

template<typename Value>
SettingCase Case(const char* name, Value* setting, Value value)
{
    return {name, [=] { *setting = value; }, [=] { return *setting == value; }};
}

std::vector<SettingCase> SettingCases()
{
    using S = Settings;
    // Bools are turned round, since what they are by default is no concern of this table.
    const auto turned = [](const char* name, bool* setting) { return Case(name, setting, !*setting); };
    const auto text = [](const char* name, QString* setting)
    { return Case(name, setting, QString::fromUtf8("  /Übung/a, b;c=\"d\" #e\\n%20[x]@")); };
    return {
        Case("annotationTool", &S::annotationTool, Rectangle),
        Case("drawWidth", &S::drawWidth, 0.1f),
        Case("pencilWidth", &S::pencilWidth, 0.0123456789f),
        Case("eraserWidth", &S::eraserWidth, 1.0f / 3.0f),
        Case("textWidth", &S::textWidth, 0.7f),
        Case("arrowWidth", &S::arrowWidth, 0.000501f),
        Case("ovalWidth", &S::ovalWidth, 1.0f),
        Case("rectangleWidth", &S::rectangleWidth, 0.99999994f),
        Case("drawColor", &S::drawColor, QColor(1, 2, 3, 4)),
        turned("annotationGhostPrevious", &S::annotationGhostPrevious),
        turned("annotationGhostNext", &S::annotationGhostNext),
        Case("annotationGhostPreviousNumFrames", &S::annotationGhostPreviousNumFrames, 17),
        Case("annotationGhostNextNumFrames", &S::annotationGhostNextNumFrames, 0),
        Case("annotationGhostAlphaMin", &S::annotationGhostAlphaMin, 255),
        Case("annotationGhostAlphaMax", &S::annotationGhostAlphaMax, 10),
        turned("annotationGhostAccurate", &S::annotationGhostAccurate),
        turned("annotationToolsAtRight", &S::annotationToolsAtRight),
        turned("hardwareAcceleratedPlayback", &S::hardwareAcceleratedPlayback),
        turned("highQualityRendering", &S::highQualityRendering),
        turned("highDpiScaling", &S::highDpiScaling),
        Case("zoomMaximum", &S::zoomMaximum, 12.34f),
        turned("panZoomMouseControls", &S::panZoomMouseControls),
        turned("doubleClickTogglesPlayback", &S::doubleClickTogglesPlayback),
        Case("viewerLayout", &S::viewerLayout, int(Vertical)),

        Case("timelineUpdateInterval", &S::timelineUpdateInterval, 7),
        turned("audioScrub", &S::audioScrub),
        Case("globalTimelineDisplayType", &S::globalTimelineDisplayType, int(FrameNumbersRange)),
        Case("rangeTimelineDisplayType", &S::rangeTimelineDisplayType, int(TimeCode)),
        turned("globalTimelineAtTop", &S::globalTimelineAtTop),
        turned("rangeTimelineAtTop", &S::rangeTimelineAtTop),
        turned("globalTimelineShowTimeBookmarks", &S::globalTimelineShowTimeBookmarks),
        turned("rangeTimelineShowTimeBookmarks", &S::rangeTimelineShowTimeBookmarks),
        turned("globalTimelineShowRangeBookmarks", &S::globalTimelineShowRangeBookmarks),
        turned("globalTimelineShowCache", &S::globalTimelineShowCache),
        turned("rangeTimelineShowCache", &S::rangeTimelineShowCache),
        Case("loopType", &S::loopType, PingPong),
        turned("linkProjectViewAndDetailsViewVisibility", &S::linkProjectViewAndDetailsViewVisibility),
        turned("highlightActiveElementInDetailsView", &S::highlightActiveElementInDetailsView),

        Case("exportProfile", &S::exportProfile, ExportProfileBaseline),
        Case("exportQuality", &S::exportQuality, ExportQualityLow),
        Case("exportPreset", &S::exportPreset, ExportPresetUltraFast),
        turned("exportAnnotations", &S::exportAnnotations),
        turned("exportViewerLayout", &S::exportViewerLayout),
        turned("exportIgnoreRange", &S::exportIgnoreRange),
        turned("resolveRelativeExportOutputPaths", &S::resolveRelativeExportOutputPaths),
        Case("globalExportWidth", &S::globalExportWidth, 240),
        Case("globalExportHeight", &S::globalExportHeight, 4096),
        text("defaultExportOutputDirPath", &S::defaultExportOutputDirPath),
        text("tempExportDirPath", &S::tempExportDirPath),
        text("ffmpegExePath", &S::ffmpegExePath),

        text("tempDirPath", &S::tempDirPath),
        Case("cacheSize", &S::cacheSize, 4097),
        Case("numRecentFiles", &S::numRecentFiles, 20),
        Case("numRecentProjects", &S::numRecentProjects, 0),
        turned("openMediaInNewPlayers", &S::openMediaInNewPlayers),
        turned("resizeToFit", &S::resizeToFit),
        turned("continuePlayingAfterSeek", &S::continuePlayingAfterSeek),
        turned("endlessMouseScurb", &S::endlessMouseScurb),
        turned("displayConfirmationOnClose", &S::displayConfirmationOnClose),
        turned("alwaysActivateDefaultTimeline", &S::alwaysActivateDefaultTimeline),
        turned("disablePanZoomOnProjectLoad", &S::disablePanZoomOnProjectLoad),
        turned("emptyProject", &S::emptyProject),
        Case("globalSourceRootDirectory", &S::globalSourceRootDirectory,
             QString::fromLatin1(S::PROJECT_DIRECTORY_VAR) + QStringLiteral("/plates")),
        Case("globalImageSequenceFrameRate", &S::globalImageSequenceFrameRate, 24000.0 / 1001.0),
        Case("cmdPort", &S::cmdPort, 65535),
        Case("consoleShowOnType", &S::consoleShowOnType, 4),
        Case("consoleWindowGeometry", &S::consoleWindowGeometry, QByteArray("\0\xff\x7f,;\"\n@", 8)),
    };
}

// Typing errors of the interface show here at compile time.
static_assert(std::is_same_v<decltype(Settings::annotationTool), AnnotationToolType>);
static_assert(std::is_same_v<decltype(Settings::drawWidth), float>);
static_assert(std::is_same_v<decltype(Settings::pencilWidth), float>);
static_assert(std::is_same_v<decltype(Settings::eraserWidth), float>);
static_assert(std::is_same_v<decltype(Settings::textWidth), float>);
static_assert(std::is_same_v<decltype(Settings::arrowWidth), float>);
static_assert(std::is_same_v<decltype(Settings::ovalWidth), float>);
static_assert(std::is_same_v<decltype(Settings::rectangleWidth), float>);
static_assert(std::is_same_v<decltype(Settings::MINIMUM_DRAW_WIDTH), const float>);
static_assert(std::is_same_v<decltype(Settings::drawColor), QColor>);
static_assert(std::is_same_v<decltype(Settings::drawEnabled), bool>);
static_assert(std::is_same_v<decltype(Settings::textToolActive), bool>);
static_assert(std::is_same_v<decltype(Settings::onlyDisplayAnnotations), bool>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostPrevious), bool>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostNext), bool>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostPreviousNumFrames), int>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostNextNumFrames), int>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostAlphaMin), int>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostAlphaMax), int>);
static_assert(std::is_same_v<decltype(Settings::annotationGhostAccurate), bool>);
static_assert(std::is_same_v<decltype(Settings::annotationToolsAtRight), bool>);
static_assert(std::is_same_v<decltype(Settings::hardwareAcceleratedPlayback), bool>);
static_assert(std::is_same_v<decltype(Settings::highQualityRendering), bool>);
static_assert(std::is_same_v<decltype(Settings::highDpiScaling), bool>);
static_assert(std::is_same_v<decltype(Settings::zoomMaximum), float>);
static_assert(std::is_same_v<decltype(Settings::panZoomMouseControls), bool>);
static_assert(std::is_same_v<decltype(Settings::doubleClickTogglesPlayback), bool>);
static_assert(std::is_same_v<decltype(Settings::viewerLayout), int>);

static_assert(std::is_same_v<decltype(Settings::ROUNDING_ERROR_EXTRA_TIME), const int>);
static_assert(std::is_same_v<decltype(Settings::timelineUpdateInterval), int>);
static_assert(std::is_same_v<decltype(Settings::audioScrub), bool>);
static_assert(std::is_same_v<decltype(Settings::globalTimelineDisplayType), int>);
static_assert(std::is_same_v<decltype(Settings::rangeTimelineDisplayType), int>);
static_assert(std::is_same_v<decltype(Settings::globalTimelineAtTop), bool>);
static_assert(std::is_same_v<decltype(Settings::rangeTimelineAtTop), bool>);
static_assert(std::is_same_v<decltype(Settings::globalTimelineShowTimeBookmarks), bool>);
static_assert(std::is_same_v<decltype(Settings::rangeTimelineShowTimeBookmarks), bool>);
static_assert(std::is_same_v<decltype(Settings::globalTimelineShowRangeBookmarks), bool>);
static_assert(std::is_same_v<decltype(Settings::globalTimelineShowCache), bool>);
static_assert(std::is_same_v<decltype(Settings::rangeTimelineShowCache), bool>);
static_assert(std::is_same_v<decltype(Settings::loopType), LoopType>);
static_assert(std::is_same_v<decltype(Settings::linkProjectViewAndDetailsViewVisibility), bool>);
static_assert(std::is_same_v<decltype(Settings::highlightActiveElementInDetailsView), bool>);

static_assert(std::is_same_v<decltype(Settings::exportProfile), ExportProfile>);
static_assert(std::is_same_v<decltype(Settings::exportQuality), ExportQuality>);
static_assert(std::is_same_v<decltype(Settings::exportPreset), ExportPreset>);
static_assert(std::is_same_v<decltype(Settings::exportAnnotations), bool>);
static_assert(std::is_same_v<decltype(Settings::exportViewerLayout), bool>);
static_assert(std::is_same_v<decltype(Settings::exportIgnoreRange), bool>);
static_assert(std::is_same_v<decltype(Settings::resolveRelativeExportOutputPaths), bool>);
static_assert(std::is_same_v<decltype(Settings::globalExportWidth), int>);
static_assert(std::is_same_v<decltype(Settings::globalExportHeight), int>);
static_assert(std::is_same_v<decltype(Settings::defaultExportOutputDirPath), QString>);
static_assert(std::is_same_v<decltype(Settings::tempExportDirPath), QString>);
static_assert(std::is_same_v<decltype(Settings::ffmpegExePath), QString>);

static_assert(std::is_same_v<decltype(Settings::tempDirPath), QString>);
static_assert(std::is_same_v<decltype(Settings::cacheSize), int>);
static_assert(std::is_same_v<decltype(Settings::MINIMUM_CACHE_SIZE), const int>);
static_assert(std::is_same_v<decltype(Settings::MAXIMUM_CACHE_SIZE), const int>);
static_assert(std::is_same_v<decltype(Settings::numRecentFiles), int>);
static_assert(std::is_same_v<decltype(Settings::numRecentProjects), int>);
static_assert(std::is_same_v<decltype(Settings::MINIMUM_RECENT_FILES), const int>);
static_assert(std::is_same_v<decltype(Settings::MAXIMUM_RECENT_FILES), const int>);
static_assert(std::is_same_v<decltype(Settings::openMediaInNewPlayers), bool>);
static_assert(std::is_same_v<decltype(Settings::resizeToFit), bool>);
static_assert(std::is_same_v<decltype(Settings::continuePlayingAfterSeek), bool>);
static_assert(std::is_same_v<decltype(Settings::endlessMouseScurb), bool>);
static_assert(std::is_same_v<decltype(Settings::displayConfirmationOnClose), bool>);
static_assert(std::is_same_v<decltype(Settings::alwaysActivateDefaultTimeline), bool>);
static_assert(std::is_same_v<decltype(Settings::disablePanZoomOnProjectLoad), bool>);
static_assert(std::is_same_v<decltype(Settings::emptyProject), bool>);
static_assert(std::is_same_v<decltype(Settings::globalSourceRootDirectory), QString>);
static_assert(std::is_same_v<decltype(Settings::globalImageSequenceFrameRate), double>);
static_assert(std::is_same_v<std::remove_const_t<decltype(Settings::PROJECT_DIRECTORY_VAR)>, const char*>);
static_assert(std::is_same_v<decltype(Settings::cmdPort), int>);
static_assert(std::is_same_v<decltype(Settings::consoleShowOnType), int>);
static_assert(std::is_same_v<decltype(Settings::consoleWindowGeometry), QByteArray>);
static_assert(std::is_same_v<std::remove_const_t<decltype(Settings::APPLICATION_TITLE)>, const char*>);
static_assert(
    std::is_same_v<std::remove_const_t<decltype(Settings::TORVALEN_PRO_VERSION_STRING)>, const char*>);

static_assert(!std::is_default_constructible_v<Settings>, "Settings is never instantiated");
static_assert(std::is_same_v<decltype(&Settings::WriteUserConfig), void (*)()>);

} // namespace

class tst_Settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void EachSettingRoundTrips_data();
    void EachSettingRoundTrips();
    void AllSettingsRoundTripTogether();
    void TheFileHoldsTheTestedSettingsAlone();
    void StateOfTheSessionIsNotKept();
    void AnInvalidColourIsReadAsAColour();
    void DefaultsLieWithinTheirRanges();
    void ConstantsHoldTheirTexts();
    void EverySettingIsHadByItsName();
    void AWrongValueByNameChangesNothing_data();
    void AWrongValueByNameChangesNothing();
    void RestoreDefaultsTouchesNoFile();
    void TheFileLiesInTheUsersConfigurationDirectory();

private:
    std::unique_ptr<QTemporaryDir> mDirectory;
};

void tst_Settings::init()
{
    mDirectory = std::make_unique<QTemporaryDir>();
    Settings::SetUserConfigPath(mDirectory->filePath(QStringLiteral("user.ini")));
    Settings::RestoreDefaults();
}

void tst_Settings::cleanup()
{
    Settings::RestoreDefaults();
    Settings::SetUserConfigPath(QString());
}

void tst_Settings::EachSettingRoundTrips_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const SettingCase& each : SettingCases())
        QTest::newRow(each.name) << index++;
}

void tst_Settings::EachSettingRoundTrips()
{
    QFETCH(int, index);
    const SettingCase each = SettingCases().at(static_cast<size_t>(index));
    QVERIFY2(!each.isChanged(), "the value of the table is the default");
    each.change();
    Settings::WriteUserConfig();
    Settings::RestoreDefaults();
    QVERIFY2(!each.isChanged(), "RestoreDefaults() left the setting alone");
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY2(each.isChanged(), "the value is not in the file");
    // The others have kept their defaults.
    for (const SettingCase& other : SettingCases())
        QVERIFY2(other.name == QByteArray(each.name) || !other.isChanged(), other.name);
}

void tst_Settings::AllSettingsRoundTripTogether()
{
    const std::vector<SettingCase> cases = SettingCases();
    for (const SettingCase& each : cases)
        each.change();
    Settings::WriteUserConfig();
    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    for (const SettingCase& each : cases)
        QVERIFY2(each.isChanged(), each.name);
}

void tst_Settings::TheFileHoldsTheTestedSettingsAlone()
{
    Settings::WriteUserConfig();
    QStringList inFile;
    for (const QString& key : QSettings(Settings::UserConfigPath(), QSettings::IniFormat).allKeys())
        inFile << key.section(QLatin1Char('/'), -1);
    QStringList tested;
    for (const SettingCase& each : SettingCases())
        tested << QString::fromLatin1(each.name);
    inFile.sort();
    tested.sort();
    QCOMPARE(inFile, tested);
}

void tst_Settings::StateOfTheSessionIsNotKept()
{
    Settings::drawEnabled = true;
    Settings::textToolActive = true;
    Settings::onlyDisplayAnnotations = true;
    Settings::WriteUserConfig();
    Settings::RestoreDefaults();
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY(!Settings::drawEnabled);
    QVERIFY(!Settings::textToolActive);
    QVERIFY(!Settings::onlyDisplayAnnotations);
}

void tst_Settings::AnInvalidColourIsReadAsAColour()
{
    Settings::drawColor = QColor();
    Settings::WriteUserConfig();
    QVERIFY(Settings::ReadUserConfig());
    QVERIFY(Settings::drawColor.isValid());
}

void tst_Settings::DefaultsLieWithinTheirRanges()
{
    // A default out of its range would be clamped, and reported, on its way through the file.
    Settings::WriteUserConfig();
    QVERIFY(Settings::ReadUserConfig());
    for (const float width :
         {Settings::drawWidth, Settings::pencilWidth, Settings::eraserWidth, Settings::textWidth,
          Settings::arrowWidth, Settings::ovalWidth, Settings::rectangleWidth, Settings::MINIMUM_DRAW_WIDTH})
        QVERIFY(width > 0.0f && width >= Settings::MINIMUM_DRAW_WIDTH && width <= 1.0f);
    QCOMPARE(Settings::drawWidth, Settings::pencilWidth);
    QVERIFY(Settings::drawColor.isValid());
    QVERIFY(Settings::zoomMaximum > 1.0f);
    // The shortest frame of usual media, at 120 frames a second, lasts 8333 microseconds.
    QVERIFY(Settings::ROUNDING_ERROR_EXTRA_TIME > 0 && Settings::ROUNDING_ERROR_EXTRA_TIME < 8333);
    QVERIFY(Settings::MINIMUM_CACHE_SIZE < Settings::MAXIMUM_CACHE_SIZE);
    QVERIFY(Settings::cacheSize >= Settings::MINIMUM_CACHE_SIZE);
    QVERIFY(Settings::cacheSize <= Settings::MAXIMUM_CACHE_SIZE);
    QVERIFY(Settings::MINIMUM_RECENT_FILES < Settings::MAXIMUM_RECENT_FILES);
    QVERIFY(Settings::annotationGhostAlphaMin <= Settings::annotationGhostAlphaMax);
    QVERIFY(QDir(Settings::tempDirPath).exists());
}

void tst_Settings::ConstantsHoldTheirTexts()
{
    QCOMPARE(Settings::PROJECT_DIRECTORY_VAR, "[PROJECT_DIR]");
    QCOMPARE(Settings::APPLICATION_TITLE, "Torvalen");
    QVERIFY(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"))
                .match(QString::fromLatin1(Settings::TORVALEN_PRO_VERSION_STRING))
                .hasMatch());
}

void tst_Settings::EverySettingIsHadByItsName()
{
    QStringList expected;
    for (const SettingCase& each : SettingCases())
    {
        expected << QString::fromLatin1(each.name);
        const QVariant initial = Settings::Value(expected.last());
        QVERIFY2(initial.isValid(), each.name);
        each.change();
        const QVariant changed = Settings::Value(expected.last());
        QVERIFY2(changed != initial, each.name);
        QCOMPARE(Settings::SetValue(expected.last(), initial), QString());
        QVERIFY2(!each.isChanged(), each.name);
        QCOMPARE(Settings::SetValue(expected.last(), changed), QString());
        QVERIFY2(each.isChanged(), each.name);
    }
    QStringList names = Settings::Names();
    names.sort();
    expected.sort();
    QCOMPARE(names, expected);
}

void tst_Settings::AWrongValueByNameChangesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("too large") << "cacheSize" << QVariant(100000) << "100000 lies outside 256 to 65536";
    QTest::newRow("no number") << "zoomMaximum" << QVariant("much") << "\"much\" is no number";
    QTest::newRow("no choice") << "viewerLayout" << QVariant(3) << "\"3\" is no known choice";
    QTest::newRow("no truth") << "audioScrub" << QVariant(2) << "\"2\" is no truth value (true or false)";
    QTest::newRow("no colour") << "drawColor" << QVariant("a;b") << "\"a;b\" is no colour (#AARRGGBB)";
    QTest::newRow("no setting") << "drawEnabled" << QVariant(true) << "there is no such setting";
}

void tst_Settings::AWrongValueByNameChangesNothing()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    const QVariant before = Settings::Value(name);
    QTEST(Settings::SetValue(name, value), "complaint");
    QCOMPARE(Settings::Value(name), before);
}

void tst_Settings::RestoreDefaultsTouchesNoFile()
{
    Settings::cmdPort = 4711;
    Settings::WriteUserConfig();
    Settings::RestoreDefaults();
    QCOMPARE(Settings::cmdPort, 0);
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(Settings::cmdPort, 4711);
}

void tst_Settings::TheFileLiesInTheUsersConfigurationDirectory()
{
    Settings::SetUserConfigPath(QString());
    const QString path = Settings::UserConfigPath();
    QVERIFY2(path.startsWith(qEnvironmentVariable("XDG_CONFIG_HOME") + QLatin1Char('/')), qPrintable(path));
    Settings::cacheSize = 300;
    Settings::WriteUserConfig();
    QVERIFY(QFile::exists(path));
    QVERIFY(QFile::remove(path));
}

static const TestRegistration<tst_Settings> SettingsRegistration;

#include "tst_Settings.moc"
