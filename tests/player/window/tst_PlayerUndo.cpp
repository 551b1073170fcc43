// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QRandomGenerator>
#include <QtTest>

/// Undo and redo of whatever annotating and bookmarking does, in long random runs.
class tst_PlayerUndo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void EveryStepIsTakenBackAndDoneAgain_data();
    void EveryStepIsTakenBackAndDoneAgain();
    void ANewStepForgetsWhatWasUndone();
    void UndoInTheMiddleOfAStrokeTakesTheStrokeAlone();
    void EachToolIsUndoneOnScreen_data();
    void EachToolIsUndoneOnScreen();

private:
    void Run(const char* command) { mWindow->Commands()->Run(QLatin1String(command)); }
    /// Everything that undo is about, as a text.
    QString State() const;
    void DoSomething(QRandomGenerator* random);

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerUndo::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
}

void tst_PlayerUndo::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

QString tst_PlayerUndo::State() const
{
    ProjectTimeline& timeline = *mWindow->Playback()->TimelineOf(0);
    QStringList lines;
    for (const int frame : timeline.Annotations()->AnnotatedFrames())
    {
        for (const DrawData& drawing : timeline.Annotations()->Drawings(frame))
        {
            QString line = QStringLiteral("frame %1 drawing %2 type %3 width %4 %5 \"%6\"")
                               .arg(frame)
                               .arg(drawing.id)
                               .arg(drawing.type)
                               .arg(static_cast<double>(drawing.width))
                               .arg(drawing.color.name(QColor::HexArgb), drawing.text);
            for (const QPointF& point : drawing.points)
                line += QStringLiteral(" %1,%2").arg(point.x()).arg(point.y());
            lines << line;
        }
    }
    QStringList marks;
    for (const TimeBookmark& bookmark : timeline.GetBookmarks()->GetTimeBookmarks())
        marks << QStringLiteral("mark %1 with %2").arg(bookmark.time).arg(bookmark.drawings.size());
    for (const RangeBookmark& bookmark : timeline.GetBookmarks()->GetRangeBookmarks())
        marks << QStringLiteral("range %1 to %2").arg(bookmark.startTime).arg(bookmark.endTime);
    for (const int frame : timeline.MarkedFrames())
        marks << QStringLiteral("user's mark %1").arg(frame);
    marks.sort();
    return (lines + marks).join(QLatin1Char('\n'));
}

void tst_PlayerUndo::DoSomething(QRandomGenerator* random)
{
    static const char* const tools[] = {"annotate.pencil", "annotate.eraser",    "annotate.arrow",
                                        "annotate.oval",   "annotate.rectangle", "annotate.text"};
    static const char* const commands[] = {
        "bookmark.frame",    "bookmark.add",         "bookmark.remove",     "bookmark.range",
        "bookmark.addRange", "bookmark.removeRange", "annotate.clearFrame", "annotate.deleteBookmark"};
    const int frame = random->bounded(1, 7);
    mWindow->Playback()->SeekFrame(frame);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
    if (random->bounded(4) == 0)
        Run(random->bounded(2) ? "range.start" : "range.end");
    if (random->bounded(2))
    {
        Run(commands[random->bounded(8)]);
        return;
    }
    Settings::drawColor = QColor::fromRgba(random->generate());
    Run(tools[random->bounded(6)]);
    const auto place = [random] { return QPoint(random->bounded(100, 700), random->bounded(100, 350)); };
    PlayerProbe::Drag(mWindow.get(), place(), place(), 1);
    if (Settings::textToolActive)
    {
        QTest::keyClicks(mWindow->Viewer(), QStringLiteral("text %1").arg(random->bounded(100)));
        QTest::keyClick(mWindow->Viewer(), Qt::Key_Escape);
    }
}

