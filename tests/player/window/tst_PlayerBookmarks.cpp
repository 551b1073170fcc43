// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QtTest>

/// Bookmarks and the playback range, by the buttons of their bar and of the others.
class tst_PlayerBookmarks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void FramesAreMarkedAndUnmarked();
    void RangesAreMarkedAndUnmarked();
    void ARangeIsRemovedFromWithin();
    void TheRangeFollowsItsButtons();
    void FramesAreVisited();
    void RangesAreVisited();
    void NextAndPreviousStopAtTheNearest_data();
    void NextAndPreviousStopAtTheNearest();
    void NothingFurtherLeavesThePlayhead();
    void ClearingAFrameKeepsItsBookmark();
    void DeletingABookmarkTakesItsDrawings();
    void RemovingABookmarkTakesItsDrawings();
    void MarkingADrawnFrameTakesNothing();
    void UndoGoesToTheChangedFrame();
    void AddingTwiceIsOneStep();
    void WithoutAMediumNothingHappens();

private:
    void Click(const char* name) { PlayerProbe::Click(PlayerProbe::Part(mWindow.get(), name)); }
    void Run(const char* command) { QVERIFY(mWindow->Commands()->Run(QLatin1String(command))); }
    void Go(int frame);
    void Draw();
    QList<int> MarkedFrames() const;
    QList<std::pair<int, int>> MarkedRanges() const;
    int Frame() const { return mWindow->Playback()->CurrentFrame(); }
    ProjectTimeline& Timeline() const { return *mWindow->Playback()->TimelineOf(0); }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerBookmarks::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
}

void tst_PlayerBookmarks::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerBookmarks::Go(int frame)
{
    mWindow->Playback()->SeekFrame(frame);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
}

void tst_PlayerBookmarks::Draw()
{
    Run("annotate.pencil");
    PlayerProbe::Drag(mWindow.get(), QPoint(300, 250), QPoint(500, 330));
    Run("annotate.draw");
}

QList<int> tst_PlayerBookmarks::MarkedFrames() const
{
    QList<int> frames;
    for (const TimeBookmark& bookmark : Timeline().GetBookmarks()->GetTimeBookmarks())
        frames << Timeline().TimeToFrame(bookmark.time);
    std::sort(frames.begin(), frames.end());
    return frames;
}

QList<std::pair<int, int>> tst_PlayerBookmarks::MarkedRanges() const
{
    QList<std::pair<int, int>> ranges;
    for (const RangeBookmark& bookmark : Timeline().GetBookmarks()->GetRangeBookmarks())
        ranges << std::make_pair(Timeline().TimeToFrame(bookmark.startTime),
                                 Timeline().TimeToFrame(bookmark.endTime));
    std::sort(ranges.begin(), ranges.end());
    return ranges;
}

void tst_PlayerBookmarks::FramesAreMarkedAndUnmarked()
{
    Go(20);
    Click("addBookmarkButton");
    Go(7);
    Click("addBookmarkButton");
    QCOMPARE(MarkedFrames(), (QList<int>{7, 20}));
    Click("removeBookmarkButton");
    QCOMPARE(MarkedFrames(), (QList<int>{20}));
    Go(8);
    Click("removeBookmarkButton");
    QCOMPARE(MarkedFrames(), (QList<int>{20}));
    Run("annotate.undo");
    QCOMPARE(MarkedFrames(), (QList<int>{7, 20}));
    Run("annotate.undo");
    Run("annotate.undo");
    QCOMPARE(MarkedFrames(), QList<int>());
    Run("annotate.redo");
    QCOMPARE(MarkedFrames(), (QList<int>{20}));
}

void tst_PlayerBookmarks::RangesAreMarkedAndUnmarked()
{
    Go(10);
    Click("rangeStartToCurrentButton");
    Go(19);
    Click("rangeEndToCurrentButton");
    Click("addRangeBookmarkButton");
    QCOMPARE(MarkedRanges(), (QList<std::pair<int, int>>{{10, 19}}));
    Click("addRangeBookmarkButton");
    QCOMPARE(MarkedRanges().size(), 1);
    Click("removeRangeBookmarkButton");
    QVERIFY(MarkedRanges().isEmpty());
    Run("annotate.undo");
    QCOMPARE(MarkedRanges(), (QList<std::pair<int, int>>{{10, 19}}));
    Run("annotate.undo");
    QVERIFY(MarkedRanges().isEmpty());
    Run("annotate.redo");
    Run("annotate.redo");
    QVERIFY(MarkedRanges().isEmpty());
}

void tst_PlayerBookmarks::ARangeIsRemovedFromWithin()
{
    for (const auto& [first, last] : {std::make_pair(5, 40), std::make_pair(10, 20)})
        Timeline().GetBookmarks()->AddRangeBookmark(
            RangeBookmark(Timeline().FrameToTime(first), Timeline().FrameToTime(last)));
    Go(50);
    Click("removeRangeBookmarkButton");
    QCOMPARE(MarkedRanges().size(), 2);
    Go(15);
    Click("removeRangeBookmarkButton");
    QCOMPARE(MarkedRanges(), (QList<std::pair<int, int>>{{5, 40}}));
    Go(40);
    Click("removeRangeBookmarkButton");
    QVERIFY(MarkedRanges().isEmpty());
}

