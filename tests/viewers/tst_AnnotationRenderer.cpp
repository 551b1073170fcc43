// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/AnnotationRenderer.h"
#include "viewers/SoftwareViewer.h"

#include <QPainter>
#include <QtTest>

#include <thread>

/// Burning annotations in, against the viewer that shows the same.
class tst_AnnotationRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void PictureIsThatOfTheViewer_data();
    void PictureIsThatOfTheViewer();
    void OnlyShownEntriesArePainted();
    void NothingShownLeavesThePicture();
    void TextThatIsBeingTypedHasNoFrame();
};

namespace
{

DrawData MakeDrawing(DrawType type, QColor color, float width, QList<QPointF> points)
{
    DrawData drawing;
    drawing.type = type;
    drawing.color = color;
    drawing.width = width;
    drawing.points = std::move(points);
    drawing.text = QStringLiteral("note");
    return drawing;
}

/// One drawing of each kind, opaque and translucent, that reaches beyond the picture.
FrameData MakeDrawings(bool mirrored)
{
    const double side = mirrored ? -1.0 : 1.0;
    FrameData frame;
    frame.drawData << MakeDrawing(DrawPencil, QColor(255, 60, 0, 140), 0.05f,
                                  {{-0.6 * side, -0.2}, {0.1, 0.2}, {0.7, 0.0}})
                   << MakeDrawing(DrawRectangle, QColor(0, 200, 90), 0.01f,
                                  {{-0.3 * side, -0.2}, {0.2 * side, 0.15}})
                   << MakeDrawing(DrawOval, QColor(0, 90, 255, 90), 0.02f, {{-0.1, -0.25}, {0.4 * side, 0.2}})
                   << MakeDrawing(DrawArrow, QColor(250, 250, 0), 0.008f, {{0.3 * side, 0.2}, {-0.2, -0.1}})
                   << MakeDrawing(DrawEraser, Qt::black, 0.06f, {{-0.05, -0.3}, {0.05 * side, 0.3}})
                   << MakeDrawing(DrawLine, QColor(255, 255, 255, 200), 0.012f,
                                  {{-0.4, 0.1}, {0.4, 0.12 * side}})
                   << MakeDrawing(DrawText, QColor(200, 0, 200), 0.01f, {{-0.3 * side, 0.05}, {0.0, 0.0}});
    frame.lastIndex = frame.drawData.size() - 1;
    return frame;
}

QImage MakePicture(const QSize& size, int seed)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
    {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb((x * 3 + seed) & 255, (y * 5) & 255, (x + y + seed) & 255));
    }
    return image;
}

/// Paints on a thread of its own, as exports do.
void PaintElsewhere(QImage* picture, ViewerLayout layout, int single,
                    const std::array<AnnotationRenderer::Slot, 2>& viewers)
{
    std::thread([&] { AnnotationRenderer::Paint(picture, layout, single, viewers); }).join();
}

} // namespace

void tst_AnnotationRenderer::init()
{
    Settings::RestoreDefaults();
}

void tst_AnnotationRenderer::PictureIsThatOfTheViewer_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("single");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("drawnA");
    QTest::addColumn<bool>("drawnB");
    QTest::newRow("single") << int(Single) << 0 << QSize(320, 180) << true << false;
    QTest::newRow("single, boxed") << int(Single) << 0 << QSize(240, 331) << true << true;
    QTest::newRow("single B") << int(Single) << 1 << QSize(320, 200) << true << true;
    for (const auto& [name, layout] : {std::pair("horizontal", Horizontal), std::pair("vertical", Vertical)})
    {
        QTest::addRow("%s", name) << int(layout) << 0 << QSize(401, 251) << true << true;
        QTest::addRow("%s, A alone", name) << int(layout) << 0 << QSize(400, 250) << true << false;
        QTest::addRow("%s, B alone", name) << int(layout) << 1 << QSize(400, 250) << false << true;
    }
}

