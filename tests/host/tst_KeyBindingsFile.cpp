// SPDX-License-Identifier: MIT
#include "host/KeyBindings.h"
#include "host/Logger.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace
{

QKeySequence Chord(const char* text)
{
    return QKeySequence(QString::fromLatin1(text), QKeySequence::PortableText);
}

/// Four commands: one with a shortcut, one with two, one without, and one that is permanent.
QList<KeySequence*> Commands()
{
    return {
        new KeySequence{1, {Chord("Space")}, {Chord("Space")}, QStringLiteral("play"), {}, nullptr, false},
        new KeySequence{2,
                        {Chord("Ctrl+O"), Chord("F3")},
                        {Chord("Ctrl+O"), Chord("F3")},
                        QStringLiteral("file.open"),
                        {},
                        nullptr,
                        false},
        new KeySequence{3, {}, {QKeySequence()}, QStringLiteral("take snapshot"), {}, nullptr, false},
        new KeySequence{4, {Chord("Esc")}, {Chord("Esc")}, QStringLiteral("cancel"), {}, nullptr, true},
    };
}

} // namespace

/// What the file of the user's key bindings may hold, and what becomes of it.
class tst_KeyBindingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AMissingFileChangesNothing();
    void ChordsRoundTrip_data();
    void ChordsRoundTrip();
    void EveryKeyRoundTrips();
    void AKeyWithoutANameIsReported();
    void SeveralShortcutsKeepTheirOrder();
    void ACommandWithoutShortcutsKeepsItsPlaceholder();
    void DefaultsAreNotWritten();
    void TheFileReadsAsText();
    void PermanentRecordsAreNeitherWrittenNorRead();
    void RemarksBlanksAndForeignLineEndsAreFine();
    void UnknownCommandsSurvive();
    void ABrokenLineSetsTheFileAside_data();
    void ABrokenLineSetsTheFileAside();
    void ManyBrokenLinesMakeAShortMessage();
    void ANameThatALineCannotHoldIsReported_data();
    void ANameThatALineCannotHoldIsReported();
    void WritingMakesTheDirectory();
    void AnUnwritablePathIsReported();
    void ADirectoryInPlaceOfTheFileIsReported();
    void TheFileLiesInTheUsersConfigurationDirectory();

private:
    QString Path() const { return mDirectory->filePath(QStringLiteral("keys.txt")); }
    QString BackupPath() const { return Path() + QStringLiteral(".bak"); }
    std::unique_ptr<KeyBindings> MakeTable() const;
    void WriteFile(const QByteArray& content) const;
    QByteArray FileContent(const QString& path) const;
    QList<QKeySequence> Shortcuts(KeyBindings& table, int index) const;

    std::unique_ptr<QTemporaryDir> mDirectory;
    std::unique_ptr<QSignalSpy> mErrors;
    std::unique_ptr<QSignalSpy> mWarnings;
};

void tst_KeyBindingsFile::init()
{
    mDirectory = std::make_unique<QTemporaryDir>();
    mErrors = std::make_unique<QSignalSpy>(Logger::GetInstance(), SIGNAL(ErrorLogged(QString)));
    mWarnings = std::make_unique<QSignalSpy>(Logger::GetInstance(), SIGNAL(WarningLogged(QString)));
}

void tst_KeyBindingsFile::cleanup()
{
    mErrors.reset();
    mWarnings.reset();
}

std::unique_ptr<KeyBindings> tst_KeyBindingsFile::MakeTable() const
{
    auto table = std::make_unique<KeyBindings>(Commands());
    table->SetUserKeyBindingsPath(Path());
    return table;
}

