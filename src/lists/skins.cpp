#include "lists/skins.h"

#include <QDir>
#include <QString>
#include <QStringList>
#include <algorithm>

#include "app/context.h"
#include "archive/unzip.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/messages.h"

namespace tessarin {

namespace resources {
// The built-in texts (resources/skins) and the default skin archives made from them at build
// time.
std::string_view SkinText(std::string_view name);
std::string_view SkinArchive(std::string_view name);
}  // namespace resources

namespace {

bool French(int languageNumber) { return languageNumber == Messages::kFrench; }

QString Qt(const std::string& utf8) { return QString::fromUtf8(utf8.data(), utf8.size()); }
std::string Std(const QString& text) { return text.toUtf8().toStdString(); }

std::string HtmlFolder(const AppContext& ctx) { return AddSlash(ctx.AppFolder() + "HTML"); }

}  // namespace

std::string_view BuiltInList() { return resources::SkinText("list.htm"); }

std::string_view BuiltInIndex(int languageNumber) {
  return resources::SkinText(French(languageNumber) ? "index_fr.htm" : "index_en.htm");
}

std::string_view BuiltInCompleteList(int languageNumber) {
  return resources::SkinText(French(languageNumber) ? "listroms_fr.htm" : "listroms_en.htm");
}

std::string_view BuiltInGamePage(int languageNumber) {
  return resources::SkinText(French(languageNumber) ? "rom_fr.htm" : "rom_en.htm");
}

std::string_view DefaultSkinArchive(std::string_view fileName) {
  if (fileName != kDefaultSkinFR && fileName != kDefaultSkinEN) return {};
  return resources::SkinArchive(fileName);
}

bool IsSkinArchiveName(std::string_view skinName) {
  if (skinName.size() < 4) return false;
  std::string tail(skinName.substr(skinName.size() - 4));
  std::transform(tail.begin(), tail.end(), tail.begin(),
                 [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; });
  return tail == ".zip";
}

std::vector<std::string> ListSkins(const std::string& appFolder) {
  std::vector<std::string> skins;
  const QDir html(Qt(AddSlash(appFolder) + "HTML"));
  if (!html.exists()) return skins;
  // Folders and files alike: a plain file called x.skin is offered too and leads to the
  // built-in texts when chosen.
  const QDir::Filters all = QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot | QDir::Hidden;
  for (const QString& name : html.entryList({QStringLiteral("*.skin")}, all, QDir::Name)) {
    skins.push_back(Std(name));
  }
  for (const QString& name :
       html.entryList({QStringLiteral("*.skin.zip")}, QDir::Files, QDir::Name)) {
    skins.push_back(Std(name));
  }
  return skins;
}

bool ResolveSkinFolder(AppContext& ctx, const std::string& skinName, std::string& folder) {
  folder.clear();
  const std::string html = HtmlFolder(ctx);
  if (skinName.empty()) {
    folder = html;
    return true;
  }
  if (!IsSkinArchiveName(skinName)) {
    folder = html + skinName;
    if (folder.back() != '\\' && folder.back() != '/') folder = AddSlash(folder);
    return true;
  }
  // An archive is unpacked over whatever an earlier skin left in the temporary folder.
  std::string unzipError;
  UnzipEnvironment environment;
  environment.appFolder = ctx.AppFolder();
  environment.unzipError = &unzipError;
  environment.log = &ctx.log;
  const bool unpacked =
      !ctx.TempFolder.empty() && UnzipAll(environment, html + skinName, ctx.TempFolder, true);
  if (!unpacked) {
    if (!unzipError.empty()) ctx.log.WriteLogLine(unzipError, false, {});
    ctx.Ui().ShowMessage(false, ctx.messages.Lng(143), ctx.messages.Lng(29), Icon::Stop);
    return false;
  }
  folder = ctx.TempFolder;
  return true;
}

bool LoadTemplate(const std::string& path, std::string& text) {
  text.clear();
  if (!FileExists(path)) return false;
  return ReadWholeFile(path, text);
}

bool WritePage(const std::string& path, std::string_view text) {
  return WriteFileAtomically(path, text);
}

void CopyCompanions(const std::string& skinFolder, std::string_view baseName,
                    const std::string& destFolder, bool keepExisting) {
  const QDir skin(Qt(skinFolder));
  if (!skin.exists()) return;
  // "base*.*": on the desktop the pattern also takes names without a dot, so "base*" it is.
  const QString pattern = Qt(std::string(baseName)) + QStringLiteral("*");
  const std::string dest = AddSlash(destFolder);
  for (const QString& name : skin.entryList({pattern}, QDir::Files | QDir::Hidden, QDir::Name)) {
    const std::string fileName = Std(name);
    const std::string target = dest + fileName;
    if (keepExisting && FileExists(target)) continue;
    ShellCopy(AddSlash(skinFolder) + fileName, target, 0, true, false);
  }
}

std::string_view SkinPageFile(SkinPage page) {
  switch (page) {
    case SkinPage::Index:
      return "index.htm";
    case SkinPage::Rom:
      return "rom.htm";
    case SkinPage::ListRoms:
      return "listroms.htm";
    case SkinPage::Genre:
      return "genre.htm";
    case SkinPage::Category:
      return "category.htm";
    case SkinPage::Manufacturer:
      return "manufacturer.htm";
    case SkinPage::Year:
      return "year.htm";
    case SkinPage::VerAdded:
      return "veradded.htm";
  }
  return {};
}

SkinTemplate LoadSiteTemplate(const std::string& skinFolder, SkinPage page, int languageNumber,
                              const std::string& destFolder) {
  SkinTemplate result;
  const std::string folder = AddSlash(skinFolder);
  const std::string own(SkinPageFile(page));
  const bool groupPage =
      page != SkinPage::Index && page != SkinPage::Rom && page != SkinPage::ListRoms;
  if (LoadTemplate(folder + own, result.text)) {
    result.fileName = own;
  } else if (groupPage && LoadTemplate(folder + "list.htm", result.text)) {
    result.fileName = "list.htm";
  } else {
    switch (page) {
      case SkinPage::Index:
        result.text = BuiltInIndex(languageNumber);
        break;
      case SkinPage::Rom:
        result.text = BuiltInGamePage(languageNumber);
        break;
      case SkinPage::ListRoms:
        result.text = BuiltInCompleteList(languageNumber);
        break;
      default:
        result.text = BuiltInList();
        break;
    }
  }
  if (!destFolder.empty()) {
    // The plain patterns carry more than their own page, and that is how sites have always come
    // out: list*.* brings listroms.htm along, rom*.* brings rom.htm itself.
    if (page == SkinPage::Rom) {
      CopyCompanions(folder, "rom", destFolder, false);
    } else if (!result.fileName.empty()) {
      const std::string& file = result.fileName;
      CopyCompanions(folder, std::string_view(file).substr(0, file.size() - 4), destFolder, false);
    }
  }
  return result;
}

std::string MakeFoundPage(AppContext& ctx, const std::string& skinName, const std::string& romName,
                          const GamePageOptions& options, const std::string& outPath) {
  std::string written;
  std::string folder;
  if (!ResolveSkinFolder(ctx, skinName, folder)) return written;
  RunGuarded(ctx.log, 6502, [&] {
    const bool archive = !skinName.empty() && IsSkinArchiveName(skinName);
    const std::string templatePath = folder + "search.htm";
    std::string text;
    if (!LoadTemplate(templatePath, text)) {
      text = BuiltInGamePage(ctx.messages.LanguageNumber);
      WritePage(templatePath, text);
    }
    GamePageOptions search = options;
    search.keepNavigation = false;
    search.prefixName = false;
    search.siteLinks = false;
    search.siteRoot.clear();
    const std::string page = FillGamePage(ctx, romName, text, 0, search);
    const std::string target = outPath.empty() ? ctx.TempFolder + "Found.htm" : outPath;
    if (!WritePage(target, page)) return;
    written = target;
    std::string pageFolder = PathText(FsPath(target).parent_path());
    pageFolder = pageFolder.empty() ? std::string() : AddSlash(pageFolder);
    // An archive was unpacked into the temporary folder, where its search*.* stand already.
    if (!archive || (!pageFolder.empty() && FsPath(pageFolder) != FsPath(folder))) {
      if (!pageFolder.empty()) CopyCompanions(folder, "search", pageFolder, true);
    }
  });
  return written;
}

}  // namespace tessarin
