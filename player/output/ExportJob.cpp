// SPDX-License-Identifier: MIT
#include "output/ExportJob.h"

#include "host/Settings.h"
#include "output/EncoderFeed.h"
#include "output/FinishedFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace
{

/// How many pictures that can't be read are told one by one.
constexpr int ToldProblems = 20;
/// A pipe of the default size wakes both sides for each sixteenth of a megabyte.
constexpr int PipeBytes = 1 << 20;
constexpr int FullProgress = 1000;
constexpr int KillTimeout = 5000;

/// Takes whole lines out of @p buffer.
QStringList TakeLines(QByteArray& buffer)
{
    QStringList lines;
    for (;;)
    {
        const int end = buffer.indexOf('\n');
        if (end < 0)
            return lines;
        // What a line wrote over itself is not told.
        const QByteArray line = buffer.left(end).trimmed();
        lines << QString::fromLocal8Bit(line.mid(line.lastIndexOf('\r') + 1));
        buffer.remove(0, end + 1);
    }
}

/// What the encoder says last, and no more.
const QString Farewell = QStringLiteral("Conversion failed!");

/// What @p line of the encoder says if it tells of an error; empty otherwise.
QString ErrorIn(const QString& line)
{
    static const QRegularExpression error(QStringLiteral("\\[(?:error|fatal|panic)\\] (.*)$"));
    const QString text = error.match(line).captured(1);
    return text == Farewell ? QString() : text;
}

/// The arguments as one would type them.
QString CommandLine(const QString& program, const QStringList& arguments)
{
    QStringList words;
    for (QString word : QStringList{program} + arguments)
    {
        if (word.contains(QRegularExpression(QStringLiteral("[^A-Za-z0-9_./:,=+-]"))))
            word = QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
                   QLatin1Char('\'');
        words << word;
    }
    return words.join(QLatin1Char(' '));
}

} // namespace

ExportJob::ExportJob(QObject* parent) : QObject(parent)
{
    connect(this, SIGNAL(MovieFinished(QString)), this, SLOT(OnMovieFinished(QString)), Qt::QueuedConnection);
}

ExportJob::~ExportJob()
{
    mCancel.Cancel();
    if (mEncoder)
    {
        mEncoder->disconnect(this);
        mEncoder->kill();
        mEncoder->waitForFinished(KillTimeout);
    }
    mFeed.reset();
    if (mFinisher.joinable())
        mFinisher.join();
    if (mRunning && !mUnfinishedFile.isEmpty())
        QFile::remove(mUnfinishedFile);
}

bool ExportJob::IsRunning() const
{
    return mRunning;
}

QString ExportJob::FindEncoder()
{
    return Settings::ffmpegExePath.isEmpty() ? QStandardPaths::findExecutable(QStringLiteral("ffmpeg"))
                                             : Settings::ffmpegExePath;
}

