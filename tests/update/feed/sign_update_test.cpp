// SPDX-License-Identifier: MIT
// What scripts/sign-update prints, read by the program.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "platform/linux/update/debian/debian_system.h"
#include "support/services/temporary_tree.h"
#include "update/feed/signed_feed.h"
#include "update/feed/update_feed_parser.h"
#include "update/feed/update_item.h"

namespace nimbo {
namespace {

constexpr const char* kUrl = "https://updates.test/nimbo_1.2.3_amd64.deb?a=1&b=2";

struct Outcome {
  int status = -1;
  std::string output;
};

class SignUpdate : public ::testing::Test {
 protected:
  SignUpdate() {
    EXPECT_EQ(run("openssl genpkey -algorithm ed25519 -out key.pem").status, 0);
    // As docs/updates.md says.
    publicKey = run("openssl pkey -in key.pem -pubout -outform DER | tail -c 32 | base64").output;
    publicKey.pop_back();
  }

  /// In the folder of the test; errors are part of the output.
  [[nodiscard]] Outcome run(const std::string& command) const {
    FILE* const pipe = ::popen(("cd '" + tree.path().string() + "' && exec 2>&1; " + command).c_str(), "r");
    Outcome outcome;
    for (int c = ::fgetc(pipe); c != EOF; c = ::fgetc(pipe)) outcome.output += static_cast<char>(c);
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
  }

  void makePackage(const std::string& version, const std::string& depends = "libc6 (>= 2.34), libsystemd0") const {
    tree.write("root/usr/share/doc/nimbo/copyright", "MIT\n");
    tree.write("root/DEBIAN/control", "Package: nimbo\nVersion: " + version +
                                          "\nArchitecture: amd64\nMaintainer: Nobody <nobody@updates.test>\nDepends: " +
                                          depends + "\nDescription: a test\n");
    ASSERT_EQ(run("dpkg-deb --root-owner-group --build root nimbo.deb").status, 0);
  }

  [[nodiscard]] Outcome sign(const std::string& arguments) const {
    return run(std::string("'") + NIMBO_SIGN_UPDATE + "' " + arguments);
  }
  [[nodiscard]] Outcome sign() const { return sign(std::string("key.pem nimbo.deb '") + kUrl + "'"); }

  TemporaryTree tree;
  std::string publicKey;
};

TEST_F(SignUpdate, ItemIsReadAndItsSignatureVerified) {
  makePackage("1.2.3");
  const auto signedItem = sign();
  ASSERT_EQ(signedItem.status, 0) << signedItem.output;
  const auto items = parseUpdateFeed(feedAround(signedItem.output));
  ASSERT_TRUE(items);
  ASSERT_EQ(items->size(), 1U) << signedItem.output;
  const UpdateItem& item = items->front();
  const std::string package = tree.read("nimbo.deb");
  EXPECT_EQ(item.version, "1.2.3");
  EXPECT_EQ(item.shortVersion, "1.2.3");
  EXPECT_EQ(item.minimumSystem, "2.34") << "what the package depends on";
  EXPECT_EQ(item.architecture, "amd64");
  EXPECT_EQ(item.url, kUrl);
  EXPECT_TRUE(describes(item, package));
  EXPECT_TRUE(isSigned(item, publicKey));
  EXPECT_FALSE(isSigned(item, Publisher().publicKey()));
}

TEST_F(SignUpdate, SystemMayBeGivenOrLeftOpen) {
  makePackage("1.2.3", "libc6, libsystemd0");
  const auto open = parseUpdateFeed(feedAround(sign().output));
  ASSERT_TRUE(open && open->size() == 1);
  EXPECT_EQ(open->front().minimumSystem, "");
  EXPECT_TRUE(isSigned(open->front(), publicKey));
  const auto given = parseUpdateFeed(feedAround(sign("key.pem nimbo.deb https://updates.test/n.deb 2.36").output));
  ASSERT_TRUE(given && given->size() == 1);
  EXPECT_EQ(given->front().minimumSystem, "2.36");
  EXPECT_TRUE(isSigned(given->front(), publicKey));
}

TEST_F(SignUpdate, HowItWasPackedIsNoPartOfTheVersion) {
  makePackage("1:1.2.3-4");
  const auto items = parseUpdateFeed(feedAround(sign().output));
  ASSERT_TRUE(items && items->size() == 1);
  EXPECT_EQ(items->front().version, "1.2.3");
}

TEST_F(SignUpdate, WhatNobodyWouldBeOfferedIsNotSigned) {
  makePackage("1.2.3~rc1");
  EXPECT_EQ(sign().status, 1);
  makePackage("1.2.3");
  for (const char* const url : {"http://updates.test/n.deb", "https://updates.test/", "https://updates.test/.n.deb"}) {
    const auto outcome = sign(std::string("key.pem nimbo.deb ") + url);
    EXPECT_EQ(outcome.status, 1) << url;
    EXPECT_EQ(outcome.output.find("<item>"), std::string::npos);
  }
  EXPECT_EQ(sign("key.pem nimbo.deb https://updates.test/n.deb bookworm").status, 1);
}

TEST_F(SignUpdate, WithoutAKeyOrAPackageItFails) {
  makePackage("1.2.3");
  ASSERT_EQ(run("openssl genpkey -algorithm rsa -out rsa.pem").status, 0);
  for (const char* const arguments :
       {"missing.pem nimbo.deb https://updates.test/n.deb", "rsa.pem nimbo.deb https://updates.test/n.deb",
        "key.pem missing.deb https://updates.test/n.deb", "key.pem key.pem https://updates.test/n.deb",
        "key.pem nimbo.deb", ""}) {
    const auto outcome = sign(arguments);
    EXPECT_NE(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.output.find("<item>"), std::string::npos) << arguments;
  }
}

TEST_F(SignUpdate, ProgramCallsTheProcessorAsTheSystemDoes) {
  EXPECT_EQ(debianArchitecture() + "\n", run("dpkg --print-architecture").output);
  EXPECT_EQ("glibc " + systemVersion() + "\n", run("getconf GNU_LIBC_VERSION").output);
}

}  // namespace
}  // namespace nimbo
