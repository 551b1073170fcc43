// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"

#include <QDir>
#include <QImage>
#include <QtTest>

#include <algorithm>
#include <cstdlib>

namespace
{

const char* const IconNames[] = {
    "add_folder.png",
    "add_folder@2x.png",
    "add_timeline.png",
    "add_timeline@2x.png",
    "annotation_ghost.png",
    "arrow.png",
    "branch_closed.png",
    "branch_closed@2x.png",
    "branch_opened.png",
    "branch_opened@2x.png",
    "clear.png",
    "clearall.png",
    "delete.png",
    "dock_close.png",
    "eraser.png",
    "eyedropper.png",
    "import_file.png",
    "import_file@2x.png",
    "linewidth.png",
    "loop.png",
    "loop_none.png",
    "loop_pingpong.png",
    "move_down.png",
    "move_up.png",
    "mute.png",
    "nexttorvalen.png",
    "oval.png",
    "pause.png",
    "pencil.png",
    "play.png",
    "project_folder.png",
    "project_folder@2x.png",
    "project_folder_selected.png",
    "project_folder_selected@2x.png",
    "project_source.png",
    "project_source@2x.png",
    "project_source_selected.png",
    "project_source_selected@2x.png",
    "project_timeline.png",
    "project_timeline@2x.png",
    "project_timeline_selected.png",
    "project_timeline_selected@2x.png",
    "question.png",
    "rectangle.png",
    "seekend.png",
    "sort_acending.png",
    "sort_decending.png",
    "stepfwd.png",
    "stop.png",
    "text.png",
    "toggle_annotation.png",
    "toggle_annotation@2x.png",
    "toggle_bookmarks.png",
    "toggle_details.png",
    "toggle_project.png",
    "undo.png",
    "viewer_horizontal.png",
    "viewer_single.png",
    "viewer_vertical.png",
    "volume.png",
    "warning.png",
};

struct Cover
{
    int clear = 0;
    int partial = 0;
    int full = 0;
};

/// How many pixels of @p image are uncovered, half covered and covered.
Cover CoverOf(const QImage& image)
{
    Cover cover;
    for (int y = 0; y < image.height(); ++y)
    {
        for (int x = 0; x < image.width(); ++x)
        {
            const int alpha = qAlpha(image.pixel(x, y));
            ++(alpha == 0 ? cover.clear : alpha == 255 ? cover.full : cover.partial);
        }
    }
    return cover;
}

QImage Icon(const QString& name)
{
    return QImage(QStringLiteral(":/icons/") + name);
}

} // namespace

class tst_Icons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TheSetIsThere();
    void EachIconIsAShapeInItsAlpha_data();
    void EachIconIsAShapeInItsAlpha();
    void NoTwoIconsLookAlike();
    void DoubleSizedOnesShowTheSame_data();
    void DoubleSizedOnesShowTheSame();
    void SelectedOnesAreTheSameShapeInAnotherColor_data();
    void SelectedOnesAreTheSameShapeInAnotherColor();
    void DirectedIconsAreNotSymmetrical_data();
    void DirectedIconsAreNotSymmetrical();
};

void tst_Icons::TheSetIsThere()
{
    // One use of the library, as every host has: the icons must not depend on which.
    QVERIFY(ViewerWidget::staticMetaObject.className() != nullptr);
    QStringList expected;
    for (const char* name : IconNames)
        expected << QLatin1String(name);
    expected.sort();
    QCOMPARE(expected.size(), 61);
    QStringList present = QDir(QStringLiteral(":/icons")).entryList(QDir::AllEntries);
    present.sort();
    QCOMPARE(present, expected);
}

void tst_Icons::EachIconIsAShapeInItsAlpha_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : IconNames)
        QTest::newRow(name) << QString(QLatin1String(name));
}

