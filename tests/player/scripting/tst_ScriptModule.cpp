// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptEngine.h"
#include "scripting/ScriptRun.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"
#include "window/ScriptBinding.h"

#include <QAction>
#include <QTemporaryDir>
#include <QtTest>

class tst_ScriptModule : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void EveryNameHasItsWords();
    void CommandsAreTheTable();
    void ACommandIsRun();
    void MediaAreOpenedAndShown();
    void AMediumThatCantBeOpenedIsNamed();
    void ThePlayheadMoves();
    void PlaybackObeys();
    void SettlingEndsInTime();
    void ViewersObey();
    void PicturesAreGrabbed();
    void BookmarksComeAndGo();
    void DrawingsComeAndGo();
    void EveryKindIsDrawn();
    void DrawingElsewhereLeavesThePlayhead();
    void AMovieIsExported();
    void AFailedExportSaysWhy();
    void AStoppedExportLeavesNothing();
    void StillsAreWritten();
    void SettingsAreReadAndChanged();
    void BadArgumentsAreNamed_data();
    void BadArgumentsAreNamed();

private:
    /// Runs @p text, which is to run to its end. Returns what its last expression gave.
    QString Value(const QString& text);
    void OpenSample();

    std::unique_ptr<PlayerWindow> mWindow;
    std::unique_ptr<ScriptLog> mLog;
    ScriptEngine* mEngine = nullptr;
};

void tst_ScriptModule::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->resize(900, 700);
    mWindow->show();
    mLog = std::make_unique<ScriptLog>();
    mEngine = mWindow->Scripts()->Engine();
    QCOMPARE(Value("import torvalen"), QString());
}

void tst_ScriptModule::cleanup()
{
    mWindow.reset();
    mLog.reset();
}

QString tst_ScriptModule::Value(const QString& text)
{
    const ScriptResult result = ScriptRun::Run(mEngine, text, 60000);
    return result.error.isEmpty() ? result.value : QStringLiteral("failed: ") + result.error;
}

void tst_ScriptModule::OpenSample()
{
    const QString path = PlayerProbe::SampleMovie();
    QVERIFY(!path.isEmpty());
    QCOMPARE(Value(QStringLiteral("movie = torvalen.open('%1')").arg(path)), QString());
}

void tst_ScriptModule::EveryNameHasItsWords()
{
    QFile file(QStringLiteral(TORVALEN_SCRIPTING_DOCUMENT));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString document = QString::fromUtf8(file.readAll());
    const QStringList names =
        Value("'\\n'.join(n for n in dir(torvalen) if not n.startswith('_'))").mid(1).chopped(1).split("\\n");
    QVERIFY(names.size() > 40);
    for (const QString& name : names)
    {
        const QString words = Value(QStringLiteral("torvalen.%1.__doc__").arg(name));
        QVERIFY2(words.size() > 15, qPrintable(name));
        QVERIFY2(document.contains(QStringLiteral("`%1").arg(name)), qPrintable(name));
    }
}

void tst_ScriptModule::CommandsAreTheTable()
{
    QStringList expected;
    for (const KeySequence* each : mWindow->Commands()->Keys()->GetKeySequences())
        expected << each->name + "|" + each->displayText;
    QCOMPARE(Value("for c in torvalen.commands(): print(c.name + '|' + c.text)"), QString());
    QCOMPARE(mLog->Lines("out"), expected);
    QCOMPARE(Value("[c.keys for c in torvalen.commands() if c.name == 'playback.toggle']"),
             QStringLiteral("[['Space', 'K']]"));
    QCOMPARE(Value("{c.name: c.checked for c in torvalen.commands() if c.name in "
                   "('view.single', 'view.vertical', 'file.open')}"),
             QStringLiteral("{'file.open': None, 'view.single': True, 'view.vertical': False}"));
}

void tst_ScriptModule::ACommandIsRun()
{
    QCOMPARE(Value("torvalen.run('view.vertical')"), QString());
    QVERIFY(mWindow->Commands()->Action("view.vertical")->isChecked());
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Vertical);
}

