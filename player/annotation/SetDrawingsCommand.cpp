// SPDX-License-Identifier: MIT
#include "annotation/SetDrawingsCommand.h"

#include "annotation/AnnotationStore.h"

SetDrawingsCommand::SetDrawingsCommand(const QString& text, std::shared_ptr<AnnotationStore> store, int frame,
                                       const QList<DrawData>& before, const QList<DrawData>& after,
                                       Changed changed)
    : QUndoCommand(text)
    , mStore(std::move(store))
    , mFrame(frame)
    , mBefore(before)
    , mAfter(after)
    , mChanged(std::move(changed))
{
}

void SetDrawingsCommand::undo()
{
    Apply(mBefore, true);
}

void SetDrawingsCommand::redo()
{
    Apply(mAfter, mPushed);
    mPushed = true;
}

void SetDrawingsCommand::Apply(const QList<DrawData>& drawings, bool replayed)
{
    mStore->SetDrawings(mFrame, drawings);
    mChanged(mStore.get(), mFrame, replayed);
}
