// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "output/FrameComposer.h"
#include "output/VideoFrame.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"

#include <QtTest>

#include <cmath>

/// Composed frames, against a viewer of the same size, and what the encoder gets of them.
class tst_FrameComposer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void FrameIsThatOfTheViewer_data();
    void FrameIsThatOfTheViewer();
    void PictureOfTheSizePassesAsItIs();
    void NoPictureIsBlack();
    void EncoderGetsTheColours_data();
    void EncoderGetsTheColours();
    void DecodedPicturePassesOnlyWhereItFits();
};

namespace
{

QImage MakeGradient(const QSize& size, int seed)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
    {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb((x * 2 + seed) & 255, (y * 3) & 255, (x + y + seed) & 255));
    }
    return image;
}

FrameData MakeNotes(double side)
{
    DrawData drawing;
    drawing.width = 0.02f;
    drawing.color = QColor(255, 80, 0, 150);
    drawing.type = DrawPencil;
    drawing.points = {QPointF(-0.3, -0.1), QPointF(0.0, 0.15 * side), QPointF(0.35, -0.05)};
    FrameData notes;
    notes.drawData << drawing;
    drawing.type = DrawArrow;
    drawing.points = {QPointF(0.2, 0.2), QPointF(-0.1 * side, 0.0)};
    notes.drawData << drawing;
    drawing.type = DrawText;
    drawing.text = QStringLiteral("look");
    notes.drawData << drawing;
    notes.lastIndex = 2;
    return notes;
}

OutputPlan MakeLayoutPlan(ViewerLayout layout, int single)
{
    OutputPlan plan;
    plan.layout = layout;
    plan.singleViewer = single;
    plan.frames = {1, 2};
    for (size_t viewer = 0; viewer < 2; ++viewer)
        plan.tracks[viewer].drawings[1] = MakeNotes(viewer == 0 ? 1.0 : -1.0);
    return plan;
}

} // namespace

void tst_FrameComposer::init()
{
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = false;
}

void tst_FrameComposer::FrameIsThatOfTheViewer_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("single");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("index");
    for (int index = 0; index < 2; ++index)
    {
        const char* const text = index == 0 ? "bare" : "drawn";
        QTest::addRow("single, %s", text) << int(Single) << 0 << QSize(320, 180) << index;
        QTest::addRow("single B, %s", text) << int(Single) << 1 << QSize(300, 333) << index;
        QTest::addRow("single, as wide, %s", text) << int(Single) << 0 << QSize(160, 120) << index;
        QTest::addRow("horizontal, %s", text) << int(Horizontal) << 0 << QSize(641, 243) << index;
        QTest::addRow("horizontal narrow, %s", text) << int(Horizontal) << 1 << QSize(250, 400) << index;
        QTest::addRow("vertical, %s", text) << int(Vertical) << 0 << QSize(333, 480) << index;
        QTest::addRow("vertical wide, %s", text) << int(Vertical) << 1 << QSize(640, 240) << index;
    }
}

