// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "output/EncoderArguments.h"

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QStringList>

#include <memory>
#include <thread>

class EncoderFeed;

/// One export: composes the frames of a plan, pipes them to the encoder, and puts the movie under its name
/// once it is whole and was counted.
///
/// It lives on the GUI thread; decoding, composing, writing and counting are done by other threads and by the
/// encoder.
class ExportJob : public QObject
{
    Q_OBJECT

public:
    explicit ExportJob(QObject* parent = nullptr);
    /// Ends an export that is running, and removes what it wrote.
    ~ExportJob() override;

    /// Begins the export of @p plan. Everything that is to be said of it comes by signals, failures to begin
    /// too; Finished() is the last one. Call it while IsRunning() is false.
    void Start(OutputPlan plan, const ExportOptions& options);
    /// Ends the export; Finished() answers, with nothing left behind.
    void Stop();
    bool IsRunning() const;

    /// The encoder's program: that of the settings, otherwise the one on the path; empty if there is none.
    static QString FindEncoder();

Q_SIGNALS:
    /// A line of the log; @p detailedOnly for the encoder's own.
    void Line(const QString& text, bool detailedOnly);
    /// @p perMille (0 to 1000) of the frames are encoded.
    void Progress(int perMille);
    /// The export has ended; @p succeeded says whether the movie is there.
    void Finished(bool succeeded);

    /// The movie was counted and moved, or not; for the job itself.
    void MovieFinished(const QString& error);

private Q_SLOTS:
    void OnEncoderOutput();
    void OnEncoderProgress();
    void OnEncoderError(QProcess::ProcessError error);
    void OnEncoderFinished(int exitCode, QProcess::ExitStatus status);
    void OnProblem(const QString& text);
    void OnFeedEnded(int frames, const QString& error);
    void OnMovieFinished(const QString& error);

private:
    QString MakeUnfinishedFile();
    bool StartEncoder(const QSize& size);
    void TakeEncoderLine(const QString& line);
    void FinishMovie();
    void Fail(const QString& reason);
    void End(bool succeeded);

    std::shared_ptr<const OutputPlan> mPlan;
    ExportOptions mOptions;
    QString mUnfinishedFile;
    std::unique_ptr<QProcess> mEncoder;
    std::unique_ptr<EncoderFeed> mFeed;
    QByteArray mEncoderOutput;
    QByteArray mEncoderProgress;
    /// Why the encoder failed: the last error that it told of, else its last words.
    QString mEncoderError;
    QString mLastLine;
    QString mFeedError;
    int mProblems = 0;
    bool mRunning = false;
    bool mStopping = false;
    CancelToken mCancel;
    std::thread mFinisher;
    QElapsedTimer mClock;
};
