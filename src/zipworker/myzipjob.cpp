#include "zipworker/myzipjob.h"

#include <fstream>
#include <system_error>

#include "core/textutil.h"
#include "zipworker/zipclass.h"

namespace tessarin::myzip {

namespace fs = std::filesystem;

namespace {

fs::path InFolder(const std::string& folder, const char* name) {
  return PathFromText(folder) / name;
}

}  // namespace

bool ParseJob(std::string_view job, std::string& zipPath, std::string& fileSpec) {
  zipPath.clear();
  fileSpec.clear();
  std::string_view text = TrimWhite(job);
  if (!text.empty() && text.front() == '|') text = TrimWhite(text.substr(1));
  if (!text.empty() && text.back() == '"') text.remove_suffix(1);
  if (!text.empty() && text.front() == '"') text.remove_prefix(1);
  std::size_t cut = text.find('>');
  if (cut == std::string_view::npos) cut = text.find(',');
  if (cut == std::string_view::npos) return false;
  zipPath = std::string(TrimWhite(text.substr(0, cut)));
  fileSpec = std::string(TrimWhite(text.substr(cut + 1)));
  return true;
}

int RunWorker(std::string_view commandLine, const std::string& workerFolder) {
  std::error_code ec;
  const fs::path todo = InFolder(workerFolder, kTodoFile);
  const fs::path feedback = InFolder(workerFolder, kFeedbackFile);
  fs::remove(feedback, ec);

  std::string job(TrimWhite(commandLine));
  bool fromFile = false;
  bool written = false;
  int count = 0;
  bool run = true;
  if (job.empty()) {
    std::ifstream file(todo, std::ios::binary);
    run = false;
    if (file.is_open()) {
      std::string line;
      std::getline(file, line);
      const std::size_t end = line.find_first_of("\r\n");
      if (end != std::string::npos) line.resize(end);
      job = std::string(TrimWhite(line));
      if (!job.empty()) {
        fromFile = true;
        run = true;
      }
    }
  }
  if (run) {
    std::string zipPath, fileSpec;
    if (ParseJob(job, zipPath, fileSpec) && !zipPath.empty()) {
      ZipClass zip;
      zip.FileAdd(fileSpec, 0, true);
      count = zip.FileCount();
      if (count > 0) written = zip.WriteZip(zipPath);
    }
    if (fromFile) {
      std::ofstream answer(feedback, std::ios::binary | std::ios::trunc);
      answer << (written ? "OK - " + std::to_string(count) + " files." : "CANCEL - Zip error.")
             << "\r\n";
    }
  }
  fs::remove(todo, ec);
  return written ? 0 : 1;
}

}  // namespace tessarin::myzip
