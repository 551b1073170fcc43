// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"

#include <QRandomGenerator>
#include <QtTest>

/// Long random sessions of drawing, with every kind of change between paints, compared paint by paint with
/// the model.
class tst_OverlaySequences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void GrowingStrokesMatchTheModel_data();
    void GrowingStrokesMatchTheModel();
    void RandomSessionsMatchTheModel_data();
    void RandomSessionsMatchTheModel();

private:
    int Below(int bound) { return int(mRandom.bounded(bound)); }
    bool OneIn(int chance) { return Below(chance) == 0; }
    QPointF Place() { return QPointF(mRandom.generateDouble() - 0.5, mRandom.generateDouble() - 0.5) * 1.1; }
    QColor Color();
    DrawData Drawing();
    FrameData* NewFrame(int drawings);
    QList<const FrameData*> GhostList();
    void Extend(FrameData* frame);
    void ChangeSettings();
    void ChangeOne(ViewerPair& pair);
    void ChangeView(ViewerPair& pair);

    QRandomGenerator mRandom;
    std::vector<std::unique_ptr<FrameData>> mFrames;
    FrameData* mCurrent[2] = {nullptr, nullptr};
};

void tst_OverlaySequences::init()
{
    Settings::RestoreDefaults();
    mFrames.clear();
    mCurrent[0] = mCurrent[1] = nullptr;
}

QColor tst_OverlaySequences::Color()
{
    return QColor(Below(256), Below(256), Below(256), OneIn(2) ? 255 : Below(256));
}

DrawData tst_OverlaySequences::Drawing()
{
    static constexpr DrawType Types[] = {DrawPencil, DrawPencil, DrawEraser, DrawText,     DrawLine,
                                         DrawOval,   DrawArrow,  DrawNone,   DrawRectangle};
    DrawData drawing;
    drawing.type = Types[Below(9)];
    drawing.color = Color();
    drawing.width = float(mRandom.generateDouble() * 0.04 + 0.001);
    const int points = drawing.type == DrawPencil || drawing.type == DrawEraser ? Below(7) : Below(4);
    for (int point = 0; point < points; ++point)
        drawing.points << Place();
    if (drawing.type == DrawText && !OneIn(3))
        drawing.text = QStringLiteral("Take %1\nagain").arg(Below(100));
    return drawing;
}

FrameData* tst_OverlaySequences::NewFrame(int drawings)
{
    mFrames.push_back(std::make_unique<FrameData>());
    FrameData* const frame = mFrames.back().get();
    for (int entry = 0; entry < drawings; ++entry)
        frame->drawData << Drawing();
    frame->lastIndex = drawings - 1;
    frame->firstIndex = drawings > 0 && OneIn(3) ? Below(drawings) : 0;
    return frame;
}

QList<const FrameData*> tst_OverlaySequences::GhostList()
{
    QList<const FrameData*> ghosts;
    for (int count = Below(5); count > 0; --count)
        ghosts << NewFrame(Below(4));
    return ghosts;
}

/// What a host does between two paints of a stroke.
void tst_OverlaySequences::Extend(FrameData* frame)
{
    if (frame->drawData.isEmpty() || frame->lastIndex < 0 || OneIn(5))
    {
        while (frame->drawData.size() > frame->lastIndex + 1)
            frame->drawData.removeLast();
        for (int added = OneIn(6) ? 3 : 1; added > 0; --added)
            frame->drawData << Drawing();
        frame->lastIndex = frame->drawData.size() - 1;
        return;
    }
    DrawData& drawing = frame->drawData[frame->lastIndex];
    if (drawing.type == DrawPencil || drawing.type == DrawEraser)
    {
        for (int added = Below(4); added > 0; --added)
            drawing.points << Place();
    }
    else if (drawing.type == DrawText && OneIn(2))
    {
        drawing.text += QLatin1Char('x');
    }
    else if (drawing.points.size() > 1)
    {
        drawing.points[1] = Place();
    }
    else
    {
        drawing.points << Place();
    }
}

void tst_OverlaySequences::ChangeSettings()
{
    Settings::annotationGhostAccurate = OneIn(2);
    Settings::annotationGhostAlphaMin = Below(256);
    Settings::annotationGhostAlphaMax = Below(256);
    Settings::annotationGhostPreviousNumFrames = Below(6);
    Settings::annotationGhostNextNumFrames = Below(6) - 1;
    Settings::onlyDisplayAnnotations = OneIn(4);
    Settings::textToolActive = OneIn(2);
    Settings::drawEnabled = OneIn(2);
    Settings::annotationTool = AnnotationToolType(Below(7));
    Settings::drawWidth = float(mRandom.generateDouble() * 0.2);
}

void tst_OverlaySequences::ChangeView(ViewerPair& pair)
{
    switch (Below(8))
    {
    case 0:
        pair.Resize(QSize(101 + Below(120), 101 + Below(100)));
        break;
    case 1:
        pair.SetLayout(ViewerLayout(Below(3)));
        break;
    case 2:
        pair.SetSingle(Below(2));
        break;
    case 3:
        pair.SetActive(Below(2));
        break;
    case 4:
        pair.SetVisible(!OneIn(3));
        break;
    case 5:
        pair.SetStore(!OneIn(4));
        break;
    case 6:
        pair.SetImage(Below(3) - 1,
                      OneIn(6) ? QImage()
                               : NoisePicture(QSize(1 + Below(90), 1 + Below(90)), mRandom.generate()));
        break;
    default:
        pair.MoveCursor(QPoint(Below(240) - 20, Below(200) - 20), OneIn(3));
        break;
    }
}

