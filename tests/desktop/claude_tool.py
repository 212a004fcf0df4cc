# SPDX-License-Identifier: MIT
"""A stand-in for the command-line tool whose usage screen is read, for a session's home folder."""

SCRIPT = """#!/bin/sh
# Only for the question that is asked of the real one.
[ "$*" = "--safe-mode --tools  --ax-screen-reader /usage" ] || exit 2
cat <<'SCREEN'
{screen}
SCREEN
exec sleep 60
"""


def install(session, screen):
    """Puts the tool where users have it; it shows `screen` until it is ended."""
    folder = session.folder / ".local" / "bin"
    folder.mkdir(parents=True, exist_ok=True)
    tool = folder / "claude"
    tool.write_text(SCRIPT.format(screen=screen))
    tool.chmod(0o755)
    return tool


def screen(session_used, week_used):
    return f"""Settings: Usage

Current session
{session_used}% used
Resets in 2h 14m

Current week (all models)
{week_used}% used
Resets in 3d 4h

Current week (Opus only)
12% used
Resets in 3d 4h
"""
