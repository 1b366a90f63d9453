#include "online/dataupdate.h"

#include <string_view>

#include "app/context.h"
#include "archive/stagedunzip.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/settings.h"
#include "core/work.h"
#include "online/download.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

std::string SettingOr(const Settings& settings, const char* key, const char* fallback) {
  std::string value = settings.InfReadOrEmpty(key);
  while (!value.empty() && (value.back() == '/' || value.back() == ' ')) value.pop_back();
  return value.empty() ? std::string(fallback) : value;
}

// The lines of a text, whatever its line ends.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string::npos) end = text.size();
    lines.emplace_back(text, start, end - start);
    if (end < text.size() && text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n') {
      ++end;
    }
    start = end + 1;
  }
  return lines;
}

}  // namespace

std::string UpdateServerAddress(const Settings& settings) {
  return SettingOr(settings, kUpdateServerKey, kDefaultUpdateServer);
}

std::string HomePageAddress(const Settings& settings) {
  return SettingOr(settings, kHomePageKey, kDefaultHomePage);
}

std::string FirstLineOf(const std::string& text) {
  const size_t end = text.find_first_of("\r\n");
  return end == std::string::npos ? text : text.substr(0, end);
}

DataUpdateOutcome CheckDataUpdate(AppContext& ctx, Work& work, bool silentAsk, bool silentWork,
                                  const DataUpdateHooks& hooks) {
  DataUpdateOutcome outcome = DataUpdateOutcome::Declined;
  RunGuarded(ctx.log, 10201, [&] {
    const Messages& m = ctx.messages;
    UserInterface& ui = ctx.Ui();
    if (!silentAsk && !hooks.internetAllowed && !ui.AskYesNo(m.Lng(386), {}, Icon::Question)) {
      return;
    }

    const std::string server = UpdateServerAddress(ctx.settings);
    const std::string downloads = ctx.AppFolder() + "Downloads/";
    MakeFolder(downloads);

    // A newer program: the notice only. A failed look-up says nothing.
    DeleteUrlFromCache("version.txt");
    const std::string versionFile = downloads + "version.txt";
    if (DownloadFile(server + "/version.txt", versionFile, false, &work) == kDownloadOk &&
        FileExists(versionFile)) {
      std::string text;
      ReadWholeFile(versionFile, text);
      const std::string latest = FirstLineOf(text);
      if (!latest.empty() && latest != AppVersion() && hooks.showNewVersion) {
        hooks.showNewVersion(latest);
      }
    }

    const std::string dataFolder = DataFilesFolder(ctx.AppFolder());
    MakeFolder(dataFolder);
    DeleteUrlFromCache("update.txt");
    const std::string updateFile = downloads + "update.txt";
    KillQuiet(updateFile);
    if (!silentWork) {
      work.SetStatus("Cheking data update...");
      work.ProgressMax = 100;
    }

    const std::string updateAddress = server + "/update.txt";
    if (DownloadFile(updateAddress, updateFile, false, &work) != kDownloadOk) {
      outcome = DataUpdateOutcome::NoUpdateFile;
      if (!silentAsk) ui.ShowMessage(false, m.Lng(391), {}, Icon::Information);
      ctx.log.WriteLogLine("Can't check data update, can't download : " + updateAddress);
      return;
    }
    work.ProgressMax = 100;
    work.ProgressValue = 20;
    std::string text;
    ReadWholeFile(updateFile, text);
    std::vector<std::string> lines = LinesOf(text);
    lines.resize(std::max<size_t>(lines.size(), 4));
    const std::string& dataVersion = lines[0];
    if (dataVersion == ctx.store.DatabaseVersion) {
      outcome = DataUpdateOutcome::UpToDate;
      if (silentAsk || !ui.AskYesNo(m.Lng(392), {}, Icon::Question)) return;
    }
    const std::string& address = lines[1];
    const std::string& before = lines[2];
    const std::string& after = lines[3];
    KillQuiet(updateFile);

    if (dataVersion.empty() || address.empty()) {
      outcome = DataUpdateOutcome::NothingOffered;
      return;
    }
    // Asked in automatic runs too: nothing is ever fetched without the user's word.
    const std::string question = m.Lng(387) + "|" + ctx.store.DatabaseVersion + "|" + m.Lng(388) +
                                 "|" + dataVersion + "|" + m.Lng(389);
    if (!ui.AskYesNo(question, {}, Icon::Question)) {
      outcome = DataUpdateOutcome::Declined;
      return;
    }
    const size_t slash = address.rfind('/');
    if (slash == std::string::npos) {
      outcome = DataUpdateOutcome::BadAddress;
      ctx.log.WriteLogLine("Impossible to find '/' in the URL: " + address);
      return;
    }
    if (!before.empty()) ui.ShowMessage(false, before, {}, Icon::Information);

    work.SetStatus("Downloading data...");
    const std::string packageName = address.substr(slash + 1);
    const std::string package = downloads + packageName;
    if (DownloadFile(address, package, false, &work) != kDownloadOk) {
      outcome = DataUpdateOutcome::DownloadFailed;
      if (!silentAsk) ui.ShowMessage(false, m.Lng(391), {}, Icon::Information);
      ctx.log.WriteLogLine("Impossible to download " + address);
      return;
    }
    work.ProgressMax = 100;
    work.ProgressValue = 60;
    std::string unzipError;
    UnzipEnvironment environment{ctx.AppFolder(), &unzipError, &ctx.log, &work};
    const bool unpacked = UnzipAllStaged(environment, package, dataFolder);
    work.ProgressValue = 80;
    outcome = DataUpdateOutcome::Updated;
    if (!unpacked || !unzipError.empty()) {
      outcome = DataUpdateOutcome::UnzipFailed;
      ctx.log.WriteLogLine("Error while unzipping " + packageName + " : " + unzipError);
      unzipError.clear();
      ui.ShowMessage(false, "WARNING! Error while unzipping. See Log file.", {}, Icon::Stop);
    }

    LoadIndex(ctx.store, ctx.log, IndexFilePath(ctx.AppFolder()));
    if (!ctx.store.DatabaseVersion.empty() && hooks.databaseReloaded) {
      hooks.databaseReloaded(m.Lng(325) + " : " + ctx.store.DatabaseVersion);
    }
    if (!silentAsk) ui.ShowMessage(false, m.Lng(390), {}, Icon::Information);
    if (!after.empty()) ui.ShowMessage(false, after, {}, Icon::Information);
  });
  return outcome;
}

}  // namespace tessarin
