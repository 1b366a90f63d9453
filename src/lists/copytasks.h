#pragma once

// Copy tasks: two lists of rom names, and the files of the names they share copied, moved or
// deleted. Works without the database.

#include <functional>
#include <string>
#include <vector>

namespace tessarin {

class AppContext;
class Work;

// Where a list of names comes from.
enum class NameListKind { File = 0, Files = 1, Subfolders = 2 };

struct NameListOrigin {
  NameListKind kind = NameListKind::File;
  std::string file;        // a text file of names
  std::string folder;      // the files of a folder...
  std::string extension;   // ...with this extension
  std::string subfolders;  // the subfolders of a folder
  // The path of the chosen kind.
  const std::string& Path() const {
    return kind == NameListKind::File ? file : kind == NameListKind::Files ? folder : subfolders;
  }
};

enum class CopyAction { Copy = 0, Move = 1, Delete = 2 };

// The dialog's fields (keys CopyTsk_...).
struct CopyTaskOptions {
  NameListOrigin list;     // "List of roms"
  NameListOrigin compare;  // "Compare list"
  std::string source;      // "Source files folder"
  std::string sourceExtension;
  std::string destination;
  CopyAction action = CopyAction::Copy;
};
CopyTaskOptions LoadCopyTaskOptions(AppContext& ctx);
void SaveCopyTaskOptions(AppContext& ctx, const CopyTaskOptions& options);

// The names of a list, in reading order, duplicates kept; lower-cased. Stops early on a cancel.
std::vector<std::string> ReadNameList(const NameListOrigin& origin, Work* work);

// Which field is at fault when a task can't start.
enum class CopyTaskField { None, List, Compare, Source, Destination };

// The confirmation text of a task, and the first field whose path doesn't exist (None when the
// task can start).
std::string CopyTaskConfirmation(const CopyTaskOptions& options, CopyTaskField& badField);

// The log of the tasks, in the application folder.
std::string CopyTaskLogPath(const std::string& appFolder);

struct CopyTaskServices {
  // Copies a file to a path; true when it worked. Default: a file system copy.
  std::function<bool(const std::string& from, const std::string& to)> copyFile;
  // Deletes a file (to the desktop's trash when it has one). Default: ShellDelete.
  std::function<void(const std::string& path)> deleteFile;
};

enum class CopyTaskResult { NoRoms, NoCompareRoms, Cancelled, Done };

// Runs the task the user agreed to (CopyTaskConfirmation first): reads both lists, and for each
// name of the first list takes every unused equal entry of the compare list, and copies, moves or
// deletes source/name.extension for each when the file is there. Logs every step to the task
// log. Each compare entry is used once. The comparison is a hash look-up per name.
CopyTaskResult RunCopyTask(AppContext& ctx, Work& work, const CopyTaskOptions& options,
                           const std::string& confirmation, const CopyTaskServices& services = {});

}  // namespace tessarin
