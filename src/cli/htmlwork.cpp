#include "cli/htmlwork.h"

#include "cli/session.h"
#include "core/fileservices.h"
#include "lists/skins.h"
#include "online/urllist.h"
#include "shell/startup.h"

namespace tessarin {

bool PrepareHtmlWork(CliSession& session, const std::string& folderName) {
  AppContext& ctx = session.Ctx();
  const std::string base = GetTempFolderPath();
  const std::string folder = base + folderName;
  if (!base.empty()) {
    ShellDelete(folder, true);
    MakeFolder(folder);
  }
  if (base.empty() || !FolderExists(folder)) {
    session.Error(ctx.messages.Lng(310) + ": " + folder);
    return false;
  }
  ctx.TempFolder = AddSlash(folder);
  MakeAppFolders(ctx);
  StartUpSteps steps;
  steps.SkinResource = DefaultSkinArchive;
  ExtractSkinFR(ctx, steps);
  ExtractSkinEN(ctx, steps);
  return true;
}

std::array<std::string, 7> OnlinePicturePatterns(AppContext& ctx) {
  UrlTables sites;
  LoadUrlList(sites, ctx.AppFolder(), ctx.log);
  return sites.OnlineImages;
}

}  // namespace tessarin
