#include "online/download.h"

#include <curl/curl.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/textutil.h"
#include "core/work.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

struct Transfer {
  std::ofstream* out = nullptr;
  Work* work = nullptr;
  bool reportProgress = true;
  bool writeFailed = false;
};

std::size_t WriteData(char* data, std::size_t size, std::size_t count, void* user) {
  auto* transfer = static_cast<Transfer*>(user);
  const std::size_t bytes = size * count;
  transfer->out->write(data, static_cast<std::streamsize>(bytes));
  if (!*transfer->out) {
    transfer->writeFailed = true;
    return 0;
  }
  return bytes;
}

int Progress(void* user, curl_off_t total, curl_off_t now, curl_off_t, curl_off_t) {
  auto* transfer = static_cast<Transfer*>(user);
  if (!transfer->work) return 0;
  if (transfer->reportProgress && total > 0) {
    transfer->work->ProgressMax = total;
    transfer->work->ProgressValue = now;
  }
  return transfer->work->CancelRequested.load() ? 1 : 0;
}

}  // namespace

std::string EscapeAddress(std::string_view address) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string escaped;
  escaped.reserve(address.size());
  for (const char c : address) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = byte > 0x20 && byte < 0x7F &&
                       std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
    if (plain) {
      escaped += c;
    } else {
      escaped += '%';
      escaped += kHex[byte >> 4];
      escaped += kHex[byte & 0xF];
    }
  }
  return escaped;
}

int DownloadFile(const std::string& url, const std::string& file, bool prepare, Work* work,
                 const DownloadOptions& options) {
  std::error_code ec;
  const fs::path target = PathFromText(file);
  if (prepare) {
    const fs::path folder = target.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, ec)) {
      fs::create_directories(folder, ec);
      if (!fs::is_directory(folder, ec)) return kDownloadCannotPrepare;
    }
  }
  fs::path partial = target;
  partial += ".dl";
  fs::remove(partial, ec);

  CURL* curl = curl_easy_init();
  if (!curl) return kDownloadErrorBase + CURLE_FAILED_INIT;
  CURLcode code = CURLE_OK;
  Transfer transfer;
  transfer.work = work;
  transfer.reportProgress = options.reportProgress;
  {
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    if (!out.is_open()) {
      curl_easy_cleanup(curl);
      return kDownloadErrorBase + CURLE_WRITE_ERROR;
    }
    transfer.out = &out;
    curl_slist* headers = nullptr;
    // Ask proxies and servers for a fresh copy: a stale cached file is what the original
    // program had to clear a browser cache for.
    headers = curl_slist_append(headers, "Cache-Control: no-cache");
    headers = curl_slist_append(headers, "Pragma: no-cache");
    const std::string address = EscapeAddress(url);
    curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 10L);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https,ftp,ftps,file");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https,ftp,ftps");
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, options.connectTimeoutSeconds);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, options.stallTimeoutSeconds);
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "Tessarin");
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, WriteData);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, Progress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &transfer);
    code = curl_easy_perform(curl);
    curl_slist_free_all(headers);
    out.close();
    if (code == CURLE_OK && !out) code = CURLE_WRITE_ERROR;
  }
  curl_easy_cleanup(curl);

  if (code != CURLE_OK) {
    fs::remove(partial, ec);
    return kDownloadErrorBase + static_cast<int>(code);
  }
  fs::rename(partial, target, ec);
  if (ec) {
    fs::remove(partial, ec);
    return kDownloadNoFile;
  }
  if (!fs::is_regular_file(target, ec)) return kDownloadNoFile;
  return kDownloadOk;
}

void DeleteUrlFromCache(const std::string& ending) {
  // Nothing to clear: DownloadFile never reads from a local cache and asks every cache on the
  // way for a fresh copy.
  (void)ending;
}

}  // namespace tessarin
