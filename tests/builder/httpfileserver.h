#pragma once

// A tiny HTTP/1.0 server on 127.0.0.1 that serves the files a test gives it, one connection at
// a time, and stops when destroyed; a path it doesn't know gets a 404. It never reaches past
// the loopback.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace tessarin::buildertest {

class HttpFileServer {
 public:
  HttpFileServer() {
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
  ~HttpFileServer() {
    m_stop = true;
    m_thread.join();
    ::close(m_listen);
  }
  HttpFileServer(const HttpFileServer&) = delete;
  HttpFileServer& operator=(const HttpFileServer&) = delete;

  void Put(const std::string& path, const std::string& body) {
    std::lock_guard lock(m_mutex);
    m_files[path] = body;
  }
  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
  }
  int Requests() const { return m_requests.load(); }

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
    std::string body;
    bool found = false;
    {
      std::lock_guard lock(m_mutex);
      const auto it = m_files.find(path);
      if (it != m_files.end()) {
        body = it->second;
        found = true;
      }
    }
    if (!found) body = "not here";
    Send(client, std::string(found ? "HTTP/1.0 200 OK" : "HTTP/1.0 404 Not Found") +
                     "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  }

  int m_listen = -1;
  int m_port = 0;
  std::atomic<bool> m_stop{false};
  std::atomic<int> m_requests{0};
  std::mutex m_mutex;
  std::map<std::string, std::string> m_files;
  std::thread m_thread;
};

}  // namespace tessarin::buildertest
