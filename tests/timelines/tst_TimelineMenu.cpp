// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "timelines/FakeTimeline.h"
#include "timelines/TimelineHost.h"
#include "timelines/TimelineProbe.h"
#include "timelines/UiHelpers.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTimer>
#include <QtTest>

#include <functional>

class tst_TimelineMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void ActionsStandInTheirOrder();
    void EntriesOfTheGlobalMenu();
    void EntriesOfTheRangeMenu();
    void RightPressOpensTheMenuAndNoScrub();
    void RangeEntriesNameTheFrameUnderTheMouse();
    void NearThePlayheadTheyMeanThePlayhead();
    void ChosenRangeStart_data();
    void ChosenRangeStart();
    void ChosenRangeEnd_data();
    void ChosenRangeEnd();
    void ResetAsksForTheWholeTimeline();
    void DisplayTypesAreChosenAndChecked();
    void DisplayTypesOfTheRangeTimelineAreItsOwn();
    void SwitchesWriteTheSettingsAndPositionAsks();
    void ChecksFollowTheSettings();
    void RangeSlotsWithoutAMenuTakeFrameZero();

private:
    /// Opens the menu of @p widget at @p pos and gives it to @p use while it is open.
    static void WithMenu(QWidget* widget, QPoint pos, const std::function<void(QMenu*)>& use);
    /// Opens the menu of @p widget at @p pos and clicks the entry called @p text, wherever it is.
    static void Choose(QWidget* widget, QPoint pos, const QString& text);
    static QStringList Texts(const QMenu* menu);
    static QMenu* SubMenu(const QMenu* menu) { return menu->actions().last()->menu(); }
    template<typename Probe>
    void Fill(Probe& probe);
    QString Range(int first, int last) const
    {
        return TimelineHost::Range(mTimeline->frameToTime(first), mTimeline->frameToTime(last));
    }

    std::shared_ptr<FakeTimeline> mTimeline;
};

void tst_TimelineMenu::init()
{
    Settings::RestoreDefaults();
    mTimeline = std::make_shared<FakeTimeline>(QList<int>{51, 50});
}

template<typename Probe>
void tst_TimelineMenu::Fill(Probe& probe)
{
    probe.resize(700, probe.height());
    probe.SetTimeline(mTimeline);
    probe.SetPlaybackRange(mTimeline->frameToTime(30), mTimeline->frameToTime(60));
    probe.SetPlaybackTime(mTimeline->frameToTime(40));
    probe.show();
    QApplication::processEvents();
}

void tst_TimelineMenu::WithMenu(QWidget* widget, QPoint pos, const std::function<void(QMenu*)>& use)
{
    bool used = false;
    QTimer::singleShot(50, widget,
                       [&]
                       {
                           auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                           if (menu != nullptr)
                           {
                               used = true;
                               use(menu);
                           }
                           while (QWidget* left = QApplication::activePopupWidget())
                               left->close();
                       });
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, widget->mapToGlobal(pos));
    QApplication::sendEvent(widget, &event);
    QVERIFY2(used, "no menu opened");
}

void tst_TimelineMenu::Choose(QWidget* widget, QPoint pos, const QString& text)
{
    WithMenu(widget, pos,
             [&](QMenu* menu)
             {
                 QMenu* owner = menu;
                 if (!Texts(menu).contains(text))
                 {
                     menu->setActiveAction(menu->actions().last());
                     owner = SubMenu(menu);
                     QVERIFY(QTest::qWaitFor([owner] { return owner->isVisible(); }));
                 }
                 for (QAction* action : owner->actions())
                     if (action->text() == text)
                     {
                         QTest::mouseClick(owner, Qt::LeftButton, {}, owner->actionGeometry(action).center());
                         return;
                     }
                 QFAIL(qPrintable(QStringLiteral("no entry \"%1\"").arg(text)));
             });
}

QStringList tst_TimelineMenu::Texts(const QMenu* menu)
{
    QStringList texts;
    for (const QAction* action : menu->actions())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return texts;
}