void tst_FrameComposer::FrameIsThatOfTheViewer()
{
    QFETCH(int, layout);
    QFETCH(int, single);
    QFETCH(QSize, size);
    QFETCH(int, index);
    const std::array<QImage, 2> pictures = {MakeGradient(QSize(160, 90), 0),
                                            MakeGradient(QSize(101, 99), 50)};
    const OutputPlan plan = MakeLayoutPlan(static_cast<ViewerLayout>(layout), single);
    const QImage frame = FrameComposer(plan, size).Compose(index, pictures);
    QCOMPARE(frame.size(), size);

    ViewerWidget viewer(nullptr);
    viewer.resize(size);
    viewer.SetViewerLayout(static_cast<ViewerLayout>(layout));
    viewer.SetSingleViewerIndex(single);
    for (int at = 0; at < 2; ++at)
    {
        viewer.SetImage(at, pictures[static_cast<size_t>(at)], false);
        viewer.SetOverlayData(at, plan.tracks[static_cast<size_t>(at)].DrawingsAt(index), {}, {});
    }
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    const QImage shown = viewer.GetImage().convertToFormat(QImage::Format_RGB32);
    const QByteArray difference = PictureDifference(frame, shown, 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FrameComposer::PictureOfTheSizePassesAsItIs()
{
    const OutputPlan plan = MakeLayoutPlan(Single, 0);
    const std::array<QImage, 2> pictures = {MakeGradient(QSize(160, 90), 0), QImage()};
    const FrameComposer composer(plan, QSize(160, 90));
    QVERIFY(composer.IsPlain(0));
    QVERIFY(!composer.IsPlain(1));
    QCOMPARE(composer.Compose(0, pictures).constBits(), pictures[0].constBits());
    QVERIFY(composer.Compose(1, pictures).constBits() != pictures[0].constBits());
    const OutputPlan both = MakeLayoutPlan(Horizontal, 0);
    QVERIFY(!FrameComposer(both, QSize(160, 90)).IsPlain(0));
}

void tst_FrameComposer::NoPictureIsBlack()
{
    const OutputPlan plan = MakeLayoutPlan(Vertical, 0);
    const QImage frame = FrameComposer(plan, QSize(64, 48)).Compose(1, {});
    QImage black(64, 48, QImage::Format_RGB32);
    black.fill(Qt::black);
    QCOMPARE(frame, black);
}

void tst_FrameComposer::EncoderGetsTheColours_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("red");
    QTest::addColumn<double>("blue");
    // The weights of red and blue in brightness.
    QTest::newRow("standard definition") << QSize(640, 480) << 0.299 << 0.114;
    QTest::newRow("high definition") << QSize(1280, 720) << 0.2126 << 0.0722;
}

void tst_FrameComposer::EncoderGetsTheColours()
{
    QFETCH(QSize, size);
    QFETCH(double, red);
    QFETCH(double, blue);
    const VideoFrameMaker maker(size);
    for (const QColor& color :
         {QColor(0, 0, 0), QColor(255, 255, 255), QColor(200, 30, 90), QColor(10, 220, 40)})
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        const VideoFrame frame = maker.Convert(image);
        QCOMPARE(frame.bytes.size(), size_t(size.width()) * size_t(size.height()) * 3 / 2);
        const double luma = red * color.redF() + (1.0 - red - blue) * color.greenF() + blue * color.blueF();
        const double expected[] = {16.0 + 219.0 * luma,
                                   128.0 + 224.0 * (color.blueF() - luma) / (2.0 * (1.0 - blue)),
                                   128.0 + 224.0 * (color.redF() - luma) / (2.0 * (1.0 - red))};
        const size_t pixels = size_t(size.width()) * size_t(size.height());
        const size_t places[] = {pixels / 2, pixels + pixels / 8, pixels + pixels / 4 + pixels / 8};
        for (int plane = 0; plane < 3; ++plane)
        {
            const double actual = frame.bytes[places[plane]];
            QVERIFY2(std::fabs(actual - expected[plane]) < 1.6,
                     qPrintable(QStringLiteral("plane %1: %2 instead of %3")
                                    .arg(plane)
                                    .arg(actual)
                                    .arg(expected[plane])));
        }
    }
}

void tst_FrameComposer::DecodedPicturePassesOnlyWhereItFits()
{
    const VideoFrameMaker maker(QSize(1280, 720));
    const auto make = []
    {
        LibavPointer<AVFrame> frame(av_frame_alloc());
        frame->format = AV_PIX_FMT_YUV420P;
        frame->width = 1280;
        frame->height = 720;
        frame->colorspace = AVCOL_SPC_BT709;
        frame->color_range = AVCOL_RANGE_MPEG;
        return frame;
    };
    LibavPointer<AVFrame> frame = make();
    QVERIFY(maker.CanPass(*frame));
    // What no one wrote down is taken as usual.
    frame->colorspace = AVCOL_SPC_UNSPECIFIED;
    frame->color_range = AVCOL_RANGE_UNSPECIFIED;
    QVERIFY(maker.CanPass(*frame));
    frame = make();
    frame->width = 1278;
    QVERIFY(!maker.CanPass(*frame));
    frame = make();
    frame->format = AV_PIX_FMT_YUV422P;
    QVERIFY(!maker.CanPass(*frame));
    frame->format = AV_PIX_FMT_YUVJ420P;
    QVERIFY(!maker.CanPass(*frame));
    frame = make();
    frame->color_range = AVCOL_RANGE_JPEG;
    QVERIFY(!maker.CanPass(*frame));
    frame = make();
    frame->colorspace = AVCOL_SPC_SMPTE170M;
    QVERIFY(!maker.CanPass(*frame));
}

static const TestRegistration<tst_FrameComposer> FrameComposerRegistration;

#include "tst_FrameComposer.moc"
