// SPDX-License-Identifier: MIT
#include "window/ImportProgress.h"

#include "host/Logger.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

/// How long an import takes before it is shown, in milliseconds.
constexpr int Patience = 400;
constexpr int Margin = 4;

} // namespace

ImportProgress::ImportProgress(QWidget* parent)
    : QFrame(parent)
    , mLabel(new QLabel(this))
    , mBar(new QProgressBar(this))
    , mCancelButton(new QPushButton(tr("Cancel"), this))
{
    setObjectName(QStringLiteral("importProgress"));
    mLabel->setObjectName(QStringLiteral("importLabel"));
    mLabel->setTextFormat(Qt::PlainText);
    // A long name doesn't widen the panel.
    mLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    mBar->setObjectName(QStringLiteral("importBar"));
    mBar->setAccessibleName(tr("Import"));
    mCancelButton->setObjectName(QStringLiteral("cancelImportButton"));
    mCancelButton->setFocusPolicy(Qt::NoFocus);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Margin);
    layout->addWidget(mLabel);
    auto* const row = new QHBoxLayout;
    row->addWidget(mBar, 1);
    row->addWidget(mCancelButton);
    layout->addLayout(row);
    setVisible(false);
    mShowTimer.setSingleShot(true);
    connect(&mShowTimer, &QTimer::timeout, this, [this] { setVisible(!mImports.isEmpty()); });
    connect(mCancelButton, SIGNAL(clicked()), this, SLOT(Cancel()));
}

void ImportProgress::Follow(ProjectImport* import)
{
    if (!import)
        return;
    Import entry;
    entry.import = import;
    mImports << entry;
    connect(import, &ProjectImport::Progressed, this, &ImportProgress::OnProgressed);
    connect(import, &ProjectImport::Finished, this, &ImportProgress::OnFinished);
    mLabel->setText(tr("Looking for media"));
    UpdateBar();
    if (!isVisible() && !mShowTimer.isActive())
        mShowTimer.start(Patience);
}

void ImportProgress::Cancel()
{
    const QList<Import> imports = mImports;
    for (const Import& each : imports)
    {
        if (each.import)
            each.import->Cancel();
    }
}

void ImportProgress::OnProgressed(int done, int total, const QString& path)
{
    for (Import& each : mImports)
    {
        if (each.import != sender())
            continue;
        each.done = done;
        each.total = total;
    }
    if (!path.isEmpty())
        mLabel->setText(QFileInfo(path).fileName());
    UpdateBar();
}

void ImportProgress::OnFinished(const ProjectImport::Result& result)
{
    for (const QString& error : result.errors)
        Logger::GetInstance()->Warning(error);
    const QObject* const finished = sender();
    mImports.erase(std::remove_if(mImports.begin(), mImports.end(),
                                  [finished](const Import& each)
                                  { return !each.import || each.import == finished; }),
                   mImports.end());
    UpdateBar();
    if (!mImports.isEmpty())
        return;
    mShowTimer.stop();
    hide();
}

void ImportProgress::UpdateBar()
{
    int done = 0;
    int total = 0;
    for (const Import& each : qAsConst(mImports))
    {
        done += each.done;
        total += each.total;
    }
    // Without a total, the bar shows that something is going on.
    mBar->setMaximum(total);
    mBar->setValue(done);
}
