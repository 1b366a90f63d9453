#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class Log;

// The data files whose sites and download addresses the site list keeps, by index.
inline constexpr int kSiteListFileCount = 11;
inline constexpr std::array<std::string_view, kSiteListFileCount> kDataFileNames = {
    "History",  "Catver", "Cat32",   "Wizsort", "Nplayers", "Nplayers32",
    "Mameinfo", "Cheat",  "Command", "Hiscore", "Controls"};
// The keys of the on-line image patterns, 1 to 6 (titles, snap, marquees, cabinets, control
// panels, flyers); element 0 is unused.
inline constexpr std::array<std::string_view, 7> kOnlineImageKeys = {"",
                                                                     "ONLINE_TITLES",
                                                                     "ONLINE_SNAP",
                                                                     "ONLINE_MARQUEES",
                                                                     "ONLINE_CABINETS",
                                                                     "ONLINE_CPANEL",
                                                                     "ONLINE_FLYERS"};

// The file of sites, in the application folder.
inline constexpr const char* kUrlListFile = "Tessarin.url.inf";
// The MAWS base address, in the application folder.
inline constexpr const char* kMawsFile = "maws.inf";

// The MAWS base that a new maws.inf holds. It is also the base that ApplyMawsBase replaces, so
// that a user who points maws.inf elsewhere moves every MAWS address of the site list at once.
inline constexpr std::string_view kDefaultMawsBase = "http://maws.example.invalid";

// Every address Tessarin fetches or links to, filled at start by LoadUrlList.
struct UrlTables {
  // Home page of each data file's site, 0 to 10 (kDataFileNames).
  std::array<std::string, kSiteListFileCount> SiteList;
  // Direct download address of each data file, 0 to 10; empty by default.
  std::array<std::string, kSiteListFileCount> FileList;
  // "name:address" rows, from 1; element 0 is unused.
  std::vector<std::string> SearchEngines{std::string()};
  // Address pattern of each image kind, 1 to 6; element 0 is unused. Empty until the file is
  // written, which gives each empty one its default.
  std::array<std::string, 7> OnlineImages;

  int SearchEngineCount() const { return static_cast<int>(SearchEngines.size()) - 1; }
  // Puts back every built-in default (the image patterns become empty).
  void SetDefaults();
};

// The built-in site of data file `index` (0 to 10); empty outside.
std::string DefaultSite(int index);
// The two built-in search engines.
std::vector<std::string> DefaultSearchEngines();
// The built-in pattern of image kind `index` (1 to 6); empty outside.
std::string DefaultOnlineImage(int index);

// Sets the defaults, then reads Tessarin.url.inf from `appFolder` over them. A file without a
// valid SEARCH_ENGINE line (an older one) is written again with the defaults added; a missing
// file is written. Failures are logged; the tables then keep what they have.
void LoadUrlList(UrlTables& tables, const std::string& appFolder, Log& log);
// Rewrites Tessarin.url.inf from the tables (an empty image pattern first takes its default).
// False when the file can't be written.
bool WriteUrlList(UrlTables& tables, const std::string& appFolder, Log& log);
// `text` with each occurrence of kDefaultMawsBase replaced by the base of maws.inf (its first
// line, trimmed, when not empty). Writes maws.inf with the default when it is missing.
std::string ApplyMawsBase(std::string_view text, const std::string& appFolder);

}  // namespace tessarin
