// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/AllocationCount.h"
#include "viewers/GlProbe.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLTexture>
#include <QtTest>

#include <array>

namespace
{

constexpr int FrameCount = 20;
const QSize PictureSize(640, 360);

/// How many objects of each kind the current context has.
struct ObjectCount
{
    int textures = 0;
    int buffers = 0;
    int arrays = 0;
    int framebuffers = 0;
    int programs = 0;
    int shaders = 0;
};

QString Describe(const ObjectCount& count)
{
    return QStringLiteral("%1 textures, %2 buffers, %3 arrays, %4 framebuffers, %5 programs, %6 shaders")
        .arg(count.textures)
        .arg(count.buffers)
        .arg(count.arrays)
        .arg(count.framebuffers)
        .arg(count.programs)
        .arg(count.shaders);
}

/// Drivers give small names; a leak of one object a frame would show among these.
ObjectCount CountObjects()
{
    auto* const gl = QOpenGLContext::currentContext()->versionFunctions<QOpenGLFunctions_3_3_Core>();
    gl->initializeOpenGLFunctions();
    ObjectCount count;
    for (GLuint name = 1; name < 1000; ++name)
    {
        count.textures += gl->glIsTexture(name) ? 1 : 0;
        count.buffers += gl->glIsBuffer(name) ? 1 : 0;
        count.arrays += gl->glIsVertexArray(name) ? 1 : 0;
        count.framebuffers += gl->glIsFramebuffer(name) ? 1 : 0;
        count.programs += gl->glIsProgram(name) ? 1 : 0;
        count.shaders += gl->glIsShader(name) ? 1 : 0;
    }
    return count;
}

bool IsOurs(const AllocationCount::Request& request)
{
    return request.library.isEmpty() || request.library == QLatin1String("viewers_tests") ||
           request.library.startsWith(QLatin1String("libTorvalen"));
}

bool IsOfQt(const AllocationCount::Request& request)
{
    return request.library.startsWith(QLatin1String("libQt5"));
}

QByteArray Describe(const AllocationCount::Request& request)
{
    return QStringLiteral("%1 bytes for %2 in %3")
        .arg(request.bytes)
        .arg(request.function, request.library)
        .toUtf8();
}

} // namespace

/// What a frame costs while pictures of one size come in one after the other, as in playback.
class tst_OpenGLSteadyFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheCounterSeesAllocations();
    void AFrameAllocatesNothing_data();
    void AFrameAllocatesNothing();
    void AShownFrameCostsQtAFewSmallRecords();
    void AFrameMakesNoObjects();

private:
    const QImage& Picture(int frame) const { return mPictures[static_cast<size_t>(frame % 2)]; }

    std::unique_ptr<QWidget> mWindow;
    OpenGLViewerProbe* mViewer = nullptr;
    std::array<QImage, 2> mPictures;
};

void tst_OpenGLSteadyFrames::init()
{
    Settings::RestoreDefaults();
    Settings::highQualityRendering = false;
    Settings::annotationTool = Eyedropper;
    mWindow = std::make_unique<QWidget>();
    mViewer = new OpenGLViewerProbe(mWindow.get());
    mWindow->resize(320, 180);
    mViewer->resize(320, 180);
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    QTRY_VERIFY(mViewer->IsInitialized());
    mPictures = {GlNoise(PictureSize, 1), GlNoise(PictureSize, 2)};
    // The first frames make the textures, the quads and what the driver keeps.
    for (int frame = 0; frame < FrameCount; ++frame)
    {
        mViewer->Give(-1, Picture(frame));
        mViewer->repaint();
    }
    QCoreApplication::processEvents();
}

void tst_OpenGLSteadyFrames::cleanup()
{
    mWindow.reset();
}

void tst_OpenGLSteadyFrames::TheCounterSeesAllocations()
{
    AllocationCount::Start();
    const QImage copy = mPictures[0].copy();
    const std::unique_ptr<QSize> size = std::make_unique<QSize>(1, 2);
    AllocationCount::Stop();
    const QVector<AllocationCount::Request> requests = AllocationCount::Requests();
    bool seesPicture = false;
    bool seesOurs = false;
    for (const AllocationCount::Request& request : requests)
    {
        seesPicture = seesPicture || (IsOfQt(request) && request.bytes >= size_t(copy.sizeInBytes()));
        seesOurs = seesOurs || (IsOurs(request) && request.bytes == sizeof(QSize));
    }
    QVERIFY(seesPicture);
    QVERIFY(seesOurs);
}

void tst_OpenGLSteadyFrames::AFrameAllocatesNothing_data()
{
    QTest::addColumn<int>("layout");
    QTest::newRow("single") << int(Single);
    QTest::newRow("side by side") << int(Horizontal);
}

void tst_OpenGLSteadyFrames::AFrameAllocatesNothing()
{
    QFETCH(int, layout);
    mViewer->SetViewerLayout(ViewerLayout(layout));
    mViewer->makeCurrent();
    const auto play = [this]
    {
        for (int frame = 0; frame < FrameCount; ++frame)
        {
            mViewer->SetImage(-1, Picture(frame), false);
            mViewer->paintGL();
        }
    };
    // The layout's quads, and the request for a repaint, which stays open from here on.
    play();
    AllocationCount::Start();
    play();
    AllocationCount::Stop();
    mViewer->doneCurrent();
    // What is left is the driver's own: nothing that it is called through asks for any.
    for (const AllocationCount::Request& request : AllocationCount::Requests())
        QVERIFY2(!IsOurs(request) && !IsOfQt(request), Describe(request));
}

void tst_OpenGLSteadyFrames::AShownFrameCostsQtAFewSmallRecords()
{
    AllocationCount::Start();
    for (int frame = 0; frame < FrameCount; ++frame)
    {
        mViewer->Give(0, Picture(frame));
        QCoreApplication::processEvents();
    }
    AllocationCount::Stop();
    int ofQt = 0;
    for (const AllocationCount::Request& request : AllocationCount::Requests())
    {
        QVERIFY2(!IsOurs(request), Describe(request));
        if (!IsOfQt(request))
            continue;
        ++ofQt;
        // Never a picture.
        QVERIFY2(request.bytes <= 256, Describe(request));
    }
    // The event that asks for the repaint, two regions, the list of textures that Qt composes the window of
    // with its private part and its one entry, and a record of the widget: eight with one more event.
    QVERIFY2(ofQt > 0 && ofQt <= 10 * FrameCount, qPrintable(QString::number(ofQt)));
}

void tst_OpenGLSteadyFrames::AFrameMakesNoObjects()
{
    mViewer->makeCurrent();
    const ObjectCount before = CountObjects();
    QVERIFY(before.textures >= 2 && before.buffers >= 3 && before.arrays >= 1 && before.programs >= 1);
    for (int frame = 0; frame < FrameCount; ++frame)
    {
        mViewer->Give(-1, Picture(frame));
        mViewer->repaint();
    }
    mViewer->makeCurrent();
    QCOMPARE(Describe(CountObjects()), Describe(before));
    // The count sees an object more.
    auto* const texture = new QOpenGLTexture(QOpenGLTexture::Target2D);
    texture->create();
    texture->bind();
    QCOMPARE(CountObjects().textures, before.textures + 1);
    delete texture;
    mViewer->doneCurrent();
}

static const TestRegistration<tst_OpenGLSteadyFrames> OpenGLSteadyFramesRegistration;

#include "tst_OpenGLSteadyFrames.moc"
