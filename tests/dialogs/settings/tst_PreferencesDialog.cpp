// SPDX-License-Identifier: MIT
#include "dialogs/settings/PreferencesDialog.h"
#include "host/KeyBindings.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>
#include <vector>

/// Each preference: loaded, changed, applied, and read back from the user's file.
class tst_PreferencesDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Settings::SetUserConfigPath(mConfig); }
    void initTestCase() { mConfig = Settings::UserConfigPath(); }

    void EachPreferenceIsLoadedChangedAppliedAndReadBack_data();
    void EachPreferenceIsLoadedChangedAppliedAndReadBack();
    void AllAreAppliedTogether();
    void NumbersOutOfRangeAreClampedAndWrittenSo_data();
    void NumbersOutOfRangeAreClampedAndWrittenSo();
    void AcceptAndCancelWriteNothing();
    void KeyBindingsAreOnDiskBeforeAnySetting();
    void ConfigurationIsWrittenLast();

private:
    QTemporaryDir mFolder;
    QString mConfig;
};

namespace
{

/// A preference: its control and its setting, each as a value that can be read and written.
struct Preference
{
    const char* control;
    QVariant first;
    QVariant second;
    std::function<QVariant()> get;
    std::function<void(const QVariant&)> set;
};

template<typename Setting>
Preference Row(const char* control, Setting* setting, const QVariant& first, const QVariant& second)
{
    return {control, first, second, [setting] { return QVariant::fromValue(*setting); },
            [setting](const QVariant& value) { *setting = value.value<Setting>(); }};
}

template<typename Choice>
Preference ChoiceRow(const char* control, Choice* setting, int first, int second)
{
    return {control, first, second, [setting] { return QVariant(static_cast<int>(*setting)); },
            [setting](const QVariant& value) { *setting = static_cast<Choice>(value.toInt()); }};
}

Preference InverseRow(const char* control, bool* setting, bool first)
{
    return {control, first, !first, [setting] { return QVariant(!*setting); },
            [setting](const QVariant& value) { *setting = !value.toBool(); }};
}

std::vector<Preference> Preferences()
{
    using S = Settings;
    std::vector<Preference> rows = {
        Row("tempDirLE", &S::tempDirPath, "/first one", "/second, one"),
        Row("cacheSizeSB", &S::cacheSize, 300, 20000),
        Row("numRecentFilesSB", &S::numRecentFiles, 0, 20),
        Row("numRecentProjectsSB", &S::numRecentProjects, 3, 19),
        Row("sourceRootDirLE", &S::globalSourceRootDirectory, "", "/root/[PROJECT_DIR]"),
        Row("imageSeqFrameRateSpinBox", &S::globalImageSequenceFrameRate, 23.976, 59.94),
        Row("ffmpegPathLE", &S::ffmpegExePath, "/usr/bin/ffmpeg", "C:\\ffmpeg.exe"),
        Row("exportOutputDirLE", &S::defaultExportOutputDirPath, "", "/out\u00e9"),
        Row("exportTempDirLE", &S::tempExportDirPath, "/a", ""),
        Row("exportDimensionsWidthSB", &S::globalExportWidth, 240, 4096),
        Row("exportDimensionsHeightSB", &S::globalExportHeight, 4095, 241),
        ChoiceRow("exportProfileCmb", &S::exportProfile, 2, 1),
        ChoiceRow("exportQualityCmb", &S::exportQuality, 3, 0),
        ChoiceRow("exportPresetCmb", &S::exportPreset, 8, 5),
        Row("portSB", &S::cmdPort, 17171, 65535),
        InverseRow("addDefaultTimelineCB", &S::emptyProject, true),
        InverseRow("addDefaultTimelineCB", &S::emptyProject, false),
    };
    const struct
    {
        const char* control;
        bool* setting;
    } switches[] = {
        {"openMediaInNewPlayersCB", &S::openMediaInNewPlayers},
        {"resizeToFitCB", &S::resizeToFit},
        {"continuePlayingAfterSeekCB", &S::continuePlayingAfterSeek},
        {"endlessMouseScrubCB", &S::endlessMouseScurb},
        {"panZoomMouseControlsCB", &S::panZoomMouseControls},
        {"highlightActiveElementCB", &S::highlightActiveElementInDetailsView},
        {"linkProjectViewAndDetailsViewVisiblity", &S::linkProjectViewAndDetailsViewVisibility},
        {"doubleClickTogglesPlaybackCB", &S::doubleClickTogglesPlayback},
        {"displayConfirmationOnCloseCB", &S::displayConfirmationOnClose},
        {"alwaysActivateDefaultTimelineCB", &S::alwaysActivateDefaultTimeline},
        {"disablePanZoomOnProjectLoadCB", &S::disablePanZoomOnProjectLoad},
        {"exportResolveRelativeOutputPathsCB", &S::resolveRelativeExportOutputPaths},
        {"exportAnnotationsCB", &S::exportAnnotations},
        {"exportViewerLayoutCB", &S::exportViewerLayout},
        {"exportIgnoreRangeCB", &S::exportIgnoreRange},
        {"hardwareAcceleratedPlaybackCB", &S::hardwareAcceleratedPlayback},
        {"highQualityRenderingCB", &S::highQualityRendering},
        {"highDpiScalingCB", &S::highDpiScaling},
    };
    for (const auto& row : switches)
    {
        rows.push_back(Row(row.control, row.setting, false, true));
        rows.push_back(Row(row.control, row.setting, true, false));
    }
    return rows;
}

QVariant ControlValue(const QDialog& dialog, const char* name)
{
    QObject* const control = dialog.findChild<QWidget*>(QLatin1String(name));
    if (const auto* box = qobject_cast<QCheckBox*>(control))
        return box->isChecked();
    if (const auto* edit = qobject_cast<QLineEdit*>(control))
        return edit->text();
    if (const auto* box = qobject_cast<QSpinBox*>(control))
        return box->value();
    if (const auto* box = qobject_cast<QDoubleSpinBox*>(control))
        return box->value();
    if (const auto* combo = qobject_cast<QComboBox*>(control))
        return combo->currentIndex();
    qFatal("there is no %s", name);
}

void SetControlValue(const QDialog& dialog, const char* name, const QVariant& value)
{
    QObject* const control = dialog.findChild<QWidget*>(QLatin1String(name));
    if (auto* const box = qobject_cast<QCheckBox*>(control))
        box->setChecked(value.toBool());
    else if (auto* const edit = qobject_cast<QLineEdit*>(control))
        edit->setText(value.toString());
    else if (auto* const spin = qobject_cast<QSpinBox*>(control))
        spin->setValue(value.toInt());
    else if (auto* const real = qobject_cast<QDoubleSpinBox*>(control))
        real->setValue(value.toDouble());
    else if (auto* const combo = qobject_cast<QComboBox*>(control))
        combo->setCurrentIndex(value.toInt());
}

/// Calls @p seen when an error is logged, as long as it lives.
class OnError : public QObject
{
public:
    explicit OnError(const std::function<void()>& seen)
    {
        connect(Logger::GetInstance(), &Logger::ErrorLogged, this, [seen](const QString&) { seen(); });
    }
};

} // namespace

