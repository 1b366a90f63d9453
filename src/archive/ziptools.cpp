#include "archive/ziptools.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "archive/unzip.h"
#include "archive/zippath.h"
#include "archive/zipworkerinstall.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/userinterface.h"
#include "core/work.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

int RunWorker(const ZipToolsServices& services, const std::string& program,
              const std::string& argument) {
  if (services.runWorker) return services.runWorker(program, argument);
  return RunAndWait(program, {argument});
}

void Delete(const ZipToolsServices& services, const std::string& path, bool permanent) {
  if (services.shellDelete) {
    services.shellDelete(path, permanent);
  } else {
    ShellDelete(path, permanent);
  }
}

}  // namespace

ZipToolsState LoadZipToolsState(const Settings& settings) {
  ZipToolsState state;
  state.deleteWhenDone = settings.InfRead("Frm9Effacer") != "-1";
  const std::string source = settings.InfRead("Frm9Source");
  if (source != "-1") state.source = source;
  const std::string destination = settings.InfRead("Frm9Destination");
  if (destination != "-1") state.destination = destination;
  return state;
}

void SaveZipToolsState(Settings& settings, const ZipToolsState& state) {
  settings.InfWrite("Frm9Source", state.source);
  settings.InfWrite("Frm9Destination", state.destination);
  settings.InfWrite("Frm9Effacer", std::string_view(state.deleteWhenDone ? "1" : "-1"));
}

ZipToolsResult ZipAllFolders(const ZipToolsServices& services, Work& work, ZipToolsState& state) {
  ZipToolsResult result = ZipToolsResult::NothingDone;
  RunGuarded(services.log, 7201, [&] {
    if (TrimWhite(state.source).empty() || TrimWhite(state.destination).empty()) return;
    std::string worker = FindZipWorker(services.appFolder);
    if (worker.empty()) {
      ExtractZipWorker(services.appFolder, services.workerSources);
      worker = FindZipWorker(services.appFolder);
      if (worker.empty()) return;
    }
    state.source = AddSlash(state.source);
    state.destination = AddSlash(state.destination);
    work.SetStatus(services.messages.Lng(281));

    std::vector<std::string> folders;
    std::error_code ec;
    for (fs::directory_iterator it(PathFromText(state.source), ec), end; !ec && it != end;
         it.increment(ec)) {
      if (work.CancelRequested) break;
      std::error_code e;
      if (it->is_directory(e)) folders.push_back(TextFromPath(it->path().filename()));
    }
    if (work.CancelRequested) {
      result = ZipToolsResult::Cancelled;
      return;
    }
    std::sort(folders.begin(), folders.end());
    if (folders.empty()) {
      services.ui.ShowMessage(false, services.messages.Lng(282), {}, Icon::Stop);
      result = ZipToolsResult::NoFolder;
      return;
    }

    work.ProgressMax = static_cast<long long>(folders.size());
    for (std::size_t i = 0; i < folders.size(); ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      work.SetStatus(folders[i]);
      if (work.CancelRequested) {
        result = ZipToolsResult::Cancelled;
        return;
      }
      RunWorker(services, worker, ZipWorkerJob(state.destination, state.source, folders[i]));
    }
    if (!state.deleteWhenDone) {
      result = ZipToolsResult::Done;
      services.ui.ShowMessage(false, {}, {}, Icon::Information);
      return;
    }
    // Nothing checks that the zip was written: the folder goes to the trash, where it can be
    // taken back from.
    work.SetStatus(services.messages.Lng(283));
    for (std::size_t i = 0; i < folders.size(); ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      if (work.CancelRequested) {
        result = ZipToolsResult::Cancelled;
        return;
      }
      Delete(services, state.source + folders[i], false);
    }
    result = ZipToolsResult::Done;
    services.ui.ShowMessage(false, {}, {}, Icon::Information);
  });
  return result;
}

ZipToolsResult UnzipAllZips(const ZipToolsServices& services, Work& work, ZipToolsState& state,
                            std::string& unzipError) {
  ZipToolsResult result = ZipToolsResult::NothingDone;
  RunGuarded(services.log, 7202, [&] {
    if (TrimWhite(state.source).empty() || TrimWhite(state.destination).empty()) return;
    state.source = AddSlash(state.source);
    state.destination = AddSlash(state.destination);
    work.SetStatus("Unzipping");

    // The zips by their file names, as the disk spells them, and their names without ".zip".
    std::vector<std::pair<std::string, std::string>> zips;
    std::error_code ec;
    for (fs::directory_iterator it(PathFromText(state.source), ec), end; !ec && it != end;
         it.increment(ec)) {
      if (work.CancelRequested) break;
      std::error_code e;
      const std::string file = TextFromPath(it->path().filename());
      if (!it->is_regular_file(e) || file.size() < 4 ||
          LowerCopy(file.substr(file.size() - 4)) != ".zip") {
        continue;
      }
      zips.emplace_back(file, file.substr(0, file.size() - 4));
    }
    std::sort(zips.begin(), zips.end());
    const UnzipEnvironment environment{services.appFolder, &unzipError, &services.log, &work};

    bool cancelled = work.CancelRequested;
    work.ProgressMax = static_cast<long long>(zips.size());
    for (std::size_t i = 0; i < zips.size() && !cancelled; ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      work.SetStatus(zips[i].second);
      if (work.CancelRequested) {
        cancelled = true;
        break;
      }
      const std::string folder = state.destination + zips[i].second;
      if (!MakeFolder(folder) && !FolderExists(folder)) continue;
      UnzipAll(environment, state.source + zips[i].first, folder, true);
    }
    if (!state.deleteWhenDone || cancelled || work.CancelRequested) {
      result =
          (cancelled || work.CancelRequested) ? ZipToolsResult::Cancelled : ZipToolsResult::Done;
      return;
    }
    for (std::size_t i = 0; i < zips.size(); ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      work.SetStatus(zips[i].second + ".zip " + services.messages.Lng(284));
      if (work.CancelRequested) {
        result = ZipToolsResult::Cancelled;
        return;
      }
      Delete(services, state.source + zips[i].first, true);
    }
    result = ZipToolsResult::Done;
    services.ui.ShowMessage(false, {}, {}, Icon::Information);
  });
  return result;
}

}  // namespace tessarin
