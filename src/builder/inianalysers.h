#pragma once

#include <string>

namespace tessarin {

class AppContext;
class Work;

// The .ini analysers: classifying lists whose values go into the code tables, and whose table
// indexes go into the records (genre, category, version added, players, mature, and all of these
// at once from Wizsort.ini). Each finds its file (settings key, else the default name in the
// data folder); a missing file gives false without a log line, except where said. Only
// placeholders are replaced, so the first line naming a game wins. A value enters a table only
// when a game of the database uses it. Each reading loop publishes its progress in `work` and
// stops on CancelRequested, which makes the result false. A failure is recorded by the error
// tracker and gives false; the records set so far stay set.

// Wizsort.ini: genre, category, driver (legacy source only), manufacturer, version added, year,
// mature and bios. `skipVerAdded` leaves the [VerAdded] section alone; the build passes its
// "version added taken from Mameinfo.dat" flag here. True when the file was read to its end.
bool AnalyseWizsort(AppContext& ctx, bool reset, bool skipVerAdded, Work& work);

// Catlist.ini into field J. True also when the file is missing (then without a log line);
// false only when cancelled.
bool AnalyseCatlist(AppContext& ctx, bool reset, Work& work);

// Catver.ini: [category] into field J (unless `skipCategories`), [VerAdded] into field K.
// `reset` clears `skipCategories` as well. The category title is looked for in lower case only,
// as written here. True when read to the end.
bool AnalyseCatver(AppContext& ctx, bool skipCategories, bool reset, Work& work);

// The genre file into field I. True when read to the end.
bool AnalyseGenre(AppContext& ctx, bool reset, Work& work);

// The mature file into field L ("*Mature*"). True when read to the end.
bool AnalyseMature(AppContext& ctx, bool reset, Work& work);

// Multiplayer.ini into field O, only when the path under DataFile8 names a multiplayer.ini;
// false at once otherwise.
bool AnalyseMultiplayer(AppContext& ctx, bool reset, Work& work);

// Nplayers.ini into field O, only when the path under DataFile8 names an nplayers.ini (false
// at once otherwise). Past that test it is true also when the file is missing; false when
// cancelled.
bool AnalyseNPlayers(AppContext& ctx, bool reset, Work& work);

// The version added from the $mame part of Mameinfo.dat entries into field K, then the games
// left at "?" from the version*.ini files of the data folder. An empty `path` means the
// DataFile3 setting or the default. False when the file is missing or when cancelled.
bool AnalyseVerAddedMameinfo(AppContext& ctx, const std::string& path, bool reset, Work& work);

// The version added when Catver.ini gave none: through AnalyseVerAddedMameinfo when a
// Mameinfo.dat is there, else from the version file (DataFile17 or the default), a section list
// with the versions as titles. False when missing or cancelled.
bool AnalyseVerAddedFile(AppContext& ctx, bool reset, Work& work);

}  // namespace tessarin
