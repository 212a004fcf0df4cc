// SPDX-License-Identifier: MIT
// The running program and a program that steers it, each at one end of a real connection. This file is the bus at the
// other end, and everybody behind it: the input chooses what they call, tell and answer, in right forms and in wrong
// ones. The bus itself writes each sender into a message; so does this one.
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <optional>
#include <thread>

#include "base/text.h"
#include "fuzz/fuzz_input.h"
#include "platform/linux/bus/program_address.h"
#include "platform/linux/remote/dbus_remote_control.h"
#include "platform/linux/remote/dbus_running_program.h"

using namespace nimbo;

namespace {

using Input = FuzzedDataProvider;
using Type = std::string_view;

// What the program offers. Another interface needs its lines here, its object in `SteeredProgram` and its calls in
// `ask`.
struct Member {
  const char* interface;
  const char* name;
  Type type;  ///< of a method's arguments, or of a property
};
constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr std::array kMethods{
    Member{kAwakeInterface, "Start", "xb"},  Member{kAwakeInterface, "Stop", ""},
    Member{kAwakeInterface, "Extend", "x"},  Member{kAwakeInterface, "Hold", "sb"},
    Member{kAwakeInterface, "Release", "u"}, Member{kAwakeInterface, "Unknown", ""},
    Member{kUsageInterface, "Refresh", ""},  Member{kResourcesInterface, "Watch", "as"},
    Member{kProperties, "Get", "ss"},        Member{kProperties, "GetAll", "s"},
    Member{kProperties, "Set", "ssv"},       Member{"org.freedesktop.DBus.Introspectable", "Introspect", ""},
};
constexpr std::array kKnownProperties{
    Member{kAwakeInterface, "Active", "b"},         Member{kAwakeInterface, "Own", "b"},
    Member{kAwakeInterface, "KeepsDisplayOn", "b"}, Member{kAwakeInterface, "EndsAt", "x"},
    Member{kAwakeInterface, "Message", "s"},        Member{kAwakeInterface, "Holders", "as"},
};
constexpr std::array kFigures{
    Member{kUsageInterface, "Codex", "(bsxsa(sdx))"},  Member{kUsageInterface, "Claude", "(bsxsa(sdx))"},
    Member{kResourcesInterface, "Memory", "(ttttxs)"}, Member{kResourcesInterface, "MemoryFailed", "b"},
    Member{kResourcesInterface, "Cpu", "d"},           Member{kResourcesInterface, "Temperature", "d"},
};

template <class Choices>
const auto& pick(Input& input, const Choices& choices) {
  return choices[input.ConsumeIntegralInRange<std::size_t>(0, std::size(choices) - 1)];
}

/// What can be sent: the library takes no characters that Unicode keeps for itself, such as U+FFFF.
std::string textFrom(Input& input) {
  if (input.ConsumeBool()) return input.ConsumeBool() ? pick(input, kFigures).name : kAwakeInterface;
  constexpr std::array kOthers{"ü", "”", "\U0001F4A1", "\u0085", "\u2028", "\u202E", "\uFEFF", "e\u0301"};
  std::string text;
  for (const char byte : input.ConsumeRandomLengthString(100)) {
    const auto value = static_cast<unsigned char>(byte);
    if (value >= 0x80) text += kOthers[value % kOthers.size()];
    if (value > 0 && value < 0x80) text += byte;
  }
  return text;
}

std::int64_t numberFrom(Input& input) {
  constexpr std::array<std::int64_t, 8> kEdges{0, 1, -1, 31622400, kLatestTime, kLatestTime + 1, INT64_MAX, INT64_MIN};
  return input.ConsumeBool() ? pick(input, kEdges) : input.ConsumeIntegral<std::int64_t>();
}

std::string typeFrom(Input& input, int depth = 0) {
  constexpr std::string_view kBasic = "ybnqiuxtdsog";
  const std::string basic(1, pick(input, kBasic));
  switch (depth > 3 ? 0 : input.ConsumeIntegralInRange(0, 8)) {
    case 1:
      return "v";
    case 2:
      return "a" + typeFrom(input, depth + 1);
    case 3:
      return "(" + typeFrom(input, depth + 1) + typeFrom(input, depth + 1) + ")";
    case 4:
      return "a{" + basic + typeFrom(input, depth + 1) + "}";
    default:
      return basic;
  }
}

/// Takes the first whole type off `types`.
Type takeType(Type& types) {
  std::size_t end = types.find_first_not_of('a');
  int open = 0;
  do {
    if (types[end] == '(' || types[end] == '{') ++open;
    if (types[end] == ')' || types[end] == '}') --open;
    ++end;
  } while (open > 0);
  const Type first = types.substr(0, end);
  types.remove_prefix(end);
  return first;
}

void append(sd_bus_message* message, Type types, Input& input);

void appendContainer(sd_bus_message* message, char kind, const std::string& contents, Input& input) {
  require(sd_bus_message_open_container(message, kind, contents.c_str()) >= 0);
  const int times = kind == SD_BUS_TYPE_ARRAY ? input.ConsumeIntegralInRange(0, 3) : 1;
  for (int index = 0; index < times; ++index) append(message, contents, input);
  require(sd_bus_message_close_container(message) >= 0);
}

void appendNumber(sd_bus_message* message, char type, std::int64_t number) {
  const double fraction = static_cast<double>(number) / 1e6;
  const int truth = number % 2 != 0 ? 1 : 0;
  const void* value = &number;  // the lowest bytes come first
  if (type == SD_BUS_TYPE_DOUBLE) value = &fraction;
  if (type == SD_BUS_TYPE_BOOLEAN) value = &truth;
  require(sd_bus_message_append_basic(message, type, value) >= 0);
}

/// Values of all those types.
void append(sd_bus_message* message, Type types, Input& input) {
  while (!types.empty()) {
    const Type type = takeType(types);
    switch (type.front()) {
      case SD_BUS_TYPE_ARRAY:
        appendContainer(message, SD_BUS_TYPE_ARRAY, std::string(type.substr(1)), input);
        break;
      case SD_BUS_TYPE_STRUCT_BEGIN:
        appendContainer(message, SD_BUS_TYPE_STRUCT, std::string(type.substr(1, type.size() - 2)), input);
        break;
      case SD_BUS_TYPE_DICT_ENTRY_BEGIN:
        appendContainer(message, SD_BUS_TYPE_DICT_ENTRY, std::string(type.substr(1, type.size() - 2)), input);
        break;
      case SD_BUS_TYPE_VARIANT:
        appendContainer(message, SD_BUS_TYPE_VARIANT, typeFrom(input, 2), input);
        break;
      case SD_BUS_TYPE_STRING:
        sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, textFrom(input).c_str());
        break;
      case SD_BUS_TYPE_OBJECT_PATH:
        sd_bus_message_append_basic(message, SD_BUS_TYPE_OBJECT_PATH, kProgramPath);
        break;
      case SD_BUS_TYPE_SIGNATURE:
        sd_bus_message_append_basic(message, SD_BUS_TYPE_SIGNATURE, typeFrom(input).c_str());
        break;
      default:
        appendNumber(message, type.front(), numberFrom(input));
    }
  }
}

