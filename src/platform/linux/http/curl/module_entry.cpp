// SPDX-License-Identifier: MIT
// The one function that the module exports: a request by libcurl.
#include <curl/curl.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "base/unique_handle.h"
#include "platform/linux/http/curl/certificate_store.h"
#include "platform/linux/http/curl/secret_memory.h"
#include "platform/linux/http/module_http_client.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Of an answer. libcurl keeps each header apart, and each of them then takes a page, see secret_memory.h.
constexpr std::size_t kMaximumHeadBytes = 1U << 16;

// libcurl copies what it sends; see secret_memory.h.
bool initializeLibrary() {
  static const bool kInitialized =
      curl_global_init_mem(CURL_GLOBAL_DEFAULT, secret_memory::allocate, secret_memory::release, secret_memory::resize,
                           secret_memory::duplicate, secret_memory::allocateZeroed) == CURLE_OK;
  return kInitialized;
}

CertificateStore systemStore() {
  const auto* const info = curl_version_info(CURLVERSION_NOW);
  const auto text = [](const char* path) { return path == nullptr ? std::string() : std::string(path); };
  return {text(info->cainfo), text(info->capath)};
}

const char* orNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

// A line break in a value would begin a header that nobody wrote.
bool isHeaderText(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c == '\t' || (c >= ' ' && c != '\x7f') || c < 0; });
}

// "HTTP/1.1 200 OK" or "HTTP/2 200"; libcurl takes anything that begins like it for 200.
bool isStatusLine(std::string_view line) {
  const auto space = line.find(' ');
  const auto status = line.substr(std::min(line.find_first_not_of(' ', space), line.size()), 3);
  return space == line.find_first_not_of("HTTP/.0123456789") && status.size() == 3 && status[0] != '0' &&
         status.find_first_not_of("0123456789") == std::string_view::npos;
}

/// One request. The multi interface, though for one transfer only, because that can be woken from
/// another thread.
class CurlTransfer {
 public:
  CurlTransfer(HttpRequest request, const HttpOptions& options) : request_(std::move(request)), options_(options) {}
  ~CurlTransfer() { curl_multi_remove_handle(multi_.get(), easy_.get()); }
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  [[nodiscard]] HttpClient::Answer perform(const std::stop_token& stop) {
    const bool prepared = initializeLibrary() && prepare();
    // From here on the token is only where no core dump shows it.
    request_.bearerToken = {};
    const auto code = prepared ? drive(stop) : std::nullopt;
    return code ? answer(*code) : tl::unexpected(HttpFailure::unreachable);
  }

 private:
  template <class Value>
  [[nodiscard]] bool set(CURLoption option, Value value) const {
    return curl_easy_setopt(easy_.get(), option, value) == CURLE_OK;
  }

  [[nodiscard]] bool prepare() {
    multi_.reset(curl_multi_init());
    easy_.reset(curl_easy_init());
    // libcurl takes another scheme for an answer that is not HTTP.
    return multi_ && easy_ && request_.url.starts_with("https://") && set(CURLOPT_URL, request_.url.c_str()) &&
           set(CURLOPT_HTTPGET, 1L) && set(CURLOPT_USERAGENT, orNull(options_.userAgent)) &&
           addHeaders()&& restrict() && trust() && set(CURLOPT_HEADERFUNCTION, &onHeadLine) &&
           set(CURLOPT_HEADERDATA, this) && set(CURLOPT_WRITEFUNCTION, &onBody) && set(CURLOPT_WRITEDATA, this) &&
           curl_multi_add_handle(multi_.get(), easy_.get()) == CURLM_OK;
  }

