// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/GlProbe.h"
#include "viewers/ViewerPair.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <vector>

#ifdef TORVALEN_SANITIZED
#include <sanitizer/lsan_interface.h>
#endif

namespace
{

/// Where a picture stands, in logical pixels, with viewer A at the left or the top.
QRectF QuadRect(const QSize& picture, ViewerLayout layout, int index, const QSize& size)
{
    QRectF area(QPointF(0, 0), QSizeF(size));
    if (layout == Horizontal)
        area = QRectF(index * size.width() / 2.0, 0, size.width() / 2.0, size.height());
    else if (layout == Vertical)
        area = QRectF(0, index * size.height() / 2.0, size.width(), size.height() / 2.0);
    const QSizeF fitted = QSizeF(picture).scaled(area.size(), Qt::KeepAspectRatio);
    return QRectF(area.center() - QPointF(fitted.width() / 2, fitted.height() / 2), fitted);
}

/// Compares @p shown with plain pictures at @p quads, leaving a pixel's width around each edge out.
QByteArray QuadDifference(const QImage& shown, const QList<QPair<QRectF, QColor>>& quads)
{
    const double ratio = shown.devicePixelRatio();
    for (int y = 0; y < shown.height(); ++y)
    {
        for (int x = 0; x < shown.width(); ++x)
        {
            const QPointF at((x + 0.5) / ratio, (y + 0.5) / ratio);
            QColor expected(Qt::black);
            bool edge = false;
            for (const auto& [quad, color] : quads)
            {
                const QRectF inner = quad.adjusted(1.01, 1.01, -1.01, -1.01);
                if (inner.contains(at))
                    expected = color;
                else if (quad.adjusted(-1.01, -1.01, 1.01, 1.01).contains(at))
                    edge = true;
            }
            if (!edge && shown.pixelColor(x, y) != expected)
                return QStringLiteral("(%1, %2) is %3, expected %4")
                    .arg(x)
                    .arg(y)
                    .arg(shown.pixelColor(x, y).name(), expected.name())
                    .toUtf8();
        }
    }
    return {};
}

QImage PaddedTwice(const QImage& image)
{
    // A checked picture of plain halves would hide a flip; four corners don't.
    QImage corners(image.size() * 2, QImage::Format_RGB888);
    for (int y = 0; y < corners.height(); ++y)
    {
        for (int x = 0; x < corners.width(); ++x)
        {
            const bool right = x >= image.width();
            const bool bottom = y >= image.height();
            corners.setPixelColor(x, y,
                                  QColor(right ? 255 : 0, bottom ? 255 : 0, right && bottom ? 255 : 128));
        }
    }
    return corners;
}

} // namespace

class tst_OpenGLViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AsksForTheFormatOfItsSettings_data();
    void AsksForTheFormatOfItsSettings();
    void TheWidgetChoosesItBySetting();
    void ReportsTheDriverInOrder();
    void ShowsBlackPointsFromTheStart();
    void PicturesStandInTheirSlots_data();
    void PicturesStandInTheirSlots();
    void PicturesStandUpright();
    void AnEnlargedPictureFadesAtItsEdges();
    void HiddenPicturesKeepTheirDisplaySize();
    void DisplaySizesAreKeptForBothViewers();
    void TheDisplaySizeIsThatOfTheSingleViewer();
    void AResizeFitsThePicturesAgain();
    void AnImageOfTheSameSizeReusesTheTexture();
    void AnImageOfAnotherSizeReplacesTheTexture();
    void ANullImageLeavesItsSlotBlack();
    void AnotherContextStartsAfresh();
    void OddWidthsKeepTheirRows();
    void SmallerPicturesInMemoryAreShownToo();
    void TheGammaPathIsNeverTaken();
    void FramesWithoutAContextAreLost();
    void FramesBeforeInitialisationAreLost();
    void WithoutAContextItSaysSo();
    void AnIndexOfTwoIsLogged();
    void SeveralViewersShowTheirOwnPictures();
    void ViewersGoInAnyOrder_data();
    void ViewersGoInAnyOrder();
    void SteadyFramesMakeNoTextures();