std::string otherTypes(Input& input) {
  std::string types;
  for (int count = input.ConsumeIntegralInRange(0, 3); count > 0; --count) types += typeFrom(input);
  return types;
}

/// The bus, at its end of one connection.
class BusEnd {
 public:
  std::function<void(sd_bus_message*)> received;  ///< everything that is not for the bus alone

  explicit BusEnd(int descriptor) {
    require(sd_bus_new(bus_.out()) >= 0 && sd_bus_set_fd(get(), descriptor, descriptor) >= 0);
    require(sd_bus_set_server(get(), 1, sd_id128_t{}) >= 0);
    require(sd_bus_add_filter(get(), nullptr, onMessage, this) >= 0 && sd_bus_start(get()) >= 0);
  }
  [[nodiscard]] sd_bus* get() const { return bus_.get(); }

 private:
  static int onMessage(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const auto is = [&](const char* member) { return sd_bus_message_is_method_call(message, kBus, member) > 0; };
    if (is("Hello")) return sd_bus_reply_method_return(message, "s", ":1.1");
    if (is("AddMatch") || is("RemoveMatch")) return sd_bus_reply_method_return(message, "");
    if (sd_bus_message_get_reply_cookie(message, nullptr) >= 0) return 0;  // a call's own handler gets it
    static_cast<BusEnd*>(self)->received(message);
    return 1;
  }

  UniquePointer<sd_bus, sd_bus_close_unref> bus_;
};

/// The connection of a running program, in this thread.
struct ServerEnd {
  ServerEnd() {
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) == 0);
    others.emplace(ends[0]);
    require(sd_bus_new(&program) >= 0 && sd_bus_set_fd(program, ends[1], ends[1]) >= 0);
    require(sd_bus_set_bus_client(program, 1) >= 0 && sd_bus_start(program) >= 0);
    turn();
    require(sd_bus_is_ready(program) > 0);
  }

  /// Until neither side has anything to do.
  void turn() const {
    for (int busy = 1; busy > 0;) {
      const int here = sd_bus_process(program, nullptr);
      const int there = sd_bus_process(others->get(), nullptr);
      require(here >= 0 && there >= 0);
      busy = here + there;
    }
  }

  int ends[2]{};
  std::optional<BusEnd> others;
  sd_bus* program = nullptr;
};

