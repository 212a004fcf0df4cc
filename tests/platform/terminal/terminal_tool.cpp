// SPDX-License-Identifier: MIT
// A program for a terminal that behaves as TOOL_ACT says, well or badly. What it wants to tell outside
// the terminal goes to the file TOOL_NOTES.
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

extern char** environ;  // which not every system's headers declare

namespace {

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

void writeTo(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void say(std::string_view text) { writeTo(STDOUT_FILENO, text); }

std::string told(const std::string& name, long value) { return name + "=" + std::to_string(value) + "\n"; }

void note(const std::string& text) {
  const int file = ::open(std::string(variable("TOOL_NOTES")).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  writeTo(file, text + "\n");
  ::close(file);
}

void rest(long milliseconds) {
  const timespec time{.tv_sec = 0, .tv_nsec = milliseconds * 1'000'000};
  ::nanosleep(&time, nullptr);
}

[[noreturn]] void stay() {
  for (;;) ::pause();
}

void ignoreAll() {
  for (const int number : {SIGTERM, SIGHUP, SIGINT}) ::signal(number, SIG_IGN);
}

std::string folder() {
  std::array<char, PATH_MAX> name{};
  return ::getcwd(name.data(), name.size()) == nullptr ? "?" : name.data();
}

std::string screen(const std::string& session) {
  return "\x1b[1mSettings\x1b[0m  Usage\n\nCurrent session\n\x1b[32m" + session +
         "% used\x1b[0m\nResets in 2h 14m\n\nCurrent week (all models)\n20% used\nResets in 3d\n";
}

std::string told(const char* title, char** list) {
  std::string text;
  for (; *list != nullptr; ++list) text += std::string(title) + *list + "\n";
  return text;
}

long openDescriptors() {
  long count = -3;  // ".", ".." and the one that lists
  DIR* const list = ::opendir("/dev/fd");
  while (::readdir(list) != nullptr) ++count;
  ::closedir(list);
  return count;
}

long signalsNotDefault() {
  long count = 0;
  sigset_t blocked;
  ::sigprocmask(SIG_SETMASK, nullptr, &blocked);
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action {};
    if (sigismember(&blocked, number) == 1) ++count;
    if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) ++count;
  }
  return count;
}

bool controlsTerminal() {
  const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
  const bool has = terminal >= 0 && ::tcgetsid(STDIN_FILENO) == ::getpid();
  ::close(terminal);
  return has;
}

std::string report(char** arguments) {
  winsize size{};
  ::ioctl(STDIN_FILENO, TIOCGWINSZ, &size);
  return told("argument:", arguments) + told("variable:", ::environ) + "folder:" + folder() + "\n" +
         told("columns", size.ws_col) + told("rows", size.ws_row) + told("pixels", size.ws_xpixel + size.ws_ypixel) +
         told("terminals", ::isatty(0) + ::isatty(1) + ::isatty(2)) +
         told("leads session", ::getsid(0) == ::getpid() ? 1 : 0) +
         told("controls terminal", controlsTerminal() ? 1 : 0) + told("descriptors", openDescriptors()) +
         told("signals", signalsNotDefault()) + "end of report\n";
}

// A child that holds on to the terminal with all its strength, as `hold` makes it.
void leaveChild(void (*hold)()) {
  if (::fork() != 0) return;
  ignoreAll();
  hold();
  note(std::to_string(::getpid()));
  stay();
}

void waitForNotes() {
  struct stat status {};
  const std::string file(variable("TOOL_NOTES"));
  while (::stat(file.c_str(), &status) != 0 || status.st_size == 0) rest(1);
}

std::string line() {
  std::string text;
  for (char byte = 0; ::read(STDIN_FILENO, &byte, 1) == 1 && byte != '\n';) text += byte;
  return text;
}

void askForTrust() {
  say("Accessing workspace:\n " + folder() + "\ny. Yes, I trust this folder\nn. No, exit\nEnter y/n: ");
  note("answer:" + line());
}

void sayGoodbye(int) {
  say(std::string(512 * 1024, 'x'));
  note("goodbye");
  ::_exit(0);
}

void drawSlowly(const std::string& text) {
  for (const char byte : text) {
    say(std::string_view(&byte, 1));
    rest(1);
  }
}

void drawAndStay() {
  say(screen("61"));
  stay();
}

// In the middle of an escape and of a character of three bytes.
void drawInPieces() {
  say("Current session \x1b[3");
  rest(15);
  say("2m\n\xe2\x96");
  rest(15);
  say("\x88 61% \x1b]0;ti");
  rest(15);
  say("tle\x07used\nCurrent week (all models)\n20% used\n");
}

const std::map<std::string_view, void (*)()> kActs{
    {"draws", drawAndStay},
    {"draws slowly",
     [] {
       drawSlowly(screen("61"));
       stay();
     }},
    {"draws twice",
     [] {
       say(screen("10"));
       rest(20);
       say("\x1b[2J\x1b[H" + screen("61"));
       stay();
     }},
    {"draws in pieces",
     [] {
       drawInPieces();
       stay();
     }},
    {"draws and ends", [] { say(screen("61")); }},
    {"floods",
     [] {
       for (;;) say("all work and no play makes a dull screen\n");
     }},
    {"floods and ends",
     [] {
       for (int i = 0; i < 20000; ++i) say(std::to_string(i) + "\n");
     }},
    {"ignores all",
     [] {
       ignoreAll();
       say(screen("61"));
       stay();
     }},
    {"says nothing", [] { stay(); }},
    {"ends", [] {}},
    {"asks for trust",
     [] {
       askForTrust();
       say("\x1b[2J\x1b[H" + screen("61"));
       stay();
     }},
    {"echoes",
     [] {
       for (say("ready\n");;) say("heard:" + line() + "\n");
     }},
    {"says goodbye",
     [] {
       ::signal(SIGTERM, sayGoodbye);
       say("ready\n");
       stay();
     }},
    {"leaves a child",
     [] {
       leaveChild([] {});
       waitForNotes();
       say(screen("61"));
     }},
    {"leaves a job",
     [] {
       leaveChild([] { ::setpgid(0, 0); });
       waitForNotes();
       say(screen("61"));
     }},
    {"leaves a daemon",
     [] {
       leaveChild([] { ::setsid(); });
       waitForNotes();
       say(screen("61"));
     }},
    {"keeps a child",
     [] {
       leaveChild([] {});
       waitForNotes();
       say(screen("61"));
       stay();
     }},
};

}  // namespace

int main(int, char** arguments) {
  const std::string_view act = variable("TOOL_ACT");
  if (act == "reports") return say(report(arguments + 1)), stay(), 0;
  if (act == "notes its report") return note(report(arguments + 1)), drawAndStay(), 0;
  const auto found = kActs.find(act);
  if (found == kActs.end()) return 2;
  found->second();
  return 0;
}
