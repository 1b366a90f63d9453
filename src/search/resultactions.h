#pragma once

// What the user does with the search's result list, as plain routines over the list's lines:
// the dialog gathers the choices (folders, file names, answers) and calls these.

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store/gamerecord.h"

namespace tessarin {

class AppContext;
class Messages;
class Work;

// A line of the list: the rom name is its first `longest` characters, trimmed; the title the
// rest, trimmed.
std::string RomNameOfLine(std::string_view line, int longest);
std::string TitleOfLine(std::string_view line, int longest);

// The rows an action works on: the selected ones (ascending) when there are any, else all.
std::vector<int> PickedRows(int lineCount, std::vector<int> selectedRows);
// The rom names of the picked rows; the line of message 334 ("NO ROM FOUND !") and lines
// without a name are no game and are left out.
std::vector<std::string> PickedRomNames(const std::vector<std::string>& lines,
                                        const std::vector<int>& selectedRows, int longest,
                                        std::string_view noRomText);

// The rom folder of the actions: the setting RomPath, or the program folder when it is empty or
// "-1"; with a final separator.
std::string RomFolderOf(const AppContext& ctx);

// Moves rom folder + name + ".zip" of each rom to the desktop's trash (a permanent delete where
// there is none), one step per rom, until the work's cancel flag is raised.
void DeleteListed(AppContext& ctx, Work& work, const std::vector<std::string>& romNames);
// Copies each rom's zip that exists in the rom folder to `destination` (a folder), passing over
// the missing ones, until the cancel flag is raised. Gives the number of files copied.
int CopyListed(AppContext& ctx, Work& work, const std::vector<std::string>& romNames,
               const std::string& destination);

// The suffix Make INI and the text file put behind a rom name when the user wants the extension;
// the four blanks belong to it.
inline constexpr std::string_view kZipSuffix = ".zip    ";

// The folder list of Make INI: the header lines, "[folder]", then for each entry its text up to
// the first blank and the suffix. CR LF line ends.
std::string MakeIniText(const std::string& folderName, const std::vector<std::string>& entries,
                        bool addZip);
// The clipboard's text: the count caption, CR LF, then every line with CR LF behind it.
std::string ClipboardText(const std::string& caption, const std::vector<std::string>& lines);
// The text file: the caption, then every line. With `addZip` a game line becomes its rom name,
// ".zip" and blanks cut to exactly 14 characters, followed by the line from the character behind
// `longest`, the line of message 334 included.
std::string TextFileText(const std::string& caption, const std::vector<std::string>& lines,
                         bool addZip, int longest);

// The count caption of Label3: the number and message 335.
std::string CountCaption(size_t count, const Messages& messages);

// Add a list: each line of `fileText` (trimmed; empty lines, lines longer than the name column
// and "[" lines skipped) that names a game of the store and doesn't start a line of `lines`
// already is added as the padded name, two blanks and the title. A list holding only the line
// of message 334 is emptied first. Gives the number of lines added.
int AddListFromFile(const GameStore& store, std::vector<std::string>& lines,
                    std::string_view fileText, std::string_view noRomText, Work* work = nullptr);
// Withdraw a list: for each game the file names (read as above), the lines that start with its
// padded name are removed. Gives the number of lines removed.
int WithdrawListFromFile(const GameStore& store, std::vector<std::string>& lines,
                         std::string_view fileText, Work* work = nullptr);

// Download missing images: how many lines may be asked for at once, as a courtesy to the image
// sites.
inline constexpr int kDownloadLineLimit = 10;
enum class DownloadGate { NothingSelected, TooMany, Go };
DownloadGate CheckDownloadSelection(int selectedCount);

// A selected line whose images are fetched: its row in the list, rom name and title.
struct ImageLine {
  int row = 0;
  std::string romName;
  std::string title;
};
// The transfer: gives 0 on success (DownloadFile's contract).
using ImageDownloader =
    std::function<int(const std::string& url, const std::string& file, Work* work)>;
// The real transfer for DownloadMissingImages: DownloadFile, with the bytes kept off the
// progress (the step counts lines).
int DownloadImageFile(const std::string& url, const std::string& file, Work* work);
// Fetches the missing images of each line, kind by kind (titles, snap, marquees, cabinets,
// control panels, flyers) into the folders of the settings TitlesPath to FlyersPath, from the
// address patterns `onlineImages` (1 to 6) with #ROMNAME# and #GAMENAME# (the line's title). An
// image already there is kept; a kind without a folder or a pattern is logged and passed over;
// there is no other address to fall back on. The step is the line's row, the maximum the list's
// line count less 1, and the cancel flag is polled. Gives the number of images fetched.
int DownloadMissingImages(AppContext& ctx, Work& work, const std::vector<std::string>& onlineImages,
                          const std::vector<ImageLine>& lines, int listLineCount,
                          const ImageDownloader& download);

// The search sites of Combo19: when `engines` (rows from 1, element 0 unused) has no row, it is
// given the two built-in ones first, on the MAWS address `mawsBase`. Gives the name part of each
// row (the text before its first ':').
std::vector<std::string> PrepareSearchEngines(std::vector<std::string>& engines,
                                              const std::string& mawsBase);
// The address Search online opens for the site at `comboPosition` (0-based; a row beyond the
// last becomes the first): the row's text behind its first ':', trimmed, with #ROMNAME# and
// #GAMENAME# filled in. Empty when there is no row.
std::string SearchOnlineAddress(const std::vector<std::string>& engines, int comboPosition,
                                const std::string& romName, const std::string& title);

// Sort: by title, each line is cut into its name column and title, ordered by title (then name
// column) by byte value and put back together; by rom name, the lines are sorted as they stand.
// Lists of fewer than 2 lines stay as they are.
void SortResultLines(std::vector<std::string>& lines, bool byTitle, int longest);

// The jump boxes: Combo14 gets "rom - title" and Combo15 "title - rom" for each game in order.
std::pair<std::vector<std::string>, std::vector<std::string>> JumpEntries(const GameStore& store);
// The rom of a Combo14 text (up to two characters before its first "-") and of a Combo15 text
// (from two characters behind its last "-"). Empty for an empty text.
std::string RomFromRomFirstEntry(std::string_view text);
std::string RomFromTitleFirstEntry(std::string_view text);
// The entry of the other box for the same game: the two halves around the last "-", swapped.
std::string SwapJumpEntry(std::string_view text);

// The small viewer of Command15: "zubrix" (any case, ".exe" on Windows) in the program folder.
// Empty when it isn't there.
std::string TinyViewerPath(const std::string& appFolder);
// The viewer's settings file, as it is handed over: the six image folders, two thirds of the
// screen, the colours.
std::string TinyViewerSettings(const AppContext& ctx, int screenWidth, int screenHeight);
// Runs the viewer for a rom: backs up Zubrix.inf, writes the settings, starts the program with
// `start(program, romName)` (which must not wait), lets `pump` run 12 times, then puts the old
// settings file back. False when there is no viewer or no rom.
bool RunTinyViewer(AppContext& ctx, const std::string& romName, int screenWidth, int screenHeight,
                   const std::function<bool(const std::string&, const std::string&)>& start,
                   const std::function<void()>& pump);

}  // namespace tessarin
