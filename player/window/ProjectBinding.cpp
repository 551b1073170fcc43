// SPDX-License-Identifier: MIT
#include "window/ProjectBinding.h"

#include "annotation/AnnotationController.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/MediaReader.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/ProjectJournal.h"
#include "window/CommandTable.h"
#include "window/RecentFiles.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

namespace
{

/// An import that takes longer shows its progress, in milliseconds.
constexpr int ProgressDelay = 700;

} // namespace

ProjectBinding::ProjectBinding(Project* project, PlaybackController* playback,
                               AnnotationController* annotation, const QString& journalFolder,
                               QWidget* window)
    : QObject(window)
    , mProject(project)
    , mPlayback(playback)
    , mAnnotation(annotation)
    , mJournalFolder(journalFolder)
    , mWindow(window)
    , mJournal(std::make_unique<ProjectJournal>(project, journalFolder))
{
    connect(mJournal.get(), &ProjectJournal::Failed, this,
            [](const QString& text) { Logger::GetInstance()->Warning(text); });
    mJournal->SetPlaceOfEdit(
        [this]() -> ProjectJournal::Place
        {
            const int typing = mAnnotation->Text()->TypingViewer();
            const int viewer = typing >= 0 ? typing : mAnnotation->Strokes()->DrawingViewer();
            const auto timeline = viewer < 0 ? nullptr : mPlayback->TimelineOf(viewer);
            if (!timeline)
                return {};
            return {timeline->GetID(),
                    typing >= 0 ? mAnnotation->Text()->TypingFrame() : mPlayback->ShownFrame(viewer)};
        });
    connect(project, SIGNAL(AboutToChange()), annotation, SLOT(EndEdits()));
    connect(project, SIGNAL(Reset()), this, SLOT(OnReset()));
    connect(project, SIGNAL(Changed()), this, SLOT(OnChanged()));
    connect(project, SIGNAL(Refused(QString)), this, SLOT(OnRefused(QString)));
    connect(project, SIGNAL(TitleChanged()), this, SIGNAL(Updated()));
    connect(project, SIGNAL(ModifiedChanged(bool)), this, SIGNAL(Updated()));
    // Later: playback is still at it.
    connect(playback, SIGNAL(SourceFailed(QString)), this, SLOT(OnSourceFailed()), Qt::QueuedConnection);
}

ProjectBinding::~ProjectBinding() = default;

Project* ProjectBinding::GetProject() const
{
    return mProject;
}

void ProjectBinding::AddCommands(std::vector<Command>& commands)
{
    const auto add = [&](const char* name, const QString& text, const QList<QKeySequence>& keys,
                         std::function<void()> run) {
        commands.push_back({QLatin1String(name), text, QStringLiteral("file"), keys, std::move(run), {}});
    };
    add("file.newProject", tr("|&New Project"), {QKeySequence(Qt::CTRL + Qt::Key_N)},
        [this] { NewProject(); });
    add("file.openProject", tr("Open &Project…"), {QKeySequence(Qt::CTRL + Qt::ALT + Qt::Key_O)},
        [this] { OpenFromDialog(); });
    add("file.openRecentProject", tr("Open &Last Project"), {},
        [this]
        {
            if (mRecent && !mRecent->Paths().isEmpty())
                OpenRecent(mRecent->Paths().first());
        });
    add("file.saveProject", tr("&Save Project"), {QKeySequence(Qt::CTRL + Qt::Key_S)},
        [this] { SaveProject(); });
    add("file.saveProjectAs", tr("Save Project &As…"), {QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_S)},
        [this] { SaveProjectAs(); });
    add("file.import", tr("|&Import…"), {QKeySequence(Qt::CTRL + Qt::Key_I)}, [this] { ImportFromDialog(); });
}

void ProjectBinding::SetRecentMenu(QMenu* menu)
{
    mRecent = new RecentFiles(QStringLiteral("recent/projects"), &Settings::numRecentProjects, menu, this);
    connect(mRecent, SIGNAL(OpenRequested(QString)), this, SLOT(OpenRecent(QString)));
}

void ProjectBinding::UpdateRecent()
{
    if (mRecent)
        mRecent->Update();
}

void ProjectBinding::AddRecent(const QString& path)
{
    if (mRecent)
        mRecent->Add(path);
}

void ProjectBinding::UpdateTitle(const QStringList& shown)
{
    QStringList parts{mProject->Title()};
    if (!shown.isEmpty())
        parts << shown.join(QLatin1String(" | "));
    parts << QString::fromLatin1(Settings::APPLICATION_TITLE);
    // Names may hold what stands for the mark; said twice it stands for itself.
    const QString mark = QStringLiteral("[*]");
    for (QString& part : parts)
        part.replace(mark, mark + mark);
    parts.first() += mark;
    mWindow->setWindowTitle(parts.join(QLatin1String(" - ")));
    mWindow->setWindowModified(mProject->IsModified());
}

