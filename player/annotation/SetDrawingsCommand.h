// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"

#include <QList>
#include <QUndoCommand>

#include <functional>
#include <memory>

class AnnotationStore;

/// One change of a frame's drawings: a stroke added, a frame cleared.
class SetDrawingsCommand : public QUndoCommand
{
public:
    /// Called after each change with the store and the frame that changed; @p replayed says that undo or redo
    /// made the change, and not the user's own drawing.
    using Changed = std::function<void(AnnotationStore* store, int frame, bool replayed)>;

    /// Changes the drawings of @p frame in @p store from @p before to @p after when it is pushed.
    SetDrawingsCommand(const QString& text, std::shared_ptr<AnnotationStore> store, int frame,
                       const QList<DrawData>& before, const QList<DrawData>& after, Changed changed);

    void undo() override;
    void redo() override;

private:
    void Apply(const QList<DrawData>& drawings, bool replayed);

    std::shared_ptr<AnnotationStore> mStore;
    int mFrame;
    QList<DrawData> mBefore;
    QList<DrawData> mAfter;
    Changed mChanged;
    bool mPushed = false;
};
