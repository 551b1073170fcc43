// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "project/MediaSource.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/TimelinePropertiesWidget.h"
#include "window/PanelBench.h"

#include <QApplication>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

/// The form of properties in the player: each of its edits as a step of the project, and what it shows.
class tst_PropertiesPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mBench.reset(); }

    void GroupsFollowTheTimeline();
    void RangeIsEditedAndUndone();
    void CrossedRangeIsOneFrame();
    void RangeSetElsewhereShows();
    void FrameCountFollowsTheElements();
    void PanAndZoomAreEditedAndUndone();
    void LeavingABoxChangesNothing();
    void ResetIsExact();
    void EachTimelineHasItsView();
    void ViewersRequestsAreSteps();
    void WithoutATimelineAllIsHarmless();
    void SourceRangesApplyOrNot();
    void PathsAreShown();
    void TypedPathReplacesTheSource();
    void TypedPathThatIsNoMediumIsPutBack();
    void ReplaceAsksForAFile();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        return mBench->properties.Form()->findChild<Type*>(QLatin1String(name));
    }
    /// Presses the upper or lower arrow of the box @p name.
    void Step(const char* name, bool up);
    void Type(QWidget* into, const QString& text);
    QStringList Groups() const;
    QString Views();

    std::unique_ptr<PanelBench> mBench;
    QStringList mViews;
};

void tst_PropertiesPanel::init()
{
    Settings::RestoreDefaults();
    mBench = std::make_unique<PanelBench>();
    mViews.clear();
    connect(&mBench->properties, &PropertiesBinding::PanZoomChanged, this,
            [this](QPointF pan, float zoom, bool enabled)
            {
                mViews << QStringLiteral("%1 %2 %3 %4")
                              .arg(pan.x())
                              .arg(pan.y())
                              .arg(double(zoom))
                              .arg(enabled ? "on" : "off");
            });
}

void tst_PropertiesPanel::Step(const char* name, bool up)
{
    auto* const box = Find<QAbstractSpinBox>(name);
    const QPoint place(box->width() - 6, up ? box->height() / 4 : box->height() * 3 / 4);
    InputEvents::Press(box, place);
    InputEvents::Release(box, place);
}

void tst_PropertiesPanel::Type(QWidget* into, const QString& text)
{
    QLineEdit* const edit =
        qobject_cast<QLineEdit*>(into) ? static_cast<QLineEdit*>(into) : into->findChild<QLineEdit*>();
    InputEvents::Press(edit, QPoint(8, edit->height() / 2));
    InputEvents::Release(edit, QPoint(8, edit->height() / 2));
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

QStringList tst_PropertiesPanel::Groups() const
{
    QStringList titles;
    for (const QGroupBox* group : mBench->properties.Form()->findChildren<QGroupBox*>())
    {
        if (group->isVisible())
            titles << group->title();
    }
    return titles;
}

QString tst_PropertiesPanel::Views()
{
    const QString views = mViews.join(QLatin1String(", "));
    mViews.clear();
    return views;
}

void tst_PropertiesPanel::GroupsFollowTheTimeline()
{
    QCOMPARE(mBench->area.Panel("properties"), mBench->properties.Form());
    QCOMPARE(Groups(), QStringList{"Pan/Zoom"});
    mBench->Lead(mBench->AddTimeline({"a"}));
    QCOMPARE(Groups(), (QStringList{"Range", "Pan/Zoom", "Options"}));
    mBench->Lead(mBench->AddSource("b"));
    QCOMPARE(Groups(), (QStringList{"Source Input", "Range", "Pan/Zoom"}));
    mBench->Lead(nullptr);
    QCOMPARE(Groups(), QStringList{"Pan/Zoom"});
}

void tst_PropertiesPanel::RangeIsEditedAndUndone()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 1);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 48);
    const int steps = mBench->project.UndoStack()->count();
    Step("inSpinBox", true);
    QCOMPARE(timeline->Range(), (PlaybackRange{2, 48}));
    QCOMPARE(mBench->playback.Range(), (PlaybackRange{2, 48}));
    Type(Find<QSpinBox>("outSpinBox"), "30");
    QCOMPARE(timeline->Range(), (PlaybackRange{2, 30}));
    QCOMPARE(mBench->playback.Range(), (PlaybackRange{2, 30}));
    // Steps within a moment are one.
    QCOMPARE(mBench->project.UndoStack()->count(), steps + 1);
    mBench->Undo();
    QVERIFY(!timeline->HasRange());
    QCOMPARE(mBench->playback.Range(), (PlaybackRange{1, 48}));
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 48);
    mBench->Redo();
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 30);
    PanelBench::Click(Find<QPushButton>("resetRangeButton"));
    QCOMPARE(mBench->playback.Range(), (PlaybackRange{1, 48}));
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 1);
}

