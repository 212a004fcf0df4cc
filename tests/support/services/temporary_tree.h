// SPDX-License-Identifier: MIT
#pragma once

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace nimbo {

/// A folder of its own for one test, with everything in it removed at the end.
class TemporaryTree {
 public:
  TemporaryTree() {
    std::string name = (std::filesystem::temp_directory_path() / "nimbo-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
  }
  ~TemporaryTree() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  /// Writes a file in place, making its folders; returns its whole path.
  std::filesystem::path write(const std::filesystem::path& relative, std::string_view text) const {
    const std::filesystem::path file = path_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }

  /// The whole text of a file; empty when there is none.
  [[nodiscard]] std::string read(const std::filesystem::path& relative) const {
    std::ifstream file(path_ / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace nimbo
