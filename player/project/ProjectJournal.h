// SPDX-License-Identifier: MIT
#pragma once

#include "project/JournalFile.h"
#include "project/ProjectChange.h"

#include <QDateTime>
#include <QHash>
#include <QLockFile>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class Project;

/// Keeps what a project's file doesn't hold yet: every change as it is made, and what is being drawn several
/// times a second. When the process ends without closing it, the next one finds it and can take it over.
///
/// It writes a file of its own into a folder that all players of the user share: first the project as it
/// was saved last, then a record for each change. A lock file beside it tells that its process lives.
class ProjectJournal : public QObject
{
    Q_OBJECT

public:
    /// How often what is being drawn is looked at, in milliseconds.
    static constexpr int Interval = 200;

    /// A frame of a timeline.
    struct Place
    {
        QUuid timeline;
        int frame = 0;
    };
    /// Tells where something is being drawn or typed just now; a null timeline stands for nowhere.
    using PlaceOfEdit = std::function<Place()>;

    /// A journal whose process has ended. As long as this is kept no other process takes it.
    struct Abandoned
    {
        QString path;
        /// The project's file; empty for an untitled project.
        QString projectPath;
        /// When it was written last.
        QDateTime time;
        std::shared_ptr<QLockFile> lock;
    };
    struct Recovered
    {
        ProjectContent content;
        QString projectPath;
    };

    /// Writes the journal of @p project into @p folder, which is made if it isn't there, from now on.
    ProjectJournal(Project* project, const QString& folder, QObject* parent = nullptr);
    /// Removes the file: who lets the journal go lets go what it holds.
    ~ProjectJournal() override;

    void SetPlaceOfEdit(PlaceOfEdit placeOfEdit);
    /// The journal's file; empty while it can't be written.
    QString Path() const;

    /// The user's folder of journals.
    static QString DefaultFolder();
    /// The journals in @p folder whose processes have ended with unsaved changes, the latest first. Those
    /// that hold nothing are removed.
    static QList<Abandoned> FindAbandoned(const QString& folder);
    /// The project as the journal at @p path left it; none if not even its beginning can be read, @p error
    /// then says why.
    static std::optional<Recovered> Read(const QString& path, QString* error);
    /// Removes the file of @p abandoned and its lock.
    static void Discard(const Abandoned& abandoned);

Q_SIGNALS:
    /// Changes can't be kept from now on; @p text says which file is concerned and why. Comes once.
    void Failed(const QString& text);

private Q_SLOTS:
    void Begin();
    void OnChangeApplied(const ProjectChange& change);
    void WriteEdits();

private:
    using FrameKey = QPair<QUuid, int>;

    void Write(const QJsonObject& record);
    void WriteDrawings(const QUuid& timeline, int frame, const QList<DrawData>& drawings);
    void Fail();

    Project* mProject;
    QString mFolder;
    JournalFile mFile;
    std::unique_ptr<QLockFile> mLock;
    QTimer mTimer;
    PlaceOfEdit mPlaceOfEdit;
    Place mEdited;
    /// Drawings as they were written last, by timeline and frame.
    QHash<FrameKey, QList<DrawData>> mWritten;
    qint64 mBaseSize = 0;
    bool mHasFailed = false;
};
