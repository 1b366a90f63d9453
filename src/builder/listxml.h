#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class GameStore;
class Log;
class Work;

// Reads the emulator's XML game list (the dump of -listxml) into the store: one record per game
// with the byte offset of its opening line, the fields the list gives, and the tables in order
// of first appearance. Lines are tested for fixed substrings, not parsed as XML; texts keep
// their entities. <machine lines count as <game lines; devices (isdevice="yes") make no record
// and set nothing, and the EndRecord then holds the offset of the first machine line behind
// the last game.
//
// `path` empty means the default dump, and is set to it. Records and names are replaced, the
// tables are added to. A missing or empty file leaves GameCount() at 0, as does a file with no
// game line (a legacy list, an error text). A fault (such as a name attribute with no value)
// goes to the error tracker and ends the import without its EndRecord.
void ImportListXml(AppContext& ctx, Work& work, std::string& path);

// True when the XML list at `path` ends with its root's closing element (</mame> or
// </datafile>), so it was printed to its end; false for a list cut in the middle.
bool ListXmlIsWhole(const std::string& path);

// The same on an explicit store, for callers and tests that have no context. `blockSize` is the
// size of the reads (0: the usual 4 MB); tests make it small to put lines across blocks.
void ImportListXml(GameStore& store, Log& log, Work& work, const std::string& path,
                   size_t blockSize = 0);

}  // namespace tessarin
