// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/CallLog.h"
#include "views/TimelinePropertiesWidget.h"

#include <QApplication>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

Q_DECLARE_METATYPE(PropertiesDisplayType)

static_assert(PropertiesDisplayNone == 0 && PropertiesDisplaySource == 1 && PropertiesDisplayTimeline == 2);

/// What the form shows, and what its setters do; its edits are in tst_TimelinePropertiesEdits.
class tst_TimelinePropertiesWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mPanel.reset(); }

    void GroupsStandInOrder();
    void SourceGroupIsLaidOut();
    void RangeGroupIsLaidOut();
    void PanZoomGroupIsLaidOut();
    void OptionsGroupIsLaidOut();
    void BoxesHaveTheirRanges();
    void ZoomMaximumIsReadOnceAtConstruction();
    void DisplayTypeChoosesTheGroups_data();
    void DisplayTypeChoosesTheGroups();
    void DisplayTypeKeepsWhatIsHidden();
    void RelativePathShowsWhileChecked();
    void FrameCountSetsTheRange_data();
    void FrameCountSetsTheRange();
    void FrameRangeIsClampedInSilence();
    void PanAndZoomAreSetInSilence();
    void SourceInputShowsItsBeginning();
    void EmptyPathsAreToldAsSuch();
    void PathsAreNoMarkup();
    void SourceInOutsAreSetInSilence();
    void SettersLeaveBlockedSignalsBlocked();
    void RightClickOpensNothing();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        return mPanel->findChild<Type*>(QLatin1String(name));
    }
    QStringList VisibleGroups() const;

    std::unique_ptr<TimelinePropertiesWidget> mPanel;
};

namespace
{

/// What stands in @p layout, by name: widgets by theirs, layouts by their own lists, stretches as "-".
QString Laid(const QLayout* layout)
{
    QStringList items;
    for (int index = 0; index < layout->count(); ++index)
    {
        QLayoutItem* const item = layout->itemAt(index);
        if (item->widget())
            items << item->widget()->objectName();
        else if (item->layout())
            items << Laid(item->layout());
        else
            items << ((item->expandingDirections() != 0) ? QStringLiteral("-") : QStringLiteral("gap"));
    }
    return QStringLiteral("%1[%2]").arg(QLatin1String(layout->metaObject()->className()),
                                        items.join(QLatin1Char(' ')));
}

/// The margins of a layout that nobody has given any.
QMargins DefaultMargins()
{
    QWidget window;
    return QVBoxLayout(&window).contentsMargins();
}

} // namespace

void tst_TimelinePropertiesWidget::init()
{
    Settings::RestoreDefaults();
    mPanel = std::make_unique<TimelinePropertiesWidget>();
}

QStringList tst_TimelinePropertiesWidget::VisibleGroups() const
{
    QStringList titles;
    for (const QGroupBox* group : mPanel->findChildren<QGroupBox*>())
    {
        if (group->isVisibleTo(mPanel.get()))
            titles << group->title();
    }
    return titles;
}

void tst_TimelinePropertiesWidget::GroupsStandInOrder()
{
    QCOMPARE(Laid(mPanel->layout()),
             QStringLiteral("QVBoxLayout[sourceGroup rangeGroup panZoomGroup optionsGroup -]"));
    QCOMPARE(mPanel->layout()->contentsMargins(), DefaultMargins());
    QCOMPARE(Find<QGroupBox>("sourceGroup")->title(), QStringLiteral("Source Input"));
    QCOMPARE(Find<QGroupBox>("rangeGroup")->title(), QStringLiteral("Range"));
    QCOMPARE(Find<QGroupBox>("panZoomGroup")->title(), QStringLiteral("Pan/Zoom"));
    QCOMPARE(Find<QGroupBox>("optionsGroup")->title(), QStringLiteral("Options"));
    QCOMPARE(VisibleGroups(), QStringList{"Pan/Zoom"});
}