private:
    void Show(const QSize& size);

    std::unique_ptr<QWidget> mWindow;
    OpenGLViewerProbe* mViewer = nullptr;
};

void tst_OpenGLViewer::init()
{
    Settings::RestoreDefaults();
    Settings::highQualityRendering = false;
    Settings::annotationTool = Eyedropper;
    mWindow = std::make_unique<QWidget>();
    mViewer = new OpenGLViewerProbe(mWindow.get());
}

void tst_OpenGLViewer::cleanup()
{
    mWindow.reset();
}

void tst_OpenGLViewer::Show(const QSize& size)
{
    mWindow->resize(size);
    mViewer->setGeometry(QRect(QPoint(0, 0), size));
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    QTRY_VERIFY(mViewer->IsInitialized());
}

void tst_OpenGLViewer::AsksForTheFormatOfItsSettings_data()
{
    QTest::addColumn<bool>("highQuality");
    QTest::addColumn<int>("samples");
    QTest::newRow("high quality") << true << 10;
    QTest::newRow("plain") << false << -1;
}

void tst_OpenGLViewer::AsksForTheFormatOfItsSettings()
{
    QFETCH(bool, highQuality);
    QFETCH(int, samples);
    Settings::highQualityRendering = highQuality;
    const OpenGLViewerProbe viewer(mWindow.get());
    Settings::highQualityRendering = !highQuality;
    QCOMPARE(viewer.format().samples(), samples);
    QCOMPARE(viewer.format().depthBufferSize(), 0);
    QCOMPARE(viewer.format().majorVersion(), QSurfaceFormat::defaultFormat().majorVersion());
    QCOMPARE(viewer.format().profile(), QSurfaceFormat::defaultFormat().profile());
    QCOMPARE(viewer.sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
    QVERIFY(!viewer.IsInitialized());
}

void tst_OpenGLViewer::TheWidgetChoosesItBySetting()
{
    Settings::hardwareAcceleratedPlayback = true;
    ViewerWidget widget;
    QCOMPARE(widget.GetViewerType(), OpenGL);
    QCOMPARE(widget.findChildren<QWidget*>().size(), 1);
    QVERIFY(widget.findChild<OpenGLViewer*>());
    QVERIFY(!widget.IsInitialized());
    widget.resize(200, 100);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QTRY_VERIFY(widget.IsInitialized());
    widget.findChild<QOpenGLWidget*>()->makeCurrent();
    widget.SetImage(0, GlPlain(QSize(20, 10), Qt::green), false);
    QCOMPARE(widget.GetImage().pixelColor(100, 50), QColor(Qt::green));
    QCOMPARE(widget.GetImageDisplayWidth(), 200);
    widget.findChild<QOpenGLWidget*>()->makeCurrent();
    widget.Clear(0);
    QCOMPARE(widget.GetImage().pixelColor(100, 50), QColor(Qt::black));
}

void tst_OpenGLViewer::ReportsTheDriverInOrder()
{
    QSignalSpy outputs(Logger::GetInstance(), &Logger::OutputLogged);
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    Show(QSize(200, 100));
    mViewer->makeCurrent();
    QOpenGLFunctions* const gl = QOpenGLContext::currentContext()->functions();
    const QList<QPair<QString, GLenum>> lines = {
        {QStringLiteral("OpenGL Vendor: %1\n"), GL_VENDOR},
        {QStringLiteral("OpenGL Renderer: %1\n"), GL_RENDERER},
        {QStringLiteral("OpenGL Version: %1\n"), GL_VERSION},
        {QStringLiteral("OpenGL Shading Language Version: %1\n"), GL_SHADING_LANGUAGE_VERSION}};
    QCOMPARE(outputs.size(), lines.size());
    for (int line = 0; line < lines.size(); ++line)
    {
        const QString value =
            QString::fromUtf8(reinterpret_cast<const char*>(gl->glGetString(lines[line].second)));
        QVERIFY(!value.isEmpty());
        QCOMPARE(outputs[line][0].toString(), lines[line].first.arg(value));
    }
    QCOMPARE(errors.size(), 0);
    mViewer->doneCurrent();
}

void tst_OpenGLViewer::ShowsBlackPointsFromTheStart()
{
    Show(QSize(200, 100));
    const QImage shown = mViewer->GetImage();
    QCOMPARE(PictureDifference(shown, GlPlain(shown.size(), Qt::black)), QByteArray());
    QVERIFY(mViewer->mDisplaySizes[0] == QPointF(100, 100));
    QVERIFY(mViewer->mDisplaySizes[1] == QPointF(100, 100));
}

void tst_OpenGLViewer::PicturesStandInTheirSlots_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("first");
    QTest::addColumn<QSize>("second");
    for (const int layout : {0, 1, 2})
    {
        QTest::addRow("layout %d, same shape", layout)
            << layout << QSize(320, 180) << QSize(64, 36) << QSize(128, 72);
        QTest::addRow("layout %d, wide and tall", layout)
            << layout << QSize(321, 183) << QSize(200, 20) << QSize(20, 200);
        QTest::addRow("layout %d, odd", layout) << layout << QSize(203, 251) << QSize(7, 5) << QSize(1, 3);
    }
}