void tst_ScriptModule::MediaAreOpenedAndShown()
{
    const QString other = NumberedMedia::Movie("other.mp4", 12, "25", {"-c:v", "libx264", "-g", "6"});
    OpenSample();
    // Opened means on screen.
    QCOMPARE(mWindow->Playback()->ShownFrame(0), 1);
    QCOMPARE(Value("(movie.name.endswith('player.mp4'), movie.frames, movie.rate, movie.viewer)"),
             QStringLiteral("(True, 60, 24.0, 'A')"));
    QCOMPARE(Value("movie.path"), QStringLiteral("'%1'").arg(PlayerProbe::SampleMovie()));
    QCOMPARE(Value(QStringLiteral("other = torvalen.open('%1', 'B')").arg(other)), QString());
    QCOMPARE(mWindow->Playback()->ShownFrame(1), 1);
    QCOMPARE(Value("torvalen.layout()"), QStringLiteral("'horizontal'"));
    QCOMPARE(
        Value("(torvalen.timelines() == [movie, other], torvalen.timeline() == movie, "
              "torvalen.timeline('B') == other, movie != other, hash(movie) == hash(torvalen.timeline()))"),
        QStringLiteral("(True, True, True, True, True)"));
    QCOMPARE(Value("movie.frame_time(25)"), QStringLiteral("1000000"));
    QCOMPARE(Value("torvalen.show(other, 'A'); torvalen.wait_until_settled(); (other.viewer, movie.viewer)"),
             QStringLiteral("('A', None)"));
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetName(), QFileInfo(other).fileName());
    QCOMPARE(
        Value("repr(movie)"),
        QStringLiteral("'<torvalen.Timeline %1>'").arg(QFileInfo(PlayerProbe::SampleMovie()).fileName()));
    // Open already: the same again.
    QCOMPARE(Value(QStringLiteral("torvalen.open('%1', None) == movie").arg(PlayerProbe::SampleMovie())),
             QStringLiteral("True"));
}

void tst_ScriptModule::AMediumThatCantBeOpenedIsNamed()
{
    const QString error = Value("torvalen.open('/nowhere/at/all.mov')");
    QVERIFY2(error.contains("RuntimeError: ") && error.contains("/nowhere/at/all.mov"), qPrintable(error));
}

void tst_ScriptModule::ThePlayheadMoves()
{
    OpenSample();
    QCOMPARE(Value("torvalen.seek(12); torvalen.wait_until_settled(); (torvalen.frame(), torvalen.time())"),
             QStringLiteral("(12, 458334)"));
    QCOMPARE(mWindow->Playback()->ShownFrame(0), 12);
    QCOMPARE(Value("torvalen.seek(time=1000000); torvalen.frame()"), QStringLiteral("25"));
    QCOMPARE(Value("torvalen.seek(time=999999); torvalen.frame()"), QStringLiteral("24"));
    QCOMPARE(Value("torvalen.step(); torvalen.frame()"), QStringLiteral("25"));
    QCOMPARE(Value("torvalen.step(-5); torvalen.frame()"), QStringLiteral("20"));
    QCOMPARE(Value("torvalen.frame_count()"), QStringLiteral("60"));
    // Every frame is met by its start time.
    QCOMPARE(Value("wrong = []\n"
                   "for frame in range(1, 61):\n"
                   "    torvalen.seek(time=movie.frame_time(frame))\n"
                   "    if torvalen.frame() != frame: wrong.append(frame)\n"
                   "wrong"),
             QStringLiteral("[]"));
}

void tst_ScriptModule::PlaybackObeys()
{
    OpenSample();
    QCOMPARE(Value("torvalen.range()"), QStringLiteral("(1, 60)"));
    QCOMPARE(Value("torvalen.range(10, 20)"), QStringLiteral("(10, 20)"));
    QCOMPARE(mWindow->Playback()->Range().first, 10);
    QCOMPARE(mWindow->Playback()->Range().last, 20);
    QCOMPARE(Value("(torvalen.loop(), torvalen.loop('ping-pong'), torvalen.loop('off'))"),
             QStringLiteral("('loop', 'ping-pong', 'off')"));
    QCOMPARE(Settings::loopType, NoLoop);
    QVERIFY(mWindow->Commands()->Action("playback.noLoop")->isChecked());
    QCOMPARE(Value("(torvalen.speed(), torvalen.speed(4))"), QStringLiteral("(1.0, 4.0)"));
    QCOMPARE(mWindow->Playback()->Speed(), 4.0f);
    QCOMPARE(Value("(torvalen.every_frame(), torvalen.every_frame(True))"), QStringLiteral("(False, True)"));
    QVERIFY(mWindow->Playback()->IsStepped());
    QCOMPARE(Value("torvalen.play(); torvalen.is_playing()"), QStringLiteral("True"));
    QTRY_VERIFY(!mWindow->Playback()->IsPlaying());
    QCOMPARE(Value("torvalen.frame()"), QStringLiteral("20"));
    QCOMPARE(Value("torvalen.speed(0.05); torvalen.play('backwards'); torvalen.is_playing()"),
             QStringLiteral("True"));
    QCOMPARE(Value("torvalen.pause(); torvalen.is_playing()"), QStringLiteral("False"));
}

