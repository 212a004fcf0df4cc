// SPDX-License-Identifier: MIT
#include "platform/posix/files/regular_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/services/own_memory.h"
#include "support/services/sanitizers.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

class PlainSecretFilesTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::error_code failure(const std::filesystem::path& file) const {
    const auto text = files.read(file, 100);
    return text ? std::error_code() : text.error();
  }

  TemporaryTree tree;
  const PlainSecretFiles files{};
};

TEST_F(PlainSecretFilesTest, LinksAreFollowed) {
  const auto target = tree.write("secret", "text");
  std::filesystem::create_symlink(target, tree.path() / "link");
  EXPECT_EQ(files.read(tree.path() / "link", 100).value().view(), "text");
}

TEST_F(PlainSecretFilesTest, AbsentFilesFoldersPipesAndDevicesAreErrorsAndNothingWaits) {
  EXPECT_EQ(failure(tree.path() / "absent"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(failure(tree.write("file", "") / "below"), std::errc::not_a_directory);
  EXPECT_EQ(failure(tree.path()), std::errc::not_supported);
  ASSERT_EQ(::mkfifo((tree.path() / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(failure(tree.path() / "pipe"), std::errc::not_supported);
  EXPECT_EQ(failure("/dev/zero"), std::errc::not_supported);
  std::filesystem::create_symlink("loop", tree.path() / "loop");
  EXPECT_EQ(failure(tree.path() / "loop"), std::errc::too_many_symbolic_link_levels);
}

TEST_F(PlainSecretFilesTest, FileThatMayNotBeReadIsAnError) {
  const auto file = tree.write("secret", "text");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  // Root may read everything, so that it has to be somebody else for a moment.
  const uid_t user = ::geteuid();
  if (user == 0) {
    ASSERT_EQ(::seteuid(65534), 0);
  }
  EXPECT_EQ(failure(file), std::errc::permission_denied);
  ASSERT_EQ(::seteuid(user), 0);
}

TEST_F(PlainSecretFilesTest, OnlyTheTextThatIsHandedOutHoldsTheSecret) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  const HiddenText secret(3000);
  const auto file = tree.path() / "secret";
  {
    // A child writes it, so that it was never in this process.
    const pid_t child = ::fork();
    if (child == 0) {
      tree.write("secret", secret.reveal());
      ::_exit(0);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  }
  auto text = files.read(file, 10'000);
  ASSERT_TRUE(text);
  EXPECT_EQ(OwnMemory::find(secret).size(), 1U);
  *text = {};
  EXPECT_TRUE(OwnMemory::find(secret).empty());
}

}  // namespace
}  // namespace nimbo