void tst_OpenGLViewer::PicturesStandInTheirSlots()
{
    QFETCH(int, layout);
    QFETCH(QSize, size);
    QFETCH(QSize, first);
    QFETCH(QSize, second);
    Show(size);
    // Enlarging fades the outer half pixel of a picture to black, so the pictures have many pixels here.
    const int grow = 40;
    mViewer->Give(0, GlPlain(first * grow, Qt::red));
    mViewer->Give(1, GlPlain(second * grow, Qt::blue));
    mViewer->SetViewerLayout(ViewerLayout(layout));
    for (const int single : {0, 1})
    {
        mViewer->SetSingleViewerIndex(single);
        QList<QPair<QRectF, QColor>> quads;
        if (layout != Single || single == 0)
            quads.append({QuadRect(first, ViewerLayout(layout), 0, size), QColor(Qt::red)});
        if (layout != Single || single == 1)
            quads.append({QuadRect(second, ViewerLayout(layout), 1, size), QColor(Qt::blue)});
        const QByteArray text = QuadDifference(mViewer->GetImage(), quads);
        QVERIFY2(text.isEmpty(), text);
        for (int index = 0; index < 2; ++index)
        {
            const QSizeF fitted =
                QuadRect(index == 0 ? first : second, ViewerLayout(layout), index, size).size();
            QVERIFY(std::abs(mViewer->mDisplaySizes[index].x() - fitted.width()) < 0.01);
            QVERIFY(std::abs(mViewer->mDisplaySizes[index].y() - fitted.height()) < 0.01);
        }
    }
}

void tst_OpenGLViewer::PicturesStandUpright()
{
    Show(QSize(200, 100));
    mViewer->Give(0, PaddedTwice(GlPlain(QSize(100, 50), Qt::black)));
    const QImage shown = mViewer->GetImage();
    const QSize quarter = shown.size() / 4;
    QCOMPARE(shown.pixelColor(quarter.width(), quarter.height()), QColor(0, 0, 128));
    QCOMPARE(shown.pixelColor(3 * quarter.width(), quarter.height()), QColor(255, 0, 128));
    QCOMPARE(shown.pixelColor(quarter.width(), 3 * quarter.height()), QColor(0, 255, 128));
    QCOMPARE(shown.pixelColor(3 * quarter.width(), 3 * quarter.height()), QColor(255, 255, 255));
}

