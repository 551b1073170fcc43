// SPDX-License-Identifier: MIT
#include "dialogs/output/ExportDialog.h"
#include "host/Settings.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QtTest>

/// What the export dialog shows, and how an export runs through it.
class tst_ExportDialogStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void WindowIsAsTold();
    void ControlsStandInOrder();
    void ControlsStartAsTold();
    void StateDecidesWhatIsEnabled_data();
    void StateDecidesWhatIsEnabled();
    void ButtonRowChangesItsShape();
    void StateKeepsProgressAndOutput();
    void ProgressOutOfRangeIsIgnored();
    void ExportIsIgnoredWhileExporting();
    void IdleDialogClosesWithoutAsking_data();
    void IdleDialogClosesWithoutAsking();
    void StopAsksAndStaysOpen();
    void EscapeAsksAndCloses_data();
    void EscapeAsksAndCloses();
    void OutputGoesToItsPanes();
    void OneOutputShowsAtATime();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        Type* const found = mDialog->findChild<Type*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QHBoxLayout* ButtonRow() const
    {
        return qobject_cast<QHBoxLayout*>(mDialog->layout()->itemAt(4)->layout());
    }
    /// The button row, an item a word.
    QString RowShape() const;

    std::unique_ptr<ExportDialog> mDialog;
    std::unique_ptr<ModalScript> mModals;
    std::unique_ptr<QSignalSpy> mCancels;
};

void tst_ExportDialogStates::init()
{
    Settings::RestoreDefaults();
    mDialog = std::make_unique<ExportDialog>(nullptr);
    mModals = std::make_unique<ModalScript>(mDialog.get());
    mCancels = std::make_unique<QSignalSpy>(mDialog.get(), SIGNAL(CancelExportRequested()));
}

void tst_ExportDialogStates::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mCancels.reset();
    mModals.reset();
    mDialog.reset();
}

QString tst_ExportDialogStates::RowShape() const
{
    QStringList words;
    for (int index = 0; index < ButtonRow()->count(); ++index)
    {
        QLayoutItem* const item = ButtonRow()->itemAt(index);
        words << (item->widget() ? item->widget()->objectName() : QStringLiteral("stretch"));
    }
    return words.join(QLatin1Char(' '));
}

void tst_ExportDialogStates::WindowIsAsTold()
{
    QCOMPARE(mDialog->windowTitle(), QStringLiteral("Export"));
    QVERIFY(!(mDialog->windowFlags() & Qt::WindowContextHelpButtonHint));
    QCOMPARE(mDialog->windowFlags() & Qt::WindowType_Mask, int(Qt::Dialog));
    QWidget parent;
    const ExportDialog child(&parent);
    QCOMPARE(child.parentWidget(), &parent);
}

