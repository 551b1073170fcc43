// SPDX-License-Identifier: MIT
#include "window/BarCommands.h"

#include "annotation/AnnotationController.h"
#include "host/Settings.h"
#include "playback/VolumeState.h"
#include "project/BookmarkController.h"
#include "toolbars/AnnotationWidget.h"
#include "window/AnnotationBarBinding.h"
#include "window/BookmarksBarBinding.h"
#include "window/CommandTable.h"

#include <QCoreApplication>

namespace
{

constexpr int VolumeStep = 10;

/// One command as it stands in the tables below: "|" before the text is a separator above it.
struct BarCommandRow
{
    const char* name;
    const char* text;
    std::initializer_list<int> keys;
    std::function<void()> run;
    std::function<bool()> isOn;
};

void Append(std::vector<Command>& commands, const char* menu, std::initializer_list<BarCommandRow> rows)
{
    for (const BarCommandRow& row : rows)
    {
        QList<QKeySequence> keys;
        for (const int key : row.keys)
            keys << QKeySequence(key);
        commands.push_back({QLatin1String(row.name), QCoreApplication::translate("BarCommands", row.text),
                            QLatin1String(menu), keys, row.run, row.isOn});
    }
}

} // namespace

void AddAnnotationCommands(std::vector<Command>& commands, AnnotationBarBinding* bar,
                           AnnotationController* annotation, std::function<void(bool)> clearFrame)
{
    Append(commands, "annotate",
           {{"annotate.draw",
             QT_TRANSLATE_NOOP("BarCommands", "&Draw"),
             {Qt::Key_D, Qt::Key_F8},
             [bar] { bar->Toggle(); },
             [bar] { return bar->IsShown(); }}});

    struct ToolRow
    {
        const char* name;
        const char* text;
        int key;
        AnnotationToolType tool;
    };
    for (const ToolRow& row :
         {ToolRow{"annotate.pencil", QT_TRANSLATE_NOOP("BarCommands", "|&Pencil"), Qt::Key_P, Pencil},
          ToolRow{"annotate.eraser", QT_TRANSLATE_NOOP("BarCommands", "&Eraser"), Qt::Key_E, Eraser},
          ToolRow{"annotate.text", QT_TRANSLATE_NOOP("BarCommands", "&Text"), Qt::Key_T, Text},
          ToolRow{"annotate.arrow", QT_TRANSLATE_NOOP("BarCommands", "&Arrow"), Qt::Key_W, Arrow},
          ToolRow{"annotate.rectangle", QT_TRANSLATE_NOOP("BarCommands", "Rectan&gle"), Qt::Key_R, Rectangle},
          ToolRow{"annotate.oval", QT_TRANSLATE_NOOP("BarCommands", "&Oval"), Qt::Key_V, Oval},
          ToolRow{"annotate.eyedropper", QT_TRANSLATE_NOOP("BarCommands", "E&yedropper"), Qt::Key_Y,
                  Eyedropper}})
    {
        Append(commands, "annotate",
               {{row.name,
                 row.text,
                 {row.key},
                 [bar, tool = row.tool] { bar->SelectTool(tool); },
                 [tool = row.tool] { return Settings::annotationTool == tool; }}});
    }

    Append(commands, "annotate",
           {{"annotate.color",
             QT_TRANSLATE_NOOP("BarCommands", "|&Colour…"),
             {Qt::Key_C},
             [bar] { bar->PickColor(); },
             {}},
            {"annotate.wider",
             QT_TRANSLATE_NOOP("BarCommands", "&Wider"),
             {Qt::Key_BracketRight},
             [bar] { bar->ChangeWidth(1); },
             {}},
            {"annotate.narrower",
             QT_TRANSLATE_NOOP("BarCommands", "&Narrower"),
             {Qt::Key_BracketLeft},
             [bar] { bar->ChangeWidth(-1); },
             {}},
            {"annotate.undo",
             QT_TRANSLATE_NOOP("BarCommands", "|&Undo"),
             {Qt::CTRL + Qt::Key_Z},
             [annotation] { annotation->Undo(); },
             {}},
            {"annotate.redo",
             QT_TRANSLATE_NOOP("BarCommands", "&Redo"),
             {Qt::CTRL + Qt::SHIFT + Qt::Key_Z, Qt::CTRL + Qt::Key_Y},
             [annotation] { annotation->Redo(); },
             {}},
            {"annotate.clearFrame",
             QT_TRANSLATE_NOOP("BarCommands", "C&lear Frame"),
             {Qt::CTRL + Qt::Key_Backspace},
             [clearFrame] { clearFrame(false); },
             {}},
            {"annotate.deleteBookmark",
             QT_TRANSLATE_NOOP("BarCommands", "Delete Boo&kmark"),
             {Qt::CTRL + Qt::SHIFT + Qt::Key_Backspace},
             [clearFrame] { clearFrame(true); },
             {}},
            {"annotate.ghostPrevious",
             QT_TRANSLATE_NOOP("BarCommands", "|Ghosts of Frames &Before"),
             {Qt::Key_G},
             [bar] { bar->Bar()->ToggleGhostPrevious(); },
             [] { return Settings::annotationGhostPrevious; }},
            {"annotate.ghostNext",
             QT_TRANSLATE_NOOP("BarCommands", "Ghosts of Frames A&fter"),
             {Qt::SHIFT + Qt::Key_G},
             [bar] { bar->Bar()->ToggleGhostNext(); },
             [] { return Settings::annotationGhostNext; }},
            {"annotate.toolsAtRight",
             QT_TRANSLATE_NOOP("BarCommands", "|Tools at Rig&ht"),
             {},
             [bar] { bar->SetAtRight(!Settings::annotationToolsAtRight); },
             [] { return Settings::annotationToolsAtRight; }}});
}

