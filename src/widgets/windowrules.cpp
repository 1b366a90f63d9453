#include "widgets/windowrules.h"

#include <algorithm>

namespace tessarin {

int WorkingPercent(long long value, long long max) {
  if (max < 1) return 0;
  const long long percent = value * 100 / max;
  return static_cast<int>(std::clamp<long long>(percent, 1, 100));
}

int ProgressFrameIndex(int percent) { return std::clamp(percent / 5, 0, kProgressFrames - 1); }

std::string AdvanceWorkingTick(int& tick, const std::string& base) {
  ++tick;
  std::string title = WorkingTitle(base, tick);
  if (tick >= 4) tick = 0;
  return title;
}

std::string WorkingTitle(const std::string& base, int tick) {
  // The bar turns one step a tick; the counter is back at 0 when the fourth step shows.
  switch (tick) {
    case 1:
      return base + " -";
    case 2:
      return base + " \\";
    case 3:
      return base + " |";
    case 4:
      return base + " /";
    default:
      return base;
  }
}

void CenterPosition(const Rect& parent, int width, int height, int& left, int& top) {
  left = parent.Width / 2 - width / 2;
  top = static_cast<int>(0.9 * parent.Height) / 2 - height / 2;
}

bool PositionOnSomeScreen(const Rect& window, const std::vector<Rect>& screens) {
  // The top band is where a window is grabbed; ask for a useful piece of it on one screen.
  const int band = 24;
  const int needWidth = std::min(window.Width, 48);
  for (const Rect& s : screens) {
    const int left = std::max(window.X, s.X);
    const int right = std::min(window.X + window.Width, s.X + s.Width);
    const int top = std::max(window.Y, s.Y);
    const int bottom = std::min(window.Y + band, s.Y + s.Height);
    if (right - left >= needWidth && bottom > top) return true;
  }
  return false;
}

int RestoreStateFor(int mdiState) { return (mdiState == -1 || mdiState == 1) ? 2 : mdiState; }

MessageBoxArgs NormaliseMessageBox(const std::string& text, const std::string& title, int icon,
                                   const std::string& doneMessage) {
  MessageBoxArgs args;
  args.Text = text.empty() ? doneMessage + "." : text;
  std::replace(args.Text.begin(), args.Text.end(), '|', '\n');
  args.Title = title.empty() ? "Tessarin" : title;
  args.Icon = icon == 0 ? 64 : icon;
  return args;
}

int BeepKindFor(int icon) { return (icon == 16 || icon == 48) ? icon : 64; }

std::string BrowseStartFolder(const std::string& startPath) {
  if (startPath.empty()) {
#ifdef _WIN32
    return "C:\\";
#else
    return "/";
#endif
  }
  const size_t cut = startPath.find_last_of("\\/");
  if (cut == std::string::npos) return startPath;
  std::string folder = startPath.substr(0, cut + 1);
  // A root ("C:\" or "/") keeps its separator; any other folder loses it.
  const bool isRoot = folder.size() == 1 || (folder.size() == 3 && folder[1] == ':');
  if (!isRoot) folder.pop_back();
  return folder;
}

std::string BrowseResult(const std::string& chosen, bool cancelled, const std::string& startPath,
                         bool cancelKeeps) {
  if (cancelled) return cancelKeeps ? std::string() : startPath;
  if (chosen.empty()) return {};
  std::string result = chosen;
  const char separator = result.find('/') != std::string::npos ? '/' : '\\';
  if (result.back() != '/' && result.back() != '\\') result += separator;
  if (result.size() == 1) return {};
  return result;
}

std::string QtFilterFromPipes(const std::string& filter) {
  const std::string source = filter.empty() ? std::string(kDefaultFileFilter) : filter;
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= source.size()) {
    const size_t bar = source.find('|', start);
    if (bar == std::string::npos) {
      parts.push_back(source.substr(start));
      break;
    }
    parts.push_back(source.substr(start, bar - start));
    start = bar + 1;
  }
  std::string result;
  for (size_t i = 0; i + 1 < parts.size(); i += 2) {
    if (parts[i].empty() && parts[i + 1].empty()) continue;
    if (!result.empty()) result += ";;";
    std::string patterns = parts[i + 1];
    std::replace(patterns.begin(), patterns.end(), ';', ' ');
    result += parts[i] + " (" + patterns + ")";
  }
  return result;
}

}  // namespace tessarin
