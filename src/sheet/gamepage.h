#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class GameDetailsLoader;

// The HTML page of one game: a template filled tag by tag with what is known of the game.
// The search dialog fills search.htm for one game, the site builder rom.htm for every game.

// The five keys a filled page leaves for the site builder, each of pieces joined by "µ*" (the
// "µ" as the one byte 0xB5, as the keys have always been written).
struct GroupKeys {
  std::string Category;
  std::string Genre;
  std::string Manufacturer;
  std::string Version;
  std::string Year;
};

// The separator of the pieces of a group key.
inline constexpr std::string_view kGroupKeySeparator = "\xB5*";

// How FillGamePage is called. The search dialog leaves everything off (but onlineImages); the
// site builder sets keepNavigation, prefixName and siteLinks, and siteRoot to its output folder.
struct GamePageOptions {
  // Keep "#PREVIOUS", "#HOME", "#NEXT" for the caller to fill.
  bool keepNavigation = false;
  // Put the rom name, padded or cut to 12 characters, in front of the page.
  bool prefixName = false;
  // Group values and the parent as links to the site's pages.
  bool siteLinks = false;
  // The site's destination folder (its pictures are under tessarin/images); empty otherwise.
  std::string siteRoot;
  // Refer a missing picture to its on-line address pattern.
  bool onlineImages = false;
  // The on-line address patterns of the six kinds, 1 to 6 (Titles, Snap, Marquees, Cabinets,
  // Cpanel, Flyers); element 0 unused.
  std::array<std::string, 7> onlinePatterns;
};

// Fills `pageTemplate` for one game: the game at `index` when it isn't 0, else the game named
// `romName`. An unknown game gives a page for "Dummy". The group keys of the game are left in
// `keys` when it isn't null. Never fails: a missing file gives an empty value. Every tag is a
// pass of its own over the whole page, in a fixed order, so a value that holds a tag of a later
// pass has it replaced too. `loader` reads the game; a caller that fills many pages keeps one
// loader for all of them.
std::string FillGamePage(AppContext& ctx, GameDetailsLoader& loader, const std::string& romName,
                         std::string_view pageTemplate, int index, const GamePageOptions& options,
                         GroupKeys* keys = nullptr);
// The same with a loader of its own, for a single page.
std::string FillGamePage(AppContext& ctx, const std::string& romName, std::string_view pageTemplate,
                         int index, const GamePageOptions& options, GroupKeys* keys = nullptr);

// The location of a picture of `kind` ("Titles", "Snap", "Flyers", "Cabinets", "Marquees",
// "Cpanel") for `rom`, falling back on `parent`: in site mode a relative address into the site's
// images when the site holds the picture, else the path of a local picture (the kind's folder,
// or its zip unpacked into the temporary folder), else an address when the kind's folder is
// one. Empty when there is no picture.
std::string ImageFor(AppContext& ctx, const std::string& rom, const std::string& parent,
                     std::string_view kind, const std::string& siteRoot);

// A local path as an address: "file:///" before a drive path or a network path, "file://"
// before any other, nothing before an "http:" address; each "\" becomes "/".
std::string MakeFileUrl(std::string_view path);

// A group or page name as a file name: \ / | become !, : becomes _, * becomes #, ? becomes &,
// " becomes ', < becomes (, > becomes ).
std::string MakeFileSafeName(std::string_view name);

// The refresh rate as shown: trailing zeros cut, then a trailing point ("60.000000" gives "60",
// "60" gives "6"); without "Hz".
std::string TrimRefresh(std::string_view refresh);

// The value of #HISTORY: heading, text with CR LF as <br>, section marks in bold.
std::string HistoryHtml(std::string_view history);

// The tables of the detail lists (items from 1, element 0 unused); "N/A" when a list has no item.
std::string BiosSetTable(const std::vector<std::string>& list);
std::string ChipTable(const std::vector<std::string>& list);
std::string DipSwitchTable(const std::vector<std::string>& list);
std::string DiskTable(const std::vector<std::string>& list);
std::string RomTable(const std::vector<std::string>& list);

// One pass of the filling: every occurrence of `find` in the whole page becomes the value. The
// value is asked for only when the page holds `find` at that moment.
struct PagePass {
  std::string_view find;
  std::function<std::string()> value;
};
// The passes over the page, one after the other, each over the text the former ones left: the
// result of FastReplace run for each pass over the whole text in turn (ApplyPagePassesPlain),
// without copying the page at each pass. The page is kept as pieces of the template and of the
// values, with the places of their "#" marks, so a pass only looks where a tag can begin.
std::string ApplyPagePasses(std::string_view pageTemplate, const std::vector<PagePass>& passes);
// The same, pass by pass with FastReplace over the whole text: the reference of the above.
std::string ApplyPagePassesPlain(std::string_view pageTemplate,
                                 const std::vector<PagePass>& passes);

// The block shown where a game has no picture.
std::string_view NoImageBlock();

}  // namespace tessarin
