// SPDX-License-Identifier: MIT
#include "toolbars/BarProbe.h"

#include "support/InputEvents.h"
#include "support/PictureCompare.h"

#include <QCursor>
#include <QMetaMethod>
#include <QtTest>

BarHost::BarHost(QWidget* bar, const QRect& place)
{
    QCursor::setPos(799, 599);
    setGeometry(60, 150, 460, 420);
    bar->setParent(this);
    bar->setGeometry(place);
    show();
    bar->show();
    // Tests look for what the bar shows; a window that isn't there fails them all.
    if (!QTest::qWaitForWindowExposed(this))
        qWarning("the window was not shown");
}

SignalLog::SignalLog(QObject* object)
{
    const QMetaObject* const meta = object->metaObject();
    for (int index = meta->methodOffset(); index < meta->methodCount(); ++index)
    {
        const QMetaMethod method = meta->method(index);
        if (method.methodType() == QMetaMethod::Signal)
            mSpies.emplace_back(QString::fromLatin1(method.name()),
                                std::make_unique<QSignalSpy>(object, method));
    }
}

QStringList SignalLog::Take()
{
    QStringList taken;
    for (auto& [name, spy] : mSpies)
    {
        while (!spy->isEmpty())
        {
            QStringList arguments;
            for (const QVariant& argument : spy->takeFirst())
                arguments << argument.toString();
            taken << QStringLiteral("%1(%2)").arg(name, arguments.join(QStringLiteral(", ")));
        }
    }
    return taken;
}

FlatButton* BarProbe::Button(const QWidget* bar, const char* name)
{
    return bar->findChild<FlatButton*>(QLatin1String(name));
}

void BarProbe::Click(QWidget* widget, Qt::MouseButton button)
{
    InputEvents::Press(widget, widget->rect().center(), button);
    InputEvents::Release(widget, widget->rect().center(), button);
}

QImage BarProbe::Icon(const char* name, int side, bool isMirrored)
{
    const QImage image(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)));
    return image.mirrored(isMirrored, false)
        .scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QByteArray BarProbe::PictureDiffers(const FlatButton* button, const QImage& expected)
{
    if (button == nullptr)
        return "there is no such button";
    return PictureDifference(button->pixmap(Qt::ReturnByValue).toImage(), expected, 1);
}
