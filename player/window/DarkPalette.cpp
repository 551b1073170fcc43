// SPDX-License-Identifier: MIT
#include "window/DarkPalette.h"

#include <QColor>

QPalette DarkPalette()
{
    const QColor window(43, 43, 43);
    const QColor base(30, 30, 30);
    const QColor text(214, 214, 214);
    const QColor faint(122, 122, 122);
    const QColor highlight(62, 108, 168);

    QPalette palette(text, QColor(60, 60, 60), QColor(90, 90, 90), QColor(24, 24, 24), QColor(50, 50, 50),
                     text, Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, QColor(52, 52, 52));
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(120, 170, 235));
    palette.setColor(QPalette::ToolTipBase, QColor(64, 64, 64));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(70, 70, 70));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(150, 150, 150));
    return palette;
}
