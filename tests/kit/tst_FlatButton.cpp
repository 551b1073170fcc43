// SPDX-License-Identifier: MIT
#include "kit/FlatButton.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"

#include <QApplication>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

/// A parent that counts the mouse events that a button leaves to it, and is easy to tell from a grey window.
class ButtonHost : public QWidget
{
public:
    ButtonHost()
    {
        resize(200, 120);
        QPalette colors = palette();
        colors.setColor(QPalette::Window, QColor(53, 54, 55));
        setPalette(colors);
    }

    int mouseEvents = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++mouseEvents; }
    void mouseReleaseEvent(QMouseEvent*) override { ++mouseEvents; }
};

namespace
{

int Messages = 0;

void CountMessage(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++Messages;
}

/// A picture with three colours and three degrees of cover, none of them symmetrical.
QImage ThreeBands(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y,
                           x < width / 2    ? qRgba(200, 40, 20, 255)
                           : y < height / 3 ? qRgba(10, 220, 90, 128)
                                            : qRgba(0, 0, 0, 0));
    }
    return image;
}

/// @p image as wide and high as it gets within @p box.
QImage Fitted(const QImage& image, QSize box)
{
    return image.scaled(image.size().scaled(box, Qt::KeepAspectRatio), Qt::IgnoreAspectRatio,
                        Qt::SmoothTransformation);
}

/// @p image with each pixel's colour replaced by @p color, its cover kept.
QImage Recolored(const QImage& image, const QColor& color)
{
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y)
    {
        for (int x = 0; x < result.width(); ++x)
            result.setPixel(x, y,
                            qRgba(color.red(), color.green(), color.blue(), qAlpha(result.pixel(x, y))));
    }
    return result.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage Shown(const FlatButton& button)
{
    return button.pixmap(Qt::ReturnByValue).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// What a button of @p size with @p picture in its middle, a border and a plain window behind looks like, but
/// for the rounded corners.
QImage Face(QSize size, const QColor& background, int borderWidth, const QColor& border,
            const QImage& picture)
{
    QImage face(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
    {
        for (int x = 0; x < size.width(); ++x)
        {
            const int edge = std::min({x, y, size.width() - 1 - x, size.height() - 1 - y});
            face.setPixelColor(x, y, edge < borderWidth ? border : background);
        }
    }
    const QPoint corner((size.width() - picture.width()) / 2, (size.height() - picture.height()) / 2);
    for (int y = 0; y < picture.height(); ++y)
    {
        for (int x = 0; x < picture.width(); ++x)
        {
            const QColor over = picture.pixelColor(x, y);
            const QColor under = face.pixelColor(corner + QPoint(x, y));
            const auto mix = [&](int a, int b)
            { return (a * over.alpha() + b * (255 - over.alpha())) / 255; };
            face.setPixelColor(corner + QPoint(x, y),
                               QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                                      mix(over.blue(), under.blue())));
        }
    }
    return face;
}

/// @p image with its four corners, which style sheets round, blanked out.
QImage WithoutCorners(QImage image)
{
    const int last = image.width() - 1;
    const int low = image.height() - 1;
    for (int y = 0; y < 4; ++y)
    {
        for (int x = 0; x < 4; ++x)
        {
            for (const QPoint& pixel :
                 {QPoint(x, y), QPoint(last - x, y), QPoint(x, low - y), QPoint(last - x, low - y)})
                image.setPixel(pixel, 0xff000000);
        }
    }
    return image;
}

QString SheetOf(const char* background, int borderWidth, const char* border)
{
    return QStringLiteral("QLabel { background-color : ") + QLatin1String(background) +
           QStringLiteral("; border-radius: 4px; border-width: ") + QString::number(borderWidth) +
           QStringLiteral("; border-color: ") + QLatin1String(border) +
           QStringLiteral("; border-style: solid }");
}

} // namespace

class tst_FlatButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void StartsBareAndThirtyPixelsWide();
    void PictureFitsTheSizeLessTheMargin_data();
    void PictureFitsTheSizeLessTheMargin();
    void PictureIsScaledFromTheFullSizeEachTime();
    void ImageColorReplacesColorsAndKeepsAlpha();
    void PressLaysThePressedColorOver();
    void OwnImageColorStaysOnPress();
    void NoPictureAndStillSignals_data();
    void NoPictureAndStillSignals();
    void StyleSheetFollowsTheTemplate();
    void StyleSheetColorsWereTakenAtConstruction();
    void HoverChangesTheBackground();
    void HoverSwitchActsWithTheNextMove();
    void FaceIsThePictureOnTheBackground_data();
    void FaceIsThePictureOnTheBackground();
    void ClickComesAfterRelease();
    void ReleaseOutsideIsNoClick();
    void OtherButtonsDoNothing_data();
    void OtherButtonsDoNothing();
    void SecondPressOfADoubleClickCounts();
    void ButtonMayBeDeletedByItsRelease();

