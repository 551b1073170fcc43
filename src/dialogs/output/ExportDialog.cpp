// SPDX-License-Identifier: MIT
#include "dialogs/output/ExportDialog.h"

#include "host/Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <initializer_list>

namespace
{

constexpr int MinimumSide = 240;
constexpr int MaximumSide = 4096;
constexpr int ProgressMaximum = 1000;
constexpr int IdleButtonRowCount = 4;
const QMargins GroupMargins(4, 2, 4, 2);
const QString OutputSuffix = QStringLiteral(".mp4");

struct Choice
{
    int value;
    const char* text;
};

// The trailing blanks widen the combo boxes. They are meant: hosts find a row by its whole text.
const std::initializer_list<Choice> ProfileChoices = {
    {ExportProfileHigh, QT_TRANSLATE_NOOP("ExportDialog", "High")},
    {ExportProfileMain, QT_TRANSLATE_NOOP("ExportDialog", "Main")},
    {ExportProfileBaseline, QT_TRANSLATE_NOOP("ExportDialog", "Baseline    ")}};

const std::initializer_list<Choice> QualityChoices = {
    {ExportQualityVeryHigh, QT_TRANSLATE_NOOP("ExportDialog", "Very High  ")},
    {ExportQualityHigh, QT_TRANSLATE_NOOP("ExportDialog", "High")},
    {ExportQualityMedium, QT_TRANSLATE_NOOP("ExportDialog", "Medium")},
    {ExportQualityLow, QT_TRANSLATE_NOOP("ExportDialog", "Low")}};

const std::initializer_list<Choice> PresetChoices = {
    {ExportPresetVerySlow, QT_TRANSLATE_NOOP("ExportDialog", "Very Slow")},
    {ExportPresetSlower, QT_TRANSLATE_NOOP("ExportDialog", "Slower")},
    {ExportPresetSlow, QT_TRANSLATE_NOOP("ExportDialog", "Slow")},
    {ExportPresetMedium, QT_TRANSLATE_NOOP("ExportDialog", "Medium")},
    {ExportPresetFast, QT_TRANSLATE_NOOP("ExportDialog", "Fast")},
    {ExportPresetFaster, QT_TRANSLATE_NOOP("ExportDialog", "Faster")},
    {ExportPresetVeryFast, QT_TRANSLATE_NOOP("ExportDialog", "Very Fast")},
    {ExportPresetSuperFast, QT_TRANSLATE_NOOP("ExportDialog", "Super Fast")},
    {ExportPresetUltraFast, QT_TRANSLATE_NOOP("ExportDialog", "Ultra Fast")}};

QPushButton* MakePushButton(const char* name, const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

QComboBox* MakeChoiceBox(const char* name, const QString& accessibleName,
                         std::initializer_list<Choice> choices, int row, QWidget* parent)
{
    auto* combo = new QComboBox(parent);
    combo->setObjectName(QLatin1String(name));
    combo->setAccessibleName(accessibleName);
    for (const Choice& choice : choices)
        combo->addItem(ExportDialog::tr(choice.text), choice.value);
    combo->setCurrentIndex(row);
    return combo;
}

QSpinBox* MakeSideBox(const char* name, const QString& accessibleName, int value, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(accessibleName);
    box->setButtonSymbols(QAbstractSpinBox::NoButtons);
    box->setRange(MinimumSide, MaximumSide);
    box->setValue(value);
    return box;
}

QCheckBox* MakeSwitch(const char* name, bool checked, QWidget* parent)
{
    auto* box = new QCheckBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setChecked(checked);
    return box;
}

QPlainTextEdit* MakeOutputPane(const char* name, const QString& accessibleName, QWidget* parent)
{
    auto* pane = new QPlainTextEdit(parent);
    pane->setObjectName(QLatin1String(name));
    pane->setAccessibleName(accessibleName);
    pane->setReadOnly(true);
    pane->setWordWrapMode(QTextOption::NoWrap);
    QFont font(QStringLiteral("Consolas"));
    font.setStyleHint(QFont::Monospace, QFont::PreferDefault);
    pane->setFont(font);
    return pane;
}

QHBoxLayout* MakeRow(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QHBoxLayout;
    for (QWidget* const widget : widgets)
        row->addWidget(widget);
    row->addStretch();
    return row;
}

int ChosenValue(const QComboBox* combo, int fallback)
{
    bool isNumber = false;
    const int value = combo->currentData().toInt(&isNumber);
    return isNumber ? value : fallback;
}

} // namespace

const QString ExportDialog::mFileExtensionPattern = QStringLiteral("*.mp4");
QString ExportDialog::mSelectedFilter = QStringLiteral("Export (%1)").arg(mFileExtensionPattern);
const QString ExportDialog::mFilterList =
    QStringLiteral("All Files (*.*);;Export (%1)").arg(mFileExtensionPattern);
QString ExportDialog::mLastOutputDirPath;

ExportDialog::ExportDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Export"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    CreateWidgets();
    CreateLayout();
    CreateConnections();
    SetExporting(false);
}

