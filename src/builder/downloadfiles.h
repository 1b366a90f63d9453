#pragma once

// The download page of the database window: the data files of the site list, each with a box,
// its address and its site, fetched into Downloads and unpacked into DataFiles.

#include <functional>
#include <string>
#include <vector>

namespace tessarin {

class AppContext;
class Work;

// One line of the download list: the data file's name, its address (Text2), its site (opened
// by Command8) and its box (Chk1).
struct DownloadLine {
  std::string name;
  std::string address;
  std::string site;
  bool checked = false;
};

// The line whose file may come as a self-extracting program (Mameinfo).
inline constexpr int kSelfExtractingLine = 6;

// How the window reaches the site list without knowing its tables: Load rereads the file and
// gives its lines, Save puts the addresses back and writes the file.
struct DownloadListAccess {
  std::function<std::vector<DownloadLine>()> Load;
  std::function<void(const std::vector<DownloadLine>&)> Save;
};

struct DownloadReport {
  // The report's lines, in list order (empty after a run that had nothing to say).
  std::vector<std::string> lines;
  // The run stopped on a cancel: no report is shown.
  bool cancelled = false;
  // Line 6's self-extracting program in DataFiles when it was there (it is not run here).
  std::string selfExtracting;
};

// The file name of an address: what stands behind its last '\' or '/'.
std::string DownloadFileName(const std::string& address);

// The download button: each checked line with an address, in order, is fetched into the
// application's Downloads folder and unpacked into DataFiles; a line of the report tells each
// success or failure. Line 6's self-extracting program is only logged, as it can't be run on
// this system. Unless cancelled, the report (or "Done." when it is empty) is shown to the
// user. The caller clears the cancel flag before the run.
DownloadReport DownloadFiles(AppContext& ctx, Work& work, const std::vector<DownloadLine>& lines);

// The report as shown: its lines, or message 41 and a point when there is none.
std::string DownloadReportText(AppContext& ctx, const DownloadReport& report);

}  // namespace tessarin
