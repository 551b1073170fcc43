// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "dialogs/output/SnapshotDialog.h"
#include "dialogs/output/SnapshotProgressDialog.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/OutputBinding.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"
#include "window/SnapshotBinding.h"

#include <QLabel>
#include <QTemporaryDir>
#include <QtTest>

/// Snapshots in the whole player.
class tst_PlayerSnapshots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void NothingOpenIsNothingToTake();
    void KeyTakesTheFrameOnScreen();
    void AnnotationsAreTakenWhileTheyShow();
    void SeriesIsWritten_data();
    void SeriesIsWritten();
    void ValuesAreKeptForTheNextTime();
    void SingleFrameAsksBeforeItReplaces();
    void TakenNamesAreTold();
    void BadNameIsTold();
    void NoBookmarkIsTold();
    void CancellingAsksAndLeavesWholeFiles();

private:
    SnapshotBinding* Snapshots() const { return mWindow->Output()->Snapshots(); }
    QStringList Names() const { return QDir(mDir->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    int NumberOf(const QString& name) const { return NumberedMedia::NumberIn(QImage(mDir->filePath(name))); }
    QString Message() const { return mWindow->findChild<MessageBar*>()->Message(); }
    bool WaitForTheEnd() const
    {
        return QTest::qWaitFor([this] { return !Snapshots()->IsRunning(); }, 20000);
    }
    /// Runs the dialog with what @p fill sets.
    void RunDialog(std::function<void(SnapshotDialog*)> fill);

    std::unique_ptr<PlayerWindow> mWindow;
    std::unique_ptr<ModalScript> mModals;
    std::unique_ptr<QTemporaryDir> mDir;
};

void tst_PlayerSnapshots::init()
{
    Settings::RestoreDefaults();
    mDir = std::make_unique<QTemporaryDir>();
    mWindow = std::make_unique<PlayerWindow>();
    mModals = std::make_unique<ModalScript>(nullptr);
    mModals->Leave(mWindow->findChild<SnapshotProgressDialog*>());
    Snapshots()->SetDirectory(mDir->path());
}

void tst_PlayerSnapshots::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mWindow.reset();
    mModals.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerSnapshots::RunDialog(std::function<void(SnapshotDialog*)> fill)
{
    mModals->Drive(
        [&](QDialog* dialog)
        {
            auto* const form = qobject_cast<SnapshotDialog*>(dialog);
            QVERIFY(form);
            fill(form);
            form->accept();
        });
    QVERIFY(mWindow->Commands()->Run("output.advancedSnapshot"));
    QCOMPARE(mModals->Take().first(), QStringLiteral("dialog|Advanced Snapshot"));
}

void tst_PlayerSnapshots::NothingOpenIsNothingToTake()
{
    mWindow->show();
    QVERIFY(mWindow->Commands()->Run("output.snapshot"));
    QVERIFY(Message().contains("nothing to take a snapshot of"));
    QVERIFY(mWindow->Commands()->Run("output.advancedSnapshot"));
    QVERIFY(!Snapshots()->IsRunning());
}

void tst_PlayerSnapshots::KeyTakesTheFrameOnScreen()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    mWindow->Playback()->SeekFrame(23);
    QVERIFY(QTest::qWaitFor([this] { return mWindow->Playback()->ShownFrame(0) == 23; }, 10000));
    for (int time = 1; time <= 2; ++time)
    {
        QTest::keyClick(mWindow.get(), Qt::Key_S);
        QVERIFY(WaitForTheEnd());
        QCOMPARE(Names().size(), time);
    }
    // The second one beside the first.
    const QString base = QFileInfo(PlayerProbe::SampleMovie()).completeBaseName();
    QCOMPARE(Names(), QStringList({base + ".0023 (2).png", base + ".0023.png"}));
    for (const QString& name : Names())
        QCOMPARE(NumberOf(name), 23);
    QVERIFY(Message().isEmpty());
}

