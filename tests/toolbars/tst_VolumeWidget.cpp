// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "kit/PopUpWidget.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "toolbars/BarProbe.h"
#include "toolbars/VolumeSlider.h"
#include "toolbars/VolumeWidget.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QtTest>

Q_DECLARE_METATYPE(LoopType)

class tst_VolumeWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void ControlsStandInTheirPlaces();
    void PicturesAtTheStart_data();
    void PicturesAtTheStart();
    void VolumeIsClamped_data();
    void VolumeIsClamped();
    void HostSetsVolumeAndMutingInSilence();
    void MutingIsSetInSilence();
    void MuteButtonTogglesAndSignals();
    void DragOfTheSliderReports();
    void LoopButtonFollowsTheSetting_data();
    void LoopButtonFollowsTheSetting();
    void LayoutButtonFollowsTheSetting_data();
    void LayoutButtonFollowsTheSetting();
    void SettingsActAtConstruction();
    void PopUpOpensAboveItsButton_data();
    void PopUpOpensAboveItsButton();
    void ChoiceClosesAndSignals_data();
    void ChoiceClosesAndSignals();
    void ClickElsewhereClosesThePopUp();
    void RightClickOpensNothing();

private:
    void Make();
    void VerifyPicture(const char* button, const char* icon, int side);
    template<typename Type>
    Type* Find(const char* name) const
    {
        return mBar->findChild<Type*>(QLatin1String(name));
    }

    VolumeWidget* mBar = nullptr;
    std::unique_ptr<BarHost> mHost;
};

void tst_VolumeWidget::initTestCase()
{
    qRegisterMetaType<LoopType>("LoopType");
}

void tst_VolumeWidget::init()
{
    Settings::RestoreDefaults();
    Settings::loopType = NoLoop;
    Make();
}

void tst_VolumeWidget::cleanup()
{
    mHost.reset();
}

void tst_VolumeWidget::Make()
{
    mBar = new VolumeWidget;
    mHost = std::make_unique<BarHost>(mBar, QRect(30, 200, 300, 24));
}

void tst_VolumeWidget::VerifyPicture(const char* button, const char* icon, int side)
{
    const QByteArray difference =
        BarProbe::PictureDiffers(BarProbe::Button(mBar, button), BarProbe::Icon(icon, side));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_VolumeWidget::ControlsStandInTheirPlaces()
{
    QCOMPARE(Find<FlatButton>("loopButton")->geometry(), QRect(0, 5, 14, 14));
    QCOMPARE(Find<FlatButton>("viewerButton")->geometry(), QRect(18, 5, 14, 14));
    QCOMPARE(Find<FlatButton>("muteButton")->geometry(), QRect(300 - 82 - 4 - 12, 12, 12, 12));
    QCOMPARE(Find<VolumeSlider>("volumeSlider")->geometry(), QRect(218, 0, 82, 24));
    QCOMPARE(mBar->layout()->contentsMargins(), QMargins());
    QCOMPARE(mBar->layout()->spacing(), 4);
    for (const FlatButton* button : mBar->findChildren<FlatButton*>())
        QVERIFY(!button->accessibleName().isEmpty());
    QCOMPARE(mBar->findChildren<FlatButton*>().size(), 9);
    QCOMPARE(mBar->GetVolume(), 100);
    QVERIFY(!mBar->IsMuted());
}

void tst_VolumeWidget::PicturesAtTheStart_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("side");
    QTest::newRow("muteButton") << "volume" << QSize(12, 12) << 12;
    QTest::newRow("loopButton") << "loop_none" << QSize(14, 14) << 12;
    QTest::newRow("noLoopButton") << "loop_none" << QSize(14, 14) << 12;
    QTest::newRow("loopOnButton") << "loop" << QSize(14, 14) << 12;
    QTest::newRow("pingPongButton") << "loop_pingpong" << QSize(14, 14) << 14;
    QTest::newRow("viewerButton") << "viewer_single" << QSize(14, 14) << 11;
    QTest::newRow("viewerSingleButton") << "viewer_single" << QSize(14, 14) << 11;
    QTest::newRow("viewerHorizontalButton") << "viewer_horizontal" << QSize(14, 14) << 11;
    QTest::newRow("viewerVerticalButton") << "viewer_vertical" << QSize(14, 14) << 11;
}

