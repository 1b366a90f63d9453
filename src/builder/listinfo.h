#pragma once

#include <string>

namespace tessarin {

class AppContext;
class Work;

// Reads the legacy game list (the dump of -listinfo, for emulators too old for XML) into the
// store. A record opens at each line beginning "game" and takes its name, and the offset of the
// name line, from the TAB "name" line behind it. The status of a "driver (" line goes into the
// driver field N (its status field keeps its placeholder), as databases of this kind always
// had it; year values keep the blank in front of them.
//
// `path` empty means the default dump, and is set to it. Writes " Analysing " and the path to
// the run log when the file exists. A missing or empty file leaves GameCount() at 0; a fault
// (such as a description line too short to hold a value) goes to the error tracker, and the
// games read so far stay, without the EndRecord.
void ImportListInfo(AppContext& ctx, Work& work, std::string& path);

}  // namespace tessarin