void tst_KeyBindingsFile::WriteFile(const QByteArray& content) const
{
    QFile file(Path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QByteArray tst_KeyBindingsFile::FileContent(const QString& path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QList<QKeySequence> tst_KeyBindingsFile::Shortcuts(KeyBindings& table, int index) const
{
    return table.GetKeySequences().at(index)->currentSequences;
}

void tst_KeyBindingsFile::AMissingFileChangesNothing()
{
    const auto table = MakeTable();
    QVERIFY(table->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*table, 0), QList<QKeySequence>{Chord("Space")});
    QVERIFY(mErrors->isEmpty());
    QVERIFY(!QFile::exists(Path()));
}

void tst_KeyBindingsFile::ChordsRoundTrip_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"A",
                             "Ctrl+=",
                             "Ctrl++",
                             "Ctrl+,",
                             ",",
                             ";",
                             "#",
                             "=",
                             "Ctrl+#",
                             "Ctrl+;",
                             "\\",
                             "\"",
                             "[",
                             "Ctrl+%",
                             "Num+5",
                             "Meta+Ctrl+Alt+Shift+F12",
                             "Ctrl+K, Ctrl+S",
                             "Ctrl+K, Ctrl+,",
                             "Ctrl+,, Ctrl+=",
                             "A, B, C, D",
                             "PgUp",
                             "Del",
                             "Backspace",
                             "Shift+Tab",
                             "Media Play",
                             "Back"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void tst_KeyBindingsFile::ChordsRoundTrip()
{
    QFETCH(QString, text);
    const QKeySequence chord(text, QKeySequence::PortableText);
    QCOMPARE(chord.toString(QKeySequence::PortableText), text);
    const auto written = MakeTable();
    written->GetKeySequences().first()->currentSequences = {chord};
    written->WriteUserKeyBindings();
    const auto read = MakeTable();
    QVERIFY(read->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*read, 0), QList<QKeySequence>{chord});
    QCOMPARE(Shortcuts(*read, 1), (QList<QKeySequence>{Chord("Ctrl+O"), Chord("F3")}));
    QVERIFY(mErrors->isEmpty());
    QVERIFY(mWarnings->isEmpty());
}

void tst_KeyBindingsFile::EveryKeyRoundTrips()
{
    QList<QKeySequence> chords;
    const auto add = [&chords](int first, int last)
    {
        for (int key = first; key <= last; ++key)
            chords << QKeySequence(static_cast<int>(Qt::CTRL) | key);
    };
    add(Qt::Key_Space, Qt::Key_QuoteLeft);
    add(Qt::Key_BraceLeft, Qt::Key_AsciiTilde);
    add(Qt::Key_exclamdown, Qt::Key_acute);
    add(Qt::Key_paragraph, Qt::Key_THORN);
    add(Qt::Key_Escape, Qt::Key_Clear);
    add(Qt::Key_Home, Qt::Key_PageDown);
    add(Qt::Key_F1, Qt::Key_F35);
    const auto written = MakeTable();
    written->GetKeySequences().first()->currentSequences = chords;
    written->WriteUserKeyBindings();
    const auto read = MakeTable();
    QVERIFY(read->ReadUserKeyBindings());
    const QList<QKeySequence> back = Shortcuts(*read, 0);
    for (const QKeySequence& chord : qAsConst(chords))
        QVERIFY2(back.contains(chord), qPrintable(chord.toString(QKeySequence::PortableText)));
    QCOMPARE(back.size(), chords.size());
    QVERIFY(mWarnings->isEmpty());
}

void tst_KeyBindingsFile::AKeyWithoutANameIsReported()
{
    const QKeySequence nameless(static_cast<int>(Qt::CTRL) | Qt::Key_unknown);
    const auto written = MakeTable();
    written->GetKeySequences().first()->currentSequences = {Chord("P"), nameless, Chord("Q")};
    written->WriteUserKeyBindings();
    QCOMPARE(mWarnings->size(), 1);
    const QString warning = mWarnings->first().first().toString();
    QVERIFY2(warning.contains(QStringLiteral("\"play\"")), qPrintable(warning));
    const auto read = MakeTable();
    QVERIFY(read->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*read, 0), (QList<QKeySequence>{Chord("P"), Chord("Q")}));
}

void tst_KeyBindingsFile::SeveralShortcutsKeepTheirOrder()
{
    const QList<QKeySequence> chords = {Chord("Z"), Chord("A"), Chord("Ctrl+="), Chord("M")};
    const auto written = MakeTable();
    written->GetKeySequences()[2]->currentSequences = chords;
    written->WriteUserKeyBindings();
    const auto read = MakeTable();
    QVERIFY(read->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*read, 2), chords);
}

void tst_KeyBindingsFile::ACommandWithoutShortcutsKeepsItsPlaceholder()
{
    for (const QList<QKeySequence>& none : {QList<QKeySequence>{QKeySequence()}, QList<QKeySequence>{}})
    {
        const auto written = MakeTable();
        written->GetKeySequences().first()->currentSequences = none;
        written->WriteUserKeyBindings();
        const auto read = MakeTable();
        QVERIFY(read->ReadUserKeyBindings());
        QCOMPARE(Shortcuts(*read, 0), QList<QKeySequence>{QKeySequence()});
        QCOMPARE(Shortcuts(*read, 2), QList<QKeySequence>{QKeySequence()});
    }
}