bool ProjectBinding::MayDrop()
{
    mAnnotation->EndEdits();
    if (!mProject->IsModified() || !Settings::displayConfirmationOnClose)
        return true;
    QMessageBox box(QMessageBox::Question, QString::fromLatin1(Settings::APPLICATION_TITLE),
                    tr("%1 has changes that are not saved. Save them?").arg(mProject->Title()),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, mWindow);
    box.setObjectName(QStringLiteral("saveQuestion"));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec())
    {
    case QMessageBox::Save:
        return SaveProject();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void ProjectBinding::OfferRecovery()
{
    const QList<ProjectJournal::Abandoned> found = ProjectJournal::FindAbandoned(mJournalFolder);
    for (const ProjectJournal::Abandoned& abandoned : found)
    {
        const QString name =
            abandoned.projectPath.isEmpty() ? tr("An untitled project") : abandoned.projectPath;
        QMessageBox box(QMessageBox::Question, tr("Recover Project"),
                        tr("%1 was not saved when the player ended at %2. Recover its changes?")
                            .arg(name, QLocale().toString(abandoned.time, QLocale::ShortFormat)),
                        QMessageBox::NoButton, mWindow);
        box.setObjectName(QStringLiteral("recoverQuestion"));
        const QPushButton* const recover = box.addButton(tr("Recover"), QMessageBox::AcceptRole);
        const QPushButton* const discard = box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
        box.setEscapeButton(box.addButton(tr("Later"), QMessageBox::RejectRole));
        box.exec();
        if (box.clickedButton() == discard)
        {
            ProjectJournal::Discard(abandoned);
            continue;
        }
        if (box.clickedButton() != recover)
            continue;
        QString error;
        std::optional<ProjectJournal::Recovered> recovered = ProjectJournal::Read(abandoned.path, &error);
        if (!recovered)
        {
            Logger::GetInstance()->Error(error);
            continue;
        }
        mProject->Recover(std::move(recovered->content), recovered->projectPath);
        // What was recovered lies in this player's own journal by now.
        if (!mJournal->Path().isEmpty())
            ProjectJournal::Discard(abandoned);
        return;
    }
}

bool ProjectBinding::IsProjectFile(const QString& path)
{
    return QFileInfo(path).suffix().compare(QLatin1String(ProjectFile::Suffix), Qt::CaseInsensitive) == 0;
}

void ProjectBinding::NewProject()
{
    if (MayDrop())
        mProject->New();
}

bool ProjectBinding::OpenProject(const QString& path)
{
    if (!MayDrop())
        return false;
    QString error;
    if (!mProject->Open(path, &error))
    {
        TellErrors({error});
        return false;
    }
    AddRecent(path);
    Logger::GetInstance()->Info(tr("Opened %1").arg(mProject->FilePath()));
    return true;
}

void ProjectBinding::OpenRecent(const QString& path)
{
    OpenProject(path);
}

QString ProjectBinding::ProjectFilter() const
{
    return tr("%1 Projects (*.%2)")
        .arg(QString::fromLatin1(Settings::APPLICATION_TITLE), QLatin1String(ProjectFile::Suffix));
}

QString ProjectBinding::StartFolder() const
{
    return mProject->FolderPath().isEmpty() ? QDir::homePath() : mProject->FolderPath();
}

void ProjectBinding::OpenFromDialog()
{
    const QString path = QFileDialog::getOpenFileName(mWindow, tr("Open Project"), StartFolder(),
                                                      ProjectFilter() + tr(";;All Files (*)"));
    if (!path.isEmpty())
        OpenProject(path);
}

bool ProjectBinding::SaveProject()
{
    return mProject->FilePath().isEmpty() ? SaveProjectAs() : SaveTo(mProject->FilePath());
}

bool ProjectBinding::SaveProjectAs()
{
    QFileDialog dialog(mWindow, tr("Save Project"), StartFolder(), ProjectFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QLatin1String(ProjectFile::Suffix));
    dialog.selectFile(mProject->FilePath().isEmpty() ? mProject->Title() : mProject->FilePath());
    return dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty() &&
           SaveTo(dialog.selectedFiles().first());
}

bool ProjectBinding::SaveTo(const QString& path)
{
    mAnnotation->EndEdits();
    QString error;
    if (!mProject->Save(path, &error))
    {
        Logger::GetInstance()->Error(error);
        return false;
    }
    AddRecent(path);
    Logger::GetInstance()->Info(tr("Saved %1").arg(mProject->FilePath()));
    return true;
}

void ProjectBinding::ImportFromDialog()
{
    const QStringList paths = QFileDialog::getOpenFileNames(
        mWindow, tr("Import Media"), QString(),
        tr("Movies and Images (%1);;All Files (*)").arg(MediaNamePatterns().join(QLatin1Char(' '))));
    if (!paths.isEmpty())
        Watch(mProject->Import(paths));
}

void ProjectBinding::Watch(ProjectImport* import)
{
    auto* const progress = new QProgressDialog(mWindow);
    progress->setObjectName(QStringLiteral("importProgress"));
    progress->setWindowTitle(tr("Import"));
    progress->setLabelText(tr("Looking for media…"));
    progress->setMinimumDuration(ProgressDelay);
    progress->setAutoClose(false);
    progress->setAutoReset(false);
    progress->setRange(0, 0);
    progress->setValue(0);
    connect(progress, SIGNAL(canceled()), import, SLOT(Cancel()));
    connect(import, &ProjectImport::Progressed, progress,
            [progress](int done, int total, const QString& path)
            {
                progress->setLabelText(tr("Reading %1").arg(QFileInfo(path).fileName()));
                progress->setMaximum(total);
                progress->setValue(done);
            });
    connect(import, &ProjectImport::Finished, this,
            [this, progress](const ProjectImport::Result& result)
            {
                progress->disconnect();
                progress->deleteLater();
                TellErrors(result.errors);
                Q_EMIT Updated();
            });
}

void ProjectBinding::TellErrors(const QStringList& errors)
{
    for (const QString& error : errors)
    {
        Logger::GetInstance()->Error(error);
        Q_EMIT OpenFailed(error);
    }
}

void ProjectBinding::OpenMedia(const QStringList& paths, int viewer)
{
    if (paths.isEmpty())
        return;
    // The first is shown as soon as it is read, however many there are; the others follow it in the project.
    const QString& first = paths.first();
    const QStringList others = paths.mid(1);
    const auto known = mProject->FindSourceByPath(first);
    if (known && !known->IsMissing())
    {
        OpenBeside(others);
        ProjectImport::Result result;
        result.sources = {known->GetID()};
        OnOpened(result, viewer);
        return;
    }
    const ProjectImport* const import = mProject->Import({first}, QUuid(), {}, true);
    connect(import, &ProjectImport::Finished, this,
            [this, viewer, others](const ProjectImport::Result& result)
            {
                TellErrors(result.errors);
                OpenBeside(others);
                OnOpened(result, viewer);
            });
}

void ProjectBinding::OpenBeside(const QStringList& paths)
{
    if (paths.isEmpty())
        return;
    ProjectImport* const import = mProject->Import(paths, QUuid(), {}, true);
    connect(import, &ProjectImport::Finished, this,
            [this](const ProjectImport::Result& result) { OnOpened(result, -1); });
    Watch(import);
}

void ProjectBinding::OnOpened(const ProjectImport::Result& result, int viewer)
{
    const auto first = result.sources.isEmpty() ? nullptr : mProject->FindSource(result.sources.first());
    if (result.openMedium >= 0)
        mPlayback->Lanes().TakeOver(first ? first->GetMediaSource() : nullptr, result.openMedium);
    // Media that are opened beside others go to viewer A only while nothing is there.
    const auto shown = mPlayback->TimelineOf(0);
    if (viewer < 0 && (!shown || shown->FrameCount() == 0) && !mProject->IsReading())
        viewer = 0;
    if (first && viewer >= 0)
        Q_EMIT ShowRequested(first, viewer);
    for (const QUuid& id : result.sources)
    {
        if (const auto source = mProject->FindSource(id))
            Q_EMIT MediumOpened(source);
    }
    Q_EMIT Updated();
}

void ProjectBinding::ActivateDefault()
{
    const auto timeline = mProject->DefaultTimeline();
    if (timeline && Settings::alwaysActivateDefaultTimeline)
        Q_EMIT ShowRequested(timeline, 0);
}

void ProjectBinding::OnReset()
{
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
        Q_EMIT ShowRequested(nullptr, viewer);
    ActivateDefault();
    Q_EMIT Updated();
}

void ProjectBinding::OnChanged()
{
    // What has left the project leaves the viewers.
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline> shown = mPlayback->TimelineOf(viewer);
        if (shown && mProject->Find(shown->GetID()) != shown)
            Q_EMIT ShowRequested(nullptr, viewer);
    }
    Q_EMIT Updated();
}

void ProjectBinding::OnRefused(const QString& reason)
{
    Logger::GetInstance()->Warning(reason);
}

void ProjectBinding::OnSourceFailed()
{
    QSet<QUuid> failed;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
    {
        const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->TimelineOf(viewer);
        if (!timeline)
            continue;
        for (const TimelineSegment& segment : timeline->Segments())
        {
            if (mPlayback->Lanes().HasFailed(*segment.source))
                failed.insert(segment.source->GetID());
        }
    }
    for (const QUuid& id : failed)
        mProject->NoteMissing(id);
}
