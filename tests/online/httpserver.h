#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tessarin::testing {

// A tiny HTTP/1.0 server on 127.0.0.1 for the download tests. It answers one connection at a
// time from a fixed set of paths, and stops when destroyed; it never reaches past the loopback.
//   /ok.txt     200, a small text
//   /big.bin    200, 1 MiB
//   /missing    404
//   /redirect   302 to /ok.txt
//   /cut        200 that promises 100,000 bytes, sends 1,000 and hangs up
//   /stall      200 that sends its headers and then nothing for 10 seconds
// and 200 with the body given to AddFile for any other path a test adds.
class TestHttpServer {
 public:
  static constexpr const char* kOkBody = "hello, this is the data file\n";

  TestHttpServer() {
    m_listen = ::socket(AF_INET, SOCK_STREAM, 0);
    int yes = 1;
    ::setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    ::bind(m_listen, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(m_listen, 8);
    socklen_t length = sizeof address;
    ::getsockname(m_listen, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
  }
  ~TestHttpServer() {
    m_stop = true;
    m_thread.join();
    ::close(m_listen);
  }
  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
  }
  int Requests() const { return m_requests.load(); }
  // Serves `body` at `path` from now on.
  void AddFile(const std::string& path, const std::string& body) {
    std::lock_guard lock(m_filesMutex);
    m_files[path] = body;
  }
  // The paths asked for, in order.
  std::vector<std::string> Asked() const {
    std::lock_guard lock(m_filesMutex);
    return m_asked;
  }

 private:
  void Serve() {
    while (!m_stop) {
      pollfd p{m_listen, POLLIN, 0};
      if (::poll(&p, 1, 100) <= 0) continue;
      const int client = ::accept(m_listen, nullptr, nullptr);
      if (client < 0) continue;
      Answer(client);
      ::close(client);
    }
  }

  void Send(int client, const std::string& data) {
    std::size_t sent = 0;
    while (sent < data.size()) {
      const ssize_t n = ::send(client, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
      if (n <= 0) return;
      sent += static_cast<std::size_t>(n);
    }
  }

  void Answer(int client) {
    std::string request;
    char buffer[2048];
    while (request.find("\r\n\r\n") == std::string::npos && request.size() < 65536) {
      pollfd p{client, POLLIN, 0};
      if (::poll(&p, 1, 2000) <= 0) return;
      const ssize_t n = ::recv(client, buffer, sizeof buffer, 0);
      if (n <= 0) return;
      request.append(buffer, static_cast<std::size_t>(n));
    }
    ++m_requests;
    const std::size_t start = request.find(' ') + 1;
    const std::string path = request.substr(start, request.find(' ', start) - start);
    std::string fileBody;
    bool isFile = false;
    {
      std::lock_guard lock(m_filesMutex);
      m_asked.push_back(path);
      const auto found = m_files.find(path);
      if (found != m_files.end()) {
        fileBody = found->second;
        isFile = true;
      }
    }
    if (isFile) {
      Send(client, "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(fileBody.size()) +
                       "\r\n\r\n" + fileBody);
    } else if (path == "/ok.txt") {
      const std::string body = kOkBody;
      Send(client,
           "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    } else if (path == "/big.bin") {
      const std::string body(1 << 20, 'b');
      Send(client,
           "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    } else if (path == "/redirect") {
      Send(client, "HTTP/1.0 302 Found\r\nLocation: /ok.txt\r\nContent-Length: 0\r\n\r\n");
    } else if (path == "/cut") {
      Send(client, "HTTP/1.0 200 OK\r\nContent-Length: 100000\r\n\r\n" + std::string(1000, 'c'));
    } else if (path == "/stall") {
      Send(client, "HTTP/1.0 200 OK\r\nContent-Length: 100000\r\n\r\n");
      const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
      while (!m_stop && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
      }
    } else {
      const std::string body = "not here";
      Send(client, "HTTP/1.0 404 Not Found\r\nContent-Length: " + std::to_string(body.size()) +
                       "\r\n\r\n" + body);
    }
  }

  int m_listen = -1;
  int m_port = 0;
  std::atomic<bool> m_stop{false};
  std::atomic<int> m_requests{0};
  mutable std::mutex m_filesMutex;
  std::map<std::string, std::string> m_files;
  std::vector<std::string> m_asked;
  std::thread m_thread;
};

}  // namespace tessarin::testing