void tst_PlayerSnapshots::AnnotationsAreTakenWhileTheyShow()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    DrawData stroke;
    stroke.type = DrawPencil;
    stroke.color = Qt::red;
    stroke.width = 0.1f;
    stroke.points = {QPointF(-0.3, 0.2), QPointF(0.3, 0.2)};
    mWindow->Playback()->LeadingTimeline()->Annotations()->SetDrawings(1, {stroke});
    for (const bool shown : {true, false})
    {
        QVERIFY(mWindow->Commands()->Run("output.snapshot"));
        QVERIFY(WaitForTheEnd());
        const QStringList names = Names();
        QCOMPARE(names.size(), 1);
        QCOMPARE(QImage(mDir->filePath(names.first())).pixelColor(160, 154) == QColor(Qt::red), shown);
        QVERIFY(QFile::remove(mDir->filePath(names.first())));
        QVERIFY(mWindow->Commands()->Run("view.annotations"));
    }
}

void tst_PlayerSnapshots::SeriesIsWritten_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("numbering");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<int>>("numbers");
    QTest::newRow("range by frame") << int(SnapshotAllFramesInRange) << 1 << "shot"
                                    << QStringList{"shot.011.png", "shot.012.png", "shot.013.png"}
                                    << QList<int>{11, 12, 13};
    QTest::newRow("range in sequence")
        << int(SnapshotAllFramesInRange) << 0 << "shot.jpg"
        << QStringList{"shot.001.jpg", "shot.002.jpg", "shot.003.jpg"} << QList<int>{11, 12, 13};
    QTest::newRow("bookmarks") << int(SnapshotBookmarks) << 1 << "mark.png"
                               << QStringList{"mark.005.png", "mark.012.png"} << QList<int>{5, 12};
    QTest::newRow("bookmarks in range")
        << int(SnapshotBookmarksInRange) << 0 << "mark.png" << QStringList{"mark.001.png"} << QList<int>{12};
    QTest::newRow("single") << int(SnapshotSingleFrame) << 0 << "one.png" << QStringList{"one.png"}
                            << QList<int>{1};
}

void tst_PlayerSnapshots::SeriesIsWritten()
{
    QFETCH(int, type);
    QFETCH(int, numbering);
    QFETCH(QString, name);
    QFETCH(QList<int>, numbers);
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    const auto& timeline = mWindow->Playback()->LeadingTimeline();
    timeline->ToggleBookmark(5);
    timeline->ToggleBookmark(12);
    mWindow->Playback()->SetRange(timeline->FrameToTime(11), timeline->FrameToTime(13));
    mWindow->Playback()->SeekFrame(1);
    RunDialog(
        [&](SnapshotDialog* form)
        {
            QCOMPARE(form->GetDirectoryPath(), mDir->path());
            form->SetType(static_cast<SnapshotType>(type));
            form->SetNumbering(static_cast<SnapshotNumbering>(numbering));
            form->SetPadding(3);
            form->SetName(name);
        });
    QVERIFY(WaitForTheEnd());
    QTEST(Names(), "names");
    for (int index = 0; index < numbers.size(); ++index)
        QCOMPARE(NumberOf(Names()[index]), numbers[index]);
    QVERIFY(!mWindow->findChild<SnapshotProgressDialog*>()->isVisible());
}

void tst_PlayerSnapshots::ValuesAreKeptForTheNextTime()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    const auto fill = [](SnapshotDialog* form)
    {
        form->SetType(SnapshotBookmarks);
        form->SetNumbering(SnapshotNumberingFrame);
        form->SetPadding(6);
        form->SetOverwriteEnabled(true);
        form->SetName("kept.tif");
    };
    RunDialog(fill);
    RunDialog(
        [&](SnapshotDialog* form)
        {
            QCOMPARE(form->GetType(), SnapshotBookmarks);
            QCOMPARE(form->GetNumbering(), SnapshotNumberingFrame);
            QCOMPARE(form->GetPadding(), 6);
            QVERIFY(form->IsOverwriteEnabled());
            QCOMPARE(form->GetName(), QStringLiteral("kept.tif"));
        });
}

