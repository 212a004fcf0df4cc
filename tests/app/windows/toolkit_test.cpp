// SPDX-License-Identifier: MIT
#include "app/windows/toolkit.h"

#include <gtest/gtest.h>

#include <string>

#include "support/fake_platform_services.h"
#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

UserInterface* makeFake(DisplayNeed /*need*/) { return new FakeUserInterface(); }
UserInterface* makeNone(DisplayNeed /*need*/) { return nullptr; }
UserInterface* makeWithoutDisplay(DisplayNeed need) {
  return need == DisplayNeed::optional ? new FakeUserInterface() : nullptr;
}

class UserInterfaceMakerTest : public ::testing::Test {
 protected:
  void offer(UserInterfaceEntry entry) { modules.address = reinterpret_cast<void*>(entry); }

  std::string complaintsAfter(int calls) {
    ::testing::internal::CaptureStderr();
    for (int i = 0; i < calls; ++i) EXPECT_EQ(make(), nullptr);
    return ::testing::internal::GetCapturedStderr();
  }

  FakeModuleLoader modules;
  UserInterfaceMaker make = userInterfaceFromModule(modules);
};

TEST_F(UserInterfaceMakerTest, ModulesEntryMakesTheInterface) {
  offer(makeFake);
  EXPECT_NE(make(), nullptr);
  EXPECT_EQ(modules.asked, std::vector<std::string>{"nimbo-ui:nimboMakeUserInterface"});
}

TEST_F(UserInterfaceMakerTest, MissingModuleIsToldOnce) {
  EXPECT_EQ(complaintsAfter(3), "nimbo: the windows cannot be loaded: no such module\n");
}

TEST_F(UserInterfaceMakerTest, MissingDisplayIsToldOnce) {
  offer(makeNone);
  EXPECT_EQ(complaintsAfter(3), "nimbo: no display can be reached, so no window can be shown\n");
}

TEST_F(UserInterfaceMakerTest, EntryIsToldWhetherADisplayIsNeeded) {
  offer(makeWithoutDisplay);
  EXPECT_EQ(make(), nullptr);
  EXPECT_NE(userInterfaceFromModule(modules, DisplayNeed::optional)(), nullptr);
}

TEST_F(UserInterfaceMakerTest, NothingIsLoadedBeforeItIsWanted) { EXPECT_TRUE(modules.asked.empty()); }

}  // namespace
}  // namespace nimbo
