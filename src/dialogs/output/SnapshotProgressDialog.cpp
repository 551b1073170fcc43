// SPDX-License-Identifier: MIT
#include "dialogs/output/SnapshotProgressDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

SnapshotProgressDialog::SnapshotProgressDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Export Snapshots"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    setWindowModality(Qt::WindowModal);
    CreateWidgets();
    CreateLayout();
    CreateConnections();
}

void SnapshotProgressDialog::SetFrameTotal(int total)
{
    mFrameTotal = total;
    mProgressBar->setMaximum(total);
}

void SnapshotProgressDialog::SetCurrentFrame(int frame)
{
    mProgressBar->setValue(frame);
    mTextLabel->setText(tr("Processing frame %1 (of %2)").arg(frame).arg(mFrameTotal));
}

void SnapshotProgressDialog::reject()
{
    if (QMessageBox::question(this, tr("Cancel"), tr("Cancel export?"), QMessageBox::Yes | QMessageBox::No) !=
        QMessageBox::Yes)
        return;
    Q_EMIT CancelSnapshot();
    QDialog::reject();
}

void SnapshotProgressDialog::CreateWidgets()
{
    mTextLabel = new QLabel(this);
    mTextLabel->setObjectName(QStringLiteral("textLabel"));
    mProgressBar = new QProgressBar(this);
    mProgressBar->setObjectName(QStringLiteral("progressBar"));
    mCancelButton = new QPushButton(tr("Cancel"), this);
    mCancelButton->setObjectName(QStringLiteral("cancelButton"));
}

void SnapshotProgressDialog::CreateLayout()
{
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(mCancelButton);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mTextLabel);
    layout->addWidget(mProgressBar);
    layout->addLayout(buttonRow);
}

void SnapshotProgressDialog::CreateConnections()
{
    connect(mCancelButton, SIGNAL(clicked()), this, SLOT(reject()));
}