void tst_OpenGLViewer::AnEnlargedPictureFadesAtItsEdges()
{
    Show(QSize(200, 100));
    QImage picture = GlPlain(QSize(4, 2), Qt::white);
    picture.setPixelColor(2, 0, Qt::red);
    picture.setPixelColor(2, 1, Qt::red);
    mViewer->Give(0, picture);
    const QImage shown = mViewer->GetImage();
    const double ratio = shown.devicePixelRatio();
    const auto greenAt = [&](double x, double y)
    { return shown.pixelColor(int(x * ratio), int(y * ratio)).green(); };
    // A picture's pixel is 50 by 50. Its value holds at its centre; outside the last centre it falls to half
    // of itself, the border being black.
    QVERIFY(greenAt(25, 25) >= 250);
    QVERIFY(std::abs(greenAt(0, 25) - 128) <= 6);
    QVERIFY(std::abs(greenAt(12.5, 25) - 191) <= 6);
    QVERIFY(std::abs(greenAt(199.4, 25) - 128) <= 6);
    QVERIFY(std::abs(greenAt(25, 0) - 128) <= 6);
    QVERIFY(std::abs(greenAt(25, 99.4) - 128) <= 6);
    // Between the centres of white and red lies what lies between them.
    QVERIFY(std::abs(greenAt(100, 25) - 128) <= 6);
    QVERIFY(std::abs(greenAt(112.5, 25) - 64) <= 6);
}

void tst_OpenGLViewer::HiddenPicturesKeepTheirDisplaySize()
{
    Show(QSize(200, 100));
    mViewer->Give(0, GlPlain(QSize(400, 400), Qt::white));
    Settings::onlyDisplayAnnotations = true;
    const QImage shown = mViewer->GetImage();
    QCOMPARE(PictureDifference(shown, GlPlain(shown.size(), Qt::black)), QByteArray());
    QCOMPARE(mViewer->GetImageDisplayWidth(), 100);
    QCOMPARE(mViewer->GetImageDisplayHeight(), 100);
}

void tst_OpenGLViewer::DisplaySizesAreKeptForBothViewers()
{
    Show(QSize(200, 100));
    mViewer->Give(1, GlPlain(QSize(40, 80), Qt::white));
    mViewer->GetImage();
    QVERIFY(mViewer->mDisplaySizes[1] == QPointF(50, 100));
    // A new size leaves none until the next paint.
    mViewer->Give(1, GlPlain(QSize(80, 80), Qt::white));
    QVERIFY(mViewer->mDisplaySizes[1] == QPointF(0, 0));
    QVERIFY(mViewer->mDisplaySizes[0] == QPointF(100, 100));
    QVERIFY(!std::isfinite(mViewer->ToDrawSpace(1, QPoint(5, 5)).x()));
    mViewer->GetImage();
    QVERIFY(mViewer->mDisplaySizes[1] == QPointF(100, 100));
}

void tst_OpenGLViewer::TheDisplaySizeIsThatOfTheSingleViewer()
{
    Show(QSize(201, 100));
    mViewer->Give(0, GlPlain(QSize(40, 40), Qt::white));
    mViewer->Give(1, GlPlain(QSize(40, 20), Qt::white));
    for (const ViewerLayout layout : {Single, Horizontal, Vertical})
    {
        mViewer->SetViewerLayout(layout);
        for (const int single : {0, 1})
        {
            mViewer->SetSingleViewerIndex(single);
            mViewer->GetImage();
            QCOMPARE(mViewer->GetImageDisplayWidth(), int(mViewer->mDisplaySizes[single].x()));
            QCOMPARE(mViewer->GetImageDisplayHeight(), int(mViewer->mDisplaySizes[single].y()));
        }
    }
    // 100.5 wide and 50.25 high.
    mViewer->SetViewerLayout(Horizontal);
    mViewer->GetImage();
    QCOMPARE(mViewer->GetImageDisplayWidth(), 100);
    QCOMPARE(mViewer->GetImageDisplayHeight(), 50);
}

void tst_OpenGLViewer::AResizeFitsThePicturesAgain()
{
    Show(QSize(200, 100));
    mViewer->Give(0, GlPlain(QSize(800, 400), Qt::red));
    mViewer->GetImage();
    mWindow->resize(300, 300);
    mViewer->resize(300, 300);
    QTest::qWait(20);
    const QImage shown = mViewer->GetImage();
    QCOMPARE(shown.size(), QSize(300, 300) * shown.devicePixelRatio());
    const QByteArray text = QuadDifference(shown, {{QRectF(0, 75, 300, 150), QColor(Qt::red)}});
    QVERIFY2(text.isEmpty(), text);
}

