// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "window/MessageBar.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

class tst_MessageBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ShowsTheNewestMessageAndCountsTheOthers();
    void IsHiddenUntilThereIsAMessage();
    void ALongPathDoesNotWidenTheWindow();
};

void tst_MessageBar::ShowsTheNewestMessageAndCountsTheOthers()
{
    MessageBar bar;
    bar.ShowMessage(QStringLiteral("first"));
    bar.ShowMessage(QStringLiteral("first"));
    const QLabel* const label = bar.findChild<QLabel*>();
    QCOMPARE(label->text(), QStringLiteral("first"));
    bar.ShowMessage(QStringLiteral("second"));
    QVERIFY(label->text().startsWith(QStringLiteral("second")));
    QVERIFY(label->text().contains(QLatin1Char('1')));
    QCOMPARE(bar.Message(), QStringLiteral("second"));
}

void tst_MessageBar::IsHiddenUntilThereIsAMessage()
{
    MessageBar bar;
    QVERIFY(bar.isHidden());
    bar.ShowMessage(QStringLiteral("text"));
    QVERIFY(!bar.isHidden());
    bar.findChild<QPushButton*>()->click();
    QVERIFY(bar.isHidden());
    QVERIFY(bar.Message().isEmpty());
}

void tst_MessageBar::ALongPathDoesNotWidenTheWindow()
{
    MessageBar bar;
    bar.ShowMessage(QString(3000, QLatin1Char('x')));
    QVERIFY(bar.minimumSizeHint().width() < 400);
}

static const TestRegistration<tst_MessageBar> MessageBarRegistration;

#include "tst_MessageBar.moc"
