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
    /// Called after each change with the store and the frame that changed.
    using Changed = std::function<void(AnnotationStore* store, int frame)>;

    /// Changes the drawings of @p frame in @p store from @p before to @p after when it is pushed.
    SetDrawingsCommand(const QString& text, std::shared_ptr<AnnotationStore> store, int frame,
                       const QList<DrawData>& before, const QList<DrawData>& after, Changed changed);

    void undo() override;
    void redo() override;

private:
    void Apply(const QList<DrawData>& drawings);

    std::shared_ptr<AnnotationStore> mStore;
    int mFrame;
    QList<DrawData> mBefore;
    QList<DrawData> mAfter;
    Changed mChanged;
};
