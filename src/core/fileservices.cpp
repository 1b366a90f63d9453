#include "core/fileservices.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <fstream>
#include <random>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include "core/textutil.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

QString ToQString(const std::string& utf8) { return QString::fromUtf8(utf8.data(), utf8.size()); }

// Copies a file or a folder tree, replacing what is there: copies ask no question.
void CopyTree(const fs::path& from, const fs::path& to) {
  if (fs::is_directory(from)) {
    fs::create_directories(to);
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  } else {
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
  }
}

}  // namespace

fs::path FsPath(const std::string& utf8Path) { return PathFromText(utf8Path); }

std::string PathText(const fs::path& path) { return TextFromPath(path); }

bool FileExists(const std::string& path) {
  if (path.empty()) return false;
  std::error_code ec;
  const fs::file_status status = fs::status(FsPath(path), ec);
  return !ec && fs::exists(status) && !fs::is_directory(status);
}

bool FolderExists(const std::string& path) {
  if (path.empty()) return false;
  std::error_code ec;
  return fs::is_directory(FsPath(path), ec) && !ec;
}

std::string AddSlash(std::string path) {
  if (path.empty() || !IsPathSeparator(path.back())) {
    path += static_cast<char>(fs::path::preferred_separator);
  }
  return path;
}

bool MakeFolder(const std::string& path) {
  const std::string folder = CutFinalSeparator(path);
  if (folder.empty()) return false;
  std::error_code ec;
  return fs::create_directory(FsPath(folder), ec) && !ec;
}

bool KillFile(const std::string& path) {
  const fs::path target = FsPath(path);
  const std::string name = PathText(target.filename());
  std::error_code ec;
  if (name.find_first_of("*?") == std::string::npos) {
    if (fs::is_directory(target, ec)) return false;
    return fs::remove(target, ec) && !ec;
  }
  fs::path folder = target.parent_path();
  if (folder.empty()) folder = fs::current_path(ec);
  int deleted = 0;
  bool failed = false;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (it->is_directory(ec)) continue;
    if (!WildcardMatch(name, PathText(it->path().filename()))) continue;
    std::error_code removeError;
    if (fs::remove(it->path(), removeError)) {
      ++deleted;
    } else {
      failed = true;
    }
  }
  return deleted > 0 && !failed && !ec;
}

void KillQuiet(const std::string& path) { KillFile(path); }

bool RenameFile(const std::string& oldPath, const std::string& newPath) {
  std::error_code ec;
  fs::rename(FsPath(oldPath), FsPath(newPath), ec);
  return !ec;
}

void ShellDelete(const std::string& path, bool permanent) {
  const std::string target = CutFinalSeparator(path);
  if (target.empty()) return;
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
  // The desktop's trash lives in the user's data folder; on an account where that folder
  // doesn't exist yet, the toolkit would put the trash's folders into the current directory.
  if (!permanent) {
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
  }
#endif
  if (!permanent && QFile::moveToTrash(ToQString(target))) return;
  std::error_code ec;
  fs::remove_all(FsPath(target), ec);
}

bool ShellCopy(const std::string& source, const std::string& dest, int operation, bool mustExist,
               bool isFolder) {
  const std::string from = CutFinalSeparator(source);
  if (mustExist) {
    if (isFolder ? !FolderExists(from) : !FileExists(from)) return false;
  }
  const bool move = operation == 1;
  std::error_code ec;
  const fs::path fromPath = FsPath(from);
  fs::path toPath = FsPath(CutFinalSeparator(dest));
  if (!fs::exists(fromPath, ec)) return true;
  // Into an existing folder the thing keeps its name; otherwise the destination is its new name.
  if (fs::is_directory(toPath, ec)) toPath /= fromPath.filename();
  try {
    if (move) {
      fs::rename(fromPath, toPath, ec);
      if (ec) {  // another device: copy, then delete the original
        CopyTree(fromPath, toPath);
        fs::remove_all(fromPath);
      }
    } else {
      CopyTree(fromPath, toPath);
    }
  } catch (const fs::filesystem_error&) {
    // Like the shell's own operation, a partial copy is no failure of the caller.
  }
  return true;
}

std::string GetTempFolderPath() {
  std::error_code ec;
  const fs::path temp = fs::temp_directory_path(ec);
  if (ec) return {};
  return AddSlash(PathText(temp));
}

