// SPDX-License-Identifier: MIT
// How the client finds and trusts servers, and that it lets go of them at any time.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <future>

#include "platform/http/http_client_fixture.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

constexpr const char* kHangingName = "hangs.test";

/// A name server that does not answer before it is told to.
struct HangingNames {
  std::atomic<int> waiting = 0;
  std::promise<void> released;
  std::shared_future<void> release{released.get_future()};
};
std::atomic<HangingNames*> hangingNames = nullptr;

}  // namespace
}  // namespace nimbo

// In the place of the C library's, for the module as well.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
  using nimbo::hangingNames;
  if (auto* const names = hangingNames.load(); names != nullptr && std::strcmp(name, nimbo::kHangingName) == 0) {
    const auto release = names->release;
    ++names->waiting;
    release.wait_for(std::chrono::seconds(30));
    return EAI_FAIL;
  }
  static const auto kReal = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return kReal(name, service, hints, result);
}

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

/// A port of this machine.
class Port {
 public:
  /// Everybody is let in by the kernel, up to that many, but nobody is ever talked to.
  explicit Port(int backlog) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    ::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address_), sizeof address_);
    ::listen(socket_.get(), backlog);
    socklen_t size = sizeof address_;
    ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address_), &size);
  }

  /// Somebody else comes in, without waiting for it.
  void visit() {
    visitors_.emplace_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    ::connect(visitors_.back().get(), reinterpret_cast<const sockaddr*>(&address_), sizeof address_);
  }

  void close() { socket_.reset(); }
  [[nodiscard]] std::string url() const {
    return "https://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)) + "/";
  }

 private:
  sockaddr_in address_{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
  UniqueFd socket_;
  std::vector<UniqueFd> visitors_;
};

/// A port at which the kernel drops further connections instead of refusing them.
class FullPort : public Port {
 public:
  FullPort() : Port(0) {
    for (int n = 0; n < 4; ++n) visit();
  }
};

using HttpConnectionTest = HttpClientTest;

TEST_F(HttpConnectionTest, ClosedPortIsUnreachable) {
  Port port(1);
  port.close();
  EXPECT_EQ(failure(request(port.url())), kUnreachable);
}

TEST_F(HttpConnectionTest, NameThatNobodyHasIsUnreachable) {
  EXPECT_EQ(failure(request("https://nobody.invalid/")), kUnreachable);
}

TEST_F(HttpConnectionTest, ServerThatNeverAcceptsOrGreetsIsGivenUpAtTheIdleLimit) {
  const FullPort full;
  EXPECT_EQ(failure(limited(full.url(), seconds{1}, seconds{20})), kUnreachable);
  const Port silent(5);
  EXPECT_EQ(failure(limited(silent.url(), seconds{1}, seconds{20})), kUnreachable);
}

TEST_F(HttpConnectionTest, CertificateOfAnUnknownAuthorityIsRefused) {
  const TestAuthority other;
  ModuleHttpClient distrustful(loop, modules, trusting(other.authority()));
  auto wanted = request(server.url(kEmptyAnswer));
  wanted.bearerToken = Secret("abc");
  const auto answer = get(distrustful, std::move(wanted));
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error(), kUnreachable);
  EXPECT_EQ(server.requests(), 0);
}

TEST_F(HttpConnectionTest, SystemsAuthoritiesDoNotVouchForAnybody) {
  ModuleHttpClient usual(loop, modules, {});
  EXPECT_FALSE(get(usual, request(server.url(kEmptyAnswer))));
  EXPECT_EQ(server.requests(), 0);
}

TEST_F(HttpConnectionTest, CertificateForAnotherNameIsRefused) {
  EXPECT_EQ(failure(request("https://127.0.0.1:" + server.port() + "/answer/1")), kUnreachable);
  EXPECT_EQ(server.requests(), 0);
}

TEST_F(HttpConnectionTest, AuthoritiesMayStandInAFolder) {
  const TemporaryTree folder;
  std::filesystem::copy(authority().authority(), folder.path());
  ASSERT_EQ(std::system(("openssl rehash '" + folder.path().string() + "'").c_str()), 0);
  ModuleHttpClient other(loop, modules, {.userAgent = {}, .certificateFile = {}, .certificateFolder = folder.path()});
  EXPECT_TRUE(get(other, request(server.url(kEmptyAnswer))));
}

TEST_F(HttpConnectionTest, ProxyOfTheEnvironmentIsUsedAndSeesNothingOfTheRequest) {
  HttpsServer proxy(authority(), HttpsServer::Kind::proxy);
  ::setenv("https_proxy", ("http://127.0.0.1:" + proxy.port()).c_str(), 1);
  auto wanted = request(server.url("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nthru"));
  wanted.bearerToken = Secret("abc");
  const auto answer = get(std::move(wanted));
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->body, "thru");
  EXPECT_EQ(answer->header("proxy-agent"), std::nullopt);
  ASSERT_EQ(proxy.requests(), 1);
  EXPECT_TRUE(proxy.request(1).starts_with("CONNECT localhost:" + server.port() + " HTTP/1.1"));
  EXPECT_EQ(proxy.request(1).find("abc"), std::string::npos);
  EXPECT_NE(server.request(1).find("Bearer abc"), std::string::npos);
}

