// SPDX-License-Identifier: MIT
#include "base/unique_handle.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace nimbo {
namespace {

std::vector<int>& released() {
  static std::vector<int> handles;
  return handles;
}

struct RecordingTraits {
  using Handle = int;
  static Handle invalid() { return -1; }
  static void release(Handle handle) { released().push_back(handle); }
};
using Recorded = UniqueHandle<RecordingTraits>;

class UniqueHandleTest : public ::testing::Test {
 protected:
  void SetUp() override { released().clear(); }
};

TEST_F(UniqueHandleTest, DestructionReleases) {
  { const Recorded handle(3); }
  EXPECT_EQ(released(), std::vector{3});
}

TEST_F(UniqueHandleTest, EmptyOneReleasesNothing) {
  {
    const Recorded handle;
    EXPECT_FALSE(handle);
  }
  EXPECT_TRUE(released().empty());
}

TEST_F(UniqueHandleTest, MoveAssignmentReleasesTheOldHandleOnly) {
  Recorded first(1);
  Recorded second(2);
  first = std::move(second);
  EXPECT_EQ(released(), std::vector{1});
  EXPECT_EQ(first.get(), 2);
}

TEST_F(UniqueHandleTest, DetachedHandleIsTheCallersToRelease) {
  {
    Recorded handle(4);
    EXPECT_EQ(handle.detach(), 4);
  }
  EXPECT_TRUE(released().empty());
}

}  // namespace
}  // namespace nimbo