void tst_TimelinePropertiesWidget::SourceGroupIsLaidOut()
{
    const QLayout* const layout = Find<QGroupBox>("sourceGroup")->layout();
    QCOMPARE(Laid(layout),
             QStringLiteral("QVBoxLayout[QHBoxLayout[sourcePathEdit replaceButton] "
                            "QFormLayout[sourceRootLabel sourceRootValueLabel relativePathLabel "
                            "relativePathValueLabel] showRelativePathCheckBox]"));
    QCOMPARE(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(layout->itemAt(0)->layout()->contentsMargins(), QMargins());
    auto* form = qobject_cast<QFormLayout*>(layout->itemAt(1)->layout());
    QVERIFY(form);
    QCOMPARE(form->rowCount(), 2);
    QCOMPARE(form->labelForField(Find<QLabel>("sourceRootValueLabel")), Find<QLabel>("sourceRootLabel"));
    QCOMPARE(form->labelForField(Find<QLabel>("relativePathValueLabel")), Find<QLabel>("relativePathLabel"));
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->text(), QString());
    QCOMPARE(Find<QPushButton>("replaceButton")->text(), QStringLiteral("Replace"));
    QCOMPARE(Find<QLabel>("sourceRootLabel")->text(), QStringLiteral("Source Root:   "));
    QCOMPARE(Find<QLabel>("relativePathLabel")->text(), QStringLiteral("Relative Path:  "));
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("<not set>"));
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->text(), QStringLiteral("<not available>"));
    for (const char* name : {"sourceRootValueLabel", "relativePathValueLabel"})
        QCOMPARE(Find<QLabel>(name)->textInteractionFlags(), Qt::TextSelectableByMouse);
    for (const char* name :
         {"sourceRootLabel", "sourceRootValueLabel", "relativePathLabel", "relativePathValueLabel"})
        QVERIFY(Find<QLabel>(name)->isHidden());
    QCOMPARE(Find<QCheckBox>("showRelativePathCheckBox")->text(), QStringLiteral("Show Relative Path"));
    QVERIFY(!Find<QCheckBox>("showRelativePathCheckBox")->isChecked());
}

