// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QDialog>

namespace Ui
{
class AboutDialog;
}

/// Tells the application's title and version and the libraries that it uses. Its size is fixed.
class TORVALENUI_EXPORT AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent = nullptr);
    ~AboutDialog() override;

private:
    Ui::AboutDialog* mForm;
};