void tst_KeyBindingsFile::DefaultsAreNotWritten()
{
    const auto table = MakeTable();
    table->GetKeySequences().first()->currentSequences = {Chord("P")};
    table->WriteUserKeyBindings();
    QVERIFY(FileContent(Path()).contains("play"));
    QVERIFY(!FileContent(Path()).contains("file.open"));
    QVERIFY(!FileContent(Path()).contains("take snapshot"));
    table->GetKeySequences().first()->currentSequences = {Chord("Space")};
    table->WriteUserKeyBindings();
    QVERIFY(!FileContent(Path()).contains("play"));
}

void tst_KeyBindingsFile::TheFileReadsAsText()
{
    const auto table = MakeTable();
    table->GetKeySequences()[0]->currentSequences = {Chord("Ctrl+="), Chord("K, L")};
    table->GetKeySequences()[1]->currentSequences = {QKeySequence()};
    table->WriteUserKeyBindings();
    QList<QByteArray> lines;
    for (const QByteArray& line : FileContent(Path()).split('\n'))
    {
        if (!line.startsWith('#'))
            lines << line;
    }
    QCOMPARE(lines, (QList<QByteArray>{"play = Ctrl+=", "play = K, L", "file.open =", ""}));
}

void tst_KeyBindingsFile::PermanentRecordsAreNeitherWrittenNorRead()
{
    const auto table = MakeTable();
    table->GetKeySequences()[3]->currentSequences = {Chord("X")};
    table->WriteUserKeyBindings();
    QVERIFY(!FileContent(Path()).contains("cancel"));
    WriteFile("cancel = Y\n");
    QVERIFY(table->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*table, 3), QList<QKeySequence>{Chord("X")});
}

void tst_KeyBindingsFile::RemarksBlanksAndForeignLineEndsAreFine()
{
    WriteFile(
        "\xef\xbb\xbf# mine\r\n\r\n\t play=P\r\n   # play = Q\r\nfile.open   =   \r\ntake snapshot = Ctrl+=");
    const auto table = MakeTable();
    QVERIFY(table->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*table, 0), QList<QKeySequence>{Chord("P")});
    QCOMPARE(Shortcuts(*table, 1), QList<QKeySequence>{QKeySequence()});
    QCOMPARE(Shortcuts(*table, 2), QList<QKeySequence>{Chord("Ctrl+=")});
    QVERIFY(mErrors->isEmpty());
}

void tst_KeyBindingsFile::UnknownCommandsSurvive()
{
    WriteFile("from the future = Ctrl+T\nplay = P\nPlay = Q\nfrom the future =\n");
    const auto table = MakeTable();
    QVERIFY(table->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*table, 0), QList<QKeySequence>{Chord("P")});
    table->WriteUserKeyBindings();
    // Written twice, they still stand there once.
    table->WriteUserKeyBindings();
    const QByteArray content = FileContent(Path());
    QCOMPARE(content.count("from the future = Ctrl+T\n"), 1);
    QCOMPARE(content.count("from the future =\n"), 1);
    QCOMPARE(content.count("Play = Q\n"), 1);
    QCOMPARE(content.count("\nplay = P\n"), 1);
}

void tst_KeyBindingsFile::ABrokenLineSetsTheFileAside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("place");
    QTest::newRow("no equals sign") << QByteArray("play = P\n\nplay Q\n")
                                    << QStringLiteral("line 3 (\"play Q\")");
    QTest::newRow("no command") << QByteArray("= P\nplay = P\n") << QStringLiteral("line 1 (\"= P\")");
    QTest::newRow("no such key") << QByteArray("play = P\nplay = Ctrl+Nonsense\n")
                                 << QStringLiteral("line 2 (\"play = Ctrl+Nonsense\")");
    QTest::newRow("no such key in a later chord")
        << QByteArray("play = P\nplay = A, Nonsense\n") << QStringLiteral("line 2 (\"play = A, Nonsense\")");
    QTest::newRow("no such key of an unknown command")
        << QByteArray("play = P\nother = Nonsense\n") << QStringLiteral("line 2 (\"other = Nonsense\")");
    QTest::newRow("null bytes behind a good line")
        << QByteArray("play = P\n\0\0\0", 12) << QStringLiteral("line 2 ");
    QTest::newRow("bytes") << QByteArray("\x89PNG\0\0\xff\xfe", 8) << QStringLiteral("line 1 ");
}

