// SPDX-License-Identifier: MIT
#pragma once

#include <curl/curl.h>

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>

#include "base/unique_handle.h"
#include "platform/linux/http/curl/http_head.h"
#include "platform/linux/http/http_transfer.h"

namespace nimbo {

struct CurlEasyTraits {
  using Handle = CURL*;
  static Handle invalid() { return nullptr; }
  static void release(Handle easy) { curl_easy_cleanup(easy); }
};

struct CurlMultiTraits {
  using Handle = CURLM*;
  static Handle invalid() { return nullptr; }
  static void release(Handle multi) { curl_multi_cleanup(multi); }
};

struct CurlListTraits {
  using Handle = curl_slist*;
  static Handle invalid() { return nullptr; }
  static void release(Handle list) { curl_slist_free_all(list); }
};

/// A request by libcurl. Its multi interface, though for one transfer only, because that can be woken
/// from another thread.
class CurlTransfer final : public HttpTransfer {
 public:
  CurlTransfer(HttpRequest request, const HttpOptions& options);
  ~CurlTransfer() override;
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  [[nodiscard]] HttpClient::Answer perform() override;
  void cancel() override;

 private:
  [[nodiscard]] bool prepare();
  [[nodiscard]] bool takeHeaders();
  [[nodiscard]] bool restrict() const;
  [[nodiscard]] bool trust() const;
  [[nodiscard]] bool receive();
  /// Nothing when it was cancelled or a limit was reached.
  [[nodiscard]] std::optional<CURLcode> drive() const;
  [[nodiscard]] CURLcode result() const;
  [[nodiscard]] HttpClient::Answer answer(CURLcode code);
  static std::size_t onHeadLine(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* self);

  HttpRequest request_;
  const HttpOptions options_;
  std::atomic<bool> cancelled_ = false;
  HttpHead head_;
  std::size_t headBytes_ = 0;
  bool garbage_ = false;  ///< where a status line should be
  std::string body_;
  // The easy handle has to go before the multi handle and what it refers to.
  UniqueHandle<CurlMultiTraits> multi_;
  UniqueHandle<CurlListTraits> headers_;
  UniqueHandle<CurlEasyTraits> easy_;
};

}  // namespace nimbo