private:
    std::unique_ptr<ButtonHost> mHost;
    FlatButton* mButton = nullptr;
    QStringList mSignals;
};

void tst_FlatButton::init()
{
    QCursor::setPos(799, 599);
    mHost = std::make_unique<ButtonHost>();
    mButton = new FlatButton(mHost.get());
    mButton->move(40, 40);
    mHost->show();
    QVERIFY(QTest::qWaitForWindowExposed(mHost.get()));
    mSignals.clear();
    connect(mButton, &FlatButton::pressed, this, [this] { mSignals << QStringLiteral("pressed"); });
    connect(mButton, &FlatButton::released, this, [this] { mSignals << QStringLiteral("released"); });
    connect(mButton, &FlatButton::clicked, this, [this] { mSignals << QStringLiteral("clicked"); });
}

void tst_FlatButton::cleanup()
{
    InputEvents::Release(mHost.get(), QPoint(1, 1));
    mHost.reset();
}

void tst_FlatButton::StartsBareAndThirtyPixelsWide()
{
    QCOMPARE(mButton->minimumSize(), QSize(30, 30));
    QCOMPARE(mButton->maximumSize(), QSize(30, 30));
    QCOMPARE(mButton->alignment(), Qt::Alignment(Qt::AlignHCenter | Qt::AlignVCenter));
    QVERIFY(mButton->styleSheet().isEmpty());
    QVERIFY(mButton->pixmap(Qt::ReturnByValue).isNull());
    mButton->SetImage(ThreeBands(8, 8), 0);
    mButton->SetHoverEnabled(true);
    QVERIFY(mButton->styleSheet().isEmpty());
}

void tst_FlatButton::PictureFitsTheSizeLessTheMargin_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("image");
    QTest::addColumn<int>("margin");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("square") << QSize(26, 26) << QSize(32, 32) << 8 << QSize(18, 18);
    QTest::newRow("wide") << QSize(26, 26) << QSize(32, 16) << 8 << QSize(18, 9);
    QTest::newRow("high") << QSize(26, 26) << QSize(10, 40) << 6 << QSize(5, 20);
    QTest::newRow("enlarged") << QSize(30, 30) << QSize(8, 8) << 0 << QSize(30, 30);
    QTest::newRow("wide button") << QSize(60, 20) << QSize(32, 32) << 4 << QSize(16, 16);
    QTest::newRow("negative margin") << QSize(20, 20) << QSize(32, 32) << -4 << QSize(24, 24);
    QTest::newRow("margin of the whole size") << QSize(20, 20) << QSize(32, 32) << 20 << QSize(0, 0);
    QTest::newRow("margin above the size") << QSize(20, 20) << QSize(32, 32) << 90 << QSize(0, 0);
}