void tst_TimelineMenu::ActionsStandInTheirOrder()
{
    const std::unique_ptr<TimelineWidget> widget(UiHelpers::CreateGlobalTimeline(nullptr));
    QStringList texts;
    QString checkable;
    for (const QAction* action : widget->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly))
    {
        texts << action->text();
        checkable += action->isCheckable() ? QLatin1Char('x') : QLatin1Char('-');
    }
    QCOMPARE(texts, (QStringList{"Range Start to Current", "Range End to Current", "Reset Playback Range",
                                 "Frame Numbers (Global)", "Frame Numbers (Range)", "Time Code", "Seconds",
                                 "Position Timeline at Top", "Frame Bookmarks", "Range Bookmarks", "Cache"}));
    QCOMPARE(checkable, QStringLiteral("---xxxxxxxx"));
}

void tst_TimelineMenu::EntriesOfTheGlobalMenu()
{
    GlobalProbe probe;
    Fill(probe);
    WithMenu(&probe, QPoint(200, 30),
             [](QMenu* menu)
             {
                 QCOMPARE(Texts(menu),
                          (QStringList{"Range Start to 21", "Range End to 21", "Reset Playback Range", "-",
                                       "Frame Numbers (Global)", "Frame Numbers (Range)", "Time Code",
                                       "Seconds", "-", "Display"}));
                 QCOMPARE(Texts(SubMenu(menu)), (QStringList{"Position Timeline at Top", "-",
                                                             "Frame Bookmarks", "Range Bookmarks", "Cache"}));
                 QVERIFY(menu->parent() == nullptr);
             });
}

void tst_TimelineMenu::EntriesOfTheRangeMenu()
{
    RangeProbe probe;
    Fill(probe);
    WithMenu(&probe, QPoint(100, 30),
             [](QMenu* menu)
             {
                 QCOMPARE(menu->actions().size(), 10);
                 QCOMPARE(Texts(SubMenu(menu)),
                          (QStringList{"Position Timeline at Top", "-", "Frame Bookmarks", "Cache"}));
             });
}

void tst_TimelineMenu::RightPressOpensTheMenuAndNoScrub()
{
    GlobalProbe probe;
    Fill(probe);
    TimelineHost host(&probe);
    bool opened = false;
    QTimer::singleShot(50, this,
                       [&opened]
                       {
                           opened = qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr;
                           while (QWidget* left = QApplication::activePopupWidget())
                               left->close();
                       });
    InputEvents::Press(&probe, QPoint(300, 10), Qt::RightButton);
    InputEvents::Release(&probe, QPoint(300, 10), Qt::RightButton);
    QTRY_VERIFY(opened);
    QCOMPARE(host.Take(), QStringList());
}

void tst_TimelineMenu::RangeEntriesNameTheFrameUnderTheMouse()
{
    GlobalProbe probe;
    Fill(probe);
    probe.SetDesiredFrameRate(24);
    const QStringList labels{"21", "0.83", "00:00:20", "-8"};
    for (int type = 0; type < 4; ++type)
    {
        probe.SetDisplayType(static_cast<TimelineDisplayType>(type));
        probe.UpdateMenuActions(200);
        QCOMPARE(probe.findChild<QAction*>("rangeStartAction")->text(), "Range Start to " + labels[type]);
        QCOMPARE(probe.findChild<QAction*>("rangeEndAction")->text(), "Range End to " + labels[type]);
        QCOMPARE(probe.findChild<QAction*>("rangeEndAction")->data(), QVariant(21));
    }
}

void tst_TimelineMenu::NearThePlayheadTheyMeanThePlayhead()
{
    GlobalProbe probe;
    Fill(probe);
    const QAction* const start = probe.findChild<QAction*>("rangeStartAction");
    const int playhead = probe.FrameToPixel(40);
    for (int x = 100; x < 600; ++x)
    {
        probe.UpdateMenuActions(x);
        const bool near = (x >= playhead - 6 && x <= playhead + 6) || probe.PixelToFrame(x) == 40;
        QCOMPARE(start->text() == QStringLiteral("Range Start to Current"), near);
        QCOMPARE(start->data().toInt(), near ? 40 : probe.PixelToFrame(x));
    }
    // A frame wider than the reach counts whole.
    probe.SetTimeline(std::make_shared<FakeTimeline>(QList<int>{4}));
    probe.SetPlaybackTime(1);
    probe.UpdateMenuActions(150);
    QCOMPARE(start->text(), QStringLiteral("Range Start to Current"));
}

