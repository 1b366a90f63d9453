#pragma once

#include <string>
#include <string_view>

#include "store/gamerecord.h"

namespace tessarin {

class Log;
class Work;

// The database's files in the application folder. One spelling everywhere: the folder
// "DataFiles" and the names without extension, "index", "listxml" and "listinfo".
std::string DataFilesFolder(const std::string& appFolder);  // with a final separator
std::string IndexFilePath(const std::string& appFolder);
std::string DefaultListXmlPath(const std::string& appFolder);
std::string DefaultListInfoPath(const std::string& appFolder);

// The section title of a table as the index file writes it: "[Manufacturer]"...
std::string SectionTitleLine(TableId id);

// Loads the index file at `path` into `store`: the version line, the records up to the first
// section title (the last of them is the EndRecord), then the thirteen tables. Nothing else is
// checked. Gives false, with an empty store, when the file is missing or holds no record line;
// a fault while reading goes to the error tracker and gives false too. LongestNameLength is only
// ever raised, never lowered.
bool LoadIndex(GameStore& store, Log& log, const std::string& path);

// Writes the whole store to `path`: version line, records 1 to GameCount + 1 (with the EndRecord
// when there is one), then the thirteen sections, CR LF line ends. Before writing, a record
// that begins with a blank is trimmed and a blank in front of ";B" is dropped, in the store too.
// The file is replaced atomically: a failure leaves the old index whole. `work`, when given,
// receives the progress. Gives false when the file can't be written (logged).
bool SaveIndex(GameStore& store, Log& log, Work* work, const std::string& path);

// The text SaveIndex writes (after the same clean-ups), for callers that want it in memory.
std::string IndexFileText(GameStore& store, Work* work);

}  // namespace tessarin