void tst_ScriptModule::SettlingEndsInTime()
{
    // Nothing is decoded yet: what isn't settled at once is told after the time, here none at all.
    QCOMPARE(Value(QStringLiteral("torvalen.open('%1')\n"
                                  "tries = 0\n"
                                  "for frame in (60, 2, 58, 4):\n"
                                  "    torvalen.seek(frame)\n"
                                  "    try: torvalen.wait_until_settled(0)\n"
                                  "    except TimeoutError: tries += 1\n"
                                  "tries > 0")
                       .arg(PlayerProbe::SampleMovie())),
             QStringLiteral("True"));
    QCOMPARE(Value("for frame in (60, 1, 30): torvalen.seek(frame); torvalen.wait_until_settled()"),
             QString());
    QCOMPARE(mWindow->Playback()->ShownFrame(0), 30);
}

void tst_ScriptModule::ViewersObey()
{
    OpenSample();
    QCOMPARE(Value("(torvalen.layout(), torvalen.layout('vertical'))"),
             QStringLiteral("('single', 'vertical')"));
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Vertical);
    QCOMPARE(Value("(torvalen.zoom(), torvalen.pan(), torvalen.zoom(2), torvalen.pan(0.5, -1))"),
             QStringLiteral("(1.0, (0.0, 0.0), 2.0, (0.5, -1.0))"));
    QCOMPARE(Value("(torvalen.zoom(1), torvalen.pan())"), QStringLiteral("(1.0, (0.0, 0.0))"));
    QCOMPARE(Value("torvalen.active_viewer()"), QStringLiteral("'A'"));
    QVERIFY(Value("torvalen.active_viewer('B')").contains("RuntimeError: viewer B shows nothing"));
    QCOMPARE(Value("torvalen.show(movie, 'B'); torvalen.active_viewer('b')"), QStringLiteral("'B'"));
    QCOMPARE(Value("torvalen.window_size(1000, 800)"), QStringLiteral("(1000, 800)"));
    QCOMPARE(mWindow->size(), QSize(1000, 800));
    QCOMPARE(Value("torvalen.viewer_size()"),
             QStringLiteral("(%1, %2)").arg(mWindow->Viewer()->width()).arg(mWindow->Viewer()->height()));
}

void tst_ScriptModule::PicturesAreGrabbed()
{
    OpenSample();
    QTemporaryDir folder;
    QCOMPARE(Value(QStringLiteral("torvalen.seek(17); torvalen.wait_until_settled()\n"
                                  "torvalen.grab('%1/viewers.png'); torvalen.grab('%1/window.png', 'window')")
                       .arg(folder.path())),
             QString());
    const QImage viewers(folder.filePath("viewers.png"));
    QCOMPARE(viewers.size(), mWindow->Viewer()->size());
    QCOMPARE(NumberedMedia::NumberIn(viewers.copy(PlayerProbe::PictureRect(mWindow.get(), 0))), 17);
    QCOMPARE(QImage(folder.filePath("window.png")).size(), mWindow->size());
    QVERIFY(
        Value("torvalen.grab('/nowhere/a.png')").contains("RuntimeError: /nowhere/a.png can't be written: "));
    const QString noFormat = Value(QStringLiteral("torvalen.grab('%1/a.nothing')").arg(folder.path()));
    QVERIFY2(noFormat.contains("a.nothing can't be written: "), qPrintable(noFormat));
}

