#pragma once

// A small HTTP/1.0 server on 127.0.0.1 whose answers the test sets path by path: a body with
// 200, a connection cut half-way, a redirect, or headers and then silence. Everything else is a
// 404. It answers one connection at a
// time and stops when destroyed; it never reaches past the loopback.

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

namespace tessarin::testsupport {

class RouteServer {
 public:
  RouteServer() {
    m_listen = ::socket(AF_INET, SOCK_STREAM, 0);
    int yes = 1;
    ::setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    ::bind(m_listen, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(m_listen, 16);
    socklen_t length = sizeof address;
    ::getsockname(m_listen, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
  }
  ~RouteServer() {
    m_stop = true;
    m_thread.join();
    ::close(m_listen);
  }
  RouteServer(const RouteServer&) = delete;
  RouteServer& operator=(const RouteServer&) = delete;

  // The root address, without a final '/'.
  std::string Root() const { return "http://127.0.0.1:" + std::to_string(m_port); }
  std::string Url(const std::string& path) const { return Root() + path; }

  // `path` answers 200 with `body`.
  void Set(const std::string& path, std::string body) {
    std::lock_guard lock(m_mutex);
    m_routes[path] = Route{std::move(body), Kind::Body};
  }
  // `path` promises `body` but sends only its first half and hangs up.
  void SetCut(const std::string& path, std::string body) {
    std::lock_guard lock(m_mutex);
    m_routes[path] = Route{std::move(body), Kind::Cut};
  }
  // `path` answers 302 to `target`.
  void SetRedirect(const std::string& path, std::string target) {
    std::lock_guard lock(m_mutex);
    m_routes[path] = Route{std::move(target), Kind::Redirect};
  }
  // `path` promises `length` bytes, sends its headers and then nothing for 10 seconds (or until
  // the server stops).
  void SetStall(const std::string& path, size_t length) {
    std::lock_guard lock(m_mutex);
    m_routes[path] = Route{std::string(length, 's'), Kind::Stall};
  }
  void Remove(const std::string& path) {
    std::lock_guard lock(m_mutex);
    m_routes.erase(path);
  }
  // The paths asked for, in order.
  std::vector<std::string> Requests() const {
    std::lock_guard lock(m_mutex);
    return m_requests;
  }

 private:
  enum class Kind { Body, Cut, Redirect, Stall };
  struct Route {
    std::string body;  // the target of a redirect
    Kind kind = Kind::Body;
  };

  void Serve() {
    while (!m_stop) {
      pollfd p{m_listen, POLLIN, 0};
      if (::poll(&p, 1, 50) <= 0) continue;
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
    const std::size_t start = request.find(' ') + 1;
    const std::string path = request.substr(start, request.find(' ', start) - start);
    Route route;
    bool found = false;
    {
      std::lock_guard lock(m_mutex);
      m_requests.push_back(path);
      const auto it = m_routes.find(path);
      if (it != m_routes.end()) {
        route = it->second;
        found = true;
      }
    }
    if (!found) {
      Send(client, "HTTP/1.0 404 Not Found\r\nContent-Length: 8\r\n\r\nnot here");
      return;
    }
    if (route.kind == Kind::Redirect) {
      Send(client,
           "HTTP/1.0 302 Found\r\nLocation: " + route.body + "\r\nContent-Length: 0\r\n\r\n");
      return;
    }
    const std::string head =
        "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(route.body.size()) + "\r\n\r\n";
    switch (route.kind) {
      case Kind::Cut:
        Send(client, head + route.body.substr(0, route.body.size() / 2));
        break;
      case Kind::Stall: {
        Send(client, head);
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!m_stop && std::chrono::steady_clock::now() < until) {
          std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        break;
      }
      default:
        Send(client, head + route.body);
        break;
    }
  }

  int m_listen = -1;
  int m_port = 0;
  std::atomic<bool> m_stop{false};
  mutable std::mutex m_mutex;
  std::map<std::string, Route> m_routes;
  std::vector<std::string> m_requests;
  std::thread m_thread;
};

}  // namespace tessarin::testsupport
