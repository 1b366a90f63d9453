#pragma once

// The arithmetic and text rules behind the windows, kept apart from any window so that tests
// check them directly.

#include <string>
#include <vector>

namespace tessarin {

// --- Working dialog ---

// The percent the working dialog shows: 0 while the maximum is unknown (below 1), else
// value * 100 / max held between 1 and 100.
int WorkingPercent(long long value, long long max);
// The frame of the 21-frame progress picture for a percent: percent / 5 held between 0 and 20.
int ProgressFrameIndex(int percent);
inline constexpr int kProgressFrames = 21;
// One timer tick of the title: adds 1 to the counter, gives the title of the new count, and
// puts the counter back to 0 once the fourth bar is shown.
std::string AdvanceWorkingTick(int& tick, const std::string& base);
// The title at a tick: the base text, a blank and the turning bar ("-", "\", "|", "/"). At tick
// 0 the base text alone.
std::string WorkingTitle(const std::string& base, int tick);

// --- Positions ---

struct Rect {
  int X = 0;
  int Y = 0;
  int Width = 0;
  int Height = 0;
};

// CenterForm's place for a form of the given size in `parent`: left is the parent's width
// divided by 2 minus half the form's width, top is 0.9 times the parent's height divided by 2
// minus half the form's height (a little above the centre). Relative to the parent's origin.
void CenterPosition(const Rect& parent, int width, int height, int& left, int& top);
// True when enough of the window's top band lies on one of the screens to be grabbed there.
bool PositionOnSomeScreen(const Rect& window, const std::vector<Rect>& screens);
// The frame applies a stored left or top when it is above -1; the panel when it is above 0; the
// working dialog when it is above -1.
inline bool FramePositionApplies(int stored) { return stored > -1; }
inline bool PanelPositionApplies(int stored) { return stored > 0; }
inline bool WorkingPositionApplies(int stored) { return stored > -1; }
// The frame's state to restore before a message when it is minimised: MDIState, or 2 when that
// is -1 or 1.
int RestoreStateFor(int mdiState);

// --- Message box ---

struct MessageBoxArgs {
  std::string Text;
  std::string Title;
  int Icon = 64;
};
// An empty text becomes `doneMessage` followed by a point, an empty title "Tessarin", icon 0
// becomes 64; every "|" becomes a line break.
MessageBoxArgs NormaliseMessageBox(const std::string& text, const std::string& title, int icon,
                                   const std::string& doneMessage);
// The kind of beep for an icon: 16 and 48 keep theirs, anything else is 64.
int BeepKindFor(int icon);

// --- Custom check boxes ---

// A check box's tag: "" is off, anything else on. ToggledTag flips "" and "1".
inline bool TagIsOn(const std::string& tag) { return !tag.empty(); }
inline std::string ToggledTag(const std::string& tag) { return tag.empty() ? "1" : ""; }

// --- Folder and file choosers ---

// The start folder of the folder chooser: the part of `startPath` up to its last separator; a
// drive root or "/" keeps its separator, other folders lose it; an empty path gives the root.
std::string BrowseStartFolder(const std::string& startPath);
// The result of the folder chooser: on a cancel, empty when `cancelKeeps`, else `startPath`. A
// chosen folder gets a final separator ("/" when it holds one, else "\"); a bare separator
// becomes empty.
std::string BrowseResult(const std::string& chosen, bool cancelled, const std::string& startPath,
                         bool cancelKeeps);
// The default filter of the file chooser.
inline constexpr const char* kDefaultFileFilter = "Fichier TXT|*.txt|";
// A "name|pattern|name|pattern" filter as Qt wants it: "name (pattern);;name (pattern)". An
// empty filter gives the default one.
std::string QtFilterFromPipes(const std::string& filter);

}  // namespace tessarin
