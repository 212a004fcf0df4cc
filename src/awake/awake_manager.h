// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "awake/awake_rules.h"
#include "awake/power_assertions.h"
#include "base/result.h"
#include "platform/clock.h"
#include "platform/display_power.h"
#include "platform/main_loop.h"
#include "settings/settings.h"

namespace nimbo {

/// The Keep Awake session: holds the assertions for as long as the user or another program asked and the battery
/// rules allow, and keeps the one message that tells about it. Every failure becomes that message. What the user
/// stops and what a rule forbids ends for all. Main thread only.
class AwakeManager {
 public:
  using Time = std::chrono::system_clock::time_point;

  /// All outlive the manager.
  struct Services {
    MainLoop& mainLoop;
    const Clock& clock;
    AssertionClient& assertionClient;
    PowerSources& powerSources;
    DisplayPower& displayPower;
    Settings& settings;
    const Wording& wording;
  };

  explicit AwakeManager(Services services)
      : services_(services), assertions_(services.assertionClient, services.wording) {}

  [[nodiscard]] bool isActive() const { return assertions_.isActive(); }
  [[nodiscard]] bool keepsDisplayOn() const { return assertions_.keepsDisplayOn(); }
  /// Whether the display stays on all the same, because nothing else keeps this system awake.
  [[nodiscard]] bool displayCannotSleep() const { return services_.assertionClient.keepsDisplayOnToo(); }
  /// Whether the user can put the machine to sleep by hand during a session.
  [[nodiscard]] bool manualSleepApplies() const { return services_.assertionClient.manualSleepApplies(); }
  /// Whether the user asked for the session, and not other programs alone.
  [[nodiscard]] bool isOwn() const { return own_; }
  /// The names of the other programs, in the order in which they asked.
  [[nodiscard]] std::vector<std::string> holders() const;
  /// Absent for a session until stopped, and without one of the user's own.
  [[nodiscard]] std::optional<Time> endsAt() const { return endsAt_; }
  /// Empty when there is nothing to tell but the state itself.
  [[nodiscard]] const std::string& message() const { return message_; }

  /// Starts a session, or gives a running one another end and display choice; `until` is absent for
  /// one until stopped. Whether the new session runs; when refused, a running one goes on as it was,
  /// unless it is the battery rules that refuse.
  bool start(std::optional<Time> until, bool keepDisplayOn, Time now);
  void stop(std::string message);
  /// Stops on the user's behalf.
  void stopByUser();

  using HolderId = std::uint32_t;
  /// Keeps the machine awake for another program too, until it lets go, or says why that cannot be. `name` is one
  /// printable line.
  [[nodiscard]] Result<HolderId, std::string> hold(std::string name, bool keepDisplayOn);
  /// Does nothing for one that holds no more.
  void letGo(HolderId holder);
  /// Moves the end of a session that has one.
  void extend(std::chrono::seconds by);
  /// Applies the choice to a running session; false when the system refused it.
  bool setKeepDisplayOn(bool on);
  /// Turns the display off at once during a session that lets it sleep; the session goes on.
  void turnDisplayOff();

  /// To be called when the rules in the settings are others: applies them to a running session.
  void rulesChanged();
  /// Ends the session when its end has come.
  void checkDeadline(Time now);
  /// Ends the session when the rules forbid it now.
  void checkBattery();
  /// To be called every few seconds: checks the deadline, the rules, which may have been edited by hand, and twice a
  /// minute the charge, of which many machines do not tell when it falls.
  void tick(Time now);

  // What the user asks for, with the settings that go with it.

  /// Stops the session, or starts one until `end`; absent for one until stopped.
  void toggle(std::optional<Time> end);
  /// Stops the session, or starts one of the length chosen last.
  void toggleTimed();
  /// Keeps the display on, too, or no longer; stored unless a running session cannot do it.
  void keepDisplayOn(bool on);

  /// After every change that the user should see.
  std::function<void()> onChange;
  /// After the system or a rule has refused what the user asked for, or a rule has ended the session: with the message,
  /// for a user who does not see it.
  std::function<void(const std::string& message)> onRefusal;

 private:
  [[nodiscard]] AwakeRules rules() const;
  /// Whether the system granted it. `ownDisplay`: the user wants the display on; others may, too.
  [[nodiscard]] bool activate(bool ownDisplay, bool newHoldersDisplay = false);
  void end();
  void endOwn(std::string message);
  /// Tells of the session and lets the rules have their say: whether it goes on.
  [[nodiscard]] bool goesOn();
  /// Whether the rules forbid a session now; one that runs has been ended then.
  [[nodiscard]] bool endIfForbidden();
  void tell(std::string message);
  void refuse(std::string message);
  void scheduleDeadline();
  void observeBattery();

  Services services_;
  PowerAssertions assertions_;
  AwakeRules appliedRules_;  ///< to the running session
  Subscription deadlineTimer_;
  Subscription batteryObservation_;
  Time batteryCheckedAt_;  ///< by the latest tick that did
  Subscription displayOffRequest_;
  bool own_ = false;
  bool ownDisplay_ = false;
  std::optional<Time> endsAt_;
  struct Holder {
    std::string name;
    bool keepDisplayOn;
  };
  std::map<HolderId, Holder> holders_;
  HolderId lastHolder_ = 0;
  std::string message_ = "Keep AI jobs running while your display rests.";
};

}  // namespace nimbo
