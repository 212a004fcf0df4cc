// SPDX-License-Identifier: MIT
#include <utility>

#include "platform/linux/http/curl/curl_transfer.h"

extern "C" __attribute__((visibility("default"))) void nimboHttpTransfer(nimbo::HttpRequest request,
                                                                         const nimbo::HttpOptions& options,
                                                                         const std::stop_token& stop,
                                                                         nimbo::HttpClient::Answer& answer) {
  static_assert(std::is_same_v<decltype(&nimboHttpTransfer), nimbo::HttpTransfer>);
  answer = nimbo::curlTransfer(std::move(request), options, stop);
}
