// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {

/// One end of a channel between two processes that keeps records whole and in order. Nothing of it waits.
class RecordSocket {
 public:
  enum class Received { record, nothing, ended };

  /// A connected socket of the type SOCK_SEQPACKET.
  explicit RecordSocket(UniqueFd socket) : socket_(std::move(socket)) {}

  /// False when the record does not fit into what the kernel keeps for a reader, or nobody reads any more.
  [[nodiscard]] bool send(const std::string& record) const;
  /// `record` is set when there is one.
  [[nodiscard]] Received receive(std::string& record) const;

  [[nodiscard]] int descriptor() const { return socket_.get(); }

 private:
  UniqueFd socket_;
};

/// Both ends; without a descriptor when the process has no more of them.
[[nodiscard]] std::pair<UniqueFd, UniqueFd> makeRecordChannel();

}  // namespace nimbo