void ExportDialog::SetExporting(bool exporting)
{
    mExporting = exporting;
    // What else decides an export stays live meanwhile. That is meant: its signal has gone out already, and
    // the user may prepare the next one.
    for (QWidget* const widget : std::initializer_list<QWidget*>{mOutputPathEdit, mBrowseButton, mWidthBox,
                                                                 mHeightBox, mPresetCombo, mIgnoreRangeBox})
        widget->setEnabled(!exporting);
    mProgressBar->setVisible(exporting);
    mExportButton->setVisible(!exporting);
    mCloseButton->setText(exporting ? tr("Stop") : tr("Close"));
    // A stretch in front holds the buttons at the right; without it the progress bar spreads.
    if (exporting && mButtonRow->count() >= IdleButtonRowCount)
        delete mButtonRow->takeAt(0);
    else if (!exporting && mButtonRow->count() == IdleButtonRowCount - 1)
        mButtonRow->insertStretch(0, 0);
}

void ExportDialog::SetProgressBarValue(int value)
{
    mProgressBar->setValue(value);
}

void ExportDialog::AppendOutputText(const QString& text, bool detailedOnly)
{
    mDetailedOutput->appendPlainText(text);
    if (!detailedOnly)
        mBasicOutput->appendPlainText(text);
}

void ExportDialog::SetOutputPath(const QString& path)
{
    mOutputPathEdit->setText(path);
}

void ExportDialog::SetWidthHeight(int width, int height)
{
    mWidthBox->setValue(width);
    mHeightBox->setValue(height);
}

void ExportDialog::SetTimelineWidthHeight(int width, int height)
{
    mTimelineWidth = width;
    mTimelineHeight = height;
}

void ExportDialog::SetDefaultOutputDirPath(const QString& path)
{
    mDefaultOutputDirPath = path;
}

const QString& ExportDialog::GetLastOutputDirPath() const
{
    return mLastOutputDirPath;
}

