#include "online/download.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "core/work.h"
#include "httpserver.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testing::TestHttpServer;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteAll(const fs::path& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
}

class DownloadTest : public ::testing::Test {
 protected:
  DownloadTest() {
    std::random_device rd;
    folder = fs::path(TESSARIN_BINARY_DIR) / "test-tmp" /
             ("download-" + std::to_string(rd()) + std::to_string(rd()));
    fs::create_directories(folder);
  }
  ~DownloadTest() override {
    std::error_code ec;
    fs::remove_all(folder, ec);
  }
  std::string In(const std::string& name) { return (folder / name).string(); }

  fs::path folder;
  TestHttpServer server;
};

TEST_F(DownloadTest, Success) {
  Work work;
  EXPECT_EQ(DownloadFile(server.Url("/ok.txt"), In("ok.txt"), false, &work), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "ok.txt"), TestHttpServer::kOkBody);
  EXPECT_FALSE(fs::exists(folder / "ok.txt.dl"));
}

TEST_F(DownloadTest, ReplacesTheOldFileOnlyOnSuccess) {
  WriteAll(folder / "data.txt", "old content");
  EXPECT_EQ(DownloadFile(server.Url("/missing"), In("data.txt"), false), kDownloadErrorBase + 22);
  EXPECT_EQ(ReadAll(folder / "data.txt"), "old content");
  EXPECT_FALSE(fs::exists(folder / "data.txt.dl"));
  EXPECT_EQ(DownloadFile(server.Url("/ok.txt"), In("data.txt"), false), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "data.txt"), TestHttpServer::kOkBody);
}

TEST_F(DownloadTest, NotFoundLeavesNoFile) {
  const int result = DownloadFile(server.Url("/missing"), In("none.txt"), false);
  EXPECT_NE(result, kDownloadOk);
  EXPECT_NE(result, kDownloadNoFile);
  EXPECT_NE(result, kDownloadCannotPrepare);
  EXPECT_FALSE(fs::exists(folder / "none.txt"));
  EXPECT_FALSE(fs::exists(folder / "none.txt.dl"));
}

TEST_F(DownloadTest, CutConnectionFails) {
  WriteAll(folder / "cut.bin", "previous");
  const int result = DownloadFile(server.Url("/cut"), In("cut.bin"), false);
  EXPECT_EQ(result, kDownloadErrorBase + 18);  // a partial file
  EXPECT_EQ(ReadAll(folder / "cut.bin"), "previous");
  EXPECT_FALSE(fs::exists(folder / "cut.bin.dl"));
}

TEST_F(DownloadTest, RedirectIsFollowed) {
  EXPECT_EQ(DownloadFile(server.Url("/redirect"), In("moved.txt"), false), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "moved.txt"), TestHttpServer::kOkBody);
}

TEST_F(DownloadTest, StalledTransferTimesOut) {
  DownloadOptions options;
  options.stallTimeoutSeconds = 1;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(DownloadFile(server.Url("/stall"), In("stall.bin"), false, nullptr, options),
            kDownloadErrorBase + 28);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
  EXPECT_FALSE(fs::exists(folder / "stall.bin"));
  EXPECT_FALSE(fs::exists(folder / "stall.bin.dl"));
}

TEST_F(DownloadTest, ProgressAndCancelGoThroughTheWork) {
  Work work;
  EXPECT_EQ(DownloadFile(server.Url("/big.bin"), In("big.bin"), false, &work), kDownloadOk);
  EXPECT_EQ(fs::file_size(folder / "big.bin"), 1u << 20);
  EXPECT_EQ(work.ProgressMax.load(), 1 << 20);
  EXPECT_EQ(work.ProgressValue.load(), 1 << 20);

  Work cancelled;
  cancelled.CancelRequested = true;
  EXPECT_EQ(DownloadFile(server.Url("/stall"), In("c.bin"), false, &cancelled),
            kDownloadErrorBase + 42);
  EXPECT_FALSE(fs::exists(folder / "c.bin"));
  EXPECT_FALSE(fs::exists(folder / "c.bin.dl"));
}

TEST_F(DownloadTest, PrepareMakesTheFolder) {
  const std::string target = In("new/deeper/file.txt");
  EXPECT_EQ(DownloadFile(server.Url("/ok.txt"), target, true), kDownloadOk);
  EXPECT_EQ(ReadAll(target), TestHttpServer::kOkBody);
  // Without prepare a missing folder is a failure of the transfer.
  const int result = DownloadFile(server.Url("/ok.txt"), In("absent/file.txt"), false);
  EXPECT_NE(result, kDownloadOk);
  EXPECT_FALSE(fs::exists(folder / "absent"));
  // A folder that can't be made: its parent is a file.
  WriteAll(folder / "plainfile", "x");
  EXPECT_EQ(DownloadFile(server.Url("/ok.txt"), In("plainfile/sub/file.txt"), true),
            kDownloadCannotPrepare);
}

TEST_F(DownloadTest, FileAddresses) {
  WriteAll(folder / "source.dat", "local source");
  EXPECT_EQ(DownloadFile("file://" + In("source.dat"), In("copy.dat"), false), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "copy.dat"), "local source");
  EXPECT_EQ(DownloadFile("file://" + In("nothere.dat"), In("copy2.dat"), false),
            kDownloadErrorBase + 37);
  EXPECT_FALSE(fs::exists(folder / "copy2.dat"));
}

// Titles put into address patterns hold blanks and more; they go on the wire as %XX.
TEST(EscapeAddress, WritesWhatNoAddressHoldsAsPercentCodes) {
  EXPECT_EQ(EscapeAddress("http://host/a/b.png?x=1&y=2#top"), "http://host/a/b.png?x=1&y=2#top");
  EXPECT_EQ(EscapeAddress("http://host/Pac-Man (Midway).png"),
            "http://host/Pac-Man%20(Midway).png");
  EXPECT_EQ(EscapeAddress("http://host/\"a\"<b>{c}|d^e`f\\g"),
            "http://host/%22a%22%3Cb%3E%7Bc%7D%7Cd%5Ee%60f%5Cg");
  EXPECT_EQ(EscapeAddress("http://host/caf\xC3\xA9\t\x7F"), "http://host/caf%C3%A9%09%7F");
  // Codes already there are kept.
  EXPECT_EQ(EscapeAddress("http://host/a%20b"), "http://host/a%20b");
}

TEST_F(DownloadTest, AnAddressWithBlanksIsFetched) {
  server.AddFile("/img/Pac-Man%20(Midway).png", "picture");
  EXPECT_EQ(DownloadFile(server.Url("/img/Pac-Man (Midway).png"), In("p.png"), false), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "p.png"), "picture");
  // A local file whose path has a blank too.
  WriteAll(folder / "my source.dat", "local source");
  EXPECT_EQ(DownloadFile("file://" + In("my source.dat"), In("copy.dat"), false), kDownloadOk);
  EXPECT_EQ(ReadAll(folder / "copy.dat"), "local source");
}

TEST_F(DownloadTest, NoServerAtAll) {
  // A port on the loopback where nobody listens: connection refused, at once.
  const int result = DownloadFile("http://127.0.0.1:1/x", In("x"), false);
  EXPECT_EQ(result, kDownloadErrorBase + 7);
  DeleteUrlFromCache("x");  // nothing to clear, and nothing breaks
}

}  // namespace
}  // namespace tessarin