void tst_FlatButton::PictureFitsTheSizeLessTheMargin()
{
    QFETCH(QSize, size);
    QFETCH(QSize, image);
    QFETCH(int, margin);
    QFETCH(QSize, shown);
    mButton->setFixedSize(size);
    mButton->SetImage(ThreeBands(image.width(), image.height()), margin);
    QCOMPARE(mButton->pixmap(Qt::ReturnByValue).size(), shown);
    if (shown.isEmpty())
        return;
    const QImage expected = Fitted(ThreeBands(image.width(), image.height()), shown);
    const QByteArray difference = PictureDifference(Shown(*mButton), expected, 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::PictureIsScaledFromTheFullSizeEachTime()
{
    const QImage image = ThreeBands(32, 32);
    mButton->setFixedSize(10, 10);
    mButton->SetImage(image, 4);
    // The picture keeps the size of that moment until the next refresh.
    mButton->setFixedSize(26, 26);
    QCOMPARE(mButton->pixmap(Qt::ReturnByValue).size(), QSize(6, 6));
    mButton->SetColors(QColor(), QColor());
    QByteArray difference = PictureDifference(Shown(*mButton), Fitted(image, QSize(22, 22)), 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::ImageColorReplacesColorsAndKeepsAlpha()
{
    const QImage image = ThreeBands(30, 30);
    mButton->SetImage(image, 0);
    mButton->SetColors(QColor(), QColor(220, 120, 20));
    QByteArray difference = PictureDifference(Shown(*mButton), Recolored(image, QColor(220, 120, 20)), 2);
    QVERIFY2(difference.isEmpty(), difference);
    // A translucent colour makes the picture translucent, and lets none of its own colours through.
    mButton->SetColors(QColor(), QColor(200, 100, 50, 128));
    QImage thinned = Recolored(image, QColor(200, 100, 50)).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < 30; ++y)
    {
        for (int x = 0; x < 30; ++x)
            thinned.setPixel(x, y, qRgba(200, 100, 50, qAlpha(thinned.pixel(x, y)) * 128 / 255));
    }
    difference =
        PictureDifference(Shown(*mButton), thinned.convertToFormat(QImage::Format_ARGB32_Premultiplied), 4);
    QVERIFY2(difference.isEmpty(), difference);
    // An invalid colour brings the picture's own back.
    mButton->SetColors(QColor(), QColor());
    difference = PictureDifference(Shown(*mButton), image, 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::PressLaysThePressedColorOver()
{
    const QImage image = ThreeBands(30, 30);
    mButton->SetImage(image, 0);
    InputEvents::Press(mButton, QPoint(5, 5));
    QByteArray difference = PictureDifference(Shown(*mButton), Recolored(image, QColor(190, 190, 190)), 2);
    QVERIFY2(difference.isEmpty(), difference);
    InputEvents::Release(mButton, QPoint(5, 5));
    difference = PictureDifference(Shown(*mButton), image, 1);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::OwnImageColorStaysOnPress()
{
    const QImage image = ThreeBands(30, 30);
    mButton->SetImage(image, 0);
    mButton->SetColors(QColor(), QColor(20, 120, 220));
    InputEvents::Press(mButton, QPoint(5, 5));
    const QByteArray difference =
        PictureDifference(Shown(*mButton), Recolored(image, QColor(20, 120, 220)), 2);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::NoPictureAndStillSignals_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<int>("margin");
    QTest::newRow("null image") << QImage() << 0;
    QTest::newRow("no room") << ThreeBands(8, 8) << 30;
    QTest::newRow("less than no room") << ThreeBands(8, 8) << 31;
}

void tst_FlatButton::NoPictureAndStillSignals()
{
    QFETCH(QImage, image);
    QFETCH(int, margin);
    // A painter on nothing would warn.
    const QtMessageHandler former = qInstallMessageHandler(CountMessage);
    Messages = 0;
    mButton->SetImage(ThreeBands(8, 8), 0);
    mButton->SetImage(image, margin);
    QVERIFY(mButton->pixmap(Qt::ReturnByValue).isNull());
    mButton->SetColors(QColor(), Qt::red);
    InputEvents::Press(mButton, QPoint(5, 5));
    InputEvents::Release(mButton, QPoint(5, 5));
    qInstallMessageHandler(former);
    QCOMPARE(Messages, 0);
    QCOMPARE(mSignals, (QStringList{"pressed", "released", "clicked"}));
    QVERIFY(mButton->pixmap(Qt::ReturnByValue).isNull());
}

void tst_FlatButton::StyleSheetFollowsTheTemplate()
{
    mButton->SetBorderWidth(3);
    QCOMPARE(mButton->styleSheet(), SheetOf("#353637", 3, "#353637"));
    mButton->SetColors(QColor(255, 0, 128), QColor());
    QCOMPARE(mButton->styleSheet(), SheetOf("#ff0080", 3, "#353637"));
    mButton->SetBorderWidth(0);
    QCOMPARE(mButton->styleSheet(), SheetOf("#ff0080", 0, "#353637"));
    mButton->SetColors(QColor(), QColor());
    QCOMPARE(mButton->styleSheet(), SheetOf("#353637", 0, "#353637"));
}

void tst_FlatButton::StyleSheetColorsWereTakenAtConstruction()
{
    QPalette colors = mHost->palette();
    colors.setColor(QPalette::Window, Qt::blue);
    mHost->setPalette(colors);
    mButton->SetColors(QColor(), QColor());
    QCOMPARE(mButton->styleSheet(), SheetOf("#353637", 0, "#353637"));
}

void tst_FlatButton::HoverChangesTheBackground()
{
    mButton->SetHoverEnabled(true);
    mButton->SetColors(QColor(10, 20, 30), QColor());
    InputEvents::Move(mButton, QPoint(5, 5));
    QCOMPARE(mButton->styleSheet(), SheetOf("#1e1e1e", 0, "#353637"));
    InputEvents::Move(mHost.get(), QPoint(1, 1));
    QCOMPARE(mButton->styleSheet(), SheetOf("#0a141e", 0, "#353637"));
}

void tst_FlatButton::HoverSwitchActsWithTheNextMove()
{
    mButton->SetColors(QColor(10, 20, 30), QColor());
    InputEvents::Move(mButton, QPoint(5, 5));
    QCOMPARE(mButton->styleSheet(), SheetOf("#0a141e", 0, "#353637"));
    mButton->SetHoverEnabled(true);
    QCOMPARE(mButton->styleSheet(), SheetOf("#0a141e", 0, "#353637"));
    InputEvents::Move(mHost.get(), QPoint(1, 1));
    InputEvents::Move(mButton, QPoint(5, 5));
    mButton->SetHoverEnabled(false);
    InputEvents::Move(mHost.get(), QPoint(1, 1));
    QCOMPARE(mButton->styleSheet(), SheetOf("#1e1e1e", 0, "#353637"));
}

void tst_FlatButton::FaceIsThePictureOnTheBackground_data()
{
    QTest::addColumn<bool>("isHovered");
    QTest::addColumn<bool>("isPressed");
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("imageColor");
    QTest::addColumn<int>("borderWidth");
    QTest::newRow("rest") << false << false << QColor(90, 20, 30) << QColor() << 0;
    QTest::newRow("own colour") << false << false << QColor(30, 30, 30) << QColor(220, 220, 220) << 0;
    QTest::newRow("border") << false << false << QColor(250, 20, 30) << QColor() << 3;
    QTest::newRow("hover") << true << false << QColor(90, 20, 30) << QColor() << 0;
    QTest::newRow("pressed") << true << true << QColor(90, 20, 30) << QColor() << 0;
}

void tst_FlatButton::FaceIsThePictureOnTheBackground()
{
    QFETCH(bool, isHovered);
    QFETCH(bool, isPressed);
    QFETCH(QColor, background);
    QFETCH(QColor, imageColor);
    QFETCH(int, borderWidth);
    mButton->setFixedSize(40, 40);
    mButton->SetHoverEnabled(true);
    mButton->SetBorderWidth(borderWidth);
    mButton->SetImage(ThreeBands(20, 20), 20);
    mButton->SetColors(background, imageColor);
    if (isHovered)
        InputEvents::Move(mButton, QPoint(5, 5));
    if (isPressed)
        InputEvents::Press(mButton, QPoint(5, 5));
    QImage picture = ThreeBands(20, 20);
    if (imageColor.isValid() || isPressed)
        picture = Recolored(picture, imageColor.isValid() ? imageColor : QColor(190, 190, 190));
    const QImage expected = Face(QSize(40, 40), isHovered ? QColor(30, 30, 30) : background, borderWidth,
                                 QColor(53, 54, 55), picture);
    const QImage actual = mButton->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    const QByteArray difference = PictureDifference(WithoutCorners(actual), WithoutCorners(expected), 2);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_FlatButton::ClickComesAfterRelease()
{
    InputEvents::Press(mButton, QPoint(0, 0));
    QCOMPARE(mSignals, (QStringList{"pressed"}));
    InputEvents::Release(mButton, QPoint(29, 29));
    QCOMPARE(mSignals, (QStringList{"pressed", "released", "clicked"}));
}

void tst_FlatButton::ReleaseOutsideIsNoClick()
{
    for (const QPoint& outside : {QPoint(30, 10), QPoint(10, 30), QPoint(-1, 5), QPoint(5, -1)})
    {
        mSignals.clear();
        InputEvents::Press(mButton, QPoint(5, 5));
        InputEvents::Release(mButton, outside);
        QCOMPARE(mSignals, (QStringList{"pressed", "released"}));
    }
}

void tst_FlatButton::OtherButtonsDoNothing_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
}

void tst_FlatButton::OtherButtonsDoNothing()
{
    QFETCH(int, button);
    const QImage image = ThreeBands(30, 30);
    mButton->SetImage(image, 0);
    InputEvents::Press(mButton, QPoint(5, 5), Qt::MouseButton(button));
    const QByteArray difference = PictureDifference(Shown(*mButton), image, 1);
    QVERIFY2(difference.isEmpty(), difference);
    InputEvents::Release(mButton, QPoint(5, 5), Qt::MouseButton(button));
    QVERIFY(mSignals.isEmpty());
    // The label would have left both to the parent.
    QCOMPARE(mHost->mouseEvents, 0);
}

void tst_FlatButton::SecondPressOfADoubleClickCounts()
{
    QTest::mouseClick(mButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseDClick(mButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseRelease(mButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QCOMPARE(mSignals.count(QStringLiteral("clicked")), 2);
}

void tst_FlatButton::ButtonMayBeDeletedByItsRelease()
{
    QObject* const button = mButton;
    connect(mButton, &FlatButton::released, button, [button] { delete button; });
    QMouseEvent release(QEvent::MouseButtonRelease, QPoint(5, 5), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(mButton, &release);
    QCOMPARE(mSignals, (QStringList{"released"}));
}

static const TestRegistration<tst_FlatButton> FlatButtonRegistration;

#include "tst_FlatButton.moc"
