// SPDX-License-Identifier: MIT
#include "dialogs/output/SnapshotDialog.h"
#include "support/ModalScript.h"
#include "support/TestRegistry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <cstring>

class tst_SnapshotDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void WindowIsAsTold();
    void FormIsAsTold();
    void RowsStandInOrder_data();
    void RowsStandInOrder();
    void ControlsStartAsTold();
    void ValuesGoInAndOut();
    void NumberingOfAnUnknownKindIsSequence();
    void PaddingIsClamped_data();
    void PaddingIsClamped();
    void EveryRowShowsUntilATypeIsSet();
    void SingleFrameHidesWhatCounts_data();
    void SingleFrameHidesWhatCounts();
    void HiddenControlsKeepTheirValues();
    void AcceptChecksInOrder_data();
    void AcceptChecksInOrder();
    void ButtonsCloseTheDialog();
    void FocusRestsOnTheLabel();
    void BrowsingStartsAtTheEnteredDirectory();
    void CancelledBrowsingChangesNothing();

private:
    template<typename Type>
    Type* Find(const char* name) const
    {
        Type* const found = mDialog->findChild<Type*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }

    QTemporaryDir mDir;
    std::unique_ptr<SnapshotDialog> mDialog;
    std::unique_ptr<ModalScript> mModals;
};

void tst_SnapshotDialog::init()
{
    mDialog = std::make_unique<SnapshotDialog>(nullptr);
    mModals = std::make_unique<ModalScript>(mDialog.get());
}

void tst_SnapshotDialog::cleanup()
{
    QVERIFY(mModals->Take().isEmpty());
    mModals.reset();
    mDialog.reset();
}

void tst_SnapshotDialog::WindowIsAsTold()
{
    QCOMPARE(mDialog->windowTitle(), QStringLiteral("Advanced Snapshot"));
    QCOMPARE(mDialog->objectName(), QStringLiteral("SnapshotDialog"));
    QCOMPARE(mDialog->size(), QSize(468, 279));
    QVERIFY(!(mDialog->windowFlags() & Qt::WindowContextHelpButtonHint));
}

void tst_SnapshotDialog::FormIsAsTold()
{
    const auto* const layout = Find<QVBoxLayout>("verticalLayout_3");
    QCOMPARE(mDialog->layout(), layout);
    QCOMPARE(layout->count(), 4);
    QCOMPARE(layout->itemAt(0)->widget(), Find<QGroupBox>("groupBox"));
    QCOMPARE(layout->itemAt(1)->widget(), Find<QGroupBox>("groupBox_2"));
    QCOMPARE(layout->itemAt(2)->spacerItem()->sizeHint(), QSize(20, 11));
    QCOMPARE(layout->itemAt(2)->expandingDirections(), Qt::Vertical);
    const auto* const foot = Find<QHBoxLayout>("horizontalLayout_3");
    QCOMPARE(layout->itemAt(3)->layout(), foot);
    QCOMPARE(foot->itemAt(0)->spacerItem()->sizeHint(), QSize(40, 20));
    QCOMPARE(foot->itemAt(1)->widget(), Find<QPushButton>("okButton"));
    QCOMPARE(foot->itemAt(2)->widget(), Find<QPushButton>("cancelButton"));
    QCOMPARE(Find<QGroupBox>("groupBox")->title(), QStringLiteral("Output"));
    QCOMPARE(Find<QGroupBox>("groupBox_2")->title(), QStringLiteral("Options"));
    QCOMPARE(Find<QGroupBox>("groupBox")->layout(), Find<QVBoxLayout>("verticalLayout"));
    QCOMPARE(Find<QGroupBox>("groupBox_2")->layout(), Find<QVBoxLayout>("verticalLayout_2"));
    QCOMPARE(Find<QVBoxLayout>("verticalLayout")->itemAt(0)->layout(), Find<QFormLayout>("formLayout"));
    QCOMPARE(Find<QVBoxLayout>("verticalLayout_2")->itemAt(0)->layout(), Find<QFormLayout>("formLayout_2"));
}

