// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "toolbars/BarProbe.h"
#include "toolbars/PlaybackControlWidget.h"

#include <QHBoxLayout>
#include <QtTest>

class tst_PlaybackControlWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mHost.reset(); }

    void ButtonsStandInTheirPlaces_data();
    void ButtonsStandInTheirPlaces();
    void LayoutIsTight();
    void ClickRaisesItsSignalAlone_data();
    void ClickRaisesItsSignalAlone();
    void ReleaseOutsideRaisesNothing();
    void StateChoosesThePictures_data();
    void StateChoosesThePictures();
    void RightClickOpensNothing();

private:
    PlaybackControlWidget* mBar = nullptr;
    std::unique_ptr<BarHost> mHost;
};

void tst_PlaybackControlWidget::init()
{
    mBar = new PlaybackControlWidget;
    mHost = std::make_unique<BarHost>(mBar, QRect(QPoint(20, 20), mBar->sizeHint()));
}

void tst_PlaybackControlWidget::ButtonsStandInTheirPlaces_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<QString>("tooltip");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isMirrored");
    QTest::addColumn<int>("side");
    QTest::newRow("seekStartButton") << 0 << "Go to Start"
                                     << "seekend" << true << 18;
    QTest::newRow("previousBookmarkButton") << 26 << "Previous Bookmark or Edit Point"
                                            << "nexttorvalen" << true << 17;
    QTest::newRow("stepBackwardsButton") << 52 << "Previous Frame"
                                         << "stepfwd" << true << 17;
    QTest::newRow("playBackwardsButton") << 78 << "Play Backwards/Pause"
                                         << "play" << true << 23;
    QTest::newRow("playForwardsButton") << 108 << "Play Forwards/Pause"
                                        << "play" << false << 23;
    QTest::newRow("stepForwardsButton") << 134 << "Next Frame"
                                        << "stepfwd" << false << 17;
    QTest::newRow("nextBookmarkButton") << 160 << "Next Bookmark or Edit Point"
                                        << "nexttorvalen" << false << 17;
    QTest::newRow("seekEndButton") << 186 << "Go to End"
                                   << "seekend" << false << 18;
}

