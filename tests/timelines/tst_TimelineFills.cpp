// SPDX-License-Identifier: MIT
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "timelines/TimelineFills.h"

#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QtTest>

#include <functional>

/// The fills of many things at once, on every kind of painter, against one fill after the other.
class tst_TimelineFills : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void StretchesLieOverEachOther_data() { AddPainters(); }
    void StretchesLieOverEachOther();
    void TranslucentSpansAddUp_data() { AddPainters(); }
    void TranslucentSpansAddUp();
    void FlagsAreDrawnOneByOne_data() { AddPainters(); }
    void FlagsAreDrawnOneByOne();

private:
    using Draw = std::function<void(QPainter*)>;

    static void AddPainters();
    /// Where the pictures of two ways to draw differ, on the painter of the current row.
    static QByteArray Difference(const Draw& one, const Draw& other);
};

namespace
{

const QRect FillArea(0, 0, 120, 40);
constexpr int Rounds = 25;

struct FillPainterKind
{
    const char* name;
    QImage::Format format = QImage::Format_RGB32;
    QTransform transform;
    QRect clip;
    QPainter::CompositionMode mode = QPainter::CompositionMode_SourceOver;
    double opacity = 1.0;
};

const QList<FillPainterKind>& FillPainterKinds()
{
    static const QList<FillPainterKind> kinds{
        {"window", QImage::Format_RGB32, {}, {}},
        {"premultiplied", QImage::Format_ARGB32_Premultiplied, {}, {}},
        {"straight alpha", QImage::Format_ARGB32, {}, {}},
        {"16 bits a pixel", QImage::Format_RGB16, {}, {}},
        {"10 bits a channel", QImage::Format_RGB30, {}, {}},
        {"16 bits a channel", QImage::Format_RGBA64_Premultiplied, {}, {}},
        {"moved", QImage::Format_RGB32, QTransform::fromTranslate(7, 5), {}},
        {"moved by a fraction", QImage::Format_RGB32, QTransform::fromTranslate(3.5, 0.25), {}},
        {"moved down by a fraction", QImage::Format_RGB32, QTransform::fromTranslate(3, 0.5), {}},
        {"doubled", QImage::Format_RGB32, QTransform::fromScale(2, 2), {}},
        {"enlarged by half", QImage::Format_RGB32, QTransform::fromScale(1.5, 1.5), {}},
        {"enlarged by half in width", QImage::Format_RGB32, QTransform::fromScale(1.5, 1), {}},
        {"turned", QImage::Format_RGB32, QTransform(0, 1, -1, 0, 60, 0), {}},
        {"sheared", QImage::Format_RGB32, QTransform(1, 0, 0.3, 1, 0, 0), {}},
        {"clipped", QImage::Format_RGB32, {}, QRect(20, 3, 50, 20)},
        {"adding", QImage::Format_RGB32, {}, {}, QPainter::CompositionMode_Plus},
        {"half transparent", QImage::Format_RGB32, {}, {}, QPainter::CompositionMode_SourceOver, 0.5},
    };
    return kinds;
}

QColor RandomFillColor(QRandomGenerator& random, int alpha)
{
    return QColor(random.bounded(256), random.bounded(256), random.bounded(256), alpha);
}

} // namespace

void tst_TimelineFills::AddPainters()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("antialiased");
    for (int kind = 0; kind < FillPainterKinds().size(); ++kind)
        for (const bool antialiased : {true, false})
            QTest::addRow("%s, %s", FillPainterKinds()[kind].name, antialiased ? "smooth" : "plain")
                << kind << antialiased;
}

