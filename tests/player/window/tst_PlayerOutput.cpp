// SPDX-License-Identifier: MIT
#include "dialogs/output/ExportDialog.h"
#include "dialogs/output/MediaInfoDialog.h"
#include "host/Settings.h"
#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MediaInfoBinding.h"
#include "window/MessageBar.h"
#include "window/OutputBinding.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

/// Export and media information in the whole player.
class tst_PlayerOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void NothingOpenIsNothingToExport();
    void DialogProposesWhatIsShown();
    void MovieIsExported();
    void RangeCountsUnlessIgnored_data();
    void RangeCountsUnlessIgnored();
    void ViewerLayoutIsExported();
    void FailureIsToldInBothLogs();
    void StopKeepsTheDialog();
    void EscapeStopsAndCloses();
    void DialogIsThatOfTheRunningExport();
    void ClosingAsksWhileAnExportRuns();
    void InformationFollowsTheSource();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        Type* const found = Dialog()->findChild<Type*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    ExportDialog* Dialog() const { return mWindow->Output()->Dialog(); }
    QPushButton* CloseButton() const { return Find<QPushButton>("closeButton"); }
    QString Log(const char* pane) const { return Find<QPlainTextEdit>(pane)->toPlainText(); }
    /// Opens the dialog for an export to @p name at the movie's size.
    void OpenDialog(const QString& name);
    bool WaitForTheEnd() const;
    /// Replaces the encoder by one that reads and never ends.
    void UseEndlessEncoder();

    std::unique_ptr<PlayerWindow> mWindow;
    std::unique_ptr<ModalScript> mModals;
    std::unique_ptr<QTemporaryDir> mDir;
};

namespace
{

std::vector<int> NumbersOf(const QString& path, const QRect& part = QRect())
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    std::vector<int> numbers;
    for (int frame = 1; reader && frame <= reader->Info().frameCount; ++frame)
    {
        const QImage picture = reader->ReadFrame(frame).image;
        numbers.push_back(NumberedMedia::NumberIn(part.isNull() ? picture : picture.copy(part)));
    }
    return numbers;
}

std::vector<int> Counted(int first, int last)
{
    std::vector<int> numbers;
    for (int number = first; number <= last; ++number)
        numbers.push_back(number);
    return numbers;
}

} // namespace

void tst_PlayerOutput::init()
{
    Settings::RestoreDefaults();
    Settings::exportPreset = ExportPresetUltraFast;
    mDir = std::make_unique<QTemporaryDir>();
    mWindow = std::make_unique<PlayerWindow>();
    mModals = std::make_unique<ModalScript>(nullptr);
}

void tst_PlayerOutput::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mWindow.reset();
    mModals.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerOutput::OpenDialog(const QString& name)
{
    QVERIFY(mWindow->Commands()->Run("output.export"));
    QVERIFY(Dialog() && Dialog()->isVisible());
    Find<QPushButton>("timelineButton")->click();
    Dialog()->SetOutputPath(mDir->filePath(name));
}

bool tst_PlayerOutput::WaitForTheEnd() const
{
    return QTest::qWaitFor([this] { return CloseButton()->text() == "Close"; }, 30000);
}

void tst_PlayerOutput::UseEndlessEncoder()
{
    Settings::ffmpegExePath = mDir->filePath("encoder");
    QFile file(Settings::ffmpegExePath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\necho started >&2\nexec sleep 100\n");
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
}

void tst_PlayerOutput::NothingOpenIsNothingToExport()
{
    mWindow->show();
    QVERIFY(mWindow->Commands()->Run("output.export"));
    QVERIFY(!Dialog());
    QVERIFY(mWindow->findChild<MessageBar*>()->Message().contains("nothing to export"));
}

void tst_PlayerOutput::DialogProposesWhatIsShown()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    Settings::defaultExportOutputDirPath = mDir->path();
    QVERIFY(mWindow->Commands()->Run("output.export"));
    const QString base = QFileInfo(PlayerProbe::SampleMovie()).completeBaseName();
    QCOMPARE(Find<QLineEdit>("outputPathEdit")->text(), mDir->filePath(base + " export.mp4"));
    QCOMPARE(Dialog()->parentWidget(), mWindow.get());
    Find<QPushButton>("timelineButton")->click();
    QCOMPARE(Find<QSpinBox>("widthBox")->value(), 320);
    QCOMPARE(Find<QSpinBox>("heightBox")->value(), 240);
    // A dialog that was closed takes the settings anew.
    Dialog()->close();
    Settings::globalExportWidth = 1000;
    QVERIFY(mWindow->Commands()->Run("output.export"));
    QCOMPARE(Find<QSpinBox>("widthBox")->value(), 1000);
}

