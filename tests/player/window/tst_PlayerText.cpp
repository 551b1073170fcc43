// SPDX-License-Identifier: MIT
#include "annotation/AnnotationController.h"
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QClipboard>
#include <QInputMethodEvent>
#include <QtTest>

#include <functional>

using TextEnding = std::function<void(PlayerWindow*)>;
Q_DECLARE_METATYPE(TextEnding)

/// Texts typed in place on a frame.
class tst_PlayerText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ATextShowsWhereItIsTyped();
    void LettersAreNoCommands();
    void ATextEnds_data();
    void ATextEnds();
    void ABlankTextLeavesNothing();
    void TheCaretEditsWithinTheText();
    void TheCaretMovesByWholeLetters();
    void TheCaretStandsBehindTheText();
    void PastedLinesAreCleaned();
    void AnInputMethodTypes();
    void APressElsewhereBeginsAnotherText();
    void ATextIsOneStepOfTheUndoStack();
    void AFrameChangeLeavesTheTextOnItsFrame();
    void TheOtherKeysGoOnWorking();

private:
    QImage Screen() const { return PlayerProbe::ScreenOfViewer(mWindow.get()); }
    QList<DrawData> Drawings(int frame = 1) const
    {
        return mWindow->Playback()->TimelineOf(0)->Annotations()->Drawings(frame);
    }
    void Begin(const QPoint& place = QPoint(250, 200));
    void Type(const char* text) { QTest::keyClicks(mWindow->Viewer(), QString::fromUtf8(text)); }
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(mWindow->Viewer(), static_cast<Qt::Key>(key), modifiers);
    }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerText::init()
{
    Settings::RestoreDefaults();
    Settings::drawColor = QColor(255, 255, 0);
    // One that does not blink is there or not.
    QApplication::setCursorFlashTime(0);
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    QTest::keyClick(mWindow.get(), Qt::Key_T);
    QCOMPARE(Settings::annotationTool, Text);
    PlayerProbe::LeaveViewers(mWindow.get());
}

void tst_PlayerText::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerText::Begin(const QPoint& place)
{
    PlayerProbe::Drag(mWindow.get(), place, place, 0);
    QVERIFY(mWindow->Annotation()->Text()->IsTyping());
    QVERIFY(Settings::textToolActive);
}

void tst_PlayerText::ATextShowsWhereItIsTyped()
{
    const QImage before = Screen();
    const QPoint place(250, 200);
    Begin(place);
    Type("Hi there");
    Key(Qt::Key_Return);
    Type("two");
    Key(Qt::Key_Escape);

    const QRect picture = PlayerProbe::PictureRect(mWindow.get(), 0);
    PlayerProbe::ExpectedOverlay expected(before, QColor(255, 255, 0), 1.0);
    expected.Painter()->setRenderHint(QPainter::TextAntialiasing);
    QFont font;
    font.setPointSizeF(static_cast<double>(Settings::textWidth) * picture.width() * 4.0);
    font.setStyleHint(QFont::Helvetica);
    expected.Painter()->setFont(font);
    expected.Painter()->drawText(QRectF(place, QSizeF(4096, 4096)), Qt::AlignLeft,
                                 QStringLiteral("Hi there\ntwo"));
    const QByteArray difference = PictureDifference(Screen(), expected.Over(), 6);
    QVERIFY2(difference.isEmpty(), difference);
    QCOMPARE(Drawings().size(), 1);
    QCOMPARE(Drawings().at(0).text, QStringLiteral("Hi there\ntwo"));
    QCOMPARE(Drawings().at(0).type, DrawText);
    QVERIFY(Drawings().at(0).points.size() >= 2);
}

void tst_PlayerText::LettersAreNoCommands()
{
    Begin();
    // Each of these is a command's key.
    Type(" pdebjklg1234[]");
    QCOMPARE(Drawings().last().text, QStringLiteral(" pdebjklg1234[]"));
    QVERIFY(!mWindow->Playback()->IsPlaying());
    QCOMPARE(Settings::annotationTool, Text);
    QVERIFY(Settings::drawEnabled);
    for (const int key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Left, Qt::Key_End, Qt::Key_Up, Qt::Key_Tab})
        Key(key);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 1);
    QVERIFY(mWindow->Annotation()->Text()->IsTyping());
}

