// SPDX-License-Identifier: MIT
#include "dialogs/settings/PreferencesDialog.h"

#include "host/KeyBindings.h"
#include "host/Settings.h"
#include "ui_PreferencesDialog.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QFileInfo>

namespace
{

void FillCombo(QComboBox* combo, const QStringList& texts)
{
    for (int value = 0; value < texts.size(); ++value)
        combo->addItem(texts[value], value);
}

void SetRangeAndValue(QSpinBox* box, int minimum, int maximum, int value)
{
    box->setMinimum(minimum);
    box->setMaximum(maximum);
    box->setValue(value);
}

void TakeAnswer(QLineEdit* edit, const QString& answer)
{
    if (!answer.isEmpty())
        edit->setText(answer);
}

} // namespace

PreferencesDialog::PreferencesDialog(const QString& defaultDirPath, KeyBindings* keyBindings, QWidget* parent)
    : QDialog(parent)
    , mForm(new Ui::PreferencesDialog)
    , mDefaultDirPath(defaultDirPath)
    , mKeyBindings(keyBindings)
{
    mForm->setupUi(this);
    mForm->menuListWdg->setCurrentRow(0);
    CopyKeyBindings();
    // The same rows as in the export dialog; the blanks behind some texts are meant.
    FillCombo(mForm->exportProfileCmb, {tr("High"), tr("Main"), tr("Baseline    ")});
    FillCombo(mForm->exportQualityCmb, {tr("Very High  "), tr("High"), tr("Medium"), tr("Low")});
    FillCombo(mForm->exportPresetCmb, {tr("Very Slow"), tr("Slower"), tr("Slow"), tr("Medium"), tr("Fast"),
                                       tr("Faster"), tr("Very Fast"), tr("Super Fast"), tr("Ultra Fast")});
    // The page is narrower than the longest text, which can be read in the open list at least.
    QAbstractItemView* const modes = mForm->ghostDrawModeCmb->view();
    modes->setMinimumWidth(modes->sizeHintForColumn(0));
    CreateConnections();
    LoadSettings();
    LoadKeyBindings();
}

PreferencesDialog::~PreferencesDialog()
{
    qDeleteAll(mWorkingBindings);
    mWorkingBindings.clear();
    delete mForm;
}

void PreferencesDialog::CreateConnections()
{
    connect(mForm->tempDirBtn, SIGNAL(clicked()), this, SLOT(BrowseForTempDir()));
    connect(mForm->sourceRootDirBrowseBtn, SIGNAL(clicked()), this, SLOT(SelectSourceRootDir()));
    connect(mForm->sourceRootDirProjectBtn, SIGNAL(clicked()), this, SLOT(ResetSourceRootDir()));
    connect(mForm->ffmpegPathBtn, SIGNAL(clicked()), this, SLOT(BrowseForFFmpegPath()));
    connect(mForm->exportOutputDirBtn, SIGNAL(clicked()), this, SLOT(BrowseForDefaultExportDir()));
    connect(mForm->exportTempDirBtn, SIGNAL(clicked()), this, SLOT(BrowseForTempExportDir()));
    connect(mForm->alphaMaxSB, SIGNAL(editingFinished()), this, SLOT(OnAnnotationGhostingAlphaMaxChanged()));
    connect(mForm->alphaMinSB, SIGNAL(editingFinished()), this, SLOT(OnAnnotationGhostingAlphaMinChanged()));
    connect(mForm->ghostDrawModeCmb, SIGNAL(currentIndexChanged(int)), this,
            SLOT(OnAnnotationGhostingDrawModeChanged(int)));
    connect(mForm->keyboardCommandListWdg, SIGNAL(itemSelectionChanged()), this,
            SLOT(OnSelectedItemChanged()));
    connect(mForm->pressShortcutKeysLE, SIGNAL(textChanged(const QString&)), this,
            SLOT(UpdateExistingKeyBindingDisplay(const QString&)));
    connect(mForm->assignShortcutBtn, SIGNAL(clicked()), this, SLOT(AssignKeyBinding()));
    connect(mForm->removeShortcutBtn, SIGNAL(clicked()), this, SLOT(RemoveKeyBinding()));
    connect(mForm->restoreDefaultsBtn, SIGNAL(clicked()), this, SLOT(RestoreDefaultKeyBindings()));
}

