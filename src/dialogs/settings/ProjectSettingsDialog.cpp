// SPDX-License-Identifier: MIT
#include "dialogs/settings/ProjectSettingsDialog.h"

#include "host/Settings.h"
#include "ui_ProjectSettingsDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

ProjectSettingsDialog::ProjectSettingsDialog(const QString& defaultDirPath, const QString& fileFilter,
                                             const QString& projectDirPath, QWidget* parent)
    : QDialog(parent)
    , mForm(new Ui::ProjectSettingsDialog)
    , mDefaultDirPath(defaultDirPath)
    , mFileFilter(fileFilter)
    , mProjectDirPath(projectDirPath)
{
    mForm->setupUi(this);
    connect(mForm->projectPathButton, SIGNAL(clicked()), this, SLOT(SelectProjectPath()));
    connect(mForm->sourceRootDirButton, SIGNAL(clicked()), this, SLOT(SelectSourceRootDir()));
    connect(mForm->globalSourceRootDirButton, SIGNAL(clicked()), this, SLOT(ResetSourceRootDir()));
    connect(mForm->frameRateGlobalButton, SIGNAL(clicked()), this, SLOT(ResetImageSequenceFrameRate()));
}

ProjectSettingsDialog::~ProjectSettingsDialog()
{
    delete mForm;
}

QString ProjectSettingsDialog::GetProjectPath() const
{
    return mForm->projectPathLineEdit->text();
}

void ProjectSettingsDialog::SetProjectPath(const QString& path)
{
    mForm->projectPathLineEdit->setText(path);
}

QString ProjectSettingsDialog::GetSourceRootDir() const
{
    return mForm->sourceRootDirLineEdit->text();
}

void ProjectSettingsDialog::SetSourceRootDir(const QString& path)
{
    mForm->sourceRootDirLineEdit->setText(path);
}

double ProjectSettingsDialog::GetFrameRate() const
{
    return mForm->frameRateDoubleSpinBox->value();
}

void ProjectSettingsDialog::SetFrameRate(double frameRate)
{
    mForm->frameRateDoubleSpinBox->setValue(frameRate);
}

QString ProjectSettingsDialog::GetNotes() const
{
    return mForm->notesTextEdit->toPlainText();
}

void ProjectSettingsDialog::SetNotes(const QString& notes)
{
    mForm->notesTextEdit->setPlainText(notes);
}

void ProjectSettingsDialog::accept()
{
    const QString shown = GetSourceRootDir();
    const QString variable = QString::fromUtf8(Settings::PROJECT_DIRECTORY_VAR);
    const bool isUnknown = shown.contains(variable, Qt::CaseSensitive) && mProjectDirPath.isEmpty();
    if (!isUnknown && !shown.isEmpty())
    {
        QString path = shown;
        path.replace(variable, mProjectDirPath, Qt::CaseSensitive);
        if (!QDir(path).exists())
        {
            QMessageBox::warning(this, tr("Invalid Directory"),
                                 tr("The source root directory does not exist."), QMessageBox::Ok);
            return;
        }
    }
    QDialog::accept();
}

void ProjectSettingsDialog::SelectProjectPath()
{
    const QString shown = GetProjectPath();
    const QString answer =
        QFileDialog::getSaveFileName(this, tr("Project Path"), shown.isEmpty() ? mDefaultDirPath : shown,
                                     mFileFilter, nullptr, QFileDialog::Options());
    if (!answer.isEmpty())
        SetProjectPath(answer);
}

void ProjectSettingsDialog::SelectSourceRootDir()
{
    const QString shown = GetSourceRootDir();
    const QString answer = QFileDialog::getExistingDirectory(this, tr("Source Root Directory"),
                                                             shown.isEmpty() ? mDefaultDirPath : shown,
                                                             QFileDialog::ShowDirsOnly);
    if (!answer.isEmpty())
        SetSourceRootDir(answer);
}

void ProjectSettingsDialog::ResetSourceRootDir()
{
    SetSourceRootDir(Settings::globalSourceRootDirectory.isEmpty()
                         ? QString::fromUtf8(Settings::PROJECT_DIRECTORY_VAR)
                         : Settings::globalSourceRootDirectory);
}

void ProjectSettingsDialog::ResetImageSequenceFrameRate()
{
    SetFrameRate(Settings::globalImageSequenceFrameRate);
}
