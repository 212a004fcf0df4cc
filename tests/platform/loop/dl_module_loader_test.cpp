// SPDX-License-Identifier: MIT
#include "platform/posix/loop/dl_module_loader.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(DlModuleLoader, MissingModuleIsNamedInTheSystemsWords) {
  DlModuleLoader loader("/nonexistent");
  const auto symbol = loader.symbol("nimbo-ui", "anything");
  ASSERT_FALSE(symbol);
  EXPECT_NE(symbol.error().message.find("/nonexistent/nimbo-ui.so"), std::string::npos);
}

TEST(DlModuleLoader, FindsASymbol) {
  DlModuleLoader loader(NIMBO_TEST_MODULES);
  const auto symbol = loader.symbol("test-module", "answer");
  ASSERT_TRUE(symbol) << symbol.error().message;
  EXPECT_EQ(reinterpret_cast<int (*)()>(*symbol)(), 42);
}

TEST(DlModuleLoader, MissingSymbolIsAnError) {
  DlModuleLoader loader(NIMBO_TEST_MODULES);
  const auto symbol = loader.symbol("test-module", "question");
  ASSERT_FALSE(symbol);
  EXPECT_NE(symbol.error().message.find("question"), std::string::npos);
}

}  // namespace
}  // namespace nimbo
