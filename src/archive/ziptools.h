#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tessarin {

class Log;
class Messages;
class Settings;
class UserInterface;
class Work;

// What the zip tools dialog keeps between runs (keys Frm9Source, Frm9Destination, Frm9Effacer).
struct ZipToolsState {
  std::string source;           // Text1
  std::string destination;      // Text2
  bool deleteWhenDone = false;  // Chk1
};

// Reads the dialog's keys; a key that reads "-1" leaves its field empty (or the box off).
ZipToolsState LoadZipToolsState(const Settings& settings);
// Writes the three keys (the position keys are the window's). The box is stored as "1" when on
// and "-1" when off, so that the next load, which sets it for anything but "-1", reads it back.
void SaveZipToolsState(Settings& settings, const ZipToolsState& state);

// The services the zip tools use; the defaults are the program's own, tests put in their own.
struct ZipToolsServices {
  const Messages& messages;
  Log& log;
  UserInterface& ui;
  std::string appFolder;
  // Runs the worker with one argument and waits for it. Default: RunAndWait.
  std::function<int(const std::string& program, const std::string& argument)> runWorker;
  // Deletes a file or a folder tree, for good or to the trash. Default: ShellDelete.
  std::function<void(const std::string& path, bool permanent)> shellDelete;
  // Where ExtractZipWorker looks for a worker to copy; empty for its own defaults.
  std::vector<std::string> workerSources;
};

enum class ZipToolsResult {
  NothingDone,  // a folder text is empty, or there is no worker
  NoFolder,     // the source holds no folder (zip all)
  Cancelled,
  Done,
};

// Zip all: every subfolder <name> of the source becomes <destination><name>.zip through the
// worker, one process per folder; with deleteWhenDone the source folders then go to the trash.
// Both texts of `state` get a final separator. Tells the user through services.ui: message 282
// when there is no folder, the end-of-operation message when done. Progress, status text and
// cancel go through `work`.
ZipToolsResult ZipAllFolders(const ZipToolsServices& services, Work& work, ZipToolsState& state);

// Unzip all: every <name>.zip of the source is unpacked into <destination><name>; with
// deleteWhenDone the zips are then deleted for good. The last unzip error is left in
// `unzipError`, not shown.
ZipToolsResult UnzipAllZips(const ZipToolsServices& services, Work& work, ZipToolsState& state,
                            std::string& unzipError);

}  // namespace tessarin
