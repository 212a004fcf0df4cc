// SPDX-License-Identifier: MIT
#include "platform/linux/machine/proc_file.h"

#include <dirent.h>
#include <fcntl.h>

#include <array>
#include <cstddef>
#include <memory>

namespace nimbo {

std::optional<std::string_view> ProcFile::read(std::span<char> buffer) {
  if (!descriptor_) descriptor_.reset(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor_) return std::nullopt;
  const ssize_t size = ::pread(descriptor_.get(), buffer.data(), buffer.size(), 0);
  if (size < 0) {
    descriptor_.reset();
    return std::nullopt;
  }
  return std::string_view(buffer.data(), static_cast<std::size_t>(size));
}

std::optional<std::string> readAttribute(const std::string& path) {
  std::array<char, 4096> buffer;
  const auto text = ProcFile(path).read(buffer);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

void visitFolder(const std::string& path, const std::function<void(std::string_view name)>& visit) {
  struct Closer {
    void operator()(DIR* folder) const { ::closedir(folder); }
  };
  const std::unique_ptr<DIR, Closer> folder(::opendir(path.c_str()));
  if (!folder) return;
  while (const dirent* entry = ::readdir(folder.get())) visit(entry->d_name);
}

}  // namespace nimbo
