// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/secret.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {

/// A text that is nowhere in the program's memory unless somebody asks for it.
class HiddenText {
 public:
  /// `size` letters and then `suffix`, which is not hidden.
  explicit HiddenText(std::size_t size, std::string_view suffix = {}) : letters_(size), suffix_(suffix) {}

  [[nodiscard]] Secret secret() const {
    Secret text(size());
    for (std::size_t index = 0; index < size(); ++index) text.data()[index] = at(index);
    return text;
  }
  [[nodiscard]] std::string reveal() const { return std::string(secret().view()); }

  /// Whether a piece from near its end is there: memory that is given back has its first and last bytes
  /// overwritten at once. More of it than a register holds, because the dynamic linker saves those on the stack.
  [[nodiscard]] bool isAt(const char* bytes) const {
    const std::size_t end = suffix_.empty() ? letters_ - kOverwritten : size();
    for (std::size_t index = 0; index < kPiece; ++index) {
      if (bytes[index] != at(end - kPiece + index)) return false;
    }
    return true;
  }
  static constexpr std::size_t kPiece = 128;

 private:
  static constexpr std::size_t kOverwritten = 32;

  [[nodiscard]] std::size_t size() const { return letters_ + suffix_.size(); }
  [[nodiscard]] char at(std::size_t index) const {
    if (index >= letters_) return suffix_[index - letters_];
    // Mixed well, so that no part looks like another.
    auto mixed = (static_cast<std::uint32_t>(index) + 1) * 2654435761U;
    mixed = (mixed ^ (mixed >> 15)) * 0x2c1b3c6dU;
    return static_cast<char>('a' + (mixed ^ (mixed >> 12)) % 26);
  }

  const std::size_t letters_;
  const std::string_view suffix_;
};

/// One occurrence of a text in this process.
struct MemoryFind {
  std::string mapping;  ///< as in /proc/self/smaps
  bool dumped = true;   ///< whether a core dump would have it
};

/// Looks through all memory of this process that can be written. Takes nothing from the heap before
/// something is found, because that would overwrite just what has been given back to it.
class OwnMemory {
 public:
  [[nodiscard]] static std::vector<MemoryFind> find(const HiddenText& text) {
    std::vector<MemoryFind> finds;
    const Pages list(4U << 20);
    const Pages copy(1U << 20);
    const UniqueFd memory(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
    std::string_view left = list.readAll("/proc/self/smaps");
    while (!left.empty()) {
      const Mapping mapping = nextMapping(left);
      if (!mapping.writable || mapping.resident == 0 || list.isIn(mapping) || copy.isIn(mapping)) continue;
      for (std::size_t n = count(memory.get(), mapping, copy, text); n > 0; --n) {
        finds.push_back({std::string(mapping.line), !mapping.excluded});
      }
    }
    return finds;
  }

 private:
  struct Mapping {
    std::string_view line;
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    std::size_t resident = 0;
    bool writable = false;
    bool excluded = false;  ///< from core dumps
  };

  /// Shared, so that the kernel does not join them with a neighbour.
  class Pages {
   public:
    explicit Pages(std::size_t bytes)
        : bytes_(bytes),
          begin_(
              static_cast<char*>(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    ~Pages() { ::munmap(begin_, bytes_); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    [[nodiscard]] char* data() const { return begin_; }
    [[nodiscard]] std::size_t size() const { return bytes_; }
    [[nodiscard]] bool isIn(const Mapping& mapping) const {
      const auto own = reinterpret_cast<std::uintptr_t>(begin_);
      return mapping.begin <= own && own < mapping.end;
    }
    [[nodiscard]] std::string_view readAll(const char* path) const {
      const UniqueFd file(::open(path, O_RDONLY | O_CLOEXEC));
      std::size_t filled = 0;
      while (true) {
        const ssize_t got = ::read(file.get(), begin_ + filled, bytes_ - filled);
        if (got <= 0) return {begin_, filled};
        filled += static_cast<std::size_t>(got);
      }
    }

   private:
    const std::size_t bytes_;
    char* const begin_;
  };

  /// Takes it off the front of what is left; "VmFlags" is the last line of each.
  static Mapping nextMapping(std::string_view& left) {
    Mapping mapping;
    for (std::string_view line; !left.empty() && !line.starts_with("VmFlags:");) {
      line = left.substr(0, left.find('\n'));
      left.remove_prefix(std::min(line.size() + 1, left.size()));
      read(line, mapping);
    }
    return mapping;
  }

  static void read(std::string_view line, Mapping& mapping) {
    const auto dash = line.find('-');
    if (mapping.line.empty()) {
      const auto space = line.find(' ');
      std::from_chars(line.data(), line.data() + dash, mapping.begin, 16);
      std::from_chars(line.data() + dash + 1, line.data() + space, mapping.end, 16);
      mapping.writable = line[space + 2] == 'w';
      mapping.line = line;
    } else if (line.starts_with("Rss:")) {
      const auto digits = line.find_first_of("0123456789");
      std::from_chars(line.data() + digits, line.data() + line.size(), mapping.resident);
    } else if (line.starts_with("VmFlags:")) {
      mapping.excluded = line.find(" dd") != std::string_view::npos;
    }
  }

  static std::size_t count(int memory, const Mapping& mapping, const Pages& copy, const HiddenText& text) {
    std::size_t found = 0;
    for (std::uintptr_t at = mapping.begin; at < mapping.end;) {
      const std::size_t wanted = std::min<std::size_t>(copy.size(), mapping.end - at);
      const ssize_t got = ::pread(memory, copy.data(), wanted, static_cast<off_t>(at));
      if (got <= 0) return found;
      const auto size = static_cast<std::size_t>(got);
      for (std::size_t n = 0; n + HiddenText::kPiece <= size; ++n) found += text.isAt(copy.data() + n) ? 1 : 0;
      if (size < copy.size()) return found;
      at += size - HiddenText::kPiece + 1;  // it may lie across the border
    }
    return found;
  }
};

}  // namespace nimbo
