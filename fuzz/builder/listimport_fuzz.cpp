// Feeds arbitrary bytes to both game list imports as a dump file, with a read block size taken
// from the first byte so that lines fall across blocks, and checks what every reader of the
// store relies on: names in front of the records, offsets inside the file, an EndRecord last.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/context.h"
#include "builder/listinfo.h"
#include "builder/listxml.h"
#include "core/work.h"
#include "scratchfolder.h"
#include "store/gamerecord.h"

namespace {

namespace fs = std::filesystem;

const std::string& Folder() { return fuzzsupport::Folder("listfuzz"); }

void Check(const tessarin::GameStore& store, size_t length, char offsetTag) {
  const int count = store.GameCount();
  if (count < 0) std::abort();
  for (int i = 1; i <= count; ++i) {
    const std::string& record = store.GameRecords[static_cast<size_t>(i)];
    const std::string& name = store.GameNames()[static_cast<size_t>(i)];
    // A legacy "game" line without a name line leaves an empty record; a name holding a
    // placeholder loses it to the field's value, as every replacement works on the whole record.
    if (record.empty() || name.find('#') != std::string::npos) continue;
    if (record.compare(0, name.size(), name) != 0) std::abort();
    const size_t at = record.find(offsetTag == 'A' ? ";A" : ";0;\xE0", name.size());
    if (at != name.size()) std::abort();
    const size_t digits = at + (offsetTag == 'A' ? 2 : 4);
    const unsigned long long offset = std::strtoull(record.c_str() + digits, nullptr, 10);
    if (offset >= length) std::abort();
  }
  if (store.HasEndRecord() && store.GameRecords.back().compare(0, 1, "\x1f") != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tessarin::AppContext* ctx = [] {
    auto* context = new tessarin::AppContext(Folder());
    context->log.SetFatalHandler([](const std::string&) {});
    return context;
  }();
  const std::string path = Folder() + "dump";
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  const size_t blockSize = size > 0 ? 1 + data[0] % 64 : 0;
  tessarin::Work work;
  ctx->store.Clear();
  tessarin::ImportListXml(ctx->store, ctx->log, work, path, blockSize);
  Check(ctx->store, size, 'A');
  ctx->store.Clear();
  std::string legacyPath = path;
  tessarin::ImportListInfo(*ctx, work, legacyPath);
  Check(ctx->store, size, '0');
  return 0;
}