void tst_AnnotationRenderer::PictureIsThatOfTheViewer()
{
    QFETCH(int, layout);
    QFETCH(int, single);
    QFETCH(QSize, size);
    QFETCH(bool, drawnA);
    QFETCH(bool, drawnB);
    const std::array<QImage, 2> pictures = {MakePicture(QSize(160, 90), 0), MakePicture(QSize(100, 100), 77)};
    const std::array<FrameData, 2> drawings = {MakeDrawings(false), MakeDrawings(true)};
    const std::array<bool, 2> drawn = {drawnA, drawnB};

    SoftwareViewer viewer(nullptr);
    viewer.resize(size);
    viewer.SetViewerLayout(static_cast<ViewerLayout>(layout));
    viewer.SetSingleViewerIndex(single);
    std::array<AnnotationRenderer::Slot, 2> viewers;
    const QSize slot(layout == Horizontal ? size.width() / 2 : size.width(),
                     layout == Vertical ? size.height() / 2 : size.height());
    for (int index = 0; index < 2; ++index)
    {
        const auto at = static_cast<size_t>(index);
        viewer.SetImage(index, pictures[at], false);
        viewers[at].drawings = drawn[at] ? &drawings[at] : nullptr;
        const QSize fitted = pictures[at].size().scaled(slot, Qt::KeepAspectRatio);
        // As narrow as the picture comes out of its scaling: a pixel less where the height was rounded.
        viewers[at].displayWidth = pictures[at].scaled(fitted, Qt::KeepAspectRatio).width();
    }
    QImage burnt = viewer.GetImage().convertToFormat(QImage::Format_RGB32);
    const QImage bare = burnt.copy();
    PaintElsewhere(&burnt, static_cast<ViewerLayout>(layout), single, viewers);
    for (int index = 0; index < 2; ++index)
        viewer.SetOverlayData(index, viewers[static_cast<size_t>(index)].drawings, {}, {});
    const QImage shown = viewer.GetImage().convertToFormat(QImage::Format_RGB32);
    QVERIFY(!PictureDifference(shown, bare, 40).isEmpty());
    const QByteArray difference = PictureDifference(burnt, shown, 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_AnnotationRenderer::OnlyShownEntriesArePainted()
{
    FrameData drawings = MakeDrawings(false);
    const QImage bare = MakePicture(QSize(200, 120), 1);
    FrameData some = drawings;
    some.drawData = drawings.drawData.mid(1, 2);
    some.lastIndex = 1;
    QImage expected = bare.copy();
    AnnotationRenderer::Paint(&expected, Single, 0, {{{&some, 200}, {}}});
    drawings.firstIndex = 1;
    drawings.lastIndex = 2;
    QImage burnt = bare.copy();
    AnnotationRenderer::Paint(&burnt, Single, 0, {{{&drawings, 200}, {}}});
    QCOMPARE(burnt, expected);
    QVERIFY(burnt != bare);
    // Ends beyond the list are cut.
    drawings.firstIndex = -3;
    drawings.lastIndex = 100;
    AnnotationRenderer::Paint(&burnt, Single, 0, {{{&drawings, 200}, {}}});
    QVERIFY(burnt != expected);
}

void tst_AnnotationRenderer::NothingShownLeavesThePicture()
{
    FrameData hidden = MakeDrawings(false);
    hidden.lastIndex = -1;
    const FrameData empty;
    const FrameData drawings = MakeDrawings(true);
    const QImage bare = MakePicture(QSize(64, 48), 5);
    QImage burnt = bare.copy();
    AnnotationRenderer::Paint(&burnt, Horizontal, 0, {});
    AnnotationRenderer::Paint(&burnt, Vertical, 0, {{{&hidden, 64}, {&empty, 64}}});
    // The other viewer's.
    AnnotationRenderer::Paint(&burnt, Single, 0, {{{}, {&drawings, 64}}});
    QCOMPARE(burnt, bare);
}

void tst_AnnotationRenderer::TextThatIsBeingTypedHasNoFrame()
{
    FrameData drawings;
    drawings.drawData << MakeDrawings(false).drawData.last();
    drawings.lastIndex = 0;
    const QImage bare = MakePicture(QSize(200, 120), 9);
    QImage plain = bare.copy();
    AnnotationRenderer::Paint(&plain, Single, 0, {{{&drawings, 200}, {}}});
    Settings::textToolActive = true;
    QImage typing = bare.copy();
    AnnotationRenderer::Paint(&typing, Single, 0, {{{&drawings, 200}, {}}});
    QCOMPARE(typing, plain);
    QVERIFY(plain != bare);
}

static const TestRegistration<tst_AnnotationRenderer> AnnotationRendererRegistration;

#include "tst_AnnotationRenderer.moc"