void ExportDialog::Export()
{
    if (mExporting)
        return;
    QString path = mOutputPathEdit->text();
    // Only the suffix in lower case counts, and another one is kept and added to: that is meant, and written
    // back so that the user sees the name.
    if (!path.isEmpty() && !path.endsWith(OutputSuffix))
    {
        path += OutputSuffix;
        mOutputPathEdit->setText(path);
    }
    const int width = mWidthBox->value();
    const int height = mHeightBox->value();
    const bool annotations = mAnnotationsBox->isChecked();
    const bool viewerLayout = mViewerLayoutBox->isChecked();
    const bool ignoreRange = mIgnoreRangeBox->isChecked();
    const int profile = ChosenValue(mProfileCombo, ExportProfileMain);
    const int quality = ChosenValue(mQualityCombo, ExportQualityHigh);
    const int preset = ChosenValue(mPresetCombo, ExportPresetMedium);

    if (path.isEmpty())
    {
        QMessageBox::critical(this, tr("Error"), tr("The output path is not set."), QMessageBox::Ok);
        return;
    }
    const QFileInfo file(path);
    if (file.isRelative())
    {
        QMessageBox::critical(this, tr("Invaild Output Path"), tr("An absolute output path is expected."),
                              QMessageBox::Ok);
        return;
    }
    if (file.exists() &&
        QMessageBox::warning(this, tr("Confirm Export"),
                             tr("%1 already exists.\nDo you want to replace it?").arg(file.fileName()),
                             QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    Q_EMIT ExportRequested(path, width, height, quality, preset, profile, ignoreRange, annotations,
                           viewerLayout);
}

void ExportDialog::Cancel()
{
    if (!mExporting)
    {
        close();
        return;
    }
    if (ConfirmStop())
        Q_EMIT CancelExportRequested();
}

void ExportDialog::ValidateOutputPath()
{
    if (!Settings::resolveRelativeExportOutputPaths)
        return;
    const QString path = mOutputPathEdit->text();
    if (path.isEmpty() || Settings::defaultExportOutputDirPath.isEmpty())
        return;
    if (QFileInfo(path).isRelative())
        mOutputPathEdit->setText(Settings::defaultExportOutputDirPath + QLatin1Char('/') + path);
}

void ExportDialog::SelectOutputFile()
{
    if (mLastOutputDirPath.isEmpty())
        mLastOutputDirPath = mDefaultOutputDirPath;
    const QString path = QFileDialog::getSaveFileName(this, tr("Export"), mLastOutputDirPath, mFilterList,
                                                      &mSelectedFilter, QFileDialog::DontConfirmOverwrite);
    if (path.isEmpty())
        return;
    mLastOutputDirPath = QFileInfo(path).absoluteDir().absolutePath();
    mOutputPathEdit->setText(path);
}

void ExportDialog::DimensionsToTimeline()
{
    SetWidthHeight(mTimelineWidth, mTimelineHeight);
}

void ExportDialog::DimensionsToGlobal()
{
    SetWidthHeight(Settings::globalExportWidth, Settings::globalExportHeight);
}

void ExportDialog::SetDetailedOutputEnabled(bool enabled)
{
    mBasicOutput->setVisible(!enabled);
    mDetailedOutput->setVisible(enabled);
}

void ExportDialog::ClearOutputText()
{
    mBasicOutput->clear();
    mDetailedOutput->clear();
}

void ExportDialog::reject()
{
    if (mExporting)
    {
        if (!ConfirmStop())
            return;
        Q_EMIT CancelExportRequested();
    }
    QDialog::reject();
}

void ExportDialog::showEvent(QShowEvent* event)
{
    // The base class is left out, and the export button answers from the first show on: both are meant, so
    // that the dialog stays where the host puts it.
    Q_UNUSED(event)
    if (mShown)
        return;
    mShown = true;
    connect(mExportButton, SIGNAL(clicked()), this, SLOT(Export()));
}

void ExportDialog::CreateWidgets()
{
    mOutputPathEdit = new QLineEdit(this);
    mOutputPathEdit->setObjectName(QStringLiteral("outputPathEdit"));
    mOutputPathEdit->setAccessibleName(tr("Output File"));
    mBrowseButton = MakePushButton("browseButton", tr("Browse..."), this);

    mWidthBox = MakeSideBox("widthBox", tr("Width"), Settings::globalExportWidth, this);
    mHeightBox = MakeSideBox("heightBox", tr("Height"), Settings::globalExportHeight, this);
    mTimelineButton = MakePushButton("timelineButton", tr("Timeline"), this);
    mGlobalButton = MakePushButton("globalButton", tr("Global"), this);
    mProfileCombo =
        MakeChoiceBox("profileCombo", tr("Profile"), ProfileChoices, Settings::exportProfile, this);
    mQualityCombo =
        MakeChoiceBox("qualityCombo", tr("Quality"), QualityChoices, Settings::exportQuality, this);
    mPresetCombo = MakeChoiceBox("presetCombo", tr("Preset"), PresetChoices, Settings::exportPreset, this);
    mAnnotationsBox = MakeSwitch("annotationsBox", Settings::exportAnnotations, this);
    mViewerLayoutBox = MakeSwitch("viewerLayoutBox", Settings::exportViewerLayout, this);
    mIgnoreRangeBox = MakeSwitch("ignoreRangeBox", Settings::exportIgnoreRange, this);

    mBasicOutput = MakeOutputPane("basicOutput", tr("Output"), this);
    mDetailedOutput = MakeOutputPane("detailedOutput", tr("Detailed Output"), this);
    mDetailedOutput->setVisible(false);
    mDetailedOutputBox = MakeSwitch("detailedOutputBox", false, this);
    mDetailedOutputBox->setText(tr("Detailed Output"));
    mClearButton = MakePushButton("clearButton", tr("Clear"), this);

    mProgressBar = new QProgressBar(this);
    mProgressBar->setObjectName(QStringLiteral("progressBar"));
    mProgressBar->setRange(0, ProgressMaximum);
    mProgressBar->setValue(0);
    mExportButton = MakePushButton("exportButton", tr("Export"), this);
    mCloseButton = MakePushButton("closeButton", tr("Close"), this);
}

void ExportDialog::CreateLayout()
{
    auto* fileGroup = new QGroupBox(tr("Output File"), this);
    fileGroup->setObjectName(QStringLiteral("outputFileGroup"));
    auto* fileRow = new QHBoxLayout(fileGroup);
    fileRow->setContentsMargins(GroupMargins);
    fileRow->addWidget(mOutputPathEdit);
    fileRow->addWidget(mBrowseButton);

    auto* optionsGroup = new QGroupBox(tr("Export Options"), this);
    optionsGroup->setObjectName(QStringLiteral("exportOptionsGroup"));
    auto* form = new QFormLayout(optionsGroup);
    form->setContentsMargins(GroupMargins);
    form->addRow(tr("Dimensions:"),
                 MakeRow({mWidthBox, new QLabel(tr("x"), this), mHeightBox, mTimelineButton, mGlobalButton}));
    form->addRow(tr("Profile:"), MakeRow({mProfileCombo}));
    form->addRow(tr("Quality:"), MakeRow({mQualityCombo}));
    form->addRow(tr("Preset:"), MakeRow({mPresetCombo}));
    form->addRow(tr("Annotations:"), mAnnotationsBox);
    form->addRow(tr("Viewer Layout:"), mViewerLayoutBox);
    form->addRow(tr("Ignore Range:"), mIgnoreRangeBox);

    auto* outputFoot = new QHBoxLayout;
    outputFoot->addWidget(mDetailedOutputBox);
    outputFoot->addStretch();
    outputFoot->addWidget(mClearButton);
    auto* output = new QVBoxLayout;
    output->setContentsMargins(0, 0, 0, 0);
    output->setSpacing(2);
    output->addWidget(mBasicOutput);
    output->addWidget(mDetailedOutput);
    output->addLayout(outputFoot);

    mButtonRow = new QHBoxLayout;
    mButtonRow->setContentsMargins(0, 0, 0, 0);
    mButtonRow->addWidget(mExportButton);
    mButtonRow->addWidget(mProgressBar);
    mButtonRow->addWidget(mCloseButton);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fileGroup);
    layout->addWidget(optionsGroup);
    layout->addLayout(output);
    layout->addSpacing(10);
    layout->addLayout(mButtonRow);
}

void ExportDialog::CreateConnections()
{
    connect(mOutputPathEdit, SIGNAL(editingFinished()), this, SLOT(ValidateOutputPath()));
    connect(mBrowseButton, SIGNAL(clicked()), this, SLOT(SelectOutputFile()));
    connect(mTimelineButton, SIGNAL(clicked()), this, SLOT(DimensionsToTimeline()));
    connect(mGlobalButton, SIGNAL(clicked()), this, SLOT(DimensionsToGlobal()));
    connect(mDetailedOutputBox, SIGNAL(clicked(bool)), this, SLOT(SetDetailedOutputEnabled(bool)));
    connect(mClearButton, SIGNAL(clicked()), this, SLOT(ClearOutputText()));
    connect(mCloseButton, SIGNAL(clicked()), this, SLOT(Cancel()));
}

bool ExportDialog::ConfirmStop()
{
    return mExporting && QMessageBox::question(this, tr("Stop Export"), tr("Stop the export process?"),
                                               QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}
