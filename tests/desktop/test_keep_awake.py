# SPDX-License-Identifier: MIT
"""Keep Awake as the services of the system see it: what is held during a session, and that nothing
is held any more when it has ended, however it ended."""

import signal
import unittest

from nimbo_desktop import SLOW, Notifications, turn_for, wait_until
from power_services import Logind, gnome_session, plasma_policy_agent, power_management, screen_saver
from program import DesktopTest, armed_timers

SYSTEM = "Nimbo — keep computer awake while work continues"
DISPLAY = "Nimbo — keep display on"
DELAY = ("sleep", "Nimbo", "Nimbo pauses its readings", "delay")  # held at all times, see the sleep tests
SLEEP_BLOCK = ("sleep:idle", "Nimbo", SYSTEM, "block")  # by an old systemd, see the tests of the idle daemons
IDLE_BLOCK = ("idle", "Nimbo", DISPLAY, "block")
SECOND = SLOW  # in which the machine must be free again


class KeepAwakeTest(DesktopTest):
    """Steers through the tray, without any window."""

    def launch(self, **settings):
        self.session.settings(**settings)
        self.start()
        self.item = self.host.item("nimbo-memory")

    def choose(self, label):
        self.item.choose(label)

    def start_session(self):
        self.choose("Keep awake until stopped")

    def stop_session(self):
        self.choose("Stop awake session")

    def middle_click(self):
        self.item.secondary_activate(1300, 10)


@unittest.skipIf(Logind.missing(), Logind.missing())
class LogindTest(KeepAwakeTest):
    """A desktop without a service of its own."""

    system_bus = True
    desktop = "sway"

    def setUp(self):
        super().setUp()
        self.logind = Logind(self.session)

    def launch(self, **settings):
        super().launch(**settings)
        self.wait_for_inhibitors()

    def wait_for_inhibitors(self, *inhibitors, bound=10 * SLOW):
        expected = sorted([DELAY, *inhibitors])
        wait_until(lambda: self.logind.inhibitors() == expected, f"exactly {expected}", bound)

    def test_session_holds_exactly_one_block(self):
        self.launch()
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK)

    def test_display_choice_adds_the_idle_block(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK, IDLE_BLOCK)

    def test_stop_frees_the_machine(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK, IDLE_BLOCK)
        self.stop_session()
        self.wait_for_inhibitors(bound=SECOND)

    def test_middle_click_starts_and_stops(self):
        self.launch(awakeDuration=7200)
        self.middle_click()
        self.wait_for_inhibitors(SLEEP_BLOCK)
        self.middle_click()
        self.wait_for_inhibitors(bound=SECOND)

    def test_length_of_a_session_is_waited_for_by_the_kernel(self):
        self.launch(awakeDuration=-1, awakeCustomMinutes=1)
        self.middle_click()
        self.wait_for_inhibitors(SLEEP_BLOCK)

        def longest():
            return max(armed_timers(self.program.pid), default=0)

        # The lock is listed before the turn of the loop in which the timer is set has ended.
        wait_until(lambda: longest() > 60 - 5 * SLOW, "the timer")
        self.assertLessEqual(longest(), 60 + 0.1)  # with the timer's leeway

    def test_quitting_frees_the_machine(self):
        self.launch()
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK)
        self.choose("Quit Nimbo")  # there is no display to ask on
        self.assertEqual(self.program.wait_for_exit(), 0)
        wait_until(lambda: self.logind.inhibitors() == [], "no inhibitor", SECOND)
        self.assertIn("no display can be reached", self.program.errors())

    def test_log_out_frees_the_machine_without_a_question(self):
        self.launch()
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK)
        self.assertEqual(self.program.terminate(), 0)
        wait_until(lambda: self.logind.inhibitors() == [], "no inhibitor", SECOND)

    def test_killing_frees_the_machine(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK, IDLE_BLOCK)
        self.program.child.process.send_signal(signal.SIGKILL)
        self.program.wait_for_exit()
        wait_until(lambda: self.logind.inhibitors() == [], "no inhibitor", SECOND)

    def test_restart_of_logind_keeps_the_session(self):
        self.launch()
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK)
        self.logind.stop()
        self.logind.start()

        def kept():
            # logind loses the dash of a reason that it has stored, so the reasons are left out.
            return [(what, who, mode) for what, who, _why, mode in self.logind.inhibitors()]

        wait_until(lambda: kept() == [("sleep", "Nimbo", "delay"), ("sleep:idle", "Nimbo", "block")], "both locks")
        self.stop_session()
        self.wait_for_inhibitors(bound=SECOND)


