// SPDX-License-Identifier: MIT
#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/services/temporary_tree.h"

namespace nimbo {

/// A certificate authority that nobody else trusts, and a server's certificate for "localhost".
class TestAuthority {
 public:
  TestAuthority() {
    make("-x509 -subj '/CN=Test authority' -keyout authority.key -out authority.pem");
    make(
        "-x509 -subj /CN=localhost -addext subjectAltName=DNS:localhost -addext basicConstraints=CA:FALSE "
        "-CA authority.pem -CAkey authority.key -keyout server.key -out server.pem");
  }

  [[nodiscard]] std::string authority() const { return file("authority.pem"); }
  [[nodiscard]] std::string certificate() const { return file("server.pem"); }
  [[nodiscard]] std::string key() const { return file("server.key"); }

 private:
  void make(const std::string& arguments) const {
    const std::string command = "cd '" + folder_.path().string() + "' && openssl req -newkey ec -pkeyopt " +
                                "ec_paramgen_curve:prime256v1 -nodes -days 2 " + arguments + " 2>openssl.log";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("openssl: " + folder_.read("openssl.log"));
  }

  [[nodiscard]] std::string file(const char* name) const { return (folder_.path() / name).string(); }

  TemporaryTree folder_;
};

/// https_server.py beside this file, on a port of its own.
class HttpsServer {
 public:
  enum class Kind { server, proxy };

  explicit HttpsServer(const TestAuthority& authority, Kind kind = Kind::server) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
    pid_ = ::fork();
    if (pid_ == 0) serve(authority, kind, pipe[1]);
    ::close(pipe[1]);
    char character = 0;
    while (::read(pipe[0], &character, 1) == 1 && character != '\n') port_ += character;
    ::close(pipe[0]);
    if (port_.empty()) throw std::runtime_error("the server did not start");
  }
  ~HttpsServer() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;

  /// The address of an answer that is these bytes; `manner` says how it goes on, see the script.
  [[nodiscard]] std::string url(std::string_view answer, const std::string& manner = "answer") {
    const std::string name = std::to_string(++answers_);
    folder_.write("answers/" + name, answer);
    return "https://localhost:" + port_ + "/" + manner + "/" + name;
  }

  /// The host's address; this answer, which closes the connection, is at `path` there.
  [[nodiscard]] std::string hostAnswering(const std::string& path, std::string_view answer) {
    const std::string whole = url(answer);
    const auto split = whole.find("/answer/");
    folder_.write("aliases", path + " " + whole.substr(split) + "\n");
    return whole.substr(0, split);
  }

  [[nodiscard]] const std::string& port() const { return port_; }

  /// Heads of requests that have come in.
  [[nodiscard]] int requests() const { return count("requests"); }
  [[nodiscard]] std::string request(int number) const { return folder_.read("requests/" + std::to_string(number)); }
  /// Clients who left before their answer had ended.
  [[nodiscard]] int left() const { return count("left"); }

 private:
  [[noreturn]] void serve(const TestAuthority& authority, Kind kind, int output) const {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(output, STDOUT_FILENO);
    ::execl("/usr/bin/python3", "python3", NIMBO_HTTPS_SERVER, kind == Kind::proxy ? "proxy" : "server",
            folder_.path().c_str(), authority.certificate().c_str(), authority.key().c_str(), nullptr);
    ::_exit(127);
  }

  [[nodiscard]] int count(const char* name) const {
    std::error_code error;
    int found = 0;
    for (std::filesystem::directory_iterator entry(folder_.path() / name, error), end; !error && entry != end;
         entry.increment(error)) {
      ++found;
    }
    return found;
  }

  TemporaryTree folder_;
  pid_t pid_ = 0;
  std::string port_;
  int answers_ = 0;
};

}  // namespace nimbo
