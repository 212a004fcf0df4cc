// SPDX-License-Identifier: MIT
#include "update/feed/update_feed_parser.h"

#include <algorithm>
#include <charconv>
#include <pugixml.hpp>
#include <string>
#include <system_error>

#include "base/text.h"

namespace nimbo {
namespace {

constexpr const char* kNamespace = "urn:quellwerk:nimbo:appcast";
constexpr int kMaximumDepth = 16;

// Without entities of its own. pugixml knows no others than the five of XML itself.
constexpr unsigned kParseOptions = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_doctype;

/// Walks in a loop, as the parser does, so that no depth exhausts the stack.
class DepthLimit final : public pugi::xml_tree_walker {
  bool for_each(pugi::xml_node& node) override { return depth() < kMaximumDepth && node.type() != pugi::node_doctype; }
};

std::string textOf(const pugi::xml_node& item, const char* name) {
  return std::string(trimmed(item.child(name).text().get()));
}

/// 0 for anything but a decimal number as one writes it, which is also the only way that is signed.
std::size_t lengthOf(std::string_view text) {
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  return error == std::errc() && end == text.data() + text.size() && text.front() != '0' ? length : 0;
}

UpdateItem itemOf(const pugi::xml_node& node) {
  const auto enclosure = node.child("enclosure");
  return {.version = textOf(node, "nimbo:version"),
          .shortVersion = textOf(node, "nimbo:shortVersion"),
          .minimumSystem = textOf(node, "nimbo:minimumSystem"),
          .architecture = textOf(node, "nimbo:architecture"),
          .url = enclosure.attribute("url").value(),
          .length = lengthOf(enclosure.attribute("length").value()),
          .sha256 = textOf(node, "nimbo:sha256"),
          .signature = textOf(node, "nimbo:edSignature")};
}

}  // namespace

std::optional<std::vector<UpdateItem>> parseUpdateFeed(std::string_view xml) {
  // A zero byte would end the text for some of the parser's loops.
  if (xml.size() > kMaximumFeedBytes || xml.find('\0') != std::string_view::npos) return std::nullopt;
  pugi::xml_document document;
  if (!document.load_buffer(xml.data(), xml.size(), kParseOptions, pugi::encoding_utf8)) return std::nullopt;
  DepthLimit limit;
  if (!document.traverse(limit)) return std::nullopt;
  const auto root = document.document_element();
  // Names are compared with their prefix, which therefore has to mean what it says.
  if (std::string_view(root.name()) != "rss" || root.attribute("xmlns:nimbo").value() != std::string_view(kNamespace)) {
    return std::nullopt;
  }
  const auto channel = root.child("channel");
  if (!channel) return std::nullopt;
  std::vector<UpdateItem> items;
  std::size_t count = 0;
  for (const auto& node : channel.children("item")) {
    if (++count > kMaximumFeedItems) return std::nullopt;
    if (auto item = itemOf(node); isWellFormed(item)) items.push_back(std::move(item));
  }
  return items;
}

}  // namespace nimbo
