#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class Work;

// The static HTML site of the game list: a main menu, one page per game, index and group pages
// by category, manufacturer, year, version added and genre, and a complete list with letter
// anchors, all below <destination>/tessarin. No window here: the list dialog and tessarin-cli
// both call these routines, with the user told through ctx.Ui().

// The image sets in the order they are copied: titles, snap, marquees, cabinets, cpanel, flyers.
inline constexpr std::array<std::string_view, 6> kSiteImageSets = {"titles",   "snap",   "marquees",
                                                                   "cabinets", "cpanel", "flyers"};

// What the HTML page of the list dialog hands to a build.
struct HtmlSiteRequest {
  std::string destination;                    // Text2
  std::string skin;                           // Combo1; empty: the HTML folder itself
  bool skipClones = false;                    // Chk2
  bool onlyAvailable = false;                 // Chk3
  bool copyImages = false;                    // Chk4
  std::array<bool, 6> imageSets{};            // Chk5 to Chk10, in kSiteImageSets order
  bool onlineImages = false;                  // Chk11
  std::array<std::string, 7> onlinePatterns;  // OnlineImages 1 to 6 (0 unused)
  // An extra beside the site's own pages, which it leaves as they are: tessarin/search.htm and
  // tessarin/search-index.js, a page that finds the site's games in the browser.
  bool searchIndex = false;
};

enum class HtmlSiteResult { Done, Cancelled, FolderError, SkinError, NoGames };

// What a build wrote, for the command line's report.
struct HtmlSiteStats {
  int games = 0;          // entries of the selection
  long long files = 0;    // pages written (copies of companions and pictures not counted)
  long long bytes = 0;    // bytes of those pages
  std::string indexPath;  // <destination>/tessarin/index.htm
};

// Whether an INI file of names is there to be loaded: it exists and isn't empty. The INI button
// stops without a word when it isn't.
bool IsLoadableIniFile(const std::string& iniPath);

// Loads the rom names of an INI file into `names` (from 1; element 0 empty): each line, as it
// stands, that names a game of the database; section lines, blanks around a name and unknown
// names are skipped silently. False on cancel; true otherwise, also for an empty or missing
// file (then `names` holds no name).
bool LoadHtmlGameNames(AppContext& ctx, Work& work, const std::string& iniPath,
                       std::vector<std::string>& names);

// Builds the site. With `useIniNames`, `htmlGameNames` (rom names from 1) is the selection as it
// stands and the clone and availability filters are not applied; otherwise it is filled from
// the whole database or the search with those filters. It holds the sort keys afterwards. The
// user is told of a folder that can't be made (message 174), an empty selection (339) and the
// end (the site opened, message 41); a cancel leaves what was written and says nothing.
HtmlSiteResult BuildHtmlSite(AppContext& ctx, Work& work, const HtmlSiteRequest& request,
                             bool useIniNames, std::vector<std::string>& htmlGameNames,
                             HtmlSiteStats* stats = nullptr);

// Copies one image set ("titles", "snap"...) into <destination>/tessarin/images/<set>: the
// pictures of the selection out of the set's packs (setting + set + "*.zip"), then every loose
// picture (setting + "*.png") that a pack didn't give. Nothing when the setting <set>Path is
// missing, empty or an address.
void CopyImageSet(AppContext& ctx, Work& work, const std::string& destination, std::string_view set,
                  const std::vector<std::string>& htmlGameNames);

// One game of the search page's index.
struct SiteIndexEntry {
  std::string rom, page, description, manufacturer, year, genre;
};

// The search page's script data: `var TESSARIN_GAMES=[[rom,page,description,manufacturer,year,
// genre],...];` with each text a JavaScript string (quotes, backslashes, control characters and
// "<" escaped; other bytes as they are, UTF-8 like the pages).
std::string SearchIndexScript(const std::vector<SiteIndexEntry>& entries);
// The search page: plain HTML and JavaScript, no server and no external library, so it works
// opened from the disk.
std::string_view SearchPageText();

// The pieces of the build, for tests.

// The entry of a game on a group page of `kind` (0 category, 1 manufacturer, 2 year, 3 version,
// 4 genre) from its group key split at the key separator, with `<br>` behind.
std::string GroupEntry(const AppContext& ctx, int kind, const std::vector<std::string>& pieces);

// The line of a game in the complete list (with CR LF), from its sort key.
std::string CompleteListLine(const AppContext& ctx, std::string_view sortKey);

}  // namespace tessarin
