// SPDX-License-Identifier: MIT
#include "host/Settings.h"

#include "host/Logger.h"
#include "host/UserFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QVariant>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

AnnotationToolType Settings::annotationTool = Pencil;
float Settings::drawWidth = 0.004f;
float Settings::pencilWidth = 0.004f;
float Settings::eraserWidth = 0.03f;
float Settings::textWidth = 0.006f;
float Settings::arrowWidth = 0.004f;
float Settings::ovalWidth = 0.004f;
float Settings::rectangleWidth = 0.004f;
const float Settings::MINIMUM_DRAW_WIDTH = 0.0005f;
QColor Settings::drawColor = QColor(255, 64, 64);
bool Settings::drawEnabled = false;
bool Settings::textToolActive = false;
bool Settings::onlyDisplayAnnotations = false;
bool Settings::annotationGhostPrevious = false;
bool Settings::annotationGhostNext = false;
int Settings::annotationGhostPreviousNumFrames = 3;
int Settings::annotationGhostNextNumFrames = 3;
int Settings::annotationGhostAlphaMin = 40;
int Settings::annotationGhostAlphaMax = 160;
bool Settings::annotationGhostAccurate = false;
bool Settings::annotationToolsAtRight = false;
bool Settings::hardwareAcceleratedPlayback = false;
bool Settings::highQualityRendering = false;
bool Settings::highDpiScaling = true;
float Settings::zoomMaximum = 8.0f;
bool Settings::panZoomMouseControls = true;
bool Settings::doubleClickTogglesPlayback = true;
int Settings::viewerLayout = 0;

const int Settings::ROUNDING_ERROR_EXTRA_TIME = 100;
int Settings::timelineUpdateInterval = 40;
bool Settings::audioScrub = true;
int Settings::globalTimelineDisplayType = 0;
int Settings::rangeTimelineDisplayType = 0;
bool Settings::globalTimelineAtTop = false;
bool Settings::rangeTimelineAtTop = false;
bool Settings::globalTimelineShowTimeBookmarks = true;
bool Settings::rangeTimelineShowTimeBookmarks = true;
bool Settings::globalTimelineShowRangeBookmarks = true;
bool Settings::globalTimelineShowCache = true;
bool Settings::rangeTimelineShowCache = true;
LoopType Settings::loopType = Loop;
bool Settings::linkProjectViewAndDetailsViewVisibility = false;
bool Settings::highlightActiveElementInDetailsView = true;

ExportProfile Settings::exportProfile = ExportProfileHigh;
ExportQuality Settings::exportQuality = ExportQualityHigh;
ExportPreset Settings::exportPreset = ExportPresetMedium;
bool Settings::exportAnnotations = true;
bool Settings::exportViewerLayout = false;
bool Settings::exportIgnoreRange = false;
bool Settings::resolveRelativeExportOutputPaths = true;
int Settings::globalExportWidth = 1920;
int Settings::globalExportHeight = 1080;
QString Settings::defaultExportOutputDirPath;
QString Settings::tempExportDirPath;
QString Settings::ffmpegExePath;

QString Settings::tempDirPath = QDir::tempPath();
int Settings::cacheSize = 2048;
const int Settings::MINIMUM_CACHE_SIZE = 256;
const int Settings::MAXIMUM_CACHE_SIZE = 65536;
int Settings::numRecentFiles = 10;
int Settings::numRecentProjects = 5;
const int Settings::MINIMUM_RECENT_FILES = 0;
const int Settings::MAXIMUM_RECENT_FILES = 20;
bool Settings::openMediaInNewPlayers = false;
bool Settings::resizeToFit = false;
bool Settings::continuePlayingAfterSeek = true;
bool Settings::endlessMouseScurb = false;
bool Settings::displayConfirmationOnClose = true;
bool Settings::alwaysActivateDefaultTimeline = true;
bool Settings::disablePanZoomOnProjectLoad = false;
bool Settings::emptyProject = false;
QString Settings::globalSourceRootDirectory;
double Settings::globalImageSequenceFrameRate = 24.0;
const char* const Settings::PROJECT_DIRECTORY_VAR = "[PROJECT_DIR]";
int Settings::cmdPort = 0;
int Settings::consoleShowOnType = 1;
QByteArray Settings::consoleWindowGeometry;
const char* const Settings::APPLICATION_TITLE = "Torvalen";
const char* const Settings::TORVALEN_PRO_VERSION_STRING = TORVALEN_VERSION;