void tst_TimelinePropertiesWidget::RangeGroupIsLaidOut()
{
    const QLayout* const layout = Find<QGroupBox>("rangeGroup")->layout();
    QCOMPARE(Laid(layout), QStringLiteral("QHBoxLayout[inSpinBox outSpinBox resetRangeButton -]"));
    QCOMPARE(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(layout->spacing(), 2);
    for (const char* name : {"inSpinBox", "outSpinBox"})
    {
        QCOMPARE(Find<QSpinBox>(name)->minimumWidth(), 82);
        QCOMPARE(Find<QSpinBox>(name)->maximumWidth(), 82);
    }
    QCOMPARE(Find<QPushButton>("resetRangeButton")->text(), QStringLiteral("Reset"));
    QCOMPARE(Find<QPushButton>("resetRangeButton")->minimumWidth(), 54);
    QCOMPARE(Find<QPushButton>("resetRangeButton")->maximumWidth(), 54);
}

void tst_TimelinePropertiesWidget::PanZoomGroupIsLaidOut()
{
    const QLayout* const layout = Find<QGroupBox>("panZoomGroup")->layout();
    QCOMPARE(Laid(layout),
             QStringLiteral("QVBoxLayout[QHBoxLayout[panXSpinBox panYSpinBox zoomSpinBox resetPanZoomButton "
                            "-] QHBoxLayout[panZoomEnabledCheckBox -]]"));
    QCOMPARE(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(layout->spacing(), 2);
    QCOMPARE(layout->itemAt(0)->layout()->contentsMargins(), QMargins());
    QCOMPARE(layout->itemAt(0)->layout()->spacing(), 2);
    QCOMPARE(layout->itemAt(1)->layout()->contentsMargins(), QMargins());
    for (const char* name : {"panXSpinBox", "panYSpinBox", "zoomSpinBox", "resetPanZoomButton"})
    {
        QCOMPARE(Find<QWidget>(name)->minimumWidth(), 54);
        QCOMPARE(Find<QWidget>(name)->maximumWidth(), 54);
    }
    QCOMPARE(Find<QPushButton>("resetPanZoomButton")->text(), QStringLiteral("Reset"));
    QCOMPARE(Find<QCheckBox>("panZoomEnabledCheckBox")->text(), QStringLiteral("Enabled"));
    QVERIFY(!Find<QCheckBox>("panZoomEnabledCheckBox")->isChecked());
}

void tst_TimelinePropertiesWidget::OptionsGroupIsLaidOut()
{
    const QLayout* const layout = Find<QGroupBox>("optionsGroup")->layout();
    QCOMPARE(Laid(layout), QStringLiteral("QVBoxLayout[applySourceRangesCheckBox]"));
    QCOMPARE(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(Find<QCheckBox>("applySourceRangesCheckBox")->text(), QStringLiteral("Apply Source Ranges"));
    QVERIFY(Find<QCheckBox>("applySourceRangesCheckBox")->isChecked());
}

void tst_TimelinePropertiesWidget::BoxesHaveTheirRanges()
{
    for (const char* name : {"inSpinBox", "outSpinBox"})
    {
        const auto* const box = Find<QSpinBox>(name);
        QCOMPARE(box->minimum(), 0);
        QCOMPARE(box->maximum(), 0);
        QCOMPARE(box->value(), 0);
        QCOMPARE(box->singleStep(), 1);
    }
    for (const char* name : {"panXSpinBox", "panYSpinBox"})
    {
        const auto* const box = Find<QDoubleSpinBox>(name);
        QCOMPARE(box->minimum(), -1.0);
        QCOMPARE(box->maximum(), 1.0);
        QCOMPARE(box->singleStep(), 0.1);
        QCOMPARE(box->decimals(), 2);
        QCOMPARE(box->value(), 0.0);
    }
    const auto* const zoom = Find<QDoubleSpinBox>("zoomSpinBox");
    QCOMPARE(zoom->minimum(), 1.0);
    QCOMPARE(zoom->maximum(), double(Settings::zoomMaximum));
    QCOMPARE(zoom->singleStep(), 0.1);
    QCOMPARE(zoom->decimals(), 1);
    QCOMPARE(zoom->value(), 1.0);
}

void tst_TimelinePropertiesWidget::ZoomMaximumIsReadOnceAtConstruction()
{
    Settings::zoomMaximum = 7.5F;
    QVERIFY(Find<QDoubleSpinBox>("zoomSpinBox")->maximum() > 7.5);
    mPanel = std::make_unique<TimelinePropertiesWidget>();
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->maximum(), 7.5);
}

void tst_TimelinePropertiesWidget::DisplayTypeChoosesTheGroups_data()
{
    QTest::addColumn<PropertiesDisplayType>("type");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("none") << PropertiesDisplayNone << QStringList{"Pan/Zoom"};
    QTest::newRow("source") << PropertiesDisplaySource << QStringList{"Source Input", "Range", "Pan/Zoom"};
    QTest::newRow("timeline") << PropertiesDisplayTimeline << QStringList{"Range", "Pan/Zoom", "Options"};
}

void tst_TimelinePropertiesWidget::DisplayTypeChoosesTheGroups()
{
    QFETCH(PropertiesDisplayType, type);
    QFETCH(QStringList, titles);
    for (const PropertiesDisplayType former :
         {PropertiesDisplayNone, PropertiesDisplaySource, PropertiesDisplayTimeline})
    {
        mPanel->SetDisplayType(former);
        mPanel->SetDisplayType(type);
        QCOMPARE(VisibleGroups(), titles);
        // Pan and zoom are not the display type's business.
        Find<QGroupBox>("panZoomGroup")->hide();
        mPanel->SetDisplayType(type);
        QVERIFY(Find<QGroupBox>("panZoomGroup")->isHidden());
        Find<QGroupBox>("panZoomGroup")->show();
    }
}

void tst_TimelinePropertiesWidget::DisplayTypeKeepsWhatIsHidden()
{
    mPanel->SetFrameCount(100);
    mPanel->SetFrameRange(10, 20);
    mPanel->SetSourceInput(NumberedID(1), "/a.mov", "a.mov");
    mPanel->SetUseSourceInOuts(false);
    for (const PropertiesDisplayType type :
         {PropertiesDisplaySource, PropertiesDisplayNone, PropertiesDisplayTimeline})
        mPanel->SetDisplayType(type);
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 10);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 20);
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->text(), QStringLiteral("/a.mov"));
    QVERIFY(!Find<QCheckBox>("applySourceRangesCheckBox")->isChecked());
}

