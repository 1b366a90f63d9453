#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/textutil.h"

namespace tessarin {

class AppContext;
class GameStore;
class Work;

// The five .dat analysers. Each finds its file (the path under its settings key, else the
// default name in the application's data folder), writes its " Analysing ..." line to the run
// log, and puts into every record the file speaks of either a byte range of the file (History,
// Command, Mameinfo) or the flag 1 (Hiscore, Cheat). Only placeholders are replaced, so the first
// entry naming a game wins. With `reset` true the field is put back to its placeholder in every
// record first.
//
// All give false when the file is missing (no log line then) and after a failure, which the
// error tracker records; the records set so far stay set.

// Mameinfo.dat into field U ("start,length"). False for a missing or empty file.
bool AnalyseMameinfo(AppContext& ctx, bool reset, Work& work);
// History.dat into field Q ("start,end"). False for a missing or empty file.
bool AnalyseHistory(AppContext& ctx, bool reset, Work& work);
// Command.dat into field T ("start,length"). Always false, even after a complete analysis: the
// database dialog relies on it.
bool AnalyseCommand(AppContext& ctx, bool reset, Work& work);
// Hiscore.dat into field P ("1"). False for a missing file or when cancelled.
bool AnalyseHiscore(AppContext& ctx, bool reset, Work& work);
// Cheat.dat into field R ("1"). False for a missing file or when cancelled.
bool AnalyseCheat(AppContext& ctx, bool reset, Work& work);

// The data file to read: the path stored under `settingsKey` when a file is there, else
// `defaultPath` (relative to the application folder, '\' or '/' separated, each part found
// without regard to case). Empty when neither exists.
std::string FindDataFile(const AppContext& ctx, std::string_view settingsKey,
                         std::string_view defaultPath);

// The file at `path`, or the file of its folder whose name differs only in case; empty when
// there is none (also for the settings' "-1").
std::string ExistingDataFile(const std::string& path);

// `relativePath` ('\' or '/' separated) under `folder`, each part matched without regard to
// case; the parts not found are joined as given, so the result can be tested with FileExists.
std::string ResolveNoCase(const std::string& folder, std::string_view relativePath);

// The analysers' log line: a blank, the time, " Analysing ", the path, and when `what` is not
// empty a line break and `what`.
std::string AnalysingLine(std::string_view path, std::string_view what);

// Reads a data file line by line through one growing buffer, so that lines cost no
// allocation. Every line end the file really has counts: CR LF, LF and a lone CR each end a
// line, and LineEndLength() tells how many bytes it took (0 for a last line without one), so
// that offsets stay true byte offsets whatever the file's convention.
class DataLineReader final {
 public:
  DataLineReader() = default;
  DataLineReader(const DataLineReader&) = delete;
  DataLineReader& operator=(const DataLineReader&) = delete;

  // False when the file can't be opened.
  bool Open(const std::string& path);
  void Close();
  // The file's length in bytes, from Open.
  std::int64_t FileLength() const { return m_fileLength; }

  // The next line without its line end; false at the end of the file. The view stays valid
  // until the next call.
  bool ReadLine(std::string_view& line);
  // True when no line is left.
  bool AtEnd();
  // Bytes of the last line's line end: 2, 1, or 0.
  int LineEndLength() const { return m_lineEndLength; }
  // 0-based offset of the last line's first byte.
  std::int64_t LineOffset() const { return m_lineOffset; }
  // 0-based offset of the byte behind the last line's line end.
  std::int64_t NextOffset() const { return m_lineOffset + m_lineLength + m_lineEndLength; }

 private:
  // Reads more of the file behind the unread bytes; false when nothing more came.
  bool Fill();

  std::ifstream m_file;
  std::int64_t m_fileLength = 0;
  std::vector<char> m_buffer;
  size_t m_begin = 0;  // first unread byte in m_buffer
  size_t m_end = 0;    // behind the last valid byte in m_buffer
  bool m_eof = false;
  std::int64_t m_consumed = 0;  // file offset of m_buffer[m_begin]
  std::int64_t m_lineOffset = 0;
  std::int64_t m_lineLength = 0;
  int m_lineEndLength = 0;
};

// Sets a field of game `index`; nothing for 0 (a name the database doesn't know).
void SetField(GameStore& store, int index, std::string_view placeholder, std::string_view value);
// Opens a data file and starts the progress over its length; false when it can't be opened.
bool OpenWithProgress(DataLineReader& reader, const std::string& path, Work& work);
// One line of a file being analysed: the progress moves on by the line's length, and a cancel
// stops the reading. False at the end of the file or on cancel (then `cancelled` is set).
bool NextLine(DataLineReader& reader, Work& work, std::string_view& line, bool& cancelled);
void ProgressToEnd(Work& work);

}  // namespace tessarin
