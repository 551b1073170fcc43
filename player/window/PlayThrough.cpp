// SPDX-License-Identifier: MIT
#include "window/PlayThrough.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "viewers/ViewerWidget.h"
#include "window/ViewerBackEndChoice.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>
#include <memory>

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
    PlayThroughRun(const QSize& size, const ViewerBackEndChoice& choice) : mViewer(choice.MakeViewer(nullptr))
    {
        // No frame is shown twice, so none is kept for long.
        mLoader.SetCacheSize(Settings::MINIMUM_CACHE_SIZE);
        mViewer->resize(size);
        mViewer->show();
        mOptions.pictureFormat = PictureFormatOf(mViewer.get());
        mOptions.sequenceRate = FrameRate::FromPerSecond(Settings::globalImageSequenceFrameRate);
        QObject::connect(&mLoader, &FrameLoader::MediaOpened, mViewer.get(),
                         [this](int, const MediaInfo& info)
                         {
                             mFrameCount = info.frameCount;
                             mClock.start();
                             RequestNext();
                         });
        QObject::connect(&mLoader, &FrameLoader::OpenFailed, mViewer.get(),
                         [](int, const QString& text)
                         {
                             std::fprintf(stderr, "torvalen: %s\n", qUtf8Printable(text));
                             QApplication::exit(1);
                         });
        QObject::connect(&mLoader, &FrameLoader::FrameReady, mViewer.get(),
                         [this](int, int frame, const ReadResult& result) { OnFrameReady(frame, result); });
    }

    /// Why nothing can be shown; empty if it can.
    QString Problem() const { return ProblemAfterShow(mViewer.get()); }

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
        ShowPicture(mViewer.get(), 0, result.image);
        mViewer->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly)->repaint();
        ++mShown;
        if (mShown == mFrameCount)
            Finish();
        else
            // Through the event loop: a frame that is there already arrives within the request.
            QMetaObject::invokeMethod(
                mViewer.get(), [this] { RequestNext(); }, Qt::QueuedConnection);
    }

    void Finish()
    {
        const double seconds = static_cast<double>(mClock.nsecsElapsed()) * 1e-9;
        std::printf("frames %d seconds %.3f fps %.2f broken %d\n", mShown, seconds, mShown / seconds,
                    mBroken);
        std::fflush(stdout);
        QApplication::exit(0);
    }

    std::unique_ptr<ViewerWidget> mViewer;
    FrameLoader mLoader{nullptr};
    QElapsedTimer mClock;
    MediaOptions mOptions;
    int mFrameCount = 0;
    int mShown = 0;
    int mBroken = 0;
};

} // namespace

int RunPlayThrough(const QString& path, const QString& size, ViewerBackEndChoice choice)
{
    const QSize windowSize = ParseSize(size);
    if (windowSize.isEmpty())
    {
        std::fprintf(stderr, "torvalen: \"%s\" is no size; write it as WIDTHxHEIGHT\n", qUtf8Printable(size));
        return 2;
    }
    auto run = std::make_unique<PlayThroughRun>(windowSize, choice);
    if (const QString problem = run->Problem(); !problem.isEmpty())
    {
        choice = ViewerBackEndChoice::InSoftware(problem);
        run = std::make_unique<PlayThroughRun>(windowSize, choice);
    }
    if (!choice.message.isEmpty())
        Logger::GetInstance()->Warning(choice.message);
    QTimer::singleShot(0, qApp, [&run, path] { run->Open(path); });
    return QApplication::exec();
}