void tst_SnapshotDialog::RowsStandInOrder_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("directoryLabel") << "formLayout" << 0 << "Directory:"
                                    << "horizontalLayout"
                                    << QStringList{"directoryLineEdit", "directoryBrowseButton"};
    QTest::newRow("nameLabel") << "formLayout" << 1 << "Name:"
                               << "" << QStringList{"nameLineEdit"};
    QTest::newRow("typeLabel") << "formLayout_2" << 0 << "Type:         "
                               << "horizontalLayout_4" << QStringList{"typeComboBox", ""};
    QTest::newRow("numberingLabel") << "formLayout_2" << 1 << "Numbering:"
                                    << "horizontalLayout_5"
                                    << QStringList{"sequenceNumberingRadioButton",
                                                   "frameNumberingRadioButton", ""};
    QTest::newRow("paddingLabel") << "formLayout_2" << 2 << "Padding:"
                                  << "horizontalLayout_2" << QStringList{"paddingSpinBox", ""};
    QTest::newRow("overwriteLabel") << "formLayout_2" << 3 << "Overwrite:"
                                    << "" << QStringList{"overwriteCheckBox"};
}

void tst_SnapshotDialog::RowsStandInOrder()
{
    QFETCH(QString, form);
    QFETCH(int, row);
    QFETCH(QString, layout);
    const auto* const label = Find<QLabel>(QTest::currentDataTag());
    QTEST(label->text(), "text");
    auto* const rows = mDialog->findChild<QFormLayout*>(form);
    QCOMPARE(rows->itemAt(row, QFormLayout::LabelRole)->widget(), label);
    QLayoutItem* const field = rows->itemAt(row, QFormLayout::FieldRole);
    QStringList fields;
    if (layout.isEmpty())
        fields << field->widget()->objectName();
    else
    {
        QCOMPARE(field->layout()->objectName(), layout);
        for (int index = 0; index < field->layout()->count(); ++index)
        {
            QLayoutItem* const item = field->layout()->itemAt(index);
            fields << (item->widget() ? item->widget()->objectName() : QString());
            if (item->spacerItem())
            {
                QCOMPARE(item->sizeHint(), QSize(40, 20));
                QCOMPARE(item->expandingDirections(), Qt::Horizontal);
            }
        }
    }
    QTEST(fields, "fields");
}