namespace
{

constexpr char ConfigFileName[] = "torvalen.ini";

/// One persistent setting: its key in the file and how its value is read, written and restored.
struct SettingRow
{
    const char* key;
    std::function<QVariant()> value;
    /// Takes a value of the file. Returns an empty text, or what is wrong with the value.
    std::function<QString(const QVariant&)> take;
    std::function<void()> restore;
    /// The value is written as the text of a number.
    bool isNumberText = false;
};

/// The text of @p value as it stood in the file, where a comma separates.
QString FileText(const QVariant& value)
{
    return value.type() == QVariant::StringList ? value.toStringList().join(QLatin1Char(','))
                                                : value.toString();
}

QString WrongKind(const QVariant& value, const char* expected)
{
    return QStringLiteral("\"%1\" is no %2; it is left out").arg(FileText(value), QLatin1String(expected));
}

/// Reads a number within @p minimum and @p maximum into @p setting.
template<typename Number>
QString TakeNumber(const QVariant& value, Number minimum, Number maximum, Number* setting)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return WrongKind(value, "number");
    if (std::is_integral_v<Number> && number != std::floor(number))
        return WrongKind(value, "whole number");
    *setting = static_cast<Number>(
        std::min(std::max(number, static_cast<double>(minimum)), static_cast<double>(maximum)));
    if (number < static_cast<double>(minimum) || number > static_cast<double>(maximum))
        return QStringLiteral("%1 lies outside %2 to %3; %4 is used")
            .arg(number)
            .arg(minimum)
            .arg(maximum)
            .arg(*setting);
    return {};
}

template<typename Number>
SettingRow NumberRow(const char* key, Number* setting, Number minimum, Number maximum)
{
    const Number initial = *setting;
    return {key,
            // A float is written with the digits that tell it from its neighbours, not those of its double.
            [setting]
            { return QVariant(QString::number(*setting, 'g', std::numeric_limits<Number>::max_digits10)); },
            [=](const QVariant& value) { return TakeNumber(value, minimum, maximum, setting); },
            [=] { *setting = initial; }, true};
}

template<>
SettingRow NumberRow(const char* key, int* setting, int minimum, int maximum)
{
    const int initial = *setting;
    return {key, [setting] { return QVariant(*setting); },
            [=](const QVariant& value) { return TakeNumber(value, minimum, maximum, setting); },
            [=] { *setting = initial; }, false};
}

template<typename Enum>
SettingRow EnumRow(const char* key, Enum* setting, Enum last)
{
    const Enum initial = *setting;
    return {key, [setting] { return QVariant(static_cast<int>(*setting)); },
            [=](const QVariant& value)
            {
                int number = 0;
                const QString complaint = TakeNumber(value, 0, static_cast<int>(last), &number);
                // A clamped enumeration would be an arbitrary choice: keep what there is instead.
                if (complaint.isEmpty())
                    *setting = static_cast<Enum>(number);
                return complaint.isEmpty() ? QString() : WrongKind(value, "known choice");
            },
            [=] { *setting = initial; }, false};
}

SettingRow BoolRow(const char* key, bool* setting)
{
    const bool initial = *setting;
    return {key, [setting] { return QVariant(*setting); },
            [setting](const QVariant& value)
            {
                const QString text = value.toString().toLower();
                if (text != QLatin1String("true") && text != QLatin1String("false") &&
                    text != QLatin1String("1") && text != QLatin1String("0"))
                    return WrongKind(value, "truth value (true or false)");
                *setting = text == QLatin1String("true") || text == QLatin1String("1");
                return QString();
            },
            [=] { *setting = initial; }, false};
}