void tst_OpenGLViewer::AnImageOfTheSameSizeReusesTheTexture()
{
    Show(QSize(200, 100));
    const auto textureNow = [this]
    {
        GLint bound = 0;
        mViewer->makeCurrent();
        GLboolean texture = GL_FALSE;
        for (GLuint name = 1; name < 64; ++name)
        {
            texture = QOpenGLContext::currentContext()->functions()->glIsTexture(name);
            bound += texture ? 1 : 0;
        }
        mViewer->doneCurrent();
        return bound;
    };
    mViewer->Give(0, GlPlain(QSize(200, 100), Qt::red));
    mViewer->GetImage();
    const int before = textureNow();
    const QPointF size = mViewer->mDisplaySizes[0];
    for (const QColor& color : {QColor(Qt::green), QColor(Qt::blue), QColor(1, 2, 3)})
    {
        mViewer->Give(0, GlPlain(QSize(200, 100), color));
        // The quads stand: nothing is to be rebuilt.
        QVERIFY(mViewer->mDisplaySizes[0] == size);
        QCOMPARE(mViewer->GetImage().pixelColor(100, 50), color);
    }
    QCOMPARE(textureNow(), before);
}

void tst_OpenGLViewer::AnImageOfAnotherSizeReplacesTheTexture()
{
    Show(QSize(200, 100));
    mViewer->Give(0, GlPlain(QSize(400, 200), Qt::red));
    QVERIFY(QuadDifference(mViewer->GetImage(), {{QRectF(0, 0, 200, 100), QColor(Qt::red)}}).isEmpty());
    mViewer->Give(0, GlPlain(QSize(400, 400), Qt::green));
    QVERIFY(QuadDifference(mViewer->GetImage(), {{QRectF(50, 0, 100, 100), QColor(Qt::green)}}).isEmpty());
}

void tst_OpenGLViewer::ANullImageLeavesItsSlotBlack()
{
    Show(QSize(200, 100));
    mViewer->SetViewerLayout(Horizontal);
    mViewer->Give(-1, GlPlain(QSize(400, 400), Qt::green));
    for (int round = 0; round < 2; ++round)
    {
        mViewer->Give(0, QImage());
        QVERIFY(mViewer->mDisplaySizes[0] == QPointF(0, 0));
        QVERIFY(
            QuadDifference(mViewer->GetImage(), {{QRectF(100, 0, 100, 100), QColor(Qt::green)}}).isEmpty());
    }
    mViewer->Give(0, GlPlain(QSize(400, 400), Qt::red));
    QVERIFY(QuadDifference(mViewer->GetImage(), {{QRectF(0, 0, 100, 100), QColor(Qt::red)},
                                                 {QRectF(100, 0, 100, 100), QColor(Qt::green)}})
                .isEmpty());
}

void tst_OpenGLViewer::AnotherContextStartsAfresh()
{
    // Without shared contexts, a move to another window makes a new one, and what was in the old one is gone.
#ifdef TORVALEN_SANITIZED
    // Qt loses the function tables of a context that goes before whoever calls through them.
    const __lsan::ScopedDisabler disabler;
#endif
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts, false);
    const auto restore =
        qScopeGuard([] { QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts, true); });
    Show(QSize(200, 100));
    mViewer->Give(0, GlPlain(QSize(400, 200), Qt::red));
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::red));
    QSignalSpy outputs(Logger::GetInstance(), &Logger::OutputLogged);
    QWidget other;
    other.resize(200, 100);
    mViewer->setParent(&other);
    mViewer->show();
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    QTRY_COMPARE(outputs.size(), 4);
    QVERIFY(mViewer->IsInitialized());
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::black));
    // The picture of before, as before, and one of viewer B, whose texture has kept its size.
    mViewer->SetViewerLayout(Horizontal);
    mViewer->Give(0, GlPlain(QSize(400, 400), Qt::green));
    mViewer->Give(1, GlPlain(QSize(1, 1), Qt::white));
    mViewer->Give(1, GlPlain(QSize(400, 400), Qt::blue));
    QVERIFY(QuadDifference(mViewer->GetImage(), {{QRectF(0, 0, 100, 100), QColor(Qt::green)},
                                                 {QRectF(100, 0, 100, 100), QColor(Qt::blue)}})
                .isEmpty());
    delete mViewer;
    mViewer = nullptr;
}