void tst_SnapshotDialog::ControlsStartAsTold()
{
    QCOMPARE(Find<QLabel>("nameLabel")->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(Find<QPushButton>("directoryBrowseButton")->text(), QStringLiteral("Browse..."));
    QCOMPARE(Find<QPushButton>("okButton")->text(), QStringLiteral("OK"));
    QCOMPARE(Find<QPushButton>("cancelButton")->text(), QStringLiteral("Cancel"));
    for (const QPushButton* const button : mDialog->findChildren<QPushButton*>())
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    const auto* const types = Find<QComboBox>("typeComboBox");
    QStringList texts;
    for (int row = 0; row < types->count(); ++row)
        texts << types->itemText(row);
    QCOMPARE(texts, QStringList({"Single Frame", "All Frames", "All Frames in Range", "Bookmarks",
                                 "Bookmarks in Range"}));
    QCOMPARE(Find<QRadioButton>("sequenceNumberingRadioButton")->text(), QStringLiteral("Sequence"));
    QCOMPARE(Find<QRadioButton>("frameNumberingRadioButton")->text(), QStringLiteral("Frame"));
    QVERIFY(Find<QRadioButton>("sequenceNumberingRadioButton")->isChecked());
    const auto* const padding = Find<QSpinBox>("paddingSpinBox");
    QCOMPARE(padding->minimum(), 1);
    QCOMPARE(padding->maximum(), 6);
    QCOMPARE(padding->value(), 4);
    QCOMPARE(padding->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QCOMPARE(padding->buttonSymbols(), QAbstractSpinBox::NoButtons);
    QVERIFY(Find<QCheckBox>("overwriteCheckBox")->isChecked());
    QVERIFY(Find<QCheckBox>("overwriteCheckBox")->text().isEmpty());
    QCOMPARE(mDialog->GetType(), SnapshotSingleFrame);
    QCOMPARE(mDialog->GetNumbering(), SnapshotNumberingSequence);
    QVERIFY(mDialog->GetDirectoryPath().isEmpty());
    QVERIFY(mDialog->GetName().isEmpty());
}

void tst_SnapshotDialog::ValuesGoInAndOut()
{
    mDialog->SetDirectoryPath(" /a dir");
    QCOMPARE(mDialog->GetDirectoryPath(), QStringLiteral(" /a dir"));
    QCOMPARE(Find<QLineEdit>("directoryLineEdit")->text(), QStringLiteral(" /a dir"));
    mDialog->SetName("shot.jpg");
    QCOMPARE(mDialog->GetName(), QStringLiteral("shot.jpg"));
    QCOMPARE(Find<QLineEdit>("nameLineEdit")->text(), QStringLiteral("shot.jpg"));
    for (int type = 0; type < 5; ++type)
    {
        mDialog->SetType(static_cast<SnapshotType>(type));
        QCOMPARE(int(mDialog->GetType()), type);
        QCOMPARE(Find<QComboBox>("typeComboBox")->currentIndex(), type);
    }
    for (const SnapshotNumbering numbering :
         {SnapshotNumberingFrame, SnapshotNumberingSequence, SnapshotNumberingFrame})
    {
        mDialog->SetNumbering(numbering);
        QCOMPARE(mDialog->GetNumbering(), numbering);
    }
    for (const bool on : {false, true, false})
    {
        mDialog->SetOverwriteEnabled(on);
        QCOMPARE(mDialog->IsOverwriteEnabled(), on);
    }
}

void tst_SnapshotDialog::NumberingOfAnUnknownKindIsSequence()
{
    for (const int value : {-1, 2, 3})
    {
        mDialog->SetNumbering(SnapshotNumberingFrame);
        SnapshotNumbering numbering;
        std::memcpy(&numbering, &value, sizeof(numbering));
        mDialog->SetNumbering(numbering);
        QVERIFY(Find<QRadioButton>("sequenceNumberingRadioButton")->isChecked());
        QCOMPARE(mDialog->GetNumbering(), SnapshotNumberingSequence);
    }
}

void tst_SnapshotDialog::PaddingIsClamped_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("padding");
    QTest::newRow("within") << 2 << 2;
    QTest::newRow("above") << 9 << 6;
    QTest::newRow("none") << 0 << 1;
}

void tst_SnapshotDialog::PaddingIsClamped()
{
    QFETCH(int, asked);
    mDialog->SetPadding(asked);
    QTEST(mDialog->GetPadding(), "padding");
}

namespace
{

const QStringList SeriesWidgets = {"numberingLabel",
                                   "frameNumberingRadioButton",
                                   "sequenceNumberingRadioButton",
                                   "paddingLabel",
                                   "paddingSpinBox",
                                   "overwriteLabel",
                                   "overwriteCheckBox"};

QStringList HiddenWidgets(const QWidget& dialog)
{
    QStringList hidden;
    for (const QWidget* const widget : dialog.findChildren<QWidget*>())
    {
        // Parts of the controls themselves hide as they like.
        const bool isOfForm =
            widget->parentWidget() == &dialog || qobject_cast<const QGroupBox*>(widget->parentWidget());
        if (isOfForm && widget->isHidden())
            hidden << widget->objectName();
    }
    hidden.sort();
    return hidden;
}

} // namespace

void tst_SnapshotDialog::EveryRowShowsUntilATypeIsSet()
{
    mDialog->show();
    QVERIFY(HiddenWidgets(*mDialog).isEmpty());
    // The row that is chosen already hides as well.
    mDialog->SetType(SnapshotSingleFrame);
    QStringList expected = SeriesWidgets;
    expected.sort();
    QCOMPARE(HiddenWidgets(*mDialog), expected);
}

void tst_SnapshotDialog::SingleFrameHidesWhatCounts_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("isHidden");
    for (int type = 0; type < 5; ++type)
        QTest::addRow("%d", type) << type << (type == 0);
}

void tst_SnapshotDialog::SingleFrameHidesWhatCounts()
{
    QFETCH(int, type);
    QFETCH(bool, isHidden);
    QStringList expected = isHidden ? SeriesWidgets : QStringList();
    expected.sort();
    mDialog->SetType(type == 0 ? SnapshotAllFrames : SnapshotSingleFrame);
    // By the user.
    Find<QComboBox>("typeComboBox")->setCurrentIndex(type);
    QCOMPARE(HiddenWidgets(*mDialog), expected);
    // And by the host.
    mDialog->SetType(type == 0 ? SnapshotAllFrames : SnapshotSingleFrame);
    mDialog->SetType(static_cast<SnapshotType>(type));
    QCOMPARE(HiddenWidgets(*mDialog), expected);
}

void tst_SnapshotDialog::HiddenControlsKeepTheirValues()
{
    mDialog->SetNumbering(SnapshotNumberingFrame);
    mDialog->SetPadding(6);
    mDialog->SetOverwriteEnabled(false);
    mDialog->SetType(SnapshotSingleFrame);
    QCOMPARE(mDialog->GetNumbering(), SnapshotNumberingFrame);
    QCOMPARE(mDialog->GetPadding(), 6);
    QVERIFY(!mDialog->IsOverwriteEnabled());
}