void tst_ScriptModule::BookmarksComeAndGo()
{
    OpenSample();
    const QString list = "[(b.first, b.last, b.is_range, b.annotated, b.note) for b in torvalen.bookmarks()]";
    QCOMPARE(Value("torvalen.seek(30); torvalen.add_bookmark(); torvalen.add_bookmark(12)\n"
                   "torvalen.add_bookmark(20, 40, note='late')\n" +
                   list),
             QStringLiteral(
                 "[(12, 12, False, False, ''), (20, 40, True, False, 'late'), (30, 30, False, False, '')]"));
    // One that is there stays, and makes no step.
    QCOMPARE(Value("torvalen.add_bookmark(12); torvalen.add_bookmark(20, 40); torvalen.undo(); " + list),
             QStringLiteral("[(12, 12, False, False, ''), (30, 30, False, False, '')]"));
    QCOMPARE(Value("torvalen.redo(); (torvalen.remove_bookmark(12), torvalen.remove_bookmark(12), "
                   "torvalen.remove_bookmark(20, 40), torvalen.remove_bookmark(20, 41))"),
             QStringLiteral("(True, False, True, False)"));
    QCOMPARE(Value(list), QStringLiteral("[(30, 30, False, False, '')]"));
    QCOMPARE(mWindow->Playback()->LeadingTimeline()->MarkedFrames(), QSet<int>{30});
    QCOMPARE(Value("torvalen.draw_line((0, 0), (0.1, 0), frame=5); " + list),
             QStringLiteral("[(5, 5, False, True, ''), (30, 30, False, False, '')]"));
    // Drawings keep the bookmark that they make.
    QCOMPARE(Value("torvalen.remove_bookmark(5)"), QStringLiteral("False"));
    QCOMPARE(Value("repr(torvalen.bookmarks()[0])"), QStringLiteral("'<torvalen.Bookmark 5>'"));
}

void tst_ScriptModule::DrawingsComeAndGo()
{
    OpenSample();
    const QString list = "[(d.kind, d.color, round(d.width, 3)) for d in torvalen.annotations(7)]";
    QCOMPARE(Value("torvalen.seek(7)\n"
                   "first = torvalen.draw_pencil([(0, 0), (0.1, 0.2)])\n"
                   "second = torvalen.draw_oval((-0.1, -0.1), (0.1, 0.1), color='#8000ff00', width=0.01)\n" +
                   list),
             QStringLiteral("[('pencil', '#ffff4040', 0.004), ('oval', '#8000ff00', 0.01)]"));
    QCOMPARE(Value("[d.id for d in torvalen.annotations()] == [first, second] and first != second"),
             QStringLiteral("True"));
    QCOMPARE(Value("torvalen.annotations(7)[0].points"), QStringLiteral("[(0.0, 0.0), (0.1, 0.2)]"));
    QCOMPARE(Value("torvalen.draw_arrow((0, 0), (0.3, 0), frame=9); torvalen.annotated_frames()"),
             QStringLiteral("[7, 9]"));
    QCOMPARE(Value("(torvalen.remove_annotation(first, 7), torvalen.remove_annotation(first, 7))"),
             QStringLiteral("(True, False)"));
    QCOMPARE(Value(list), QStringLiteral("[('oval', '#8000ff00', 0.01)]"));
    QCOMPARE(Value("(torvalen.clear_annotations(7), torvalen.clear_annotations(7))"),
             QStringLiteral("(1, 0)"));
    QCOMPARE(Value("torvalen.annotated_frames()"), QStringLiteral("[9]"));
    // Each was a step.
    QCOMPARE(Value("(torvalen.undo(), torvalen.undo()); " + list),
             QStringLiteral("[('pencil', '#ffff4040', 0.004), ('oval', '#8000ff00', 0.01)]"));
    QCOMPARE(Value("torvalen.redo(); " + list), QStringLiteral("[('oval', '#8000ff00', 0.01)]"));
    QCOMPARE(Value("[torvalen.undo() for i in range(5)]"), QStringLiteral("[True, True, True, True, False]"));
    QCOMPARE(Value("torvalen.annotated_frames()"), QStringLiteral("[]"));
}

