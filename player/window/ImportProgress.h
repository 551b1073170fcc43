// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectImport.h"

#include <QFrame>
#include <QList>
#include <QPointer>
#include <QTimer>

class QLabel;
class QProgressBar;
class QPushButton;

/// A strip that shows how far the imports of media are and takes a cancel; hidden while there is none, and
/// for short ones. What couldn't be read goes to the log.
class ImportProgress : public QFrame
{
    Q_OBJECT

public:
    explicit ImportProgress(QWidget* parent = nullptr);

public Q_SLOTS:
    /// Shows @p import until it has finished. It stays its project's.
    void Follow(ProjectImport* import);
    /// Ends all imports that are shown.
    void Cancel();

private Q_SLOTS:
    void OnProgressed(int done, int total, const QString& path);
    void OnFinished(const ProjectImport::Result& result);

private:
    struct Import
    {
        QPointer<ProjectImport> import;
        int done = 0;
        int total = 0;
    };

    void UpdateBar();

    QLabel* mLabel;
    QProgressBar* mBar;
    QPushButton* mCancelButton;
    QTimer mShowTimer;
    QList<Import> mImports;
};