class NoServiceTest(KeepAwakeTest):
    """Nobody who could keep the machine awake: Plasma without its power management."""

    desktop = "KDE"
    display = True

    def test_refused_start_is_told_on_the_page_and_runs_nothing(self):
        agent = plasma_policy_agent(self.session)
        self.addCleanup(agent.close_sync, None)
        self.session.settings(menuAwake=True)
        self.start()
        self.item = self.host.item("nimbo-awake")
        notifications = Notifications(self.session)
        self.start_session()
        wait_until(lambda: notifications.shown, "the notification")
        title, reason = notifications.shown[0]
        self.assertEqual(title, "Keep Awake")
        off = "Keep Awake is off · click for session controls"
        self.assertEqual(self.item.tooltip, f"Keep Awake: {reason}\n{off}")
        self.item.activate(1300, 10)
        wait_until(lambda: self.item.tooltip == off, "the usual tooltip")
        self.program.wait_for_dashboard()
        text = self.program.wait_for_text(lambda name: name == reason, "the error")
        self.assertRegex(text, r"^The system couldn’t keep your computer awake \(error \d+\)\. Please try again\.$")
        self.assertIn("Ready for your next run", self.program.texts())


class GnomeTest(KeepAwakeTest):
    desktop = "ubuntu:GNOME"

    def setUp(self):
        super().setUp()
        self.service = gnome_session(self.session)

    def wait_for(self, reasons, bound=10 * SLOW):
        wait_until(lambda: self.service.reasons() == sorted(reasons), f"{reasons}", bound)

    def test_session_takes_one_cookie_against_suspending(self):
        self.launch()
        self.start_session()
        self.wait_for([SYSTEM])
        self.assertEqual(self.service.flags(), [4])

    def test_display_choice_takes_a_second_cookie_and_stop_gives_both_back(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for([SYSTEM, DISPLAY])
        self.assertEqual(self.service.flags(), [4, 8])
        self.stop_session()
        self.wait_for([], SECOND)

    def test_restarted_service_gives_its_cookies_again(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for([SYSTEM, DISPLAY])
        self.service.restart()
        self.wait_for([SYSTEM, DISPLAY])
        self.stop_session()
        self.wait_for([], SECOND)

    def test_service_that_is_away_at_the_end_gets_nothing_when_it_is_back(self):
        self.launch()
        self.start_session()
        self.wait_for([SYSTEM])
        self.service.stop()
        self.stop_session()
        self.service.start()
        turn_for(1)
        self.assertEqual(self.service.reasons(), [])

    def test_killing_gives_the_cookies_back(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for([SYSTEM, DISPLAY])
        self.program.child.process.send_signal(signal.SIGKILL)
        self.program.wait_for_exit()
        self.wait_for([], SECOND)

    def test_log_out_gives_the_cookies_back(self):
        self.launch()
        self.start_session()
        self.wait_for([SYSTEM])
        self.assertEqual(self.program.terminate(), 0)
        self.wait_for([], SECOND)


class PlasmaTest(KeepAwakeTest):
    desktop = "KDE"

    def setUp(self):
        super().setUp()
        self.agent = plasma_policy_agent(self.session)
        self.power = power_management(self.session)
        self.saver = screen_saver(self.session)

    def wait_for(self, power, saver, bound=10 * SLOW):
        held = lambda: (self.power.reasons(), self.saver.reasons())  # noqa: E731
        wait_until(lambda: held() == (power, saver), f"{power} and {saver}", bound)

    def test_each_assertion_has_its_service(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for([SYSTEM], [DISPLAY])
        self.stop_session()
        self.wait_for([], [], SECOND)

    def test_display_that_may_sleep_needs_no_screen_saver(self):
        self.launch()
        self.start_session()
        self.wait_for([SYSTEM], [])

    def test_restart_of_either_service_is_followed(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for([SYSTEM], [DISPLAY])
        self.saver.restart()
        self.wait_for([SYSTEM], [DISPLAY])
        self.power.restart()
        self.wait_for([SYSTEM], [DISPLAY])
        self.program.child.process.send_signal(signal.SIGKILL)
        self.program.wait_for_exit()
        self.wait_for([], [], SECOND)


@unittest.skipIf(Logind.missing(), Logind.missing())
class XfceTest(LogindTest):
    """The power manager comes before logind; with everything that logind alone must do."""

    desktop = "XFCE"

    def setUp(self):
        super().setUp()
        self.power = power_management(self.session)

    def wait_for_inhibitors(self, *inhibitors, bound=10 * SLOW):
        power = [why for _what, _who, why, _mode in inhibitors]
        super().wait_for_inhibitors(*inhibitors, bound=bound)
        wait_until(lambda: self.power.reasons() == sorted(power), f"{power} at the power manager", bound)

    # Said once is enough.
    test_deadline_frees_the_machine_on_time = None
    test_quitting_frees_the_machine = None

    def test_restarted_power_manager_gives_its_cookie_again(self):
        self.launch(awakeDisplayOn=True)
        self.start_session()
        self.wait_for_inhibitors(SLEEP_BLOCK, IDLE_BLOCK)
        self.power.restart()
        self.wait_for_inhibitors(SLEEP_BLOCK, IDLE_BLOCK)
        self.stop_session()
        self.wait_for_inhibitors(bound=SECOND)


if __name__ == "__main__":
    unittest.main()
