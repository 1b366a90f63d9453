#include "builder/downloadfiles.h"

#include <QByteArray>
#include <QString>
#include <QStringDecoder>

#include "app/context.h"
#include "archive/unzip.h"
#include "builder/pipeline.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/textutil.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "online/download.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

// Upper case as the user reads it: the message table is UTF-8, a language file may not be, and
// then only its ASCII letters change.
std::string UpperText(const std::string& text) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString decoded = decoder(QByteArray::fromStdString(text));
  if (!decoder.hasError()) return decoded.toUpper().toStdString();
  std::string upper = text;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

}  // namespace

std::string DownloadFileName(const std::string& address) {
  const size_t cut = address.find_last_of("\\/");
  return cut == std::string::npos ? address : address.substr(cut + 1);
}

DownloadReport DownloadFiles(AppContext& ctx, Work& work, const std::vector<DownloadLine>& lines) {
  DownloadReport report;
  RunGuarded(ctx.log, 3605, [&] {
    const Messages& msg = ctx.messages;
    const std::string app = AddSlash(ctx.AppFolder());
    const std::string downloads = app + "Downloads/";
    const std::string dataFiles = DataFilesFolder(app);
    const long long count = static_cast<long long>(lines.size());
    work.ProgressValue = 0;
    work.ProgressMax = count;
    MakeFolder(downloads);
    MakeFolder(dataFiles);

    for (size_t i = 0; i < lines.size(); ++i) {
      // The transfer and the unpacking show their own progress; the bar counts the lines.
      work.ProgressMax = count;
      work.ProgressValue = static_cast<long long>(i);
      if (work.CancelRequested) {
        report.cancelled = true;
        return;
      }
      const DownloadLine& line = lines[i];
      const std::string address = std::string(TrimWhite(line.address));
      if (!line.checked || address.empty()) continue;
      const std::string name = DownloadFileName(address);
      work.SetStatus(msg.Lng(38) + name);
      DeleteUrlFromCache(address);
      const std::string target = downloads + name;
      DownloadOptions options;
      options.reportProgress = false;
      if (name.empty() || DownloadFile(address, target, true, &work, options) != kDownloadOk) {
        report.lines.push_back(msg.Lng(38) + name + " = " + UpperText(msg.Lng(29)));
        continue;
      }
      report.lines.push_back(msg.Lng(38) + name + " = Ok");
      work.SetStatus(msg.Lng(39) + name);
      std::string unzipError;
      UnzipEnvironment environment{app, &unzipError, &ctx.log, &work};
      UnzipAll(environment, target, dataFiles, false);
      if (!unzipError.empty()) {
        report.lines.push_back(msg.Lng(40) + name);
        ctx.log.WriteLogLine(LogDate() + " " + LogTime() + " " + target + " : " + unzipError);
        unzipError.clear();
      }
    }
    work.ProgressMax = count;
    work.ProgressValue = count;

    // The Mameinfo file used to come packed as a self-extracting program, which only runs on
    // Windows: here it is named in the log so that the user can unpack it by hand.
    if (static_cast<size_t>(kSelfExtractingLine) < lines.size()) {
      const DownloadLine& line = lines[static_cast<size_t>(kSelfExtractingLine)];
      const std::string address = std::string(TrimWhite(line.address));
      if (line.checked && !address.empty() && address.find('/') != std::string::npos) {
        std::string program = dataFiles + DownloadFileName(address);
        if (program.size() >= 3) program.replace(program.size() - 3, 3, "exe");
        if (FileExists(program)) {
          report.selfExtracting = program;
          ctx.log.WriteLogLine(LogDate() + " " + LogTime() +
                               " Self-extracting archive not run (it needs Windows), unpack it "
                               "by hand: " +
                               program);
        }
      }
    }
  });
  if (!report.cancelled) {
    ctx.Ui().ShowMessage(false, DownloadReportText(ctx, report), ctx.messages.Lng(41),
                         Icon::Information);
  }
  return report;
}

std::string DownloadReportText(AppContext& ctx, const DownloadReport& report) {
  if (report.lines.empty()) return ctx.messages.Lng(41) + ".";
  std::string text;
  for (const std::string& line : report.lines) {
    if (!text.empty()) text += '|';
    text += line;
  }
  return text;
}

}  // namespace tessarin
