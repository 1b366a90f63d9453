#include "archive/unzip.h"

#include <cstdio>
#include <optional>

#include "archive/zippath.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/work.h"

namespace tessarin {

UnzipSession::UnzipSession(const UnzipEnvironment& environment, bool hidden)
    : m_environment(environment), m_hidden(hidden) {
  m_zip.Progress = [this](int percent, bool& cancel) { MonZip_Progress(percent, cancel); };
  m_zip.Status = [this](const std::string& text) { MonZip_Status(text); };
  m_zip.ZipError = [this](int code, const std::string& text) { MonZip_ZipError(code, text); };
  m_zip.LogLine = [this](const std::string& line) {
    if (m_environment.log) m_environment.log->WriteLogLine(line);
  };
}

bool UnzipSession::OpenIfNeeded() {
  if (m_zip.ZipIsOpen() && m_zip.OpenPath() == ZipPath) return true;
  return m_zip.ZipOpen(ZipPath);
}

void UnzipSession::MonZip_Progress(int percent, bool& cancel) {
  Work* work = m_environment.work;
  if (!work) return;
  if (!m_hidden) {
    work->ProgressMax = 100;
    work->ProgressValue = percent;
  }
  if (work->CancelRequested.load()) cancel = true;
}

void UnzipSession::MonZip_Status(const std::string& text) {
  Label1 = text;
  if (!m_hidden && m_environment.work) {
    if (text == "Début d'extraction") {
      m_environment.work->ProgressMax = 100;
      m_environment.work->ProgressValue = 0;
    } else if (text == "Extraction terminée") {
      m_environment.work->ProgressValue = m_environment.work->ProgressMax.load();
    }
    m_environment.work->SetStatus(text);
  }
}

void UnzipSession::MonZip_ZipError(int code, const std::string& text) {
  if (m_environment.unzipError) {
    *m_environment.unzipError = "Erreur " + std::to_string(code) + " - " + text;
  }
}

bool zLib_ExtraireTout(UnzipSession& session) {
  session.OpenIfNeeded();
  return session.Zip().ExtractAllFiles(session.DestFolder, true, true);
}

void zLib_ListerZIP(UnzipSession& session) {
  session.ZipList.assign(1, std::string());
  session.ZipListCount = 0;
  if (!session.OpenIfNeeded()) return;
  ZipExtractionClass& zip = session.Zip();
  session.ZipList.reserve(static_cast<std::size_t>(zip.FileCount()) + 1);
  for (int i = 1; i <= zip.FileCount(); ++i) session.ZipList.push_back(zip.filename(i));
  session.ZipListCount = zip.FileCount();
}

bool zLib_ExtraireUnFichier(UnzipSession& session) {
  if (!session.OpenIfNeeded()) return false;
  ZipExtractionClass& zip = session.Zip();
  const int entry = zip.FindEntry(session.Wanted);
  if (entry == 0) return false;
  return zip.ExtractSingleFile(entry, session.DestFolder, false, true);
}

int zLib_ExtraireExtension(UnzipSession& session) {
  if (!session.OpenIfNeeded()) return -1;
  ZipExtractionClass& zip = session.Zip();
  const std::string ending = EntryNameKey(session.Wanted);
  int matched = 0;
  int extracted = 0;
  for (int i = 1; i <= zip.FileCount(); ++i) {
    const std::string name = EntryNameKey(zip.filename(i));
    if (name.size() < ending.size() ||
        name.compare(name.size() - ending.size(), ending.size(), ending) != 0) {
      continue;
    }
    ++matched;
    if (zip.ExtractSingleFile(i, session.DestFolder, false, true)) ++extracted;
  }
  return matched == 0 ? -1 : extracted;
}

std::string zLib_LireCommentaire(UnzipSession& session) {
  if (!session.OpenIfNeeded()) return {};
  return session.Zip().ZipComment();
}

std::string zLib_LireContenu(UnzipSession& session) {
  if (!session.OpenIfNeeded()) return {};
  ZipExtractionClass& zip = session.Zip();
  std::string text;
  for (int i = 1; i <= zip.FileCount(); ++i) {
    const std::uint64_t packed = zip.FileCompressedSize(i);
    const std::uint64_t size = zip.FileUncompressedSize(i);
    // The share of the size that compression saved; entries of size 0 never reach the table.
    const double saved =
        size == 0 ? 0.0 : (1.0 - static_cast<double>(packed) / static_cast<double>(size)) * 100.0;
    char rate[32];
    std::snprintf(rate, sizeof rate, "%.0f%%", saved);
    text += zip.filename(i) + '|' + zip.FileDateAndTime(i).ToText() + '|' + std::to_string(packed) +
            " octets (compressé)|" + std::to_string(size) +
            " octets (décompressé)| Taux = " + rate + "\r\n";
  }
  return text;
}

bool RunUnzipGuarded(const UnzipEnvironment& environment, int trackPoint,
                     const std::function<bool()>& operation) {
  // A caller without a log of its own still has its failure tracked, in the log of the
  // application folder: it is never dropped.
  std::optional<Log> own;
  Log& log = environment.log ? *environment.log : own.emplace(environment.appFolder);
  bool result = false;
  RunGuarded(log, trackPoint, [&] { result = operation(); });
  return result;
}

bool UnzipAll(const UnzipEnvironment& environment, const std::string& zipPath,
              const std::string& destFolder, bool hidden) {
  return RunUnzipGuarded(environment, 7101, [&] {
    UnzipSession session(environment, hidden);
    session.ZipPath = zipPath;
    session.DestFolder = CutFinalSeparator(destFolder.empty() ? environment.appFolder : destFolder);
    return zLib_ExtraireTout(session);
  });
}

bool UnzipOne(const UnzipEnvironment& environment, const std::string& zipPath,
              const std::string& entryName, const std::string& destFolder, bool hidden) {
  return RunUnzipGuarded(environment, 7102, [&] {
    UnzipSession session(environment, hidden);
    session.ZipPath = zipPath;
    session.Wanted = entryName;
    session.DestFolder = CutFinalSeparator(destFolder.empty() ? environment.appFolder : destFolder);
    return zLib_ExtraireUnFichier(session);
  });
}

}  // namespace tessarin
