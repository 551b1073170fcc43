// SPDX-License-Identifier: MIT
#include "annotation/TextController.h"

#include "annotation/AnnotationStore.h"
#include "annotation/FullPaint.h"
#include "annotation/TextCaret.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <QClipboard>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

/// Point size of a text for one pixel of its pen width, as the viewers paint it.
constexpr float PointsPerPixel = 4.0f;
constexpr int CaretWidth = 2;
/// Distance of the two points by which a back end's scale is measured.
constexpr int MeasuredPixels = 1000;
/// So long a text may get; a pasted book would hold the viewer up.
constexpr int MaximumLength = 4000;

/// Back end pixels of a viewer's draw space.
struct PixelSpace
{
    PixelSpace(ViewerWidget* viewer, int index)
    {
        const QWidget* const backEnd = BackEndOf(viewer);
        origin = viewer->ToDrawSpace(index, backEnd->mapToGlobal(QPoint(0, 0)));
        const QPointF far = viewer->ToDrawSpace(index, backEnd->mapToGlobal(QPoint(MeasuredPixels, 0)));
        scale = MeasuredPixels / (far.x() - origin.x());
    }

    bool IsValid() const { return std::isfinite(scale) && scale > 0.0; }
    QPointF ToPixel(const QPointF& point) const { return (point - origin) * scale; }

    QPointF origin;
    double scale;
};

bool MayStandInText(QChar letter)
{
    return letter == QLatin1Char('\n') || letter.isPrint() || letter.isSurrogate();
}

/// @p text with its lines ended in one way, and without what shows nothing.
QString Cleaned(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    QString cleaned;
    std::copy_if(text.cbegin(), text.cend(), std::back_inserter(cleaned), MayStandInText);
    return cleaned;
}

bool HasCommandModifier(const QKeyEvent& event)
{
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
}

} // namespace

TextController::TextController(ViewerWidget* viewer, StrokeController* strokes,
                               StrokeController::TargetOf targetOf, QObject* parent)
    : QObject(parent), mViewer(viewer), mStrokes(strokes), mTargetOf(std::move(targetOf))
{
    mCaretWidget = new TextCaret(BackEndOf(viewer));
    connect(viewer, SIGNAL(FocusLost()), this, SLOT(Finish()));
}

TextController::~TextController()
{
    if (IsTyping())
        Settings::textToolActive = false;
}

bool TextController::IsTyping() const
{
    return mTarget.store != nullptr;
}

int TextController::TypingViewer() const
{
    return IsTyping() ? mViewerIndex : -1;
}

int TextController::TypingFrame() const
{
    return mTarget.frame;
}

bool TextController::Press(const QPoint& globalPos)
{
    Finish();
    if (Settings::annotationTool != Text)
        return false;
    const int viewerIndex = mStrokes->ViewerAt(globalPos);
    const StrokeTarget target = mTargetOf(viewerIndex);
    const QPointF point = mViewer->ToDrawSpace(viewerIndex, globalPos);
    if (!target.store || !std::isfinite(point.x()) || !std::isfinite(point.y()))
        return false;

    mTarget = target;
    mViewerIndex = viewerIndex;
    mText.clear();
    mCaret = 0;
    DrawData drawing;
    drawing.id = NextDrawingID();
    drawing.type = DrawText;
    drawing.color = Settings::drawColor;
    drawing.width = Settings::drawWidth;
    // The second point says nothing, but a drawing of one point paints nothing.
    drawing.points = {point, point};
    FrameData& data = mTarget.store->At(mTarget.frame);
    data.drawData.append(drawing);
    data.lastIndex = data.drawData.size() - 1;
    Settings::textToolActive = true;
    mViewer->SetActiveAnnotationViewerIndex(viewerIndex);
    mViewer->installEventFilter(this);
    mViewer->setAttribute(Qt::WA_InputMethodEnabled, true);
    mViewer->setFocus(Qt::MouseFocusReason);
    Q_EMIT mStrokes->OverlayChanged();
    ShowText();
    return true;
}

void TextController::Finish()
{
    if (!IsTyping())
        return;
    const StrokeTarget target = mTarget;
    mTarget = StrokeTarget();
    Settings::textToolActive = false;
    mViewer->removeEventFilter(this);
    mViewer->setAttribute(Qt::WA_InputMethodEnabled, false);
    mCaretWidget->Leave();

    const QList<DrawData> after = target.store->Drawings(target.frame);
    QList<DrawData> before = after;
    before.removeLast();
    if (!mText.trimmed().isEmpty())
    {
        mStrokes->PushChange(tr("Text"), target, before, after);
        return;
    }
    target.store->SetDrawings(target.frame, before);
    Q_EMIT mStrokes->OverlayChanged();
    RequestFullPaint(mViewer, true);
}

void TextController::ShowText()
{
    mTarget.store->At(mTarget.frame).drawData.last().text = mText;
    // Always in full: the overlay that annotations are repainted on holds the text as it was.
    RequestFullPaint(mViewer, true);
    PlaceCaret();
}

void TextController::FollowPicture()
{
    if (!IsTyping())
        return;
    // Where the picture lies the viewer knows once it has painted it.
    PaintFullyNow(mViewer);
    PlaceCaret();
}

void TextController::PlaceCaret()
{
    const QRect place = CaretPlace();
    if (place.isValid())
        mCaretWidget->Stand(place, mTarget.store->At(mTarget.frame).drawData.last().color);
}

