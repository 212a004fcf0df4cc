// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/pty_terminals.h"

#include "platform/contracts/pseudo_terminal_contract.h"
#include "platform/linux/terminal/session_processes.h"

namespace nimbo::terminal_contract {
namespace {

std::unique_ptr<PseudoTerminals> linuxTerminals() { return std::make_unique<PtyTerminals>(procfsTerminalSystem()); }

std::unique_ptr<TerminalWorld> linuxWorld() { return std::make_unique<RealTerminals<linuxTerminals>>(); }

INSTANTIATE_TEST_SUITE_P(Linux, PseudoTerminalContract, testing::Values(linuxTerminals));
INSTANTIATE_TEST_SUITE_P(Linux, TerminalProgramContract, testing::Values(linuxWorld));

}  // namespace
}  // namespace nimbo::terminal_contract