void tst_PlayerOutput::MovieIsExported()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    OpenDialog("out");
    Find<QPushButton>("exportButton")->click();
    QCOMPARE(CloseButton()->text(), QStringLiteral("Stop"));
    QVERIFY(Find<QProgressBar>("progressBar")->isVisible());
    QVERIFY(WaitForTheEnd());
    QCOMPARE(Find<QProgressBar>("progressBar")->value(), 1000);
    QVERIFY2(Log("basicOutput").contains("Exported 60 frames"), qPrintable(Log("detailedOutput")));
    QVERIFY(!Log("basicOutput").contains("libx264"));
    QVERIFY(Log("detailedOutput").contains("libx264"));
    // The smallest height is 240: the picture stands in the middle.
    QCOMPARE(NumbersOf(mDir->filePath("out.mp4"), QRect(0, 30, 320, 180)), Counted(1, 60));
    // Again, over the file that is there now.
    mModals->Answer(QMessageBox::No);
    Find<QPushButton>("exportButton")->click();
    QCOMPARE(mModals->Take().size(), 1);
    QCOMPARE(CloseButton()->text(), QStringLiteral("Close"));
}

void tst_PlayerOutput::RangeCountsUnlessIgnored_data()
{
    QTest::addColumn<bool>("isIgnored");
    QTest::newRow("range") << false;
    QTest::newRow("ignored") << true;
}

void tst_PlayerOutput::RangeCountsUnlessIgnored()
{
    QFETCH(bool, isIgnored);
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    const auto& timeline = mWindow->Playback()->LeadingTimeline();
    mWindow->Playback()->SetRange(timeline->FrameToTime(11), timeline->FrameToTime(20));
    OpenDialog("out.mp4");
    Find<QCheckBox>("ignoreRangeBox")->setChecked(isIgnored);
    Find<QPushButton>("exportButton")->click();
    QVERIFY(WaitForTheEnd());
    QCOMPARE(NumbersOf(mDir->filePath("out.mp4"), QRect(0, 30, 320, 180)),
             isIgnored ? Counted(1, 60) : Counted(11, 20));
}

void tst_PlayerOutput::ViewerLayoutIsExported()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 1);
    QVERIFY(QTest::qWaitFor([this] { return mWindow->Playback()->ShownFrame(1) == 1; }, 10000));
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Horizontal);
    OpenDialog("out.mp4");
    Dialog()->SetWidthHeight(640, 240);
    Find<QCheckBox>("viewerLayoutBox")->setChecked(true);
    Find<QPushButton>("exportButton")->click();
    QVERIFY(WaitForTheEnd());
    QCOMPARE(NumbersOf(mDir->filePath("out.mp4"), QRect(1, 30, 320, 180)), Counted(1, 60));
    QCOMPARE(NumbersOf(mDir->filePath("out.mp4"), QRect(319, 30, 320, 180)), Counted(1, 60));
}

void tst_PlayerOutput::FailureIsToldInBothLogs()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    Settings::ffmpegExePath = "/no such/encoder";
    OpenDialog("out.mp4");
    Find<QPushButton>("exportButton")->click();
    QVERIFY(WaitForTheEnd());
    for (const char* const pane : {"basicOutput", "detailedOutput"})
        QVERIFY(Log(pane).contains("Error: The encoder /no such/encoder could not be started"));
    QVERIFY(QDir(mDir->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void tst_PlayerOutput::StopKeepsTheDialog()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    UseEndlessEncoder();
    OpenDialog("out.mp4");
    Find<QPushButton>("exportButton")->click();
    QVERIFY(QTest::qWaitFor([this] { return Log("detailedOutput").contains("started"); }, 10000));
    mModals->Answer(QMessageBox::No);
    CloseButton()->click();
    QCOMPARE(mModals->Take(), QStringList{"question|Stop Export|Stop the export process?|Yes,No"});
    QCOMPARE(CloseButton()->text(), QStringLiteral("Stop"));
    mModals->Answer(QMessageBox::Yes);
    CloseButton()->click();
    QVERIFY(WaitForTheEnd());
    QCOMPARE(mModals->Take().size(), 1);
    QVERIFY(Dialog()->isVisible());
    QVERIFY(Log("basicOutput").endsWith("Stopped; nothing was written."));
    QCOMPARE(QDir(mDir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{"encoder"});
}

void tst_PlayerOutput::EscapeStopsAndCloses()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    UseEndlessEncoder();
    OpenDialog("out.mp4");
    Find<QPushButton>("exportButton")->click();
    mModals->Answer(QMessageBox::Yes);
    QTest::keyClick(Dialog(), Qt::Key_Escape);
    QCOMPARE(mModals->Take().size(), 1);
    QVERIFY(!Dialog()->isVisible());
    QVERIFY(WaitForTheEnd());
    QVERIFY(!QFile::exists(mDir->filePath("out.mp4")));
}

void tst_PlayerOutput::DialogIsThatOfTheRunningExport()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    UseEndlessEncoder();
    OpenDialog("out.mp4");
    const ExportDialog* const dialog = Dialog();
    Find<QPushButton>("exportButton")->click();
    Dialog()->hide();
    QVERIFY(mWindow->Commands()->Run("output.export"));
    QCOMPARE(Dialog(), dialog);
    QCOMPARE(CloseButton()->text(), QStringLiteral("Stop"));
    mModals->Answer(QMessageBox::Yes);
    CloseButton()->click();
    QVERIFY(WaitForTheEnd());
    mModals->Take();
}