  [[nodiscard]] bool addHeaders() {
    for (const auto& [name, value] : request_.headers) {
      if (!isHeaderText(name) || !isHeaderText(value)) return false;
      std::string line = name;
      line.append(": ").append(value);
      curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
      if (longer == nullptr) return false;
      static_cast<void>(headers_.detach());
      headers_.reset(longer);
    }
    const Secret& token = request_.bearerToken;
    return set(CURLOPT_HTTPHEADER, headers_.get()) &&
           (token.view().empty() || (isHeaderText(token.view()) && set(CURLOPT_XOAUTH2_BEARER, token.c_str()) &&
                                     set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BEARER))));
  }

  [[nodiscard]] bool restrict() const {
    return set(CURLOPT_PROTOCOLS_STR, "https") && set(CURLOPT_FOLLOWLOCATION, 0L) &&
           set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED)) &&
           set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)) && set(CURLOPT_HTTP09_ALLOWED, 0L) &&
           set(CURLOPT_NOSIGNAL, 1L) &&
           // A proxy gets its own headers, none of the request's.
           set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE)) &&
           set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L) &&
           // A name server that hangs is left to its thread when the request is given up.
           set(CURLOPT_QUICK_EXIT, 1L);
  }

  [[nodiscard]] bool trust() const {
    const auto store = chooseStore(systemStore(), {options_.certificateFile, options_.certificateFolder});
    return set(CURLOPT_SSL_VERIFYPEER, 1L) && set(CURLOPT_SSL_VERIFYHOST, 2L) &&
           set(CURLOPT_CAINFO, orNull(store.file)) && set(CURLOPT_CAPATH, orNull(store.folder));
  }

  /// Nothing when it was stopped or a limit was reached.
  [[nodiscard]] std::optional<CURLcode> drive(const std::stop_token& stop) const {
    const std::stop_callback wake(stop, [this] { curl_multi_wakeup(multi_.get()); });
    const auto end = steady_clock::now() + request_.wholeLimit;
    auto idleEnd = steady_clock::now() + request_.idleLimit;
    int running = 1;
    while (!stop.stop_requested()) {
      if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) return std::nullopt;
      if (running == 0) return result();
      const auto left = std::chrono::ceil<milliseconds>(std::min(end, idleEnd) - steady_clock::now());
      if (left <= milliseconds::zero()) return std::nullopt;
      int active = 0;  // sockets at which something has happened
      if (curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(left.count()), &active) != CURLM_OK) {
        return std::nullopt;
      }
      if (active > 0) idleEnd = steady_clock::now() + request_.idleLimit;
    }
    return std::nullopt;
  }

  [[nodiscard]] CURLcode result() const {
    int left = 0;
    const auto* const message = curl_multi_info_read(multi_.get(), &left);
    return message != nullptr && message->msg == CURLMSG_DONE ? message->data.result : CURLE_RECV_ERROR;
  }

  [[nodiscard]] HttpClient::Answer answer(CURLcode code) {
    if (garbage_ || code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY) {
      return tl::unexpected(HttpFailure::notHttp);
    }
    // libcurl does not mind a connection that ends in the middle of the head.
    if ((code != CURLE_OK && !isRefused_) || !headComplete_) return tl::unexpected(HttpFailure::unreachable);
    HttpResponse response;
    response.status = static_cast<int>(status());
    curl_header* header = nullptr;
    while ((header = curl_easy_nextheader(easy_.get(), CURLH_HEADER, /*request: the last*/ -1, header)) != nullptr) {
      response.headers.emplace_back(lowerCased(header->name), header->value);
    }
    response.body = std::move(body_);
    return response;
  }

  [[nodiscard]] long status() const {
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
  }

  static std::size_t onHeadLine(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    const std::string_view line(bytes, size * count);
    transfer.headBytes_ += line.size();
    if (transfer.headBytes_ > kMaximumHeadBytes) return 0;
    if (line.starts_with("HTTP/")) {
      transfer.headComplete_ = false;  // what came before was preliminary (RFC 9110, 15.2)
      transfer.garbage_ = !isStatusLine(line);
    } else if (line == "\r\n" || line == "\n") {
      transfer.headComplete_ = true;  // what comes after it are trailers
      transfer.isRefused_ = transfer.status() >= 300;
    }
    return transfer.garbage_ || transfer.isRefused_ ? 0 : line.size();
  }

  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    auto& body = transfer.body_;
    if (size * count > transfer.request_.bodyLimit - body.size()) return 0;
    body.append(bytes, size * count);
    return size * count;
  }

  HttpRequest request_;
  const HttpOptions& options_;
  std::size_t headBytes_ = 0;
  bool headComplete_ = false;
  bool garbage_ = false;    ///< where a status line should be
  bool isRefused_ = false;  ///< the head says all, whatever follows
  std::string body_;
  // The easy handle has to go before the multi handle and what it refers to.
  UniquePointer<CURLM, curl_multi_cleanup> multi_;
  UniquePointer<curl_slist, curl_slist_free_all> headers_;
  UniquePointer<CURL, curl_easy_cleanup> easy_;
};

}  // namespace
}  // namespace nimbo

extern "C" __attribute__((visibility("default"))) void nimboHttpTransfer(nimbo::HttpRequest request,
                                                                         const nimbo::HttpOptions& options,
                                                                         const std::stop_token& stop,
                                                                         nimbo::HttpClient::Answer& answer) {
  static_assert(std::is_same_v<decltype(&nimboHttpTransfer), nimbo::HttpTransfer>);
  answer = nimbo::CurlTransfer(std::move(request), options).perform(stop);
#ifdef __GLIBC__
  // All authorities of a system without a hashed folder were in memory.
  ::malloc_trim(0);
#endif
}
