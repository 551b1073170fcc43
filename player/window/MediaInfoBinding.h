// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

class MediaInfoDialog;
class MediaSource;
class PlaybackController;
class QWidget;
class ViewerWidget;

/// Keeps the panel of media information in line with the source under the playhead.
class MediaInfoBinding : public QObject
{
    Q_OBJECT

public:
    MediaInfoBinding(PlaybackController* playback, ViewerWidget* viewer, QWidget* window);

    /// Shows the panel, or hides it.
    void Toggle();
    bool IsShown() const;
    MediaInfoDialog* Panel() const;

    /// @p time (microseconds) as hours, minutes, seconds and milliseconds: "01:02:03.004".
    static QString DurationText(int64_t time);

    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void Update();

private:
    void ShowSource(const MediaSource& source);

    PlaybackController* mPlayback;
    ViewerWidget* mViewer;
    MediaInfoDialog* mPanel;
    std::shared_ptr<const MediaSource> mShown;
};
