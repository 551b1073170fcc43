// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QDialog>
#include <QString>

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;

/// The window from which the user starts, watches and stops the export of a timeline to one ".mp4" file.
///
/// It encodes nothing: ExportRequested() carries what the user chose, and the host answers with
/// SetExporting(), SetProgressBarValue() and AppendOutputText(). The settings that it starts with are read
/// once, when it is built, and never written.
class TORVALENUI_EXPORT ExportDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ExportDialog(QWidget* parent);

    /// Enters or leaves the exporting state: what decided the export can't be edited, the progress shows and
    /// the close button reads "Stop". Progress and output stay as they are. The same state again changes
    /// nothing.
    void SetExporting(bool exporting);
    /// Shows @p value per mille (0 to 1000; another is ignored).
    void SetProgressBarValue(int value);
    /// Appends @p text as a paragraph to the detailed output, and to the basic one unless @p detailedOnly.
    void AppendOutputText(const QString& text, bool detailedOnly);
    /// Sets the text of the output path; it is not validated.
    void SetOutputPath(const QString& path);
    /// Sets the size of the export in pixels (each clamped to 240 to 4096).
    void SetWidthHeight(int width, int height);
    /// Stores the size of the timeline in pixels, for DimensionsToTimeline(); shows nothing.
    void SetTimelineWidthHeight(int width, int height);
    /// Stores the directory that browsing starts in until a file has been picked in any of these dialogs.
    void SetDefaultOutputDirPath(const QString& path);
    /// The directory of the file picked last in any of these dialogs; empty at the start of the process.
    const QString& GetLastOutputDirPath() const;
    /// Closes the dialog; while exporting it asks whether to stop first.
    void reject() override;

public Q_SLOTS:
    /// Checks the output path and asks for the export; does nothing while exporting.
    void Export();
    /// Closes the dialog; while exporting it asks whether to stop instead, and stays open.
    void Cancel();
    /// Makes a relative output path one in `Settings::defaultExportOutputDirPath`, if
    /// `Settings::resolveRelativeExportOutputPaths` asks for it.
    void ValidateOutputPath();
    /// Lets the user pick the output file.
    void SelectOutputFile();
    /// Sets the size of the export to that of the timeline.
    void DimensionsToTimeline();
    /// Sets the size of the export to `Settings::globalExportWidth` and `Settings::globalExportHeight`.
    void DimensionsToGlobal();
    /// Shows the detailed output instead of the basic one.
    void SetDetailedOutputEnabled(bool enabled);
    /// Empties both outputs.
    void ClearOutputText();

Q_SIGNALS:
    /// The user wants the timeline exported to @p outputPath, an absolute path that ends in ".mp4".
    /// @p quality, @p preset and @p profile are values of ExportQuality, ExportPreset and ExportProfile. The
    /// host answers with SetExporting(true) and ends with SetExporting(false).
    void ExportRequested(QString outputPath, int width, int height, int quality, int preset, int profile,
                         bool ignoreRange, bool annotations, bool viewerLayout);
    /// The user stopped the export. The host ends it and answers with SetExporting(false).
    void CancelExportRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void CreateWidgets();
    void CreateLayout();
    void CreateConnections();
    bool ConfirmStop();

    /// Shared by all dialogs for as long as the process lives.
    static const QString mFileExtensionPattern;
    static QString mSelectedFilter;
    static const QString mFilterList;
    static QString mLastOutputDirPath;

    bool mExporting = false;
    int mTimelineWidth = 960;
    int mTimelineHeight = 540;
    bool mShown = false;
    QString mDefaultOutputDirPath;
    QLineEdit* mOutputPathEdit = nullptr;
    QPushButton* mBrowseButton = nullptr;
    QComboBox* mProfileCombo = nullptr;
    QComboBox* mQualityCombo = nullptr;
    QComboBox* mPresetCombo = nullptr;
    QSpinBox* mWidthBox = nullptr;
    QSpinBox* mHeightBox = nullptr;
    QPushButton* mTimelineButton = nullptr;
    QPushButton* mGlobalButton = nullptr;
    QCheckBox* mAnnotationsBox = nullptr;
    QCheckBox* mViewerLayoutBox = nullptr;
    QCheckBox* mIgnoreRangeBox = nullptr;
    QPlainTextEdit* mBasicOutput = nullptr;
    QPlainTextEdit* mDetailedOutput = nullptr;
    QCheckBox* mDetailedOutputBox = nullptr;
    QPushButton* mClearButton = nullptr;
    QProgressBar* mProgressBar = nullptr;
    QPushButton* mExportButton = nullptr;
    QPushButton* mCloseButton = nullptr;
    QHBoxLayout* mButtonRow = nullptr;
};