void tst_PropertiesPanel::CrossedRangeIsOneFrame()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    mBench->project.SetRange(timeline->GetID(), 10, 20);
    Type(Find<QSpinBox>("inSpinBox"), "35");
    QCOMPARE(timeline->Range(), (PlaybackRange{35, 35}));
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 35);
    Type(Find<QSpinBox>("outSpinBox"), "5");
    QCOMPARE(timeline->Range(), (PlaybackRange{5, 5}));
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 5);
}

void tst_PropertiesPanel::RangeSetElsewhereShows()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    mBench->playback.SetRange(timeline->FrameToTime(7), timeline->FrameToTime(9));
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 7);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 9);
}

void tst_PropertiesPanel::FrameCountFollowsTheElements()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    mBench->project.RemoveElements(timeline->GetID(), {timeline->GetElements()[0]->GetID()});
    QCOMPARE(Find<QSpinBox>("outSpinBox")->maximum(), 24);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 24);
    mBench->Undo();
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 48);
    mBench->Lead(mBench->project.FindElementTimeline(mBench->project.AddTimeline()));
    QCOMPARE(Find<QSpinBox>("outSpinBox")->maximum(), 0);
}

void tst_PropertiesPanel::PanAndZoomAreEditedAndUndone()
{
    const auto timeline = mBench->AddTimeline({"a"});
    mBench->Lead(timeline);
    Views();
    PanelBench::Click(Find<QCheckBox>("panZoomEnabledCheckBox"));
    Type(Find<QDoubleSpinBox>("zoomSpinBox"), "2.5");
    Step("panXSpinBox", true);
    QCOMPARE(Views(), QStringLiteral("0 0 1 on, 0 0 2.5 on, 0.1 0 2.5 on"));
    QCOMPARE(timeline->View(), (PanZoom{QPointF(0.1, 0), 2.5F, true}));
    mBench->Undo();
    QCOMPARE(Views(), QStringLiteral("0 0 1 off"));
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->value(), 1.0);
    QVERIFY(!Find<QCheckBox>("panZoomEnabledCheckBox")->isChecked());
    mBench->Redo();
    QCOMPARE(Views(), QStringLiteral("0.1 0 2.5 on"));
}

void tst_PropertiesPanel::LeavingABoxChangesNothing()
{
    const auto timeline = mBench->AddTimeline({"a"});
    mBench->Lead(timeline);
    // Finer than the boxes show.
    const PanZoom view{QPointF(0.12345, -0.98765), 1.7777F, true};
    mBench->project.SetPanZoom(timeline->GetID(), view.pan, view.zoom, view.enabled);
    Views();
    const int steps = mBench->project.UndoStack()->count();
    for (const char* name : {"panXSpinBox", "panYSpinBox", "zoomSpinBox", "inSpinBox", "outSpinBox"})
        Find<QWidget>(name)->setFocus();
    mBench->Rows()->setFocus();
    QCOMPARE(timeline->View(), view);
    QCOMPARE(mBench->project.UndoStack()->count(), steps);
    QCOMPARE(Views(), QString());
    // A zoom beyond the box's end shows as the end, and stays as well.
    mBench->project.SetPanZoom(timeline->GetID(), {}, Settings::zoomMaximum * 2, true);
    Find<QWidget>("zoomSpinBox")->setFocus();
    mBench->Rows()->setFocus();
    QCOMPARE(timeline->View().zoom, Settings::zoomMaximum * 2);
}

void tst_PropertiesPanel::ResetIsExact()
{
    const auto timeline = mBench->AddTimeline({"a"});
    mBench->Lead(timeline);
    mBench->project.SetPanZoom(timeline->GetID(), QPointF(0.001, 0.002), 1.01F, false);
    PanelBench::Click(Find<QPushButton>("resetPanZoomButton"));
    QCOMPARE(timeline->View(), PanZoom());
}

void tst_PropertiesPanel::EachTimelineHasItsView()
{
    const auto first = mBench->AddTimeline({"a"});
    const auto second = mBench->AddTimeline({"b"});
    mBench->project.SetPanZoom(second->GetID(), QPointF(0.5, 0.25), 4, true);
    QCOMPARE(Views(), QString());
    mBench->Lead(first);
    QCOMPARE(Views(), QStringLiteral("0 0 1 off"));
    mBench->Lead(second);
    QCOMPARE(Views(), QStringLiteral("0.5 0.25 4 on"));
    QCOMPARE(Find<QDoubleSpinBox>("panYSpinBox")->value(), 0.25);
    // What changes of a timeline without another view is not told.
    mBench->project.SetRange(second->GetID(), 2, 3);
    QCOMPARE(Views(), QString());
}