void tst_TimelinePropertiesWidget::RelativePathShowsWhileChecked()
{
    mPanel->SetDisplayType(PropertiesDisplaySource);
    auto* const box = Find<QCheckBox>("showRelativePathCheckBox");
    const QList<QLabel*> labels = Find<QGroupBox>("sourceGroup")->findChildren<QLabel*>();
    QCOMPARE(labels.size(), 4);
    CallLog log(mPanel.get());
    box->click();
    for (const QLabel* label : labels)
        QVERIFY(label->isVisibleTo(mPanel.get()));
    // Coming back to the source takes the state that the box holds then.
    mPanel->SetDisplayType(PropertiesDisplayTimeline);
    box->setChecked(false);
    for (const QLabel* label : labels)
        QVERIFY(!label->isHidden());
    mPanel->SetDisplayType(PropertiesDisplaySource);
    for (const QLabel* label : labels)
        QVERIFY(label->isHidden());
    box->setChecked(true);
    mPanel->SetDisplayType(PropertiesDisplaySource);
    for (const QLabel* label : labels)
        QVERIFY(label->isVisibleTo(mPanel.get()));
    box->click();
    for (const QLabel* label : labels)
        QVERIFY(label->isHidden());
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelinePropertiesWidget::FrameCountSetsTheRange_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::newRow("none") << 0 << 0 << 0;
    QTest::newRow("negative") << -5 << 0 << 0;
    QTest::newRow("most negative") << INT_MIN << 0 << 0;
    QTest::newRow("one") << 1 << 1 << 1;
    QTest::newRow("many") << 240 << 1 << 240;
    QTest::newRow("most") << INT_MAX << 1 << INT_MAX;
}

void tst_TimelinePropertiesWidget::FrameCountSetsTheRange()
{
    QFETCH(int, count);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    mPanel->SetFrameCount(500);
    mPanel->SetFrameRange(400, 450);
    CallLog log(mPanel.get());
    mPanel->SetFrameCount(count);
    for (const char* name : {"inSpinBox", "outSpinBox"})
    {
        const auto* const box = Find<QSpinBox>(name);
        QCOMPARE(box->minimum(), lowest);
        QCOMPARE(box->maximum(), highest);
        QVERIFY(!box->signalsBlocked());
    }
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), qBound(lowest, 400, highest));
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), qBound(lowest, 450, highest));
    QVERIFY(log.Take().isEmpty());
    mPanel->OnResetRange();
    QCOMPARE(log.Take(),
             QStringList{QStringLiteral("RangeChangeRequested(%1, %2)").arg(lowest).arg(highest)});
}

void tst_TimelinePropertiesWidget::FrameRangeIsClampedInSilence()
{
    mPanel->SetFrameCount(100);
    CallLog log(mPanel.get());
    QSignalSpy spy(Find<QSpinBox>("inSpinBox"), SIGNAL(valueChanged(int)));
    mPanel->SetFrameRange(-3, 1000);
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 1);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 100);
    mPanel->SetFrameRange(70, 30);
    QCOMPARE(Find<QSpinBox>("inSpinBox")->value(), 70);
    QCOMPARE(Find<QSpinBox>("outSpinBox")->value(), 30);
    QVERIFY(spy.isEmpty());
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelinePropertiesWidget::PanAndZoomAreSetInSilence()
{
    CallLog log(mPanel.get());
    mPanel->SetPanAndZoom(QPointF(0.25, -0.5), 3.5F, true);
    QCOMPARE(Find<QDoubleSpinBox>("panXSpinBox")->value(), 0.25);
    QCOMPARE(Find<QDoubleSpinBox>("panYSpinBox")->value(), -0.5);
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->value(), 3.5);
    QVERIFY(Find<QCheckBox>("panZoomEnabledCheckBox")->isChecked());
    mPanel->SetPanAndZoom(QPointF(-9, 9), 0.1F, false);
    QCOMPARE(Find<QDoubleSpinBox>("panXSpinBox")->value(), -1.0);
    QCOMPARE(Find<QDoubleSpinBox>("panYSpinBox")->value(), 1.0);
    QCOMPARE(Find<QDoubleSpinBox>("zoomSpinBox")->value(), 1.0);
    QVERIFY(!Find<QCheckBox>("panZoomEnabledCheckBox")->isChecked());
    QCoreApplication::processEvents();
    QVERIFY(log.Take().isEmpty());
    for (const char* name : {"panXSpinBox", "panYSpinBox", "zoomSpinBox", "panZoomEnabledCheckBox"})
        QVERIFY(!Find<QWidget>(name)->signalsBlocked());
}