std::string FindFileNoCase(const std::string& folder, const std::string& name) {
  const std::string base = AddSlash(folder);
  const std::string exact = base + name;
  std::error_code ec;
  if (fs::exists(FsPath(exact), ec)) return exact;
  for (fs::directory_iterator it(FsPath(base), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string candidate = PathText(it->path().filename());
    if (EqualsNoCase(candidate, name)) return base + candidate;
  }
  return exact;
}

std::string TempNameBeside(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  thread_local std::mt19937 random(std::random_device{}());
  static constexpr char kDigits[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::string tag;
  for (int i = 0; i < 6; ++i) tag += kDigits[random() % (sizeof kDigits - 1)];
  return CutFinalSeparator(path) + "." + tag + std::to_string(counter++) + std::string(kTempMark);
}

bool SyncFileToDisk(const std::string& path) {
#ifdef _WIN32
  const int fd = _open(path.c_str(), _O_RDWR | _O_BINARY);
  if (fd < 0) return false;
  const bool synced = _commit(fd) == 0;
  _close(fd);
#else
  const int fd = ::open(FsPath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool synced = ::fsync(fd) == 0;
  ::close(fd);
#endif
  return synced;
}

bool WriteFileAtomically(const std::string& path, std::string_view content) {
  const std::string temp = TempNameBeside(path);
  {
    std::ofstream out(FsPath(temp), std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    if (out.fail()) {
      KillQuiet(temp);
      return false;
    }
  }
  // Synced before the rename, so that after a power cut the name never leads to a short file.
  std::error_code ec;
  if (!SyncFileToDisk(temp)) {
    KillQuiet(temp);
    return false;
  }
  fs::rename(FsPath(temp), FsPath(path), ec);
  if (ec) {
    KillQuiet(temp);
    return false;
  }
  return true;
}

int RemoveStaleTempFiles(const std::string& folder, std::chrono::seconds minimumAge) {
  int removed = 0;
  std::error_code ec;
  const auto now = fs::file_time_type::clock::now();
  for (fs::directory_iterator it(FsPath(folder), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = PathText(it->path().filename());
    if (name.size() <= kTempMark.size() || !name.ends_with(kTempMark)) continue;
    std::error_code itemError;
    if (!it->is_regular_file(itemError)) continue;
    const auto written = fs::last_write_time(it->path(), itemError);
    if (itemError || now - written < minimumAge) continue;
    if (fs::remove(it->path(), itemError)) ++removed;
  }
  return removed;
}

bool ReadWholeFile(const std::string& path, std::string& content) {
  std::ifstream in(FsPath(path), std::ios::binary);
  if (!in) return false;
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  if (size < 0) return false;
  in.seekg(0, std::ios::beg);
  content.resize(static_cast<size_t>(size));
  if (size > 0) in.read(content.data(), size);
  return static_cast<bool>(in) || in.eof();
}

int NormaliseWindowStyle(int style) { return (style < 0 || style > 6) ? 6 : style; }

int RunAndWait(const std::string& program, const std::vector<std::string>& arguments,
               const RunOptions& options) {
  QProcess process;
  process.setProgram(ToQString(program));
  QStringList args;
  for (const std::string& a : arguments) args << ToQString(a);
  process.setArguments(args);
  if (!options.workingFolder.empty()) process.setWorkingDirectory(ToQString(options.workingFolder));
  if (!options.standardOutputFile.empty()) {
    process.setStandardOutputFile(ToQString(options.standardOutputFile), QIODevice::Truncate);
  } else {
    process.setStandardOutputFile(QProcess::nullDevice());
  }
  process.setStandardErrorFile(QProcess::nullDevice());
  process.setStandardInputFile(QProcess::nullDevice());
  process.start();
  // 53 is "File not found", the error a missing program has always given here.
  if (!process.waitForStarted(-1)) return kRunStartFailure + 53;
  // No time-out: the wait ends only with the program, as a build must not be cut short, or with
  // a cancel, which must not wait for a list of hundreds of megabytes to be printed.
  if (!options.cancel) {
    process.waitForFinished(-1);
  } else {
    while (!process.waitForFinished(100)) {
      if (process.state() == QProcess::NotRunning) break;
      if (!options.cancel->load()) continue;
      process.terminate();
      if (!process.waitForFinished(std::max(0, options.cancelGraceMilliseconds))) {
        process.kill();
        process.waitForFinished(-1);
      }
      return kRunCancelled;
    }
  }
  if (process.exitStatus() == QProcess::CrashExit) return kRunStartFailure + 51;
  return process.exitCode();
}

void SortStrings(std::vector<std::string>& table, int low, int high) {
  if (table.empty()) return;
  if (low < 0) low = 0;
  if (high >= static_cast<int>(table.size())) high = static_cast<int>(table.size()) - 1;
  if (low >= high) return;
  // std::string compares as unsigned bytes, which is the character-code order we want.
  std::sort(table.begin() + low, table.begin() + high + 1);
}

int FindNthOccurrence(std::string_view text, std::string_view needle, int n) {
  if (n < 1 || needle.empty()) return 0;
  size_t from = 0;
  size_t pos = std::string_view::npos;
  for (int i = 0; i < n; ++i) {
    pos = text.find(needle, from);
    if (pos == std::string_view::npos) return 0;
    from = pos + 1;  // the next search starts behind the former hit's first character
  }
  return static_cast<int>(pos) + 1;
}

}  // namespace tessarin
