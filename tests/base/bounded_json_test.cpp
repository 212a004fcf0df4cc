// SPDX-License-Identifier: MIT
#include "base/bounded_json.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>

namespace nimbo {
namespace {

using nlohmann::json;

std::string nested(std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); }

TEST(BoundedJson, AnyRootIsAValue) {
  EXPECT_EQ(parseBoundedJson(R"({"a":[1,true,null]})"), json({{"a", {1, true, nullptr}}}));
  EXPECT_EQ(parseBoundedJson("[1]"), json::array({1}));
  EXPECT_EQ(parseBoundedJson("null"), json(nullptr));
}

TEST(BoundedJson, WhatIsNoJsonIsAbsent) {
  for (const char* const text : {"", "<html>", "{", "{} {}", "{\"a\":1,}", "nul", "\"\xFF\"", "1e999"}) {
    EXPECT_EQ(parseBoundedJson(text), std::nullopt) << text;
  }
}

TEST(BoundedJson, SixtyFourLevelsAreTheDeepest) {
  EXPECT_TRUE(parseBoundedJson(nested(64)));
  EXPECT_EQ(parseBoundedJson(nested(65)), std::nullopt);
}

TEST(BoundedJson, HalfAMillionLevelsAreRefusedWithoutHarm) {
  EXPECT_EQ(parseBoundedJson(nested(500'000)), std::nullopt);
  EXPECT_EQ(parseBoundedJson(std::string(1'000'000, '[')), std::nullopt);
}

TEST(BoundedJson, BracketsInStringsAreNoLevels) {
  EXPECT_TRUE(parseBoundedJson("\"" + std::string(100, '[') + "\""));
  EXPECT_TRUE(parseBoundedJson(R"({"a\"[": "\\", "b": ")" + std::string(100, '{') + "\"}"));
  EXPECT_EQ(parseBoundedJson(R"(["]]]]\"]]]]",)" + nested(64) + "]"), std::nullopt);
}

TEST(BoundedJson, HundredsOfThousandsOfSiblingsTakeNoTime) {
  std::string wide = "[{}";
  while (wide.size() < kMaximumJsonBytes - 10) wide += ",{}";
  const auto before = std::chrono::steady_clock::now();
  EXPECT_TRUE(parseBoundedJson(wide + "]"));
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
}

TEST(BoundedJson, OneByteTooManyIsRefused) {
  const std::string largest = "\"" + std::string(kMaximumJsonBytes - 2, 'x') + "\"";
  EXPECT_TRUE(parseBoundedJson(largest));
  EXPECT_EQ(parseBoundedJson(largest + " "), std::nullopt);
}

TEST(BoundedJson, MembersAreFoundInObjectsOnly) {
  const json object = {{"a", 1}};
  ASSERT_NE(jsonMember(object, "a"), nullptr);
  EXPECT_EQ(*jsonMember(object, "a"), 1);
  EXPECT_EQ(jsonMember(object, "b"), nullptr);
  EXPECT_EQ(jsonMember(json::array({"a"}), "a"), nullptr);
  EXPECT_EQ(jsonMember(json("a"), "a"), nullptr);
}

TEST(BoundedJson, OnlyNumbersAreNumbers) {
  const json values = {1, 2.5, true, "3", nullptr};
  EXPECT_EQ(jsonNumber(&values[0]), 1.0);
  EXPECT_EQ(jsonNumber(&values[1]), 2.5);
  for (const std::size_t index : {2U, 3U, 4U}) EXPECT_EQ(jsonNumber(&values[index]), std::nullopt) << index;
  EXPECT_EQ(jsonNumber(nullptr), std::nullopt);
}

}  // namespace
}  // namespace nimbo
