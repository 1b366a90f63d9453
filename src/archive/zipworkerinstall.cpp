#include "archive/zipworkerinstall.h"

#include <QCoreApplication>
#include <filesystem>
#include <system_error>

#include "archive/zippath.h"
#include "core/textutil.h"

namespace tessarin {

namespace fs = std::filesystem;

std::string ZipWorkerFileName() {
#ifdef _WIN32
  return "MyZip.exe";
#else
  return "MyZip";
#endif
}

std::string FindZipWorker(const std::string& appFolder) {
  std::error_code ec;
  const fs::path folder = PathFromText(appFolder);
  const std::string wanted = LowerCopy(ZipWorkerFileName());
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (LowerCopy(TextFromPath(it->path().filename())) != wanted) continue;
    std::error_code e;
    if (it->is_regular_file(e)) return TextFromPath(it->path());
  }
  return {};
}

std::vector<std::string> DefaultZipWorkerSources() {
  std::vector<std::string> sources;
  if (QCoreApplication::instance()) {
    const QByteArray folder = QCoreApplication::applicationDirPath().toUtf8();
    sources.push_back(TextFromPath(
        PathFromText(std::string(folder.constData(), static_cast<std::size_t>(folder.size()))) /
        PathFromText(ZipWorkerFileName())));
  }
#ifdef TESSARIN_ZIPWORKER_BUILD_PATH
  sources.emplace_back(TESSARIN_ZIPWORKER_BUILD_PATH);
#endif
  return sources;
}

bool ExtractZipWorker(const std::string& appFolder, const std::vector<std::string>& sources) {
  if (!FindZipWorker(appFolder).empty()) return true;
  const std::vector<std::string> candidates = sources.empty() ? DefaultZipWorkerSources() : sources;
  std::error_code ec;
  const fs::path target = PathFromText(appFolder) / PathFromText(ZipWorkerFileName());
  for (const std::string& candidate : candidates) {
    const fs::path source = PathFromText(candidate);
    if (!fs::is_regular_file(source, ec)) continue;
    if (!fs::copy_file(source, target, fs::copy_options::overwrite_existing, ec)) continue;
    fs::permissions(target,
                    fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec |
                        fs::perms::owner_read | fs::perms::owner_write,
                    fs::perm_options::add, ec);
    return true;
  }
  return false;
}

std::string ZipWorkerJob(const std::string& destination, const std::string& source,
                         const std::string& name) {
  const char separator = (!source.empty() && source.back() == '\\') ? '\\' : '/';
  return destination + name + ".zip," + source + name + separator + "*.*\"";
}

}  // namespace tessarin
