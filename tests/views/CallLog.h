// SPDX-License-Identifier: MIT
#pragma once

#include "views/TreeItemMetaType.h"

#include <QObject>
#include <QSignalSpy>
#include <QStringList>

#include <memory>
#include <vector>

/// An identity that tests can count with: CallLog shows it as "#7".
QUuid NumberedID(int number);

/// Records every signal that the class of an object declares, in the order in which they come.
class CallLog : public QObject
{
    Q_OBJECT

public:
    explicit CallLog(QObject* object);

    /// The signals since the last call, with their arguments: "SortElementsRequested(true)",
    /// "RemoveElementsRequested([#1 #2])".
    QStringList Take();

private Q_SLOTS:
    void Note();

private:
    QStringList mCalls;
    std::vector<std::pair<QString, std::unique_ptr<QSignalSpy>>> mSpies;
};
