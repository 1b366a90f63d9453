#include "search/foundpage.h"

#include <QDir>
#include <QString>
#include <QStringList>

#include "app/context.h"
#include "archive/unzip.h"
#include "core/fileservices.h"

namespace tessarin {

GamePageHooks& SearchGamePageHooks() {
  static GamePageHooks hooks;
  return hooks;
}

namespace {

bool EndsWithZip(const std::string& name) {
  if (name.size() < 4) return false;
  std::string tail = name.substr(name.size() - 4);
  for (char& c : tail) c = static_cast<char>((c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c);
  return tail == ".zip";
}

std::string DefaultTemplateOf(const GamePageHooks& hooks) {
  return hooks.DefaultTemplate ? hooks.DefaultTemplate() : std::string();
}

}  // namespace

std::vector<std::string> ListSearchSkins(const std::string& appFolder) {
  std::vector<std::string> skins;
  const QDir html(QString::fromStdString(AddSlash(appFolder + "HTML")));
  for (const QString& name :
       html.entryList({QStringLiteral("*.skin")}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
    skins.push_back(name.toStdString());
  }
  for (const QString& name :
       html.entryList({QStringLiteral("*.skin.zip")}, QDir::Files, QDir::Name)) {
    skins.push_back(name.toStdString());
  }
  return skins;
}

FoundPageResult ShowFoundPage(AppContext& ctx, const GamePageHooks& hooks,
                              const std::string& skinName, const std::string& romName,
                              bool onlineImages, std::string& pagePath) {
  if (!hooks.FillGamePage) return FoundPageResult::NoPageRoutine;
  const std::string htmlFolder = AddSlash(ctx.AppFolder() + "HTML");
  const std::string temp = AddSlash(ctx.TempFolder.empty() ? ctx.AppFolder() : ctx.TempFolder);
  std::string templatePath;
  std::string skinFolder;  // where the page's pictures come from; empty for a zipped skin
  if (skinName.empty()) {
    templatePath = htmlFolder + "search.htm";
    skinFolder = htmlFolder;
    if (!FileExists(templatePath)) WriteFileAtomically(templatePath, DefaultTemplateOf(hooks));
  } else {
    const std::string skinPath = htmlFolder + skinName;
    if (!EndsWithZip(skinName)) {
      skinFolder = AddSlash(skinPath);
      templatePath = skinFolder + "search.htm";
    } else {
      std::string unzipError;
      UnzipEnvironment environment{ctx.AppFolder(), &unzipError, &ctx.log, nullptr};
      if (!UnzipAll(environment, skinPath, temp, true)) return FoundPageResult::CantUnzipSkin;
      templatePath = temp + "search.htm";
    }
  }
  std::string pageTemplate;
  if (!FileExists(templatePath) || !ReadWholeFile(templatePath, pageTemplate)) {
    pageTemplate = DefaultTemplateOf(hooks);
    WriteFileAtomically(templatePath, pageTemplate);
  }
  const std::string page = hooks.FillGamePage(ctx, pageTemplate, romName, onlineImages);
  pagePath = temp + "Found.htm";
  WriteFileAtomically(pagePath, page);
  if (!skinFolder.empty()) {
    // The page's pictures, so that it shows them from the temporary folder.
    const QDir folder(QString::fromStdString(skinFolder));
    const QStringList pictures =
        folder.entryList({QStringLiteral("search*.*")}, QDir::Files, QDir::Name);
    for (const QString& name : pictures) {
      const std::string target = temp + name.toStdString();
      if (!FileExists(target)) ShellCopy(skinFolder + name.toStdString(), target, 0, true, false);
    }
  }
  return FoundPageResult::Written;
}

}  // namespace tessarin
