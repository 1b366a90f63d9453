#pragma once

#include <functional>
#include <string>

namespace tessarin {

class AppContext;
class Settings;
class Work;

// The settings key of the update server's address, and its built-in placeholder: the server
// holds /version.txt and /update.txt at its root.
inline constexpr const char* kUpdateServerKey = "UpdateServer";
inline constexpr const char* kDefaultUpdateServer = "http://update.example.invalid";
// The settings key of the program's home page (shown by the new version notice).
inline constexpr const char* kHomePageKey = "HomePage";
inline constexpr const char* kDefaultHomePage = "http://tessarin.example.invalid";

// The update server (no final '/'), the settings' value when set, else the placeholder.
std::string UpdateServerAddress(const Settings& settings);
std::string HomePageAddress(const Settings& settings);

// The first line of a text, whatever its line ends (CR LF, LF or a lone CR).
std::string FirstLineOf(const std::string& text);

enum class DataUpdateOutcome {
  Declined,        // the user said no to the first question or to the download
  NoUpdateFile,    // update.txt couldn't be fetched
  UpToDate,        // the data's version is the database's, and nothing was fetched
  NothingOffered,  // update.txt names no version or no package
  BadAddress,      // the package address has no '/'
  DownloadFailed,  // the package couldn't be fetched
  UnzipFailed,     // the package was fetched but didn't unpack cleanly: nothing was replaced
  Updated,
};

// What the front end does for the check besides messages and questions (through ctx.Ui()).
struct DataUpdateHooks {
  // The new version notice, modal; gets the version the server announces.
  std::function<void(const std::string& newVersion)> showNewVersion;
  // After the index was reloaded: the panel's label text (message 325 " : " version).
  std::function<void(const std::string& panelLabel)> databaseReloaded;
  // The front end asked the first question itself (before showing its working dialog) and the
  // user said yes.
  bool internetAllowed = false;
};

// Asks the update server for the latest program version and data package, and on the user's
// word fetches the package, unpacks it into DataFiles and reloads the index. `silentAsk`: no
// first question and no "updated"/"no update file" messages (the automatic check at start).
// `silentWork`: the caller shows no working dialog (the status and progress go to `work`
// either way). The package replaces nothing until it is whole and unpacks cleanly.
DataUpdateOutcome CheckDataUpdate(AppContext& ctx, Work& work, bool silentAsk, bool silentWork,
                                  const DataUpdateHooks& hooks = {});

}  // namespace tessarin