void tst_PlayerSnapshots::SingleFrameAsksBeforeItReplaces()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    QFile file(mDir->filePath("one.png"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("mine");
    file.close();
    for (const bool isYes : {false, true})
    {
        mModals->Answer(isYes ? QMessageBox::Yes : QMessageBox::No);
        mModals->Drive(
            [&](QDialog* dialog)
            {
                qobject_cast<SnapshotDialog*>(dialog)->SetName("one.png");
                dialog->accept();
            });
        QVERIFY(mWindow->Commands()->Run("output.advancedSnapshot"));
        QCOMPARE(mModals->Take(), QStringList({"dialog|Advanced Snapshot",
                                               "warning|Confirm Snapshot|one.png already exists.\nDo you "
                                               "want to replace it?|Yes,No"}));
        QVERIFY(WaitForTheEnd());
        QCOMPARE(NumberOf("one.png"), isYes ? 1 : -1);
    }
}

void tst_PlayerSnapshots::TakenNamesAreTold()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    const auto& timeline = mWindow->Playback()->LeadingTimeline();
    mWindow->Playback()->SetRange(timeline->FrameToTime(11), timeline->FrameToTime(13));
    for (const bool overwrite : {false, false, true})
    {
        RunDialog(
            [&](SnapshotDialog* form)
            {
                form->SetType(SnapshotAllFramesInRange);
                form->SetName("shot");
                form->SetOverwriteEnabled(overwrite);
            });
        QVERIFY(WaitForTheEnd());
        QCOMPARE(Names().size(), 3);
    }
    QVERIFY2(Message().contains("exists already"), qPrintable(Message()));
}

void tst_PlayerSnapshots::BadNameIsTold()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    RunDialog([](SnapshotDialog* form) { form->SetName("../out.png"); });
    QVERIFY(Message().contains("../out.png"));
    QVERIFY(!Snapshots()->IsRunning());
    QVERIFY(Names().isEmpty());
}

void tst_PlayerSnapshots::NoBookmarkIsTold()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    RunDialog([](SnapshotDialog* form) { form->SetType(SnapshotBookmarks); });
    QVERIFY(Message().contains("no bookmark"));
    QVERIFY(!mWindow->findChild<SnapshotProgressDialog*>()->isVisible());
}

void tst_PlayerSnapshots::CancellingAsksAndLeavesWholeFiles()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    auto* const progress = mWindow->findChild<SnapshotProgressDialog*>();
    const auto isCounting = [progress]
    {
        const QString text = progress->findChild<QLabel*>("textLabel")->text();
        const bool isFirst = text.startsWith("Processing frame 0 ");
        return text.startsWith("Processing frame ") && text.endsWith(" (of 60)") && !isFirst;
    };
    mModals->Drive(
        [&](QDialog* dialog)
        {
            auto* const form = qobject_cast<SnapshotDialog*>(dialog);
            form->SetType(SnapshotAllFrames);
            form->SetName("shot.exr");
            form->accept();
        });
    QVERIFY(mWindow->Commands()->Run("output.advancedSnapshot"));
    QVERIFY(progress->isVisible());
    mModals = std::make_unique<ModalScript>(progress);
    QVERIFY(QTest::qWaitFor(isCounting, 10000));
    mModals->Answer(QMessageBox::Yes);
    progress->reject();
    QCOMPARE(mModals->Take(), QStringList{"question|Cancel|Cancel export?|Yes,No"});
    QVERIFY(!progress->isVisible());
    QVERIFY(WaitForTheEnd());
    QVERIFY(Message().startsWith("Cancelled: "));
    const QStringList names = Names();
    QVERIFY(names.size() > 0 && names.size() <= 60);
    QCOMPARE(names.filter("torvalen"), QStringList());
    QVERIFY(Message().contains(QStringLiteral("%1 of 60").arg(names.size())));
}

static const TestRegistration<tst_PlayerSnapshots> PlayerSnapshotsRegistration;

#include "tst_PlayerSnapshots.moc"
