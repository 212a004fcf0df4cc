// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "platform/user_files.h"

namespace nimbo {

/// What all SecretFiles and ToolFiles promise. `Files` has `secrets` and `tools`; the test says what there is by
/// `write(name, text)`, `makeExecutable(name)` and `occupy(folder)`, which give paths, and `path(name)`.
template <class Files>
class UserFilesContract : public testing::Test {
 protected:
  Files files;
};
TYPED_TEST_SUITE_P(UserFilesContract);

TYPED_TEST_P(UserFilesContract, SecretIsReadWholeUpToTheLimit) {
  const auto file = this->files.write("secret", "all of it");
  EXPECT_EQ(this->files.secrets.read(file, 9).value().view(), "all of it");
  EXPECT_EQ(this->files.secrets.read(file, 8).error(), std::errc::file_too_large);
}

TYPED_TEST_P(UserFilesContract, MissingSecretSaysSo) {
  EXPECT_EQ(this->files.secrets.read(this->files.path("none"), 9).error(), std::errc::no_such_file_or_directory);
}

TYPED_TEST_P(UserFilesContract, OnlyProgramsAreExecutable) {
  EXPECT_TRUE(this->files.tools.isExecutable(this->files.makeExecutable("program")));
  EXPECT_FALSE(this->files.tools.isExecutable(this->files.write("text", "text")));
  EXPECT_FALSE(this->files.tools.isExecutable(this->files.path("none")));
}

TYPED_TEST_P(UserFilesContract, FolderIsEmptyUntilSomethingIsInIt) {
  const auto folder = this->files.path("folder");
  for (int time = 0; time < 2; ++time) {
    const auto prepared = this->files.tools.preparePrivateFolder(folder);
    ASSERT_TRUE(prepared);
    EXPECT_EQ(prepared->state, PrivateFolder::State::empty);
    EXPECT_EQ(prepared->path, folder);
  }
  this->files.occupy("folder");
  EXPECT_EQ(this->files.tools.preparePrivateFolder(folder)->state, PrivateFolder::State::occupied);
}

REGISTER_TYPED_TEST_SUITE_P(UserFilesContract, SecretIsReadWholeUpToTheLimit, MissingSecretSaysSo,
                            OnlyProgramsAreExecutable, FolderIsEmptyUntilSomethingIsInIt);

}  // namespace nimbo
