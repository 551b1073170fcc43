// SPDX-License-Identifier: MIT
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "toolbars/BarProbe.h"
#include "toolbars/VolumeSlider.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

class tst_VolumeSlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mHost.reset(); }

    void StartsFullAtHundred();
    void SetValueClampsAndReportsWhatWasAsked_data();
    void SetValueClampsAndReportsWhatWasAsked();
    void SetMaximumBringsTheValueDown_data();
    void SetMaximumBringsTheValueDown();
    void PressPicksTheValue_data();
    void PressPicksTheValue();
    void DragReportsUnclampedValuesOnChangeAlone();
    void OtherButtonsAndPlainMovesDoNothing();
    void WedgeIsFilledUpToTheValue_data();
    void WedgeIsFilledUpToTheValue();

private:
    VolumeSlider* mSlider = nullptr;
    std::unique_ptr<BarHost> mHost;
};

namespace
{

const QRgb Grey = qRgb(160, 160, 164);

double DistanceToSegment(QPointF p, QPointF a, QPointF b)
{
    const QPointF along = b - a;
    const double t =
        std::clamp(QPointF::dotProduct(p - a, along) / QPointF::dotProduct(along, along), 0.0, 1.0);
    const QPointF off = p - (a + t * along);
    return std::hypot(off.x(), off.y());
}

QRgb Mixed(QRgb under, QRgb over, double share)
{
    const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    return qRgb(mix(qRed(under), qRed(over)), mix(qGreen(under), qGreen(over)),
                mix(qBlue(under), qBlue(over)));
}

/// The wedge at @p value of @p maximum on @p window: each pixel counted by 256 points of its own.
QImage Wedge(int value, int maximum, QRgb window, const QFont& base)
{
    const QPointF left(0, 23);
    const QPointF low(81, 23);
    const QPointF high(81, 0);
    const int level = static_cast<int>(82.0 * value / maximum);
    QImage image(82, 24, QImage::Format_RGB32);
    for (int y = 0; y < 24; ++y)
    {
        for (int x = 0; x < 82; ++x)
        {
            int filled = 0;
            int lined = 0;
            for (int point = 0; point < 256; ++point)
            {
                const QPointF p(x + (point % 16 + 0.5) / 16, y + (point / 16 + 0.5) / 16);
                const bool isInside = p.x() < 81 && p.y() < 23 && p.y() > 23 - p.x() * 23 / 81;
                filled += isInside && p.x() < level ? 1 : 0;
                const double distance =
                    std::min({DistanceToSegment(p, left, low), DistanceToSegment(p, low, high),
                              DistanceToSegment(p, high, left)});
                lined += distance <= 0.5 ? 1 : 0;
            }
            image.setPixel(x, y, Mixed(Mixed(window, Grey, filled / 256.0), Grey, lined / 256.0));
        }
    }
    QFont font = base;
    font.setFixedPitch(true);
    font.setPointSize(7);
    const QString text = QString::number(value) + QLatin1Char('%');
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(QColor(Grey));
    painter.setClipRect(5, 2, 26, 10);
    const QFontMetricsF metrics(font, &image);
    painter.drawText(QPointF(31 - metrics.horizontalAdvance(text), 2 + metrics.ascent()), text);
    return image;
}

} // namespace

void tst_VolumeSlider::init()
{
    mSlider = new VolumeSlider;
    mHost = std::make_unique<BarHost>(mSlider, QRect(100, 40, 82, 24));
}

void tst_VolumeSlider::StartsFullAtHundred()
{
    QCOMPARE(mSlider->GetValue(), 100);
    QCOMPARE(mSlider->minimumSize(), QSize(82, 24));
    QCOMPARE(mSlider->maximumSize(), QSize(82, 24));
    mSlider->SetValue(101);
    QCOMPARE(mSlider->GetValue(), 100);
    mSlider->SetValue(-1);
    QCOMPARE(mSlider->GetValue(), 0);
}

void tst_VolumeSlider::SetValueClampsAndReportsWhatWasAsked_data()
{
    QTest::addColumn<int>("former");
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("isReported");
    QTest::newRow("within") << 50 << 75 << 75 << true;
    QTest::newRow("same") << 50 << 50 << 50 << false;
    QTest::newRow("above") << 50 << 400 << 150 << true;
    QTest::newRow("above at the maximum") << 150 << 400 << 150 << false;
    QTest::newRow("below") << 50 << -7 << 0 << true;
    QTest::newRow("below at the minimum") << 0 << -7 << 0 << false;
    QTest::newRow("largest") << 50 << std::numeric_limits<int>::max() << 150 << true;
    QTest::newRow("smallest") << 50 << std::numeric_limits<int>::min() << 0 << true;
}

void tst_VolumeSlider::SetValueClampsAndReportsWhatWasAsked()
{
    QFETCH(int, former);
    QFETCH(int, asked);
    QFETCH(bool, isReported);
    mSlider->SetMaximum(150);
    mSlider->SetValue(former);
    SignalLog log(mSlider);
    mSlider->SetValue(asked);
    QTEST(mSlider->GetValue(), "value");
    QCOMPARE(log.Take(),
             isReported ? QStringList{QStringLiteral("VolumeChanged(%1)").arg(asked)} : QStringList());
}

