// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QRandomGenerator>
#include <QtTest>

/// Timelines of several elements, played and sought in the player.
class tst_PlayerElements : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void EveryFrameOfAMixedTimelineShowsItsPicture();
    void PlaysAcrossElementsWithoutMissingAFrame();
    void TheSameMovieTwiceAndInBothViewers();
    void ElementsThatAreMissingShowNothing();
    void AFileThatIsGoneIsReportedOnce();
    void ChangingElementsShowsTheNewPicture();
    void AnEmptyTimelineShowsNothing();
    void ManySourcesDoNotStayOpen();

private:
    std::shared_ptr<MediaTimeline> Source(const QString& path);
    /// The number on the picture of @p frame, told from the elements.
    int NumberOf(int frame) const;
    bool WaitForNumber(int number, int viewer = 0);

    std::unique_ptr<PlayerWindow> mWindow;
    std::shared_ptr<ElementTimeline> mTimeline;
};

namespace
{

const QStringList ShortGroups{QStringLiteral("-c:v"), QStringLiteral("libx264"),  QStringLiteral("-g"),
                              QStringLiteral("12"),   QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")};

QString OtherMovie()
{
    return NumberedMedia::Movie(QStringLiteral("elements_other.mp4"), 30, QStringLiteral("24"), ShortGroups,
                                QSize(320, 180));
}

QString FastMovie()
{
    return NumberedMedia::Movie(QStringLiteral("elements_fast.mp4"), 60, QStringLiteral("48"), ShortGroups,
                                QSize(320, 180));
}

std::shared_ptr<ElementObject> MakeElement(const std::shared_ptr<MediaTimeline>& source)
{
    return std::make_shared<ElementObject>(source);
}

} // namespace

void tst_PlayerElements::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    mTimeline = std::make_shared<ElementTimeline>(QStringLiteral("cut"));
}

void tst_PlayerElements::cleanup()
{
    mWindow.reset();
    mTimeline.reset();
}

std::shared_ptr<MediaTimeline> tst_PlayerElements::Source(const QString& path)
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    if (!reader)
        qWarning() << error;
    return reader ? std::make_shared<MediaTimeline>(
                        std::make_shared<const MediaSource>(QUuid::createUuid(), reader->Info()))
                  : nullptr;
}

int tst_PlayerElements::NumberOf(int frame) const
{
    int left = frame;
    for (const std::shared_ptr<ElementObject>& element : mTimeline->GetElements())
    {
        const MediaTimeline& source = *element->SourceTimeline();
        const bool isFast = source.Rate() == FrameRate{48, 1};
        const int count = isFast ? source.FrameCount() / 2 : source.Range().last - source.Range().first + 1;
        if (left <= count)
            return isFast ? 2 * left - 1 : source.Range().first + left - 1;
        left -= count;
    }
    return -1;
}

bool tst_PlayerElements::WaitForNumber(int number, int viewer)
{
    return QTest::qWaitFor([&] { return PlayerProbe::NumberOnScreen(mWindow.get(), viewer) == number; },
                           8000);
}

void tst_PlayerElements::EveryFrameOfAMixedTimelineShowsItsPicture()
{
    const auto sample = Source(PlayerProbe::SampleMovie());
    const auto other = Source(OtherMovie());
    other->SetRange({11, 20});
    mTimeline->SetElements({MakeElement(other), MakeElement(sample), MakeElement(Source(FastMovie()))});
    QCOMPARE(mTimeline->FrameCount(), 10 + 60 + 30);
    mWindow->Playback()->SetTimeline(0, mTimeline);
    QVERIFY(WaitForNumber(11));
    QRandomGenerator random(4);
    for (int i = 0; i < 60; ++i)
    {
        const int frame = random.bounded(1, mTimeline->FrameCount() + 1);
        mWindow->Playback()->SeekFrame(frame);
        QVERIFY2(WaitForNumber(NumberOf(frame)), qPrintable(QString::number(frame)));
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
    }
}

void tst_PlayerElements::PlaysAcrossElementsWithoutMissingAFrame()
{
    Settings::loopType = NoLoop;
    const auto other = Source(OtherMovie());
    mTimeline->SetElements({MakeElement(other), MakeElement(other), MakeElement(Source(FastMovie()))});
    mWindow->Playback()->SetTimeline(0, mTimeline);
    mWindow->Playback()->SetStepped(true);
    mWindow->Playback()->SetSpeed(8.0f);
    QVERIFY(WaitForNumber(1));
    QVector<int> shown{1};
    QVector<int> numbers{1};
    connect(mWindow->Playback(), &PlaybackController::PictureReady, mWindow.get(),
            [&](int, int frame, const ReadResult& result)
            {
                shown << frame;
                numbers << NumberedMedia::NumberIn(result.image);
            });
    mWindow->Playback()->Play(1);
    QTRY_VERIFY_WITH_TIMEOUT(!mWindow->Playback()->IsPlaying(), 30000);
    QCOMPARE(shown.size(), mTimeline->FrameCount());
    for (int frame = 1; frame <= mTimeline->FrameCount(); ++frame)
    {
        QCOMPARE(shown[frame - 1], frame);
        QCOMPARE(numbers[frame - 1], NumberOf(frame));
    }
}