void AddBookmarkCommands(std::vector<Command>& commands, BookmarkController* bookmarks,
                         BookmarksBarBinding* bar)
{
    Append(commands, "bookmarks",
           {{"bookmark.frame",
             QT_TRANSLATE_NOOP("BarCommands", "&Mark Frame"),
             {Qt::Key_B},
             [bookmarks] { bookmarks->ToggleFrame(); },
             {}},
            {"bookmark.range",
             QT_TRANSLATE_NOOP("BarCommands", "Mark &Range"),
             {Qt::SHIFT + Qt::Key_B},
             [bookmarks] { bookmarks->ToggleRange(); },
             {}},
            {"bookmark.add",
             QT_TRANSLATE_NOOP("BarCommands", "|&Add Bookmark"),
             {},
             [bookmarks] { bookmarks->AddFrame(); },
             {}},
            {"bookmark.remove",
             QT_TRANSLATE_NOOP("BarCommands", "Remo&ve Bookmark"),
             {},
             [bookmarks] { bookmarks->RemoveFrame(); },
             {}},
            {"bookmark.addRange",
             QT_TRANSLATE_NOOP("BarCommands", "Add Range Bookmark"),
             {},
             [bookmarks] { bookmarks->AddRange(); },
             {}},
            {"bookmark.removeRange",
             QT_TRANSLATE_NOOP("BarCommands", "Remove Range Bookmark"),
             {},
             [bookmarks] { bookmarks->RemoveRange(); },
             {}},
            {"bookmark.next",
             QT_TRANSLATE_NOOP("BarCommands", "|&Next Bookmark or Edit Point"),
             {Qt::CTRL + Qt::Key_Right},
             [bookmarks] { bookmarks->GoToNext(); },
             {}},
            {"bookmark.previous",
             QT_TRANSLATE_NOOP("BarCommands", "&Previous Bookmark or Edit Point"),
             {Qt::CTRL + Qt::Key_Left},
             [bookmarks] { bookmarks->GoToPrevious(); },
             {}},
            {"bookmark.nextFrame",
             QT_TRANSLATE_NOOP("BarCommands", "Next Bookmark"),
             {Qt::CTRL + Qt::SHIFT + Qt::Key_Right},
             [bookmarks] { bookmarks->GoToNextFrame(); },
             {}},
            {"bookmark.previousFrame",
             QT_TRANSLATE_NOOP("BarCommands", "Previous Bookmark"),
             {Qt::CTRL + Qt::SHIFT + Qt::Key_Left},
             [bookmarks] { bookmarks->GoToPreviousFrame(); },
             {}},
            {"bookmark.nextRange",
             QT_TRANSLATE_NOOP("BarCommands", "Next Range Bookmark"),
             {Qt::SHIFT + Qt::Key_PageDown},
             [bookmarks] { bookmarks->GoToNextRange(); },
             {}},
            {"bookmark.previousRange",
             QT_TRANSLATE_NOOP("BarCommands", "Previous Range Bookmark"),
             {Qt::SHIFT + Qt::Key_PageUp},
             [bookmarks] { bookmarks->GoToPreviousRange(); },
             {}},
            {"range.start",
             QT_TRANSLATE_NOOP("BarCommands", "|Range &Starts Here"),
             {Qt::Key_I},
             [bookmarks] { bookmarks->RangeStartToCurrent(); },
             {}},
            {"range.end",
             QT_TRANSLATE_NOOP("BarCommands", "Range &Ends Here"),
             {Qt::Key_O},
             [bookmarks] { bookmarks->RangeEndToCurrent(); },
             {}},
            {"range.reset",
             QT_TRANSLATE_NOOP("BarCommands", "W&hole Range"),
             {Qt::Key_Backslash},
             [bookmarks] { bookmarks->ResetRange(); },
             {}},
            {"view.bookmarksBar",
             QT_TRANSLATE_NOOP("BarCommands", "|Bookmarks &Bar"),
             {Qt::Key_F9},
             [bar] { bar->Toggle(); },
             [bar] { return bar->IsShown(); }}});
}

void AddSoundCommands(std::vector<Command>& commands, VolumeState* volume)
{
    Append(commands, "playback",
           {{"sound.mute",
             QT_TRANSLATE_NOOP("BarCommands", "|&Mute"),
             {Qt::Key_M},
             [volume] { volume->SetMuted(!volume->IsMuted()); },
             [volume] { return volume->IsMuted(); }},
            {"sound.louder",
             QT_TRANSLATE_NOOP("BarCommands", "Lou&der"),
             {Qt::Key_Up},
             [volume] { volume->SetVolume(volume->Volume() + VolumeStep); },
             {}},
            {"sound.quieter",
             QT_TRANSLATE_NOOP("BarCommands", "&Quieter"),
             {Qt::Key_Down},
             [volume] { volume->SetVolume(volume->Volume() - VolumeStep); },
             {}}});
}