/// One life of a program that others steer. What it holds for them is checked as it goes.
class SteeredProgram {
 public:
  SteeredProgram(ServerEnd& end, Input& input) : end_(end), input_(input), control_(end.program) {
    end.others->received = [this](sd_bus_message* message) { answer(message); };
    control_.offer({
        .awake = [this] { return status_; },
        .start = [this](std::optional<RunningProgram::Time> until, bool) -> Result<void, std::string> {
          require(!until || (secondsOf(until) > 0 && secondsOf(until) <= kLatestTime));
          return outcome();
        },
        .stop = [] {},
        .extend = [this](std::chrono::seconds by) -> Result<void, std::string> {
          require(by > std::chrono::seconds(0) && by <= std::chrono::hours(24 * 366));
          return outcome();
        },
        .hold = [this](const std::string& name, bool) -> Result<std::uint32_t, std::string> {
          // A cut character may become a longer one.
          require(!name.empty() && name.size() <= 180 && printableLine(name) == name);
          if (input_.ConsumeBool()) return tl::unexpected(textFrom(input_));
          held_.push_back(++lastHolder_);
          return lastHolder_;
        },
        .letGo = [this](std::uint32_t holder) { require(std::erase(held_, holder) == 1); },
        .usage = [this]() -> const UsageStates& { return usage_; },
        .refreshUsage = [] {},
        .readings = [this]() -> const SystemReadings& { return readings_; },
    });
  }
  SteeredProgram(const SteeredProgram&) = delete;
  SteeredProgram& operator=(const SteeredProgram&) = delete;

  ~SteeredProgram() {
    end_.turn();
    // Every call was answered, and with everybody gone nothing is held.
    require(unanswered_ == 0);
    for (const char* const name : kCallers) leave(kBus, name, "sss");
    end_.turn();
    require(held_.empty());
  }

  void live() {
    for (int step = 0; step < 100 && input_.remaining_bytes() > 0; ++step) {
      switch (input_.ConsumeIntegralInRange(0, 8)) {
        case 8:
          changeFigures();
          break;
        case 0:
          leave(pick(input_, kSenders), pick(input_, kCallers), input_.ConsumeBool() ? "sss" : otherTypes(input_));
          break;
        case 1:
          change();
          break;
        case 2:
          end_.turn();
          break;
        default:
          call();
      }
    }
  }

 private:
  static constexpr std::array kCallers{":1.7", ":1.8", ":1.9"};
  static constexpr std::array kSenders{kBus, ":1.7"};

  [[nodiscard]] Result<void, std::string> outcome() {
    if (input_.ConsumeBool()) return tl::unexpected(textFrom(input_));
    return {};
  }

  void call() {
    const Member& method = pick(input_, kMethods);
    BusMessage call;
    require(sd_bus_message_new_method_call(end_.others->get(), call.out(), ":1.1", kProgramPath, method.interface,
                                           method.name) >= 0);
    sd_bus_message_set_sender(call.get(), pick(input_, kCallers));
    if (method.type == "s" || method.type == "ss") {  // of the properties, mostly of those there are
      const bool figures = input_.ConsumeBool();
      sd_bus_message_append_basic(
          call.get(), SD_BUS_TYPE_STRING,
          figures ? pick(input_, kFigures).interface : pick(input_, kKnownProperties).interface);
      append(call.get(), method.type.substr(1), input_);
    } else {
      append(call.get(), input_.ConsumeBool() ? std::string(method.type) : otherTypes(input_), input_);
    }
    ++unanswered_;
    const auto answered = [](sd_bus_message*, void* self, sd_bus_error*) {
      --static_cast<SteeredProgram*>(self)->unanswered_;
      return 1;
    };
    require(sd_bus_call_async(end_.others->get(), nullptr, call.get(), answered, this, 0) >= 0);
  }

  /// Somebody tells that `name` is gone. It is the bus only when it says so.
  void leave(const char* sender, const char* name, const std::string& types) {
    BusMessage signal;
    require(sd_bus_message_new_signal(end_.others->get(), signal.out(), "/org/freedesktop/DBus", kBus,
                                      "NameOwnerChanged") >= 0);
    sd_bus_message_set_sender(signal.get(), sender);
    if (types == "sss") {
      sd_bus_message_append(signal.get(), "sss", name, name, "");
    } else {
      sd_bus_message_append_basic(signal.get(), SD_BUS_TYPE_STRING, name);
      append(signal.get(), types, input_);
    }
    require(sd_bus_send(end_.others->get(), signal.get(), nullptr) >= 0);
  }

