#pragma once

#include <string>
#include <string_view>

namespace tessarin {

class Work;

// DownloadFile's results.
inline constexpr int kDownloadOk = 0;
inline constexpr int kDownloadNoFile = 2;         // the transfer ended but no file is there
inline constexpr int kDownloadCannotPrepare = 3;  // the target's folder can't be made
// A failed transfer gives this plus the transfer library's error number (22 for an HTTP error
// such as 404, 28 for a time-out, 42 for a cancel...), so that it never reads as 0, 2 or 3.
inline constexpr int kDownloadErrorBase = 1000;

struct DownloadOptions {
  // Time allowed to connect, and for a transfer that has stopped moving, in seconds.
  long connectTimeoutSeconds = 30;
  long stallTimeoutSeconds = 60;
  // The bytes received and expected go to the work's ProgressValue and ProgressMax.
  bool reportProgress = true;
};

// The address as it goes on the wire: blanks, control characters, bytes outside ASCII and the
// characters no address may hold as they are ("<>\\^`{|} and the double quote) are written as
// %XX; the rest, "%" included, stays. Addresses made from patterns take game titles, which
// have blanks.
std::string EscapeAddress(std::string_view address);

// Fetches `url` (http, https, ftp or file) into `file`, following redirects and asking every
// cache on the way for a fresh copy. The data goes to `file` + ".dl" and replaces `file` only
// when the whole transfer succeeded, so a failed download leaves the old file as it was. With
// `prepare` the target's folder is made first. `work` (may be null) is polled for cancel.
// Gives 0 on success, 2 when no file appeared, 3 when the folder can't be made, otherwise
// kDownloadErrorBase plus the transfer's error number.
int DownloadFile(const std::string& url, const std::string& file, bool prepare,
                 Work* work = nullptr, const DownloadOptions& options = {});

// Every fetch already asks for a fresh copy, and Tessarin keeps no cache of its own, so there is
// nothing to remove: kept so that callers say where a stale copy would matter.
void DeleteUrlFromCache(const std::string& ending);

}  // namespace tessarin
