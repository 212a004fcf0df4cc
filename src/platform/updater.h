// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nimbo {

/// Where updates come from and who must have signed them.
struct UpdateFeed {
  std::string url;        ///< https
  std::string publicKey;  ///< Ed25519, 32 bytes in base64
};

/// What an updater has to say in a window.
struct UpdateNotice {
  std::string title;
  std::string text;
  std::vector<std::string> buttons;  ///< the first is the default one, the last the one that ends it
  bool operator==(const UpdateNotice&) const = default;
};

/// The windows of an updater that has none of its own, and its other ways to the user. Main thread only.
class UpdateWindows {
 public:
  virtual ~UpdateWindows() = default;

  /// Takes the place of the notice before it, which is then never answered. `answered`, which may be
  /// empty, gets the index of the button, once, later.
  virtual void show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) = 0;
  /// Takes the notice away unanswered.
  virtual void dismiss() = 0;
  /// Tells of an update that nobody has asked for, without a window.
  virtual void found(const std::string& title, const std::string& text) = 0;
};

/// Looks for updates in a signed feed, now and then by itself and when asked. It never installs
/// anything without the user. Main thread only.
class Updater {
 public:
  virtual ~Updater() = default;

  /// Whether nothing else is under way.
  [[nodiscard]] virtual bool canCheckForUpdates() const = 0;
  /// Because the user asked: whatever comes of it is shown.
  virtual void checkForUpdates() = 0;

  /// Kept among the settings.
  [[nodiscard]] virtual bool automaticallyChecksForUpdates() const = 0;
  virtual void setAutomaticallyChecksForUpdates(bool on) = 0;
};

}  // namespace nimbo
