// SPDX-License-Identifier: MIT
#include "dialogs/settings/AboutDialog.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextFragment>
#include <QtTest>

class tst_AboutDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void WindowStandsAsTold();
    void LayoutsStandAsTold();
    void TitleKeepsItsMarkup();
    void CreditsStandInTheirOrder();
    void OkAccepts();

private:
    template<typename Child>
    Child* Find(const char* name)
    {
        auto* const child = mDialog.findChild<Child*>(QLatin1String(name));
        if (!child)
            qFatal("there is no %s", name);
        return child;
    }

    AboutDialog mDialog{nullptr};
};

void tst_AboutDialog::WindowStandsAsTold()
{
    QCOMPARE(mDialog.objectName(), QStringLiteral("AboutDialog"));
    QCOMPARE(mDialog.windowTitle(), QStringLiteral("About Torvalen"));
    QVERIFY(!mDialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QVERIFY(mDialog.windowFlags().testFlag(Qt::Dialog));
    QCOMPARE(Find<QLabel>("versionNumberLabel")->text(),
             QString::fromLatin1(Settings::TORVALEN_PRO_VERSION_STRING));
    QCOMPARE(Find<QLabel>("versionLabel")->text(), QStringLiteral("Version: "));
    QCOMPARE(Find<QLabel>("authorLabel")->text(), QStringLiteral("Author: "));
    QCOMPARE(Find<QLabel>("authorLabel_2")->text(), QStringLiteral("Website:"));
    for (const char* name : {"versionLabel", "authorLabel", "authorLabel_2"})
        QCOMPARE(Find<QLabel>(name)->maximumWidth(), 54);
    for (const char* name : {"authorNameLabel", "authorNameLabel_2"})
        QVERIFY(!Find<QLabel>(name)->text().isEmpty());
    QCOMPARE(Find<QPushButton>("okButton")->text(), QStringLiteral("OK"));
    QCOMPARE(Find<QPushButton>("okButton")->minimumSize(), QSize(60, 24));
    QCOMPARE(Find<QTextEdit>("textEdit")->maximumHeight(), 96);
    QVERIFY(Find<QTextEdit>("textEdit")->isReadOnly());
    QCOMPARE(Find<QLabel>("titleLabel")->minimumWidth(), 360);
}

void tst_AboutDialog::LayoutsStandAsTold()
{
    const auto* const layout = qobject_cast<QVBoxLayout*>(mDialog.layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("verticalLayout_2"));
    QCOMPARE(layout->spacing(), 4);
    QCOMPARE(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(layout->sizeConstraint(), QLayout::SetFixedSize);
    QCOMPARE(layout->count(), 4);
    const auto* const top = qobject_cast<QVBoxLayout*>(layout->itemAt(0)->layout());
    QCOMPARE(top->objectName(), QStringLiteral("verticalLayout"));
    QCOMPARE(top->contentsMargins().right(), 0);
    QCOMPARE(top->count(), 4);
    QCOMPARE(top->itemAt(0)->widget(), Find<QLabel>("titleLabel"));
    const char* const rows[3][3] = {{"horizontalLayout", "versionLabel", "versionNumberLabel"},
                                    {"horizontalLayout_2", "authorLabel", "authorNameLabel"},
                                    {"horizontalLayout_3", "authorLabel_2", "authorNameLabel_2"}};
    for (int row = 0; row < 3; ++row)
    {
        const QLayout* const line = top->itemAt(row + 1)->layout();
        QVERIFY(qobject_cast<const QHBoxLayout*>(line));
        QCOMPARE(line->objectName(), QString::fromLatin1(rows[row][0]));
        QCOMPARE(line->count(), 2);
        QCOMPARE(line->itemAt(0)->widget(), Find<QLabel>(rows[row][1]));
        QCOMPARE(line->itemAt(1)->widget(), Find<QLabel>(rows[row][2]));
    }
    const QSpacerItem* const spacer = layout->itemAt(1)->spacerItem();
    QCOMPARE(spacer->sizeHint(), QSize(20, 10));
    QCOMPARE(spacer->expandingDirections(), Qt::Vertical);
    QCOMPARE(layout->itemAt(2)->widget(), Find<QTextEdit>("textEdit"));
    const QLayout* const ok = layout->itemAt(3)->layout();
    QCOMPARE(ok->objectName(), QStringLiteral("okLayout"));
    QCOMPARE(ok->count(), 3);
    QCOMPARE(ok->itemAt(0)->spacerItem()->sizeHint(), QSize(40, 31));
    QCOMPARE(ok->itemAt(0)->expandingDirections(), Qt::Horizontal);
    QCOMPARE(ok->itemAt(1)->widget(), Find<QPushButton>("okButton"));
    QCOMPARE(ok->itemAt(2)->spacerItem()->sizeHint(), QSize(40, 20));
    QCOMPARE(ok->itemAt(2)->expandingDirections(), Qt::Horizontal);
    mDialog.show();
    QCOMPARE(mDialog.minimumSize(), mDialog.maximumSize());
    QCOMPARE(mDialog.size(), layout->sizeHint());
    mDialog.hide();
}

void tst_AboutDialog::TitleKeepsItsMarkup()
{
    QTextDocument title;
    title.setHtml(Find<QLabel>("titleLabel")->text());
    QCOMPARE(title.toPlainText(), QString::fromLatin1(Settings::APPLICATION_TITLE));
    const QTextBlock block = title.firstBlock();
    QCOMPARE(block.blockFormat().topMargin(), 14.0);
    QCOMPARE(block.blockFormat().bottomMargin(), 12.0);
    const QTextCharFormat format = block.begin().fragment().charFormat();
    QCOMPARE(format.fontPointSize(), 12.0);
    // What the reader of rich text makes of 600.
    QCOMPARE(format.fontWeight(), int(QFont::Bold));
    QVERIFY(Find<QLabel>("titleLabel")->text().contains("font-weight:600"));
}

void tst_AboutDialog::CreditsStandInTheirOrder()
{
    const QTextDocument* const credits = Find<QTextEdit>("textEdit")->document();
    QStringList paragraphs;
    bool wasEmpty = false;
    for (QTextBlock block = credits->begin(); block.isValid(); block = block.next())
    {
        QCOMPARE(block.blockFormat().topMargin(), 0.0);
        QCOMPARE(block.blockFormat().bottomMargin(), 0.0);
        QVERIFY(!wasEmpty || !block.text().isEmpty());
        wasEmpty = block.text().isEmpty();
        if (wasEmpty)
            continue;
        paragraphs << block.text();
        for (QTextBlock::iterator each = block.begin(); !each.atEnd(); ++each)
        {
            QCOMPARE(each.fragment().charFormat().fontPointSize(), 8.0);
            QCOMPARE(each.fragment().charFormat().fontFamily(), QStringLiteral("MS Shell Dlg 2"));
        }
    }
    QCOMPARE(paragraphs.first(), QString::fromLatin1(Settings::APPLICATION_TITLE));
    const QStringList last = {"Qt: 5.9.2", "This software uses libraries from Qt project under LGPLv3.",
                              "This software uses libraries from the FFmpeg project under the LGPLv2.1.",
                              "This software uses libraries from PortAudio under the MIT license."};
    QVERIFY2(paragraphs.size() > 5, "the notice is missing");
    QCOMPARE(paragraphs.mid(paragraphs.size() - 4), last);
    QVERIFY(paragraphs.filter("MIT license").size() > 1);
    QVERIFY(credits->toPlainText().contains("\n\n"));
}

void tst_AboutDialog::OkAccepts()
{
    QSignalSpy accepted(&mDialog, SIGNAL(accepted()));
    mDialog.show();
    Find<QPushButton>("okButton")->click();
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!mDialog.isVisible());
}

static const TestRegistration<tst_AboutDialog> AboutDialogRegistration;

#include "tst_AboutDialog.moc"
