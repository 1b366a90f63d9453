#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace tessarin {

// The error tracker and the run log, Tessarin.log.txt in the application folder.
//
// A routine that can fail names itself with a tracking number on entry (TrackPoint) and runs
// its body through RunGuarded (guard.h); a failure is written here as a five-line group and
// counted. The sixth failure of a run writes a last line and calls the fatal handler, which
// shows the log and ends the program.
class Log final {
 public:
  // Called on the sixth failure with the log's path. The front end shows the log and ends the
  // program; the default prints the path on standard error and exits.
  using FatalHandler = std::function<void(const std::string& logPath)>;

  explicit Log(std::string appFolder);

  // The name of the log in the application folder, as the file system spells it. We write it as
  // Tessarin.log.txt; an older file of another case is found and kept as the one log.
  std::string LogPath() const;

  void SetTrackPoint(int point) { m_trackPoint.store(point); }
  int TrackPoint() const { return m_trackPoint.load(); }
  int BugCount() const { return m_bugCount.load(); }

  // With a text: appends it as one line, and counts nothing. With the empty text: logs the
  // failure being handled (call it from inside a catch block) as an error group, counts it,
  // and on the sixth one ends the run through the fatal handler.
  void LogError(std::string_view text);

  // Appends one line to `path`, or replaces the file by it when `overwrite` is true. An empty
  // path is the run log. The file is opened and closed for each line so that it can be read
  // while the run goes on. Gives false when the file can't be written.
  bool WriteLogLine(std::string_view text, bool overwrite = false, std::string_view path = {});

  // Deletes the log of the previous run (start-up does this once).
  void DeleteLog();

  void SetFatalHandler(FatalHandler handler);

 private:
  std::string m_appFolder;
  std::atomic<int> m_trackPoint{0};
  std::atomic<int> m_bugCount{0};
  std::mutex m_mutex;
  FatalHandler m_fatal;
};

// What the log says of a failure: a number and a description, in the manner of the classic
// run-time errors (7 for memory, 9 for a subscript out of range, 53 for a missing file...).
struct FailureInfo {
  int number = 0;
  std::string description;
};

// Describes the exception being handled, or a neutral text when there is none.
FailureInfo DescribeCurrentException();

// An error that carries its own number, for code that wants the log to name the cause.
class Failure : public std::exception {
 public:
  Failure(int number, std::string description)
      : m_number(number), m_description(std::move(description)) {}
  int Number() const noexcept { return m_number; }
  const char* what() const noexcept override { return m_description.c_str(); }

 private:
  int m_number;
  std::string m_description;
};

}  // namespace tessarin
