#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class Work;

// Paths are UTF-8 byte strings in the platform's own form. A folder is handed around with a
// final separator (AddSlash); routines accept both '/' and '\' at the end of a folder.

// A UTF-8 path text as a file system path, and back: PathFromText and TextFromPath of
// core/textutil.h, with its rule for '\'.
std::filesystem::path FsPath(const std::string& utf8Path);
std::string PathText(const std::filesystem::path& path);

// True when the path names something that is not a folder; false for anything else, silently.
bool FileExists(const std::string& path);
// True when the path names a folder; false for anything else, silently.
bool FolderExists(const std::string& path);
// The path with a final native separator, unless it ends in '\' or '/' already.
std::string AddSlash(std::string path);
// Creates one folder level (a final separator is cut). False when it exists already or its
// parent is missing. Not recursive.
bool MakeFolder(const std::string& path);
// Deletes a file; the file name may hold the wildcards * and ?. False when nothing was deleted.
bool KillFile(const std::string& path);
// KillFile with no result.
void KillQuiet(const std::string& path);
// Renames or moves a file or folder. False on failure.
bool RenameFile(const std::string& oldPath, const std::string& newPath);
// Deletes a file or a folder tree: for good when `permanent`, else to the desktop's trash (a
// permanent delete where there is no trash). Failures are ignored.
void ShellDelete(const std::string& path, bool permanent);
// Copies (operation 0 or 2) or moves (1) a file or a folder tree into `dest`. When `mustExist`
// is true and the source isn't of the kind `isFolder` says, nothing is done and the result is
// false; otherwise the result is true whatever happened.
bool ShellCopy(const std::string& source, const std::string& dest, int operation, bool mustExist,
               bool isFolder);
// The system's temporary folder, with a final separator.
std::string GetTempFolderPath();
// The file in `folder` whose name equals `name` without regard to case; `folder` + `name`
// when there is none, so the result can be created.
std::string FindFileNoCase(const std::string& folder, const std::string& name);

// Replaces `path` by `content` atomically: the content goes to a temporary file beside it,
// which is synced to the disk and then renamed over `path`. A crash leaves the old file or the
// new one, never a short one. False when it can't be written (nothing is left behind then).
bool WriteFileAtomically(const std::string& path, std::string_view content);

// The name of a temporary file of ours beside `path` (unique per call), which a rename puts in
// place once it is whole; such names end in kTempMark.
inline constexpr std::string_view kTempMark = ".tessarin-tmp";
std::string TempNameBeside(const std::string& path);
// Writes the file's data to the disk before it is renamed into place. False when it can't.
bool SyncFileToDisk(const std::string& path);
// Deletes the temporary files of ours in `folder` (not below it) that nobody has written to for
// `minimumAge`: what a run killed between writing and renaming left behind. Gives how many.
int RemoveStaleTempFiles(const std::string& folder, std::chrono::seconds minimumAge);
// The whole file, or false when it can't be read.
bool ReadWholeFile(const std::string& path, std::string& content);

struct RunOptions {
  // When not empty, the program's standard output goes to this file (replaced).
  std::string standardOutputFile;
  // The window style of the original call, 0 to 6; anything else means 6. Kept for callers
  // that pass one; a console program shows no window here.
  int style = 6;
  // Working folder; empty for the current one.
  std::string workingFolder;
  // Polled while the program runs (a job's cancel flag): once it is true the program is asked
  // to end, and killed when it is still running `cancelGraceMilliseconds` later.
  const std::atomic<bool>* cancel = nullptr;
  int cancelGraceMilliseconds = 2000;
};
// What RunAndWait gives when the program was ended by a cancel (18, "User interrupt").
constexpr int kRunCancelled = -2147221504 + 18;
// The result RunAndWait gives when the program can't be started: this plus an error number.
constexpr int kRunStartFailure = -2147221504;
// Runs a program with its arguments (no shell: paths with blanks are safe), waits for its end
// and gives its exit code. A program that can't be started gives kRunStartFailure + 53, a
// negative number; one ended by options.cancel gives kRunCancelled.
int RunAndWait(const std::string& program, const std::vector<std::string>& arguments,
               const RunOptions& options = {});
// The style RunAndWait uses for a requested one: 0 to 6 stay, anything else is 6.
int NormaliseWindowStyle(int style);

// Sorts table[low..high] ascending by byte value.
void SortStrings(std::vector<std::string>& table, int low, int high);
// 1-based position of the n-th occurrence of `needle`, each searched behind the former hit;
// 0 when there are fewer.
int FindNthOccurrence(std::string_view text, std::string_view needle, int n);

}  // namespace tessarin