TEST_F(HttpConnectionTest, ExceptionsFromTheProxyAreHonoured) {
  Port dead(1);
  dead.close();
  ::setenv("https_proxy", dead.url().replace(0, 5, "http").c_str(), 1);
  const auto url = server.url(kEmptyAnswer);
  EXPECT_EQ(failure(request(url)), kUnreachable);
  ::setenv("no_proxy", "example.org,localhost", 1);
  EXPECT_TRUE(get(request(url)));
}

/// Cancels a request and destroys its client, which waits for the end of its threads.
class CancellationTest : public HttpConnectionTest {
 protected:
  void begin(const std::string& url) {
    brief.emplace(loop, modules, trusting(authority().authority()));
    subscription = brief->get(request(url), [this](const HttpClient::Answer&) { ++answers; });
  }

  [[nodiscard]] milliseconds timeToEnd() {
    const auto begin = steady_clock::now();
    subscription.reset();
    brief.reset();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
  }

  std::optional<ModuleHttpClient> brief;
  Subscription subscription;
  int answers = 0;
  static constexpr milliseconds kAtOnce{kSanitized ? 1000 : 100};
};

TEST_F(CancellationTest, EndsWhileTheNameIsLookedUp) {
  HangingNames names;
  hangingNames = &names;
  begin(std::string("https://") + kHangingName + "/");
  EXPECT_TRUE(runUntil([&names] { return names.waiting == 1; }));
  EXPECT_LE(timeToEnd(), kAtOnce);
  hangingNames = nullptr;
  names.released.set_value();
}

TEST_F(CancellationTest, EndsBeforeAnythingHasHappened) {
  begin(server.url("", "silence"));
  EXPECT_LE(timeToEnd(), kAtOnce);
}

TEST_F(CancellationTest, EndsWhileConnecting) {
  const FullPort port;
  begin(port.url());
  EXPECT_FALSE(runUntil([this] { return answers > 0; }, milliseconds{100}));
  EXPECT_LE(timeToEnd(), kAtOnce);
}

TEST_F(CancellationTest, EndsWhileGreeting) {
  const Port port(5);
  begin(port.url());
  EXPECT_FALSE(runUntil([this] { return answers > 0; }, milliseconds{100}));
  EXPECT_LE(timeToEnd(), kAtOnce);
}

TEST_F(CancellationTest, EndsWhileTheHeadOrTheBodyIsAwaited) {
  int expected = 0;
  for (const char* const answer : {"", "HTTP/1.1 200 OK\r\nX-", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"}) {
    begin(server.url(answer, "silence"));
    ++expected;
    EXPECT_TRUE(runUntil([&] { return server.requests() == expected; }));
    EXPECT_LE(timeToEnd(), kAtOnce);
    EXPECT_TRUE(runUntil([&] { return server.left() == expected; })) << "the connection is closed";
  }
  EXPECT_EQ(answers, 0);
}

TEST_F(CancellationTest, EndsInTheMiddleOfAFlood) {
  begin(server.url("HTTP/1.1 200 OK\r\n\r\n", "drip"));
  EXPECT_TRUE(runUntil([this] { return server.requests() == 1; }));
  EXPECT_LE(timeToEnd(), kAtOnce);
  EXPECT_TRUE(runUntil([this] { return server.left() == 1; }));
  EXPECT_EQ(answers, 0);
}

TEST_F(CancellationTest, DroppedSubscriptionAloneClosesTheConnectionAndSilencesTheAnswer) {
  begin(server.url("", "silence"));
  EXPECT_TRUE(runUntil([this] { return server.requests() == 1; }));
  subscription.reset();
  EXPECT_TRUE(runUntil([this] { return server.left() == 1; }));
  EXPECT_TRUE(get(*brief, request(server.url(kEmptyAnswer)))) << "the client goes on";
  EXPECT_EQ(answers, 0);
}

TEST_F(CancellationTest, AnswerThatIsAlreadyPostedIsSilencedToo) {
  begin("http://refused.at.once/");
  brief.reset();  // its thread has posted the answer now
  EXPECT_FALSE(runUntil([this] { return answers > 0; }, milliseconds{50}));
  subscription.reset();
}

TEST_F(CancellationTest, SubscriptionMayEndInItsOwnAnswer) {
  brief.emplace(loop, modules, trusting(authority().authority()));
  subscription = brief->get(request(server.url(kEmptyAnswer)), [this](const HttpClient::Answer& answer) {
    subscription.reset();
    answers += answer ? 1 : 0;
  });
  EXPECT_TRUE(runUntil([this] { return answers == 1; }));
}

}  // namespace
}  // namespace nimbo