void tst_OpenGLViewer::OddWidthsKeepTheirRows()
{
    for (const int width : {199, 201, 202, 203})
    {
        init();
        Show(QSize(width, 101));
        // Once as a new texture and once into it.
        for (const quint32 seed : {1u, 2u})
        {
            const QImage picture = GlNoise(QSize(width, 101), seed);
            mViewer->Give(0, picture);
            const QImage shown = mViewer->GetImage();
            if (shown.devicePixelRatio() == 1.0)
                QCOMPARE(PictureDifference(shown, picture, 1), QByteArray());
        }
    }
}

void tst_OpenGLViewer::SmallerPicturesInMemoryAreShownToo()
{
    Show(QSize(201, 101));
    mViewer->Give(0, GlNoise(QSize(201, 101), 1));
    const QImage aligned = GlNoise(QSize(201, 101), 2);
    // Rows without padding, as a host may wrap its own memory.
    std::vector<uchar> memory(201 * 3 * 101);
    for (int y = 0; y < 101; ++y)
        std::copy_n(aligned.constScanLine(y), 201 * 3, memory.begin() + y * 201 * 3);
    mViewer->Give(0, QImage(memory.data(), 201, 101, 201 * 3, QImage::Format_RGB888));
    if (mViewer->devicePixelRatioF() == 1.0)
        QCOMPARE(PictureDifference(mViewer->GetImage(), aligned, 1), QByteArray());
    QImage gray(201, 101, QImage::Format_Grayscale8);
    gray.fill(77);
    mViewer->Give(0, gray);
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(77, 77, 77));
}

void tst_OpenGLViewer::TheGammaPathIsNeverTaken()
{
    Show(QSize(200, 100));
    for (const bool linear : {false, true})
    {
        // A new texture, the same texture, and both viewers.
        mViewer->Give(0, GlPlain(QSize(200 + 2 * linear, 100), QColor(60, 120, 180)), linear);
        QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(60, 120, 180));
        mViewer->Give(0, GlPlain(QSize(200 + 2 * linear, 100), QColor(61, 121, 181)), linear);
        QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(61, 121, 181));
        mViewer->Give(-1, GlPlain(QSize(200, 100), QColor(62, 122, 182)), linear);
        QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(62, 122, 182));
        QVERIFY(!mViewer->mLinearFlags[0] && !mViewer->mLinearFlags[1]);
    }
}

void tst_OpenGLViewer::FramesWithoutAContextAreLost()
{
    Show(QSize(200, 100));
    mViewer->Give(0, GlPlain(QSize(400, 200), Qt::red));
    // The paint that builds the quads leaves another one due.
    mViewer->GetImage();
    mViewer->GetImage();
    mViewer->doneCurrent();
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    for (const int index : {-1, 0, 2})
        mViewer->SetImage(index, GlPlain(QSize(400, 200), Qt::green), false);
    QCOMPARE(errors.size(), 0);
    QVERIFY(!mViewer->mImageChanged);
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::red));
}

void tst_OpenGLViewer::FramesBeforeInitialisationAreLost()
{
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    for (const int index : {-1, 0, 1, 2})
        mViewer->SetImage(index, GlPlain(QSize(400, 200), Qt::green), false);
    QCOMPARE(errors.size(), 0);
    Show(QSize(200, 100));
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::black));
}

void tst_OpenGLViewer::WithoutAContextItSaysSo()
{
    QVERIFY(!QOpenGLContext::currentContext());
    QSignalSpy outputs(Logger::GetInstance(), &Logger::OutputLogged);
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    mViewer->initializeGL();
    QVERIFY(!mViewer->IsInitialized());
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors[0][0].toString(), QStringLiteral("Failed to get a valid OpenGL context"));
    QCOMPARE(outputs.size(), 0);
}