void tst_ScriptModule::EveryKindIsDrawn()
{
    OpenSample();
    const char* const calls[] = {
        "draw_pencil([(0, 0), (0.2, 0.1)])",  "draw_line((0, 0), (0.2, 0.1))",
        "draw_arrow((0, 0), (0.2, 0.1))",     "draw_oval((0, 0), (0.2, 0.1))",
        "draw_rectangle((0, 0), (0.2, 0.1))", "draw_text((0, 0), 'Übung', width=0.05)",
        "draw_pencil([(0, 0)], width=0.05)"};
    QTemporaryDir folder;
    const QString grab =
        QStringLiteral("torvalen.wait_until_settled(); torvalen.grab('%1/picture.png')").arg(folder.path());
    QCOMPARE(Value(grab), QString());
    const QImage bare(folder.filePath("picture.png"));
    for (const char* const call : calls)
    {
        QCOMPARE(Value(QStringLiteral("drawn = torvalen.%1\n").arg(QString::fromUtf8(call)) + grab),
                 QString());
        QVERIFY2(QImage(folder.filePath("picture.png")) != bare, call);
        // What the eraser takes away leaves the picture as it was.
        QVERIFY(
            !Value("torvalen.draw_eraser([(x / 40, y / 40) for x in range(-20, 21) for y in range(-12, 13)], "
                   "width=0.1)\n" +
                   grab)
                 .startsWith("failed"));
        QVERIFY2(QImage(folder.filePath("picture.png")) == bare, call);
        Value("torvalen.clear_annotations()");
    }
}

void tst_ScriptModule::DrawingElsewhereLeavesThePlayhead()
{
    OpenSample();
    QCOMPARE(Value("torvalen.seek(5); torvalen.draw_line((0, 0), (1, 1), frame=40); torvalen.frame()"),
             QStringLiteral("5"));
    // Undo takes the user to what it changes.
    QCOMPARE(Value("torvalen.undo(); torvalen.frame()"), QStringLiteral("40"));
}

void tst_ScriptModule::AMovieIsExported()
{
    OpenSample();
    QTemporaryDir folder;
    QCOMPARE(Value(QStringLiteral("torvalen.range(11, 30)\n"
                                  "torvalen.draw_rectangle((-0.5, -0.3), (0.5, 0.3), color='red', frame=15)\n"
                                  "torvalen.export('%1/range.mp4', preset='ultrafast')\n"
                                  "torvalen.export('%1/part.mp4', 5, 9, size=(160, 90), annotations=False, "
                                  "quality='low', preset='ultrafast', profile='baseline')\n"
                                  "again = torvalen.open('%1/range.mp4', 'B')\n"
                                  "part = torvalen.open('%1/part.mp4', None)\n"
                                  "(again.frames, again.rate, part.frames)")
                       .arg(folder.path())),
             QStringLiteral("(20, 24.0, 5)"));
    // The first frame of the movie is the eleventh of the source.
    QCOMPARE(
        Value(QStringLiteral("torvalen.show(again, 'A'); torvalen.layout('single')\n"
                             "torvalen.active_viewer('A'); torvalen.seek(1); torvalen.wait_until_settled()\n"
                             "torvalen.snapshot('%1/first.png')")
                  .arg(folder.path())),
        QString());
    const QImage first(folder.filePath("first.png"));
    QCOMPARE(first.size(), QSize(320, 180));
    QCOMPARE(NumberedMedia::NumberIn(first), 11);
}

void tst_ScriptModule::AFailedExportSaysWhy()
{
    OpenSample();
    const QString error = Value("torvalen.export('/nowhere/at/all.mp4')");
    QVERIFY2(error.contains("RuntimeError: ") && error.contains("/nowhere/at"), qPrintable(error));
    Settings::ffmpegExePath = QStringLiteral("/bin/false");
    QTemporaryDir folder;
    const QString encoder = Value(QStringLiteral("torvalen.export('%1/a.mp4')").arg(folder.path()));
    QVERIFY2(encoder.contains("RuntimeError: Error: "), qPrintable(encoder));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_ScriptModule::AStoppedExportLeavesNothing()
{
    OpenSample();
    QTemporaryDir folder;
    // The unfinished movie is a hidden file.
    const auto isEmpty = [&]
    { return QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden); };
    const int number =
        mEngine->Run(QStringLiteral("torvalen.export('%1/a.mp4', size=(3840, 2160), preset='veryslow')")
                         .arg(folder.path()));
    QTRY_VERIFY(!isEmpty());
    mEngine->Stop();
    QCOMPARE(ScriptRun::WaitFor(mEngine, number).outcome, ScriptResult::Outcome::Stopped);
    QTRY_VERIFY(isEmpty());
}