SettingRow TextRow(const char* key, QString* setting)
{
    const QString initial = *setting;
    return {key, [setting] { return QVariant(*setting); },
            [setting](const QVariant& value)
            {
                // A file edited by hand may hold a comma outside quotes, which reads as a list.
                *setting = FileText(value);
                return QString();
            },
            [=] { *setting = initial; }, false};
}

SettingRow BytesRow(const char* key, QByteArray* setting)
{
    const QByteArray initial = *setting;
    return {key, [setting] { return QVariant(QString::fromLatin1(setting->toBase64())); },
            [setting](const QVariant& value)
            {
                const auto decoded = QByteArray::fromBase64Encoding(value.toString().toLatin1(),
                                                                    QByteArray::AbortOnBase64DecodingErrors);
                if (!decoded)
                    return WrongKind(value, "base64 text");
                *setting = *decoded;
                return QString();
            },
            [=] { *setting = initial; }, false};
}

SettingRow ColorRow(const char* key, QColor* setting)
{
    const QColor initial = *setting;
    return {key, [setting] { return QVariant(setting->name(QColor::HexArgb)); },
            [setting](const QVariant& value)
            {
                const QColor color(value.toString());
                if (!color.isValid())
                    return WrongKind(value, "colour (#AARRGGBB)");
                *setting = color;
                return QString();
            },
            [=] { *setting = initial; }, false};
}

