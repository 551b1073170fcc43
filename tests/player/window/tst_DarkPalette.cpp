// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"
#include "window/DarkPalette.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

/// The player's colours can be read.
class tst_DarkPalette : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TextStandsOutFromItsGround_data();
    void TextStandsOutFromItsGround();
    void DisabledTextIsFainterAndLegible();
    void ItIsDark();
};

namespace
{

double LinearChannel(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color)
{
    return 0.2126 * LinearChannel(color.redF()) + 0.7152 * LinearChannel(color.greenF()) +
           0.0722 * LinearChannel(color.blueF());
}

/// The ratio of contrast of two colours, 1 (none) to 21.
double Contrast(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

struct RolePair
{
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
};

constexpr RolePair RolePairs[] = {
    {QPalette::WindowText, QPalette::Window},      {QPalette::Text, QPalette::Base},
    {QPalette::Text, QPalette::AlternateBase},     {QPalette::ButtonText, QPalette::Button},
    {QPalette::ButtonText, QPalette::Window},      {QPalette::HighlightedText, QPalette::Highlight},
    {QPalette::ToolTipText, QPalette::ToolTipBase}};

} // namespace

void tst_DarkPalette::TextStandsOutFromItsGround_data()
{
    QTest::addColumn<int>("group");
    QTest::newRow("active") << int(QPalette::Active);
    QTest::newRow("inactive") << int(QPalette::Inactive);
}

void tst_DarkPalette::TextStandsOutFromItsGround()
{
    QFETCH(int, group);
    const QPalette palette = DarkPalette();
    const auto colorGroup = static_cast<QPalette::ColorGroup>(group);
    for (const RolePair& pair : RolePairs)
    {
        const double contrast =
            Contrast(palette.color(colorGroup, pair.text), palette.color(colorGroup, pair.ground));
        QVERIFY2(
            contrast >= 4.5,
            qPrintable(QStringLiteral("roles %1 on %2: %3").arg(pair.text).arg(pair.ground).arg(contrast)));
    }
}

void tst_DarkPalette::DisabledTextIsFainterAndLegible()
{
    const QPalette palette = DarkPalette();
    for (const RolePair& pair : RolePairs)
    {
        if (pair.text == QPalette::ToolTipText)
            continue;
        const double disabled = Contrast(palette.color(QPalette::Disabled, pair.text),
                                         palette.color(QPalette::Disabled, pair.ground));
        const double enabled = Contrast(palette.color(QPalette::Active, pair.text),
                                        palette.color(QPalette::Active, pair.ground));
        const QString pairText =
            QStringLiteral("roles %1 on %2: %3").arg(pair.text).arg(pair.ground).arg(disabled);
        QVERIFY2(disabled >= 2.5, qPrintable(pairText));
        QVERIFY2(disabled < enabled, qPrintable(pairText));
    }
}

void tst_DarkPalette::ItIsDark()
{
    const QPalette palette = DarkPalette();
    for (const QPalette::ColorRole role :
         {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase})
        QVERIFY(palette.color(role).lightness() < 80);
}

static const TestRegistration<tst_DarkPalette> DarkPaletteRegistration;

#include "tst_DarkPalette.moc"
