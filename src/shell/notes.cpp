#include "shell/notes.h"

#include "app/context.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/work.h"

namespace tessarin {

namespace {
constexpr const char* kNotesHeader =
    "; Here you can put whatever you want to write about roms.\r\n"
    "; Just write under the line of the rom you want to comment.\r\n"
    ";\r\n"
    "; Vous pouvez \xC3\xA9"
    "crire ici ce que vous voulez sur les roms.\r\n"
    "; \xC3\x89"
    "crivez vos commentaires sous le nom de la rom.\r\n"
    ";\r\n"
    "[Example]\r\n"
    "This game is terrific !\r\n";
}  // namespace

bool WriteNotesFile(AppContext& ctx, Work& work) {
  bool written = false;
  RunGuarded(ctx.log, 1105, [&] {
    const GameStore& store = ctx.store;
    const int count = store.GameCount();
    work.ProgressMax = count;
    std::vector<std::string> table;
    table.reserve(static_cast<size_t>(count > 0 ? count : 0));
    for (int i = 1; i <= count; ++i) {
      if ((i & 1023) == 0) {
        if (work.CancelRequested) return;
        work.ProgressValue = i;
      }
      table.push_back("[" + store.GameNames()[static_cast<size_t>(i)] + "] " +
                      GameDescription(store, i));
    }
    if (work.CancelRequested) return;
    SortStrings(table, 0, static_cast<int>(table.size()) - 1);
    if (work.CancelRequested) return;
    std::string content = kNotesHeader;
    for (const std::string& line : table) {
      content += line;
      content += "\r\n\r\n";
    }
    work.ProgressValue = count;
    written = WriteFileAtomically(ctx.AppFolder() + kNotesFileName, content);
  });
  return written;
}

NotesOutcome RunNotesEntry(
    AppContext& ctx, const std::function<void()>& loadIndex,
    const std::function<bool(const std::string& label, const std::function<void(Work&)>& job)>&
        runJob) {
  const std::string existing = FindFileNoCase(ctx.AppFolder(), kNotesFileName);
  if (FileExists(existing)) {
    ctx.Ui().OpenDocument(existing);
    return NotesOutcome::Opened;
  }
  if (ctx.store.GameCount() < 1 && loadIndex) loadIndex();
  if (ctx.store.GameCount() < 1) {
    ctx.Ui().ShowMessage(false, ctx.messages.Lng(326) + "|" + ctx.messages.Lng(57) + ".", {},
                         Icon::Information);
    return NotesOutcome::NoDatabase;
  }
  bool written = false;
  const bool completed =
      runJob(ctx.messages.Lng(31), [&](Work& work) { written = WriteNotesFile(ctx, work); });
  if (!completed || !written) return NotesOutcome::Cancelled;
  ctx.Ui().OpenDocument(ctx.AppFolder() + kNotesFileName);
  return NotesOutcome::Created;
}

}  // namespace tessarin
