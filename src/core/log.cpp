#include "core/log.h"

#include <QDateTime>
#include <QLocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <stdexcept>
#include <system_error>

#include "core/fileservices.h"

namespace tessarin {

namespace {

constexpr const char* kLogName = "Tessarin.log.txt";

std::string NowInShortForms() {
  const QLocale locale = QLocale::system();
  const QDateTime now = QDateTime::currentDateTime();
  return (locale.toString(now.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
          locale.toString(now.time(), QLocale::ShortFormat))
      .toStdString();
}

// Opens for appending (or replacing) in binary mode, so that the CR LF we write stays as is.
bool AppendLines(const std::string& path, const std::string& text, bool overwrite) {
  std::ofstream out(FsPath(path), std::ios::binary | (overwrite ? std::ios::trunc : std::ios::app));
  if (!out) return false;
  out << text;
  out.close();
  return !out.fail();
}

}  // namespace

Log::Log(std::string appFolder) : m_appFolder(AddSlash(std::move(appFolder))) {}

std::string Log::LogPath() const { return FindFileNoCase(m_appFolder, kLogName); }

void Log::SetFatalHandler(FatalHandler handler) {
  std::lock_guard lock(m_mutex);
  m_fatal = std::move(handler);
}

void Log::DeleteLog() { KillQuiet(LogPath()); }

void Log::LogError(std::string_view text) {
  std::unique_lock lock(m_mutex);
  const std::string path = LogPath();
  if (!text.empty()) {
    AppendLines(path, std::string(text) + "\r\n", false);
    return;
  }
  const FailureInfo failure = DescribeCurrentException();
  std::string group;
  group += "<START DEBUGGING> " + NowInShortForms() + "\r\n";
  group += "TRACKING BUG NUMBER = " + std::to_string(TrackPoint()) + "\r\n";
  group += std::to_string(failure.number) + " " + failure.description + "\r\n";
  group += "<END>\r\n";
  group += " \r\n";
  // The count says "5" although it is the sixth failure that stops the run: the first five are
  // forgiven, and the last line keeps the words users know.
  const int count = ++m_bugCount;
  if (count > 5) group += "5 BUG ERRORS => Sorry, Tessarin Stopped.\r\n";
  AppendLines(path, group, false);
  if (count <= 5) return;

  FatalHandler fatal = m_fatal;
  lock.unlock();
  if (fatal) {
    fatal(path);
    return;
  }
  std::fprintf(stderr, "Tessarin stopped after too many errors; see %s\n", path.c_str());
  std::fflush(stderr);
  std::_Exit(EXIT_FAILURE);
}

bool Log::WriteLogLine(std::string_view text, bool overwrite, std::string_view path) {
  std::lock_guard lock(m_mutex);
  const std::string target =
      path.empty() ? FindFileNoCase(m_appFolder, kLogName) : std::string(path);
  return AppendLines(target, std::string(text) + "\r\n", overwrite);
}

FailureInfo DescribeCurrentException() {
  const std::exception_ptr current = std::current_exception();
  if (!current) return {0, "Unknown failure"};
  try {
    std::rethrow_exception(current);
  } catch (const Failure& e) {
    return {e.Number(), e.what()};
  } catch (const std::bad_alloc&) {
    return {7, "Out of memory"};
  } catch (const std::out_of_range& e) {
    return {9, std::string("Subscript out of range: ") + e.what()};
  } catch (const std::filesystem::filesystem_error& e) {
    return {75, std::string("Path/File access error: ") + e.what()};
  } catch (const std::system_error& e) {
    return {e.code().value(), e.what()};
  } catch (const std::exception& e) {
    return {5, std::string("Invalid procedure call or argument: ") + e.what()};
  } catch (...) {
    return {0, "Unknown failure"};
  }
}

}  // namespace tessarin
