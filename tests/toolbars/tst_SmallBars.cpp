// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "toolbars/BarProbe.h"
#include "toolbars/BookmarksToolbarWidget.h"
#include "toolbars/SecondaryControlsWidget.h"

#include <QHBoxLayout>
#include <QtTest>

/// The bars of bookmarks and of panel toggles.
class tst_SmallBars : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::RestoreDefaults(); }

    void BookmarkButtonsStandInTheirGroups();
    void BookmarkButtonsShowOnePictureAndNoTooltip();
    void BookmarkClickRaisesItsSignalAlone();
    void ToggleButtonsStandInARow();
    void ToggleClickRaisesItsSignalAlone();
    void LinkedSettingLeavesOneButtonForBothPanels();
    void TogglesIgnoreTheSettingUntilTold();
    void RightClickOpensNothing();
};

namespace
{

const char* const BookmarkActions[] = {"AddBookmark",           "RemoveBookmark",    "AddRangeBookmark",
                                       "RemoveRangeBookmark",   "PreviousBookmark",  "NextBookmark",
                                       "PreviousRangeBookmark", "NextRangeBookmark", "RangeStartToCurrent",
                                       "RangeEndToCurrent",     "ResetRange"};

/// The name of the button of @p action.
QByteArray ButtonOf(const char* action)
{
    QByteArray name(action);
    name[0] = static_cast<char>(name[0] - 'A' + 'a');
    return name + "Button";
}

QByteArray SlotOf(const QString& raised)
{
    return raised.chopped(9).toLatin1();
}

} // namespace

void tst_SmallBars::BookmarkButtonsStandInTheirGroups()
{
    auto* bar = new BookmarksToolbarWidget;
    const BarHost host(bar, QRect(10, 10, 336, 20));
    // 11 buttons and 3 gaps take 236 pixels; the rest is shared by both ends.
    const int gaps[] = {0, 0, 20, 20, 40, 40, 40, 40, 60, 60, 60};
    for (int index = 0; index < 11; ++index)
    {
        const FlatButton* const button = BarProbe::Button(bar, ButtonOf(BookmarkActions[index]));
        QVERIFY2(button, BookmarkActions[index]);
        QCOMPARE(button->geometry(), QRect(50 + 16 * index + gaps[index], 2, 16, 16));
        QVERIFY(!button->accessibleName().isEmpty());
    }
    QCOMPARE(bar->findChildren<FlatButton*>().size(), 11);
    QCOMPARE(bar->sizeHint(), QSize(236, 16));
    QCOMPARE(bar->layout()->contentsMargins(), QMargins());
    QCOMPARE(bar->layout()->spacing(), 0);
}

void tst_SmallBars::BookmarkButtonsShowOnePictureAndNoTooltip()
{
    // The picture is the host's; without one the buttons are empty.
    BookmarksToolbarWidget bar;
    QVERIFY(QImage(QStringLiteral(":/icons/annotation.png")).isNull());
    for (const FlatButton* button : bar.findChildren<FlatButton*>())
    {
        QVERIFY(button->toolTip().isEmpty());
        QVERIFY(button->pixmap(Qt::ReturnByValue).isNull());
    }
}

void tst_SmallBars::BookmarkClickRaisesItsSignalAlone()
{
    auto* bar = new BookmarksToolbarWidget;
    const BarHost host(bar, QRect(10, 10, 336, 20));
    SignalLog log(bar);
    for (const char* action : BookmarkActions)
    {
        const QString raised = QLatin1String(action) + QStringLiteral("Pressed()");
        BarProbe::Click(BarProbe::Button(bar, ButtonOf(action)));
        QCOMPARE(log.Take(), QStringList{raised});
        QVERIFY(QMetaObject::invokeMethod(bar, action));
        QCOMPARE(log.Take(), QStringList{raised});
    }
}

