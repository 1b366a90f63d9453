// The page command: the HTML page of one game, as the search dialog's Show makes it.
#include <memory>

#include "cli/htmlwork.h"
#include "cli/session.h"
#include "lists/skins.h"

namespace tessarin {

namespace {

void AddPage(CliRegistry& registry) {
  struct Options {
    std::string name, skin, out;
    bool onlineImages = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* page = registry.Add(
      "page",
      "Write the HTML page of a game, filled from the search page of a skin (the built-in one "
      "without --skin), and print its path",
      [o](CliSession& session) {
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        if (!PrepareHtmlWork(session, "tessarin-cli")) return kExitFailed;

        GamePageOptions options;
        options.onlineImages = o->onlineImages;
        if (o->onlineImages) options.onlinePatterns = OnlinePicturePatterns(ctx);
        const bool known = ctx.store.FindGame(o->name) != 0;
        const std::string written = MakeFoundPage(ctx, o->skin, o->name, options, o->out);
        if (written.empty()) {
          session.Error("The page could not be written" +
                        (o->out.empty() ? std::string() : ": " + o->out));
          return kExitFailed;
        }
        session.Print(written);
        if (!known) {
          session.Error("No game named " + o->name + " in the database: the page shows \"Dummy\"");
          return kExitFailed;
        }
        return kExitOk;
      });
  page->add_option("NAME", o->name, "Rom name")->required();
  page->add_option("--skin", o->skin,
                   "A skin of the HTML folder by its name, with its extension "
                   "(e.g. Default_FR.skin.zip or mine.skin)");
  page->add_flag("--online-images", o->onlineImages,
                 "Refer missing pictures to the on-line addresses of Tessarin.url.inf");
  page->add_option("--out", o->out,
                   "Where to write the page (default: Found.htm in the temporary folder)");
}

}  // namespace

void RegisterPageCommands(CliRegistry& registry) { AddPage(registry); }

}  // namespace tessarin