QRect TextController::CaretPlace() const
{
    const PixelSpace space(mViewer, mViewerIndex);
    const DrawData& drawing = mTarget.store->At(mTarget.frame).drawData.last();
    const float points = drawing.width * static_cast<float>(space.scale) * PointsPerPixel;
    if (!space.IsValid() || !(points > 0.0f))
        return {};
    QFont font;
    font.setPointSizeF(static_cast<qreal>(points));
    font.setStyleHint(QFont::Helvetica, QFont::PreferDefault);
    // Measured as the overlay measures it, which is a picture and not the screen.
    QImage overlay(1, 1, QImage::Format_ARGB32);
    const QFontMetricsF metrics(font, &overlay);
    const QString before = mText.left(mCaret);
    const int line = before.count(QLatin1Char('\n'));
    const QString lineBefore = before.mid(before.lastIndexOf(QLatin1Char('\n')) + 1);
    const QPointF corner = space.ToPixel(drawing.points.first()) +
                           QPointF(metrics.horizontalAdvance(lineBefore),
                                   line * std::max(metrics.lineSpacing(), metrics.height()));
    return QRect(qRound(corner.x()), qRound(corner.y()), CaretWidth, std::max(qRound(metrics.height()), 1));
}

bool TextController::eventFilter(QObject* watched, QEvent* event)
{
    if (!IsTyping())
        return QObject::eventFilter(watched, event);
    switch (event->type())
    {
    case QEvent::ShortcutOverride:
        // Letters are letters here, and no commands.
        if (TakesKey(*static_cast<QKeyEvent*>(event)))
        {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (TakesKey(*static_cast<QKeyEvent*>(event)))
        {
            PressKey(*static_cast<QKeyEvent*>(event));
            event->accept();
            return true;
        }
        break;
    case QEvent::InputMethod:
        Insert(static_cast<QInputMethodEvent*>(event)->commitString());
        event->accept();
        return true;
    case QEvent::InputMethodQuery:
    {
        auto* const query = static_cast<QInputMethodQueryEvent*>(event);
        const QRect place = CaretPlace();
        query->setValue(Qt::ImEnabled, true);
        query->setValue(Qt::ImCursorRectangle,
                        QRect(BackEndOf(mViewer)->mapTo(mViewer, place.topLeft()), place.size()));
        query->accept();
        return true;
    }
    case QEvent::Resize:
        // Once the viewer has taken its new size.
        QMetaObject::invokeMethod(this, "FollowPicture", Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool TextController::TakesKey(const QKeyEvent& event) const
{
    if (event.matches(QKeySequence::Paste))
        return true;
    if (HasCommandModifier(event))
        return false;
    switch (event.key())
    {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return !Cleaned(event.text()).isEmpty();
    }
}

void TextController::PressKey(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Paste))
    {
        Insert(QGuiApplication::clipboard()->text());
        return;
    }
    switch (event.key())
    {
    case Qt::Key_Escape:
        Finish();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Insert(QStringLiteral("\n"));
        break;
    case Qt::Key_Backspace:
        Erase(Boundary(-1), mCaret);
        break;
    case Qt::Key_Delete:
        Erase(mCaret, Boundary(1));
        break;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        MoveCaret(event.key());
        break;
    default:
        Insert(event.text());
        break;
    }
}

void TextController::Insert(const QString& text)
{
    const QString added = Cleaned(text).left(MaximumLength - mText.size());
    if (added.isEmpty())
        return;
    mText.insert(mCaret, added);
    mCaret += added.size();
    ShowText();
}

void TextController::Erase(int from, int to)
{
    if (from == to)
        return;
    mText.remove(from, to - from);
    mCaret = from;
    ShowText();
}

int TextController::Boundary(int direction) const
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, mText);
    finder.setPosition(mCaret);
    const int boundary = direction > 0 ? finder.toNextBoundary() : finder.toPreviousBoundary();
    return boundary < 0 ? mCaret : boundary;
}

void TextController::MoveCaret(int key)
{
    const int lineStart = mText.leftRef(mCaret).lastIndexOf(QLatin1Char('\n')) + 1;
    const int lineBreak = mText.indexOf(QLatin1Char('\n'), mCaret);
    const int lineEnd = lineBreak < 0 ? mText.size() : lineBreak;
    switch (key)
    {
    case Qt::Key_Left:
        mCaret = Boundary(-1);
        break;
    case Qt::Key_Right:
        mCaret = Boundary(1);
        break;
    case Qt::Key_Home:
        mCaret = lineStart;
        break;
    case Qt::Key_End:
        mCaret = lineEnd;
        break;
    case Qt::Key_Up:
        if (lineStart > 0)
        {
            const int aboveStart = mText.leftRef(lineStart - 1).lastIndexOf(QLatin1Char('\n')) + 1;
            mCaret = std::min(aboveStart + mCaret - lineStart, lineStart - 1);
        }
        break;
    case Qt::Key_Down:
        if (lineBreak >= 0)
        {
            const int belowBreak = mText.indexOf(QLatin1Char('\n'), lineBreak + 1);
            const int belowEnd = belowBreak < 0 ? mText.size() : belowBreak;
            mCaret = std::min(lineBreak + 1 + mCaret - lineStart, belowEnd);
        }
        break;
    default:
        break;
    }
    PlaceCaret();
}
