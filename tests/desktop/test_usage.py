# SPDX-License-Identifier: MIT
"""AI allowances from the sign-ins of the machine to the tray item and the page."""

import json
import pathlib
import unittest

import claude_tool
import codex_service
from nimbo_desktop import SLOW, wait_until
from program import DesktopTest, children


class UsageTest(DesktopTest):
    display = True

    def launch(self, **settings):
        self.path = self.session.settings(refreshInterval=2, **settings)
        self.start()
        self.item = self.host.item("nimbo-ai")

    def wait_for_tooltip(self, part, bound=10 * SLOW):
        wait_until(lambda: part in self.item.tooltip, part, bound)

    def test_without_a_subscription_nothing_is_said(self):
        self.launch()
        self.assertEqual(self.item.tooltip, "AI usage · enable a subscription in Settings")

    def test_claudes_allowances_reach_the_item_and_the_page(self):
        claude_tool.install(self.session, claude_tool.screen(61, 23))
        self.launch(usage__claude=True)
        self.wait_for_tooltip("Weekly: 77% remaining · Resets in 3d 4h")
        self.assertIn("Anthropic · Claude\n", self.item.tooltip)
        self.assertIn(" · Claude Code", self.item.tooltip)
        self.item.activate(1300, 10)
        self.program.wait_for_dashboard()
        for text in ("Anthropic · Claude", "5-hour", "39% left", "Weekly", "77% left", "Opus weekly", "88% left"):
            self.program.wait_for_text(lambda name, text=text: name == text, text)
        bars = [control for control in self.program.controls() if control["role"] == "progress bar"]
        self.assertEqual([bar["name"] for bar in bars], ["Claude 5-hour", "Claude Weekly", "Claude Opus weekly"])
        self.assertEqual(self.descendants(), [], "the tool is gone")

    def test_codexs_allowances_come_with_the_sign_in_of_another_folder(self):
        codex_service.sign_in(self.session, self.session.folder / "elsewhere")
        service = codex_service.CodexService(self.session, codex_service.windows(61, 23))
        self.addCleanup(service.close)
        self.launch(usage__codex=True)
        self.wait_for_tooltip("Weekly: 77% remaining · Resets in 1d 1h", 40 * SLOW)
        self.assertIn("OpenAI · Codex\n", self.item.tooltip)
        [(path, headers)] = service.requests
        self.assertEqual(path, "/backend-api/wham/usage")
        self.assertEqual(headers["Authorization"], f"Bearer {codex_service.TOKEN}")
        self.assertEqual(headers["ChatGPT-Account-Id"], "account")
        arguments = (self.proc() / "cmdline").read_bytes() + (self.proc() / "environ").read_bytes()
        self.assertNotIn(codex_service.TOKEN.encode(), arguments)

    def test_refresh_reads_again(self):
        claude_tool.install(self.session, claude_tool.screen(10, 20))
        self.launch(usage__claude=True)
        self.wait_for_tooltip("Weekly: 80% remaining")
        claude_tool.install(self.session, claude_tool.screen(11, 90))
        self.item.activate(1300, 10)
        self.program.wait_for_dashboard()
        self.program.press("Refresh")
        self.program.wait_for_text(lambda name: name == "10% left", "the new figure")
        self.wait_for_tooltip("Weekly: 10% remaining")

    def test_what_is_missing_is_said(self):
        self.launch(usage__claude=True, usage__codex=True)
        self.wait_for_tooltip("No Codex auth.json found. Sign in with Codex CLI using file credential storage.")
        self.wait_for_tooltip("Install Claude Code and sign in to read usage automatically.")

    def test_switching_off_by_hand_forgets_the_figures(self):
        claude_tool.install(self.session, claude_tool.screen(10, 20))
        self.launch(usage__claude=True)
        self.wait_for_tooltip("Weekly: 80% remaining")
        self.path.write_text(json.dumps({"refreshInterval": 2, "usage.claude": False}))
        wait_until(
            lambda: self.item.tooltip == "AI usage · enable a subscription in Settings", "the empty item", 10 * SLOW
        )

    def test_unreachable_provider_is_told_without_the_token(self):
        folder = self.session.folder / ".codex"
        folder.mkdir()
        (folder / "auth.json").write_text('{"tokens": {"access_token": "very-secret-token"}}')
        # Nothing listens at this proxy, so no test ever talks to the provider.
        self.session.env["https_proxy"] = "http://127.0.0.1:9"
        self.launch(usage__codex=True)
        self.wait_for_tooltip("Couldn’t reach the provider. Check your connection and refresh.", 40 * SLOW)
        self.assertNotIn("very-secret", self.item.tooltip)
        self.assertEqual(self.program.errors(), "")

    def test_quitting_during_a_read_leaves_no_tool_behind(self):
        # A screen that never comes.
        claude_tool.install(self.session, "Loading")
        self.launch(usage__claude=True)
        tool = wait_until(self.descendants, "the tool")
        self.assertEqual(self.program.terminate(), 0)
        for pid in tool:
            self.assertFalse(self.runs(pid), f"process {pid} is left")

    def descendants(self):
        """But for the process of the windows."""
        return [pid for pid in children(self.program.pid) if pid != self.program.windows_pid]

    def proc(self):
        return pathlib.Path("/proc") / str(self.program.pid)

    @staticmethod
    def runs(pid):
        try:
            with open(f"/proc/{pid}/stat") as stat:
                return stat.read().rsplit(")", 1)[1].split()[0] != "Z"
        except FileNotFoundError:
            return False


if __name__ == "__main__":
    unittest.main()