void tst_TimelineMenu::ChosenRangeStart_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("before the range") << 21 << 21 << 60;
    QTest::newRow("within") << 51 << 51 << 60;
    QTest::newRow("past the end keeps the length") << 66 << 66 << 96;
    QTest::newRow("cut at the last frame") << 91 << 91 << 101;
}

void tst_TimelineMenu::ChosenRangeStart()
{
    QFETCH(int, frame);
    QFETCH(int, first);
    QFETCH(int, last);
    GlobalProbe probe;
    Fill(probe);
    TimelineHost host(&probe);
    Choose(&probe, QPoint(95 + 5 * frame, 10), QStringLiteral("Range Start to %1").arg(frame));
    QCOMPARE(host.Take(), QStringList{Range(first, last)});
}

void tst_TimelineMenu::ChosenRangeEnd_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("past the range") << 81 << 30 << 81;
    QTest::newRow("within") << 51 << 30 << 51;
    QTest::newRow("before the start is cut at the first frame") << 21 << 1 << 21;
}

void tst_TimelineMenu::ChosenRangeEnd()
{
    QFETCH(int, frame);
    QFETCH(int, first);
    QFETCH(int, last);
    GlobalProbe probe;
    Fill(probe);
    TimelineHost host(&probe);
    Choose(&probe, QPoint(95 + 5 * frame, 10), QStringLiteral("Range End to %1").arg(frame));
    QCOMPARE(host.Take(), QStringList{Range(first, last)});
    // With room before the start the length is kept.
    probe.SetPlaybackRange(mTimeline->frameToTime(50), mTimeline->frameToTime(60));
    host.Take();
    Choose(&probe, QPoint(95 + 5 * 26, 10), QStringLiteral("Range End to 26"));
    QCOMPARE(host.Take(), QStringList{Range(16, 26)});
}

void tst_TimelineMenu::ResetAsksForTheWholeTimeline()
{
    GlobalProbe global;
    Fill(global);
    TimelineHost globalHost(&global);
    Choose(&global, QPoint(200, 10), QStringLiteral("Reset Playback Range"));
    QCOMPARE(globalHost.Take(), QStringList{TimelineHost::Range(0, mTimeline->endTime)});
    RangeProbe range;
    Fill(range);
    TimelineHost rangeHost(&range);
    Choose(&range, QPoint(200, 10), QStringLiteral("Reset Playback Range"));
    QCOMPARE(rangeHost.Take(), QStringList{TimelineHost::Range(0, mTimeline->endTime)});
}

void tst_TimelineMenu::DisplayTypesAreChosenAndChecked()
{
    GlobalProbe probe;
    Fill(probe);
    const QList<std::pair<QString, TimelineDisplayType>> types{
        {"Seconds", Seconds},
        {"Time Code", TimeCode},
        {"Frame Numbers (Range)", FrameNumbersRange},
        {"Frame Numbers (Global)", FrameNumbersGlobal}};
    for (const auto& [text, type] : types)
    {
        Choose(&probe, QPoint(200, 10), text);
        QCOMPARE(probe.mDisplayType, type);
        QCOMPARE(Settings::globalTimelineDisplayType, int(type));
        const QString expected = text;
        WithMenu(&probe, QPoint(200, 10),
                 [&expected](QMenu* menu)
                 {
                     for (const QAction* action : menu->actions())
                         QCOMPARE(action->isChecked(), action->text() == expected);
                 });
    }
    QCOMPARE(Settings::rangeTimelineDisplayType, 0);
}

void tst_TimelineMenu::DisplayTypesOfTheRangeTimelineAreItsOwn()
{
    RangeProbe probe;
    Fill(probe);
    Choose(&probe, QPoint(200, 10), QStringLiteral("Time Code"));
    QCOMPARE(probe.mDisplayType, TimeCode);
    QCOMPARE(Settings::rangeTimelineDisplayType, 2);
    QCOMPARE(Settings::globalTimelineDisplayType, 0);
}

