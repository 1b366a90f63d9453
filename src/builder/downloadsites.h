#pragma once

// The download list of the database window, made from the site list's tables.

#include <functional>
#include <string>
#include <vector>

#include "builder/downloadfiles.h"
#include "online/urllist.h"

namespace tessarin {

// The eleven lines of the list: each data file's name, download address and site.
std::vector<DownloadLine> DownloadLinesOf(const UrlTables& tables);
// Puts the lines' addresses back into the tables' download addresses.
void StoreDownloadLines(UrlTables& tables, const std::vector<DownloadLine>& lines);

// The window's access to `tables`: `reload` rereads the file before the lines are taken,
// `write` writes the file after the addresses went back. Either may be empty.
DownloadListAccess DownloadListFromTables(UrlTables* tables, std::function<void()> reload,
                                          std::function<void()> write);

}  // namespace tessarin