void tst_ExportDialogStates::ControlsStandInOrder()
{
    const auto* const layout = qobject_cast<QVBoxLayout*>(mDialog->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 5);
    const auto* const fileGroup = qobject_cast<QGroupBox*>(layout->itemAt(0)->widget());
    const auto* const optionsGroup = qobject_cast<QGroupBox*>(layout->itemAt(1)->widget());
    QCOMPARE(fileGroup->title(), QStringLiteral("Output File"));
    QCOMPARE(optionsGroup->title(), QStringLiteral("Export Options"));
    for (const QGroupBox* const group : {fileGroup, optionsGroup})
        QCOMPARE(group->layout()->contentsMargins(), QMargins(4, 2, 4, 2));
    QVERIFY(qobject_cast<QHBoxLayout*>(fileGroup->layout()));
    QCOMPARE(fileGroup->layout()->itemAt(0)->widget(), Find<QLineEdit>("outputPathEdit"));
    QCOMPARE(fileGroup->layout()->itemAt(1)->widget(), Find<QPushButton>("browseButton"));

    auto* const form = qobject_cast<QFormLayout*>(optionsGroup->layout());
    QStringList labels;
    QStringList fields;
    for (int row = 0; row < form->rowCount(); ++row)
    {
        labels << qobject_cast<QLabel*>(form->itemAt(row, QFormLayout::LabelRole)->widget())->text();
        QLayoutItem* const field = form->itemAt(row, QFormLayout::FieldRole);
        QStringList names;
        if (field->widget())
            names << field->widget()->objectName();
        for (int index = 0; field->layout() && index < field->layout()->count(); ++index)
        {
            QLayoutItem* const item = field->layout()->itemAt(index);
            const auto* const label = qobject_cast<QLabel*>(item->widget());
            names << (item->spacerItem() ? QStringLiteral("stretch")
                      : label            ? label->text()
                                         : item->widget()->objectName());
        }
        fields << names.join(QLatin1Char(' '));
    }
    QCOMPARE(labels, QStringList({"Dimensions:", "Profile:", "Quality:", "Preset:", "Annotations:",
                                  "Viewer Layout:", "Ignore Range:"}));
    QCOMPARE(fields, QStringList({"widthBox x heightBox timelineButton globalButton stretch",
                                  "profileCombo stretch", "qualityCombo stretch", "presetCombo stretch",
                                  "annotationsBox", "viewerLayoutBox", "ignoreRangeBox"}));

    auto* const output = qobject_cast<QVBoxLayout*>(layout->itemAt(2)->layout());
    QCOMPARE(output->contentsMargins(), QMargins());
    QCOMPARE(output->spacing(), 2);
    QCOMPARE(output->itemAt(0)->widget(), Find<QPlainTextEdit>("basicOutput"));
    QCOMPARE(output->itemAt(1)->widget(), Find<QPlainTextEdit>("detailedOutput"));
    QCOMPARE(output->itemAt(2)->layout()->itemAt(0)->widget(), Find<QCheckBox>("detailedOutputBox"));
    QVERIFY(output->itemAt(2)->layout()->itemAt(1)->spacerItem());
    QCOMPARE(output->itemAt(2)->layout()->itemAt(2)->widget(), Find<QPushButton>("clearButton"));
    QCOMPARE(layout->itemAt(3)->spacerItem()->sizeHint(), QSize(0, 10));
    QCOMPARE(layout->itemAt(3)->spacerItem()->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(ButtonRow()->contentsMargins(), QMargins());
}

void tst_ExportDialogStates::ControlsStartAsTold()
{
    for (const QPushButton* const button : mDialog->findChildren<QPushButton*>())
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QCOMPARE(mDialog->findChildren<QPushButton*>().size(), 6);
    QCOMPARE(Find<QPushButton>("browseButton")->text(), QStringLiteral("Browse..."));
    QCOMPARE(Find<QPushButton>("timelineButton")->text(), QStringLiteral("Timeline"));
    QCOMPARE(Find<QPushButton>("globalButton")->text(), QStringLiteral("Global"));
    QCOMPARE(Find<QPushButton>("clearButton")->text(), QStringLiteral("Clear"));
    QCOMPARE(Find<QPushButton>("exportButton")->text(), QStringLiteral("Export"));
    QCOMPARE(Find<QCheckBox>("detailedOutputBox")->text(), QStringLiteral("Detailed Output"));
    QVERIFY(!Find<QCheckBox>("detailedOutputBox")->isChecked());
    for (const char* const name : {"annotationsBox", "viewerLayoutBox", "ignoreRangeBox"})
        QVERIFY(Find<QCheckBox>(name)->text().isEmpty());
    for (const char* const name : {"widthBox", "heightBox"})
    {
        QCOMPARE(Find<QSpinBox>(name)->buttonSymbols(), QAbstractSpinBox::NoButtons);
        QCOMPARE(Find<QSpinBox>(name)->minimum(), 240);
        QCOMPARE(Find<QSpinBox>(name)->maximum(), 4096);
    }
    for (const char* const name : {"basicOutput", "detailedOutput"})
    {
        const auto* const pane = Find<QPlainTextEdit>(name);
        QVERIFY(pane->isReadOnly());
        QCOMPARE(pane->wordWrapMode(), QTextOption::NoWrap);
        QCOMPARE(pane->font().family(), QStringLiteral("Consolas"));
        QCOMPARE(pane->font().styleHint(), QFont::Monospace);
        QCOMPARE(pane->font().styleStrategy(), QFont::PreferDefault);
    }
    QVERIFY(Find<QPlainTextEdit>("detailedOutput")->isHidden());
    QVERIFY(!Find<QPlainTextEdit>("basicOutput")->isHidden());
    QCOMPARE(Find<QProgressBar>("progressBar")->minimum(), 0);
    QCOMPARE(Find<QProgressBar>("progressBar")->maximum(), 1000);
    QCOMPARE(Find<QProgressBar>("progressBar")->value(), 0);
}

void tst_ExportDialogStates::StateDecidesWhatIsEnabled_data()
{
    QTest::addColumn<bool>("staysEnabled");
    for (const char* const name :
         {"outputPathEdit", "browseButton", "widthBox", "heightBox", "presetCombo", "ignoreRangeBox"})
        QTest::newRow(name) << false;
    for (const char* const name : {"profileCombo", "qualityCombo", "annotationsBox", "viewerLayoutBox",
                                   "timelineButton", "globalButton", "detailedOutputBox", "clearButton",
                                   "basicOutput", "detailedOutput", "exportButton", "closeButton"})
        QTest::newRow(name) << true;
}

void tst_ExportDialogStates::StateDecidesWhatIsEnabled()
{
    QFETCH(bool, staysEnabled);
    const auto* const widget = Find<QWidget>(QTest::currentDataTag());
    QVERIFY(widget->isEnabled());
    mDialog->SetExporting(true);
    QCOMPARE(widget->isEnabled(), staysEnabled);
    mDialog->SetExporting(false);
    QVERIFY(widget->isEnabled());
}

void tst_ExportDialogStates::ButtonRowChangesItsShape()
{
    const QString idle = QStringLiteral("stretch exportButton progressBar closeButton");
    for (const bool exporting : {false, false, true, true, false, true, false, false})
    {
        mDialog->SetExporting(exporting);
        QCOMPARE(RowShape(), exporting ? QStringLiteral("exportButton progressBar closeButton") : idle);
        QCOMPARE(Find<QProgressBar>("progressBar")->isHidden(), !exporting);
        QCOMPARE(Find<QPushButton>("exportButton")->isHidden(), exporting);
        QCOMPARE(Find<QPushButton>("closeButton")->text(), exporting ? "Stop" : "Close");
        if (!exporting)
            QCOMPARE(ButtonRow()->stretch(0), 0);
    }
    mDialog->show();
    const int right = Find<QPushButton>("closeButton")->geometry().right();
    mDialog->SetExporting(true);
    mDialog->layout()->activate();
    QCOMPARE(Find<QPushButton>("closeButton")->geometry().right(), right);
    QVERIFY(Find<QProgressBar>("progressBar")->x() < mDialog->width() / 4);
}

void tst_ExportDialogStates::StateKeepsProgressAndOutput()
{
    mDialog->SetExporting(true);
    mDialog->SetProgressBarValue(473);
    mDialog->AppendOutputText("a line", false);
    for (const bool exporting : {false, true})
    {
        mDialog->SetExporting(exporting);
        QCOMPARE(Find<QProgressBar>("progressBar")->value(), 473);
        QCOMPARE(Find<QPlainTextEdit>("basicOutput")->toPlainText(), QStringLiteral("a line"));
    }
}

void tst_ExportDialogStates::ProgressOutOfRangeIsIgnored()
{
    for (const auto& [value, shown] :
         {std::pair(0, 0), std::pair(1000, 1000), std::pair(1001, 1000), std::pair(5, 5), std::pair(-1, 5)})
    {
        mDialog->SetProgressBarValue(value);
        QCOMPARE(Find<QProgressBar>("progressBar")->value(), shown);
    }
}

void tst_ExportDialogStates::ExportIsIgnoredWhileExporting()
{
    QSignalSpy requests(mDialog.get(),
                        SIGNAL(ExportRequested(QString, int, int, int, int, int, bool, bool, bool)));
    mDialog->SetExporting(true);
    // Not even the suffix is added, and nothing is asked.
    mDialog->SetOutputPath("film");
    mDialog->Export();
    QCOMPARE(Find<QLineEdit>("outputPathEdit")->text(), QStringLiteral("film"));
    QCOMPARE(requests.count(), 0);
    mDialog->SetExporting(false);
    mDialog->SetOutputPath("/no such folder/film");
    mDialog->Export();
    QCOMPARE(requests.count(), 1);
}

void tst_ExportDialogStates::IdleDialogClosesWithoutAsking_data()
{
    QTest::addColumn<QString>("way");
    for (const char* const way : {"button", "escape", "window"})
        QTest::newRow(way) << way;
}

void tst_ExportDialogStates::IdleDialogClosesWithoutAsking()
{
    QFETCH(QString, way);
    QSignalSpy rejected(mDialog.get(), SIGNAL(rejected()));
    mDialog->show();
    if (way == "button")
        Find<QPushButton>("closeButton")->click();
    else if (way == "escape")
        QTest::keyClick(mDialog.get(), Qt::Key_Escape);
    else
        mDialog->close();
    QVERIFY(!mDialog->isVisible());
    QCOMPARE(mCancels->count(), 0);
    QCOMPARE(rejected.count(), 1);
}

void tst_ExportDialogStates::StopAsksAndStaysOpen()
{
    const QStringList asked = {"question|Stop Export|Stop the export process?|Yes,No"};
    mDialog->show();
    mDialog->SetExporting(true);
    auto* const button = Find<QPushButton>("closeButton");
    for (const QMessageBox::StandardButton answer : {QMessageBox::No, QMessageBox::NoButton})
    {
        mModals->Answer(answer);
        button->click();
        QCOMPARE(mModals->Take(), asked);
        QCOMPARE(mCancels->count(), 0);
    }
    mModals->Answer(QMessageBox::Yes);
    button->click();
    QCOMPARE(mModals->Take(), asked);
    QCOMPARE(mCancels->count(), 1);
    QVERIFY(mDialog->isVisible());
    QCOMPARE(button->text(), QStringLiteral("Stop"));
    mDialog->SetExporting(false);
    QCOMPARE(button->text(), QStringLiteral("Close"));
}

void tst_ExportDialogStates::EscapeAsksAndCloses_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("escape") << true;
    QTest::newRow("window") << false;
}

