// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

/// An import that goes on behind: reads the folders, then the media, then changes the project in one step.
class ProjectImport : public QObject
{
    Q_OBJECT

public:
    /// How an import ended.
    struct Result
    {
        /// The timelines of the sources, in the order of the paths; those that the project had before too.
        QList<QUuid> sources;
        /// The elements, if the sources were imported into a timeline.
        QList<QUuid> elements;
        /// One text for each file that can't be read; names the file and the reason.
        QStringList errors;
        /// The first source's medium, which the loader still has open under this number, after an import for
        /// viewing; -1 for none. Who hears Finished() closes it or hands it on.
        int openMedium = -1;
        bool cancelled = false;
    };

    using QObject::QObject;

    /// Whether Finished() is still to come.
    virtual bool IsRunning() const = 0;

public Q_SLOTS:
    /// Ends the import; nothing of it stays in the project. Finished() follows.
    virtual void Cancel() = 0;

Q_SIGNALS:
    /// @p done media of @p total are read (0 of 0 while folders are still being looked through); @p path is
    /// the one that is read now.
    void Progressed(int done, int total, const QString& path);
    /// The import is done, and deletes itself next.
    void Finished(const ProjectImport::Result& result);
};