void tst_Icons::EachIconIsAShapeInItsAlpha()
{
    QFETCH(QString, name);
    const QImage image = Icon(name);
    const int side = name.contains(QLatin1String("@2x")) ? 64 : 32;
    QCOMPARE(image.size(), QSize(side, side));
    QVERIFY(image.hasAlphaChannel());
    const Cover cover = CoverOf(image);
    QVERIFY2(cover.clear > side * side / 4, qPrintable(QString::number(cover.clear)));
    QVERIFY2(cover.full > side * side / 40, qPrintable(QString::number(cover.full)));
    // One grey, so that nothing of the shape is lost where it is recoloured; the renderer rounds it.
    const int grey = name.contains(QLatin1String("_selected")) ? 255 : 160;
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() < 255)
                continue;
            QVERIFY2(qMax(qAbs(color.red() - grey),
                          qMax(qAbs(color.green() - grey), qAbs(color.blue() - grey))) <= 2,
                     qPrintable(color.name()));
        }
    }
}

void tst_Icons::NoTwoIconsLookAlike()
{
    for (const char* a : IconNames)
    {
        for (const char* b : IconNames)
            QVERIFY2(a == b || Icon(QLatin1String(a)) != Icon(QLatin1String(b)), a);
    }
}

void tst_Icons::DoubleSizedOnesShowTheSame_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : IconNames)
    {
        if (QLatin1String(name).contains(QLatin1String("@2x")))
            QTest::newRow(name) << QString(QLatin1String(name));
    }
}

void tst_Icons::DoubleSizedOnesShowTheSame()
{
    QFETCH(QString, name);
    const QImage twice = Icon(name);
    const QImage once = Icon(QString(name).remove(QStringLiteral("@2x")));
    for (int y = 0; y < 32; ++y)
    {
        for (int x = 0; x < 32; ++x)
        {
            const int mean =
                (qAlpha(twice.pixel(2 * x, 2 * y)) + qAlpha(twice.pixel(2 * x + 1, 2 * y)) +
                 qAlpha(twice.pixel(2 * x, 2 * y + 1)) + qAlpha(twice.pixel(2 * x + 1, 2 * y + 1))) /
                4;
            QVERIFY2(std::abs(mean - qAlpha(once.pixel(x, y))) < 40,
                     qPrintable(QStringLiteral("at %1, %2").arg(x).arg(y)));
        }
    }
}

void tst_Icons::SelectedOnesAreTheSameShapeInAnotherColor_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"project_folder", "project_source", "project_timeline"})
        QTest::newRow(name) << QString(QLatin1String(name));
}

void tst_Icons::SelectedOnesAreTheSameShapeInAnotherColor()
{
    QFETCH(QString, name);
    for (const char* ending : {".png", "@2x.png"})
    {
        const QImage plain = Icon(name + QLatin1String(ending));
        const QImage selected = Icon(name + QStringLiteral("_selected") + QLatin1String(ending));
        QCOMPARE(selected.convertToFormat(QImage::Format_Alpha8),
                 plain.convertToFormat(QImage::Format_Alpha8));
        QVERIFY(selected != plain);
    }
}

void tst_Icons::DirectedIconsAreNotSymmetrical_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isVertical");
    // Those that the bars and panels mirror to tell two directions apart.
    for (const char* name : {"play", "stepfwd", "nexttorvalen", "seekend", "annotation_ghost", "undo"})
        QTest::newRow(name) << QString(QLatin1String(name)) << false;
    QTest::newRow("move_up") << QStringLiteral("move_up") << true;
}

void tst_Icons::DirectedIconsAreNotSymmetrical()
{
    QFETCH(QString, name);
    QFETCH(bool, isVertical);
    const QImage image = Icon(name + QStringLiteral(".png"));
    const QImage mirrored = image.mirrored(!isVertical, isVertical);
    int different = 0;
    for (int y = 0; y < 32; ++y)
    {
        for (int x = 0; x < 32; ++x)
            different += std::abs(qAlpha(image.pixel(x, y)) - qAlpha(mirrored.pixel(x, y))) > 128 ? 1 : 0;
    }
    QVERIFY2(different > 60, qPrintable(QString::number(different)));
}

static const TestRegistration<tst_Icons> IconsRegistration;

#include "tst_Icons.moc"