void tst_OverlaySequences::ChangeOne(ViewerPair& pair)
{
    if (OneIn(4))
        ChangeView(pair);
    if (OneIn(6))
        ChangeSettings();
    const int viewer = Below(2);
    if (OneIn(7))
    {
        mCurrent[viewer] = OneIn(5) ? nullptr : NewFrame(Below(5));
        pair.SetOverlay(viewer, mCurrent[viewer], GhostList(), GhostList());
    }
    // Undo hides the newest entry. A host that forgets the full paint after it must not harm the viewer.
    if (mCurrent[viewer] && mCurrent[viewer]->lastIndex >= 0 && OneIn(8))
        --mCurrent[viewer]->lastIndex;
    if (FrameData* const frame = mCurrent[pair.model.active])
    {
        // No entry goes away that a paint has still to finish.
        const bool whole = pair.model.lastDraw[pair.model.active] <= frame->lastIndex;
        if (whole && !OneIn(5))
            Extend(frame);
    }
}

void tst_OverlaySequences::GrowingStrokesMatchTheModel_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("active");
    QTest::addColumn<bool>("accurate");
    for (const int type : {0, 1, 2, 3, 4, 5, 6, 7})
    {
        for (const int layout : {0, 1, 2})
        {
            for (const int active : {0, 1})
            {
                for (const bool accurate : {false, true})
                {
                    QTest::addRow("type %d, layout %d, viewer %d, %s", type, layout, active,
                                  accurate ? "accurate" : "fast")
                        << type << layout << active << accurate;
                }
            }
        }
    }
}

void tst_OverlaySequences::GrowingStrokesMatchTheModel()
{
    QFETCH(int, type);
    QFETCH(int, layout);
    QFETCH(int, active);
    QFETCH(bool, accurate);
    mRandom.seed(quint32(type * 100 + layout * 10 + active));
    Settings::annotationGhostAccurate = accurate;
    ViewerPair pair(QSize(233, 171), QPoint(7, 11));
    pair.SetImage(0, NoisePicture(QSize(61, 40), 1));
    pair.SetImage(1, NoisePicture(QSize(37, 44), 2));
    pair.SetLayout(ViewerLayout(layout));
    pair.SetSingle(active);
    pair.SetActive(active);
    pair.SetStore(true);
    FrameData other = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, -0.2}, {0.3, 0.3}}, 0.05f, Qt::yellow),
                                 MakeDrawing(DrawOval, {{-0.3, -0.3}, {0.3, 0.3}})});
    FrameData frame = other;
    pair.SetOverlay(1 - active, &other, {NewFrame(2)}, {});
    pair.SetOverlay(active, &frame, {NewFrame(3), NewFrame(2)}, {NewFrame(2)});
    QByteArray text = pair.Paint();
    QVERIFY2(text.isEmpty(), text);

    for (int drawing = 0; drawing < 3; ++drawing)
    {
        frame.drawData << MakeDrawing(DrawType(type), {Place()}, 0.03f, Color());
        frame.drawData.last().text = QStringLiteral("Note");
        ++frame.lastIndex;
        for (int move = 0; move < 4; ++move)
        {
            pair.MoveCursor(QPoint(Below(233), Below(171)));
            pair.SetAnnotationsOnly();
            text = pair.Paint();
            QVERIFY2(text.isEmpty(), text);
            if (type == DrawPencil || type == DrawEraser || move == 0)
                frame.drawData.last().points << Place();
            else
                frame.drawData.last().points[1] = Place();
        }
    }
    text = pair.Paint();
    QVERIFY2(text.isEmpty(), text);
}

void tst_OverlaySequences::RandomSessionsMatchTheModel_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 60; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_OverlaySequences::RandomSessionsMatchTheModel()
{
    QFETCH(quint32, seed);
    mRandom.seed(seed);
    ViewerPair pair(QSize(101 + Below(120), 101 + Below(100)), QPoint(Below(30) - 15, Below(30) - 15));
    pair.SetImage(0, NoisePicture(QSize(1 + Below(90), 1 + Below(90)), seed));
    pair.SetImage(1, NoisePicture(QSize(1 + Below(90), 1 + Below(90)), seed + 1));
    pair.SetStore(true);
    pair.SetLayout(ViewerLayout(Below(3)));
    pair.MoveCursor(QPoint(20, 30));
    for (int paint = 0; paint < 60; ++paint)
    {
        ChangeOne(pair);
        if (!OneIn(8))
            pair.SetAnnotationsOnly();
        const QByteArray text = pair.Paint();
        QVERIFY2(text.isEmpty(), QByteArray("paint " + QByteArray::number(paint) + ": " + text));
    }
}

static const TestRegistration<tst_OverlaySequences> OverlaySequencesRegistration;

#include "tst_OverlaySequences.moc"
