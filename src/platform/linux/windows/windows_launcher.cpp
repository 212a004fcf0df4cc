// SPDX-License-Identifier: MIT
#include "platform/linux/windows/windows_launcher.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <utility>
#include <vector>

#include "base/lifetime.h"
#include "platform/linux/machine/session_spawn.h"
#include "platform/linux/windows/record_socket.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kTimeToEnd{2};
/// Of a program that lacks a library, from the dynamic linker.
constexpr int kNotLoaded = 127;

const char* wordOf(DisplayNeed need) { return need == DisplayNeed::optional ? "optional" : "required"; }

void kill(const UniqueFd& process) { ::syscall(SYS_pidfd_send_signal, process.get(), SIGKILL, nullptr, 0); }

/// Of a process that has ended.
WindowsEnd reap(const UniqueFd& process) {
  siginfo_t ended{};
  if (::waitid(P_PIDFD, static_cast<id_t>(process.get()), &ended, WEXITED | WNOHANG) != 0) return WindowsEnd::died;
  if (ended.si_code != CLD_EXITED) return WindowsEnd::died;
  if (ended.si_status == kNotLoaded) return WindowsEnd::cannotRun;
  if (ended.si_status == kNoWaylandPlugin) return WindowsEnd::noWaylandPlugin;
  return ended.si_status == kNoDisplay ? WindowsEnd::noDisplay : WindowsEnd::died;
}

}  // namespace

/// A child whose end of the channel is closed, which tells it to end.
struct WindowsLauncher::Ending {
  UniqueFd process;
  Subscription ended;
  Subscription patience;
};

class WindowsLauncher::Child final : public WindowsProcess {
 public:
  Child(WindowsLauncher& launcher, DisplayNeed need, Events events) : launcher_(launcher), events_(std::move(events)) {
    auto [own, theirs] = makeRecordChannel();
    auto leader = spawnWithInput(launcher.executable_, {"nimbo-windows", wordOf(need)}, theirs);
    if (!leader) {
      fmt::print(stderr, "nimbo: the windows cannot be started: {}\n", leader.error().message());
      launcher_.loop_.post(lifetime_.guard([this] { events_.ended(WindowsEnd::cannotRun); }));
      return;
    }
    socket_.emplace(std::move(own));
    process_ = std::move(leader->descriptor);
    launcher_.process_ = leader->pid;
    readable_ = launcher_.loop_.watch(socket_->descriptor(), [this] { receive(); });
    ended_ = launcher_.loop_.watch(process_.get(), [this] { end(); });
  }

  ~Child() override {
    launcher_.process_.reset();
    readable_.reset();
    ended_.reset();
    if (process_) launcher_.letGo(std::move(process_));
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  [[nodiscard]] bool send(const std::string& record) override {
    // One that has ended, or is about to, is told of by its own event.
    return !socket_ || !readable_ || socket_->send(record) || errno == EPIPE;
  }

 private:
  // What receives may destroy this.
  void receive() {
    std::string record;
    const auto received = socket_->receive(record);
    if (received == RecordSocket::Received::record) return std::function(events_.received)(record);
    if (received == RecordSocket::Received::nothing) return;
    readable_.reset();
    kill(process_);
  }

  void end() {
    std::vector<std::string> last;
    for (std::string record; readable_ && socket_->receive(record) == RecordSocket::Received::record;) {
      last.push_back(record);
    }
    readable_.reset();
    ended_.reset();
    const WindowsEnd end = reap(process_);
    process_.reset();
    const Events events = events_;
    const auto alive = lifetime_.guard([] {});
    for (const auto& record : last) {
      if (alive()) events.received(record);
    }
    if (alive()) events.ended(end);
  }

  WindowsLauncher& launcher_;
  const Events events_;
  std::optional<RecordSocket> socket_;
  UniqueFd process_;
  Subscription readable_;
  Subscription ended_;
  Lifetime lifetime_;
};

WindowsLauncher::WindowsLauncher(MainLoop& loop, const std::filesystem::path& executable)
    : loop_(loop), executable_(::open(executable.c_str(), O_PATH | O_CLOEXEC)) {}

WindowsLauncher::~WindowsLauncher() = default;

std::unique_ptr<WindowsProcess> WindowsLauncher::start(DisplayNeed need, WindowsProcess::Events events) {
  return std::make_unique<Child>(*this, need, std::move(events));
}

// With time for what the toolkit does at its end, such as handing a copied text to the clipboard's keeper.
void WindowsLauncher::letGo(UniqueFd process) {
  auto& ending = endings_.emplace_back(Ending{std::move(process), {}, {}});
  const auto gone = std::prev(endings_.end());
  ending.ended = loop_.watch(ending.process.get(), [this, gone] {
    (void)reap(gone->process);
    endings_.erase(gone);
#ifdef __GLIBC__
    // What was shown is forgotten by now, and the program is to cost what it did before.
    ::malloc_trim(0);
#endif
  });
  ending.patience = loop_.every(kTimeToEnd, std::chrono::seconds(1), [gone] {
    gone->patience.reset();
    kill(gone->process);
  });
}

}  // namespace nimbo