void tst_VolumeWidget::PicturesAtTheStart()
{
    QFETCH(QString, icon);
    QFETCH(int, side);
    const FlatButton* const button = BarProbe::Button(mBar, QTest::currentDataTag());
    QVERIFY(button);
    QTEST(button->minimumSize(), "size");
    QTEST(button->maximumSize(), "size");
    VerifyPicture(QTest::currentDataTag(), icon.toLatin1().constData(), side);
    if (button->window() != mHost.get())
        QVERIFY(button->toolTip().isEmpty());
}

void tst_VolumeWidget::VolumeIsClamped_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("volume");
    QTest::newRow("within") << 120 << 120;
    QTest::newRow("highest") << 150 << 150;
    QTest::newRow("above") << 151 << 150;
    QTest::newRow("below") << -1 << 0;
    QTest::newRow("same") << 100 << 100;
}

void tst_VolumeWidget::VolumeIsClamped()
{
    QFETCH(int, asked);
    QFETCH(int, volume);
    SignalLog log(mBar);
    mBar->SetVolume(asked);
    QCOMPARE(mBar->GetVolume(), volume);
    QCOMPARE(log.Take(),
             volume == 100 ? QStringList() : QStringList{QStringLiteral("VolumeChanged(%1)").arg(volume)});
    mBar->SetVolume(asked);
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeWidget::HostSetsVolumeAndMutingInSilence()
{
    SignalLog log(mBar);
    mBar->SetVolume(50, true);
    QVERIFY(log.Take().isEmpty());
    QCOMPARE(mBar->GetVolume(), 50);
    QVERIFY(mBar->IsMuted());
    VerifyPicture("muteButton", "mute", 12);
    mBar->SetVolume(400, false);
    QVERIFY(log.Take().isEmpty());
    QCOMPARE(mBar->GetVolume(), 150);
    VerifyPicture("muteButton", "volume", 12);
    // The silence ends with the call.
    mBar->SetVolume(20);
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(20)"});
}

void tst_VolumeWidget::MutingIsSetInSilence()
{
    SignalLog log(mBar);
    mBar->SetMuted(true);
    QVERIFY(mBar->IsMuted());
    VerifyPicture("muteButton", "mute", 12);
    mBar->SetMuted(true);
    mBar->SetMuted(false);
    QVERIFY(!mBar->IsMuted());
    VerifyPicture("muteButton", "volume", 12);
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeWidget::MuteButtonTogglesAndSignals()
{
    SignalLog log(mBar);
    BarProbe::Click(Find<FlatButton>("muteButton"));
    QCOMPARE(log.Take(), QStringList{"MutingChanged(true)"});
    VerifyPicture("muteButton", "mute", 12);
    BarProbe::Click(Find<FlatButton>("muteButton"));
    QCOMPARE(log.Take(), QStringList{"MutingChanged(false)"});
    VerifyPicture("muteButton", "volume", 12);
}

void tst_VolumeWidget::DragOfTheSliderReports()
{
    SignalLog log(mBar);
    auto* slider = Find<VolumeSlider>("volumeSlider");
    InputEvents::Press(slider, QPoint(41, 12));
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(75)"});
    InputEvents::Move(slider, QPoint(164, 12), Qt::LeftButton);
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(300)"});
    QCOMPARE(mBar->GetVolume(), 150);
    InputEvents::Release(slider, QPoint(164, 12));
}

void tst_VolumeWidget::LoopButtonFollowsTheSetting_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("none") << 0 << "loop_none" << 12 << "No Loop";
    QTest::newRow("loop") << 1 << "loop" << 12 << "Loop";
    QTest::newRow("ping pong") << 2 << "loop_pingpong" << 14 << "Ping Pong";
    QTest::newRow("unknown") << 3 << "loop_none" << 12 << "No Loop";
}

void tst_VolumeWidget::LoopButtonFollowsTheSetting()
{
    QFETCH(int, type);
    QFETCH(QString, icon);
    QFETCH(int, side);
    QFETCH(QString, tooltip);
    SignalLog log(mBar);
    for (const LoopType former : {NoLoop, Loop, PingPong})
    {
        Settings::loopType = former;
        mBar->UpdateLooping();
        Settings::loopType = static_cast<LoopType>(type);
        mBar->UpdateLooping();
        VerifyPicture("loopButton", icon.toLatin1().constData(), side);
        QCOMPARE(Find<FlatButton>("loopButton")->toolTip(), tooltip);
    }
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeWidget::LayoutButtonFollowsTheSetting_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("single") << 0 << "viewer_single"
                            << "Single Viewer";
    QTest::newRow("horizontal") << 1 << "viewer_horizontal"
                                << "Horizontal Viewer";
    QTest::newRow("vertical") << 2 << "viewer_vertical"
                              << "Vertical Viewer";
    QTest::newRow("negative") << -5 << "viewer_single"
                              << "Single Viewer";
    QTest::newRow("unknown") << 99 << "viewer_single"
                             << "Single Viewer";
}

void tst_VolumeWidget::LayoutButtonFollowsTheSetting()
{
    QFETCH(int, layout);
    QFETCH(QString, icon);
    QFETCH(QString, tooltip);
    SignalLog log(mBar);
    for (int former = 0; former < 3; ++former)
    {
        Settings::viewerLayout = former;
        mBar->UpdateViewerLayout();
        Settings::viewerLayout = layout;
        mBar->UpdateViewerLayout();
        VerifyPicture("viewerButton", icon.toLatin1().constData(), 11);
        QCOMPARE(Find<FlatButton>("viewerButton")->toolTip(), tooltip);
    }
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeWidget::SettingsActAtConstruction()
{
    Settings::loopType = Loop;
    Settings::viewerLayout = 2;
    mHost.reset();
    Make();
    VerifyPicture("loopButton", "loop", 12);
    QCOMPARE(Find<FlatButton>("loopButton")->toolTip(), QStringLiteral("Loop"));
    // The layout waits for the host's call.
    VerifyPicture("viewerButton", "viewer_single", 11);
    QVERIFY(Find<FlatButton>("viewerButton")->toolTip().isEmpty());
}

void tst_VolumeWidget::PopUpOpensAboveItsButton_data()
{
    QTest::addColumn<QString>("popUp");
    QTest::addColumn<QStringList>("choices");
    QTest::newRow("loopButton") << "loopSelectWidget"
                                << QStringList{"noLoopButton", "loopOnButton", "pingPongButton"};
    QTest::newRow("viewerButton") << "viewerSelectWidget"
                                  << QStringList{"viewerSingleButton", "viewerHorizontalButton",
                                                 "viewerVerticalButton"};
}

void tst_VolumeWidget::PopUpOpensAboveItsButton()
{
    QFETCH(QString, popUp);
    QFETCH(QStringList, choices);
    FlatButton* const button = BarProbe::Button(mBar, QTest::currentDataTag());
    auto* widget = Find<PopUpWidget>(popUp.toLatin1().constData());
    QVERIFY(widget);
    QCOMPARE(widget->parentWidget(), mBar);
    QVERIFY(!widget->isVisible());
    const QSize size = widget->size();
    QCOMPARE(size, QSize(14 + 12, 3 * 14 + 12 + 2 * widget->layout()->spacing()));
    SignalLog log(mBar);
    BarProbe::Click(button);
    QVERIFY(widget->isVisible());
    QCOMPARE(QApplication::activePopupWidget(), widget);
    const QPoint corner = button->mapToGlobal(QPoint(0, 0));
    QCOMPARE(widget->size(), size);
    QCOMPARE(widget->geometry().left(), corner.x());
    QCOMPARE(widget->geometry().bottom(), corner.y() - 1);
    int y = 6;
    for (const QString& choice : choices)
    {
        const FlatButton* const each = BarProbe::Button(mBar, choice.toLatin1().constData());
        QCOMPARE(each->parentWidget(), widget);
        QCOMPARE(each->pos(), QPoint(6, y));
        y += 14 + widget->layout()->spacing();
    }
    QVERIFY(log.Take().isEmpty());
    widget->close();
}

void tst_VolumeWidget::ChoiceClosesAndSignals_data()
{
    QTest::addColumn<QString>("opener");
    QTest::addColumn<QString>("raised");
    QTest::newRow("noLoopButton") << "loopButton"
                                  << "LoopPressed(0)";
    QTest::newRow("loopOnButton") << "loopButton"
                                  << "LoopPressed(1)";
    QTest::newRow("pingPongButton") << "loopButton"
                                    << "LoopPressed(2)";
    QTest::newRow("viewerSingleButton") << "viewerButton"
                                        << "ViewerLayoutPressed(0)";
    QTest::newRow("viewerHorizontalButton") << "viewerButton"
                                            << "ViewerLayoutPressed(1)";
    QTest::newRow("viewerVerticalButton") << "viewerButton"
                                          << "ViewerLayoutPressed(2)";
}

void tst_VolumeWidget::ChoiceClosesAndSignals()
{
    QFETCH(QString, opener);
    QFETCH(QString, raised);
    QStringList raisedSignals;
    connect(mBar, &VolumeWidget::LoopPressed, mBar,
            [&](LoopType type) { raisedSignals << QStringLiteral("LoopPressed(%1)").arg(int(type)); });
    connect(mBar, &VolumeWidget::ViewerLayoutPressed, mBar,
            [&](int layout) { raisedSignals << QStringLiteral("ViewerLayoutPressed(%1)").arg(layout); });
    BarProbe::Click(BarProbe::Button(mBar, opener.toLatin1().constData()));
    QVERIFY(QApplication::activePopupWidget());
    BarProbe::Click(BarProbe::Button(mBar, QTest::currentDataTag()));
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QCOMPARE(raisedSignals, QStringList{raised});
    // The picture waits for the host.
    VerifyPicture("loopButton", "loop_none", 12);
    VerifyPicture("viewerButton", "viewer_single", 11);
}

void tst_VolumeWidget::ClickElsewhereClosesThePopUp()
{
    SignalLog log(mBar);
    for (const char* opener : {"loopButton", "viewerButton"})
    {
        BarProbe::Click(BarProbe::Button(mBar, opener));
        QWidget* const popUp = QApplication::activePopupWidget();
        QVERIFY(popUp);
        InputEvents::Press(popUp, QPoint(120, -80));
        QVERIFY(!popUp->isVisible());
        InputEvents::Release(mHost.get(), QPoint(1, 1));
    }
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeWidget::RightClickOpensNothing()
{
    SignalLog log(mBar);
    for (QWidget* widget :
         {static_cast<QWidget*>(mBar), static_cast<QWidget*>(Find<FlatButton>("loopButton")),
          static_cast<QWidget*>(Find<VolumeSlider>("volumeSlider"))})
        BarProbe::Click(widget, Qt::RightButton);
    QCOMPARE(mHost->contextMenus, 0);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QVERIFY(log.Take().isEmpty());
}

static const TestRegistration<tst_VolumeWidget> VolumeWidgetRegistration;

#include "tst_VolumeWidget.moc"