void tst_PlayerBookmarks::TheRangeFollowsItsButtons()
{
    const PlaybackRange& range = mWindow->Playback()->Range();
    Go(30);
    Click("rangeStartToCurrentButton");
    QCOMPARE(range.first, 30);
    QCOMPARE(range.last, 60);
    Go(12);
    Click("rangeEndToCurrentButton");
    QCOMPARE(range.first, 12);
    QCOMPARE(range.last, 12);
    Go(20);
    Click("rangeStartToCurrentButton");
    QCOMPARE(range.first, 20);
    QCOMPARE(range.last, 20);
    Click("resetRangeButton");
    QCOMPARE(range.first, 1);
    QCOMPARE(range.last, 60);
}

void tst_PlayerBookmarks::FramesAreVisited()
{
    for (const int frame : {40, 12, 25})
        Timeline().SetMarked(frame, true);
    Timeline().GetBookmarks()->AddRangeBookmark(
        RangeBookmark(Timeline().FrameToTime(15), Timeline().FrameToTime(35)));
    for (const int expected : {12, 25, 40, 40})
    {
        Click("nextBookmarkButton");
        if (Frame() == 15 || Frame() == 35)
            QFAIL("a range's end is no bookmarked frame");
        QCOMPARE(Frame(), expected);
    }
    for (const int expected : {25, 12, 12})
    {
        PlayerProbe::Click(PlayerProbe::Part(mWindow.get(), "bookmarksBar")
                               ->findChild<QWidget*>(QStringLiteral("previousBookmarkButton")));
        QCOMPARE(Frame(), expected);
    }
}

void tst_PlayerBookmarks::RangesAreVisited()
{
    for (const auto& [first, last] : {std::make_pair(30, 50), std::make_pair(10, 20), std::make_pair(10, 15)})
        Timeline().GetBookmarks()->AddRangeBookmark(
            RangeBookmark(Timeline().FrameToTime(first), Timeline().FrameToTime(last)));
    const PlaybackRange& range = mWindow->Playback()->Range();
    for (const auto& [first, last] :
         {std::make_pair(10, 15), std::make_pair(10, 20), std::make_pair(30, 50), std::make_pair(30, 50)})
    {
        Click("nextRangeBookmarkButton");
        QCOMPARE(std::make_pair(range.first, range.last), std::make_pair(first, last));
        QCOMPARE(Frame(), first);
    }
    for (const auto& [first, last] : {std::make_pair(10, 20), std::make_pair(10, 15), std::make_pair(10, 15)})
    {
        Click("previousRangeBookmarkButton");
        QCOMPARE(std::make_pair(range.first, range.last), std::make_pair(first, last));
        QCOMPARE(Frame(), first);
    }
    // From elsewhere the nearest start counts.
    Click("resetRangeButton");
    Go(40);
    Click("previousRangeBookmarkButton");
    QCOMPARE(Frame(), 30);
    Click("resetRangeButton");
    Go(25);
    Click("previousRangeBookmarkButton");
    QCOMPARE(std::make_pair(range.first, range.last), std::make_pair(10, 20));
}

void tst_PlayerBookmarks::NextAndPreviousStopAtTheNearest_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("next");
    QTest::addColumn<int>("previous");
    // Elements begin on 1, 61 and 121; frames 30 and 61 are marked, and the range from 70 to 90.
    QTest::newRow("an element's start to a bookmark") << 1 << 30 << 1;
    QTest::newRow("a bookmark") << 30 << 61 << 1;
    QTest::newRow("between") << 45 << 61 << 30;
    QTest::newRow("an element's start that is marked") << 61 << 70 << 30;
    QTest::newRow("within a range") << 80 << 90 << 70;
    QTest::newRow("behind a range") << 100 << 121 << 90;
    QTest::newRow("behind all") << 150 << 150 << 121;
}

void tst_PlayerBookmarks::NextAndPreviousStopAtTheNearest()
{
    QFETCH(int, from);
    QFETCH(int, next);
    QFETCH(int, previous);
    const auto source = std::dynamic_pointer_cast<MediaTimeline>(mWindow->Playback()->TimelineOf(0));
    const auto cut = std::make_shared<ElementTimeline>(QStringLiteral("cut"));
    cut->SetElements({std::make_shared<ElementObject>(source), std::make_shared<ElementObject>(source),
                      std::make_shared<ElementObject>(source)});
    mWindow->Playback()->SetTimeline(0, cut);
    cut->SetMarked(30, true);
    cut->SetMarked(61, true);
    cut->GetBookmarks()->AddRangeBookmark(RangeBookmark(cut->FrameToTime(70), cut->FrameToTime(90)));
    QWidget* const transport = PlayerProbe::Part(mWindow.get(), "transport");
    mWindow->Playback()->SeekFrame(from);
    PlayerProbe::Click(transport->findChild<QWidget*>(QStringLiteral("nextBookmarkButton")));
    QCOMPARE(Frame(), next);
    mWindow->Playback()->SeekFrame(from);
    PlayerProbe::Click(transport->findChild<QWidget*>(QStringLiteral("previousBookmarkButton")));
    QCOMPARE(Frame(), previous);
    mWindow->Playback()->SetTimeline(0, source);
}

