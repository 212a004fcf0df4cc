// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>

#include "ui/controls/control_content.h"

namespace nimbo {

// What a user does with a control.

inline ControlEvent pressed(std::string identifier) { return {std::move(identifier)}; }
inline ControlEvent switched(std::string identifier, bool on) { return {std::move(identifier), on}; }
inline ControlEvent chosen(std::string identifier, std::size_t index) { return {std::move(identifier), index}; }
inline ControlEvent typed(std::string identifier, std::string text) { return {std::move(identifier), std::move(text)}; }
inline ControlEvent picked(std::string identifier, std::chrono::system_clock::time_point date) {
  return {std::move(identifier), date};
}

/// For a log: the identifier, and what was given.
inline std::string described(const ControlEvent& event) {
  struct Text {
    std::string operator()(std::monostate /*nothing*/) const { return ""; }
    std::string operator()(bool on) const { return on ? " on" : " off"; }
    std::string operator()(std::size_t index) const { return " " + std::to_string(index); }
    std::string operator()(const std::string& text) const { return " " + text; }
    std::string operator()(std::chrono::system_clock::time_point date) const {
      return " " + std::to_string(std::chrono::system_clock::to_time_t(date));
    }
  };
  return event.identifier + std::visit(Text(), event.value);
}

}  // namespace nimbo