void ExportJob::Start(OutputPlan plan, const ExportOptions& options)
{
    mFeed.reset();
    // What the export before still has to say is of no use.
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    mPlan = std::make_shared<const OutputPlan>(std::move(plan));
    mOptions = options;
    mUnfinishedFile.clear();
    mEncoderOutput.clear();
    mEncoderProgress.clear();
    mLastLine.clear();
    mEncoderError.clear();
    mFeedError.clear();
    mProblems = 0;
    mRunning = true;
    mStopping = false;
    mCancel = CancelToken();
    mClock.start();
    Q_EMIT Progress(0);

    if (mPlan->FrameCount() == 0)
    {
        Fail(tr("There are no frames to export."));
        return;
    }
    Q_EMIT Line(tr("Exporting %1: frames %2 to %3, %4 x %5, %6 fps")
                    .arg(mPlan->name, QString::number(mPlan->frames.front()),
                         QString::number(mPlan->frames.back()), QString::number(mOptions.size.width()),
                         QString::number(mOptions.size.height()),
                         QString::number(mPlan->rate.PerSecond(), 'g', 6)),
                false);
    Q_EMIT Line(tr("To %1").arg(mOptions.outputPath), false);
    const QSize size = EncodableSize(mOptions.size);
    if (size != mOptions.size)
        Q_EMIT Line(tr("Odd sizes can't be encoded: the movie gets %1 x %2 pixels.")
                        .arg(size.width())
                        .arg(size.height()),
                    false);
    if (mOptions.encoder.isEmpty())
    {
        Fail(tr("The program ffmpeg was not found on the path. Install it, or name it in the preferences."));
        return;
    }
    const QString target = QFileInfo(mOptions.outputPath).canonicalFilePath();
    for (const MediaInfo& info : mPlan->media)
    {
        if (target.isEmpty() || QFileInfo(info.path).canonicalFilePath() != target)
            continue;
        Fail(tr("%1 is shown by the timeline, so it can't be replaced.").arg(mOptions.outputPath));
        return;
    }
    if (const QString reason = MakeUnfinishedFile(); !reason.isEmpty())
    {
        Fail(reason);
        return;
    }
    if (!StartEncoder(size))
        Fail(tr("There is no pipe to the encoder: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
}

QString ExportJob::MakeUnfinishedFile()
{
    const QString directory = QFileInfo(mOptions.outputPath).path();
    if (!QFileInfo(directory).isDir())
        return tr("The directory %1 does not exist.").arg(directory);
    if (QFileInfo(mOptions.outputPath).isDir())
        return tr("%1 is a directory.").arg(mOptions.outputPath);
    // The final place is tried even if the movie grows elsewhere.
    QStringList directories = {directory};
    if (!mOptions.temporaryDirectory.isEmpty())
        directories << mOptions.temporaryDirectory;
    for (const QString& place : directories)
    {
        if (!mUnfinishedFile.isEmpty())
            QFile::remove(mUnfinishedFile);
        mUnfinishedFile = FinishedFile::UnfinishedName(place, QStringLiteral("mp4"));
        QFile file(mUnfinishedFile);
        if (!file.open(QIODevice::WriteOnly))
        {
            mUnfinishedFile.clear();
            return tr("No file can be written in %1: %2").arg(place, file.errorString());
        }
    }
    return {};
}

bool ExportJob::StartEncoder(const QSize& size)
{
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0)
        return false;
#ifdef F_SETPIPE_SZ
    ::fcntl(pipe[1], F_SETPIPE_SZ, PipeBytes);
#endif
    const QStringList arguments = EncoderArguments(*mPlan, mOptions, size, mUnfinishedFile);
    Q_EMIT Line(CommandLine(mOptions.encoder, arguments), true);
    mFeed = std::make_unique<EncoderFeed>(mPlan, size);
    connect(mFeed.get(), SIGNAL(Problem(QString)), this, SLOT(OnProblem(QString)));
    connect(mFeed.get(), SIGNAL(Ended(int, QString)), this, SLOT(OnFeedEnded(int, QString)));

    // A pipe of our own instead of the process's channel, whose frames would go through this thread.
    mEncoder = std::make_unique<QProcess>();
    mEncoder->setStandardInputFile(QStringLiteral("/dev/fd/%1").arg(pipe[0]));
    connect(mEncoder.get(), SIGNAL(readyReadStandardError()), this, SLOT(OnEncoderOutput()));
    connect(mEncoder.get(), SIGNAL(readyReadStandardOutput()), this, SLOT(OnEncoderProgress()));
    connect(mEncoder.get(), SIGNAL(errorOccurred(QProcess::ProcessError)), this,
            SLOT(OnEncoderError(QProcess::ProcessError)));
    connect(mEncoder.get(), SIGNAL(finished(int, QProcess::ExitStatus)), this,
            SLOT(OnEncoderFinished(int, QProcess::ExitStatus)));
    mEncoder->start(mOptions.encoder, arguments, QIODevice::ReadOnly);
    ::close(pipe[0]);
    if (mRunning)
        mFeed->Start(pipe[1]);
    else
        ::close(pipe[1]);
    return true;
}

void ExportJob::Stop()
{
    if (!mRunning || mStopping)
        return;
    mStopping = true;
    mCancel.Cancel();
    Q_EMIT Line(tr("Stopping."), false);
    if (mFeed)
        mFeed->Cancel();
    if (mEncoder && mEncoder->state() != QProcess::NotRunning)
        mEncoder->kill();
}

void ExportJob::OnEncoderOutput()
{
    mEncoderOutput += mEncoder->readAllStandardError();
    for (const QString& line : TakeLines(mEncoderOutput))
        TakeEncoderLine(line);
}

void ExportJob::TakeEncoderLine(const QString& line)
{
    if (line.isEmpty())
        return;
    Q_EMIT Line(line, true);
    if (const QString error = ErrorIn(line); !error.isEmpty())
        mEncoderError = error;
    if (line != Farewell)
        mLastLine = line;
}

void ExportJob::OnEncoderProgress()
{
    mEncoderProgress += mEncoder->readAllStandardOutput();
    for (const QString& line : TakeLines(mEncoderProgress))
    {
        const QString key = QStringLiteral("frame=");
        if (!line.startsWith(key))
            continue;
        const int64_t frames = line.mid(key.size()).trimmed().toLongLong();
        // The last step is that of the whole and counted movie.
        const int64_t perMille = frames * FullProgress / mPlan->FrameCount();
        Q_EMIT Progress(static_cast<int>(std::clamp<int64_t>(perMille, 0, FullProgress - 1)));
    }
}

void ExportJob::OnEncoderError(QProcess::ProcessError error)
{
    // The others end in OnEncoderFinished().
    if (error == QProcess::FailedToStart && mRunning)
        Fail(tr("The encoder %1 could not be started: %2").arg(mOptions.encoder, mEncoder->errorString()));
}

void ExportJob::OnEncoderFinished(int exitCode, QProcess::ExitStatus status)
{
    OnEncoderOutput();
    OnEncoderProgress();
    TakeEncoderLine(QString::fromLocal8Bit(mEncoderOutput.trimmed()));
    mEncoderOutput.clear();
    // Its threads have ended, or do at once: nobody reads the pipe any more. What it signalled before is
    // heard first.
    const bool succeeded = status == QProcess::NormalExit && exitCode == 0 && !mStopping;
    if (!succeeded)
        mFeed->Cancel();
    const QString reason = mEncoderError.isEmpty() ? mLastLine : mEncoderError;
    if (mStopping)
        Fail({});
    else if (status != QProcess::NormalExit)
        Fail(tr("The encoder crashed. %1").arg(reason));
    else if (exitCode != 0)
        Fail(tr("The encoder failed (exit status %1): %2").arg(exitCode).arg(reason));
    else
        FinishMovie();
}

void ExportJob::OnProblem(const QString& text)
{
    if (++mProblems <= ToldProblems)
        Q_EMIT Line(text, false);
}

void ExportJob::OnFeedEnded(int frames, const QString& error)
{
    if (frames < mPlan->FrameCount())
        Q_EMIT Line(tr("%1 of %2 frames were handed to the encoder.").arg(frames).arg(mPlan->FrameCount()),
                    true);
    mFeedError = error;
}

void ExportJob::FinishMovie()
{
    if (mFinisher.joinable())
        mFinisher.join();
    Q_EMIT Line(tr("Counting the frames of the movie."), true);
    mFinisher = std::thread(
        [this, plan = mPlan, file = mUnfinishedFile, path = mOptions.outputPath, cancel = mCancel]
        {
            QString error = FinishedFile::Check(file, plan->FrameCount(), plan->rate, cancel);
            if (error.isEmpty() && !cancel.IsCancelled())
            {
                const QString reason = FinishedFile::Move(file, path);
                if (!reason.isEmpty())
                    error = tr("The movie could not be put at %1: %2").arg(path, reason);
            }
            Q_EMIT MovieFinished(error);
        });
}

void ExportJob::OnMovieFinished(const QString& error)
{
    mFinisher.join();
    if (!mRunning)
        return;
    if (mProblems > ToldProblems)
        Q_EMIT Line(tr("%1 pictures could not be read; black stands for what is missing.").arg(mProblems),
                    false);
    // What the feed says is the cause of what was counted.
    QString reason = mFeedError.isEmpty() ? error : mFeedError;
    // It calls a movie done whose end it could not write.
    if (!mEncoderError.isEmpty())
        reason += tr(" The encoder said: %1").arg(mEncoderError);
    if (!error.isEmpty() || (mStopping && QFile::exists(mUnfinishedFile)))
    {
        Fail(mStopping ? QString() : reason);
        return;
    }
    mUnfinishedFile.clear();
    Q_EMIT Progress(FullProgress);
    const double seconds = static_cast<double>(mClock.elapsed()) / 1000.0;
    const double megabytes = static_cast<double>(QFileInfo(mOptions.outputPath).size()) / 1e6;
    Q_EMIT Line(tr("Exported %1 frames in %2 s (%3 fps, %4 MB).")
                    .arg(QString::number(mPlan->FrameCount()), QString::number(seconds, 'f', 1),
                         QString::number(mPlan->FrameCount() / std::max(seconds, 0.001), 'f', 1),
                         QString::number(megabytes, 'f', 1)),
                false);
    End(true);
}

void ExportJob::Fail(const QString& reason)
{
    if (mStopping)
        Q_EMIT Line(tr("Stopped; nothing was written."), false);
    else
        Q_EMIT Line(tr("Error: %1").arg(reason), false);
    End(false);
}

void ExportJob::End(bool succeeded)
{
    mRunning = false;
    if (mFeed)
        mFeed->Cancel();
    if (!mUnfinishedFile.isEmpty())
        QFile::remove(mUnfinishedFile);
    mUnfinishedFile.clear();
    Q_EMIT Finished(succeeded);
}
