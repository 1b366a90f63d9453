#pragma once

// A temporary application folder with a database built from one of the sheet's fixture dumps
// and, on request, its data files and notes.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/context.h"
#include "builder/pipeline.h"
#include "core/messages.h"
#include "core/work.h"
#include "store/indexfile.h"

namespace tessarin::sheettest {

inline std::string SheetFixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/sheet/" + name;
}

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream out(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  out << bytes;
}

// The 0-based offset of the first byte of the line that holds `needle`; npos when absent.
inline size_t LineStartOf(const std::string& text, const std::string& needle) {
  const size_t at = text.find(needle);
  if (at == std::string::npos) return at;
  size_t start = at;
  while (start > 0 && text[start - 1] != '\n' && text[start - 1] != '\r') --start;
  return start;
}

struct DataFiles {
  std::string history, mameinfo, command;  // fixture names; empty for none
  bool notes = false;
};

// A home whose database is built, through the real pipeline, from `dump` (put in the XML or the
// legacy dump's place) and the data files named.
class SheetHome {
 public:
  SheetHome(const std::string& dump, bool xml, const DataFiles& files)
      : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    dumpPath = xml ? DefaultListXmlPath(Folder()) : DefaultListInfoPath(Folder());
    WriteBytes(dumpPath, ReadBytes(SheetFixture(dump)));
    Place("DataFile2", files.history, "history.dat");
    Place("DataFile3", files.mameinfo, "mameinfo.dat");
    Place("DataFile5", files.command, "command.dat");
    if (files.notes) WriteBytes(Folder() + "notes.txt", ReadBytes(SheetFixture("notes.txt")));
    Work work;
    built = BuildDatabase(ctx, work);
  }
  std::string Folder() const { return ctx.AppFolder(); }
  // The record of a game.
  const std::string& Record(const std::string& name) const {
    return ctx.store.GameRecords[static_cast<size_t>(ctx.store.FindGame(name))];
  }

  QTemporaryDir dir;
  AppContext ctx;
  std::string dumpPath;
  bool built = false;

 private:
  void Place(const char* key, const std::string& fixture, const std::string& name) {
    if (fixture.empty()) return;
    const std::string path = Folder() + "dat/" + name;
    WriteBytes(path, ReadBytes(SheetFixture(fixture)));
    ctx.settings.InfWrite(key, path);
  }
};

}  // namespace tessarin::sheettest
