#pragma once

#include <string>
#include <vector>

#include "support/routeserver.h"

namespace tessarin::testing {

// The loopback server of the download tests, with its fixed paths:
//   /ok.txt     200, a small text
//   /big.bin    200, 1 MiB
//   /missing    404
//   /redirect   302 to /ok.txt
//   /cut        200 whose body stops half-way
//   /stall      200 that sends its headers and then nothing for 10 seconds
// and 200 with the body given to AddFile for any other path a test adds.
class TestHttpServer : public testsupport::RouteServer {
 public:
  static constexpr const char* kOkBody = "hello, this is the data file\n";

  TestHttpServer() {
    Set("/ok.txt", kOkBody);
    Set("/big.bin", std::string(1 << 20, 'b'));
    SetRedirect("/redirect", "/ok.txt");
    SetCut("/cut", std::string(2000, 'c'));
    SetStall("/stall", 100000);
  }
  // Serves `body` at `path` from now on.
  void AddFile(const std::string& path, const std::string& body) { Set(path, body); }
  // The paths asked for, in order.
  std::vector<std::string> Asked() const { return Requests(); }
};

}  // namespace tessarin::testing
