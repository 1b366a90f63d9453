// The settings commands: get and set, with the keys Tessarin knows.
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/session.h"
#include "core/settings.h"

namespace tessarin {

namespace {

// The keys a user sets by hand, with their meaning; the windows keep many more of their own.
const std::vector<std::pair<std::string, std::string>>& KnownKeys() {
  static const std::vector<std::pair<std::string, std::string>> keys = {
      {"Language", "0 French, 1 English, 2 the language file named by LngFile"},
      {"LngFile", "the language file's name, with .lng"},
      {"ChckDataUpdate", "1 checks for a data update at start"},
      {"DataFile1", "the emulator's executable"},
      {"DataFile2", "History.dat"},
      {"DataFile3", "Mameinfo.dat"},
      {"DataFile4", "Cheat.dat"},
      {"DataFile5", "Command.dat"},
      {"DataFile6", "Hiscore.dat"},
      {"DataFile7", "Wizsort.ini"},
      {"DataFile8", "Nplayers.ini (or Multiplayer.ini)"},
      {"DataFile9", "Aspect.ini"},
      {"DataFile10", "Controls.ini"},
      {"DataFile11", "Alltime.ini"},
      {"DataFile12", "Catlist.ini"},
      {"DataFile13", "Catver.ini"},
      {"DataFile14", "Genre.ini"},
      {"DataFile15", "Mature.ini"},
      {"DataFile16", "Resolution.ini"},
      {"DataFile17", "Version.ini"},
      {"RomPath", "the folder of the roms"},
      {"TitlesPath", "title pictures: a folder, or an address beginning with http:"},
      {"SnapPath", "snapshots: a folder, or an address beginning with http:"},
      {"MarqueesPath", "marquees: a folder, or an address beginning with http:"},
      {"CabinetsPath", "cabinets: a folder, or an address beginning with http:"},
      {"CpanelPath", "control panels: a folder, or an address beginning with http:"},
      {"FlyersPath", "flyers: a folder, or an address beginning with http:"},
  };
  return keys;
}

bool IsKnownKey(const std::string& key) {
  const auto sameKey = [&](const auto& known) {
    return known.first.size() == key.size() &&
           std::equal(key.begin(), key.end(), known.first.begin(), [](char a, char b) {
             return std::tolower(static_cast<unsigned char>(a)) ==
                    std::tolower(static_cast<unsigned char>(b));
           });
  };
  return std::any_of(KnownKeys().begin(), KnownKeys().end(), sameKey);
}

std::string KeyList() {
  std::string text = "Known keys (case doesn't matter; other keys are written too):";
  for (const auto& [key, meaning] : KnownKeys()) text += "\n  " + key + ": " + meaning;
  return text;
}

}  // namespace

void RegisterSettingsCommands(CliRegistry& registry) {
  auto key = std::make_shared<std::string>();
  auto value = std::make_shared<std::string>();

  CLI::App* get =
      registry.Add("get", "Print a setting (-1 when it isn't set)", [key](CliSession& session) {
        session.Print(session.Ctx().settings.InfRead(*key));
        return kExitOk;
      });
  get->add_option("KEY", *key, "Settings key")->required();
  get->footer(KeyList());

  CLI::App* set = registry.Add("set", "Write a setting", [key, value](CliSession& session) {
    Settings& settings = session.Ctx().settings;
    if (!IsKnownKey(*key)) {
      session.Error("Warning: " + *key +
                    " is not a key Tessarin knows; it is written all the same (see set "
                    "--help)");
    }
    settings.InfWrite(*key, *value);
    if (settings.InfRead(*key) != *value) {
      session.Error("Could not write " + *key + " to " + settings.FilePath());
      return kExitFailed;
    }
    return kExitOk;
  });
  set->add_option("KEY", *key, "Settings key")->required();
  set->add_option("VALUE", *value, "Value")->required();
  set->footer(KeyList());
}

}  // namespace tessarin
