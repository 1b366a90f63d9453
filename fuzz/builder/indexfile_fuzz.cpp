// Loads arbitrary bytes as an index file, then saves what was loaded and loads that again: the
// second load must give the records and tables that the save wrote.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/log.h"
#include "scratchfolder.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace {

namespace fs = std::filesystem;

const std::string& Folder() { return fuzzsupport::Folder("indexfuzz"); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tessarin::Log* log = [] {
    auto* l = new tessarin::Log(Folder());
    l->SetFatalHandler([](const std::string&) {});
    return l;
  }();
  const std::string path = Folder() + "index";
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  tessarin::GameStore store;
  if (!tessarin::LoadIndex(store, *log, path)) return 0;
  if (store.GameCount() < 0 || !store.HasEndRecord()) std::abort();
  const std::string saved = tessarin::IndexFileText(store, nullptr);
  // A record that the clean-up turned into a section title can't come back as a record.
  for (int t = 0; t < tessarin::kTableCount; ++t) {
    const std::string title = tessarin::SectionTitleLine(static_cast<tessarin::TableId>(t));
    for (size_t i = 1; i < store.GameRecords.size(); ++i) {
      if (store.GameRecords[i] == title) return 0;
    }
  }
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << saved;
  }
  tessarin::GameStore again;
  if (!tessarin::LoadIndex(again, *log, path)) std::abort();
  if (again.GameRecords != store.GameRecords) std::abort();
  for (int t = 0; t < tessarin::kTableCount; ++t) {
    const auto id = static_cast<tessarin::TableId>(t);
    if (again.Table(id) != store.Table(id)) std::abort();
  }
  return 0;
}
