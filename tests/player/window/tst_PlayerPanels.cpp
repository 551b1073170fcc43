// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "views/TimelineListView.h"
#include "views/TimelinePropertiesWidget.h"
#include "window/PanelArea.h"
#include "window/PlayerProbe.h"
#include "window/PlayerState.h"
#include "window/PlayerWindow.h"

#include <QDoubleSpinBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QtTest>

/// The panels of elements and properties in the player's window, with the mouse, and what the viewer shows of
/// it.
class tst_PlayerPanels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void OpenedMovieShowsItsPathAndRange();
    void RangeOfTheFormIsPlaybacksAndUndone();
    void ZoomOfTheViewerShowsInTheForm();
    void MovedElementsShowTheirPictures();
    void DraggedElementsShowTheirPictures();
    void HighlightFollowsSteps();

private:
    template<typename Type>
    Type* Find(const char* panel, const char* name) const
    {
        return mWindow->Panels()->Panel(QLatin1String(panel))->findChild<Type*>(QLatin1String(name));
    }
    QTreeWidget* Rows() const { return mWindow->Panels()->Panel("details")->findChild<QTreeWidget*>(); }
    QPoint Row(int row, double share = 0.5) const
    {
        const QRect rect = Rows()->visualItemRect(Rows()->topLevelItem(row));
        return {40, rect.top() + int(share * rect.height())};
    }
    static void Click(QWidget* widget, const QPoint& place);
    bool WaitForNumber(int number)
    {
        return QTest::qWaitFor([&] { return PlayerProbe::NumberOnScreen(mWindow.get()) == number; }, 8000);
    }
    /// Shows a timeline of the sample movie and of frames 11 to 20 of another.
    std::shared_ptr<ElementTimeline> ShowTwoElements();

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerPanels::init()
{
    Settings::RestoreDefaults();
    Settings::displayConfirmationOnClose = false;
    QFile::remove(PlayerState::Path());
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    mWindow->resize(1300, 900);
    // The project's default timeline, which is empty, was there before.
    QTRY_VERIFY(mWindow->Playback()->LeadingTimeline()->IsSourceTimeline());
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPanels::cleanup()
{
    mWindow.reset();
}

void tst_PlayerPanels::Click(QWidget* widget, const QPoint& place)
{
    InputEvents::Press(widget, place);
    InputEvents::Release(widget, place);
}

std::shared_ptr<ElementTimeline> tst_PlayerPanels::ShowTwoElements()
{
    Project* const project = mWindow->GetProject();
    const QString other = NumberedMedia::Movie(
        "panel_other.mp4", 30, "24", {"-c:v", "libx264", "-g", "12", "-pix_fmt", "yuv420p"}, QSize(320, 180));
    project->Import({other});
    if (!QTest::qWaitFor([&] { return project->FindSourceByPath(other) != nullptr; }))
        return nullptr;
    const auto source = project->FindSourceByPath(other);
    project->SetRange(source->GetID(), 11, 20);
    const auto timeline = project->FindElementTimeline(project->AddTimeline());
    project->InsertElements(
        timeline->GetID(), {project->FindSourceByPath(PlayerProbe::SampleMovie())->GetID(), source->GetID()});
    mWindow->ShowTimeline(timeline, 0);
    return timeline;
}

void tst_PlayerPanels::OpenedMovieShowsItsPathAndRange()
{
    auto* const form = mWindow->Panels()->Panel("properties");
    QVERIFY(form && form->isVisible());
    QVERIFY(Find<QGroupBox>("properties", "sourceGroup")->isVisible());
    QCOMPARE(Find<QLineEdit>("properties", "sourcePathEdit")->text(), PlayerProbe::SampleMovie());
    QCOMPARE(Find<QSpinBox>("properties", "inSpinBox")->value(), 1);
    QCOMPARE(Find<QSpinBox>("properties", "outSpinBox")->value(), 60);
    QVERIFY(mWindow->Panels()->Panel("details")->isVisible());
    QCOMPARE(Rows()->topLevelItemCount(), 0);
}

void tst_PlayerPanels::RangeOfTheFormIsPlaybacksAndUndone()
{
    auto* const box = Find<QSpinBox>("properties", "inSpinBox");
    for (int step = 0; step < 4; ++step)
        Click(box, QPoint(box->width() - 6, box->height() / 4));
    QCOMPARE(mWindow->Playback()->Range(), (PlaybackRange{5, 60}));
    mWindow->Playback()->SetRange(mWindow->Playback()->LeadingTimeline()->FrameToTime(5),
                                  mWindow->Playback()->LeadingTimeline()->FrameToTime(9));
    QCOMPARE(Find<QSpinBox>("properties", "outSpinBox")->value(), 9);
    while (mWindow->Playback()->LeadingTimeline()->HasRange() &&
           mWindow->GetProject()->UndoStack()->canUndo())
        mWindow->GetProject()->UndoStack()->undo();
    QCOMPARE(mWindow->Playback()->Range(), (PlaybackRange{1, 60}));
    QCOMPARE(box->value(), 1);
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPanels::ZoomOfTheViewerShowsInTheForm()
{
    auto* const zoom = Find<QDoubleSpinBox>("properties", "zoomSpinBox");
    QCOMPARE(zoom->value(), 1.0);
    InputEvents::Move(mWindow->Viewer(), mWindow->Viewer()->rect().center());
    InputEvents::Wheel(mWindow->Viewer(), mWindow->Viewer()->rect().center(), 240, Qt::ControlModifier);
    QVERIFY(zoom->value() > 1.0);
    QVERIFY(mWindow->Playback()->LeadingTimeline()->View().enabled);
    const QWidget* const backEnd = mWindow->Viewer()->findChild<QWidget*>();
    QVERIFY(backEnd->width() > mWindow->Viewer()->width());
    auto* const reset = Find<QWidget>("properties", "resetPanZoomButton");
    Click(reset, reset->rect().center());
    QCOMPARE(backEnd->width(), mWindow->Viewer()->width());
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPanels::MovedElementsShowTheirPictures()
{
    const auto timeline = ShowTwoElements();
    QVERIFY(timeline);
    QVERIFY(WaitForNumber(1));
    QCOMPARE(Rows()->topLevelItemCount(), 2);
    QVERIFY(Find<QGroupBox>("properties", "optionsGroup")->isVisible());
    Click(Rows()->viewport(), Row(1));
    auto* const up = Find<QWidget>("details", "moveUpButton");
    Click(up, up->rect().center());
    QVERIFY(WaitForNumber(11));
    QVERIFY(Rows()->topLevelItem(0)->isSelected());
    mWindow->GetProject()->UndoStack()->undo();
    QVERIFY(WaitForNumber(1));
    // Without its source's range the second element is longer.
    mWindow->Playback()->SeekFrame(61);
    QVERIFY(WaitForNumber(11));
    auto* const ranges = Find<QWidget>("properties", "applySourceRangesCheckBox");
    Click(ranges, QPoint(8, ranges->height() / 2));
    QCOMPARE(timeline->FrameCount(), 90);
    QCOMPARE(Find<QSpinBox>("properties", "outSpinBox")->maximum(), 90);
    mWindow->Playback()->SeekFrame(61);
    QVERIFY(WaitForNumber(1));
}

void tst_PlayerPanels::DraggedElementsShowTheirPictures()
{
    const auto timeline = ShowTwoElements();
    QVERIFY(timeline);
    QVERIFY(WaitForNumber(1));
    QWidget* const viewport = Rows()->viewport();
    // The drag has an event loop of its own, in which these run.
    int delay = 200;
    for (const QPoint& stop : {Row(0, 0.6), Row(0, 0.4), Row(0, 0.2), Row(0, 0.1)})
    {
        QTimer::singleShot(delay, viewport,
                           [viewport, stop] { InputEvents::Move(viewport, stop, Qt::LeftButton); });
        delay += 80;
    }
    const QPoint last = Row(0, 0.1);
    QTimer::singleShot(delay, viewport, [viewport, last] { InputEvents::Release(viewport, last); });
    InputEvents::Press(viewport, Row(1));
    InputEvents::Move(viewport, Row(1) + QPoint(5, 1), Qt::LeftButton);
    InputEvents::Move(viewport, Row(1) + QPoint(20, 1), Qt::LeftButton);
    QVERIFY(WaitForNumber(11));
    QCOMPARE(timeline->GetElements().front()->SourceTimeline()->Range(), (PlaybackRange{11, 20}));
}

void tst_PlayerPanels::HighlightFollowsSteps()
{
    QVERIFY(ShowTwoElements());
    QVERIFY(WaitForNumber(1));
    const QColor color = Rows()->palette().color(QPalette::AlternateBase);
    QCOMPARE(Rows()->topLevelItem(0)->data(0, Qt::BackgroundRole).value<QColor>(), color);
    mWindow->Playback()->SeekFrame(60);
    mWindow->Playback()->StepForwards();
    QCOMPARE(Rows()->topLevelItem(1)->data(0, Qt::BackgroundRole).value<QColor>(), color);
    QVERIFY(Rows()->topLevelItem(0)->data(0, Qt::BackgroundRole).value<QColor>() != color);
    QTest::mouseClick(Rows()->viewport(), Qt::LeftButton, Qt::NoModifier, Row(0));
    QTest::mouseDClick(Rows()->viewport(), Qt::LeftButton, Qt::NoModifier, Row(0));
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 1);
}

static const TestRegistration<tst_PlayerPanels> PlayerPanelsRegistration;

#include "tst_PlayerPanels.moc"