void tst_PlaybackControlWidget::ButtonsStandInTheirPlaces()
{
    QFETCH(QString, tooltip);
    QFETCH(QString, icon);
    QFETCH(bool, isMirrored);
    QFETCH(int, side);
    const FlatButton* const button = BarProbe::Button(mBar, QTest::currentDataTag());
    QVERIFY(button);
    QFETCH(int, x);
    QCOMPARE(button->geometry(), QRect(x, 7, 26, 26));
    QCOMPARE(button->toolTip(), tooltip);
    QCOMPARE(button->accessibleName(), tooltip);
    QVERIFY(button->styleSheet().isEmpty());
    const QByteArray difference =
        BarProbe::PictureDiffers(button, BarProbe::Icon(icon.toLatin1().constData(), side, isMirrored));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlaybackControlWidget::LayoutIsTight()
{
    QCOMPARE(mBar->minimumHeight(), 40);
    QCOMPARE(mBar->maximumHeight(), 40);
    QCOMPARE(mBar->findChildren<FlatButton*>().size(), 8);
    auto* layout = qobject_cast<QHBoxLayout*>(mBar->layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(mBar->sizeHint().width(), 8 * 26 + 4);
}

void tst_PlaybackControlWidget::ClickRaisesItsSignalAlone_data()
{
    QTest::addColumn<QString>("raised");
    QTest::newRow("seekStartButton") << "SeekStartPressed()";
    QTest::newRow("previousBookmarkButton") << "PreviousBookmarkPressed()";
    QTest::newRow("stepBackwardsButton") << "StepBackwardsPressed()";
    QTest::newRow("playBackwardsButton") << "PlayBackwardsPressed()";
    QTest::newRow("playForwardsButton") << "PlayForwardsPressed()";
    QTest::newRow("stepForwardsButton") << "StepForwardsPressed()";
    QTest::newRow("nextBookmarkButton") << "NextBookmarkPressed()";
    QTest::newRow("seekEndButton") << "SeekEndPressed()";
}

void tst_PlaybackControlWidget::ClickRaisesItsSignalAlone()
{
    QFETCH(QString, raised);
    SignalLog log(mBar);
    BarProbe::Click(BarProbe::Button(mBar, QTest::currentDataTag()));
    QCOMPARE(log.Take(), QStringList{raised});
    // The slot bears the name of its action.
    QVERIFY(QMetaObject::invokeMethod(mBar, raised.chopped(9).toLatin1().constData()));
    QCOMPARE(log.Take(), QStringList{raised});
}

void tst_PlaybackControlWidget::ReleaseOutsideRaisesNothing()
{
    SignalLog log(mBar);
    FlatButton* const button = BarProbe::Button(mBar, "playForwardsButton");
    InputEvents::Press(button, QPoint(5, 5));
    InputEvents::Release(button, QPoint(-5, 5));
    QVERIFY(log.Take().isEmpty());
}

void tst_PlaybackControlWidget::StateChoosesThePictures_data()
{
    QTest::addColumn<bool>("playing");
    QTest::addColumn<bool>("forwards");
    QTest::addColumn<QString>("forwardsIcon");
    QTest::addColumn<QString>("backwardsIcon");
    QTest::newRow("stopped, forwards") << false << true << "play"
                                       << "play";
    QTest::newRow("stopped, backwards") << false << false << "play"
                                        << "play";
    QTest::newRow("playing forwards") << true << true << "pause"
                                      << "play";
    QTest::newRow("playing backwards") << true << false << "play"
                                       << "pause";
}

void tst_PlaybackControlWidget::StateChoosesThePictures()
{
    QFETCH(bool, playing);
    QFETCH(bool, forwards);
    QFETCH(QString, forwardsIcon);
    QFETCH(QString, backwardsIcon);
    SignalLog log(mBar);
    // From each state to each.
    for (int former = 0; former < 4; ++former)
    {
        mBar->OnPlaybackStateChanged((former & 1) != 0, (former & 2) != 0);
        mBar->OnPlaybackStateChanged(playing, forwards);
        QByteArray difference =
            BarProbe::PictureDiffers(BarProbe::Button(mBar, "playForwardsButton"),
                                     BarProbe::Icon(forwardsIcon.toLatin1().constData(), 23));
        QVERIFY2(difference.isEmpty(), difference);
        difference = BarProbe::PictureDiffers(
            BarProbe::Button(mBar, "playBackwardsButton"),
            BarProbe::Icon(backwardsIcon.toLatin1().constData(), 23, backwardsIcon == QLatin1String("play")));
        QVERIFY2(difference.isEmpty(), difference);
    }
    QVERIFY(log.Take().isEmpty());
}

void tst_PlaybackControlWidget::RightClickOpensNothing()
{
    SignalLog log(mBar);
    BarProbe::Click(BarProbe::Button(mBar, "playForwardsButton"), Qt::RightButton);
    InputEvents::Press(mBar, QPoint(2, 2), Qt::RightButton);
    InputEvents::Release(mBar, QPoint(2, 2), Qt::RightButton);
    QCOMPARE(mHost->contextMenus, 0);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QVERIFY(log.Take().isEmpty());
    // The window itself would have had it.
    InputEvents::Press(mHost.get(), QPoint(2, 2), Qt::RightButton);
    InputEvents::Release(mHost.get(), QPoint(2, 2), Qt::RightButton);
    QCOMPARE(mHost->contextMenus, 1);
}

static const TestRegistration<tst_PlaybackControlWidget> PlaybackControlWidgetRegistration;

#include "tst_PlaybackControlWidget.moc"
