#include "lists/htmlsite.h"

#include <QDir>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "app/context.h"
#include "archive/unzip.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/version.h"
#include "core/work.h"
#include "lists/skins.h"
#include "search/searchengine.h"
#include "sheet/gamedetails.h"
#include "sheet/gamepage.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"

namespace tessarin {

namespace {

constexpr size_t kSortKeyWidth = 100;
constexpr std::string_view kCrLf = "\r\n";

QString ToQString(const std::string& utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
std::string FromQString(const QString& text) { return text.toUtf8().toStdString(); }

// The game's position behind the 100 characters of its sort key; 0 when there is none.
int KeyPosition(std::string_view key) {
  if (key.size() <= kSortKeyWidth) return 0;
  int value = 0;
  for (char c : key.substr(kSortKeyWidth)) {
    if (c < '0' || c > '9') break;
    value = value * 10 + (c - '0');
  }
  return value;
}

const std::string& RomNameAt(const GameStore& store, int position) {
  static const std::string kNone;
  const auto& names = store.GameNames();
  if (position <= 0 || position >= static_cast<int>(names.size())) return kNone;
  return names[static_cast<size_t>(position)];
}

const std::string& TableName(const CodeTable& table, std::string_view indexText) {
  static const std::string kNone;
  int index = 0;
  for (char c : indexText) {
    if (c < '0' || c > '9') return kNone;
    index = index * 10 + (c - '0');
  }
  if (index <= 0 || index >= static_cast<int>(table.size())) return kNone;
  return table[static_cast<size_t>(index)];
}

std::string Link(std::string_view address, std::string_view text) {
  std::string link;
  link.reserve(address.size() + text.size() + 15);
  link += "<a href=\"";
  link += address;
  link += "\">";
  link += text;
  link += "</a>";
  return link;
}

// A link into a group folder of the site, from a page one level down.
void AppendGroupLink(std::string& out, std::string_view folder, const std::string& name) {
  out += "<a href=\"../";
  out += folder;
  out += '/';
  out += MakeFileSafeName(name);
  out += ".htm\">";
  out += name;
  out += "</a>";
}

// Pages are written whole, one call each, over any older file; the complete list goes out
// through a stream's buffer. Both count what they write.
class PageWriter final {
 public:
  explicit PageWriter(HtmlSiteStats& stats) : m_stats(stats) {}
  bool Write(const std::string& path, std::string_view text) {
    // Opening for writing truncates: the older file of the name is replaced.
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    const size_t written = text.empty() ? 0 : std::fwrite(text.data(), 1, text.size(), file);
    const bool ok = std::fclose(file) == 0 && written == text.size();
    ++m_stats.files;
    m_stats.bytes += static_cast<long long>(written);
    return ok;
  }
  HtmlSiteStats& Stats() { return m_stats; }

 private:
  HtmlSiteStats& m_stats;
};

// The files of a listing pattern given as a folder path with a name prefix behind it
// ("/images/titles" + "*.zip"): full paths, in name order, case ignored as the desktop's
// listing does.
std::vector<std::string> ListPattern(const std::string& folderAndPrefix, std::string_view suffix) {
  std::vector<std::string> files;
  const size_t cut = folderAndPrefix.find_last_of("/\\");
  const std::string folder =
      cut == std::string::npos ? std::string(".") : folderAndPrefix.substr(0, cut + 1);
  const std::string prefix =
      cut == std::string::npos ? folderAndPrefix : folderAndPrefix.substr(cut + 1);
  const QDir dir(ToQString(folder));
  if (!dir.exists()) return files;
  const QString pattern = ToQString(prefix) + QStringLiteral("*") + ToQString(std::string(suffix));
  for (const QString& name : dir.entryList({pattern}, QDir::Files | QDir::Hidden, QDir::Name)) {
    files.push_back(AddSlash(folder) + FromQString(name));
  }
  return files;
}

struct GroupKind {
  int listMessage;  // the working text
  SkinPage page;    // the template
  std::string_view folder;
  std::string_view indexFile;  // base name of the index file
  int titleMessage;
};

// In the order the pages are built: category, manufacturer, year, version, genre.
constexpr std::array<GroupKind, 5> kGroupKinds = {{
    {340, SkinPage::Category, "categories", "category", 370},
    {341, SkinPage::Manufacturer, "manufacturers", "manufacturer", 369},
    {342, SkinPage::Year, "years", "year", 368},
    {343, SkinPage::VerAdded, "veradded", "veradded", 367},
    {344, SkinPage::Genre, "genres", "genre", 366},
}};

std::string CountText(const AppContext& ctx, int message, int count) {
  return ctx.messages.Lng(message) + " (" + std::to_string(count) + " roms)";
}

// The folders of the site, made in order; every one is tried and the user is told of each
// that can't be made. False when one is missing at the end.
bool MakeSiteFolders(AppContext& ctx, const std::string& d) {
  std::vector<std::string> folders;
  std::string root = d;
  while (root.size() > 1 && (root.back() == '/' || root.back() == '\\')) root.pop_back();
  folders.push_back(root);
  const std::string site = d + "tessarin";
  folders.push_back(site);
  for (std::string_view sub :
       {"manufacturers", "genres", "categories", "years", "veradded", "roms", "images"}) {
    folders.push_back(site + "/" + std::string(sub));
  }
  for (std::string_view set : {"snap", "flyers", "cabinets", "marquees", "cpanel", "titles"}) {
    folders.push_back(site + "/images/" + std::string(set));
  }
  bool ok = true;
  for (const std::string& folder : folders) {
    if (FolderExists(folder)) continue;
    std::error_code error;
    std::filesystem::create_directories(FsPath(folder), error);
    if (!FolderExists(folder)) {
      ok = false;
      ctx.Ui().ShowMessage(false, ctx.messages.Lng(174) + "\r\n" + folder, ctx.messages.Lng(29),
                           Icon::Stop);
    }
  }
  return ok;
}

}  // namespace

std::string GroupEntry(const AppContext& ctx, int kind, const std::vector<std::string>& pieces) {
  const GameStore& store = ctx.store;
  const auto piece = [&pieces](size_t i) -> std::string_view {
    return i < pieces.size() ? std::string_view(pieces[i]) : std::string_view();
  };
  std::string entry;
  entry.reserve(256);
  int position = 0;
  for (char c : piece(2)) {
    if (c < '0' || c > '9') break;
    position = position * 10 + (c - '0');
  }
  entry += "<a href=\"../roms/";
  entry += RomNameAt(store, position);
  entry += ".htm\">";
  entry += piece(1);
  entry += "</a>";
  const auto genre = [&](size_t i) {
    AppendGroupLink(entry, "genres", TableName(store.GenreTable, piece(i)));
  };
  const auto category = [&](size_t i) {
    AppendGroupLink(entry, "categories", TableName(store.CategoryTable, piece(i)));
  };
  const auto manufacturer = [&](size_t i) {
    AppendGroupLink(entry, "manufacturers", TableName(store.ManufacturerTable, piece(i)));
  };
  const auto year = [&](size_t i) {
    AppendGroupLink(entry, "years", TableName(store.YearTable, piece(i)));
  };
  switch (kind) {
    case 0:  // category: (genre), manufacturer, year
      entry += " (";
      genre(3);
      entry += "), ";
      manufacturer(4);
      entry += ", ";
      year(5);
      break;
    case 1:  // manufacturer: (genre, category), year
      entry += " (";
      genre(3);
      entry += ", ";
      category(4);
      entry += "), ";
      year(5);
      break;
    case 2:  // year: (genre, category), manufacturer
      entry += " (";
      genre(3);
      entry += ", ";
      category(4);
      entry += "), ";
      manufacturer(5);
      break;
    case 3:  // version: (genre, category), manufacturer, year
      entry += " (";
      genre(3);
      entry += ", ";
      category(4);
      entry += "), ";
      manufacturer(5);
      entry += ", ";
      year(6);
      break;
    default:  // genre: (category), manufacturer, year
      entry += " (";
      category(3);
      entry += "), ";
      manufacturer(4);
      entry += ", ";
      year(5);
      break;
  }
  entry += "<br>";
  return entry;
}

namespace {

void AppendJsString(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out += '"';
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (u < 0x20 || c == '<') {
      out += "\\u00";
      out += kHex[u >> 4];
      out += kHex[u & 15];
    } else {
      out += c;
    }
  }
  out += '"';
}

}  // namespace

std::string SearchIndexScript(const std::vector<SiteIndexEntry>& entries) {
  std::string out = "var TESSARIN_GAMES=[";
  out.reserve(entries.size() * 80 + 32);
  bool first = true;
  for (const SiteIndexEntry& e : entries) {
    out += first ? "\n[" : ",\n[";
    first = false;
    const std::string* fields[] = {&e.rom,          &e.page, &e.description,
                                   &e.manufacturer, &e.year, &e.genre};
    for (size_t f = 0; f < 6; ++f) {
      if (f) out += ',';
      AppendJsString(out, *fields[f]);
    }
    out += ']';
  }
  out += "\n];\n";
  return out;
}

std::string_view SearchPageText() {
  return R"HTML(<html><head><meta http-equiv="Content-Type" content="text/html; charset=utf-8"><title>Search</title>
<style>
body{color:#FFFFFF;background:#0F3F60;font-family:Verdana,sans-serif;font-size:small}
a{color:#00FFFF} a:visited{color:#00FF00}
#panel{width:720px;margin:0 auto;background:#006699;padding:8px}
h1{color:#FFFF00;text-align:center;font-size:large}
input{width:100%;font-size:medium}
td{padding:1px 6px;vertical-align:top}
</style>
<script src="search-index.js" charset="utf-8"></script></head>
<body><div id="panel"><h1>SEARCH</h1>
<p><label for="q">Name, description, manufacturer, year or genre (every word must match):</label><br>
<input id="q" type="search" autofocus></p>
<p id="count"></p><table id="results"></table>
<p style="text-align:center"><a href="index.htm">Menu</a></p></div>
<script>
(function () {
  var games = window.TESSARIN_GAMES || [];
  var box = document.getElementById("q");
  var table = document.getElementById("results");
  var count = document.getElementById("count");
  var limit = 500;
  var lower = games.map(function (g) { return g.join("\u0001").toLowerCase(); });
  function cell(row, text, href) {
    var td = row.insertCell(-1);
    if (href) {
      var a = document.createElement("a");
      a.href = href;
      a.textContent = text;
      td.appendChild(a);
    } else {
      td.textContent = text;
    }
  }
  function run() {
    var words = box.value.toLowerCase().split(/\s+/).filter(function (w) { return w; });
    while (table.rows.length) table.deleteRow(0);
    if (!words.length) { count.textContent = games.length + " games"; return; }
    var found = 0;
    for (var i = 0; i < games.length; i++) {
      var text = lower[i], ok = true;
      for (var w = 0; w < words.length && ok; w++) ok = text.indexOf(words[w]) >= 0;
      if (!ok) continue;
      if (found++ >= limit) continue;
      var g = games[i], row = table.insertRow(-1);
      cell(row, g[2], "roms/" + encodeURIComponent(g[1]).replace(/%2F/g, "/"));
      cell(row, g[0]);
      cell(row, g[3]);
      cell(row, g[4]);
      cell(row, g[5]);
    }
    count.textContent = found + " found" + (found > limit ? ", the first " + limit + " shown" : "");
  }
  box.addEventListener("input", run);
  if (location.hash.length > 1) box.value = decodeURIComponent(location.hash.substring(1));
  run();
})();
</script></body></html>
)HTML";
}

std::string CompleteListLine(const AppContext& ctx, std::string_view sortKey) {
  std::string line = "<a href=\"";
  line += RomNameAt(ctx.store, KeyPosition(sortKey));
  line += ".htm\">";
  line += TrimBlanks(sortKey.substr(0, std::min(sortKey.size(), kSortKeyWidth)));
  line += "</a><br>";
  line += kCrLf;
  return line;
}

bool IsLoadableIniFile(const std::string& iniPath) {
  if (iniPath.empty() || !FileExists(iniPath)) return false;
  std::error_code error;
  const auto size = std::filesystem::file_size(FsPath(iniPath), error);
  return !error && size > 0;
}

bool LoadHtmlGameNames(AppContext& ctx, Work& work, const std::string& iniPath,
                       std::vector<std::string>& names) {
  names.assign(1, std::string());
  std::ifstream in(FsPath(iniPath), std::ios::binary);
  if (!in) return true;
  std::string line;
  while (std::getline(in, line)) {
    if (work.CancelRequested) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (ctx.store.FindGame(line) != 0) names.push_back(line);
  }
  return !work.CancelRequested;
}

void CopyImageSet(AppContext& ctx, Work& work, const std::string& destination, std::string_view set,
                  const std::vector<std::string>& htmlGameNames) {
  RunGuarded(ctx.log, 6202, [&] {
    const std::string source = ctx.settings.InfRead(std::string(set) + "Path");
    if (source.empty() || source == "-1" || StartsWithNoCase(source, "http:")) return;
    const std::string images = AddSlash(destination) + "tessarin/images/" + std::string(set) + "/";
    const std::string temp = images + "temp";
    std::error_code error;
    std::filesystem::create_directories(FsPath(temp), error);
    const bool useTemp = FolderExists(temp);
    const std::string target = useTemp ? temp + "/" : images;

    std::string unzipError;
    UnzipEnvironment environment;
    environment.appFolder = ctx.AppFolder();
    environment.unzipError = &unzipError;
    environment.log = &ctx.log;
    environment.work = &work;
    for (const std::string& pack : ListPattern(source + std::string(set), ".zip")) {
      if (work.CancelRequested) break;
      UnzipAll(environment, pack, target, false);
    }
    if (useTemp) {
      work.ProgressMax = static_cast<long long>(htmlGameNames.size()) - 1;
      for (size_t i = 1; i < htmlGameNames.size(); ++i) {
        if (work.CancelRequested) break;
        work.ProgressValue = static_cast<long long>(i);
        const std::string picture = temp + "/" + htmlGameNames[i] + ".png";
        if (FileExists(picture))
          ShellCopy(picture, images + htmlGameNames[i] + ".png", 1, true, false);
      }
      ShellDelete(temp, true);
    }
    for (const std::string& picture : ListPattern(source, ".png")) {
      if (work.CancelRequested) break;
      const std::string name = picture.substr(picture.find_last_of("/\\") + 1);
      if (useTemp && FileExists(images + name)) continue;
      ShellCopy(picture, images + name, 0, true, false);
    }
  });
}

HtmlSiteResult BuildHtmlSite(AppContext& ctx, Work& work, const HtmlSiteRequest& request,
                             bool useIniNames, std::vector<std::string>& htmlGameNames,
                             HtmlSiteStats* statsOut) {
  HtmlSiteStats localStats;
  HtmlSiteStats& stats = statsOut ? *statsOut : localStats;
  stats = HtmlSiteStats{};
  PageWriter writer(stats);
  const Messages& lng = ctx.messages;
  GameStore& store = ctx.store;
  HtmlSiteResult result = HtmlSiteResult::Done;

  // 1. The folders.
  const std::string d = AddSlash(request.destination);
  const std::string site = d + "tessarin/";
  stats.indexPath = site + "index.htm";
  if (!MakeSiteFolders(ctx, d)) return HtmlSiteResult::FolderError;

  // 2. The menu link.
  const std::string menuLink = "<a href=\"../index.htm\">Menu</a>";

  // 3. The skin.
  std::string skinFolder;
  if (!ResolveSkinFolder(ctx, request.skin, skinFolder)) return HtmlSiteResult::SkinError;

  // 4. The selection.
  if (htmlGameNames.empty()) htmlGameNames.emplace_back();
  if (!useIniNames) {
    const auto& all = store.GameNames();
    if (!request.skipClones && !request.onlyAvailable) {
      htmlGameNames.assign(all.begin(), all.end());
      if (htmlGameNames.empty()) htmlGameNames.emplace_back();
    } else {
      SearchCriteria criteria;
      if (request.onlyAvailable) criteria.Available = 1;
      if (request.skipClones) criteria.Clones = 2;
      const SearchResult found = SearchGames(store, criteria);
      htmlGameNames.assign(1, std::string());
      htmlGameNames.reserve(found.size() + 1);
      for (int index : found) htmlGameNames.push_back(RomNameAt(store, index));
    }
  }
  const int count = static_cast<int>(htmlGameNames.size()) - 1;
  stats.games = count;

  // 5. An empty selection; the image sets.
  if (count <= 0) {
    ctx.Ui().ShowMessage(false, lng.Lng(339), {}, Icon::Warning);
    return HtmlSiteResult::NoGames;
  }
  work.SetStatus(lng.Lng(142));
  if (request.copyImages) {
    work.SetStatus(lng.Lng(144));
    for (size_t s = 0; s < kSiteImageSets.size(); ++s) {
      if (work.CancelRequested) break;
      if (request.imageSets[s]) CopyImageSet(ctx, work, d, kSiteImageSets[s], htmlGameNames);
    }
  }

  const auto cancelled = [&] {
    if (!work.CancelRequested) return false;
    result = HtmlSiteResult::Cancelled;
    return true;
  };

  RunGuarded(ctx.log, 6201, [&] {
    // A cancel given during the image copies still lets the keys be made and the game
    // template's companions be copied: the game loop is where it stops.
    // 6. Sort keys: by description, the position breaking ties.
    MakeSortKeys(store, htmlGameNames);
    std::sort(htmlGameNames.begin() + 1, htmlGameNames.end());

    // 7. Version texts.
    const std::string verMame = store.DatabaseVersion.empty() ? "MAME ?" : store.DatabaseVersion;
    const std::string verData = "Tessarin v" + AppVersion();

    // 8. The game template, read once.
    const int language = lng.LanguageNumber;
    const SkinTemplate romTemplate =
        LoadSiteTemplate(skinFolder, SkinPage::Rom, language, site + "roms/");

    // 9. Game pages.
    work.SetStatus(CountText(ctx, 145, count));
    work.ProgressMax = count;
    GamePageOptions options;
    options.keepNavigation = true;
    options.prefixName = true;
    options.siteLinks = true;
    options.siteRoot = d;
    options.onlineImages = request.onlineImages;
    options.onlinePatterns = request.onlinePatterns;
    GameDetailsLoader loader(ctx);
    std::vector<SiteIndexEntry> indexEntries;
    std::array<std::vector<std::string>, 5> keys;
    for (auto& k : keys) k.assign(static_cast<size_t>(count) + 1, std::string());
    std::vector<int> positions(static_cast<size_t>(count) + 2, 0);
    for (int i = 1; i <= count; ++i)
      positions[static_cast<size_t>(i)] = KeyPosition(htmlGameNames[static_cast<size_t>(i)]);
    const std::string romFolder = site + "roms/";
    for (int i = 1; i <= count; ++i) {
      work.ProgressValue = i;
      if (cancelled()) return;
      const std::string& item = htmlGameNames[static_cast<size_t>(i)];
      if (TrimBlanks(item).size() <= 1) continue;
      const int position = positions[static_cast<size_t>(i)];
      GroupKeys groupKeys;
      std::string page =
          FillGamePage(ctx, loader, std::string(), romTemplate.text, position, options, &groupKeys);
      if (page.empty()) continue;
      const std::string_view prefix =
          std::string_view(page).substr(0, std::min<size_t>(12, page.size()));
      const std::string fileName = MakeFileSafeName(std::string(TrimBlanks(prefix)) + ".htm");
      if (request.searchIndex) {
        const auto group = [](const std::string& key) {
          std::string value = key.substr(0, key.find(kGroupKeySeparator));
          return value == "0" ? std::string() : value;
        };
        indexEntries.push_back({RomNameAt(store, position), fileName,
                                std::string(TrimBlanks(GameDescription(store, position))),
                                group(groupKeys.Manufacturer), group(groupKeys.Year),
                                group(groupKeys.Genre)});
      }
      keys[0][static_cast<size_t>(i)] = std::move(groupKeys.Category);
      keys[1][static_cast<size_t>(i)] = std::move(groupKeys.Manufacturer);
      keys[2][static_cast<size_t>(i)] = std::move(groupKeys.Year);
      keys[3][static_cast<size_t>(i)] = std::move(groupKeys.Version);
      keys[4][static_cast<size_t>(i)] = std::move(groupKeys.Genre);
      const std::string previous =
          i == 1 ? std::string()
                 : Link(RomNameAt(store, positions[static_cast<size_t>(i) - 1]) + ".htm",
                        "Pr\xC3\xA9"
                        "c\xC3\xA9"
                        "dent");
      const std::string next =
          i == count
              ? std::string()
              : Link(RomNameAt(store, positions[static_cast<size_t>(i) + 1]) + ".htm", "Suivant");
      std::string body = page.substr(prefix.size());
      body = FastReplace(body, "#PREVIOUS", previous);
      body = FastReplace(body, "#NEXT", next);
      body = FastReplace(body, "#HOME", menuLink);
      writer.Write(romFolder + fileName, body);
    }

    // 10. Group keys in order: by group, then description, then position as text.
    for (auto& k : keys) std::sort(k.begin() + 1, k.end());

    // 11. Group pages.
    std::vector<std::string> pieces;
    for (size_t kindIndex = 0; kindIndex < kGroupKinds.size(); ++kindIndex) {
      const GroupKind& kind = kGroupKinds[kindIndex];
      const std::vector<std::string>& items = keys[kindIndex];
      work.SetStatus(CountText(ctx, kind.listMessage, count));
      work.ProgressValue = 0;
      const std::string folder = site + std::string(kind.folder) + "/";
      std::string page = LoadSiteTemplate(skinFolder, kind.page, language, folder).text;
      const std::string backLink = "<a href=\"" + std::string(kind.indexFile) + ".htm\">Back</a>";
      page = FastReplace(page, "#HOME", backLink);
      page = FastReplace(page, "#VERMAME", verMame);
      page = FastReplace(page, "#VERMDATA", verData);

      int first = 1;
      while (first <= count && items[static_cast<size_t>(first)].empty()) ++first;
      std::string indexList;
      std::string body;
      std::string group;
      const auto flush = [&] {
        std::string text = FastReplace(page, "#LIST", body);
        text = FastReplace(text, "#TITLE", group);
        writer.Write(folder + MakeFileSafeName(group) + ".htm", text);
        body.clear();
      };
      if (first <= count) {
        const std::string& firstItem = items[static_cast<size_t>(first)];
        group = firstItem.substr(0, firstItem.find(kGroupKeySeparator));
        indexList = Link(MakeFileSafeName(group) + ".htm", group) + "<br>";
      }
      for (int i = first; i <= count; ++i) {
        work.ProgressValue = i;
        if (cancelled()) return;
        FastSplit(items[static_cast<size_t>(i)], pieces, kGroupKeySeparator);
        const std::string entry = GroupEntry(ctx, static_cast<int>(kindIndex), pieces);
        const std::string itemGroup = pieces.empty() ? std::string() : pieces[0];
        if (itemGroup != group) {
          flush();
          group = itemGroup;
          indexList += Link(MakeFileSafeName(group) + ".htm", group) + "<br>";
          body = "<b>" + group + "</b><br>";
        }
        body += entry;
      }
      if (!body.empty()) flush();
      std::string index = FastReplace(page, "#LIST", indexList);
      index = FastReplace(index, "#TITLE", lng.Lng(kind.titleMessage));
      index = FastReplace(index, backLink, menuLink);
      writer.Write(folder + std::string(kind.indexFile) + ".htm", index);
    }

    // 12. The main menu.
    std::string menu = LoadSiteTemplate(skinFolder, SkinPage::Index, language, site).text;
    menu = FastReplace(menu, "#LISTCATEGORY", Link("categories/category.htm", lng.Lng(360)));
    menu = FastReplace(menu, "#LISTGENRE", Link("genres/genre.htm", lng.Lng(361)));
    menu = FastReplace(menu, "#LISTMANUFACTURER",
                       Link("manufacturers/manufacturer.htm", lng.Lng(362)));
    menu = FastReplace(menu, "#LISTVERADDED", Link("veradded/veradded.htm", lng.Lng(363)));
    menu = FastReplace(menu, "#LISTYEAR", Link("years/year.htm", lng.Lng(364)));
    menu = FastReplace(menu, "#HELP",
                       Link(MakeFileUrl(AddSlash(ctx.AppFolder() + "HTML") + "help.htm"), "Help"));
    menu = FastReplace(menu, "#VERMAME", verMame);
    menu = FastReplace(menu, "#VERMDATA", verData);
    menu = FastReplace(menu, "#LISTROMS", Link("roms/listroms.htm", lng.Lng(365)));
    writer.Write(site + "index.htm", menu);

    // 13. The complete list, written through a buffer in pieces.
    std::string list = LoadSiteTemplate(skinFolder, SkinPage::ListRoms, language, romFolder).text;
    list = FastReplace(list, "#VERMAME", verMame);
    list = FastReplace(list, "#VERMDATA", verData);
    list = FastReplace(list, "#HOME", menuLink);
    const size_t tag = list.find("#COMPLETELIST");
    if (tag == std::string::npos) {
      if (request.searchIndex) {
        writer.Write(site + "search-index.js", SearchIndexScript(indexEntries));
        writer.Write(site + "search.htm", SearchPageText());
      }
      return;
    }
    const std::string listPath = romFolder + "listroms.htm";
    KillQuiet(listPath);
    std::string out;
    out.reserve(1 << 20);
    std::ofstream file(FsPath(listPath), std::ios::binary);
    const auto drain = [&](bool always) {
      if (!always && out.size() < (1u << 20)) return;
      file.write(out.data(), static_cast<std::streamsize>(out.size()));
      stats.bytes += static_cast<long long>(out.size());
      out.clear();
    };
    ++stats.files;
    out.append(list, 0, tag);
    out += "<a name=\"0\">";
    // 14. Letter anchors: only A to Z, and none for the letter of the very first game.
    char letter = htmlGameNames[1].empty() ? '\0' : UpperAscii(htmlGameNames[1][0]);
    for (int i = 1; i <= count; ++i) {
      if (cancelled()) {
        drain(true);
        return;
      }
      const std::string& key = htmlGameNames[static_cast<size_t>(i)];
      const char c = key.empty() ? '\0' : UpperAscii(key[0]);
      if (c != letter) {
        letter = c;
        if (c >= 'A' && c <= 'Z') {
          out += "</p><p><a name=\"";
          out += c;
          out += "\">";
        }
      }
      out += CompleteListLine(ctx, key);
      drain(false);
    }
    out.append(list, tag + std::string_view("#COMPLETELIST").size());
    drain(true);
    file.close();

    // The extra: the search page and its data, beside the site's own pages.
    if (request.searchIndex) {
      writer.Write(site + "search-index.js", SearchIndexScript(indexEntries));
      writer.Write(site + "search.htm", SearchPageText());
    }
  });

  // 15. The end.
  if (work.CancelRequested) return HtmlSiteResult::Cancelled;
  ctx.Ui().OpenDocument(stats.indexPath);
  ctx.Ui().ShowMessage(false, lng.Lng(41), {}, Icon::Information);
  return result;
}

}  // namespace tessarin