void tst_ScriptModule::StillsAreWritten()
{
    OpenSample();
    QTemporaryDir folder;
    QCOMPARE(
        Value(QStringLiteral("torvalen.draw_rectangle((-0.5, -0.28), (0.5, 0.28), color='red', frame=15, "
                             "width=0.05)\n"
                             "torvalen.snapshot('%1/noted.png', 15)\n"
                             "torvalen.snapshot('%1/bare.png', 15, annotations=False)")
                  .arg(folder.path())),
        QString());
    const QImage bare(folder.filePath("bare.png"));
    QCOMPARE(NumberedMedia::NumberIn(bare), 15);
    QVERIFY(QImage(folder.filePath("noted.png")) != bare);
    const QString there = Value(QStringLiteral("torvalen.snapshot('%1/bare.png', 16)").arg(folder.path()));
    QVERIFY2(there.contains("RuntimeError: ") && there.contains("bare.png"), qPrintable(there));
    QCOMPARE(QImage(folder.filePath("bare.png")), bare);
    QCOMPARE(Value(QStringLiteral("torvalen.snapshot('%1/bare.png', 16, replace=True)").arg(folder.path())),
             QString());
    QVERIFY(QImage(folder.filePath("bare.png")) != bare);
}

void tst_ScriptModule::SettingsAreReadAndChanged()
{
    QCOMPARE(Value("(torvalen.setting('audioScrub'), torvalen.setting('zoomMaximum'), "
                   "torvalen.setting('cacheSize'), torvalen.setting('drawColor'))"),
             QStringLiteral("(True, 8.0, 2048, '#ffff4040')"));
    QCOMPARE(Value("torvalen.set_setting('zoomMaximum', 4)\n"
                   "torvalen.set_setting('drawColor', 'blue')\n"
                   "torvalen.set_setting('ffmpegExePath', '/some/Übung')\n"
                   "torvalen.set_setting('viewerLayout', 2)\n"
                   "torvalen.set_setting('audioScrub', False)"),
             QString());
    QCOMPARE(Settings::zoomMaximum, 4.0f);
    QCOMPARE(Settings::drawColor, QColor(Qt::blue));
    QCOMPARE(Settings::ffmpegExePath, QString::fromUtf8("/some/Übung"));
    QCOMPARE(Settings::audioScrub, false);
    // In force at once.
    QCOMPARE(mWindow->Viewer()->GetViewerLayout(), Vertical);
    QCOMPARE(Value("sorted(torvalen.settings()) == sorted(set(torvalen.settings())) and "
                   "torvalen.settings()['zoomMaximum']"),
             QStringLiteral("4.0"));
    QCOMPARE(Value("len(torvalen.settings())").toInt(), Settings::Names().size());
}

