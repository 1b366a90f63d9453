#include "translate/translatefiles.h"

#include <QSaveFile>
#include <QString>
#include <filesystem>
#include <system_error>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/settings.h"
#include "core/work.h"
#include "translate/dictionary.h"

namespace tessarin {

namespace {

constexpr std::array<std::string_view, kTranslationFileCount> kNames = {
    "catlist", "genre", "catver", "wizsort", "multiplayer", "nplayers", "history", "mameinfo"};
constexpr std::array<std::string_view, kTranslationFileCount> kLabels = {
    "Catlist.ini",     "Genre.ini",    "Catver.ini",  "Wizsort.ini",
    "Multiplayer.ini", "Nplayers.ini", "History.dat", "Mameinfo.dat"};

// The settings key of each box; the two players boxes share one.
constexpr std::array<std::string_view, kTranslationFileCount> kPathKeys = {
    "DataFile12", "DataFile14", "DataFile13", "DataFile7",
    "DataFile8",  "DataFile8",  "DataFile2",  "DataFile3"};

struct SectionGroup {
  std::string_view section;
  int first;
  int last;
};
constexpr std::array<SectionGroup, 4> kGroups = {{
    {"[WIZ]", kTranslateCatlist, kTranslateWizsort},
    {"[PLAYERS]", kTranslateMultiplayer, kTranslateNplayers},
    {"[HISTORY]", kTranslateHistory, kTranslateHistory},
    {"[MAMEINFO]", kTranslateMameinfo, kTranslateMameinfo},
}};

std::string ReadPath(const Settings& settings, std::string_view key) {
  std::string value = settings.InfRead(key);
  return value == "-1" ? std::string() : value;
}

constexpr size_t kWriteBlock = 1 << 20;

}  // namespace

std::string_view TranslationFileName(int file) { return kNames.at(static_cast<size_t>(file)); }
std::string_view TranslationFileLabel(int file) { return kLabels.at(static_cast<size_t>(file)); }
std::string TranslationFileFilter(int file, std::string_view allFilesText) {
  const bool dat = file == kTranslateHistory || file == kTranslateMameinfo;
  std::string filter(TranslationFileLabel(file));
  filter += dat ? "|*.dat|" : "|*.ini|";
  filter += allFilesText;
  filter += "|*.*";
  return filter;
}

std::string_view TranslationSection(int file) {
  for (const SectionGroup& group : kGroups) {
    if (file >= group.first && file <= group.last) return group.section;
  }
  return {};
}

TranslationPaths LoadTranslationPaths(const Settings& settings) {
  TranslationPaths paths;
  for (int i : {kTranslateCatlist, kTranslateGenre, kTranslateCatver, kTranslateWizsort,
                kTranslateHistory, kTranslateMameinfo}) {
    paths[static_cast<size_t>(i)] = ReadPath(settings, kPathKeys[static_cast<size_t>(i)]);
  }
  const std::string players = ReadPath(settings, "DataFile8");
  if (LowerCopy(players).find("multiplayer.ini") != std::string::npos) {
    paths[kTranslateMultiplayer] = players;
  } else {
    paths[kTranslateNplayers] = players;
  }
  return paths;
}

void SaveTranslationPaths(Settings& settings, const TranslationPaths& paths) {
  const auto save = [&](std::string_view key, const std::string& path) {
    // Don't turn a setting that was never made into an empty one.
    if (path.empty() && settings.InfRead(key) == "-1") return;
    settings.InfWrite(key, path);
  };
  for (int i : {kTranslateCatlist, kTranslateGenre, kTranslateCatver, kTranslateWizsort,
                kTranslateHistory, kTranslateMameinfo}) {
    save(kPathKeys[static_cast<size_t>(i)], paths[static_cast<size_t>(i)]);
  }
  save("DataFile8", paths[kTranslateMultiplayer].empty() ? paths[kTranslateNplayers]
                                                         : paths[kTranslateMultiplayer]);
}

TranslationChecks LoadTranslationChecks(const Settings& settings) {
  TranslationChecks checks{};
  for (int i = 0; i < kTranslationFileCount; ++i) {
    const std::string tag = settings.InfRead("Frm8DataFile" + std::to_string(i));
    checks[static_cast<size_t>(i)] = tag != "-1" && !tag.empty();
  }
  return checks;
}

void SaveTranslationChecks(Settings& settings, const TranslationChecks& checks) {
  for (int i = 0; i < kTranslationFileCount; ++i) {
    settings.InfWrite("Frm8DataFile" + std::to_string(i),
                      std::string_view(checks[static_cast<size_t>(i)] ? "1" : ""));
  }
}

std::string BackupName(std::string_view path) {
  const size_t point = path.rfind('.');
  if (point == std::string_view::npos) return {};
  std::string backup(path.substr(0, point));
  backup += ".ORIGINAL.";
  backup += path.substr(point + 1);
  return backup;
}

TranslateResult TranslateFile(Log& log, const Dictionary& dictionary, const std::string& path,
                              Work& work) {
  const std::string file = ExistingDataFile(path);
  if (file.empty()) return TranslateResult::Missing;
  TranslateResult result = TranslateResult::Failed;
  const std::string backup = BackupName(file);
  const std::string temporary = file + ".translating.tmp";
  bool fileMovedAway = false;
  const bool ran = RunGuarded(log, 9105, [&] {
    if (backup.empty()) {
      throw Failure(52, "No backup name can be made for " + file + ": the path has no point");
    }
    // The backup chain moves first: the backup of the last run becomes the older one.
    if (FileExists(backup)) {
      const std::string older = backup + ".bak";
      KillQuiet(older);
      if (!RenameFile(backup, older)) {
        throw Failure(75, "Can't rename " + backup + " to " + older);
      }
    }

    // The translation goes to a file of its own, complete and on the disk before anything is
    // renamed, so the data file is never left half written.
    DataLineReader reader;
    if (!reader.Open(file)) throw Failure(75, "Can't read " + file);
    QSaveFile out(QString::fromStdString(temporary));
    if (!out.open(QIODevice::WriteOnly)) {
      throw Failure(75, "Can't write " + temporary + ": " + out.errorString().toStdString());
    }
    std::string block;
    block.reserve(kWriteBlock + 4096);
    const auto flush = [&] {
      if (out.write(block.data(), static_cast<qint64>(block.size())) !=
          static_cast<qint64>(block.size())) {
        throw Failure(75, "Can't write " + temporary + ": " + out.errorString().toStdString());
      }
      block.clear();
    };
    std::string_view line;
    while (reader.ReadLine(line)) {
      block += TranslateLine(dictionary, line);
      block += "\r\n";
      work.ProgressValue += static_cast<long long>(line.size()) + reader.LineEndLength();
      if (block.size() >= kWriteBlock) flush();
    }
    flush();
    reader.Close();
    if (!out.commit()) {
      throw Failure(75, "Can't write " + temporary + ": " + out.errorString().toStdString());
    }

    if (!RenameFile(file, backup)) throw Failure(75, "Can't rename " + file + " to " + backup);
    fileMovedAway = true;
    if (!RenameFile(temporary, file)) {
      throw Failure(75, "Can't rename " + temporary + " to " + file);
    }
    fileMovedAway = false;
    result = TranslateResult::Translated;
  });
  if (!ran) {
    // Whatever step failed, the file's own name holds what it held.
    if (fileMovedAway && !FileExists(file)) RenameFile(backup, file);
    KillQuiet(temporary);
  }
  return result;
}

TranslationReport TranslateDataFiles(AppContext& ctx, Work& work, const TranslationPaths& paths,
                                     const TranslationChecks& checks) {
  TranslationReport report;
  report.results.fill(TranslateResult::Missing);
  RunGuarded(ctx.log, 9106, [&] {
    long long total = 0;
    for (int i = 0; i < kTranslationFileCount; ++i) {
      if (!checks[static_cast<size_t>(i)]) continue;
      const std::string file = ExistingDataFile(paths[static_cast<size_t>(i)]);
      std::error_code ec;
      if (!file.empty())
        total += static_cast<long long>(std::filesystem::file_size(FsPath(file), ec));
    }
    work.ProgressValue = 0;
    work.ProgressMax = total;
    const std::string dictionaryPath = DictionaryPath(ctx.AppFolder());
    for (const SectionGroup& group : kGroups) {
      bool any = false;
      for (int i = group.first; i <= group.last; ++i) any = any || checks[static_cast<size_t>(i)];
      if (!any) continue;
      const Dictionary dictionary = LoadDictionary(dictionaryPath, group.section);
      for (int i = group.first; i <= group.last; ++i) {
        const auto at = static_cast<size_t>(i);
        if (!checks[at]) continue;
        report.rows[at] = dictionary.Count();
        if (dictionary.Count() == 0) continue;
        work.SetStatus(paths[at]);
        report.attempted[at] = true;
        report.results[at] = TranslateFile(ctx.log, dictionary, paths[at], work);
      }
    }
  });
  return report;
}

}  // namespace tessarin
