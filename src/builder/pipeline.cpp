#include "builder/pipeline.h"

#include <QDateTime>
#include <QString>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "builder/inianalysers.h"
#include "builder/listinfo.h"
#include "builder/listxml.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

std::string LogDate() {
  return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd")).toStdString();
}

std::string LogTime() {
  return QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss")).toStdString();
}

void ResolveEntities(std::string& record) {
  // The numeric entity is matched without its semicolon, so "&#38;" becomes "&;".
  static constexpr std::string_view kFrom[4] = {"&#38", "&amp;", "&lt;", "&gt;"};
  static constexpr std::string_view kTo[4] = {"&", "&", "<", ">"};
  // Most records hold no '&' at all; they are left without a copy.
  if (record.find('&') == std::string::npos) return;
  for (int i = 0; i < 4; ++i) {
    if (record.find(kFrom[i]) != std::string::npos) {
      record = FastReplace(record, kFrom[i], kTo[i], 1, kAllMatches, 0);
    }
  }
}

namespace {

// The number of games of the database on disk; 0 when there is none. Read only when a cut list
// is about to replace it, so its cost doesn't matter.
int IndexGameCount(AppContext& ctx, const std::string& path) {
  if (!FileExists(path)) return 0;
  GameStore previous;
  if (!LoadIndex(previous, ctx.log, path)) return 0;
  return previous.GameCount();
}

}  // namespace

bool BuildDatabase(AppContext& ctx, Work& work) {
  bool built = false;
  RunGuarded(ctx.log, 3101, [&] {
    Log& log = ctx.log;
    GameStore& store = ctx.store;
    auto cancelled = [&] { return work.CancelRequested.load(); };
    auto logCancel = [&] { log.WriteLogLine("CANCELED BY USER : " + LogDate() + " " + LogTime()); };

    log.WriteLogLine(LogDate() + " " + LogTime() + " New indexing...", true);
    store.Clear();

    std::string path;
    ImportListXml(ctx, work, path);
    if (cancelled()) return logCancel();
    bool cutList = false;
    if (store.GameCount() != 0) {
      store.SourceIsXml = true;
      log.WriteLogLine(" Source is XML");
      // The import keeps what it read; a list that lacks its end is told, and a larger
      // database isn't replaced by it without a yes.
      if (!ListXmlIsWhole(path)) {
        cutList = true;
        const std::string said = "The game list " + path +
                                 " ends before its closing </mame>: it was cut short, and only " +
                                 std::to_string(store.GameCount()) + " games were read.";
        log.WriteLogLine(" " + said);
        ctx.Ui().ShowMessage(false, said, {}, Icon::Warning);
      }
    } else {
      log.WriteLogLine(" Source is not XML (old version of MAME)");
      path.clear();
      ImportListInfo(ctx, work, path);
      store.SourceIsXml = false;
    }
    if (cancelled()) return logCancel();
    if (store.GameCount() == 0) {
      log.WriteLogLine("No rom found... END : " + LogDate() + " " + LogTime());
      return;
    }

    ResetVerAddedField(store);
    const bool verAddedFromMameinfo = AnalyseVerAddedMameinfo(ctx, std::string(), false, work);
    // Wizsort.ini covers genre, category, driver, manufacturer, version added, year, mature
    // and bios: with it, the other classifying lists are not read.
    if (!AnalyseWizsort(ctx, false, verAddedFromMameinfo, work)) {
      if (cancelled()) return logCancel();
      const bool catlist = AnalyseCatlist(ctx, false, work);
      if (cancelled()) return logCancel();
      const bool catver = AnalyseCatver(ctx, catlist, false, work);
      if (cancelled()) return logCancel();
      if (!catver && !verAddedFromMameinfo) AnalyseVerAddedFile(ctx, false, work);
      // The only analyser a build resets: the genre field starts from its placeholder.
      AnalyseGenre(ctx, true, work);
      AnalyseMature(ctx, false, work);
    }
    if (cancelled()) return logCancel();
    if (!AnalyseMultiplayer(ctx, false, work)) AnalyseNPlayers(ctx, false, work);
    if (cancelled()) return logCancel();
    AnalyseCheat(ctx, false, work);
    if (cancelled()) return logCancel();
    AnalyseHiscore(ctx, false, work);
    if (cancelled()) return logCancel();
    AnalyseCommand(ctx, false, work);
    if (cancelled()) return logCancel();
    AnalyseHistory(ctx, false, work);
    if (cancelled()) return logCancel();
    AnalyseMameinfo(ctx, false, work);
    if (cancelled()) return logCancel();

    // The texts of the list keep their entities until here; the EndRecord is no game.
    const int count = store.GameCount();
    for (int i = 1; i <= count; ++i) ResolveEntities(store.GameRecords[static_cast<size_t>(i)]);

    MakeFolder(DataFilesFolder(ctx.AppFolder()));
    if (cutList) {
      const int previous = IndexGameCount(ctx, IndexFilePath(ctx.AppFolder()));
      if (previous > store.GameCount() &&
          !ctx.Ui().AskYesNo("The database holds " + std::to_string(previous) +
                                 " games; the cut list gives " + std::to_string(store.GameCount()) +
                                 ".|Replace it all the same?",
                             {}, Icon::Question)) {
        log.WriteLogLine(" The database of " + std::to_string(previous) + " games was kept.");
        return;
      }
    }
    built = SaveIndex(store, log, &work, IndexFilePath(ctx.AppFolder()));
  });
  return built;
}

}  // namespace tessarin
