// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCommonExport.h"
#include "host/AnnotationToolType.h"
#include "host/ExportPreset.h"
#include "host/ExportProfile.h"
#include "host/ExportQuality.h"
#include "host/LoopType.h"
#include "host/MetaTypes.h"

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QStringList>
#include <QVariant>

/// The user's settings: global values that every part reads and writes directly, on the GUI thread alone and
/// without a signal on change.
///
/// The host calls ReadUserConfig() before it makes any widget, since several widgets read settings while they
/// are built. The values below are the defaults.
class TORVALENCOMMON_EXPORT Settings
{
public:
    Settings() = delete;

    // Configuration file

    /// Reads the user's INI file over the current values. A missing file changes nothing. A value of the
    /// wrong kind and a choice that there isn't are reported as warnings and skipped; a number out of range
    /// is reported and clamped. A file that can't be parsed is moved to a backup beside it, reported as an
    /// error, and changes nothing. Returns whether the file was absent or read without a complaint.
    static bool ReadUserConfig();
    /// Writes every persistent setting to the user's INI file, atomically; keys that are not ours survive,
    /// and a file that can't be parsed is kept as ReadUserConfig() tells. A failure is reported as an error
    /// that names the file.
    static void WriteUserConfig();
    /// Path of the INI file; in the user's configuration directory unless SetUserConfigPath() said otherwise.
    static QString UserConfigPath();
    /// Makes @p path the INI file; an empty path puts it back in the user's configuration directory.
    static void SetUserConfigPath(const QString& path);
    /// Gives every setting its default value; touches no file.
    static void RestoreDefaults();

    // Access by name, for scripts

    /// The names of the settings that the file keeps, which are those of the members, in the file's order.
    static QStringList Names();
    /// The value of the setting called @p name: a bool, an int (enumerations too), a double or a text
    /// (colours as "#AARRGGBB", bytes as base64); invalid if there is none.
    static QVariant Value(const QString& name);
    /// Gives the setting called @p name @p value, within the bounds that the file has. Returns an empty text,
    /// or what is wrong with the value; nothing is changed then.
    static QString SetValue(const QString& name, const QVariant& value);

    // Annotations and viewers

    /// Active tool.
    static AnnotationToolType annotationTool;
    /// Width of the active tool, as a fraction of the displayed picture's width (MINIMUM_DRAW_WIDTH to 1; 0
    /// with the eyedropper).
    static float drawWidth;
    /// Each tool's own width, as a fraction of the displayed picture's width (MINIMUM_DRAW_WIDTH to 1); of a
    /// text, a quarter of its point size.
    static float pencilWidth;
    static float eraserWidth;
    static float textWidth;
    static float arrowWidth;
    static float ovalWidth;
    static float rectangleWidth;
    /// Lower bound of every width: half a pixel on a picture shown 1000 pixels wide.
    static const float MINIMUM_DRAW_WIDTH;
    /// Drawing colour, alpha included.
    static QColor drawColor;
    /// Drawing mode is on. State of the session, not kept.
    static bool drawEnabled;
    /// A text is being typed. State of the session, not kept.
    static bool textToolActive;
    /// Hides the picture and keeps the overlay. State of the session, not kept.
    static bool onlyDisplayAnnotations;
    /// Ghosts of the frames before and after the current one.
    static bool annotationGhostPrevious;
    static bool annotationGhostNext;
    /// How many ghost frames on each side (0 to 100).
    static int annotationGhostPreviousNumFrames;
    static int annotationGhostNextNumFrames;
    /// Alpha of the faintest ghost and limit of the strongest (10 to 255). A minimum above the maximum is
    /// allowed: ghosts then fade towards the current frame.
    static int annotationGhostAlphaMin;
    static int annotationGhostAlphaMax;
    /// Composes each ghost on its own, so that an eraser acts within its frame alone; costs one full-size
    /// clear and blend a frame.
    static bool annotationGhostAccurate;
    /// The tool strip stands at the right of the viewers instead of the left.
    static bool annotationToolsAtRight;
    /// Draws through OpenGL instead of QPainter; read when a ViewerWidget is built.
    static bool hardwareAcceleratedPlayback;
    /// Multisampled OpenGL drawing; read when the viewer is built.
    static bool highQualityRendering;
    /// Scales the user interface with the screen's density; read at start.
    static bool highDpiScaling;
    /// Upper bound of zoom (1 to 64).
    static float zoomMaximum;
    /// Ctrl with the wheel zooms and Ctrl with the middle button pans a viewer.
    static bool panZoomMouseControls;
    /// A double click in a viewer starts and stops playback.
    static bool doubleClickTogglesPlayback;
    /// ViewerLayout value (0 to 2).
    static int viewerLayout;