void tst_PropertiesPanel::ViewersRequestsAreSteps()
{
    const auto timeline = mBench->AddTimeline({"a"});
    mBench->Lead(timeline);
    Views();
    mBench->properties.RequestPanZoom(QPointF(0.2, 0), 3, true);
    QCOMPARE(Views(), QStringLiteral("0.2 0 3 on"));
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->value(), 3.0);
    mBench->Undo();
    QCOMPARE(Views(), QStringLiteral("0 0 1 off"));
}

void tst_PropertiesPanel::WithoutATimelineAllIsHarmless()
{
    const int steps = mBench->project.UndoStack()->count();
    Type(Find<QDoubleSpinBox>("zoomSpinBox"), "2");
    QCOMPARE(Views(), QStringLiteral("0 0 2 off"));
    mBench->properties.Form()->OnResetRange();
    mBench->properties.Form()->OnSourceInOutsToggled();
    mBench->properties.Form()->OnSourcePathChanged();
    QCOMPARE(mBench->project.UndoStack()->count(), steps);
}

void tst_PropertiesPanel::SourceRangesApplyOrNot()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->project.SetRange(mBench->project.FindSourceByPath("/media/a")->GetID(), 5, 9);
    mBench->Lead(timeline);
    QCOMPARE(timeline->FrameCount(), 29);
    auto* const box = Find<QCheckBox>("applySourceRangesCheckBox");
    QVERIFY(box->isChecked());
    PanelBench::Click(box);
    QVERIFY(!box->isChecked());
    QCOMPARE(timeline->FrameCount(), 48);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 48);
    mBench->Undo();
    QVERIFY(box->isChecked());
    QCOMPARE(timeline->FrameCount(), 29);
}

void tst_PropertiesPanel::PathsAreShown()
{
    mBench->Lead(mBench->AddSource("a.mov"));
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->text(), QStringLiteral("/media/a.mov"));
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("<not set>"));
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->text(), QStringLiteral("<not available>"));
    ProjectSettings settings = mBench->project.GetSettings();
    settings.sourceRoot = QStringLiteral("/media");
    mBench->project.SetSettings(settings);
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("/media"));
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->text(), QStringLiteral("a.mov"));
    mBench->Undo();
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("<not set>"));
}

void tst_PropertiesPanel::TypedPathReplacesTheSource()
{
    const QString path =
        NumberedMedia::Movie("panel_a.mp4", 12, "24", {"-c:v", "libx264", "-pix_fmt", "yuv420p"});
    const auto source = mBench->AddSource("a.mov");
    mBench->Lead(source);
    auto* const edit = Find<QLineEdit>("sourcePathEdit");
    Type(edit, path);
    QTRY_COMPARE(source->GetMediaSource()->GetPath(), path);
    QCOMPARE(edit->text(), path);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 12);
    mBench->Undo();
    QCOMPARE(edit->text(), QStringLiteral("/media/a.mov"));
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 24);
    // The same path again, or none, is no request.
    const int steps = mBench->project.UndoStack()->index();
    Type(edit, "/media/a.mov");
    Type(edit, "");
    QCOMPARE(edit->text(), QStringLiteral("/media/a.mov"));
    QVERIFY(!mBench->project.IsReading());
    QCOMPARE(mBench->project.UndoStack()->index(), steps);
}

void tst_PropertiesPanel::TypedPathThatIsNoMediumIsPutBack()
{
    mBench->Lead(mBench->AddSource("a.mov"));
    QSignalSpy refused(&mBench->project, SIGNAL(Refused(QString)));
    Type(Find<QLineEdit>("sourcePathEdit"), "/no/such/file.mov");
    QTRY_COMPARE(refused.size(), 1);
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->text(), QStringLiteral("/media/a.mov"));
}

void tst_PropertiesPanel::ReplaceAsksForAFile()
{
    const QString path =
        NumberedMedia::Movie("panel_a.mp4", 12, "24", {"-c:v", "libx264", "-pix_fmt", "yuv420p"});
    const auto source = mBench->AddSource("a.mov");
    mBench->Lead(source);
    for (const bool isChosen : {false, true})
    {
        bool hasOpened = false;
        QTimer::singleShot(100, this,
                           [&]
                           {
                               auto* const dialog =
                                   qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                               hasOpened = dialog != nullptr;
                               if (!dialog)
                                   return;
                               dialog->selectFile(path);
                               if (isChosen)
                                   dialog->findChild<QLineEdit*>()->setText(path);
                               isChosen ? static_cast<QDialog*>(dialog)->accept() : dialog->reject();
                           });
        PanelBench::Click(Find<QPushButton>("replaceButton"));
        QVERIFY(hasOpened);
        if (!isChosen)
            QVERIFY(!mBench->project.IsReading());
    }
    QTRY_COMPARE(source->GetMediaSource()->GetPath(), path);
}

static const TestRegistration<tst_PropertiesPanel> PropertiesPanelRegistration;

#include "tst_PropertiesPanel.moc"