QByteArray tst_TimelineFills::Difference(const Draw& one, const Draw& other)
{
    QFETCH(int, kind);
    QFETCH(bool, antialiased);
    const FillPainterKind& painterKind = FillPainterKinds()[kind];
    QImage pictures[2];
    for (const bool second : {false, true})
    {
        QImage& picture = pictures[second];
        picture = QImage(260, 180, painterKind.format);
        picture.fill(QColor(12, 34, 56));
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing, antialiased);
        painter.setTransform(painterKind.transform);
        if (!painterKind.clip.isNull())
            painter.setClipRect(painterKind.clip);
        painter.setCompositionMode(painterKind.mode);
        painter.setOpacity(painterKind.opacity);
        (second ? other : one)(&painter);
    }
    return PictureDifference(pictures[0], pictures[1]);
}

void tst_TimelineFills::StretchesLieOverEachOther()
{
    QRandomGenerator random(11);
    for (int round = 0; round < Rounds; ++round)
    {
        const bool reachesOut = random.bounded(4) == 0;
        std::vector<int> lefts;
        for (int count = random.bounded(1, 40); count > 0; --count)
            lefts.push_back(reachesOut ? random.bounded(-20, 140) : random.bounded(0, 121));
        const int right = random.bounded(0, 121);
        const QColor colors[2] = {RandomFillColor(random, 255),
                                  RandomFillColor(random, round % 3 == 0 ? 90 : 255)};
        const QByteArray difference = Difference(
            [&](QPainter* painter)
            { TimelineFills::FillStretches(painter, FillArea, lefts, right, 9, 6, colors[0], colors[1]); },
            [&](QPainter* painter)
            {
                for (size_t i = 0; i < lefts.size(); ++i)
                    painter->fillRect(QRect(lefts[i], 9, right - lefts[i], 6), colors[i % 2]);
            });
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_TimelineFills::TranslucentSpansAddUp()
{
    QRandomGenerator random(12);
    for (int round = 0; round < Rounds; ++round)
    {
        const bool reachesOut = random.bounded(4) == 0;
        std::vector<std::pair<int, int>> spans;
        for (int count = random.bounded(1, 80); count > 0; --count)
        {
            const int left = reachesOut ? random.bounded(-20, 140) : random.bounded(0, 121);
            const int right = reachesOut ? random.bounded(-20, 140) : random.bounded(0, 121);
            spans.emplace_back(left, right);
        }
        const QColor color = RandomFillColor(random, QList<int>{20, 149, 150, 200, 255}[round % 5]);
        const QByteArray difference = Difference(
            [&](QPainter* painter) { TimelineFills::FillOverlapping(painter, FillArea, spans, 9, 2, color); },
            [&](QPainter* painter)
            {
                for (const auto& [left, right] : spans)
                    painter->fillRect(QRect(left, 9, right - left, 2), color);
            });
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_TimelineFills::FlagsAreDrawnOneByOne()
{
    QRandomGenerator random(13);
    for (int round = 0; round < Rounds; ++round)
    {
        std::vector<std::pair<int, bool>> flags;
        for (int count = random.bounded(1, 60); count > 0; --count)
            flags.emplace_back(random.bounded(-10, 130), random.bounded(2) == 0);
        const QColor colors[2] = {RandomFillColor(random, 200),
                                  RandomFillColor(random, round % 3 == 0 ? 255 : 130)};
        const int height = random.bounded(1, 24);
        const QByteArray difference = Difference(
            [&](QPainter* painter)
            {
                TimelineFills::FlagPainter flagPainter(painter, FillArea, 12, height, colors[0], colors[1]);
                for (const auto& [x, annotated] : flags)
                    flagPainter.Draw(x, annotated);
            },
            [&](QPainter* painter)
            {
                for (const auto& [x, annotated] : flags)
                {
                    painter->fillRect(QRect(x, 12, 1, height), colors[annotated]);
                    QPainterPath triangle;
                    triangle.addPolygon(
                        QPolygonF({QPointF(x, 12), QPointF(x - 3, 9), QPointF(x + 4, 9), QPointF(x, 12)}));
                    painter->fillPath(triangle, colors[annotated]);
                }
            });
        QVERIFY2(difference.isEmpty(), difference);
    }
}

static const TestRegistration<tst_TimelineFills> TimelineFillsRegistration;

#include "tst_TimelineFills.moc"
