// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_host.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <cassert>
#include <cerrno>

namespace nimbo {
namespace {

constexpr mach_port_t kHostPort = 0x1203;
constexpr mach_port_t kTaskPort = 0x103;
constexpr int kFreshInASecond = 10;

FakeHost* host = nullptr;

}  // namespace

FakeHost::FakeHost() {
  assert(host == nullptr);
  host = this;
}

FakeHost::~FakeHost() {
  assert(rights_ == 0);
  host = nullptr;
}

void FakeHost::passASecond() { flavors_.clear(); }

mach_port_t FakeHost::takeRight() {
  if (answer("mach_host_self", kHostPort) != KERN_SUCCESS) return MACH_PORT_NULL;
  ++rights_;
  return kHostPort;
}

kern_return_t FakeHost::giveBack(mach_port_t port) {
  if (port != kHostPort || rights_ == 0) return KERN_INVALID_NAME;
  --rights_;
  return KERN_SUCCESS;
}

kern_return_t FakeHost::answer(const char* call, mach_port_t port) const {
  const auto failure = failures.find(call);
  if (failure != failures.end()) return failure->second;
  return port == kHostPort ? KERN_SUCCESS : MACH_SEND_INVALID_DEST;
}

kern_return_t FakeHost::tell(host_flavor_t flavor, integer_t* words, mach_msg_type_number_t& count) {
  constexpr std::size_t kFirstRevision = 24;
  const bool isOfPages = flavor == HOST_VM_INFO64;
  const std::size_t known = isOfPages ? pagesWords : HOST_CPU_LOAD_INFO_COUNT;
  if (count < std::min(known, kFirstRevision)) return KERN_FAILURE;
  auto& [told, fresh] = flavors_.try_emplace(flavor, Flavor{{}, kFreshInASecond}).first->second;
  if (fresh > 0) {
    --fresh;
    // A newer kernel's record goes on beyond the one that is declared here.
    told.assign(known, -1);
    const void* const record = isOfPages ? static_cast<const void*>(&pages) : &load;
    const std::size_t bytes = isOfPages ? sizeof(pages) : sizeof(load);
    std::memcpy(told.data(), record, std::min(bytes, known * sizeof(integer_t)));
  }
  count = static_cast<mach_msg_type_number_t>(std::min<std::size_t>(count, told.size()));
  std::copy_n(told.begin(), count, words);
  return KERN_SUCCESS;
}

}  // namespace nimbo

using nimbo::host;

mach_port_t mach_task_self_ = nimbo::kTaskPort;

mach_port_t mach_host_self() { return host->takeRight(); }

kern_return_t mach_port_deallocate(ipc_space_t task, mach_port_t name) {
  return task == nimbo::kTaskPort ? host->giveBack(name) : MACH_SEND_INVALID_DEST;
}

kern_return_t host_page_size(host_t port, vm_size_t* size) {
  const kern_return_t answer = host->answer("host_page_size", port);
  if (answer == KERN_SUCCESS) *size = host->pageSize;
  return answer;
}

kern_return_t host_statistics(host_t port, host_flavor_t flavor, host_info_t info, mach_msg_type_number_t* count) {
  const kern_return_t answer = host->answer("host_statistics", port);
  return answer == KERN_SUCCESS && flavor == HOST_CPU_LOAD_INFO ? host->tell(flavor, info, *count) : answer;
}

kern_return_t host_statistics64(host_t port, host_flavor_t flavor, host_info64_t info, mach_msg_type_number_t* count) {
  const kern_return_t answer = host->answer("host_statistics64", port);
  return answer == KERN_SUCCESS && flavor == HOST_VM_INFO64 ? host->tell(flavor, info, *count) : answer;
}

int sysctlbyname(const char* name, void* old, size_t* oldSize, void* /*replacement*/, size_t /*replacementSize*/) {
  const auto value = host->values.find(name);
  if (value == host->values.end()) return errno = ENOENT, -1;
  if (old == nullptr) return *oldSize = value->second.size(), 0;
  const std::size_t copied = std::min(*oldSize, value->second.size());
  std::memcpy(old, value->second.data(), copied);
  const bool fits = copied == value->second.size();
  *oldSize = copied;
  return fits ? 0 : (errno = ENOMEM, -1);
}
