#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "online/urllist.h"

namespace tessarin {

class AppContext;

// The data files of the options, for the keys DataFile2 to DataFile17.
inline constexpr std::array<std::string_view, 16> kOptionDataFiles = {"History.dat",
                                                                      "MameInfo.dat",
                                                                      "Cheat.dat",
                                                                      "Command.dat",
                                                                      "Hiscore.dat",
                                                                      "Wizsort.ini",
                                                                      "Nplayer/Multiplayer.ini",
                                                                      "Aspect.ini",
                                                                      "Controls.ini",
                                                                      "Alltime.ini",
                                                                      "Catlist.ini",
                                                                      "Catver.ini",
                                                                      "Genre.ini",
                                                                      "Mature.ini",
                                                                      "Resolution.ini",
                                                                      "Version.ini"};
// The image kinds and their folder keys, in the order of the online image table.
inline constexpr std::array<std::string_view, 6> kImageKinds = {"Titles",   "Snap",   "Marquees",
                                                                "Cabinets", "Cpanel", "Flyers"};
inline constexpr std::array<std::string_view, 6> kImagePathKeys = {
    "TitlesPath", "SnapPath", "MarqueesPath", "CabinetsPath", "CpanelPath", "FlyersPath"};

// The site tables that the options edit in place (the "name:address" search engines and the six
// online image patterns). Reload rereads the site list file (so hand edits show), Write writes
// it.
struct SiteTablesAccess {
  UrlTables* Tables = nullptr;
  std::function<void()> Reload;
  std::function<void()> Write;
};

// The options dialog's state and rules; the dialog shows it and hands back what the user typed.
// The data file and image paths are working copies saved only by Save; the site tables are
// changed at once and survive a cancel.
class OptionsModel final {
 public:
  OptionsModel(AppContext& ctx, SiteTablesAccess sites);

  // Rereads the site list and fills every field from the settings ("-1" gives an empty field).
  void Load();

  std::vector<std::string> LanguageList;
  std::string LanguageText;
  std::string EmulatorPath;
  std::string RomPath;
  std::array<std::string, 16> DataFiles;
  std::array<std::string, 6> ImagePaths;

  // Search engines, from 0: the names (the part in front of the first ':') and the address part.
  std::vector<std::string> SearchEngineNames() const;
  std::string SearchEngineAddress(int index) const;
  void SetSearchEngineAddress(int index, const std::string& address);
  // Adds "name:address" when both are given; gives false otherwise.
  bool AddSearchSite(const std::string& name, const std::string& address);

  // Image kinds from 0 (titles) to 5 (flyers).
  std::string OnlineImage(int kind) const;
  void SetOnlineImage(int kind, const std::string& pattern);

  // Saves paths and language as the save button does. Gives true when the language changed, so
  // that the caller lets the search dialog go (it has already been marked closable).
  bool Save();
  // The end of every close, save or cancel: the site tables go to their file.
  void Unload();

 private:
  AppContext& m_ctx;
  SiteTablesAccess m_sites;
};

}  // namespace tessarin
