#pragma once

#include <functional>
#include <string>
#include <vector>

#include "archive/zipreader.h"

namespace tessarin {

class Log;
class Work;

// What the unzip operations share with their caller.
struct UnzipEnvironment {
  // Where an empty destination goes.
  std::string appFolder;
  // The last unzip error, "Erreur <code> - <text>": each error replaces it, nothing clears it.
  // The caller reads it after the call, logs it and clears it. May be null.
  std::string* unzipError = nullptr;
  // Receives the lines of refused entries and the failures of the routines. When null, the
  // failures still go to the log of appFolder and refused entries are not told.
  Log* log = nullptr;
  // Polled for cancel; when the run isn't hidden its progress (percent of 100) and status text go
  // here too. May be null.
  Work* work = nullptr;
};

// One run of the unzip operations: the zip, the destination, the wanted name or ending, and the
// reader that stays open between the operations of the run.
class UnzipSession final {
 public:
  UnzipSession(const UnzipEnvironment& environment, bool hidden);

  std::string ZipPath;
  std::string DestFolder;
  // The entry name for zLib_ExtraireUnFichier, the ending for zLib_ExtraireExtension.
  std::string Wanted;
  // What the status line last said.
  std::string Label1;
  // zLib_ListerZIP's result: entry names from 1 (element 0 unused), and their number.
  std::vector<std::string> ZipList{std::string()};
  int ZipListCount = 0;

  ZipExtractionClass& Zip() { return m_zip; }
  const UnzipEnvironment& Environment() const { return m_environment; }
  // Opens ZipPath unless it is open already. False when it can't be opened.
  bool OpenIfNeeded();

 private:
  void MonZip_Progress(int percent, bool& cancel);
  void MonZip_Status(const std::string& text);
  void MonZip_ZipError(int code, const std::string& text);

  UnzipEnvironment m_environment;
  bool m_hidden;
  ZipExtractionClass m_zip;
};

// Extracts every entry, with folders, overwriting. Gives ExtractAllFiles' result.
bool zLib_ExtraireTout(UnzipSession& session);
// Fills session.ZipList and ZipListCount with every entry's name.
void zLib_ListerZIP(UnzipSession& session);
// Extracts the first entry named session.Wanted (case ignored), without folders, overwriting.
// False when no entry has that name.
bool zLib_ExtraireUnFichier(UnzipSession& session);
// Extracts every entry whose name ends in session.Wanted (case ignored), without folders. Gives
// the number extracted, or -1 when no entry matched.
int zLib_ExtraireExtension(UnzipSession& session);
// The archive's comment; empty when it can't be opened.
std::string zLib_LireCommentaire(UnzipSession& session);
// One CR LF line per entry: name|date and time|n octets (compressé)|n octets (décompressé)|
// Taux = n%. Empty when the zip can't be opened.
std::string zLib_LireContenu(UnzipSession& session);

// The failure boundary of the unzip operations: runs `operation` under `trackPoint` and gives
// its result, or false when it threw, the failure written to environment.log (or, without one,
// to the log of environment.appFolder).
bool RunUnzipGuarded(const UnzipEnvironment& environment, int trackPoint,
                     const std::function<bool()>& operation);

// Unpacks all of `zipPath` into `destFolder` (empty: the application folder), keeping the
// folders of the archive. Gives false when it can't be opened or the run was cancelled; the
// reason is in *environment.unzipError. `hidden` runs it without showing progress.
bool UnzipAll(const UnzipEnvironment& environment, const std::string& zipPath,
              const std::string& destFolder, bool hidden);
// Unpacks the entry `entryName` (case ignored) of `zipPath` into `destFolder`, without its
// folders. False when there is no such entry or the zip can't be opened.
bool UnzipOne(const UnzipEnvironment& environment, const std::string& zipPath,
              const std::string& entryName, const std::string& destFolder, bool hidden);

}  // namespace tessarin