void tst_PlayerElements::TheSameMovieTwiceAndInBothViewers()
{
    const auto sample = Source(PlayerProbe::SampleMovie());
    mTimeline->SetElements({MakeElement(Source(OtherMovie())), MakeElement(sample)});
    mWindow->SetLayout(Horizontal);
    mWindow->Playback()->SetTimeline(0, sample);
    mWindow->Playback()->SetTimeline(1, mTimeline);
    for (const int frame : {31, 5, 60, 44, 30, 45})
    {
        mWindow->Playback()->SeekFrame(frame);
        QVERIFY2(WaitForNumber(frame, 0), qPrintable(QString::number(frame)));
        QVERIFY2(WaitForNumber(NumberOf(frame), 1), qPrintable(QString::number(frame)));
    }
}

void tst_PlayerElements::ElementsThatAreMissingShowNothing()
{
    const auto other = Source(OtherMovie());
    MediaInfo lost = other->Info();
    lost.path = QStringLiteral("/nowhere/lost.mov");
    const auto missing =
        std::make_shared<MediaTimeline>(std::make_shared<const MediaSource>(QUuid::createUuid(), lost, true));
    mTimeline->SetElements({MakeElement(other), MakeElement(missing), MakeElement(other)});
    mWindow->Playback()->SetTimeline(0, mTimeline);
    QVERIFY(WaitForNumber(1));
    mWindow->Playback()->SeekFrame(45);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 45);
    QVERIFY(WaitForNumber(-1));
    mWindow->Playback()->SeekFrame(62);
    QVERIFY(WaitForNumber(2));
}

void tst_PlayerElements::AFileThatIsGoneIsReportedOnce()
{
    const auto other = Source(OtherMovie());
    MediaInfo lost = other->Info();
    lost.path = QStringLiteral("/nowhere/gone.mov");
    const auto gone =
        std::make_shared<MediaTimeline>(std::make_shared<const MediaSource>(QUuid::createUuid(), lost));
    mTimeline->SetElements({MakeElement(other), MakeElement(gone)});
    QStringList errors;
    connect(mWindow->Playback(), &PlaybackController::SourceFailed, mWindow.get(),
            [&](const QString& text) { errors << text; });
    mWindow->Playback()->SetTimeline(0, mTimeline);
    QVERIFY(WaitForNumber(1));
    for (const int frame : {40, 41, 12, 50})
    {
        mWindow->Playback()->SeekFrame(frame);
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
    }
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors.first().contains(QStringLiteral("/nowhere/gone.mov")), qPrintable(errors.first()));
}

void tst_PlayerElements::ChangingElementsShowsTheNewPicture()
{
    const auto other = Source(OtherMovie());
    const auto sample = Source(PlayerProbe::SampleMovie());
    mTimeline->SetElements({MakeElement(sample), MakeElement(other)});
    mWindow->Playback()->SetTimeline(0, mTimeline);
    mWindow->Playback()->SeekFrame(40);
    QVERIFY(WaitForNumber(40));
    mTimeline->SetElements({mTimeline->GetElements()[1], mTimeline->GetElements()[0]});
    mWindow->Playback()->RefreshTimeline(mTimeline.get());
    QVERIFY(WaitForNumber(10));
    mTimeline->SetElements({mTimeline->GetElements()[0]});
    mWindow->Playback()->RefreshTimeline(mTimeline.get());
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 30);
    QVERIFY(WaitForNumber(30));
    QCOMPARE(mWindow->Playback()->Range().last, 30);
}

void tst_PlayerElements::AnEmptyTimelineShowsNothing()
{
    mWindow->Playback()->SetTimeline(0, mTimeline);
    QVERIFY(WaitForNumber(-1));
    mWindow->Playback()->Play(1);
    QTest::qWait(100);
    mWindow->Playback()->Pause();
    mWindow->Playback()->SeekFrame(10);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 1);
    mTimeline->SetElements({MakeElement(Source(OtherMovie()))});
    mWindow->Playback()->RefreshTimeline(mTimeline.get());
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerElements::ManySourcesDoNotStayOpen()
{
    ElementTimeline::Elements elements;
    for (int i = 0; i < 20; ++i)
        elements.push_back(MakeElement(Source(OtherMovie())));
    mTimeline->SetElements(elements);
    mWindow->Playback()->SetTimeline(0, mTimeline);
    for (int i = 0; i < 20; ++i)
    {
        mWindow->Playback()->SeekFrame(30 * i + 7);
        QVERIFY(WaitForNumber(7));
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 30 * i + 7);
    }
    int open = 0;
    for (const std::shared_ptr<ElementObject>& element : elements)
    {
        for (const int copy : {0, 1})
            open += mWindow->Playback()->Lanes().Find(element->SourceTimeline()->GetMediaSource(), copy) >= 0;
    }
    QVERIFY2(open <= int(MediaLanes::IdleLimit) + 2, qPrintable(QString::number(open)));
    mWindow->Playback()->SeekFrame(3);
    QVERIFY(WaitForNumber(3));
}

static const TestRegistration<tst_PlayerElements> PlayerElementsRegistration;

#include "tst_PlayerElements.moc"