void PreferencesDialog::LoadSettings()
{
    mForm->tempDirLE->setText(Settings::tempDirPath);
    SetRangeAndValue(mForm->cacheSizeSB, Settings::MINIMUM_CACHE_SIZE, Settings::MAXIMUM_CACHE_SIZE,
                     Settings::cacheSize);
    SetRangeAndValue(mForm->numRecentFilesSB, Settings::MINIMUM_RECENT_FILES, Settings::MAXIMUM_RECENT_FILES,
                     Settings::numRecentFiles);
    SetRangeAndValue(mForm->numRecentProjectsSB, Settings::MINIMUM_RECENT_FILES,
                     Settings::MAXIMUM_RECENT_FILES, Settings::numRecentProjects);
    mForm->openMediaInNewPlayersCB->setChecked(Settings::openMediaInNewPlayers);
    mForm->resizeToFitCB->setChecked(Settings::resizeToFit);
    mForm->continuePlayingAfterSeekCB->setChecked(Settings::continuePlayingAfterSeek);
    mForm->endlessMouseScrubCB->setChecked(Settings::endlessMouseScurb);
    mForm->panZoomMouseControlsCB->setChecked(Settings::panZoomMouseControls);
    mForm->highlightActiveElementCB->setChecked(Settings::highlightActiveElementInDetailsView);
    mForm->linkProjectViewAndDetailsViewVisiblity->setChecked(
        Settings::linkProjectViewAndDetailsViewVisibility);
    mForm->doubleClickTogglesPlaybackCB->setChecked(Settings::doubleClickTogglesPlayback);
    mForm->displayConfirmationOnCloseCB->setChecked(Settings::displayConfirmationOnClose);
    mForm->sourceRootDirLE->setText(Settings::globalSourceRootDirectory);
    mForm->imageSeqFrameRateSpinBox->setValue(Settings::globalImageSequenceFrameRate);
    mForm->addDefaultTimelineCB->setChecked(!Settings::emptyProject);
    mForm->alwaysActivateDefaultTimelineCB->setChecked(Settings::alwaysActivateDefaultTimeline);
    mForm->disablePanZoomOnProjectLoadCB->setChecked(Settings::disablePanZoomOnProjectLoad);
    mForm->alphaMaxSB->setValue(Settings::annotationGhostAlphaMax);
    mForm->alphaMinSB->setValue(Settings::annotationGhostAlphaMin);
    // Heard already: where the row changes, the setting is written with its own value and signalled once.
    mForm->ghostDrawModeCmb->setCurrentIndex(Settings::annotationGhostAccurate ? 1 : 0);
    mForm->ffmpegPathLE->setText(Settings::ffmpegExePath);
    mForm->exportOutputDirLE->setText(Settings::defaultExportOutputDirPath);
    mForm->exportResolveRelativeOutputPathsCB->setChecked(Settings::resolveRelativeExportOutputPaths);
    mForm->exportTempDirLE->setText(Settings::tempExportDirPath);
    mForm->exportDimensionsWidthSB->setValue(Settings::globalExportWidth);
    mForm->exportDimensionsHeightSB->setValue(Settings::globalExportHeight);
    mForm->exportProfileCmb->setCurrentIndex(Settings::exportProfile);
    mForm->exportQualityCmb->setCurrentIndex(Settings::exportQuality);
    mForm->exportPresetCmb->setCurrentIndex(Settings::exportPreset);
    mForm->exportAnnotationsCB->setChecked(Settings::exportAnnotations);
    mForm->exportViewerLayoutCB->setChecked(Settings::exportViewerLayout);
    mForm->exportIgnoreRangeCB->setChecked(Settings::exportIgnoreRange);
    mForm->portSB->setValue(Settings::cmdPort);
    mForm->hardwareAcceleratedPlaybackCB->setChecked(Settings::hardwareAcceleratedPlayback);
    mForm->highQualityRenderingCB->setChecked(Settings::highQualityRendering);
    mForm->highDpiScalingCB->setChecked(Settings::highDpiScaling);
}

