// SPDX-License-Identifier: MIT
#include "dialogs/output/SnapshotDialog.h"

#include "ui_SnapshotDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <initializer_list>

SnapshotDialog::SnapshotDialog(QWidget* parent) : QDialog(parent), mUi(new Ui::SnapshotDialog)
{
    mUi->setupUi(this);
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    // OnTypeChanged() waits for SetType() or the user: until then every row shows, and that is meant.
    CreateConnections();
}

SnapshotDialog::~SnapshotDialog()
{
    delete mUi;
}

QString SnapshotDialog::GetDirectoryPath() const
{
    return mUi->directoryLineEdit->text();
}

void SnapshotDialog::SetDirectoryPath(const QString& path)
{
    mUi->directoryLineEdit->setText(path);
}

QString SnapshotDialog::GetName() const
{
    return mUi->nameLineEdit->text();
}

void SnapshotDialog::SetName(const QString& name)
{
    mUi->nameLineEdit->setText(name);
}

SnapshotType SnapshotDialog::GetType() const
{
    return static_cast<SnapshotType>(mUi->typeComboBox->currentIndex());
}

void SnapshotDialog::SetType(SnapshotType type)
{
    mUi->typeComboBox->setCurrentIndex(type);
    OnTypeChanged();
}

SnapshotNumbering SnapshotDialog::GetNumbering() const
{
    return mUi->frameNumberingRadioButton->isChecked() ? SnapshotNumberingFrame : SnapshotNumberingSequence;
}

void SnapshotDialog::SetNumbering(SnapshotNumbering numbering)
{
    if (numbering == SnapshotNumberingFrame)
        mUi->frameNumberingRadioButton->setChecked(true);
    else
        mUi->sequenceNumberingRadioButton->setChecked(true);
}

int SnapshotDialog::GetPadding() const
{
    return mUi->paddingSpinBox->value();
}

void SnapshotDialog::SetPadding(int padding)
{
    mUi->paddingSpinBox->setValue(padding);
}

bool SnapshotDialog::IsOverwriteEnabled() const
{
    return mUi->overwriteCheckBox->isChecked();
}

void SnapshotDialog::SetOverwriteEnabled(bool enabled)
{
    mUi->overwriteCheckBox->setChecked(enabled);
}

void SnapshotDialog::SetLastSnapshotDirectory(const QString& path)
{
    mLastSnapshotDirectory = path;
}

void SnapshotDialog::accept()
{
    if (GetDirectoryPath().isEmpty())
    {
        QMessageBox::warning(this, tr("Invalid Path"), tr("The output directory is not set."),
                             QMessageBox::Ok);
        return;
    }
    if (GetName().isEmpty())
    {
        QMessageBox::warning(this, tr("Invalid Name"), tr("The output name is not set."), QMessageBox::Ok);
        return;
    }
    QDialog::accept();
}

void SnapshotDialog::SelectOutputDir()
{
    const QString entered = GetDirectoryPath();
    const QString path = QFileDialog::getExistingDirectory(
        this, tr("Snapshot Directory"), entered.isEmpty() ? mLastSnapshotDirectory : entered,
        QFileDialog::ShowDirsOnly);
    if (path.isEmpty())
        return;
    // The directory above the picked one. That is meant: the next browsing shows the picked one among its
    // neighbours.
    mLastSnapshotDirectory = QFileInfo(path).absoluteDir().absolutePath();
    SetDirectoryPath(path);
}

void SnapshotDialog::OnTypeChanged()
{
    const bool isSeries = mUi->typeComboBox->currentIndex() != SnapshotSingleFrame;
    for (QWidget* const widget : std::initializer_list<QWidget*>{
             mUi->numberingLabel, mUi->frameNumberingRadioButton, mUi->sequenceNumberingRadioButton,
             mUi->paddingLabel, mUi->paddingSpinBox, mUi->overwriteLabel, mUi->overwriteCheckBox})
        widget->setVisible(isSeries);
}

void SnapshotDialog::showEvent(QShowEvent* event)
{
    // On a label and on no edit: that is meant, so that a key pressed by mistake changes no text.
    mUi->directoryLabel->setFocus(Qt::OtherFocusReason);
    QDialog::showEvent(event);
}

void SnapshotDialog::CreateConnections()
{
    connect(mUi->okButton, SIGNAL(clicked()), this, SLOT(accept()));
    connect(mUi->cancelButton, SIGNAL(clicked()), this, SLOT(reject()));
    connect(mUi->directoryBrowseButton, SIGNAL(clicked()), this, SLOT(SelectOutputDir()));
    connect(mUi->typeComboBox, SIGNAL(currentIndexChanged(int)), this, SLOT(OnTypeChanged()));
}