  /// Nothing is told when nothing changed.
  void change() {
    end_.turn();
    const AwakeStatus before = status_;
    status_ = {.active = input_.ConsumeBool(), .own = input_.ConsumeBool(), .endsAt = timeOf(numberFrom(input_))};
    status_.keepsDisplayOn = input_.ConsumeBool();
    status_.message = textFrom(input_);
    if (input_.ConsumeBool()) status_.holders = {textFrom(input_)};
    if (!status_.active) held_.clear();
    told_ = 0;
    control_.awakeChanged();
    end_.turn();
    require(told_ == (status_ == before ? 0 : 1));
  }

  void changeFigures() {
    end_.turn();
    const UsageState before = usage_[UsageProvider::claude];
    UsageState& state = usage_[UsageProvider::claude];
    state.enabled = input_.ConsumeBool();
    state.snapshot.reset();
    if (input_.ConsumeBool()) state.snapshot = UsageSnapshot{{{textFrom(input_), 50}}};
    told_ = 0;
    control_.usageChanged();
    end_.turn();
    require(told_ == (state == before ? 0 : 1));
    readings_.memoryFailed = input_.ConsumeBool();
    readings_.cpu = static_cast<double>(numberFrom(input_));
    control_.readingsChanged();
    end_.turn();
  }

  void answer(sd_bus_message* message) {
    if (sd_bus_message_is_signal(message, kProperties, "PropertiesChanged") > 0) {
      ++told_;
    } else if (sd_bus_message_is_method_call(message, kBus, "GetNameOwner") > 0) {
      if (input_.ConsumeBool()) {
        sd_bus_reply_method_return(message, "s", pick(input_, kCallers));
      } else {
        sd_bus_reply_method_errorf(message, SD_BUS_ERROR_NAME_HAS_NO_OWNER, "%s", textFrom(input_).c_str());
      }
    }
  }

  ServerEnd& end_;
  Input& input_;
  AwakeStatus status_;
  UsageStates usage_;
  SystemReadings readings_;
  std::vector<std::uint32_t> held_;
  std::uint32_t lastHolder_ = 0;
  int unanswered_ = 0;
  int told_ = 0;
  DbusRemoteControl control_;
};

/// The connection of a program that steers: it waits for each answer, so the bus has a thread.
class ClientEnd {
 public:
  ClientEnd() {
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    require(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(sa_family_t)) == 0);  // the kernel names it
    socklen_t length = sizeof address;
    require(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) == 0 && ::listen(listener, 1) == 0);
    const std::string name(&address.sun_path[1], length - offsetof(sockaddr_un, sun_path) - 1);
    program.emplace("unix:abstract=" + name);
    others.emplace(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    ::close(listener);
    std::thread([this] {
      while (sd_bus_process(others->get(), nullptr) >= 0) sd_bus_wait(others->get(), UINT64_MAX);
    }).detach();
  }

  std::optional<DbusRunningProgram> program;
  std::optional<BusEnd> others;
};

/// Properties of right and wrong types; `expected` is what is to be read of them.
void appendStatus(sd_bus_message* reply, Input& input, AwakeStatus& expected) {
  sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "{sv}");
  for (int count = input.ConsumeIntegralInRange(0, 8); count > 0; --count) {
    const Member& property = pick(input, kKnownProperties);
    const std::string type = input.ConsumeBool() ? std::string(property.type) : typeFrom(input);
    const bool isRight = type == property.type;
    sd_bus_message_open_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv");
    const std::string name = isRight || input.ConsumeBool() ? property.name : "." + textFrom(input);
    sd_bus_message_append_basic(reply, SD_BUS_TYPE_STRING, name.c_str());
    sd_bus_message_open_container(reply, SD_BUS_TYPE_VARIANT, type.c_str());
    const std::int64_t number = numberFrom(input);
    const std::string text = textFrom(input);
    if (!isRight) {
      append(reply, type, input);
    } else if (type == "b") {
      appendNumber(reply, SD_BUS_TYPE_BOOLEAN, number);
      (name == "Active" ? expected.active : name == "Own" ? expected.own : expected.keepsDisplayOn) = number % 2 != 0;
    } else if (type == "x") {
      appendNumber(reply, SD_BUS_TYPE_INT64, number);
      expected.endsAt = timeOf(number);
    } else if (type == "s") {
      sd_bus_message_append_basic(reply, SD_BUS_TYPE_STRING, text.c_str());
      expected.message = printableLine(text);
    } else {
      sd_bus_message_append(reply, "as", 1, text.c_str());
      expected.holders.push_back(printableLine(text));
    }
    sd_bus_message_close_container(reply);
    sd_bus_message_close_container(reply);
  }
  sd_bus_message_close_container(reply);
}