void tst_PlayerText::ATextEnds_data()
{
    QTest::addColumn<TextEnding>("end");
    const auto row = [](const char* name, const TextEnding& end) { QTest::newRow(name) << end; };
    const auto run = [](const char* command)
    { return [command](PlayerWindow* window) { window->Commands()->Run(QLatin1String(command)); }; };
    row("by Escape", [](PlayerWindow* window) { QTest::keyClick(window->Viewer(), Qt::Key_Escape); });
    row("as the viewer loses the focus", [](PlayerWindow* window) { window->Viewer()->clearFocus(); });
    row("by another tool", run("annotate.pencil"));
    row("as the tools are hidden", run("annotate.draw"));
    row("by a step", run("playback.next"));
    row("as it plays", run("playback.toggle"));
    row("by another layout", run("view.vertical"));
    row("as the window closes", [](PlayerWindow* window) { window->close(); });
}

void tst_PlayerText::ATextEnds()
{
    QFETCH(TextEnding, end);
    Begin();
    Type("note");
    end(mWindow.get());
    QTRY_VERIFY(!mWindow->Annotation()->Text()->IsTyping());
    QVERIFY(!Settings::textToolActive);
    QVERIFY(!PlayerProbe::Part(mWindow.get(), "textCaret")->isVisible());
    QCOMPARE(Drawings().size(), 1);
    QCOMPARE(Drawings().at(0).text, QStringLiteral("note"));
    mWindow->Commands()->Run(QStringLiteral("annotate.undo"));
    QVERIFY(Drawings().isEmpty());
}

void tst_PlayerText::ABlankTextLeavesNothing()
{
    const QImage before = Screen();
    for (const char* const text : {"", "  "})
    {
        Begin();
        Type(text);
        Key(Qt::Key_Escape);
        QVERIFY(Drawings().isEmpty());
        const QByteArray difference = PictureDifference(Screen(), before);
        QVERIFY2(difference.isEmpty(), difference);
    }
    // Nothing was made a step of undo.
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(Drawings().isEmpty());
}

void tst_PlayerText::TheCaretEditsWithinTheText()
{
    Begin();
    Type("abcd");
    Key(Qt::Key_Left);
    Key(Qt::Key_Left);
    Type("X");
    QCOMPARE(Drawings().last().text, QStringLiteral("abXcd"));
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Delete);
    QCOMPARE(Drawings().last().text, QStringLiteral("abd"));
    Key(Qt::Key_Home);
    Key(Qt::Key_Backspace);
    Type("1");
    Key(Qt::Key_End);
    Key(Qt::Key_Delete);
    Key(Qt::Key_Enter);
    Type("second");
    Key(Qt::Key_Up);
    Type("2");
    QCOMPARE(Drawings().last().text, QStringLiteral("1abd2\nsecond"));
    Key(Qt::Key_Down);
    Type("3");
    QCOMPARE(Drawings().last().text, QStringLiteral("1abd2\nsecon3d"));
    Key(Qt::Key_Up);
    Key(Qt::Key_Up);
    Key(Qt::Key_Home);
    Type("0");
    QCOMPARE(Drawings().last().text, QStringLiteral("01abd2\nsecon3d"));
}

void tst_PlayerText::TheCaretMovesByWholeLetters()
{
    Begin();
    QGuiApplication::clipboard()->setText(QString::fromUtf8("a😀e\xCC\x81"));
    Key(Qt::Key_V, Qt::ControlModifier);
    Key(Qt::Key_Left);
    Type("x");
    QCOMPARE(Drawings().last().text, QString::fromUtf8("a😀xe\xCC\x81"));
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Backspace);
    QCOMPARE(Drawings().last().text, QString::fromUtf8("ae\xCC\x81"));
    Key(Qt::Key_Delete);
    QCOMPARE(Drawings().last().text, QStringLiteral("a"));
}

