#pragma once

#include <functional>
#include <string>

namespace tessarin {

class AppContext;
class Work;

// The personal notes file in the application folder.
inline constexpr const char* kNotesFileName = "NOTES.TXT";

// Writes NOTES.TXT from the games in memory: the header, then "[rom] description" for each game,
// sorted by byte value, each followed by an empty line. Polls the cancel flag; gives false when
// cancelled or when the file can't be written (nothing is left behind then).
bool WriteNotesFile(AppContext& ctx, Work& work);

enum class NotesOutcome { Opened, Created, Cancelled, NoDatabase };

// The panel's notes entry: opens an existing NOTES.TXT; else loads the database when none is in
// memory, says so and stops when there is still none; else builds the file as a job through
// `runJob` (which gives false when the job was cancelled) and opens it. The user is told
// through ctx.Ui().
NotesOutcome RunNotesEntry(
    AppContext& ctx, const std::function<void()>& loadIndex,
    const std::function<bool(const std::string& label, const std::function<void(Work&)>& job)>&
        runJob);

}  // namespace tessarin
