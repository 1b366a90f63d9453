#include "online/urllist.h"

#include <algorithm>

#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/textutil.h"

namespace tessarin {

namespace {

std::string Padded(std::string_view name) {
  std::string result(name.substr(0, 16));
  result.resize(16, ' ');
  return result;
}

std::string MawsDefault(std::string_view path) {
  return std::string(kDefaultMawsBase) + std::string(path);
}

}  // namespace

std::string DefaultSite(int index) {
  // The hosts are placeholders under the reserved .invalid domain: the user puts the sites of
  // the day in Tessarin.url.inf. The paths are those each kind of site has always used.
  static constexpr std::array<std::string_view, kSiteListFileCount> sites = {
      "http://history.example.invalid/",
      "http://catver.example.invalid/?catlist",
      "http://catver.example.invalid/?catlist",
      "http://data.example.invalid/catlist/",
      "http://nplayers.example.invalid/",
      "http://nplayers.example.invalid/",
      "http://data.example.invalid/mameinfo/",
      "http://cheat.example.invalid/",
      "http://command.example.invalid/~command/",
      "http://data.example.invalid/highscore/",
      "http://controls.example.invalid/controls.php"};
  if (index < 0 || index >= kSiteListFileCount) return {};
  return std::string(sites[static_cast<std::size_t>(index)]);
}

std::vector<std::string> DefaultSearchEngines() {
  return {"MAWS:" + MawsDefault("/maws/romset/#ROMNAME#"),
          "datObase:http://datobase.example.invalid/datObase/rom.php?zip=#ROMNAME#&s4=VIEW"};
}

std::string DefaultOnlineImage(int index) {
  static constexpr std::array<std::string_view, 7> paths = {"",
                                                            "/maws/img/shots/titles/#ROMNAME#.png",
                                                            "/maws/img/shots/mwsnap/#ROMNAME#.png",
                                                            "/maws/img/marquees/#ROMNAME#.png",
                                                            "/maws/img/cabinets/#ROMNAME#.png",
                                                            "/maws/img/cpanel/#ROMNAME#.png",
                                                            "/maws/img/flyers/#ROMNAME#.png"};
  if (index < 1 || index > 6) return {};
  return MawsDefault(paths[static_cast<std::size_t>(index)]);
}

void UrlTables::SetDefaults() {
  for (int i = 0; i < kSiteListFileCount; ++i) {
    SiteList[static_cast<std::size_t>(i)] = DefaultSite(i);
    FileList[static_cast<std::size_t>(i)].clear();
  }
  SearchEngines.assign(1, std::string());
  for (std::string& engine : DefaultSearchEngines()) SearchEngines.push_back(std::move(engine));
  for (std::string& pattern : OnlineImages) pattern.clear();
}

std::string ApplyMawsBase(std::string_view text, const std::string& appFolder) {
  const std::string path = appFolder + kMawsFile;
  std::string base(kDefaultMawsBase);
  std::string content;
  if (FileExists(path)) {
    if (ReadWholeFile(path, content)) {
      const std::vector<std::string_view> lines = SplitLines(content);
      const std::string_view first = lines.empty() ? std::string_view() : TrimWhite(lines.front());
      if (!first.empty()) base = std::string(first);
    }
  } else {
    WriteFileAtomically(path, std::string(kDefaultMawsBase) +
                                  "\r\n; This is the url to access to MAWS database. Change it "
                                  "if you need.\r\n");
  }
  std::string result;
  const std::string_view old = kDefaultMawsBase;
  std::size_t at = 0;
  for (std::size_t hit = text.find(old); hit != std::string_view::npos; hit = text.find(old, at)) {
    result.append(text.substr(at, hit - at));
    result += base;
    at = hit + old.size();
  }
  result.append(text.substr(at));
  return result;
}

void LoadUrlList(UrlTables& tables, const std::string& appFolder, Log& log) {
  RunGuarded(log, 10101, [&] {
    tables.SetDefaults();
    const std::string path = appFolder + kUrlListFile;
    if (!FileExists(path)) {
      WriteUrlList(tables, appFolder, log);
      return;
    }
    std::string content;
    if (!ReadWholeFile(path, content)) return;
    bool validEngine = false;
    for (const std::string_view rawLine : SplitLines(content)) {
      const std::string_view line = TrimWhite(rawLine);
      if (line.empty() || line.front() == '#' || line.front() == ';') continue;
      const std::size_t equals = line.find('=');
      if (equals == std::string_view::npos) continue;
      const std::string key = UpperCopy(TrimWhite(line.substr(0, equals)));
      const std::string value(TrimWhite(line.substr(equals + 1)));
      if (value.empty()) continue;

      if (key == "SEARCH_ENGINE") {
        // The colon behind the name and the one of the address.
        if (std::count(value.begin(), value.end(), ':') < 2) continue;
        if (!validEngine) tables.SearchEngines.assign(1, std::string());
        validEngine = true;
        tables.SearchEngines.push_back(ApplyMawsBase(value, appFolder));
        continue;
      }
      bool known = false;
      for (std::size_t i = 1; i < kOnlineImageKeys.size() && !known; ++i) {
        if (key == kOnlineImageKeys[i]) {
          tables.OnlineImages[i] = ApplyMawsBase(value, appFolder);
          known = true;
        }
      }
      for (std::size_t i = 0; i < kDataFileNames.size() && !known; ++i) {
        const std::string name = UpperCopy(kDataFileNames[i]);
        if (key == "SITE_" + name) {
          tables.SiteList[i] = value;
          known = true;
        } else if (key == name) {
          tables.FileList[i] = value;
          known = true;
        }
      }
    }
    // A file of an older kind, without search engines: write it again, defaults added.
    if (!validEngine) WriteUrlList(tables, appFolder, log);
  });
}

bool WriteUrlList(UrlTables& tables, const std::string& appFolder, Log& log) {
  bool written = false;
  RunGuarded(log, 10102, [&] {
    std::string text;
    const auto line = [&text](std::string_view content) {
      text += content;
      text += "\r\n";
    };
    line(";");
    line("; Here you can change sites' adresses in case you need it.");
    line(";");
    line("; Modifiez ici les adresses des sites en cas de changement.");
    line(";");
    for (int i = 0; i < kSiteListFileCount; ++i) {
      line("SITE_" + Padded(kDataFileNames[static_cast<std::size_t>(i)]) + "= " +
           tables.SiteList[static_cast<std::size_t>(i)]);
    }
    line(";");
    line(";");
    line("; This is the list of files to be downloaded.");
    line("; You can change it here or edit it");
    line("; directly in Tessarin.");
    line(";");
    line("; Liste des fichiers à télécharger");
    line("; Cette liste peut être éditée ou");
    line("; modifiée directement dans Tessarin.");
    line(";");
    for (int i = 0; i < kSiteListFileCount; ++i) {
      line(Padded(kDataFileNames[static_cast<std::size_t>(i)]) + "= " +
           tables.FileList[static_cast<std::size_t>(i)]);
    }
    line(";");
    line(";");
    line("; List of sites with a search engine. Type the name of the site followed by a ':'");
    line("; and then the address to access with the flag #ROMNAME# where to place the rom name.");
    line("; You can also use #GAMENAME# to get the name of the game.");
    line(";");
    line("; Liste des sites avec moteur de recherche. Tapez le nom du site suivi de ':'");
    line("; puis l'adresse complète avec #ROMNAME# à l'endroit où doit figurer le nom de la rom.");
    line("; Vous pouvez utiliser aussi #GAMENAME# pour le nom du jeu.");
    line(";");
    for (int i = 1; i <= tables.SearchEngineCount(); ++i) {
      line("SEARCH_ENGINE=" + tables.SearchEngines[static_cast<std::size_t>(i)]);
    }
    line(";");
    line(";");
    line("; If you want to use online images, put the url here.");
    line(";");
    line("; Si vous souhaitez utiliser des images online, mettez les url ici.");
    line(";");
    for (std::size_t i = 1; i < kOnlineImageKeys.size(); ++i) {
      if (tables.OnlineImages[i].empty()) {
        tables.OnlineImages[i] = DefaultOnlineImage(static_cast<int>(i));
      }
      line(std::string(kOnlineImageKeys[i]) + "=" + tables.OnlineImages[i]);
    }
    written = WriteFileAtomically(appFolder + kUrlListFile, text);
  });
  return written;
}

}  // namespace tessarin