void tst_VolumeSlider::SetMaximumBringsTheValueDown_data()
{
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");
    QTest::addColumn<QStringList>("reported");
    QTest::newRow("higher") << 150 << 100 << QStringList();
    QTest::newRow("same") << 100 << 100 << QStringList();
    QTest::newRow("lower") << 40 << 40 << QStringList{"VolumeChanged(40)"};
    QTest::newRow("nothing") << 0 << 1 << QStringList{"VolumeChanged(1)"};
    QTest::newRow("negative") << -30 << 1 << QStringList{"VolumeChanged(1)"};
}

void tst_VolumeSlider::SetMaximumBringsTheValueDown()
{
    QFETCH(int, maximum);
    SignalLog log(mSlider);
    mSlider->SetMaximum(maximum);
    QTEST(mSlider->GetValue(), "value");
    QTEST(log.Take(), "reported");
    mSlider->SetValue(1000);
    QCOMPARE(mSlider->GetValue(), std::max(maximum, 1));
}

void tst_VolumeSlider::PressPicksTheValue_data()
{
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("value");
    QTest::newRow("middle") << 150 << 41 << 75;
    QTest::newRow("left") << 150 << 0 << 0;
    QTest::newRow("truncated") << 150 << 1 << 1;
    QTest::newRow("truncated again") << 150 << 40 << 73;
    QTest::newRow("last pixel") << 150 << 81 << 148;
    QTest::newRow("other maximum") << 99 << 41 << 49;
}

void tst_VolumeSlider::PressPicksTheValue()
{
    QFETCH(int, maximum);
    QFETCH(int, x);
    QFETCH(int, value);
    mSlider->SetMaximum(maximum);
    mSlider->SetValue(90);
    SignalLog log(mSlider);
    InputEvents::Press(mSlider, QPoint(x, 10));
    QCOMPARE(mSlider->GetValue(), value);
    QCOMPARE(log.Take(), QStringList{QStringLiteral("VolumeChanged(%1)").arg(value)});
}

void tst_VolumeSlider::DragReportsUnclampedValuesOnChangeAlone()
{
    mSlider->SetMaximum(150);
    SignalLog log(mSlider);
    InputEvents::Press(mSlider, QPoint(41, 10));
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(75)"});
    InputEvents::Move(mSlider, QPoint(41, 20), Qt::LeftButton);
    QVERIFY(log.Take().isEmpty());
    InputEvents::Move(mSlider, QPoint(164, 10), Qt::LeftButton);
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(300)"});
    QCOMPARE(mSlider->GetValue(), 150);
    InputEvents::Move(mSlider, QPoint(180, 10), Qt::LeftButton);
    QVERIFY(log.Take().isEmpty());
    InputEvents::Move(mSlider, QPoint(-41, 10), Qt::LeftButton);
    QCOMPARE(log.Take(), QStringList{"VolumeChanged(-75)"});
    QCOMPARE(mSlider->GetValue(), 0);
    InputEvents::Release(mSlider, QPoint(-41, 10));
    QVERIFY(log.Take().isEmpty());
}

void tst_VolumeSlider::OtherButtonsAndPlainMovesDoNothing()
{
    mSlider->setMouseTracking(true);
    SignalLog log(mSlider);
    InputEvents::Move(mSlider, QPoint(20, 10));
    InputEvents::Press(mSlider, QPoint(20, 10), Qt::RightButton);
    InputEvents::Move(mSlider, QPoint(30, 10), Qt::RightButton);
    InputEvents::Release(mSlider, QPoint(30, 10), Qt::RightButton);
    InputEvents::Press(mSlider, QPoint(20, 10), Qt::MiddleButton);
    InputEvents::Release(mSlider, QPoint(20, 10), Qt::MiddleButton);
    // A second button beside the left one ends the drag.
    InputEvents::Move(mSlider, QPoint(30, 10), Qt::LeftButton | Qt::RightButton);
    QCOMPARE(mSlider->GetValue(), 100);
    QVERIFY(log.Take().isEmpty());
    InputEvents::Release(mSlider, QPoint(30, 10));
}

void tst_VolumeSlider::WedgeIsFilledUpToTheValue_data()
{
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");
    for (const int value : {0, 1, 40, 75, 100, 149, 150})
        QTest::addRow("%d of 150", value) << 150 << value;
    QTest::newRow("100 of 100") << 100 << 100;
}

void tst_VolumeSlider::WedgeIsFilledUpToTheValue()
{
    QFETCH(int, maximum);
    QFETCH(int, value);
    QPalette colors = mSlider->palette();
    colors.setColor(QPalette::Active, QPalette::Window, QColor(50, 53, 60));
    colors.setColor(QPalette::Inactive, QPalette::Window, QColor(50, 53, 60));
    colors.setColor(QPalette::Disabled, QPalette::Window, QColor(60, 50, 70));
    mSlider->setPalette(colors);
    mSlider->SetMaximum(maximum);
    mSlider->SetValue(value);
    QByteArray difference = PictureDifference(mSlider->grab().toImage().convertToFormat(QImage::Format_RGB32),
                                              Wedge(value, maximum, qRgb(50, 53, 60), mSlider->font()), 26);
    QVERIFY2(difference.isEmpty(), difference);
    mSlider->setEnabled(false);
    difference = PictureDifference(mSlider->grab().toImage().convertToFormat(QImage::Format_RGB32),
                                   Wedge(value, maximum, qRgb(60, 50, 70), mSlider->font()), 26);
    QVERIFY2(difference.isEmpty(), difference);
}

static const TestRegistration<tst_VolumeSlider> VolumeSliderRegistration;

#include "tst_VolumeSlider.moc"
