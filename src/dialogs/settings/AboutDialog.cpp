// SPDX-License-Identifier: MIT
#include "dialogs/settings/AboutDialog.h"

#include "host/Settings.h"
#include "ui_AboutDialog.h"

namespace
{

constexpr QSize OkButtonSize(60, 24);

} // namespace

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent), mForm(new Ui::AboutDialog)
{
    mForm->setupUi(this);
    const QString title = QString::fromUtf8(Settings::APPLICATION_TITLE);
    setWindowTitle(tr("About ") + title);
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    mForm->okButton->setMinimumSize(OkButtonSize);
    mForm->titleLabel->setText(mForm->titleLabel->text().arg(title));
    mForm->versionNumberLabel->setText(QString::fromUtf8(Settings::TORVALEN_PRO_VERSION_STRING));
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    // A constant, and meant so: not the version of the Qt that runs.
    QString credits = mForm->textEdit->toHtml();
    credits.replace(QLatin1String("Qt Version: 5.6.1"), QStringLiteral("Qt: %1").arg(QLatin1String("5.9.2")));
    mForm->textEdit->setHtml(credits);
}

AboutDialog::~AboutDialog()
{
    delete mForm;
}
