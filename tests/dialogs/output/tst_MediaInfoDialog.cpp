// SPDX-License-Identifier: MIT
#include "dialogs/output/MediaInfoDialog.h"
#include "support/TestRegistry.h"

#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>
#include <QtTest>

#include <limits>

class tst_MediaInfoDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void WindowIsAsTold();
    void FormIsAsTold();
    void RowsStandInOrder_data();
    void RowsStandInOrder();
    void FreshDialogShowsNoMedia();
    void SettersWriteTheirLabel_data();
    void SettersWriteTheirLabel();
    void SourceNamesTheFile_data();
    void SourceNamesTheFile();
    void SamePathChangesNothing();
    void FrameRateHasDecimalsWhereNeeded_data();
    void FrameRateHasDecimalsWhereNeeded();

private:
    QLabel* Label(const QString& name) const
    {
        auto* const label = mDialog->findChild<QLabel*>(name);
        Q_ASSERT(label);
        return label;
    }
    QString Text(const char* name) const { return Label(QLatin1String(name))->text(); }

    std::unique_ptr<MediaInfoDialog> mDialog;
};

namespace
{

const QStringList ValueNames = {"source",    "duration", "normalSize", "currentSize",   "videoCodec",
                                "frameRate", "frames",   "audioCodec", "audioChannels", "audioSampleRate"};

}

void tst_MediaInfoDialog::init()
{
    mDialog = std::make_unique<MediaInfoDialog>(nullptr);
}

void tst_MediaInfoDialog::cleanup()
{
    mDialog.reset();
}

void tst_MediaInfoDialog::WindowIsAsTold()
{
    QCOMPARE(mDialog->windowTitle(), QStringLiteral("Media Information"));
    QCOMPARE(mDialog->objectName(), QStringLiteral("MediaInfoDialog"));
    QCOMPARE(mDialog->size(), QSize(300, 312));
    QVERIFY(!(mDialog->windowFlags() & Qt::WindowContextHelpButtonHint));
    const QMetaObject* const meta = mDialog->metaObject();
    QCOMPARE(meta->className(), "MediaInfoDialog");
    QCOMPARE(meta->methodOffset(), meta->methodCount());
}

void tst_MediaInfoDialog::FormIsAsTold()
{
    const auto* const layout = mDialog->findChild<QVBoxLayout*>("verticalLayout");
    QCOMPARE(mDialog->layout(), layout);
    QStringList items;
    for (int index = 0; index < layout->count(); ++index)
    {
        QLayoutItem* const item = layout->itemAt(index);
        if (item->widget())
            items << item->widget()->objectName();
        else if (item->layout())
            items << item->layout()->objectName();
        else
            items << QStringLiteral("%1x%2 %3")
                         .arg(item->sizeHint().width())
                         .arg(item->sizeHint().height())
                         .arg(item->expandingDirections() == Qt::Vertical ? "expanding"
                              : item->spacerItem()->sizePolicy().verticalPolicy() == QSizePolicy::Fixed
                                  ? "fixed"
                                  : "other");
    }
    QCOMPARE(items, QStringList({"filename", "topDivider", "generalLabel", "generalFormLayout", "20x10 fixed",
                                 "videoLabel", "videoFormLayout", "20x10 fixed", "audioLabel",
                                 "audioFormLayout", "20x40 expanding"}));
    QCOMPARE(Label("filename")->alignment(), Qt::Alignment(Qt::AlignCenter));
    const auto* const divider = mDialog->findChild<QFrame*>("topDivider");
    QCOMPARE(divider->frameShape(), QFrame::HLine);
    QCOMPARE(divider->frameShadow(), QFrame::Plain);
    for (const char* const name : {"generalFormLayout", "videoFormLayout", "audioFormLayout"})
        QCOMPARE(mDialog->findChild<QFormLayout*>(name)->labelAlignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(Label("source")->maximumWidth(), 320);
    QCOMPARE(Label("source")->textInteractionFlags(), Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
}

void tst_MediaInfoDialog::RowsStandInOrder_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("isRight");
    QTest::newRow("sourceLabel") << "generalFormLayout" << 0 << "Source:"
                                 << "source" << true;
    QTest::newRow("durationLabel") << "generalFormLayout" << 1 << "Duration:"
                                   << "duration" << true;
    QTest::newRow("normalSizeLabel") << "generalFormLayout" << 2 << "Normal Size:"
                                     << "normalSize" << true;
    QTest::newRow("currentSizeLabel") << "generalFormLayout" << 3 << "Current Size: "
                                      << "currentSize" << true;
    QTest::newRow("videoCodecLabel") << "videoFormLayout" << 0 << "Codec:"
                                     << "videoCodec" << false;
    QTest::newRow("framesLabel") << "videoFormLayout" << 1 << "Frames:"
                                 << "frames" << true;
    QTest::newRow("frameRateLabel") << "videoFormLayout" << 2 << "Frame Rate: "
                                    << "frameRate" << false;
    QTest::newRow("audioCodecLabel") << "audioFormLayout" << 0 << "Codec:"
                                     << "audioCodec" << false;
    QTest::newRow("audioChannelsLabel") << "audioFormLayout" << 1 << "Channels:"
                                        << "audioChannels" << false;
    QTest::newRow("sampeRateLabel") << "audioFormLayout" << 2 << "Sample Rate: "
                                    << "audioSampleRate" << false;
}

void tst_MediaInfoDialog::RowsStandInOrder()
{
    QFETCH(QString, form);
    QFETCH(int, row);
    QFETCH(QString, value);
    QFETCH(bool, isRight);
    const QLabel* const label = Label(QTest::currentDataTag());
    QTEST(label->text(), "text");
    auto* const rows = mDialog->findChild<QFormLayout*>(form);
    QCOMPARE(rows->itemAt(row, QFormLayout::LabelRole)->widget(), label);
    QCOMPARE(rows->itemAt(row, QFormLayout::FieldRole)->widget(), Label(value));
    QCOMPARE(label->alignment(), Qt::AlignVCenter | (isRight ? Qt::AlignRight : Qt::AlignLeft));
}

void tst_MediaInfoDialog::FreshDialogShowsNoMedia()
{
    for (int time = 0; time < 2; ++time)
    {
        QCOMPARE(Text("filename"), QStringLiteral("<b>No Media</b>"));
        QCOMPARE(Text("generalLabel"), QStringLiteral("<b>General</b>"));
        QCOMPARE(Text("videoLabel"), QStringLiteral("<b>Video</b>"));
        QCOMPARE(Text("audioLabel"), QStringLiteral("<b>Audio</b>"));
        for (const QString& name : ValueNames)
            QCOMPARE(Label(name)->text(), QString());
        // What was set is emptied, and nothing else.
        for (const QString& name : ValueNames)
            Label(name)->setText(QStringLiteral("something"));
        Label("filename")->setText(QStringLiteral("something"));
        mDialog->Clear();
    }
}

void tst_MediaInfoDialog::SettersWriteTheirLabel_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("duration") << "00:01";
    QTest::newRow("normalSize") << "1920 x 1080";
    QTest::newRow("currentSize") << "960 x 540";
    QTest::newRow("videoCodec") << "h264";
    QTest::newRow("frames") << "-12";
    QTest::newRow("frameRate") << "25";
    QTest::newRow("audioCodec") << "aac";
    QTest::newRow("audioChannels") << "2";
    QTest::newRow("audioSampleRate") << "48000";
}