void PreferencesDialog::Apply()
{
    // First, so that they are on disk before any setting changes.
    if (mKeyBindings)
    {
        mKeyBindings->UpdateUserSequences(mWorkingBindings);
        mKeyBindings->WriteUserKeyBindings();
    }

    Settings::tempDirPath = mForm->tempDirLE->text();
    Settings::cacheSize = mForm->cacheSizeSB->value();
    Settings::numRecentFiles = mForm->numRecentFilesSB->value();
    Settings::numRecentProjects = mForm->numRecentProjectsSB->value();

    Settings::openMediaInNewPlayers = mForm->openMediaInNewPlayersCB->isChecked();
    Settings::resizeToFit = mForm->resizeToFitCB->isChecked();
    Settings::continuePlayingAfterSeek = mForm->continuePlayingAfterSeekCB->isChecked();
    Settings::highlightActiveElementInDetailsView = mForm->highlightActiveElementCB->isChecked();
    Settings::endlessMouseScurb = mForm->endlessMouseScrubCB->isChecked();
    Settings::panZoomMouseControls = mForm->panZoomMouseControlsCB->isChecked();
    Settings::linkProjectViewAndDetailsViewVisibility =
        mForm->linkProjectViewAndDetailsViewVisiblity->isChecked();
    Settings::doubleClickTogglesPlayback = mForm->doubleClickTogglesPlaybackCB->isChecked();
    Settings::displayConfirmationOnClose = mForm->displayConfirmationOnCloseCB->isChecked();

    Settings::globalSourceRootDirectory = mForm->sourceRootDirLE->text();
    Settings::globalImageSequenceFrameRate = mForm->imageSeqFrameRateSpinBox->value();
    Settings::emptyProject = !mForm->addDefaultTimelineCB->isChecked();
    Settings::alwaysActivateDefaultTimeline = mForm->alwaysActivateDefaultTimelineCB->isChecked();
    Settings::disablePanZoomOnProjectLoad = mForm->disablePanZoomOnProjectLoadCB->isChecked();

    Settings::cmdPort = mForm->portSB->value();
    Settings::ffmpegExePath = mForm->ffmpegPathLE->text();
    Settings::defaultExportOutputDirPath = mForm->exportOutputDirLE->text();
    Settings::resolveRelativeExportOutputPaths = mForm->exportResolveRelativeOutputPathsCB->isChecked();
    Settings::tempExportDirPath = mForm->exportTempDirLE->text();
    Settings::globalExportWidth = mForm->exportDimensionsWidthSB->value();
    Settings::globalExportHeight = mForm->exportDimensionsHeightSB->value();

    Settings::exportProfile = static_cast<ExportProfile>(mForm->exportProfileCmb->currentData().toInt());
    Settings::exportQuality = static_cast<ExportQuality>(mForm->exportQualityCmb->currentData().toInt());
    Settings::exportPreset = static_cast<ExportPreset>(mForm->exportPresetCmb->currentData().toInt());
    Settings::exportAnnotations = mForm->exportAnnotationsCB->isChecked();
    Settings::exportViewerLayout = mForm->exportViewerLayoutCB->isChecked();
    Settings::exportIgnoreRange = mForm->exportIgnoreRangeCB->isChecked();

    Settings::hardwareAcceleratedPlayback = mForm->hardwareAcceleratedPlaybackCB->isChecked();
    Settings::highQualityRendering = mForm->highQualityRenderingCB->isChecked();
    Settings::highDpiScaling = mForm->highDpiScalingCB->isChecked();

    Settings::WriteUserConfig();
}

void PreferencesDialog::OnAnnotationGhostingAlphaMaxChanged()
{
    // The other box follows and its setting doesn't: meant so, and whoever reads the two copes with a minimum
    // above the maximum.
    if (mForm->alphaMaxSB->value() < mForm->alphaMinSB->value())
        mForm->alphaMinSB->setValue(mForm->alphaMaxSB->value());
    Settings::annotationGhostAlphaMax = mForm->alphaMaxSB->value();
    Q_EMIT GhostingChanged();
}

void PreferencesDialog::OnAnnotationGhostingAlphaMinChanged()
{
    if (mForm->alphaMinSB->value() > mForm->alphaMaxSB->value())
        mForm->alphaMaxSB->setValue(mForm->alphaMinSB->value());
    Settings::annotationGhostAlphaMin = mForm->alphaMinSB->value();
    Q_EMIT GhostingChanged();
}

void PreferencesDialog::OnAnnotationGhostingDrawModeChanged(int index)
{
    Settings::annotationGhostAccurate = index > 0;
    Q_EMIT GhostingChanged();
}

QString PreferencesDialog::GetDirectory(const QString& startDir)
{
    return QFileDialog::getExistingDirectory(this, tr("Select Directory"), startDir,
                                             QFileDialog::ShowDirsOnly);
}

QString PreferencesDialog::GetFilePath(const QString& startPath)
{
    return QFileDialog::getOpenFileName(this, tr("Select ffmpeg executable"), startPath, QString(), nullptr,
                                        QFileDialog::Options());
}

void PreferencesDialog::BrowseForTempDir()
{
    TakeAnswer(mForm->tempDirLE, GetDirectory(mForm->tempDirLE->text()));
}

void PreferencesDialog::BrowseForTempExportDir()
{
    TakeAnswer(mForm->exportTempDirLE, GetDirectory(mForm->exportTempDirLE->text()));
}

void PreferencesDialog::BrowseForDefaultExportDir()
{
    TakeAnswer(mForm->exportOutputDirLE, GetDirectory(mForm->exportOutputDirLE->text()));
}

void PreferencesDialog::BrowseForFFmpegPath()
{
    TakeAnswer(mForm->ffmpegPathLE, GetFilePath(mForm->ffmpegPathLE->text()));
}

void PreferencesDialog::SelectSourceRootDir()
{
    const QString shown = mForm->sourceRootDirLE->text();
    TakeAnswer(mForm->sourceRootDirLE,
               QFileDialog::getExistingDirectory(this, tr("Source Root Directory"),
                                                 QFileInfo::exists(shown) ? shown : mDefaultDirPath,
                                                 QFileDialog::ShowDirsOnly));
}

void PreferencesDialog::ResetSourceRootDir()
{
    mForm->sourceRootDirLE->setText(QString::fromUtf8(Settings::PROJECT_DIRECTORY_VAR));
}