void tst_PlayerOutput::ClosingAsksWhileAnExportRuns()
{
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    UseEndlessEncoder();
    OpenDialog("out.mp4");
    Find<QPushButton>("exportButton")->click();
    const QStringList asked = {
        "question|Stop Export|An export is running. Stop it and close the window?|Yes,No"};
    mModals->Answer(QMessageBox::No);
    QVERIFY(!mWindow->close());
    QVERIFY(mWindow->isVisible());
    QCOMPARE(CloseButton()->text(), QStringLiteral("Stop"));
    QCOMPARE(mModals->Take(), asked);
    mModals->Answer(QMessageBox::Yes);
    QVERIFY(mWindow->close());
    QCOMPARE(mModals->Take(), asked);
    QVERIFY(WaitForTheEnd());
    QVERIFY(!QFile::exists(mDir->filePath("out.mp4")));
}

void tst_PlayerOutput::InformationFollowsTheSource()
{
    const QString loud = NumberedMedia::Made(
        "information.mov", {"-i", PlayerProbe::SampleMovie(), "-f", "lavfi", "-i", "sine=r=44100:d=2.5",
                            "-map", "0:v", "-map", "1:a", "-c:v", "copy", "-c:a", "pcm_s16le", "-ac", "2"});
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    QVERIFY(mWindow->Commands()->Run("media.information"));
    MediaInfoDialog* const panel = mWindow->Output()->MediaInformation()->Panel();
    QVERIFY(panel->isVisible());
    const auto text = [&](const char* name)
    { return panel->findChild<QLabel*>(QLatin1String(name))->text(); };
    QTRY_COMPARE(text("source"), PlayerProbe::SampleMovie());
    QCOMPARE(text("filename"), "<b>" + QFileInfo(PlayerProbe::SampleMovie()).fileName() + "</b>");
    QCOMPARE(text("duration"), QStringLiteral("00:00:02.500"));
    QCOMPARE(text("normalSize"), QStringLiteral("320 x 180"));
    QCOMPARE(text("videoCodec"), QStringLiteral("h264 (yuv420p)"));
    QCOMPARE(text("frames"), QStringLiteral("60"));
    QCOMPARE(text("frameRate"), QStringLiteral("24"));
    QCOMPARE(text("audioCodec"), QString());
    QCOMPARE(text("audioChannels"), QString());
    const auto shownSize = [&]
    {
        return QStringLiteral("%1 x %2")
            .arg(mWindow->Viewer()->GetImageDisplayWidth())
            .arg(mWindow->Viewer()->GetImageDisplayHeight());
    };
    QTRY_COMPARE(text("currentSize"), shownSize());
    const QString before = shownSize();
    mWindow->resize(mWindow->width() - 200, mWindow->height());
    QTRY_VERIFY(shownSize() != before);
    QTRY_COMPARE(text("currentSize"), shownSize());

    mWindow->OpenFiles({loud}, 0);
    QTRY_COMPARE_WITH_TIMEOUT(text("source"), loud, 10000);
    QCOMPARE(text("audioCodec"), QStringLiteral("pcm_s16le"));
    QCOMPARE(text("audioChannels"), QStringLiteral("2"));
    QCOMPARE(text("audioSampleRate"), QStringLiteral("44100"));
    QVERIFY(mWindow->Commands()->Run("media.information"));
    QVERIFY(!panel->isVisible());
    QCOMPARE(MediaInfoBinding::DurationText(INT64_C(3723004499)), QStringLiteral("01:02:03.004"));
}

static const TestRegistration<tst_PlayerOutput> PlayerOutputRegistration;

#include "tst_PlayerOutput.moc"