void tst_SmallBars::ToggleButtonsStandInARow()
{
    auto* bar = new SecondaryControlsWidget;
    const BarHost host(bar, QRect(10, 10, 200, 20));
    const struct
    {
        const char* name;
        int x;
        const char* tooltip;
        const char* icon;
        int side;
    } rows[] = {
        {"toggleProjectViewButton", 0, "Toggle Project View", "toggle_project", 14},
        {"toggleTimelineListViewButton", 24, "Toggle Details View", "toggle_details", 18},
        {"toggleAnnotationToolsButton", 48, "Toggle Annotation Toolbar", "toggle_annotation", 14},
    };
    for (const auto& row : rows)
    {
        const FlatButton* const button = BarProbe::Button(bar, row.name);
        QVERIFY2(button, row.name);
        QCOMPARE(button->geometry(), QRect(row.x, 0, 20, 20));
        QCOMPARE(button->toolTip(), QString(QLatin1String(row.tooltip)));
        QCOMPARE(button->accessibleName(), button->toolTip());
        const QByteArray difference = BarProbe::PictureDiffers(button, BarProbe::Icon(row.icon, row.side));
        QVERIFY2(difference.isEmpty(), difference);
    }
    QCOMPARE(bar->findChildren<FlatButton*>().size(), 3);
    QCOMPARE(bar->layout()->contentsMargins(), QMargins());
    QCOMPARE(bar->layout()->spacing(), 4);
}

void tst_SmallBars::ToggleClickRaisesItsSignalAlone()
{
    auto* bar = new SecondaryControlsWidget;
    const BarHost host(bar, QRect(10, 10, 200, 20));
    SignalLog log(bar);
    for (const char* action : {"ToggleProjectView", "ToggleTimelineListView", "ToggleAnnotationTools"})
    {
        const QString raised = QLatin1String(action) + QStringLiteral("Pressed()");
        BarProbe::Click(BarProbe::Button(bar, ButtonOf(action)));
        QCOMPARE(log.Take(), QStringList{raised});
        QVERIFY(QMetaObject::invokeMethod(bar, SlotOf(raised)));
        QCOMPARE(log.Take(), QStringList{raised});
    }
}

void tst_SmallBars::LinkedSettingLeavesOneButtonForBothPanels()
{
    auto* bar = new SecondaryControlsWidget;
    const BarHost host(bar, QRect(10, 10, 200, 20));
    FlatButton* const project = BarProbe::Button(bar, "toggleProjectViewButton");
    FlatButton* const details = BarProbe::Button(bar, "toggleTimelineListViewButton");
    Settings::linkProjectViewAndDetailsViewVisibility = true;
    bar->UpdateUI();
    QVERIFY(!details->isVisible());
    QCOMPARE(project->toolTip(), QStringLiteral("Toggle Project/Details View"));
    SignalLog log(bar);
    BarProbe::Click(project);
    QCOMPARE(log.Take(), QStringList{"ToggleProjectViewPressed()"});
    Settings::linkProjectViewAndDetailsViewVisibility = false;
    bar->UpdateUI();
    QVERIFY(details->isVisible());
    QCOMPARE(project->toolTip(), QStringLiteral("Toggle Project View"));
}

void tst_SmallBars::TogglesIgnoreTheSettingUntilTold()
{
    Settings::linkProjectViewAndDetailsViewVisibility = true;
    auto* bar = new SecondaryControlsWidget;
    const BarHost host(bar, QRect(10, 10, 200, 20));
    for (const FlatButton* button : bar->findChildren<FlatButton*>())
        QVERIFY(button->isVisible());
    QCOMPARE(BarProbe::Button(bar, "toggleProjectViewButton")->toolTip(),
             QStringLiteral("Toggle Project View"));
}

void tst_SmallBars::RightClickOpensNothing()
{
    for (QWidget* bar : {static_cast<QWidget*>(new BookmarksToolbarWidget),
                         static_cast<QWidget*>(new SecondaryControlsWidget)})
    {
        BarHost host(bar, QRect(10, 10, 336, 20));
        SignalLog log(bar);
        BarProbe::Click(bar->findChild<FlatButton*>(), Qt::RightButton);
        InputEvents::Press(bar, QPoint(330, 10), Qt::RightButton);
        InputEvents::Release(bar, QPoint(330, 10), Qt::RightButton);
        QCOMPARE(host.contextMenus, 0);
        QVERIFY(log.Take().isEmpty());
    }
}

static const TestRegistration<tst_SmallBars> SmallBarsRegistration;

#include "tst_SmallBars.moc"
