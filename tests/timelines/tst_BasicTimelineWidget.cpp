// SPDX-License-Identifier: MIT
#include "kit/SmoothSlider.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "timelines/BasicTimelineWidget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

#include <limits>

class tst_BasicTimelineWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void HoldsASliderAndThreeLabels();
    void ShowsSeconds();
    void HandleStandsAtThePercentage_data();
    void HandleStandsAtThePercentage();
    void HostsTimesAreNotEchoed();
    void ReportsThePick_data();
    void ReportsThePick();
    void HeldHandleStaysWhileTheLabelFollows();
    void ClickOnTheBarIsReported();

private:
    static SmoothSlider* Slider(const BasicTimelineWidget& widget)
    {
        return widget.findChild<SmoothSlider*>();
    }
    static QString Text(const BasicTimelineWidget& widget, const char* name)
    {
        return widget.findChild<QLabel*>(QLatin1String(name))->text();
    }
};

void tst_BasicTimelineWidget::HoldsASliderAndThreeLabels()
{
    const BasicTimelineWidget widget;
    const auto* layout = qobject_cast<QHBoxLayout*>(widget.layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->count(), 4);
    QCOMPARE(layout->itemAt(0)->widget(), Slider(widget));
    const QStringList names{"timeLabel", "durationLabel", "frameRateLabel"};
    const QStringList texts{"0", "0", "0 fps"};
    for (int i = 0; i < 3; ++i)
    {
        const auto* label = qobject_cast<QLabel*>(layout->itemAt(i + 1)->widget());
        QVERIFY(label != nullptr);
        QCOMPARE(label->objectName(), names[i]);
        QCOMPARE(label->text(), texts[i]);
        QCOMPARE(label->minimumWidth(), 40);
        QCOMPARE(label->maximumWidth(), 40);
    }
    QCOMPARE(Slider(widget)->orientation(), Qt::Horizontal);
    QCOMPARE(Slider(widget)->minimum(), 0);
    QCOMPARE(Slider(widget)->maximum(), 100);
    QCOMPARE(Slider(widget)->singleStep(), 1);
}

void tst_BasicTimelineWidget::ShowsSeconds()
{
    BasicTimelineWidget widget;
    widget.SetDuration(0);
    widget.SetPlaybackTime(5000000);
    QCOMPARE(Slider(widget)->value(), 0);
    QCOMPARE(Text(widget, "timeLabel"), QStringLiteral("5.00"));
    QCOMPARE(Text(widget, "durationLabel"), QStringLiteral("0.00"));
    widget.SetDuration(12345678);
    QCOMPARE(Text(widget, "durationLabel"), QStringLiteral("12.35"));
    QCOMPARE(Text(widget, "frameRateLabel"), QStringLiteral("0 fps"));
}

void tst_BasicTimelineWidget::HandleStandsAtThePercentage_data()
{
    QTest::addColumn<qint64>("duration");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<int>("value");
    QTest::newRow("start") << qint64(10000000) << qint64(0) << 0;
    QTest::newRow("cut and not rounded") << qint64(10000000) << qint64(1199999) << 11;
    // In single precision 0.9 and 0.29 lie just below.
    QTest::newRow("single precision of 0.9") << qint64(1000000) << qint64(900000) << 89;
    QTest::newRow("single precision of 0.29") << qint64(100) << qint64(29) << 28;
    QTest::newRow("end") << qint64(10000000) << qint64(10000000) << 100;
    QTest::newRow("past the end") << qint64(10000000) << qint64(20000000) << 100;
    QTest::newRow("before the start") << qint64(10000000) << qint64(-5) << 0;
    QTest::newRow("negative duration") << qint64(-10) << qint64(-5) << 0;
    QTest::newRow("far past the end") << qint64(1) << std::numeric_limits<qint64>::max() << 100;
}

void tst_BasicTimelineWidget::HandleStandsAtThePercentage()
{
    QFETCH(qint64, duration);
    QFETCH(qint64, time);
    BasicTimelineWidget widget;
    widget.SetDuration(duration);
    widget.SetPlaybackTime(time);
    QTEST(Slider(widget)->value(), "value");
}

void tst_BasicTimelineWidget::HostsTimesAreNotEchoed()
{
    BasicTimelineWidget widget;
    QSignalSpy picks(&widget, SIGNAL(PlaybackTimeChanged(int64_t)));
    widget.SetDuration(1000000);
    for (int64_t time = 0; time <= 1000000; time += 50000)
        widget.SetPlaybackTime(time);
    QCOMPARE(picks.size(), 0);
    Slider(widget)->setValue(50);
    QCOMPARE(picks.size(), 1);
}

void tst_BasicTimelineWidget::ReportsThePick_data()
{
    QTest::addColumn<qint64>("duration");
    QTest::addColumn<int>("value");
    QTest::addColumn<qint64>("time");
    QTest::newRow("half") << qint64(10000000) << 50 << qint64(5000000);
    QTest::newRow("cut") << qint64(999) << 7 << qint64(69);
    QTest::newRow("negative is cut towards zero") << qint64(-999) << 7 << qint64(-69);
    QTest::newRow("a century") << qint64(3155760000000000) << 99 << qint64(3124202400000000);
    QTest::newRow("no duration") << qint64(0) << 99 << qint64(0);
}

void tst_BasicTimelineWidget::ReportsThePick()
{
    QFETCH(qint64, duration);
    QFETCH(int, value);
    BasicTimelineWidget widget;
    QSignalSpy picks(&widget, SIGNAL(PlaybackTimeChanged(int64_t)));
    widget.SetDuration(duration);
    Slider(widget)->setValue(value);
    QCOMPARE(picks.size(), 1);
    QTEST(qint64(picks[0][0].value<int64_t>()), "time");
}

void tst_BasicTimelineWidget::HeldHandleStaysWhileTheLabelFollows()
{
    BasicTimelineWidget widget;
    widget.SetDuration(1000000);
    widget.SetPlaybackTime(300000);
    Slider(widget)->setSliderDown(true);
    widget.SetPlaybackTime(750000);
    QCOMPARE(Slider(widget)->value(), 30);
    QCOMPARE(Text(widget, "timeLabel"), QStringLiteral("0.75"));
    Slider(widget)->setSliderDown(false);
    widget.SetPlaybackTime(750000);
    QCOMPARE(Slider(widget)->value(), 75);
}

void tst_BasicTimelineWidget::ClickOnTheBarIsReported()
{
    BasicTimelineWidget widget;
    widget.resize(600, 60);
    widget.SetDuration(10000000);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QSignalSpy picks(&widget, SIGNAL(PlaybackTimeChanged(int64_t)));
    SmoothSlider* const slider = Slider(widget);
    InputEvents::Press(slider, QPoint(slider->width() / 2, slider->height() / 2));
    InputEvents::Release(slider, QPoint(slider->width() / 2, slider->height() / 2));
    QCOMPARE(slider->value(), 50);
    QCOMPARE(picks.size(), 1);
    QCOMPARE(picks[0][0].value<int64_t>(), int64_t(5000000));
}

static const TestRegistration<tst_BasicTimelineWidget> BasicTimelineWidgetRegistration;

#include "tst_BasicTimelineWidget.moc"