void tst_ExportDialogStates::EscapeAsksAndCloses()
{
    QFETCH(bool, byKey);
    const QStringList asked = {"question|Stop Export|Stop the export process?|Yes,No"};
    const auto leave = [&]
    {
        if (byKey)
            QTest::keyClick(mDialog.get(), Qt::Key_Escape);
        else
            mDialog->close();
    };
    mDialog->show();
    mDialog->SetExporting(true);
    mModals->Answer(QMessageBox::No);
    leave();
    QCOMPARE(mModals->Take(), asked);
    QVERIFY(mDialog->isVisible());
    QCOMPARE(mCancels->count(), 0);
    // The signal comes while the dialog is still there.
    bool wasVisible = false;
    connect(mDialog.get(), &ExportDialog::CancelExportRequested, this,
            [&] { wasVisible = mDialog->isVisible(); });
    mModals->Answer(QMessageBox::Yes);
    leave();
    QCOMPARE(mModals->Take(), asked);
    QVERIFY(!mDialog->isVisible());
    QCOMPARE(mCancels->count(), 1);
    QVERIFY(wasVisible);
}

void tst_ExportDialogStates::OutputGoesToItsPanes()
{
    mDialog->AppendOutputText("one", false);
    mDialog->AppendOutputText("two", true);
    mDialog->AppendOutputText("", false);
    mDialog->AppendOutputText("<b>three</b>\nfour", false);
    QCOMPARE(Find<QPlainTextEdit>("basicOutput")->toPlainText(), QStringLiteral("one\n\n<b>three</b>\nfour"));
    QCOMPARE(Find<QPlainTextEdit>("detailedOutput")->toPlainText(),
             QStringLiteral("one\ntwo\n\n<b>three</b>\nfour"));
    Find<QPushButton>("clearButton")->click();
    QCOMPARE(Find<QPlainTextEdit>("basicOutput")->toPlainText(), QString());
    QCOMPARE(Find<QPlainTextEdit>("detailedOutput")->toPlainText(), QString());
}

void tst_ExportDialogStates::OneOutputShowsAtATime()
{
    mDialog->show();
    auto* const box = Find<QCheckBox>("detailedOutputBox");
    const auto* const basic = Find<QPlainTextEdit>("basicOutput");
    const auto* const detailed = Find<QPlainTextEdit>("detailedOutput");
    for (const bool on : {true, false, true})
    {
        mDialog->AppendOutputText(on ? "on" : "off", on);
        box->click();
        QCOMPARE(detailed->isVisible(), on);
        QCOMPARE(basic->isVisible(), !on);
    }
    QCOMPARE(detailed->toPlainText(), QStringLiteral("on\noff\non"));
    // Only a click swaps them.
    box->setChecked(false);
    QVERIFY(detailed->isVisible());
    mDialog->SetDetailedOutputEnabled(false);
    QVERIFY(basic->isVisible());
    QVERIFY(!detailed->isVisible());
}

static const TestRegistration<tst_ExportDialogStates> ExportDialogStatesRegistration;

#include "tst_ExportDialogStates.moc"
