// SPDX-License-Identifier: MIT
#include "dialogs/output/SnapshotProgressDialog.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

class tst_SnapshotProgressDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void WindowIsAsTold();
    void FrameShowsInTextAndBar();
    void FrameOutOfRangeShowsInTheTextAlone();
    void TotalOfNothingIsBusy();
    void CancellingAsks_data();
    void CancellingAsks();
    void EachCancellingAsks();
    void HostClosesWithoutAQuestion();
    void BeginIsForTheHost();

private:
    std::unique_ptr<SnapshotProgressDialog> mDialog;
    std::unique_ptr<ModalScript> mModals;
    std::unique_ptr<QSignalSpy> mCancels;
    QLabel* mText = nullptr;
    QProgressBar* mBar = nullptr;
};

void tst_SnapshotProgressDialog::init()
{
    mDialog = std::make_unique<SnapshotProgressDialog>(nullptr);
    mModals = std::make_unique<ModalScript>(mDialog.get());
    mCancels = std::make_unique<QSignalSpy>(mDialog.get(), SIGNAL(CancelSnapshot()));
    mText = mDialog->findChild<QLabel*>();
    mBar = mDialog->findChild<QProgressBar*>();
}

void tst_SnapshotProgressDialog::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mCancels.reset();
    mModals.reset();
    mDialog.reset();
}

void tst_SnapshotProgressDialog::WindowIsAsTold()
{
    QCOMPARE(mDialog->windowTitle(), QStringLiteral("Export Snapshots"));
    QCOMPARE(mDialog->windowModality(), Qt::WindowModal);
    QVERIFY(!(mDialog->windowFlags() & Qt::WindowContextHelpButtonHint));
    QCOMPARE(mText->text(), QString());
    const QProgressBar fresh;
    QCOMPARE(mBar->minimum(), fresh.minimum());
    QCOMPARE(mBar->maximum(), fresh.maximum());
    QCOMPARE(mBar->format(), fresh.format());
    QCOMPARE(mBar->isTextVisible(), fresh.isTextVisible());
    QLayout* const layout = mDialog->layout();
    QCOMPARE(layout->count(), 3);
    QCOMPARE(layout->itemAt(0)->widget(), mText);
    QCOMPARE(layout->itemAt(1)->widget(), mBar);
    QLayout* const row = layout->itemAt(2)->layout();
    QVERIFY(qobject_cast<QHBoxLayout*>(row));
    QVERIFY(row->itemAt(0)->spacerItem());
    QCOMPARE(qobject_cast<QPushButton*>(row->itemAt(1)->widget())->text(), QStringLiteral("Cancel"));
}

void tst_SnapshotProgressDialog::FrameShowsInTextAndBar()
{
    mDialog->SetFrameTotal(240);
    QCOMPARE(mBar->minimum(), 0);
    QCOMPARE(mBar->maximum(), 240);
    QCOMPARE(mText->text(), QString());
    mDialog->SetCurrentFrame(17);
    QCOMPARE(mBar->value(), 17);
    QCOMPARE(mText->text(), QStringLiteral("Processing frame 17 (of 240)"));
}

void tst_SnapshotProgressDialog::FrameOutOfRangeShowsInTheTextAlone()
{
    mDialog->SetFrameTotal(10);
    mDialog->SetCurrentFrame(3);
    for (const int frame : {11, 1001, -1})
    {
        mDialog->SetCurrentFrame(frame);
        QCOMPARE(mBar->value(), 3);
        QCOMPARE(mText->text(), QStringLiteral("Processing frame %1 (of 10)").arg(frame));
    }
}

void tst_SnapshotProgressDialog::TotalOfNothingIsBusy()
{
    mDialog->SetFrameTotal(0);
    QCOMPARE(mBar->minimum(), 0);
    QCOMPARE(mBar->maximum(), 0);
}

void tst_SnapshotProgressDialog::CancellingAsks_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<int>("answer");
    for (const char* const way : {"button", "escape", "window", "slot"})
    {
        QTest::addRow("%s, yes", way) << way << int(QMessageBox::Yes);
        QTest::addRow("%s, no", way) << way << int(QMessageBox::No);
        QTest::addRow("%s, escape", way) << way << int(QMessageBox::NoButton);
    }
}

void tst_SnapshotProgressDialog::CancellingAsks()
{
    QFETCH(QString, way);
    QFETCH(int, answer);
    const bool isYes = answer == QMessageBox::Yes;
    QSignalSpy rejected(mDialog.get(), SIGNAL(rejected()));
    mDialog->SetFrameTotal(4);
    mDialog->SetCurrentFrame(2);
    mDialog->show();
    mModals->Answer(QMessageBox::StandardButton(answer));
    bool wasVisible = false;
    connect(mDialog.get(), &SnapshotProgressDialog::CancelSnapshot, this,
            [&] { wasVisible = mDialog->isVisible(); });
    if (way == "button")
        mDialog->findChild<QPushButton*>()->click();
    else if (way == "escape")
        QTest::keyClick(mDialog.get(), Qt::Key_Escape);
    else if (way == "window")
        mDialog->close();
    else
        QMetaObject::invokeMethod(mDialog.get(), "reject");
    QCOMPARE(mModals->Take(), QStringList{"question|Cancel|Cancel export?|Yes,No"});
    QCOMPARE(mCancels->count(), isYes ? 1 : 0);
    QCOMPARE(rejected.count(), isYes ? 1 : 0);
    QCOMPARE(mDialog->isVisible(), !isYes);
    QCOMPARE(wasVisible, isYes);
    QCOMPARE(mBar->value(), 2);
}

void tst_SnapshotProgressDialog::EachCancellingAsks()
{
    // Even one that is not shown: the dialog does not know what is under way.
    for (int time = 0; time < 2; ++time)
    {
        mModals->Answer(QMessageBox::Yes);
        mDialog->reject();
        QCOMPARE(mModals->Take().size(), 1);
    }
    QCOMPARE(mCancels->count(), 2);
}

void tst_SnapshotProgressDialog::HostClosesWithoutAQuestion()
{
    mDialog->show();
    mDialog->accept();
    QVERIFY(!mDialog->isVisible());
    QCOMPARE(mCancels->count(), 0);
}

void tst_SnapshotProgressDialog::BeginIsForTheHost()
{
    QList<int> seen;
    connect(mDialog.get(), &SnapshotProgressDialog::BeginSnapshot, this,
            [&](const QString& dirPath, const QString& baseFileName, SnapshotType type,
                SnapshotNumbering numbering, int padding, bool overwrite)
            {
                QCOMPARE(dirPath, QStringLiteral("/dir"));
                QCOMPARE(baseFileName, QStringLiteral("name"));
                seen << type << numbering << padding << overwrite;
            });
    mDialog->show();
    QVERIFY(seen.isEmpty());
    Q_EMIT mDialog->BeginSnapshot("/dir", "name", SnapshotBookmarks, SnapshotNumberingFrame, 5, true);
    QCOMPARE(seen, QList<int>({3, 1, 5, 1}));
    const QMetaObject& meta = SnapshotProgressDialog::staticMetaObject;
    QVERIFY(meta.indexOfSignal("BeginSnapshot(QString,QString,SnapshotType,SnapshotNumbering,int,bool)") >=
            0);
}

static const TestRegistration<tst_SnapshotProgressDialog> SnapshotProgressDialogRegistration;

#include "tst_SnapshotProgressDialog.moc"
