// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/locale_dates.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>
#include <time.h>

#include <clocale>
#include <optional>

#include "support/services/temporary_tree.h"

// glibc's newlocale leaks its copy of LOCPATH.
extern "C" const char* __lsan_default_suppressions() { return "leak:argz_add_sep"; }  // NOLINT

namespace nimbo {
namespace {

using Time = std::chrono::system_clock::time_point;

const Time kAfternoon{std::chrono::seconds{1795271400}};  // 2026-11-21 14:30 UTC
const Time kMidnight{std::chrono::seconds{1795219740}};   // 2026-11-21 00:09 UTC

constexpr const char* kNoSources = "the system has no locale sources";

/// Sets a variable of the environment for as long as it lives.
class Environment {
 public:
  Environment(std::string name, const std::string& value) : name_(std::move(name)) {
    if (const char* const old = ::getenv(name_.c_str())) old_ = old;
    ::setenv(name_.c_str(), value.c_str(), 1);
  }
  ~Environment() {
    old_ ? ::setenv(name_.c_str(), old_->c_str(), 1) : ::unsetenv(name_.c_str());
    ::tzset();
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::string name_;
  std::optional<std::string> old_;
};

class LocaleDatesTest : public testing::Test {
 protected:
  [[nodiscard]] static std::string text(const std::string& locale, Time time = kAfternoon) {
    return LocaleDates(locale).shortDateAndTime(time);
  }

  Environment zone{"TZ", "UTC0"};
};

TEST_F(LocaleDatesTest, PlainLocaleHasTwentyFourHours) {
  EXPECT_EQ(text("C"), "11/21/26, 14:30");
  EXPECT_EQ(text("C.UTF-8"), "11/21/26, 14:30");
  EXPECT_EQ(text("POSIX", kMidnight), "11/21/26, 00:09");
}

TEST_F(LocaleDatesTest, MissingLocaleIsThePlainOne) {
  for (const char* name : {"xx_XX.UTF-8", "", "nonsense", "../../etc/passwd"}) {
    EXPECT_EQ(text(name), "11/21/26, 14:30") << name;
  }
}

TEST_F(LocaleDatesTest, TimeAloneHasTheStyleOfTheWhole) {
  EXPECT_EQ(LocaleDates("C").shortTime(kAfternoon), "14:30");
  EXPECT_EQ(LocaleDates("C").shortTime(kMidnight), "00:09");
}

TEST_F(LocaleDatesTest, MonthIsAbbreviated) {
  EXPECT_EQ(LocaleDates("C").abbreviatedDateAndShortTime(kAfternoon), "Nov 21, 2026, 14:30");
}

TEST_F(LocaleDatesTest, LocaleOfTheProcessIsLeftAlone) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  EXPECT_FALSE(text("C.UTF-8").empty());
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST_F(LocaleDatesTest, TimeIsThatOfTheUsersZone) {
  const Environment newYork("TZ", "EST5EDT,M3.2.0,M11.1.0");
  EXPECT_EQ(text("C"), "11/21/26, 09:30");
  EXPECT_EQ(text("C", kMidnight), "11/20/26, 19:09");
}

TEST_F(LocaleDatesTest, ChangedZoneIsPickedUp) {
  const LocaleDates dates("C");
  EXPECT_EQ(dates.shortDateAndTime(kAfternoon), "11/21/26, 14:30");
  {
    const Environment kolkata("TZ", "IST-5:30");
    EXPECT_EQ(dates.shortDateAndTime(kAfternoon), "11/21/26, 20:00");
  }
  EXPECT_EQ(dates.shortDateAndTime(kAfternoon), "11/21/26, 14:30");
}

TEST_F(LocaleDatesTest, SummerTimeCountsAtTheDateInQuestion) {
  const Environment berlin("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(text("C"), "11/21/26, 15:30");
  EXPECT_EQ(text("C", kAfternoon - std::chrono::hours(24 * 150)), "06/24/26, 16:30");
}

TEST_F(LocaleDatesTest, SecondsAreCutAndNotRounded) {
  EXPECT_EQ(text("C", kAfternoon + std::chrono::milliseconds(59999)), "11/21/26, 14:30");
  EXPECT_EQ(text("C", kAfternoon - std::chrono::nanoseconds(1)), "11/21/26, 14:29");
  EXPECT_EQ(text("C", Time(std::chrono::nanoseconds(-1))), "12/31/69, 23:59");
}

/// Locales of the world, compiled for the test from the sources in the system's i18n folder.
class ForeignLocaleTest : public LocaleDatesTest {
 protected:
  /// False where it cannot be compiled; otherwise it is installed for the rest of the test.
  [[nodiscard]] bool install(const std::string& source, const std::string& charset = "UTF-8") const {
    const std::string path = (tree.path() / (source + '.' + charset)).string();
    const std::string command = "localedef -i " + source + " -f " + charset + " '" + path + "' >/dev/null 2>&1";
    return ::system(command.c_str()) == 0;  // NOLINT(cert-env33-c)
  }

  TemporaryTree tree;
  Environment folder{"LOCPATH", tree.path().string()};
};

TEST_F(ForeignLocaleTest, TwelveHoursHaveTheirHalvesNamedAndNoLeadingZero) {
  if (!install("en_US")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(text("en_US.UTF-8"), "11/21/2026, 2:30 PM");
  EXPECT_EQ(text("en_US.UTF-8", kMidnight), "11/21/2026, 12:09 AM");
}

TEST_F(ForeignLocaleTest, TwentyFourHoursKeepTheirLeadingZero) {
  if (!install("de_DE")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(text("de_DE.UTF-8"), "21.11.2026, 14:30");
  EXPECT_EQ(text("de_DE.UTF-8", kMidnight), "21.11.2026, 00:09");
}

TEST_F(ForeignLocaleTest, MonthStandsWhereTheLocalePutsIt) {
  if (!install("de_DE") || !install("en_US") || !install("sv_SE")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(LocaleDates("en_US.UTF-8").abbreviatedDateAndShortTime(kAfternoon), "Nov 21, 2026, 2:30 PM");
  EXPECT_EQ(LocaleDates("de_DE.UTF-8").abbreviatedDateAndShortTime(kAfternoon), "21 Nov 2026, 14:30");
  EXPECT_EQ(LocaleDates("sv_SE.UTF-8").abbreviatedDateAndShortTime(kAfternoon), "2026 nov 21, 14:30");
}

TEST_F(ForeignLocaleTest, EmptyNameDoesNotAskTheEnvironment) {
  if (!install("de_DE")) GTEST_SKIP() << kNoSources;
  const Environment everything("LC_ALL", "de_DE.UTF-8");
  EXPECT_EQ(text(""), "11/21/26, 14:30");
}

TEST_F(ForeignLocaleTest, DateIsInTheOrderAndScriptOfTheLocale) {
  if (!install("ja_JP")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(text("ja_JP.UTF-8"), "2026年11月21日, 14:30");
}

TEST_F(ForeignLocaleTest, TextOfAnOldCharacterSetIsUnicode) {
  if (!install("ja_JP", "EUC-JP")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(text("ja_JP.EUC-JP"), "2026年11月21日, 14:30");
}

TEST_F(ForeignLocaleTest, HalvesOfTheDayAreInTheLanguageOfTheLocale) {
  if (!install("hi_IN")) GTEST_SKIP() << kNoSources;
  EXPECT_EQ(text("hi_IN.UTF-8"), "21/11/26, 2:30 अपराह्न");
}

}  // namespace
}  // namespace nimbo