void tst_PreferencesDialog::init()
{
    Settings::RestoreDefaults();
    Settings::SetUserConfigPath(mFolder.filePath("torvalen.ini"));
    QFile::remove(mFolder.filePath("torvalen.ini"));
}

void tst_PreferencesDialog::EachPreferenceIsLoadedChangedAppliedAndReadBack_data()
{
    QTest::addColumn<int>("index");
    const std::vector<Preference> rows = Preferences();
    for (size_t i = 0; i < rows.size(); ++i)
        QTest::addRow("%s: %s", rows[i].control, qPrintable(rows[i].first.toString())) << static_cast<int>(i);
}

void tst_PreferencesDialog::EachPreferenceIsLoadedChangedAppliedAndReadBack()
{
    QFETCH(int, index);
    const Preference row = Preferences()[static_cast<size_t>(index)];
    row.set(row.first);
    PreferencesDialog dialog(QString(), nullptr, nullptr);
    QCOMPARE(ControlValue(dialog, row.control), row.first);
    SetControlValue(dialog, row.control, row.second);
    QCOMPARE(ControlValue(dialog, row.control), row.second);
    QCOMPARE(row.get(), row.first);
    dialog.Apply();
    QCOMPARE(row.get(), row.second);
    Settings::RestoreDefaults();
    row.set(row.first);
    QVERIFY(Settings::ReadUserConfig());
    QCOMPARE(row.get(), row.second);
}

void tst_PreferencesDialog::AllAreAppliedTogether()
{
    const std::vector<Preference> rows = Preferences();
    PreferencesDialog dialog(QString(), nullptr, nullptr);
    for (const Preference& row : rows)
        SetControlValue(dialog, row.control, row.second);
    dialog.Apply();
    QSet<QString> seen;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
    {
        // The last row of a control is the one in force.
        if (seen.contains(row->control))
            continue;
        seen << row->control;
        QCOMPARE(row->get(), row->second);
    }
    QCOMPARE(seen.size(), 34);
}