void tst_TimelineMenu::SwitchesWriteTheSettingsAndPositionAsks()
{
    GlobalProbe global;
    Fill(global);
    TimelineHost host(&global);
    Choose(&global, QPoint(200, 10), QStringLiteral("Frame Bookmarks"));
    QCOMPARE(Settings::globalTimelineShowTimeBookmarks, false);
    Choose(&global, QPoint(200, 10), QStringLiteral("Range Bookmarks"));
    QCOMPARE(Settings::globalTimelineShowRangeBookmarks, false);
    Choose(&global, QPoint(200, 10), QStringLiteral("Cache"));
    QCOMPARE(Settings::globalTimelineShowCache, false);
    Choose(&global, QPoint(200, 10), QStringLiteral("Cache"));
    QCOMPARE(Settings::globalTimelineShowCache, true);
    Choose(&global, QPoint(200, 10), QStringLiteral("Position Timeline at Top"));
    QCOMPARE(host.Take(), QStringList{TimelineHost::Position(true)});
    // The host writes the setting, and until it does the entry stays as it was.
    QCOMPARE(Settings::globalTimelineAtTop, false);
    Choose(&global, QPoint(200, 10), QStringLiteral("Position Timeline at Top"));
    QCOMPARE(host.Take(), QStringList{TimelineHost::Position(true)});
    Settings::globalTimelineAtTop = true;
    Choose(&global, QPoint(200, 10), QStringLiteral("Position Timeline at Top"));
    QCOMPARE(host.Take(), QStringList{TimelineHost::Position(false)});

    RangeProbe range;
    Fill(range);
    Choose(&range, QPoint(200, 10), QStringLiteral("Frame Bookmarks"));
    QCOMPARE(Settings::rangeTimelineShowTimeBookmarks, false);
    Choose(&range, QPoint(200, 10), QStringLiteral("Cache"));
    QCOMPARE(Settings::rangeTimelineShowCache, false);
    QCOMPARE(Settings::globalTimelineShowCache, true);
}

void tst_TimelineMenu::ChecksFollowTheSettings()
{
    GlobalProbe global;
    RangeProbe range;
    const auto checks = [](QWidget& widget)
    {
        QString text;
        for (const char* name :
             {"positionAction", "timeBookmarksAction", "rangeBookmarksAction", "cacheAction"})
            text += widget.findChild<QAction*>(name)->isChecked() ? QLatin1Char('x') : QLatin1Char('-');
        return text;
    };
    for (int bits = 0; bits < 128; ++bits)
    {
        bool* const flags[] = {&Settings::globalTimelineAtTop,
                               &Settings::globalTimelineShowTimeBookmarks,
                               &Settings::globalTimelineShowRangeBookmarks,
                               &Settings::globalTimelineShowCache,
                               &Settings::rangeTimelineAtTop,
                               &Settings::rangeTimelineShowTimeBookmarks,
                               &Settings::rangeTimelineShowCache};
        QString expected;
        for (int i = 0; i < 7; ++i)
        {
            *flags[i] = (bits >> i & 1) != 0;
            expected += *flags[i] ? QLatin1Char('x') : QLatin1Char('-');
        }
        global.UpdateMenuActions(0);
        range.UpdateMenuActions(0);
        QCOMPARE(checks(global), expected.left(4));
        QCOMPARE(checks(range), expected.mid(4, 2) + QLatin1Char('-') + expected.right(1));
    }
}

void tst_TimelineMenu::RangeSlotsWithoutAMenuTakeFrameZero()
{
    GlobalProbe probe;
    Fill(probe);
    TimelineHost host(&probe);
    host.answers = false;
    QVERIFY(QMetaObject::invokeMethod(&probe, "SetRangeStartToPosition"));
    QCOMPARE(host.Take(), QStringList{Range(0, 60)});
    QVERIFY(QMetaObject::invokeMethod(&probe, "SetRangeEndToPosition"));
    QCOMPARE(host.Take(), QStringList{Range(1, 0)});
}

static const TestRegistration<tst_TimelineMenu> TimelineMenuRegistration;

#include "tst_TimelineMenu.moc"
