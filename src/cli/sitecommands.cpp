// The site command: the whole game list (or an INI file's games) as a static HTML site.
#include <chrono>
#include <memory>
#include <sstream>

#include "cli/htmlwork.h"
#include "cli/session.h"
#include "core/fileservices.h"
#include "lists/htmlsite.h"
#include "lists/skins.h"

namespace tessarin {

namespace {

void AddSite(CliRegistry& registry) {
  struct Options {
    std::string out, skin, ini, copyImages;
    bool skipClones = false, onlyAvailable = false, onlineImages = false, searchIndex = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* site = registry.Add(
      "site",
      "Build the static HTML site of the game list (menu, game pages, group pages, complete "
      "list) below OUT/tessarin",
      [o](CliSession& session) {
        if (o->out.empty()) {
          // An empty destination would put the site at the root of the file system.
          session.Error("--out needs a folder");
          return kExitUsage;
        }
        HtmlSiteRequest request;
        request.destination = o->out;
        request.skin = o->skin;
        request.skipClones = o->skipClones;
        request.onlyAvailable = o->onlyAvailable;
        request.onlineImages = o->onlineImages;
        request.searchIndex = o->searchIndex;
        if (!o->copyImages.empty()) {
          std::stringstream sets(o->copyImages);
          std::string set;
          while (std::getline(sets, set, ',')) {
            size_t s = 0;
            while (s < kSiteImageSets.size() && kSiteImageSets[s] != set) ++s;
            if (s == kSiteImageSets.size()) {
              session.Error("Unknown image set in --copy-images: \"" + set +
                            "\" (titles, snap, marquees, cabinets, cpanel, flyers)");
              return kExitUsage;
            }
            request.imageSets[s] = true;
          }
          request.copyImages = true;
        }
        if (request.copyImages && request.onlineImages) {
          session.Error("--copy-images and --online-images exclude each other");
          return kExitUsage;
        }
        if (!o->ini.empty() && !FileExists(o->ini)) {
          session.Error("No INI file at " + o->ini);
          return kExitFailed;
        }
        // An empty INI file stops before anything is made, as the list window's INI button does.
        if (!o->ini.empty() && !IsLoadableIniFile(o->ini)) {
          session.Error("The INI file " + o->ini + " is empty: nothing built");
          return kExitFailed;
        }
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        if (!PrepareHtmlWork(session, "tessarin-cli-site")) return kExitFailed;
        if (o->onlineImages) request.onlinePatterns = OnlinePicturePatterns(ctx);

        Work& work = session.CurrentWork();
        std::vector<std::string> names{std::string()};
        bool loaded = true;
        HtmlSiteResult result = HtmlSiteResult::Done;
        HtmlSiteStats stats;
        const auto start = std::chrono::steady_clock::now();
        session.RunWithProgress([&] {
          if (!o->ini.empty()) {
            work.SetStatus(ctx.messages.Lng(176));
            loaded = LoadHtmlGameNames(ctx, work, o->ini, names);
            if (!loaded) return false;
          }
          result = BuildHtmlSite(ctx, work, request, !o->ini.empty(), names, &stats);
          return result == HtmlSiteResult::Done;
        });
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (!loaded || result == HtmlSiteResult::Cancelled) {
          session.Error("Cancelled; the pages written so far are below " + AddSlash(o->out) +
                        "tessarin");
          return kExitFailed;
        }
        switch (result) {
          case HtmlSiteResult::FolderError:
            session.Error("The site's folders could not be made below " + o->out);
            return kExitFailed;
          case HtmlSiteResult::SkinError:
            session.Error("The skin " + o->skin + " could not be unpacked");
            return kExitFailed;
          case HtmlSiteResult::NoGames:
            return kExitFailed;
          default:
            break;
        }
        std::ostringstream report;
        report.precision(2);
        report << std::fixed << stats.games << " games, " << stats.files << " pages, "
               << stats.bytes << " bytes written in " << seconds << " s";
        session.Error(report.str());
        return kExitOk;
      });
  site->add_option("--out", o->out, "Destination folder (the site goes below OUT/tessarin)")
      ->required();
  site->add_option(
      "--skin", o->skin,
      "A skin of the HTML folder by its name, with its extension "
      "(e.g. Default_FR.skin.zip or mine.skin); none: the templates of the HTML folder "
      "itself, the built-in ones where it has none");
  site->add_option("--ini", o->ini,
                   "Only the games named in this INI file (clone and availability filters "
                   "then don't apply)");
  site->add_flag("--skip-clones", o->skipClones, "Leave the clones out");
  site->add_flag("--only-available", o->onlyAvailable, "Only the games of the rom folder");
  site->add_option("--copy-images", o->copyImages,
                   "Copy these image sets into the site, comma separated: titles, snap, "
                   "marquees, cabinets, cpanel, flyers");
  site->add_flag("--online-images", o->onlineImages,
                 "Refer missing pictures to the on-line addresses of Tessarin.url.inf");
  site->add_flag("--search-index", o->searchIndex,
                 "Also write tessarin/search.htm and tessarin/search-index.js: a page that finds "
                 "the site's games by name, description, manufacturer, year and genre in the "
                 "browser (the other pages stay as they are)");
}

}  // namespace

void RegisterSiteCommands(CliRegistry& registry) { AddSite(registry); }

}  // namespace tessarin