/// The same of the figures, of which only what cannot be is known.
void appendFigures(sd_bus_message* reply, Input& input) {
  sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "{sv}");
  for (int count = input.ConsumeIntegralInRange(0, 8); count > 0; --count) {
    const Member& property = pick(input, kFigures);
    const std::string type = input.ConsumeBool() ? std::string(property.type) : typeFrom(input);
    sd_bus_message_open_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv");
    sd_bus_message_append_basic(reply, SD_BUS_TYPE_STRING, property.name);
    appendContainer(reply, SD_BUS_TYPE_VARIANT, type, input);
    sd_bus_message_close_container(reply);
  }
  sd_bus_message_close_container(reply);
}

void requirePossible(const UsageStates& states) {
  for (const auto& [provider, state] : states) {
    if (!state.snapshot) continue;
    require(!state.snapshot->windows.empty() && state.snapshot->windows.size() <= 50);
    for (const UsageWindow& window : state.snapshot->windows) {
      require(window.usedPercent >= 0 && window.usedPercent <= 100 && printableLine(window.title) == window.title);
    }
  }
}

void requirePossible(const SystemReadings& readings) {
  require(!readings.cpu || (*readings.cpu >= 0 && *readings.cpu <= 1));
  require(!readings.temperature || (*readings.temperature > 0 && *readings.temperature < 200));
  if (readings.memory) require(readings.memory->total > 0 && readings.memory->used() <= readings.memory->total);
}

void ask(ClientEnd& end, Input& input) {
  std::optional<AwakeStatus> expected;
  const bool isError = input.ConsumeBool();
  end.others->received = [&](sd_bus_message* call) {
    BusMessage reply;
    if (isError) {
      constexpr std::array kErrors{kRefusedError, SD_BUS_ERROR_SERVICE_UNKNOWN, SD_BUS_ERROR_NAME_HAS_NO_OWNER,
                                   SD_BUS_ERROR_FAILED};
      const std::string message = textFrom(input);
      const sd_bus_error error{pick(input, kErrors), input.ConsumeBool() ? message.c_str() : nullptr, 0};
      require(sd_bus_message_new_method_error(call, reply.out(), &error) >= 0);
    } else {
      require(sd_bus_message_new_method_return(call, reply.out()) >= 0);
      if (input.ConsumeBool()) {
        appendStatus(reply.get(), input, expected.emplace());
      } else if (input.ConsumeBool()) {
        appendFigures(reply.get(), input);
      } else {
        append(reply.get(), otherTypes(input), input);
      }
    }
    require(sd_bus_send(sd_bus_message_get_bus(call), reply.get(), nullptr) >= 0);
  };
  std::optional<RemoteError> error;
  const auto told = [&](const auto& answer) {
    require(answer.has_value() != isError);
    if (isError) error = answer.error();
  };
  switch (input.ConsumeIntegralInRange(0, 7)) {
    case 0:
      told(end.program->hold(textFrom(input) + (input.ConsumeBool() ? "" : "\xE2\x80"), input.ConsumeBool()));
      break;
    case 1:
      told(end.program->start(timeOf(numberFrom(input)), input.ConsumeBool()));
      break;
    case 2:
      told(end.program->act(textFrom(input)));
      break;
    case 3:
      if (const auto states = end.program->usage()) requirePossible(*states);
      break;
    case 4:
      if (const auto readings = end.program->readings()) requirePossible(*readings);
      break;
    default: {
      const auto status = end.program->awake();
      if (isError || expected) told(status);
      if (!status) break;
      if (expected) require(*status == *expected);
      require(printableLine(status->message) == status->message);
      for (const auto& holder : status->holders) require(printableLine(holder) == holder);
    }
  }
  if (error) require(printableLine(error->message) == error->message);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static ServerEnd& serverEnd = *new ServerEnd();
  static ClientEnd& clientEnd = *new ClientEnd();
  Input input(data, size);
  if (input.ConsumeBool()) {
    SteeredProgram(serverEnd, input).live();
  } else {
    ask(clientEnd, input);
  }
  return 0;
}
