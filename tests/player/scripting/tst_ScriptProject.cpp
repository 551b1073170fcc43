// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "project/ElementTimeline.h"
#include "project/Project.h"
#include "scripting/ScriptEngine.h"
#include "scripting/ScriptRun.h"
#include "support/TestRegistry.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"
#include "window/ScriptBinding.h"

#include <QTemporaryDir>
#include <QtTest>

/// What scripts read and change of the project.
class tst_ScriptProject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void TheTreeIsRead();
    void FoldersAndTimelinesAreAdded();
    void ObjectsAreRenamedMovedAndRemoved();
    void MediaBecomeElements();
    void WhatIsForbiddenSaysWhy_data();
    void WhatIsForbiddenSaysWhy();
    void WhatHasGoneSaysSo();
    void TheProjectIsSavedAndOpened();

private:
    QString Value(const QString& text);

    std::unique_ptr<PlayerWindow> mWindow;
    ScriptEngine* mEngine = nullptr;
    Project* mProject = nullptr;
};

void tst_ScriptProject::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    mWindow->show();
    mEngine = mWindow->Scripts()->Engine();
    mProject = mWindow->GetProject();
    QCOMPARE(Value("from torvalen import *\n"
                   "root = project_root()\n"
                   "folders, sources, timelines_bin = root.children"),
             QString());
}

void tst_ScriptProject::cleanup()
{
    mWindow.reset();
}

QString tst_ScriptProject::Value(const QString& text)
{
    const ScriptResult result = ScriptRun::Run(mEngine, text, 60000);
    return result.error.isEmpty() ? result.value : QStringLiteral("failed: ") + result.error;
}

void tst_ScriptProject::TheTreeIsRead()
{
    QCOMPARE(Value("(root.kind, root.parent, [c.kind for c in root.children], [c.parent == root for c in "
                   "root.children])"),
             QStringLiteral("('folder', None, ['folder', 'folder', 'folder'], [True, True, True])"));
    QCOMPARE(Value("default_timeline() in [c for bin in root.children for c in bin.children]"),
             QStringLiteral("True"));
    QCOMPARE(Value("(default_timeline().kind, default_timeline().missing, default_timeline().children)"),
             QStringLiteral("('timeline', False, [])"));
    QCOMPARE(
        Value("find_object(root.id) == root, find_object('nothing'), isinstance(default_timeline(), Object)"),
        QStringLiteral("(True, None, True)"));
}

void tst_ScriptProject::FoldersAndTimelinesAreAdded()
{
    const int steps = mProject->UndoStack()->count();
    QCOMPARE(Value("day = add_folder('Day 1')\n"
                   "inner = add_folder('Inner', day)\n"
                   "first = add_folder('First', day, 0)\n"
                   "cut = add_timeline('Cut')\n"
                   "([c.name for c in day.children], day.kind, cut.kind, cut.frames, inner.parent == day)"),
             QStringLiteral("(['First', 'Inner'], 'folder', 'timeline', 0, True)"));
    QCOMPARE(mProject->UndoStack()->count(), steps + 4);
    QCOMPARE(Value("(default_timeline(cut) == cut, default_timeline().name)"),
             QStringLiteral("(True, 'Cut')"));
    QCOMPARE(mProject->DefaultTimeline()->GetName(), QStringLiteral("Cut"));
    QCOMPARE(Value("[undo() for step in '12345']; (find_object(day.id), find_object(cut.id))"),
             QStringLiteral("(None, None)"));
    QCOMPARE(Value("[redo() for step in '12345']; [c.name for c in day.children]"),
             QStringLiteral("['First', 'Inner']"));
}

void tst_ScriptProject::ObjectsAreRenamedMovedAndRemoved()
{
    QCOMPARE(Value("a, b, c = [add_folder(name) for name in ('a', 'b', 'c')]\n"
                   "a.name = 'Übung'\n"
                   "(a.name, repr(a))"),
             QString::fromUtf8("('Übung', '<torvalen.Object folder: Übung>')"));
    QCOMPARE(Value("(b.move(a), c.move(a, 0), [f.name for f in a.children])"),
             QStringLiteral("(True, True, ['c', 'b'])"));
    QCOMPARE(Value("(move_objects([b, c], folders), [f.name for f in folders.children])"),
             QString::fromUtf8("(True, ['Übung', 'b', 'c'])"));
    QCOMPARE(Value("(b.remove(), [f.name for f in folders.children])"),
             QString::fromUtf8("(True, ['Übung', 'c'])"));
    QCOMPARE(Value("(remove_objects([a, c]), folders.children, undo(), len(folders.children))"),
             QStringLiteral("(True, [], True, 2)"));
}

