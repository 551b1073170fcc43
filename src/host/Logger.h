// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCommonExport.h"

#include <QObject>
#include <QString>

/// The log: four levels, each with a call and a signal.
///
/// Every call may be made from any thread and emits its signal on the caller's thread; a receiver that lives
/// on another thread gets it through its event loop, in the caller's order.
class TORVALENCOMMON_EXPORT Logger : public QObject
{
    Q_OBJECT

public:
    /// The one instance. It lives as long as the process and belongs to nobody.
    static Logger* GetInstance();

    /// Plain output, shown as it stands.
    void Output(const QString& text);
    /// What is worth knowing.
    void Info(const QString& text);
    /// What went wrong without keeping anything from being shown.
    void Warning(const QString& text);
    /// What could not be done.
    void Error(const QString& text);
    /// @overload
    /// @p text is UTF-8.
    void Error(const char* text);

Q_SIGNALS:
    void OutputLogged(const QString& text);
    void InfoLogged(const QString& text);
    void WarningLogged(const QString& text);
    void ErrorLogged(const QString& text);

private:
    Logger();
    ~Logger() override;
};
