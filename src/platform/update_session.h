// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "platform/http_client.h"
#include "platform/main_loop.h"
#include "platform/updater.h"
#include "platform/workspace.h"

namespace nimbo {

enum class UpdateRequest {
  user,       ///< whatever comes of it is shown
  automatic,  ///< only an update is told of, without a window
};

/// One check and all that comes of it, up to the downloaded package. Destroying it ends it at any
/// point: nothing is left but a package that was already whole. Main thread only.
class UpdateSession {
 public:
  virtual ~UpdateSession() = default;

  /// Whether it shows no windows.
  [[nodiscard]] virtual bool silent() const = 0;
};

/// Begins a session. `finished` is called once, later, and may destroy it. Null when none is possible.
using UpdateSessionMaker =
    std::function<std::unique_ptr<UpdateSession>(UpdateRequest request, std::function<void()> finished)>;

struct ProgramVersion {
  std::string version;       ///< of the build: compared
  std::string shortVersion;  ///< for people
};

/// What is the same for every session. What it refers to outlives them.
struct UpdateSetup {
  MainLoop& loop;
  HttpClient& http;
  WorkQueue& queue;
  Workspace& workspace;
  UpdateWindows& windows;
  UpdateFeed feed;
  ProgramVersion installed;
};

/// How a system looks for updates: in sessions that the program begins when it is time, or with an updater
/// of the system's own that has already begun. Either is null when it cannot look at all.
using UpdateSource = std::variant<UpdateSessionMaker, std::unique_ptr<Updater>>;

}  // namespace nimbo
