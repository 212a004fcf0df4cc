// SPDX-License-Identifier: MIT
#include "app/widgets/widget_link.h"

#include <array>
#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

// No host but these three counts, and none of them holds a character that RFC 3986 would split or
// decode: whatever a parser would find besides (a user, an escaped letter) makes the comparison fail.
constexpr std::array kLinks{std::pair{std::string_view("nimbo://resources"), DashboardTab::memory},
                            std::pair{std::string_view("nimbo://awake"), DashboardTab::awake},
                            std::pair{std::string_view("nimbo://usage"), DashboardTab::ai}};

// An empty port is no port (RFC 3986, section 3.2.3), while an empty query or fragment is one (6.2.3).
bool endsLink(std::string_view rest) {
  if (rest.starts_with(':')) rest.remove_prefix(1);
  return rest.empty() || rest == "/";
}

}  // namespace

std::optional<DashboardTab> tabOfLink(std::string_view url) {
  for (const auto& [link, tab] : kLinks) {
    if (startsWithIgnoringCase(url, link) && endsLink(url.substr(link.size()))) return tab;
  }
  return std::nullopt;
}

std::optional<DashboardTab> tabOfLastLink(std::span<const std::string> links) {
  std::optional<DashboardTab> last;
  for (const auto& link : links) {
    if (const auto tab = tabOfLink(link)) last = tab;
  }
  return last;
}

}  // namespace nimbo
