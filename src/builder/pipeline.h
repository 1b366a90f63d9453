#pragma once

#include <string>

namespace tessarin {

class AppContext;
class Work;

// The date and the time as the build's log lines write them ("2024-05-01", "14:03:59").
std::string LogDate();
std::string LogTime();

// Makes a whole new database in memory from the dump in its default place (the XML list, or
// the legacy list when the XML one gives no game) and the data files of the settings, in a
// fixed order, logging each step to the run log (the first line replaces the old log); then
// resolves the entities of the records and writes the index file.
//
// Gives true when the index file was written. False when no game was found (the old index is
// left as it was), when cancelled (the old index stays, the memory keeps the unfinished
// database), or when the routine itself failed (recorded by the error tracker).
bool BuildDatabase(AppContext& ctx, Work& work);

// The four replacements the build makes on every record, on the whole text: "&#38", "&amp;",
// "&lt;" and "&gt;", in this order.
void ResolveEntities(std::string& record);

}  // namespace tessarin