void tst_PlayerUndo::EveryStepIsTakenBackAndDoneAgain_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_PlayerUndo::EveryStepIsTakenBackAndDoneAgain()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    // The states after each step; a step that changes nothing is none.
    QStringList states{State()};
    int position = 0;
    for (int step = 0; step < 60; ++step)
    {
        const int choice = random.bounded(10);
        if (choice < 6)
        {
            DoSomething(&random);
            if (State() == states[position])
                continue;
            while (states.size() > position + 1)
                states.removeLast();
            states << State();
            ++position;
        }
        else if (choice < 8)
        {
            Run("annotate.undo");
            position = std::max(position - 1, 0);
        }
        else
        {
            Run("annotate.redo");
            position = std::min(position + 1, states.size() - 1);
        }
        QCOMPARE(State(), states[position]);
    }
    while (position > 0)
    {
        Run("annotate.undo");
        QCOMPARE(State(), states[--position]);
    }
    QVERIFY(State().isEmpty());
    while (position + 1 < states.size())
    {
        Run("annotate.redo");
        QCOMPARE(State(), states[++position]);
    }
}

void tst_PlayerUndo::ANewStepForgetsWhatWasUndone()
{
    Run("bookmark.add");
    Run("annotate.undo");
    Run("annotate.pencil");
    PlayerProbe::Drag(mWindow.get(), QPoint(200, 200), QPoint(300, 300));
    const QString drawn = State();
    Run("annotate.redo");
    QCOMPARE(State(), drawn);
}

void tst_PlayerUndo::UndoInTheMiddleOfAStrokeTakesTheStrokeAlone()
{
    Run("annotate.oval");
    PlayerProbe::Drag(mWindow.get(), QPoint(200, 200), QPoint(300, 300));
    const QImage before = PlayerProbe::ScreenOfViewer(mWindow.get());
    const QString drawn = State();
    InputEvents::Press(mWindow->Viewer(), QPoint(350, 200));
    InputEvents::Move(mWindow->Viewer(), QPoint(450, 300), Qt::LeftButton);
    QTest::keyClick(mWindow.get(), Qt::Key_Escape);
    InputEvents::Release(mWindow->Viewer(), QPoint(450, 300));
    PlayerProbe::LeaveViewers(mWindow.get());
    QCOMPARE(State(), drawn);
    const QByteArray difference = PictureDifference(PlayerProbe::ScreenOfViewer(mWindow.get()), before);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerUndo::EachToolIsUndoneOnScreen_data()
{
    QTest::addColumn<QString>("tool");
    for (const char* const tool : {"pencil", "eraser", "arrow", "oval", "rectangle", "text"})
        QTest::newRow(tool) << QString::fromLatin1(tool);
}

void tst_PlayerUndo::EachToolIsUndoneOnScreen()
{
    QFETCH(QString, tool);
    Run("annotate.pencil");
    PlayerProbe::Drag(mWindow.get(), QPoint(200, 260), QPoint(600, 260));
    const QImage before = PlayerProbe::ScreenOfViewer(mWindow.get());
    Run(qPrintable(QStringLiteral("annotate.") + tool));
    PlayerProbe::Drag(mWindow.get(), QPoint(300, 200), QPoint(450, 330));
    if (tool == QLatin1String("text"))
    {
        QTest::keyClicks(mWindow->Viewer(), QStringLiteral("typed"));
        QTest::keyClick(mWindow->Viewer(), Qt::Key_Escape);
    }
    const QImage after = PlayerProbe::ScreenOfViewer(mWindow.get());
    QVERIFY(!PictureDifference(after, before).isEmpty());
    for (int round = 0; round < 2; ++round)
    {
        Run("annotate.undo");
        QByteArray difference = PictureDifference(PlayerProbe::ScreenOfViewer(mWindow.get()), before);
        QVERIFY2(difference.isEmpty(), difference);
        Run("annotate.redo");
        difference = PictureDifference(PlayerProbe::ScreenOfViewer(mWindow.get()), after);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

static const TestRegistration<tst_PlayerUndo> PlayerUndoRegistration;

#include "tst_PlayerUndo.moc"