void tst_PlayerBookmarks::NothingFurtherLeavesThePlayhead()
{
    Go(20);
    QTest::keyClick(mWindow.get(), Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(Frame(), 20);
    // The start of the one element is an edit point.
    QTest::keyClick(mWindow.get(), Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(Frame(), 1);
    Click("nextRangeBookmarkButton");
    QCOMPARE(Frame(), 1);
}

void tst_PlayerBookmarks::ClearingAFrameKeepsItsBookmark()
{
    Go(5);
    Draw();
    QCOMPARE(MarkedFrames(), (QList<int>{5}));
    Run("annotate.draw");
    Click("clearButton");
    QVERIFY(Timeline().Annotations()->AnnotatedFrames().isEmpty());
    QCOMPARE(MarkedFrames(), (QList<int>{5}));
    QVERIFY(Timeline().GetBookmarks()->GetTimeBookmarks().at(0).drawings.isEmpty());
    Run("annotate.undo");
    QCOMPARE(Timeline().Annotations()->Drawings(5).size(), 1);
    QCOMPARE(Timeline().GetBookmarks()->GetTimeBookmarks().at(0).drawings.size(), 1);
    Run("annotate.undo");
    QVERIFY(MarkedFrames().isEmpty());
    Run("annotate.redo");
    Run("annotate.redo");
    QCOMPARE(MarkedFrames(), (QList<int>{5}));
    QVERIFY(Timeline().Annotations()->AnnotatedFrames().isEmpty());
}

void tst_PlayerBookmarks::DeletingABookmarkTakesItsDrawings()
{
    Go(5);
    Click("addBookmarkButton");
    Draw();
    Run("annotate.draw");
    Click("clearAllButton");
    QVERIFY(MarkedFrames().isEmpty());
    QVERIFY(Timeline().Annotations()->AnnotatedFrames().isEmpty());
    Run("annotate.undo");
    QCOMPARE(MarkedFrames(), (QList<int>{5}));
    QCOMPARE(Timeline().Annotations()->Drawings(5).size(), 1);
    Run("annotate.undo");
    QCOMPARE(MarkedFrames(), (QList<int>{5}));
    QVERIFY(Timeline().Annotations()->AnnotatedFrames().isEmpty());
}

void tst_PlayerBookmarks::RemovingABookmarkTakesItsDrawings()
{
    Go(5);
    Draw();
    Click("removeBookmarkButton");
    QVERIFY(MarkedFrames().isEmpty());
    QVERIFY(Timeline().Annotations()->AnnotatedFrames().isEmpty());
    Run("annotate.undo");
    QCOMPARE(Timeline().Annotations()->AnnotatedFrames(), (QVector<int>{5}));
}

void tst_PlayerBookmarks::MarkingADrawnFrameTakesNothing()
{
    Go(5);
    Draw();
    for (int press = 0; press < 2; ++press)
    {
        QTest::keyClick(mWindow.get(), Qt::Key_B);
        QCOMPARE(MarkedFrames(), (QList<int>{5}));
        QCOMPARE(Timeline().Annotations()->AnnotatedFrames(), (QVector<int>{5}));
    }
}

void tst_PlayerBookmarks::UndoGoesToTheChangedFrame()
{
    Go(10);
    Click("addBookmarkButton");
    Go(40);
    Run("annotate.undo");
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 10);
    Go(40);
    Run("annotate.redo");
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 10);
}

void tst_PlayerBookmarks::AddingTwiceIsOneStep()
{
    Click("addBookmarkButton");
    Click("addBookmarkButton");
    Run("annotate.undo");
    QVERIFY(MarkedFrames().isEmpty());
}

void tst_PlayerBookmarks::WithoutAMediumNothingHappens()
{
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    for (QWidget* const button : PlayerProbe::Part(mWindow.get(), "bookmarksBar")->findChildren<QWidget*>())
        PlayerProbe::Click(button);
    Run("annotate.text");
    PlayerProbe::Drag(mWindow.get(), QPoint(100, 100), QPoint(150, 150));
    for (const char* const command : {"annotate.eyedropper", "annotate.oval", "annotate.pencil"})
    {
        Run(command);
        PlayerProbe::Drag(mWindow.get(), QPoint(100, 100), QPoint(150, 150));
    }
    for (const char* const command : {"annotate.clearFrame", "annotate.deleteBookmark", "annotate.undo",
                                      "annotate.redo", "bookmark.next", "bookmark.nextRange", "range.reset"})
        Run(command);
    QVERIFY(!Settings::textToolActive);
}

static const TestRegistration<tst_PlayerBookmarks> PlayerBookmarksRegistration;

#include "tst_PlayerBookmarks.moc"
