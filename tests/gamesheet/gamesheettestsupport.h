#pragma once

// A temporary application folder whose database is built, through the real pipeline, from the
// game sheet's fixture list, with its data files and notes when asked; and pictures in folders
// and zips.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <string>

#include "app/context.h"
#include "archive/ziptestutil.h"
#include "builder/pipeline.h"
#include "core/messages.h"
#include "core/work.h"
#include "store/indexfile.h"
#include "support/testfiles.h"

namespace tessarin::gamesheettest {

using testsupport::ReadFile;
using testsupport::WriteFile;

inline std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/gamesheet/" + name;
}

struct HomeOptions {
  bool dataFiles = true;  // history, mameinfo, command
  bool notes = true;
  bool french = false;
};

class SheetHome {
 public:
  explicit SheetHome(const HomeOptions& options = {}) : ctx(dir.path().toStdString() + "/") {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = options.french ? Messages::kFrench : Messages::kEnglish;
    ctx.messages.LoadMessages();
    std::filesystem::create_directories(DataFilesFolder(Folder()));
    WriteFile(DefaultListXmlPath(Folder()), ReadFile(Fixture("listxml.xml")));
    if (options.dataFiles) {
      Place("DataFile2", "history.dat");
      Place("DataFile3", "mameinfo.dat");
      Place("DataFile5", "command.dat");
    }
    if (options.notes) WriteFile(Folder() + "notes.txt", ReadFile(Fixture("notes.txt")));
    std::filesystem::create_directories(Folder() + "temp");
    ctx.TempFolder = Folder() + "temp/";
    Work work;
    built = BuildDatabase(ctx, work);
  }
  std::string Folder() const { return ctx.AppFolder(); }
  std::string Path(const std::string& name) const { return Folder() + name; }

  QTemporaryDir dir;
  AppContext ctx;
  bool built = false;

 private:
  void Place(const char* key, const std::string& name) {
    std::filesystem::create_directories(Folder() + "dat");
    const std::string path = Folder() + "dat/" + name;
    WriteFile(path, ReadFile(Fixture(name)));
    ctx.settings.InfWrite(key, path);
  }
};

// A zip of stored entries named `names`, each holding `content` + its name.
inline void WriteZip(const std::string& path, std::initializer_list<std::string> names,
                     const std::string& content) {
  testing::RawZip zip;
  for (const std::string& name : names) zip.Add(name, content + name, false);
  zip.Write(path);
}

}  // namespace tessarin::gamesheettest
