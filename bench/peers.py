# SPDX-License-Identifier: MIT
"""What users have today, each showing memory and processor load every five seconds."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Peer:
    name: str
    package: str
    command: tuple  # {folder} is where its file is
    file: tuple = ("none", "")  # name and text
    wayland: bool = False


PEERS = (
    Peer(
        "i3status",
        "i3status",
        ("i3status", "-c", "{folder}/i3status"),
        (
            "i3status",
            """
general { interval = 5 output_format = "i3bar" }
order += "memory"
order += "cpu_usage"
memory { format = "%used" }
cpu_usage { format = "%usage" }
""",
        ),
    ),
    Peer(
        "conky",
        "conky-std",
        ("conky", "-q", "-c", "{folder}/conky"),
        (
            "conky",
            """
conky.config = { update_interval = 5, own_window = true, double_buffer = true, total_run_times = 0 }
conky.text = [[$mem $cpu]]
""",
        ),
    ),
    Peer(
        "polybar",
        "polybar",
        ("polybar", "-q", "-c", "{folder}/polybar", "bar"),
        (
            "polybar",
            """
[bar/bar]
modules-right = memory cpu
font-0 = DejaVu Sans:size=10
[module/memory]
type = internal/memory
interval = 5
[module/cpu]
type = internal/cpu
interval = 5
""",
        ),
    ),
    Peer(
        "waybar",
        "waybar",
        ("env", "GDK_BACKEND=wayland", "waybar", "-c", "{folder}/waybar"),
        ("waybar", '{"modules-right": ["memory", "cpu"], "memory": {"interval": 5}, "cpu": {"interval": 5}}'),
        wayland=True,
    ),
    Peer("caffeine-indicator", "caffeine", ("caffeine-indicator",)),  # shows no figures; keeps the machine awake
)


def start(session, peer, **options):
    folder = session.folder / "config"
    name, text = peer.file
    (folder / name).write_text(text)
    return session.start([part.format(folder=folder) for part in peer.command], **options)