void tst_TimelinePropertiesWidget::SourceInputShowsItsBeginning()
{
    CallLog log(mPanel.get());
    const QString path = QStringLiteral("/plates/") + QString(300, QLatin1Char('x')) + QStringLiteral(".mov");
    mPanel->SetSourceInput(NumberedID(4), path, QStringLiteral("x.mov"));
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->text(), path);
    QCOMPARE(Find<QLineEdit>("sourcePathEdit")->cursorPosition(), 0);
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->text(), QStringLiteral("x.mov"));
    QVERIFY(log.Take().isEmpty());
    mPanel->OnSourcePathChanged();
    mPanel->SelectSourcePath();
    const QStringList calls = {QStringLiteral("SourceChangeRequested(#4, %1, )").arg(path),
                               QStringLiteral("SourceChangeRequested(#4, , %1)").arg(path)};
    QCOMPARE(log.Take(), calls);
}

void tst_TimelinePropertiesWidget::EmptyPathsAreToldAsSuch()
{
    mPanel->SetSourceRootPath("/plates");
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("/plates"));
    mPanel->SetSourceRootPath(QString());
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->text(), QStringLiteral("<not set>"));
    mPanel->SetSourceInput(NumberedID(1), "/a.mov", "a.mov");
    mPanel->SetSourceInput(NumberedID(1), "/a.mov", "");
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->text(), QStringLiteral("<not available>"));
    // Before any source there is no id to tell.
    mPanel = std::make_unique<TimelinePropertiesWidget>();
    CallLog log(mPanel.get());
    mPanel->SelectSourcePath();
    QCOMPARE(log.Take(), QStringList{"SourceChangeRequested(null, , )"});
}

void tst_TimelinePropertiesWidget::PathsAreNoMarkup()
{
    mPanel->SetSourceRootPath("/a<b>c</b>");
    QCOMPARE(Find<QLabel>("sourceRootValueLabel")->textFormat(), Qt::PlainText);
    QCOMPARE(Find<QLabel>("relativePathValueLabel")->textFormat(), Qt::PlainText);
}

void tst_TimelinePropertiesWidget::SourceInOutsAreSetInSilence()
{
    CallLog log(mPanel.get());
    mPanel->SetUseSourceInOuts(false);
    QVERIFY(!Find<QCheckBox>("applySourceRangesCheckBox")->isChecked());
    mPanel->SetUseSourceInOuts(true);
    QVERIFY(Find<QCheckBox>("applySourceRangesCheckBox")->isChecked());
    QVERIFY(log.Take().isEmpty());
}

void tst_TimelinePropertiesWidget::SettersLeaveBlockedSignalsBlocked()
{
    auto* const box = Find<QSpinBox>("inSpinBox");
    box->blockSignals(true);
    mPanel->SetFrameCount(9);
    mPanel->SetFrameRange(2, 3);
    QVERIFY(box->signalsBlocked());
}

void tst_TimelinePropertiesWidget::RightClickOpensNothing()
{
    QCOMPARE(mPanel->contextMenuPolicy(), Qt::CustomContextMenu);
    mPanel->setGeometry(100, 100, 300, 300);
    mPanel->show();
    QVERIFY(QTest::qWaitForWindowExposed(mPanel.get()));
    CallLog log(mPanel.get());
    const QPoint bottom(150, 290);
    InputEvents::Press(mPanel.get(), bottom, Qt::RightButton);
    InputEvents::Release(mPanel.get(), bottom, Qt::RightButton);
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(log.Take().isEmpty());
    const QMetaObject& meta = TimelinePropertiesWidget::staticMetaObject;
    QVERIFY(meta.indexOfSlot("ShowContextMenu(QPoint)") >= 0);
}

static const TestRegistration<tst_TimelinePropertiesWidget> TimelinePropertiesWidgetRegistration;

#include "tst_TimelinePropertiesWidget.moc"
