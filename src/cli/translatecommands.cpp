// The translation commands: translate make-dictionary, translate run [--files ...].
#include <memory>
#include <string>
#include <vector>

#include "builder/datanalysers.h"
#include "cli/session.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "translate/dictionary.h"
#include "translate/translatefiles.h"

namespace tessarin {

namespace {

// The settings key a file's path comes from, to name it when the path is missing.
std::string PathKey(int file) {
  switch (file) {
    case kTranslateCatlist:
      return "DataFile12";
    case kTranslateGenre:
      return "DataFile14";
    case kTranslateCatver:
      return "DataFile13";
    case kTranslateWizsort:
      return "DataFile7";
    case kTranslateMultiplayer:
    case kTranslateNplayers:
      return "DataFile8";
    case kTranslateHistory:
      return "DataFile2";
    default:
      return "DataFile3";
  }
}

int MakeDictionary(CliSession& session) {
  AppContext& ctx = session.Ctx();
  const std::string path = DictionaryPath(ctx.AppFolder());
  // The dictionary holds the user's own translations: never replace it without asking.
  if (FileExists(path) &&
      !ctx.Ui().AskYesNo(path + " exists and may hold your translations. Replace it?", "Tessarin",
                         Icon::Question)) {
    session.Error("Left as it is: " + path);
    return kExitFailed;
  }
  if (!CreateDictionary(ctx) || !FileExists(path)) {
    session.Error(ctx.messages.Lng(273) + " " + path + "\nSee " + ctx.log.LogPath());
    return kExitFailed;
  }
  session.Print(path);
  return kExitOk;
}

int Run(CliSession& session, const std::vector<std::string>& names) {
  AppContext& ctx = session.Ctx();
  TranslationChecks checks{};
  if (names.empty()) {
    checks = LoadTranslationChecks(ctx.settings);
  } else {
    for (const std::string& name : names) {
      for (int i = 0; i < kTranslationFileCount; ++i) {
        if (TranslationFileName(i) == name) checks[static_cast<size_t>(i)] = true;
      }
    }
  }
  bool any = false;
  for (bool on : checks) any = any || on;
  if (!any) {
    session.Error(
        "No file to translate: the translation window has none ticked; name them with --files "
        "(history,mameinfo,catlist,genre,catver,wizsort,multiplayer,nplayers).");
    return kExitFailed;
  }
  const std::string dictionary = DictionaryPath(ctx.AppFolder());
  if (!FileExists(dictionary)) {
    session.Error(ctx.messages.Lng(273) + " " + dictionary +
                  "\nMake it with: tessarin-cli translate make-dictionary, then fill it in.");
    return kExitFailed;
  }
  const TranslationPaths paths = LoadTranslationPaths(ctx.settings);
  Work& work = session.CurrentWork();
  TranslationReport report;
  session.RunWithProgress([&] {
    report = TranslateDataFiles(ctx, work, paths, checks);
    return true;
  });

  bool allDone = true;
  for (int i = 0; i < kTranslationFileCount; ++i) {
    const auto at = static_cast<size_t>(i);
    if (!checks[at]) continue;
    const std::string head = std::string(TranslationFileName(i)) + ": ";
    const std::string& path = paths[at];
    const bool missing = ExistingDataFile(path).empty();
    if (!report.attempted[at] || report.results[at] == TranslateResult::Missing) {
      allDone = false;
      if (missing) {
        session.Error(head + "no file at \"" + path + "\" (setting " + PathKey(i) + ")");
      } else {
        session.Error(head + "no entry with a translation in section " +
                      std::string(TranslationSection(i)) + " of " + dictionary +
                      "; the file is left as it is");
      }
      continue;
    }
    switch (report.results[at]) {
      case TranslateResult::Translated:
        session.Print(head + path + " translated with " + std::to_string(report.rows[at]) +
                      " entries; the file before it is " + BackupName(path));
        break;
      case TranslateResult::Missing:
        break;
      case TranslateResult::Failed:
        allDone = false;
        session.Error(head + "the translation of " + path +
                      " failed and the file holds what it held; see " + ctx.log.LogPath());
        break;
    }
  }
  return allDone ? kExitOk : kExitFailed;
}

}  // namespace

void RegisterTranslateCommands(CliRegistry& registry) {
  struct Choice {
    CLI::App* make = nullptr;
    CLI::App* run = nullptr;
    std::vector<std::string> files;
  };
  auto choice = std::make_shared<Choice>();
  CLI::App* translate = registry.Add(
      "translate",
      "Translate the data files word by word with the dictionary TRANSLATE.DIC.txt of the "
      "application folder",
      [choice](CliSession& session) {
        if (choice->make->parsed()) return MakeDictionary(session);
        if (choice->run->parsed()) return Run(session, choice->files);
        return kExitUsage;
      });
  translate->require_subcommand(1, 1);
  CLI::App* make = translate->add_subcommand(
      "make-dictionary",
      "Write TRANSLATE.DIC.txt from the data files of the settings (the words of Catlist, Genre, "
      "Catver, Wizsort and the players file, and the History examples); asks before replacing "
      "one");
  CLI::App* run = translate->add_subcommand(
      "run",
      "Translate the data files of the settings in place; each file's former text is kept as "
      "<name>.ORIGINAL.<ext>, and the one before that as <name>.ORIGINAL.<ext>.bak");
  std::vector<std::string> names;
  for (int i = 0; i < kTranslationFileCount; ++i) {
    names.emplace_back(TranslationFileName(i));
  }
  choice->make = make;
  choice->run = run;
  run->add_option("--files", choice->files,
                  "The files to translate, comma-separated; default: those ticked in the "
                  "translation window")
      ->delimiter(',')
      ->check(CLI::IsMember(names));
}

}  // namespace tessarin