void tst_MediaInfoDialog::SettersWriteTheirLabel()
{
    const QString name = QTest::currentDataTag();
    const std::map<QString, std::function<void()>> setters = {
        {"duration", [this] { mDialog->SetDuration("00:01"); }},
        {"normalSize", [this] { mDialog->SetNormalSize("1920 x 1080"); }},
        {"currentSize", [this] { mDialog->SetCurrentSize("960 x 540"); }},
        {"videoCodec", [this] { mDialog->SetVideoCodec("h264"); }},
        {"frames", [this] { mDialog->SetNumFrames(-12); }},
        {"frameRate", [this] { mDialog->SetFrameRate(25.0); }},
        {"audioCodec", [this] { mDialog->SetAudioCodec("aac"); }},
        {"audioChannels", [this] { mDialog->SetNumAudioChannels(2); }},
        {"audioSampleRate", [this] { mDialog->SetSampleRate(48000); }}};
    setters.at(name)();
    QTEST(Label(name)->text(), "text");
    for (const QString& other : ValueNames)
    {
        if (other != name)
            QCOMPARE(Label(other)->text(), QString());
    }
}

void tst_MediaInfoDialog::SourceNamesTheFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("filename");
    QTest::newRow("file") << "/a/film.mov"
                          << "<b>film.mov</b>";
    QTest::newRow("directory") << "/a/b/"
                               << "<b></b>";
    QTest::newRow("bare") << "film.0001.exr"
                          << "<b>film.0001.exr</b>";
}

void tst_MediaInfoDialog::SourceNamesTheFile()
{
    QFETCH(QString, path);
    mDialog->SetSourcePath(path);
    QCOMPARE(Text("source"), path);
    QTEST(Text("filename"), "filename");
}

void tst_MediaInfoDialog::SamePathChangesNothing()
{
    mDialog->SetSourcePath("");
    QCOMPARE(Text("filename"), QStringLiteral("<b>No Media</b>"));
    mDialog->SetSourcePath("/a/film.mov");
    Label("filename")->setText("untouched");
    mDialog->SetSourcePath("/a/film.mov");
    QCOMPARE(Text("filename"), QStringLiteral("untouched"));
    mDialog->Clear();
    mDialog->SetSourcePath("/a/film.mov");
    QCOMPARE(Text("filename"), QStringLiteral("<b>film.mov</b>"));
}

void tst_MediaInfoDialog::FrameRateHasDecimalsWhereNeeded_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("text");
    QTest::newRow("24") << 24.0 << "24";
    QTest::newRow("25") << 25.0 << "25";
    QTest::newRow("0") << 0.0 << "0";
    QTest::newRow("23.976") << 24000.0 / 1001.0 << "23.976";
    QTest::newRow("29.97") << 29.97 << "29.970";
    QTest::newRow("half") << 12.5 << "12.500";
    QTest::newRow("just off") << 24.0000001 << "24.000";
    QTest::newRow("largest") << 2147483647.0 << "2147483647";
    QTest::newRow("too large") << 2147483648.0 << "2147483648.000";
    QTest::newRow("negative") << -2.0 << "-2";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "inf";
    QTest::newRow("none") << std::numeric_limits<double>::quiet_NaN() << "nan";
}

void tst_MediaInfoDialog::FrameRateHasDecimalsWhereNeeded()
{
    QFETCH(double, rate);
    mDialog->SetFrameRate(rate);
    QTEST(Text("frameRate"), "text");
}

static const TestRegistration<tst_MediaInfoDialog> MediaInfoDialogRegistration;

#include "tst_MediaInfoDialog.moc"
