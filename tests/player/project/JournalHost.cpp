// SPDX-License-Identifier: MIT
// A process that edits a project with a journal until it is killed. It tells on its standard output, a line
// each, what the project is: "state TIME HASH" after each change, "stroke TIME POINTS" while it draws. It
// ends by itself after a while, in case nobody kills it.
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectJournal.h"
#include "project/ProjectSamples.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QTimer>

#include <array>
#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace
{

constexpr int LifeLimit = 20000;

class Host : public QObject
{
public:
    Host(const QString& folder, quint32 seed) : mRandom(seed), mJournal(&mProject, folder)
    {
        mJournal.SetPlaceOfEdit([this] { return mEdit; });
        mSource = mProject.AddSource(ProjectSamples::Medium(QStringLiteral("drawn.mov"), 100));
        TellState();
        connect(&mTimer, &QTimer::timeout, this, [this] { Step(); });
        mTimer.start(5);
    }

private:
    void Step()
    {
        if (mEdit.frame > 0)
        {
            Draw();
            return;
        }
        const bool drawnIsThere = mProject.Find(mSource) != nullptr;
        if (drawnIsThere && mRandom.bounded(12) == 0)
        {
            BeginStroke();
            return;
        }
        if (mRandom.bounded(6) == 0)
            mProject.UndoStack()->undo();
        else
            ProjectSamples::ChangeAtRandom(mProject, mRandom);
        TellState();
    }

    void BeginStroke()
    {
        mEdit = {mSource, mRandom.bounded(1, 100)};
        mLeft = mRandom.bounded(3) == 0 ? 1000 : mRandom.bounded(10, 80);
        AnnotationStore& annotations = *mProject.FindTimeline(mSource)->Annotations();
        mBefore = annotations.Drawings(mEdit.frame);
        mStroke = ProjectSamples::Stroke(mRandom, 1);
    }

    void Draw()
    {
        const std::shared_ptr<AnnotationStore> annotations = mProject.FindTimeline(mSource)->Annotations();
        mStroke.points.append(QPointF(mRandom.generateDouble(), mRandom.generateDouble()));
        annotations->SetDrawings(mEdit.frame, mBefore + QList<DrawData>{mStroke});
        if (--mLeft > 0)
        {
            Tell("stroke", QByteArray::number(static_cast<qulonglong>(mStroke.id)) + ' ' +
                               QByteArray::number(mStroke.points.size()));
            return;
        }
        annotations->SetDrawings(mEdit.frame, mBefore);
        const int frame = mEdit.frame;
        mEdit = {};
        mProject.SetDrawings(mSource, frame, mBefore + QList<DrawData>{mStroke}, QStringLiteral("Draw"));
        TellState();
    }

    void TellState()
    {
        Tell("state",
             QCryptographicHash::hash(ProjectSamples::Written(mProject), QCryptographicHash::Md5).toHex());
    }

    static void Tell(const char* what, const QByteArray& value)
    {
        std::printf("%s %lld %s\n", what, static_cast<long long>(QDateTime::currentMSecsSinceEpoch()),
                    value.constData());
        std::fflush(stdout);
    }

    QRandomGenerator mRandom;
    Project mProject;
    ProjectJournal mJournal;
    QTimer mTimer;
    QUuid mSource;
    ProjectJournal::Place mEdit;
    QList<DrawData> mBefore;
    DrawData mStroke;
    int mLeft = 0;
};

} // namespace

int main(int argc, char** argv)
{
    // Nobody waits for them: who is killed is gone at once.
    std::signal(SIGCHLD, SIG_IGN);
    std::array<char, 4096> folder{};
    unsigned seed = 0;
    while (std::scanf("%4095s %u", folder.data(), &seed) == 2)
    {
        const pid_t child = fork();
        if (child != 0)
        {
            std::printf("%d\n", static_cast<int>(child));
            std::fflush(stdout);
            continue;
        }
        const QByteArray told = QByteArray(folder.data()) + ".told";
        if (!std::freopen(told.constData(), "w", stdout))
            return 2;
        QCoreApplication application(argc, argv);
        Host host(QString::fromLocal8Bit(folder.data()), seed);
        QTimer::singleShot(LifeLimit, &application, [] { std::_Exit(3); });
        return QCoreApplication::exec();
    }
    return 0;
}
