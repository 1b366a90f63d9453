// The game sheet's command: show.
#include <memory>
#include <string>

#include "cli/session.h"
#include "sheet/gamedetails.h"
#include "sheet/sheettext.h"
#include "sheet/textdisplay.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

// A box of the sheet as terminal text: decoded for display, one LF per line break.
std::string ForTerminal(const std::string& text) {
  return FastReplace(DisplayUtf8(text), "\r\n", "\n", 1, kAllMatches, 0);
}

void AddShow(CliRegistry& registry) {
  struct Options {
    std::string name;
    bool presenceOnly = false;
    bool json = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* show = registry.Add(
      "show",
      "Show a game's details: the game sheet's texts, or with --json every field and the rom, "
      "disk, bios set, chip and dip switch lists as one JSON object",
      [o](CliSession& session) {
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        GameDetailsLoader loader(ctx);
        std::string name = o->name;
        const GameDetails details = loader.LoadGameDetails(name, 0, o->presenceOnly);
        if (details.GameIndex == 0) {
          session.Error("No game named " + o->name + " in the database");
          return kExitFailed;
        }
        if (o->json) {
          session.Print(GameDetailsJson(details, loader));
          return kExitOk;
        }
        // The build leaves some entities in descriptions and manufacturers: decoded for the eye.
        GameDetails shown = details;
        shown.Description = DecodeEntitiesForDisplay(details.Description);
        shown.Manufacturer = DecodeEntitiesForDisplay(details.Manufacturer);
        const SheetText text = LayOutSheetText(shown, loader, ctx.messages);
        std::string out = text.Label1;
        for (const std::string* box : {&text.Text1, &text.Text2, &text.Text8, &text.Text3,
                                       &text.Text4, &text.Text5, &text.Text6, &text.Text7}) {
          out.append("\r\n\r\n").append(*box);
        }
        session.Print(ForTerminal(out));
        return kExitOk;
      });
  show->add_option("NAME", o->name, "Rom name (exact, case-sensitive)")->required();
  show->add_flag("--presence-only", o->presenceOnly,
                 "Don't read the History, Command and Mameinfo files: their fields read True when "
                 "the game has an entry");
  show->add_flag("--json", o->json,
                 "One JSON object: the 53 fields in order, then the five lists; texts as the "
                 "files hold them (UTF-8, else Windows-1252), entities not decoded");
}

}  // namespace

void RegisterSheetCommands(CliRegistry& registry) { AddShow(registry); }

}  // namespace tessarin