void tst_PlayerText::TheCaretStandsBehindTheText()
{
    Begin();
    const QWidget* const caret = PlayerProbe::Part(mWindow.get(), "textCaret");
    QVERIFY(caret->isVisible());
    QCOMPARE(caret->mapTo(mWindow->Viewer(), QPoint(0, 0)), QPoint(250, 200));
    QCOMPARE(Screen().pixel(250, 205), qRgb(255, 255, 0));
    Type("WWWW");
    const int width = caret->pos().x() - 250;
    Type("WWWW");
    QVERIFY(std::abs(caret->pos().x() - 250 - 2 * width) <= 1);
    const int firstTop = caret->pos().y();
    Key(Qt::Key_Return);
    QCOMPARE(caret->pos().x(), 250);
    QVERIFY(caret->pos().y() >= firstTop + caret->height() - 1);
    // It keeps its place on the picture as the window grows.
    const auto placeOnPicture = [&]
    {
        const QRect picture = PlayerProbe::PictureRect(mWindow.get(), 0);
        const QPoint place = caret->mapTo(mWindow->Viewer(), QPoint(0, 0)) - picture.topLeft();
        return QPointF(place) / picture.width();
    };
    const QPointF before = placeOnPicture();
    const QSize size = mWindow->Viewer()->size();
    mWindow->resize(1200, 850);
    QTRY_VERIFY(mWindow->Viewer()->width() > size.width());
    QTRY_VERIFY((placeOnPicture() - before).manhattanLength() < 0.01);
    QVERIFY(mWindow->Annotation()->Text()->IsTyping());
}

void tst_PlayerText::PastedLinesAreCleaned()
{
    Begin();
    QGuiApplication::clipboard()->setText(QStringLiteral("one\r\ntwo\rthree\tfour\x01"));
    Key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(Drawings().last().text, QStringLiteral("one\ntwo\nthree four"));
    QGuiApplication::clipboard()->setText(QString(100000, QLatin1Char('m')));
    Key(Qt::Key_V, Qt::ControlModifier);
    QVERIFY(Drawings().last().text.size() <= 4000);
}

void tst_PlayerText::AnInputMethodTypes()
{
    Begin();
    QVERIFY(mWindow->Viewer()->testAttribute(Qt::WA_InputMethodEnabled));
    QInputMethodEvent event;
    event.setCommitString(QString::fromUtf8("語"));
    QApplication::sendEvent(mWindow->Viewer(), &event);
    QCOMPARE(Drawings().last().text, QString::fromUtf8("語"));
    QInputMethodQueryEvent query(Qt::ImCursorRectangle);
    QApplication::sendEvent(mWindow->Viewer(), &query);
    QVERIFY(query.value(Qt::ImCursorRectangle).toRect().left() > 250);
}

void tst_PlayerText::APressElsewhereBeginsAnotherText()
{
    Begin();
    Type("one");
    Begin(QPoint(400, 300));
    Type("two");
    Key(Qt::Key_Escape);
    QCOMPARE(Drawings().size(), 2);
    QCOMPARE(Drawings().at(0).text, QStringLiteral("one"));
    QCOMPARE(Drawings().at(1).text, QStringLiteral("two"));
    QVERIFY(Drawings().at(1).points.first().x() > Drawings().at(0).points.first().x());
}

void tst_PlayerText::ATextIsOneStepOfTheUndoStack()
{
    const QImage before = Screen();
    Begin();
    Type("step");
    // It ends the text and takes it back.
    Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!mWindow->Annotation()->Text()->IsTyping());
    QVERIFY(Drawings().isEmpty());
    const QByteArray difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
    Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(Drawings().at(0).text, QStringLiteral("step"));
}

void tst_PlayerText::AFrameChangeLeavesTheTextOnItsFrame()
{
    Begin();
    Type("here");
    mWindow->Playback()->SeekFrame(30);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 30);
    QTest::qWait(100);
    QCOMPARE(mWindow->Playback()->ShownFrame(0), 30);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), 30);
    QCOMPARE(Drawings(1).size(), 1);
    QVERIFY(Drawings(30).isEmpty());
}

void tst_PlayerText::TheOtherKeysGoOnWorking()
{
    Begin();
    Type("mark");
    Key(Qt::Key_F9);
    QVERIFY(PlayerProbe::Part(mWindow.get(), "bookmarksBar")->isHidden());
    QVERIFY(mWindow->Annotation()->Text()->IsTyping());
    Key(Qt::Key_Escape);
    // After it letters are commands again.
    Key(Qt::Key_P);
    QCOMPARE(Settings::annotationTool, Pencil);
}

static const TestRegistration<tst_PlayerText> PlayerTextRegistration;

#include "tst_PlayerText.moc"
