// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace nimbo {

/// A value that goes into a message together with its type ("v").
using BusVariant = std::variant<bool, std::string, std::vector<std::vector<std::string>>>;

struct BusObjectPath {
  const char* path;
};

/// A dictionary with nothing in it ("a{sv}").
struct NoOptions {};

/// A list with nothing in it ("av").
struct NoParameters {};

/// Writes values into a message, each in the form of its type. Once something could not be written,
/// nothing more is.
class BusWriter {
 public:
  explicit BusWriter(sd_bus_message* message) : message_(message) {}

  void add(bool value) { append("b", value ? 1 : 0); }
  void add(std::int32_t value) { append("i", value); }
  void add(std::uint32_t value) { append("u", value); }
  void add(std::int64_t value) { append("x", value); }
  void add(std::uint64_t value) { append("t", value); }
  void add(double value) { append("d", value); }
  void add(const char* text) { append("s", text); }
  void add(const std::string& text) { add(text.c_str()); }
  void add(BusObjectPath object) { append("o", object.path); }
  void add(NoOptions /*none*/) { append("a{sv}", 0); }
  void add(NoParameters /*none*/) { append("av", 0); }
  void add(const std::vector<std::uint8_t>& bytes) {
    if (result_ >= 0) result_ = sd_bus_message_append_array(message_, SD_BUS_TYPE_BYTE, bytes.data(), bytes.size());
  }
  template <class Value>
  void add(const std::vector<Value>& values) {
    inside(SD_BUS_TYPE_ARRAY, typeOf(Value()), [&] {
      for (const Value& value : values) add(value);
    });
  }
  void add(const BusVariant& value) {
    std::visit([&](const auto& held) { inside(SD_BUS_TYPE_VARIANT, typeOf(held), [&] { add(held); }); }, value);
  }

  /// Everything that `write` writes, inside a container; `kind` and `contents` as in
  /// sd_bus_message_open_container.
  template <class Write>
  void inside(char kind, const char* contents, const Write& write) {
    if (result_ >= 0) result_ = sd_bus_message_open_container(message_, kind, contents);
    write();
    if (result_ >= 0) result_ = sd_bus_message_close_container(message_);
  }

  /// Negative error code of the first failure.
  [[nodiscard]] int result() const { return result_; }

 private:
  static const char* typeOf(bool /*value*/) { return "b"; }
  static const char* typeOf(std::int32_t /*value*/) { return "i"; }
  static const char* typeOf(const std::string& /*value*/) { return "s"; }
  static const char* typeOf(const std::vector<std::string>& /*value*/) { return "as"; }
  static const char* typeOf(const std::vector<std::vector<std::string>>& /*value*/) { return "aas"; }

  template <class Value>
  void append(const char* type, Value value) {
    if (result_ >= 0) result_ = sd_bus_message_append(message_, type, value);
  }

  sd_bus_message* const message_;
  int result_ = 0;
};

}  // namespace nimbo
