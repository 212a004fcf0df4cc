// SPDX-License-Identifier: MIT
// The parts of the client that need no server.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "platform/linux/http/curl/certificate_store.h"
#include "platform/linux/http/curl/secret_memory.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

class CertificateStoreTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string folderWith(const char* name) const {
    return tree.write(std::string(name) + "-folder/" + name, "").parent_path().string();
  }

  TemporaryTree tree;
};

TEST_F(CertificateStoreTest, HashedFolderOfTheSystemIsEnough) {
  const std::string hashed = folderWith("1d3472b9.0");
  EXPECT_EQ(chooseStore({"all.crt", hashed}, {}), (CertificateStore{"", hashed}));
}

TEST_F(CertificateStoreTest, OtherFoldersNeedTheFileAsWell) {
  for (const char* const name : {"certificates.pem", "1d3472b9.1", "1d3472bg.0", "11d3472b9.0", "1d3472b9.0.pem"}) {
    const std::string plain = folderWith(name);
    EXPECT_EQ(chooseStore({"all.crt", plain}, {}), (CertificateStore{"all.crt", plain})) << name;
  }
  EXPECT_EQ(chooseStore({"all.crt", "/nonexistent"}, {}), (CertificateStore{"all.crt", "/nonexistent"}));
  EXPECT_EQ(chooseStore({"all.crt", ""}, {}), (CertificateStore{"all.crt", ""}));
}

TEST_F(CertificateStoreTest, UsersPartsTakeThePlaceOfTheSystems) {
  const std::string hashed = folderWith("1d3472b9.0");
  EXPECT_EQ(chooseStore({"all.crt", hashed}, {"own.pem", ""}), (CertificateStore{"own.pem", hashed}));
  EXPECT_EQ(chooseStore({"all.crt", "/etc"}, {"", hashed}), (CertificateStore{"", hashed}));
  EXPECT_EQ(chooseStore({"all.crt", "/etc"}, {"own.pem", hashed}), (CertificateStore{"own.pem", hashed}));
}

TEST(SecretMemory, BlocksOfEverySizeAreAligned) {
  for (std::size_t bytes = 0; bytes < 5'000; bytes = bytes * 5 / 4 + 1) {
    std::array<void*, 5> blocks{};
    for (void*& block : blocks) {
      block = secret_memory::allocate(bytes);
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U) << bytes;
    }
    for (void* const block : blocks) secret_memory::release(block);
  }
}

TEST(SecretMemory, ResizingKeepsWhatIsWritten) {
  for (std::size_t bytes = 1; bytes < 100'000; bytes = bytes * 3 / 2 + 1) {
    void* const memory = secret_memory::allocate(bytes);
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 0x5a, bytes);
    void* const larger = secret_memory::resize(memory, bytes * 2);
    ASSERT_NE(larger, nullptr);
    for (std::size_t n = 0; n < bytes; ++n) ASSERT_EQ(static_cast<unsigned char*>(larger)[n], 0x5a);
    void* const smaller = secret_memory::resize(larger, bytes / 2);
    for (std::size_t n = 0; n < bytes / 2; ++n) ASSERT_EQ(static_cast<unsigned char*>(smaller)[n], 0x5a);
    secret_memory::release(smaller);
  }
}

TEST(SecretMemory, BehavesLikeTheCLibrarysAtTheEdges) {
  secret_memory::release(nullptr);
  void* const fresh = secret_memory::resize(nullptr, 10);
  EXPECT_NE(fresh, nullptr);
  secret_memory::release(fresh);
  EXPECT_EQ(secret_memory::allocate(SIZE_MAX), nullptr);
  EXPECT_THROW((void)secret_memory::allocate(SIZE_MAX / 2), std::bad_alloc);
  EXPECT_EQ(secret_memory::allocateZeroed(SIZE_MAX / 2, 3), nullptr);
  char* const copy = secret_memory::duplicate("text");
  EXPECT_STREQ(copy, "text");
  EXPECT_EQ(secret_memory::resize(copy, SIZE_MAX), nullptr);
  EXPECT_STREQ(copy, "text") << "what cannot grow stays";
  secret_memory::release(copy);
}

TEST(SecretMemory, ReusedBlockIsZeroedWhereAskedFor) {
  void* const first = secret_memory::allocate(64);
  std::memset(first, 0xff, 64);
  secret_memory::release(first);
  auto* const second = static_cast<unsigned char*>(secret_memory::allocateZeroed(8, 8));
  for (int n = 0; n < 64; ++n) EXPECT_EQ(second[n], 0);
  secret_memory::release(second);
}

}  // namespace
}  // namespace nimbo
