// SPDX-License-Identifier: MIT
#include <utility>

#include "platform/linux/http/curl/curl_transfer.h"

extern "C" __attribute__((visibility("default"))) nimbo::HttpTransfer* nimboMakeHttpTransfer(
    nimbo::HttpRequest request, const nimbo::HttpOptions& options) {
  static_assert(std::is_same_v<decltype(&nimboMakeHttpTransfer), nimbo::HttpTransferEntry>);
  return new nimbo::CurlTransfer(std::move(request), options);
}
