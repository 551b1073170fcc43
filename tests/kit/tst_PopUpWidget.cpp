// SPDX-License-Identifier: MIT
#include "kit/PopUpWidget.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"

#include <QApplication>
#include <QVBoxLayout>
#include <QtTest>

class tst_PopUpWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void IsAPopUpWithoutFocus();
    void WidgetsStandInAColumnInTheirOrder();
    void LayoutIsReplacedAndWidgetsStay();
    void WidgetsBecomeChildren();
    void GoneWidgetsAreForgotten();
    void WithoutWidgetsItIsItsMargins();
    void AClickElsewhereClosesIt();
};

namespace
{

QWidget* Block(int width, int height)
{
    auto* block = new QWidget;
    block->setFixedSize(width, height);
    return block;
}

} // namespace

void tst_PopUpWidget::IsAPopUpWithoutFocus()
{
    QWidget parent;
    auto* popUp = new PopUpWidget(&parent);
    QCOMPARE(popUp->parentWidget(), &parent);
    QCOMPARE(popUp->windowType(), Qt::Popup);
    QCOMPARE(popUp->focusPolicy(), Qt::NoFocus);
    QVERIFY(!popUp->isVisible());
    QVERIFY(popUp->layout() == nullptr);
}

void tst_PopUpWidget::WidgetsStandInAColumnInTheirOrder()
{
    PopUpWidget popUp;
    QList<QWidget*> blocks = {Block(14, 14), Block(30, 10), Block(20, 20)};
    for (QWidget* block : blocks)
        popUp.AddWidget(block);
    popUp.UpdateLayout();
    auto* column = qobject_cast<QVBoxLayout*>(popUp.layout());
    QVERIFY(column);
    QCOMPARE(column->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(popUp.size(), QSize(30 + 12, 14 + 10 + 20 + 12 + 2 * column->spacing()));
    popUp.show();
    int top = 6;
    for (int index = 0; index < blocks.size(); ++index)
    {
        QCOMPARE(column->itemAt(index)->widget(), blocks[index]);
        QCOMPARE(blocks[index]->y(), top);
        top += blocks[index]->height() + column->spacing();
    }
}

void tst_PopUpWidget::LayoutIsReplacedAndWidgetsStay()
{
    PopUpWidget popUp;
    QWidget* const first = Block(14, 14);
    popUp.AddWidget(first);
    popUp.UpdateLayout();
    const QPointer<QLayout> former = popUp.layout();
    QWidget* const second = Block(14, 14);
    popUp.AddWidget(second);
    popUp.UpdateLayout();
    QVERIFY(former.isNull());
    QCOMPARE(popUp.layout()->count(), 2);
    QCOMPARE(popUp.layout()->itemAt(0)->widget(), first);
    QCOMPARE(popUp.layout()->itemAt(1)->widget(), second);
    const QSize size = popUp.size();
    popUp.UpdateLayout();
    QCOMPARE(popUp.layout()->count(), 2);
    QCOMPARE(popUp.size(), size);
}

void tst_PopUpWidget::WidgetsBecomeChildren()
{
    QPointer<QWidget> block = Block(14, 14);
    {
        PopUpWidget popUp;
        popUp.AddWidget(block);
        QCOMPARE(block->parentWidget(), &popUp);
        QVERIFY(!block->isWindow());
    }
    QVERIFY(block.isNull());
}

void tst_PopUpWidget::GoneWidgetsAreForgotten()
{
    PopUpWidget popUp;
    QWidget other;
    QWidget* const dead = Block(14, 14);
    QWidget* const taken = Block(14, 14);
    QWidget* const kept = Block(14, 14);
    popUp.AddWidget(dead);
    popUp.AddWidget(taken);
    popUp.AddWidget(nullptr);
    popUp.AddWidget(kept);
    delete dead;
    taken->setParent(&other);
    popUp.UpdateLayout();
    QCOMPARE(popUp.layout()->count(), 1);
    QCOMPARE(popUp.layout()->itemAt(0)->widget(), kept);
    QCOMPARE(taken->parentWidget(), &other);
}

void tst_PopUpWidget::WithoutWidgetsItIsItsMargins()
{
    PopUpWidget popUp;
    popUp.UpdateLayout();
    QCOMPARE(popUp.size(), QSize(12, 12));
}

void tst_PopUpWidget::AClickElsewhereClosesIt()
{
    QWidget parent;
    parent.setGeometry(100, 100, 200, 200);
    parent.show();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));
    auto* popUp = new PopUpWidget(&parent);
    popUp->AddWidget(Block(14, 14));
    popUp->UpdateLayout();
    popUp->move(150, 150);
    popUp->show();
    QCOMPARE(QApplication::activePopupWidget(), popUp);
    InputEvents::Press(popUp, QPoint(3, 3));
    InputEvents::Release(popUp, QPoint(3, 3));
    QVERIFY(popUp->isVisible());
    InputEvents::Press(popUp, QPoint(-20, -20));
    QVERIFY(!popUp->isVisible());
    InputEvents::Release(&parent, QPoint(10, 10));
}

static const TestRegistration<tst_PopUpWidget> PopUpWidgetRegistration;

#include "tst_PopUpWidget.moc"