std::vector<SettingRow> MakeSettingRows()
{
    using S = Settings;
    const float narrowest = S::MINIMUM_DRAW_WIDTH;
    const auto dropped = [](auto* setting)
    {
        const auto initial = *setting;
        return SettingRow{nullptr, {}, {}, [=] { *setting = initial; }, false};
    };
    return {
        EnumRow("Annotations/annotationTool", &S::annotationTool, Rectangle),
        NumberRow("Annotations/drawWidth", &S::drawWidth, 0.0f, 1.0f),
        NumberRow("Annotations/pencilWidth", &S::pencilWidth, narrowest, 1.0f),
        NumberRow("Annotations/eraserWidth", &S::eraserWidth, narrowest, 1.0f),
        NumberRow("Annotations/textWidth", &S::textWidth, narrowest, 1.0f),
        NumberRow("Annotations/arrowWidth", &S::arrowWidth, narrowest, 1.0f),
        NumberRow("Annotations/ovalWidth", &S::ovalWidth, narrowest, 1.0f),
        NumberRow("Annotations/rectangleWidth", &S::rectangleWidth, narrowest, 1.0f),
        ColorRow("Annotations/drawColor", &S::drawColor),
        dropped(&S::drawEnabled),
        dropped(&S::textToolActive),
        dropped(&S::onlyDisplayAnnotations),
        BoolRow("Annotations/annotationGhostPrevious", &S::annotationGhostPrevious),
        BoolRow("Annotations/annotationGhostNext", &S::annotationGhostNext),
        NumberRow("Annotations/annotationGhostPreviousNumFrames", &S::annotationGhostPreviousNumFrames, 0,
                  100),
        NumberRow("Annotations/annotationGhostNextNumFrames", &S::annotationGhostNextNumFrames, 0, 100),
        NumberRow("Annotations/annotationGhostAlphaMin", &S::annotationGhostAlphaMin, 10, 255),
        NumberRow("Annotations/annotationGhostAlphaMax", &S::annotationGhostAlphaMax, 10, 255),
        BoolRow("Annotations/annotationGhostAccurate", &S::annotationGhostAccurate),
        BoolRow("Annotations/annotationToolsAtRight", &S::annotationToolsAtRight),

        BoolRow("Viewer/hardwareAcceleratedPlayback", &S::hardwareAcceleratedPlayback),
        BoolRow("Viewer/highQualityRendering", &S::highQualityRendering),
        BoolRow("Viewer/highDpiScaling", &S::highDpiScaling),
        NumberRow("Viewer/zoomMaximum", &S::zoomMaximum, 1.0f, 64.0f),
        BoolRow("Viewer/panZoomMouseControls", &S::panZoomMouseControls),
        BoolRow("Viewer/doubleClickTogglesPlayback", &S::doubleClickTogglesPlayback),
        EnumRow("Viewer/viewerLayout", &S::viewerLayout, 2),
        EnumRow("Viewer/loopType", &S::loopType, PingPong),

        NumberRow("Timelines/timelineUpdateInterval", &S::timelineUpdateInterval, 1, 1000),
        BoolRow("Timelines/audioScrub", &S::audioScrub),
        EnumRow("Timelines/globalTimelineDisplayType", &S::globalTimelineDisplayType, 3),
        EnumRow("Timelines/rangeTimelineDisplayType", &S::rangeTimelineDisplayType, 3),
        BoolRow("Timelines/globalTimelineAtTop", &S::globalTimelineAtTop),
        BoolRow("Timelines/rangeTimelineAtTop", &S::rangeTimelineAtTop),
        BoolRow("Timelines/globalTimelineShowTimeBookmarks", &S::globalTimelineShowTimeBookmarks),
        BoolRow("Timelines/rangeTimelineShowTimeBookmarks", &S::rangeTimelineShowTimeBookmarks),
        BoolRow("Timelines/globalTimelineShowRangeBookmarks", &S::globalTimelineShowRangeBookmarks),
        BoolRow("Timelines/globalTimelineShowCache", &S::globalTimelineShowCache),
        BoolRow("Timelines/rangeTimelineShowCache", &S::rangeTimelineShowCache),

        BoolRow("Panels/linkProjectViewAndDetailsViewVisibility",
                &S::linkProjectViewAndDetailsViewVisibility),
        BoolRow("Panels/highlightActiveElementInDetailsView", &S::highlightActiveElementInDetailsView),

        EnumRow("Export/exportProfile", &S::exportProfile, ExportProfileBaseline),
        EnumRow("Export/exportQuality", &S::exportQuality, ExportQualityLow),
        EnumRow("Export/exportPreset", &S::exportPreset, ExportPresetUltraFast),
        BoolRow("Export/exportAnnotations", &S::exportAnnotations),
        BoolRow("Export/exportViewerLayout", &S::exportViewerLayout),
        BoolRow("Export/exportIgnoreRange", &S::exportIgnoreRange),
        BoolRow("Export/resolveRelativeExportOutputPaths", &S::resolveRelativeExportOutputPaths),
        NumberRow("Export/globalExportWidth", &S::globalExportWidth, 240, 4096),
        NumberRow("Export/globalExportHeight", &S::globalExportHeight, 240, 4096),
        TextRow("Export/defaultExportOutputDirPath", &S::defaultExportOutputDirPath),
        TextRow("Export/tempExportDirPath", &S::tempExportDirPath),
        TextRow("Export/ffmpegExePath", &S::ffmpegExePath),

        TextRow("Application/tempDirPath", &S::tempDirPath),
        NumberRow("Application/cacheSize", &S::cacheSize, S::MINIMUM_CACHE_SIZE, S::MAXIMUM_CACHE_SIZE),
        NumberRow("Application/numRecentFiles", &S::numRecentFiles, S::MINIMUM_RECENT_FILES,
                  S::MAXIMUM_RECENT_FILES),
        NumberRow("Application/numRecentProjects", &S::numRecentProjects, S::MINIMUM_RECENT_FILES,
                  S::MAXIMUM_RECENT_FILES),
        BoolRow("Application/openMediaInNewPlayers", &S::openMediaInNewPlayers),
        BoolRow("Application/resizeToFit", &S::resizeToFit),
        BoolRow("Application/continuePlayingAfterSeek", &S::continuePlayingAfterSeek),
        BoolRow("Application/endlessMouseScurb", &S::endlessMouseScurb),
        BoolRow("Application/displayConfirmationOnClose", &S::displayConfirmationOnClose),
        BoolRow("Application/alwaysActivateDefaultTimeline", &S::alwaysActivateDefaultTimeline),
        BoolRow("Application/disablePanZoomOnProjectLoad", &S::disablePanZoomOnProjectLoad),
        BoolRow("Application/emptyProject", &S::emptyProject),
        TextRow("Application/globalSourceRootDirectory", &S::globalSourceRootDirectory),
        NumberRow("Application/globalImageSequenceFrameRate", &S::globalImageSequenceFrameRate, 1.0, 60.0),
        NumberRow("Application/cmdPort", &S::cmdPort, 0, 65535),
        EnumRow("Application/consoleShowOnType", &S::consoleShowOnType, 4),
        BytesRow("Application/consoleWindowGeometry", &S::consoleWindowGeometry),
    };
}

