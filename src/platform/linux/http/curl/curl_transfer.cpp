// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/curl_transfer.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "base/wipe.h"
#include "platform/linux/http/curl/certificate_store.h"
#include "platform/linux/http/curl/secret_memory.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// libcurl copies the headers it sends; see secret_memory.h.
bool initializeLibrary() {
  static const bool kInitialized =
      curl_global_init_mem(CURL_GLOBAL_DEFAULT, secret_memory::allocate, secret_memory::release, secret_memory::resize,
                           secret_memory::duplicate, secret_memory::allocateZeroed) == CURLE_OK;
  return kInitialized;
}

template <class Value>
bool set(CURL* easy, CURLoption option, Value value) {
  return curl_easy_setopt(easy, option, value) == CURLE_OK;
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

void wipeValues(HttpRequest& request) {
  for (auto& [name, value] : request.headers) wipe(value);
}

}  // namespace

CurlTransfer::CurlTransfer(HttpRequest request, const HttpOptions& options)
    : request_(std::move(request)), options_(options) {
  if (initializeLibrary()) multi_.reset(curl_multi_init());
  if (multi_) easy_.reset(curl_easy_init());
  // From here on the headers are only where no core dump shows them.
  if (easy_ && !takeHeaders()) easy_.reset();
  wipeValues(request_);
}

CurlTransfer::~CurlTransfer() {
  if (easy_) curl_multi_remove_handle(multi_.get(), easy_.get());
  easy_.reset();
  multi_.reset();
#ifdef __GLIBC__
  // All authorities of a system without a hashed folder were in memory.
  ::malloc_trim(0);
#endif
}

HttpClient::Answer CurlTransfer::perform() {
  if (!easy_ || !prepare()) return tl::unexpected(HttpFailure::unreachable);
  const auto code = drive();
  if (!code) return tl::unexpected(HttpFailure::unreachable);
  return answer(*code);
}

void CurlTransfer::cancel() {
  cancelled_ = true;
  if (multi_) curl_multi_wakeup(multi_.get());
}

bool CurlTransfer::takeHeaders() {
  for (const auto& [name, value] : request_.headers) {
    if (!isHeaderText(name) || !isHeaderText(value)) return false;
    std::string line;
    line.reserve(name.size() + value.size() + 2);
    line.append(name).append(": ").append(value);
    curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
    wipe(line);
    if (longer == nullptr) return false;
    static_cast<void>(headers_.detach());
    headers_.reset(longer);
  }
  return true;
}

bool CurlTransfer::prepare() {
  // libcurl takes another scheme for an answer that is not HTTP.
  if (!request_.url.starts_with("https://")) return false;
  CURL* const easy = easy_.get();
  return set(easy, CURLOPT_URL, request_.url.c_str()) && set(easy, CURLOPT_HTTPGET, 1L) &&
         set(easy, CURLOPT_HTTPHEADER, headers_.get()) &&
         set(easy, CURLOPT_USERAGENT, orNull(options_.userAgent))&& restrict() && trust() && receive() &&
         curl_multi_add_handle(multi_.get(), easy) == CURLM_OK;
}

bool CurlTransfer::restrict() const {
  CURL* const easy = easy_.get();
  return set(easy, CURLOPT_PROTOCOLS_STR, "https") && set(easy, CURLOPT_FOLLOWLOCATION, 0L) &&
         set(easy, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED)) &&
         set(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)) &&
         set(easy, CURLOPT_HTTP09_ALLOWED, 0L) && set(easy, CURLOPT_NOSIGNAL, 1L) &&
         // A proxy gets its own headers, none of the request's.
         set(easy, CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE)) &&
         set(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L) &&
         // A name server that hangs is left to its thread when the request is given up.
         set(easy, CURLOPT_QUICK_EXIT, 1L);
}

bool CurlTransfer::trust() const {
  CURL* const easy = easy_.get();
  const auto store = chooseStore(systemStore(), {options_.certificateFile, options_.certificateFolder});
  return set(easy, CURLOPT_SSL_VERIFYPEER, 1L) && set(easy, CURLOPT_SSL_VERIFYHOST, 2L) &&
         set(easy, CURLOPT_CAINFO, orNull(store.file)) && set(easy, CURLOPT_CAPATH, orNull(store.folder));
}

bool CurlTransfer::receive() {
  CURL* const easy = easy_.get();
  return set(easy, CURLOPT_HEADERFUNCTION, &onHeadLine) && set(easy, CURLOPT_HEADERDATA, this) &&
         set(easy, CURLOPT_WRITEFUNCTION, &onBody) && set(easy, CURLOPT_WRITEDATA, this);
}

std::optional<CURLcode> CurlTransfer::drive() const {
  const auto end = steady_clock::now() + request_.wholeLimit;
  auto idleEnd = steady_clock::now() + request_.idleLimit;
  int running = 1;
  while (!cancelled_) {
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

CURLcode CurlTransfer::result() const {
  int left = 0;
  const auto* const message = curl_multi_info_read(multi_.get(), &left);
  return message != nullptr && message->msg == CURLMSG_DONE ? message->data.result : CURLE_RECV_ERROR;
}

HttpClient::Answer CurlTransfer::answer(CURLcode code) {
  if (garbage_ || code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY) {
    return tl::unexpected(HttpFailure::notHttp);
  }
  // libcurl does not mind a connection that ends in the middle of the head.
  if (code != CURLE_OK || !head_.complete()) return tl::unexpected(HttpFailure::unreachable);
  long status = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  return HttpResponse{static_cast<int>(status), head_.takeHeaders(), std::move(body_)};
}

std::size_t CurlTransfer::onHeadLine(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  const std::string_view line(bytes, size * count);
  transfer.headBytes_ += line.size();
  if (transfer.headBytes_ > transfer.options_.headLimit) return 0;
  transfer.garbage_ = !transfer.head_.add(line);
  return transfer.garbage_ ? 0 : line.size();
}

std::size_t CurlTransfer::onBody(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  auto& body = transfer.body_;
  if (size * count > transfer.request_.bodyLimit - body.size()) return 0;
  body.append(bytes, size * count);
  return size * count;
}

}  // namespace nimbo