    // Timelines and panels

    /// Microseconds added to the start time of a frame in every seek request, so that no rounding falls back
    /// into the frame before; above 0 and below the shortest frame.
    static const int ROUNDING_ERROR_EXTRA_TIME;
    /// Interval of the timelines' repaint timer, in milliseconds (1 to 1000).
    static int timelineUpdateInterval;
    /// Plays short grains of sound while scrubbing.
    static bool audioScrub;
    /// TimelineDisplayType values (0 to 3).
    static int globalTimelineDisplayType;
    static int rangeTimelineDisplayType;
    /// The timeline stands above the viewers instead of below.
    static bool globalTimelineAtTop;
    static bool rangeTimelineAtTop;
    static bool globalTimelineShowTimeBookmarks;
    static bool rangeTimelineShowTimeBookmarks;
    static bool globalTimelineShowRangeBookmarks;
    static bool globalTimelineShowCache;
    static bool rangeTimelineShowCache;
    /// What playback does at the end of its range.
    static LoopType loopType;
    /// Shows and hides the project view and the details view together.
    static bool linkProjectViewAndDetailsViewVisibility;
    static bool highlightActiveElementInDetailsView;

    // Export

    static ExportProfile exportProfile;
    static ExportQuality exportQuality;
    static ExportPreset exportPreset;
    /// Burns annotations into the exported movie.
    static bool exportAnnotations;
    /// Exports what the viewers show side by side instead of the active timeline alone.
    static bool exportViewerLayout;
    /// Exports the whole timeline whatever the playback range.
    static bool exportIgnoreRange;
    /// Puts defaultExportOutputDirPath in front of a relative output path.
    static bool resolveRelativeExportOutputPaths;
    /// Size of an exported movie in pixels (240 to 4096 each).
    static int globalExportWidth;
    static int globalExportHeight;
    /// Directory that a relative output path is taken from, and that a host proposes; empty for none.
    static QString defaultExportOutputDirPath;
    /// Directory of an export's temporary files; empty for the directory of the output.
    static QString tempExportDirPath;
    /// The `ffmpeg` program; empty to find it on the path.
    static QString ffmpegExePath;

    // General

    /// Directory of temporary files.
    static QString tempDirPath;
    /// Bound of the frame cache, in megabytes (MINIMUM_CACHE_SIZE to MAXIMUM_CACHE_SIZE).
    static int cacheSize;
    static const int MINIMUM_CACHE_SIZE;
    static const int MAXIMUM_CACHE_SIZE;
    /// Lengths of the lists of recent files and projects (MINIMUM_RECENT_FILES to MAXIMUM_RECENT_FILES).
    static int numRecentFiles;
    static int numRecentProjects;
    static const int MINIMUM_RECENT_FILES;
    static const int MAXIMUM_RECENT_FILES;
    /// Opens media in a player window of its own.
    static bool openMediaInNewPlayers;
    /// Resizes the window to the media's size when it opens.
    static bool resizeToFit;
    /// Goes on playing after a seek.
    static bool continuePlayingAfterSeek;
    /// Lets the mouse scrub past the window's edge.
    static bool endlessMouseScurb;
    /// Asks before closing.
    static bool displayConfirmationOnClose;
    /// Makes the default timeline of a new project the active one.
    static bool alwaysActivateDefaultTimeline;
    /// Turns pan and zoom off when a project loads.
    static bool disablePanZoomOnProjectLoad;
    /// Starts a new project without a default timeline.
    static bool emptyProject;
    /// Root directory of relative source paths; may hold PROJECT_DIRECTORY_VAR.
    static QString globalSourceRootDirectory;
    /// Frames per second of image sequences (1 to 60).
    static double globalImageSequenceFrameRate;
    /// Stands for the project's directory in a source root path.
    static const char* const PROJECT_DIRECTORY_VAR;
    /// Port of the command server (1 to 65535); 0 keeps it off.
    static int cmdPort;
    /// ConsoleShowOnType value (0 to 4): the messages for which the console comes forward.
    static int consoleShowOnType;
    /// Place and size of the console, as QWidget::saveGeometry() gives it.
    static QByteArray consoleWindowGeometry;
    /// Name of the player.
    static const char* const APPLICATION_TITLE;
    /// Version of the player.
    static const char* const TORVALEN_PRO_VERSION_STRING;
};