/// Made while the library loads, right after the members above have their initial values, which become the
/// defaults of RestoreDefaults().
const std::vector<SettingRow> SettingRows = MakeSettingRows();

QString NameOf(const SettingRow& row)
{
    return QString::fromLatin1(row.key).section(QLatin1Char('/'), 1);
}

/// The row of the setting called @p name; null if there is none.
const SettingRow* FindRow(const QString& name)
{
    for (const SettingRow& row : SettingRows)
    {
        if (row.key && NameOf(row) == name)
            return &row;
    }
    return nullptr;
}

QString& ConfigPath()
{
    static QString path;
    return path;
}

/// Whether the file at @p path is an INI file throughout; one that is not is set aside.
bool IsWhole(const QString& path)
{
    QSettings::Status status = QSettings::NoError;
    {
        QSettings file(path, QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        // A section is parsed when it is first asked for: only now does the status speak for all of them.
        file.allKeys();
        status = file.status();
    }
    if (status == QSettings::NoError)
        return true;
    UserFile::SetAside(path, status == QSettings::FormatError ? QStringLiteral("it is no settings file")
                                                              : QStringLiteral("it can't be read"));
    return false;
}

} // namespace

QString Settings::UserConfigPath()
{
    return ConfigPath().isEmpty() ? UserFile::DefaultPath(QLatin1String(ConfigFileName)) : ConfigPath();
}

void Settings::SetUserConfigPath(const QString& path)
{
    ConfigPath() = path;
}

void Settings::RestoreDefaults()
{
    for (const SettingRow& row : SettingRows)
        row.restore();
}

QStringList Settings::Names()
{
    QStringList names;
    for (const SettingRow& row : SettingRows)
    {
        if (row.key)
            names << NameOf(row);
    }
    return names;
}

QVariant Settings::Value(const QString& name)
{
    const SettingRow* const row = FindRow(name);
    if (!row)
        return {};
    return row->isNumberText ? QVariant(row->value().toDouble()) : row->value();
}

QString Settings::SetValue(const QString& name, const QVariant& value)
{
    const SettingRow* const row = FindRow(name);
    if (!row)
        return QStringLiteral("there is no such setting");
    const QVariant before = row->value();
    const QString complaint = row->take(value);
    if (!complaint.isEmpty())
        row->take(before);
    // What the file's reader does about it is said behind the first semicolon.
    return complaint.left(complaint.lastIndexOf(QLatin1String("; ")));
}

bool Settings::ReadUserConfig()
{
    const QString path = UserConfigPath();
    if (!QFileInfo::exists(path))
        return true;
    if (!IsWhole(path))
        return false;
    QSettings file(path, QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    bool clean = true;
    for (const SettingRow& row : SettingRows)
    {
        if (!row.key || !file.contains(QLatin1String(row.key)))
            continue;
        const QString complaint = row.take(file.value(QLatin1String(row.key)));
        if (complaint.isEmpty())
            continue;
        clean = false;
        Logger::GetInstance()->Warning(
            QStringLiteral("%1: %2: %3").arg(path, QLatin1String(row.key), complaint));
    }
    return clean;
}

void Settings::WriteUserConfig()
{
    const QString path = UserConfigPath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    // A file that was broken by hand since it was read would be lost.
    if (QFileInfo(path).isFile())
        IsWhole(path);
    QSettings file(path, QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    for (const SettingRow& row : SettingRows)
    {
        if (row.key)
            file.setValue(QLatin1String(row.key), row.value());
    }
    file.sync();
    if (file.status() != QSettings::NoError)
        Logger::GetInstance()->Error(QStringLiteral("The settings could not be written to %1").arg(path));
}
