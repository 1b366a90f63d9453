#include "lists/htmlsiteui.h"

#include "app/context.h"
#include "core/fileservices.h"
#include "core/work.h"
#include "lists/htmlsite.h"
#include "lists/listdialog.h"
#include "online/urllist.h"
#include "widgets/workingdialog.h"

namespace tessarin {

void BuildHtmlSiteFromDialog(ListDialog& dialog, bool useIniFile, const UrlTables* sites) {
  AppContext& ctx = dialog.Context();
  std::vector<std::string>& names = dialog.HtmlGameNames();
  if (useIniFile) {
    // The filter text is the same in every language.
    const std::string file =
        ctx.Ui().ChooseFile(ctx.messages.Lng(175), "folder.ini",
                            "Fichiers ini (*.ini)|*.ini|Tous les fichies|*.*|", false);
    if (!IsLoadableIniFile(file)) return;
    dialog.hide();
    const bool loaded =
        RunWithWorkingDialog(dialog.parentWidget(), ctx, ctx.messages.Lng(176),
                             [&](Work& work) { LoadHtmlGameNames(ctx, work, file, names); });
    if (!loaded) {
      dialog.show();
      return;
    }
  }
  const HtmlPageState state = dialog.HtmlState();
  HtmlSiteRequest request;
  request.destination = state.destination;
  request.skin = state.skin;
  request.skipClones = state.skipClones;
  request.onlyAvailable = state.onlyAvailable;
  request.copyImages = state.copyImages;
  request.imageSets = state.imageSets;
  request.onlineImages = state.imagesOnline;
  request.searchIndex = state.searchIndex;
  if (request.onlineImages) {
    if (sites) {
      request.onlinePatterns = sites->OnlineImages;
    } else {
      UrlTables fromFile;
      LoadUrlList(fromFile, ctx.AppFolder(), ctx.log);
      request.onlinePatterns = fromFile.OnlineImages;
    }
  }
  dialog.hide();
  RunWithWorkingDialog(dialog.parentWidget(), ctx, ctx.messages.Lng(142),
                       [&](Work& work) { BuildHtmlSite(ctx, work, request, useIniFile, names); });
  dialog.show();
}

}  // namespace tessarin