void tst_ScriptProject::MediaBecomeElements()
{
    const QString other = NumberedMedia::Movie("other.mp4", 12, "24", {"-c:v", "libx264", "-g", "6"});
    QCOMPARE(Value(QStringLiteral(
                       "cut = add_timeline('Cut')\n"
                       "shots = import_media(['%1', '%2'])\n"
                       "([s.kind for s in shots], [s.frames for s in shots], shots == sources.children)")
                       .arg(PlayerProbe::SampleMovie(), other)),
             QStringLiteral("(['source', 'source'], [60, 12], True)"));
    QCOMPARE(
        Value("elements = insert_elements(cut, shots)\n"
              "more = insert_elements(cut, [shots[1], shots[1]], 1)\n"
              "([e.source == s for e, s in zip(cut.children, [shots[0], shots[1], shots[1], shots[1]])], "
              "cut.frames, cut.children == [elements[0], more[0], more[1], elements[1]])"),
        QStringLiteral("([True, True, True, True], 96, True)"));
    QCOMPARE(mProject->Timelines(false).last()->FrameCount(), 96);
    QCOMPARE(Value("more[0].name = 'zz'; more[1].name = '000'\n"
                   "(sort_elements(cut), cut.children[0] == more[1], more[0].kind, shots[0].source)"),
             QStringLiteral("(True, True, 'element', None)"));
    QCOMPARE(Value("(remove_objects([more[0], more[1]]), cut.frames, undo(), cut.frames)"),
             QStringLiteral("(True, 72, True, 96)"));
    // A timeline of elements is shown and reviewed as any other.
    QCOMPARE(Value("show(cut); seek(61); wait_until_settled(); draw_line((0, 0), (0.1, 0.1)); "
                   "add_bookmark(); (frame(), frame_count(), annotated_frames(cut))"),
             QStringLiteral("(61, 96, [61])"));
}

void tst_ScriptProject::WhatIsForbiddenSaysWhy_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* call, const char* error)
    { QTest::newRow(call) << QString::fromUtf8(call) << QString::fromUtf8(error); };
    row("folders.name = 'x'", "RuntimeError: ");
    row("default_timeline().name = ''", "RuntimeError: ");
    row("a = add_folder('a'); b = add_folder('b', a); a.move(b)", "RuntimeError: ");
    row("import_media(['/nowhere/at/all.mov'])", "RuntimeError: ");
    row("insert_elements(default_timeline(), [default_timeline()])", "ValueError: ");
    row("insert_elements(root, [])", "TypeError: ");
    row("add_folder('a', 'b')", "TypeError: ");
    row("save_project()", "ValueError: the project has no file yet: say which");
    row("save_project('/nowhere/at/all.project')", "RuntimeError: ");
    row("open_project('/nowhere/at/all.project')", "RuntimeError: ");
}

void tst_ScriptProject::WhatIsForbiddenSaysWhy()
{
    QFETCH(QString, call);
    QFETCH(QString, error);
    const QString text = Value(call);
    QVERIFY2(text.startsWith("failed: ") && text.contains('\n' + error), qPrintable(text));
    // With a reason behind it.
    QVERIFY2(!text.endsWith(": "), qPrintable(text));
}

void tst_ScriptProject::WhatHasGoneSaysSo()
{
    QCOMPARE(Value("gone = add_folder('gone'); gone.remove(); repr(gone)"),
             QStringLiteral("'<torvalen.Object that has gone>'"));
    for (const char* const use :
         {"gone.name", "gone.children", "gone.remove()", "gone.move(root)", "gone.name = 'x'"})
    {
        const QString text = Value(QString::fromLatin1(use));
        QVERIFY2(text.contains("\nRuntimeError: there is no object "), qPrintable(text));
    }
    QVERIFY(Value("cut = add_timeline(); cut.remove(); cut.frames")
                .contains("\nRuntimeError: there is no timeline "));
}

void tst_ScriptProject::TheProjectIsSavedAndOpened()
{
    QTemporaryDir folder;
    const QString path = folder.filePath("review.torvalen");
    QCOMPARE(Value(QStringLiteral("add_folder('kept'); save_project('%1'); project_path()").arg(path)),
             QStringLiteral("'%1'").arg(path));
    QVERIFY(!mProject->IsModified());
    QCOMPARE(Value("add_folder('later'); save_project(); add_folder('lost'); new_project()\n"
                   "(project_path(), project_root().children[0].children)"),
             QStringLiteral("(None, [])"));
    QCOMPARE(Value(QStringLiteral("open_project('%1')\n[c.name for c in project_root().children[0].children]")
                       .arg(path)),
             QStringLiteral("['kept', 'later']"));
}

static const TestRegistration<tst_ScriptProject> ScriptProjectRegistration;

#include "tst_ScriptProject.moc"
