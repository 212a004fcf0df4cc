# SPDX-License-Identifier: MIT
"""A page that shows the demonstration's pictures beside each other."""

import base64
import html

SCHEMES = ("light", "dark")
SUBJECTS = {
    "tray": "In the tray",
    "menu": "The menu",
    "memory": "Memory",
    "processes": "More processes",
    "ai": "AI allowances",
    "awake": "Keep Awake",
    "running": "Keep Awake, running",
    "quit": "Quitting meanwhile",
    "settings-general": "Settings: General",
    "settings-monitors": "Settings: Monitors",
    "settings-ai-usage": "Settings: AI Usage",
    "settings-keep-awake": "Settings: Keep Awake",
}
PAGE = """<!DOCTYPE html>
<!-- SPDX-License-Identifier: MIT -->
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Nimbo</title>
<style>
  :root {{ color-scheme: light dark;
    --paper: #f6f7f9; --ink: #1d2430; --faint: #5d6878; --line: #d5dae2; --bad: #a3262a }}
  @media (prefers-color-scheme: dark) {{
    :root {{ --paper: #14181e; --ink: #e6e9ee; --faint: #9aa5b4; --line: #343c48; --bad: #ff8f8f }}
  }}
  body {{ margin: 2rem auto; max-width: 1500px; padding: 0 1.5rem; background: var(--paper); color: var(--ink);
    font: 16px/1.5 system-ui, sans-serif }}
  h2 {{ margin: 2.5rem 0 .5rem; font-size: 1.1rem }}
  .row {{ display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 26rem), 1fr)); gap: 1rem }}
  figure {{ margin: 0 }}
  img {{ display: block; max-width: 100%; border: 1px solid var(--line); border-radius: 8px }}
  figcaption, header p {{ color: var(--faint); font-size: .85rem }}
  .missing {{ color: var(--bad); border: 1px dashed; border-radius: 8px; padding: 2rem; text-align: center }}
  .problems {{ color: var(--bad) }}
</style>
<header>
  <h1>Nimbo</h1>
  <p>{summary}</p>
</header>
{problems}
{rows}
</html>
"""


def column(scheme, scale):
    """The last part of the pictures' names."""
    return scheme if scale == 1 else f"{scheme}@{scale}x"


def write(folder, scales, problems):
    """Writes index.html with the folder's pictures in it; returns its path and the names of those that are missing."""
    rows, missing, count = [], [], 0
    for scale in scales:
        for subject, title in SUBJECTS.items():
            figures = []
            for scheme in SCHEMES:
                path = folder / f"{subject}-{column(scheme, scale)}.png"
                count += path.exists()
                if not path.exists():
                    missing.append(path.name)
                figures.append(_figure(path, title, scheme))
            suffix = "" if scale == 1 else f" at scale {scale}"
            rows.append(f"<h2>{title}{suffix}</h2>\n<div class=row>\n" + "\n".join(figures) + "\n</div>")
    listed = "".join(f"<li>{_problem(*problem)}</li>\n" for problem in problems)
    page = folder / "index.html"
    page.write_text(
        PAGE.format(
            summary=f"{count} pictures" + (f", {len(missing)} missing" if missing else ""),
            problems=f"<ul class=problems>\n{listed}</ul>" if listed else "",
            rows="\n".join(rows),
        )
    )
    return page, missing


def _problem(column, picture, reason, screen):
    text = html.escape(f"{column}, {picture}: {reason}")
    return f'{text} (<a href="{screen}">the screen then</a>)' if screen else text


def _figure(path, title, scheme):
    if not path.exists():
        return f"<figure><div class=missing>{path.name} is missing</div></figure>"
    data = base64.b64encode(path.read_bytes()).decode()
    image = f'<a href="{path.name}"><img alt="{title}, {scheme}" src="data:image/png;base64,{data}"></a>'
    return f"<figure>{image}<figcaption>{scheme}</figcaption></figure>"
