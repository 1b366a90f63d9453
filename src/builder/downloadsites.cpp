#include "builder/downloadsites.h"

namespace tessarin {

std::vector<DownloadLine> DownloadLinesOf(const UrlTables& tables) {
  std::vector<DownloadLine> lines;
  for (int i = 0; i < kSiteListFileCount; ++i) {
    const size_t n = static_cast<size_t>(i);
    DownloadLine line;
    line.name = std::string(kDataFileNames[n]);
    line.address = tables.FileList[n];
    line.site = tables.SiteList[n];
    lines.push_back(std::move(line));
  }
  return lines;
}

void StoreDownloadLines(UrlTables& tables, const std::vector<DownloadLine>& lines) {
  for (size_t n = 0; n < lines.size() && n < tables.FileList.size(); ++n) {
    tables.FileList[n] = lines[n].address;
  }
}

DownloadListAccess DownloadListFromTables(UrlTables* tables, std::function<void()> reload,
                                          std::function<void()> write) {
  DownloadListAccess access;
  access.Load = [tables, reload] {
    if (reload) reload();
    return tables ? DownloadLinesOf(*tables) : std::vector<DownloadLine>();
  };
  access.Save = [tables, write](const std::vector<DownloadLine>& lines) {
    if (!tables) return;
    StoreDownloadLines(*tables, lines);
    if (write) write();
  };
  return access;
}

}  // namespace tessarin