void tst_SnapshotDialog::AcceptChecksInOrder_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("box");
    const QString noDirectory = QStringLiteral("warning|Invalid Path|The output directory is not set.|OK");
    QTest::newRow("both empty") << ""
                                << "" << noDirectory;
    QTest::newRow("no directory") << ""
                                  << "name" << noDirectory;
    QTest::newRow("no name") << "/dir"
                             << ""
                             << "warning|Invalid Name|The output name is not set.|OK";
    QTest::newRow("blanks") << " "
                            << " "
                            << "";
    QTest::newRow("missing directory") << "/no such directory"
                                       << "a/b"
                                       << "";
}

void tst_SnapshotDialog::AcceptChecksInOrder()
{
    QFETCH(QString, directory);
    QFETCH(QString, name);
    QFETCH(QString, box);
    mDialog->SetDirectoryPath(directory);
    mDialog->SetName(name);
    mDialog->show();
    if (!box.isEmpty())
        mModals->Answer(QMessageBox::Ok);
    Find<QPushButton>("okButton")->click();
    QCOMPARE(mModals->Take(), box.isEmpty() ? QStringList() : QStringList{box});
    QCOMPARE(mDialog->isVisible(), !box.isEmpty());
    QCOMPARE(mDialog->result(), box.isEmpty() ? int(QDialog::Accepted) : 0);
    QCOMPARE(mDialog->GetDirectoryPath(), directory);
    QCOMPARE(mDialog->GetName(), name);
}

void tst_SnapshotDialog::ButtonsCloseTheDialog()
{
    mDialog->show();
    Find<QPushButton>("cancelButton")->click();
    QVERIFY(!mDialog->isVisible());
    QCOMPARE(mDialog->result(), int(QDialog::Rejected));
}

void tst_SnapshotDialog::FocusRestsOnTheLabel()
{
    for (int show = 0; show < 2; ++show)
    {
        mDialog->show();
        mDialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(mDialog.get()));
        QCOMPARE(mDialog->focusWidget(), Find<QLabel>("directoryLabel"));
        Find<QLineEdit>("nameLineEdit")->setFocus();
        mDialog->hide();
    }
}

void tst_SnapshotDialog::BrowsingStartsAtTheEnteredDirectory()
{
    const QDir dir(mDir.path());
    for (const char* const name : {"last", "shots/one", "shots/two"})
        QVERIFY(dir.mkpath(QLatin1String(name)));
    bool dirsOnly = false;
    const auto pick = [&](const QString& path)
    {
        mModals->Browse(
            [&, path](QFileDialog* browser)
            {
                dirsOnly = browser->testOption(QFileDialog::ShowDirsOnly);
                browser->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
                QMetaObject::invokeMethod(browser, "accept");
            });
        Find<QPushButton>("directoryBrowseButton")->click();
    };
    mDialog->SetLastSnapshotDirectory(dir.filePath("last"));
    pick(dir.filePath("shots/one"));
    QCOMPARE(mModals->Take(), QStringList{"file|Snapshot Directory|" + dir.filePath("last")});
    QVERIFY(dirsOnly);
    QCOMPARE(mDialog->GetDirectoryPath(), dir.filePath("shots/one"));

    pick(dir.filePath("shots/two"));
    QCOMPARE(mModals->Take(), QStringList{"file|Snapshot Directory|" + dir.filePath("shots/one")});
    QCOMPARE(mDialog->GetDirectoryPath(), dir.filePath("shots/two"));

    // With the edit emptied it starts one level above the directory that was picked.
    mDialog->SetDirectoryPath({});
    pick(dir.filePath("shots/one"));
    QCOMPARE(mModals->Take(), QStringList{"file|Snapshot Directory|" + dir.filePath("shots")});
}

void tst_SnapshotDialog::CancelledBrowsingChangesNothing()
{
    const QDir dir(mDir.path());
    QVERIFY(dir.mkpath("here"));
    QVERIFY(dir.mkpath("last"));
    const auto cancel = [](QFileDialog* browser) { browser->reject(); };
    mDialog->SetLastSnapshotDirectory(dir.filePath("last"));
    mDialog->SetDirectoryPath(dir.filePath("here"));
    mModals->Browse(cancel);
    mDialog->SelectOutputDir();
    QCOMPARE(mDialog->GetDirectoryPath(), dir.filePath("here"));
    mDialog->SetDirectoryPath({});
    mModals->Browse(cancel);
    mDialog->SelectOutputDir();
    QCOMPARE(mModals->Take(), QStringList({"file|Snapshot Directory|" + dir.filePath("here"),
                                           "file|Snapshot Directory|" + dir.filePath("last")}));
    QVERIFY(mDialog->GetDirectoryPath().isEmpty());
}

static const TestRegistration<tst_SnapshotDialog> SnapshotDialogRegistration;

#include "tst_SnapshotDialog.moc"
