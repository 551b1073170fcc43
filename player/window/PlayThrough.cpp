// SPDX-License-Identifier: MIT
#include "window/PlayThrough.h"

#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QOpenGLWidget>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>

namespace
{

const QSize DefaultWindowSize(1600, 900);

/// Reads "WIDTHxHEIGHT"; an empty text is the default. Returns an empty size for anything else.
QSize ParseSize(const QString& text)
{
    if (text.isEmpty())
        return DefaultWindowSize;
    static const QRegularExpression pattern(QStringLiteral("^([1-9][0-9]{1,4})x([1-9][0-9]{1,4})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

/// Shows one frame after the other, each as soon as the one before is painted.
class PlayThroughRun
{
public:
    explicit PlayThroughRun(const QSize& size)
    {
        mViewer.resize(size);
        mViewer.show();
        mOptions.pictureFormat =
            mViewer.GetViewerType() == OpenGL ? QImage::Format_RGB888 : QImage::Format_RGB32;
        mOptions.sequenceRate = FrameRate::FromPerSecond(Settings::globalImageSequenceFrameRate);
        QObject::connect(&mLoader, &FrameLoader::MediaOpened, &mViewer,
                         [this](int, const MediaInfo& info)
                         {
                             mFrameCount = info.frameCount;
                             mClock.start();
                             RequestNext();
                         });
        QObject::connect(&mLoader, &FrameLoader::OpenFailed, &mViewer,
                         [](int, const QString& text)
                         {
                             std::fprintf(stderr, "torvalen: %s\n", qUtf8Printable(text));
                             QApplication::exit(1);
                         });
        QObject::connect(&mLoader, &FrameLoader::FrameReady, &mViewer,
                         [this](int, int frame, const ReadResult& result) { OnFrameReady(frame, result); });
    }

    void Open(const QString& path) { mLoader.Open(Media, QFileInfo(path).absoluteFilePath(), mOptions); }

private:
    static constexpr int Media = 1;
    /// Frames read ahead: enough for decoding never to wait, few enough to stay in the processor's reach.
    static constexpr int ReadAhead = 24;

    void RequestNext()
    {
        FrameRequest request;
        request.frame = mShown + 1;
        request.isPlaying = true;
        request.readAhead = ReadAhead;
        mLoader.RequestFrame(Media, request);
    }

    void OnFrameReady(int frame, const ReadResult& result)
    {
        if (frame != mShown + 1)
            return;
        if (!result.text.isEmpty())
        {
            ++mBroken;
            std::fprintf(stderr, "torvalen: %s\n", qUtf8Printable(result.text));
        }
        if (auto* const glWidget = mViewer.findChild<QOpenGLWidget*>())
            glWidget->makeCurrent();
        mViewer.SetImage(0, result.image, false);
        mViewer.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly)->repaint();
        ++mShown;
        if (mShown < mFrameCount)
            RequestNext();
        else
            Finish();
    }

    void Finish()
    {
        const double seconds = static_cast<double>(mClock.nsecsElapsed()) * 1e-9;
        std::printf("frames %d seconds %.3f fps %.2f broken %d\n", mShown, seconds, mShown / seconds,
                    mBroken);
        std::fflush(stdout);
        QApplication::exit(0);
    }

    ViewerWidget mViewer;
    FrameLoader mLoader{nullptr};
    QElapsedTimer mClock;
    MediaOptions mOptions;
    int mFrameCount = 0;
    int mShown = 0;
    int mBroken = 0;
};

} // namespace

int RunPlayThrough(const QString& path, const QString& size)
{
    const QSize windowSize = ParseSize(size);
    if (windowSize.isEmpty())
    {
        std::fprintf(stderr, "torvalen: \"%s\" is no size; write it as WIDTHxHEIGHT\n", qUtf8Printable(size));
        return 2;
    }
    PlayThroughRun run(windowSize);
    QTimer::singleShot(0, qApp, [&run, path] { run.Open(path); });
    return QApplication::exec();
}