void tst_ScriptModule::BadArgumentsAreNamed_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* call, const char* error)
    { QTest::newRow(call) << QString::fromUtf8(call) << QString::fromUtf8(error); };
    row("run('file.fly')", "ValueError: there is no command \"file.fly\"");
    row("seek(0)", "ValueError: there is no frame 0; the timeline has frames 1 to 60");
    row("seek(61)", "ValueError: there is no frame 61; the timeline has frames 1 to 60");
    row("seek()", "TypeError: seek() takes either a frame or a time");
    row("seek(1, time=2)", "TypeError: seek() takes either a frame or a time");
    row("seek(time=-1)", "ValueError: -1 is no time of the timeline; they are 0 to 2499999");
    row("seek(time=2500000)", "ValueError: 2500000 is no time of the timeline; they are 0 to 2499999");
    row("seek(10 ** 30)", "TypeError: ");
    row("seek('12')", "TypeError: ");
    row("seek(1.5)", "TypeError: ");
    row("play('up')", "ValueError: there is no direction \"up\"");
    row("range(5)", "TypeError: range() takes the first and the last frame, or nothing");
    row("range(9, 5)", "ValueError: the range would end at 5, before it starts at 9");
    row("range(1, 99)", "ValueError: there is no frame 99");
    row("speed(0)", "ValueError: the speed 0 lies outside 0.05 to 16");
    row("speed(float('nan'))", "ValueError: the speed nan lies outside 0.05 to 16");
    row("loop('round')",
        "ValueError: there is no loop \"round\"; they are \"off\", \"loop\" and \"ping-pong\"");
    row("wait_until_settled(-1)", "ValueError: a timeout can't be below 0");
    row("layout('round')", "ValueError: there is no layout \"round\"");
    row("active_viewer('C')", "ValueError: there is no viewer \"C\"; they are \"A\" and \"B\"");
    row("zoom(0.5)", "ValueError: the zoom 0.5 lies outside 1 to 8");
    row("zoom(float('inf'))", "ValueError: the zoom inf lies outside 1 to 8");
    row("pan(2, 0)", "ValueError: the pan (2, 0) lies outside -1 to 1");
    row("pan(1)", "TypeError: pan() takes x and y, or nothing");
    row("window_size(0, 100)", "ValueError: the window can't be 0 pixels; it can be 100 to 16384");
    row("grab('a.png', 'all')", "ValueError: \"all\" can't be grabbed; \"viewers\" and \"window\" can");
    row("open('a.mov', 'C')", "ValueError: there is no viewer \"C\"");
    row("add_bookmark(61)", "ValueError: there is no frame 61; ");
    row("add_bookmark(9, 5)", "ValueError: the bookmark would end at 5, before it starts at 9");
    row("add_bookmark(last=5)", "TypeError: add_bookmark() takes a last frame only with a first one");
    row("add_bookmark(5, note='a')", "ValueError: only the bookmark of a range takes a note");
    row("annotations(0)", "ValueError: there is no frame 0; ");
    row("draw_pencil([])", "ValueError: a drawing needs a point");
    row("draw_pencil([(0, 0, 0)])", "TypeError: ");
    row("draw_line((0, 0), (float('nan'), 1))",
        "ValueError: the point (nan, 1) lies too far from the picture");
    row("draw_line((0, 0), (1, 1), color='loud')",
        "ValueError: \"loud\" is no colour; take a name, \"#RRGGBB\"");
    row("draw_line((0, 0), (1, 1), width=2)", "ValueError: the width 2 lies outside 0.0005 to 1");
    row("draw_text((0, 0), '')", "ValueError: a text that is drawn needs letters");
    row("export('a.mp4', 0)", "ValueError: there is no frame 0; ");
    row("export('a.mp4', 9, 5)", "ValueError: the export would end at 5, before it starts at 9");
    row("export('a.mp4', size=(0, 5))",
        "ValueError: 0 x 5 can't be exported; sides can have 16 to 8192 pixels");
    row("export('a.mp4', quality='best')",
        "ValueError: there is no quality \"best\"; they are \"very high\", \"high\", \"medium\", \"low\"");
    row("export('a.mp4', preset='now')", "ValueError: there is no preset \"now\"; they are \"veryslow\", ");
    row("snapshot('a.png', 61)", "ValueError: there is no frame 61; ");
    row("setting('loudness')", "ValueError: there is no setting \"loudness\"");
    row("set_setting('loudness', 1)", "ValueError: there is no setting \"loudness\"");
    row("set_setting('cacheSize', 1)", "ValueError: cacheSize: 1 lies outside 256 to 65536");
    row("set_setting('cacheSize', None)", "TypeError: cacheSize takes a bool, a number or a text");
    row("set_setting('cacheSize', 2 ** 70)", "RuntimeError: ");
    row("set_setting('cacheSize', [1])", "TypeError: ");
    row("info(5)", "TypeError: ");
}

void tst_ScriptModule::BadArgumentsAreNamed()
{
    QFETCH(QString, call);
    QFETCH(QString, error);
    OpenSample();
    const QString text = Value("torvalen." + call);
    QVERIFY2(text.contains('\n' + error), qPrintable(text));
}

static const TestRegistration<tst_ScriptModule> ScriptModuleRegistration;

#include "tst_ScriptModule.moc"
