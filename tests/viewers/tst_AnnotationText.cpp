// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QtTest>

#include <cmath>

/// Texts, by the bounds of what is painted.
class tst_AnnotationText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void TextShowsAtItsFirstPoint();
    void TextHasItsSizeFromTheWidth();
    void EmptyTextHasABoxOfABlank();
    void TheTextBoxStandsOutUnevenly();
    void TheTextBoxIsForTheLastEntryWhileTyping_data();
    void TheTextBoxIsForTheLastEntryWhileTyping();

private:
    QImage Show(const FrameData& frame);

    std::unique_ptr<ViewerPair> mPair;
};

void tst_AnnotationText::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    // The picture fills the viewer: one unit is 400 pixels, the origin (200, 150).
    mPair = std::make_unique<ViewerPair>(QSize(400, 300));
    QImage black(40, 30, QImage::Format_RGB32);
    black.fill(Qt::black);
    mPair->SetImage(-1, black);
    mPair->SetStore(true);
    mPair->Paint();
}

/// A full paint of @p frame, compared with the model.
QImage tst_AnnotationText::Show(const FrameData& frame)
{
    mPair->SetOverlay(0, &frame);
    const QByteArray text = mPair->Paint();
    if (!text.isEmpty())
        QTest::qFail(text, __FILE__, __LINE__);
    const QImage shown = mPair->PaintViewer();
    mPair->SetOverlay(0, nullptr);
    return shown;
}

void tst_AnnotationText::TextShowsAtItsFirstPoint()
{
    DrawData text = MakeDrawing(DrawText, {{-0.25, -0.25}, {0.4, 0.3}}, 0.02f, Qt::white);
    text.text = QStringLiteral("HHH");
    const QRect bounds = PaintedBounds(Show(MakeFrame({text})));
    QFont font;
    font.setPointSizeF(double(0.02f * 400.0f * 4.0f));
    const QFontMetricsF metrics(font);
    QVERIFY(bounds.left() >= 100 && bounds.left() <= 100 + metrics.horizontalAdvance(QLatin1Char('H')) / 2);
    QVERIFY(std::abs(bounds.width() - metrics.horizontalAdvance(text.text)) <
            metrics.horizontalAdvance(QLatin1Char('H')) / 2);
    QVERIFY(bounds.top() >= 50 && bounds.bottom() <= 50 + metrics.height());
}

void tst_AnnotationText::TextHasItsSizeFromTheWidth()
{
    DrawData text = MakeDrawing(DrawText, {{-0.4, -0.3}, {0, 0}}, 0.01f, Qt::white);
    text.text = QStringLiteral("H");
    const int small = PaintedBounds(Show(MakeFrame({text}))).height();
    text.width = 0.03f;
    const int large = PaintedBounds(Show(MakeFrame({text}))).height();
    QVERIFY2(std::abs(large - 3 * small) <= 3, qPrintable(QStringLiteral("%1 and %2").arg(small).arg(large)));
}

void tst_AnnotationText::EmptyTextHasABoxOfABlank()
{
    Settings::textToolActive = true;
    const DrawData blank = MakeDrawing(DrawText, {{-0.25, -0.25}, {0, 0}}, 0.02f, Qt::white);
    const QRect bounds = PaintedBounds(Show(MakeFrame({blank})));
    QFont font;
    font.setPointSizeF(double(0.02f * 400.0f * 4.0f));
    const QFontMetricsF metrics(font);
    // The box's line is 2 wide, one pixel each side of it.
    QVERIFY(std::abs(bounds.width() - (metrics.horizontalAdvance(QLatin1Char(' ')) + 8 + 2)) <= 2);
    QVERIFY(std::abs(bounds.height() - (metrics.height() + 6 + 2)) <= 2);
}

void tst_AnnotationText::TheTextBoxStandsOutUnevenly()
{
    DrawData text = MakeDrawing(DrawText, {{-0.25, -0.25}, {0, 0}}, 0.02f, Qt::white);
    text.text = QStringLiteral("Wide enough");
    QImage canvas(400, 300, QImage::Format_RGB32);
    QRectF inner;
    {
        QPainter painter(&canvas);
        QFont font;
        font.setPointSizeF(double(0.02f * 400.0f * 4.0f));
        painter.setFont(font);
        painter.drawText(QRectF(100, 50, 4096, 4096), Qt::AlignLeft, text.text, &inner);
    }
    Settings::textToolActive = true;
    const QRect bounds = PaintedBounds(Show(MakeFrame({text})));
    // Edges lie at -4, -2, +4 and +4, and the line reaches a pixel further.
    QVERIFY(std::abs(bounds.left() - (inner.left() - 5)) <= 1);
    QVERIFY(std::abs(bounds.top() - (inner.top() - 3)) <= 1);
    QVERIFY(std::abs(bounds.right() + 1 - (inner.right() + 5)) <= 1);
    QVERIFY(std::abs(bounds.bottom() + 1 - (inner.bottom() + 5)) <= 1);
}

void tst_AnnotationText::TheTextBoxIsForTheLastEntryWhileTyping_data()
{
    QTest::addColumn<bool>("typing");
    QTest::addColumn<int>("last");
    QTest::addColumn<bool>("boxed");
    QTest::newRow("typing, last") << true << 0 << true;
    QTest::newRow("not typing, last") << false << 0 << false;
    QTest::newRow("typing, not last") << true << 1 << false;
}

void tst_AnnotationText::TheTextBoxIsForTheLastEntryWhileTyping()
{
    QFETCH(bool, typing);
    QFETCH(int, last);
    QFETCH(bool, boxed);
    DrawData text = MakeDrawing(DrawText, {{-0.25, -0.25}, {0, 0}}, 0.02f, Qt::white);
    FrameData frame = MakeFrame({text, MakeDrawing(DrawNone, {{0, 0}, {0, 0}})});
    frame.lastIndex = last;
    Settings::textToolActive = typing;
    // A blank has nothing to show but its box.
    QCOMPARE(!PaintedBounds(Show(frame)).isNull(), boxed);
}

static const TestRegistration<tst_AnnotationText> AnnotationTextRegistration;

#include "tst_AnnotationText.moc"