void tst_PreferencesDialog::NumbersOutOfRangeAreClampedAndWrittenSo_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QVariant>("written");
    const int least = Settings::MINIMUM_CACHE_SIZE;
    const int most = Settings::MAXIMUM_CACHE_SIZE;
    QTest::newRow("cache below") << QByteArray("cacheSizeSB") << QVariant(least - 1) << QVariant(least);
    QTest::newRow("cache above") << QByteArray("cacheSizeSB") << QVariant(most + 1) << QVariant(most);
    QTest::newRow("files below") << QByteArray("numRecentFilesSB") << QVariant(-4)
                                 << QVariant(Settings::MINIMUM_RECENT_FILES);
    QTest::newRow("projects above") << QByteArray("numRecentProjectsSB") << QVariant(1000)
                                    << QVariant(Settings::MAXIMUM_RECENT_FILES);
    QTest::newRow("frame rate") << QByteArray("imageSeqFrameRateSpinBox") << QVariant(0.25) << QVariant(1.0);
    QTest::newRow("width") << QByteArray("exportDimensionsWidthSB") << QVariant(100) << QVariant(240);
    QTest::newRow("height") << QByteArray("exportDimensionsHeightSB") << QVariant(9999) << QVariant(4096);
    QTest::newRow("port") << QByteArray("portSB") << QVariant(70000) << QVariant(65535);
    QTest::newRow("no such profile") << QByteArray("exportProfileCmb") << QVariant(3) << QVariant(0);
}

void tst_PreferencesDialog::NumbersOutOfRangeAreClampedAndWrittenSo()
{
    QFETCH(QByteArray, control);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, written);
    for (const Preference& row : Preferences())
    {
        if (control != row.control)
            continue;
        row.set(stored);
        PreferencesDialog dialog(QString(), nullptr, nullptr);
        QCOMPARE(row.get(), stored);
        dialog.Apply();
        QCOMPARE(row.get(), written);
    }
}

void tst_PreferencesDialog::AcceptAndCancelWriteNothing()
{
    for (const char* button : {"okButton", "cancelButton"})
    {
        PreferencesDialog dialog(QString(), nullptr, nullptr);
        QSignalSpy finished(&dialog, SIGNAL(finished(int)));
        dialog.show();
        SetControlValue(dialog, "cacheSizeSB", 777);
        dialog.findChild<QPushButton*>(QLatin1String(button))->click();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), QByteArray("okButton") == button ? 1 : 0);
        QVERIFY(Settings::cacheSize != 777);
        QVERIFY(!QFile::exists(Settings::UserConfigPath()));
        // The settings are read once.
        Settings::numRecentFiles = 7;
        QVERIFY(ControlValue(dialog, "numRecentFilesSB") != QVariant(7));
        Settings::RestoreDefaults();
    }
}

void tst_PreferencesDialog::KeyBindingsAreOnDiskBeforeAnySetting()
{
    KeyBindings bindings({new KeySequence{1, {}, {QKeySequence(Qt::Key_A)}, "a", "A", nullptr, false}});
    // A folder in the file's place: writing fails, and says so at that moment.
    bindings.SetUserKeyBindingsPath(mFolder.path());
    PreferencesDialog dialog(QString(), &bindings, nullptr);
    const int former = Settings::cacheSize;
    for (const Preference& row : Preferences())
        SetControlValue(dialog, row.control, row.second);
    int errors = 0;
    bool wasUntouched = true;
    const OnError onError(
        [&]
        {
            ++errors;
            wasUntouched = wasUntouched && Settings::cacheSize == former &&
                           Settings::tempDirPath == QDir::tempPath() && !Settings::openMediaInNewPlayers;
        });
    dialog.Apply();
    QCOMPARE(errors, 1);
    QVERIFY(wasUntouched);
    QCOMPARE(Settings::cacheSize, 20000);
}

void tst_PreferencesDialog::ConfigurationIsWrittenLast()
{
    Settings::SetUserConfigPath(mFolder.path());
    PreferencesDialog dialog(QString(), nullptr, nullptr);
    for (const Preference& row : Preferences())
        SetControlValue(dialog, row.control, row.second);
    const bool dpi = ControlValue(dialog, "highDpiScalingCB").toBool();
    Settings::highDpiScaling = !dpi;
    int errors = 0;
    bool isDone = true;
    const OnError onError(
        [&]
        {
            ++errors;
            isDone = isDone && Settings::highDpiScaling == dpi && Settings::cacheSize == 20000 &&
                     Settings::cmdPort == 65535;
        });
    dialog.Apply();
    QVERIFY(errors > 0);
    QVERIFY(isDone);
}

static const TestRegistration<tst_PreferencesDialog> PreferencesDialogRegistration;

#include "tst_PreferencesDialog.moc"