void tst_OpenGLViewer::AnIndexOfTwoIsLogged()
{
    Show(QSize(200, 100));
    mViewer->Give(-1, GlPlain(QSize(400, 200), Qt::red));
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    mViewer->Give(2, GlPlain(QSize(400, 200), Qt::green));
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors[0][0].toString(), QStringLiteral("Viewer index out of range"));
    QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::red));
}

void tst_OpenGLViewer::SeveralViewersShowTheirOwnPictures()
{
    Show(QSize(200, 100));
    auto* const beside = new OpenGLViewerProbe(mWindow.get());
    mWindow->resize(400, 100);
    beside->setGeometry(200, 0, 200, 100);
    beside->show();
    QWidget other;
    auto* const away = new OpenGLViewerProbe(&other);
    other.resize(200, 100);
    away->resize(200, 100);
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    QTRY_VERIFY(beside->IsInitialized() && away->IsInitialized());
    mViewer->Give(0, GlPlain(QSize(200, 100), Qt::red));
    beside->Give(0, GlPlain(QSize(200, 100), Qt::green));
    away->Give(0, GlPlain(QSize(200, 100), Qt::blue));
    for (int round = 0; round < 3; ++round)
    {
        QCOMPARE(mViewer->GetImage().pixelColor(100, 50), QColor(Qt::red));
        QCOMPARE(beside->GetImage().pixelColor(100, 50), QColor(Qt::green));
        QCOMPARE(away->GetImage().pixelColor(100, 50), QColor(Qt::blue));
    }
}

void tst_OpenGLViewer::ViewersGoInAnyOrder_data()
{
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("first to last") << QList<int>{0, 1, 2};
    QTest::newRow("last to first") << QList<int>{2, 1, 0};
    QTest::newRow("middle first") << QList<int>{1, 2, 0};
}

void tst_OpenGLViewer::ViewersGoInAnyOrder()
{
    QFETCH(QList<int>, order);
    mWindow->resize(300, 100);
    mWindow->show();
    QList<OpenGLViewerProbe*> viewers{mViewer, new OpenGLViewerProbe(mWindow.get()),
                                      new OpenGLViewerProbe(mWindow.get())};
    for (int place = 0; place < 3; ++place)
    {
        viewers[place]->setGeometry(place * 100, 0, 100, 100);
        viewers[place]->show();
    }
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    for (OpenGLViewerProbe* viewer : qAsConst(viewers))
    {
        QTRY_VERIFY(viewer->IsInitialized());
        viewer->Give(0, GlPlain(QSize(100, 100), Qt::red));
    }
    for (const int gone : order)
    {
        delete viewers[gone];
        viewers[gone] = nullptr;
        QTest::qWait(10);
        for (OpenGLViewerProbe* viewer : qAsConst(viewers))
        {
            if (viewer)
                QCOMPARE(viewer->GetImage().pixelColor(50, 50), QColor(Qt::red));
        }
    }
    mViewer = nullptr;
}

void tst_OpenGLViewer::SteadyFramesMakeNoTextures()
{
    Show(QSize(200, 100));
    for (int frame = 0; frame < 3; ++frame)
    {
        mViewer->Give(0, GlPlain(QSize(200, 100), Qt::red));
        mViewer->repaint();
    }
    const auto newestName = [this]
    {
        mViewer->makeCurrent();
        GLuint name = 0;
        QOpenGLContext::currentContext()->functions()->glGenTextures(1, &name);
        QOpenGLContext::currentContext()->functions()->glDeleteTextures(1, &name);
        mViewer->doneCurrent();
        return name;
    };
    // Some drivers never give a name twice, so the asking itself is counted.
    const GLuint first = newestName();
    const GLuint before = newestName();
    for (int frame = 0; frame < 20; ++frame)
    {
        mViewer->Give(0, GlNoise(QSize(200, 100), quint32(frame)));
        mViewer->repaint();
    }
    QCOMPARE(newestName(), before + (before - first));
}

static const TestRegistration<tst_OpenGLViewer> OpenGLViewerRegistration;

#include "tst_OpenGLViewer.moc"