void tst_KeyBindingsFile::ABrokenLineSetsTheFileAside()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, place);
    WriteFile(content);
    const auto table = MakeTable();
    QVERIFY(!table->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*table, 0), QList<QKeySequence>{Chord("Space")});
    QVERIFY(!QFile::exists(Path()));
    QCOMPARE(FileContent(BackupPath()), content);
    QCOMPARE(mErrors->size(), 1);
    const QString error = mErrors->first().first().toString();
    QVERIFY2(error.contains(place), qPrintable(error));
    QVERIFY2(error.contains(Path()) && error.contains(BackupPath()), qPrintable(error));

    WriteFile("broken again\n");
    QVERIFY(!table->ReadUserKeyBindings());
    QCOMPARE(FileContent(BackupPath()), content);
    QCOMPARE(FileContent(Path() + QStringLiteral(".bak2")), QByteArray("broken again\n"));
}

void tst_KeyBindingsFile::ManyBrokenLinesMakeAShortMessage()
{
    WriteFile(QByteArray("x\n").repeated(100000));
    QVERIFY(!MakeTable()->ReadUserKeyBindings());
    const QString error = mErrors->first().first().toString();
    QVERIFY2(error.size() < 2000, qPrintable(error.left(2000)));
    QVERIFY2(error.contains(QStringLiteral("line 1 (\"x\")")), qPrintable(error));
    QVERIFY2(error.contains(QStringLiteral("99990 more")), qPrintable(error));
}

void tst_KeyBindingsFile::ANameThatALineCannotHoldIsReported_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"", "#1", "a=b", "two\nlines", " blank before", "blank behind "})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_KeyBindingsFile::ANameThatALineCannotHoldIsReported()
{
    QFETCH(QString, name);
    const auto table = MakeTable();
    table->GetKeySequences()[0]->name = name;
    table->GetKeySequences()[0]->currentSequences = {Chord("P")};
    table->GetKeySequences()[1]->currentSequences = {Chord("Q")};
    table->WriteUserKeyBindings();
    QCOMPARE(mWarnings->size(), 1);
    const QString warning = mWarnings->first().first().toString();
    QVERIFY2(warning.contains(name) && warning.contains(Path()), qPrintable(warning));
    const auto read = MakeTable();
    QVERIFY(read->ReadUserKeyBindings());
    QCOMPARE(Shortcuts(*read, 0), QList<QKeySequence>{Chord("Space")});
    QCOMPARE(Shortcuts(*read, 1), QList<QKeySequence>{Chord("Q")});
}

void tst_KeyBindingsFile::WritingMakesTheDirectory()
{
    const auto table = MakeTable();
    const QString path = mDirectory->filePath(QStringLiteral("a/b/keys.txt"));
    table->SetUserKeyBindingsPath(path);
    table->WriteUserKeyBindings();
    QVERIFY(QFile::exists(path));
    QVERIFY(mErrors->isEmpty());
}

void tst_KeyBindingsFile::AnUnwritablePathIsReported()
{
    // A file stands where a directory is needed: this fails for every user.
    WriteFile("");
    const auto table = MakeTable();
    const QString path = Path() + QStringLiteral("/keys.txt");
    table->SetUserKeyBindingsPath(path);
    table->WriteUserKeyBindings();
    QCOMPARE(mErrors->size(), 1);
    const QString error = mErrors->first().first().toString();
    QVERIFY2(error.contains(path), qPrintable(error));
}

void tst_KeyBindingsFile::ADirectoryInPlaceOfTheFileIsReported()
{
    QVERIFY(QDir().mkpath(Path()));
    const auto table = MakeTable();
    QVERIFY(!table->ReadUserKeyBindings());
    table->WriteUserKeyBindings();
    QVERIFY(QFileInfo(Path()).isDir());
    QCOMPARE(mErrors->size(), 2);
    for (const QList<QVariant>& error : qAsConst(*mErrors))
        QVERIFY2(error.first().toString().contains(Path()), qPrintable(error.first().toString()));
}

void tst_KeyBindingsFile::TheFileLiesInTheUsersConfigurationDirectory()
{
    const auto table = MakeTable();
    table->SetUserKeyBindingsPath(QString());
    const QString path = table->UserKeyBindingsPath();
    QVERIFY2(path.startsWith(qEnvironmentVariable("XDG_CONFIG_HOME") + QLatin1Char('/')), qPrintable(path));
}

static const TestRegistration<tst_KeyBindingsFile> KeyBindingsFileRegistration;

#include "tst_KeyBindingsFile.moc"
