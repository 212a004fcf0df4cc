# SPDX-License-Identifier: MIT
"""Checks an application bundle for macOS: what it says of itself, its icon, and all code in it.

Usage: check_bundle.py BUNDLE LISTS ARCHITECTURE…   (LISTS has what belongs to the bundle and lies outside it:
NimboWidgets.plist and both lists of entitlements)
"""
import os
import pathlib
import plistlib
import struct
import sys

IDENTIFIER = "com.quellwerk.Nimbo"
GROUPS = "com.apple.security.application-groups"
CPU_TYPES = {0x01000007: "x86_64", 0x0100000C: "arm64"}
ICON_SIDES = {"ic07": 128, "ic08": 256, "ic09": 512, "ic10": 1024, "ic11": 32, "ic12": 64, "ic13": 256, "ic14": 512}
MACH_O, UNIVERSAL = b"\xcf\xfa\xed\xfe", b"\xca\xfe\xba\xbe"  # as they lie in the file
EXECUTABLE, BUILD_VERSION, PLATFORM_MACOS = 2, 0x32, 1

complaints = []


def expect(condition, complaint):
    if not condition:
        complaints.append(complaint)
    return condition


def expect_same(what, found, wanted):
    return expect(found == wanted, f"{what} is {found!r} instead of {wanted!r}")


def slices(contents):
    """The programs in a file, one for each architecture; none when it is no program."""
    if contents[:4] == MACH_O:
        return [contents]
    if contents[:4] != UNIVERSAL:
        return []
    count = struct.unpack_from(">I", contents, 4)[0]
    places = [struct.unpack_from(">2I", contents, 8 + 20 * index + 8) for index in range(count)]
    return [contents[offset : offset + size] for offset, size in places]


def described(program):
    """The architecture, the kind, and the oldest system that it starts on, such as (13, 0)."""
    cpu_type, _, kind, count = struct.unpack_from("<4I", program, 4)
    place, oldest = 32, None
    for _ in range(count):
        command, size, platform, version = struct.unpack_from("<4I", program, place)
        if command == BUILD_VERSION and platform == PLATFORM_MACOS:
            oldest = (version >> 16, version >> 8 & 0xFF)
        place += size
    return CPU_TYPES.get(cpu_type), kind, oldest


def check_code(bundle, executable, minimum, architectures):
    files = [path for path in bundle.rglob("*") if path.is_file() and not path.is_symlink()]
    code = {path: [described(program) for program in slices(path.read_bytes())] for path in files}
    expect(code.get(executable), f"{executable} is no program of macOS")
    for path, programs in code.items():
        found = sorted(str(architecture) for architecture, _, _ in programs)
        if path == executable:
            expect_same(f"{path}: the architectures", found, sorted(architectures))
            expect(os.access(path, os.X_OK), f"{path} may not be executed")
        elif programs:
            expect(set(found) >= set(architectures), f"{path} is only for {found}")
        for architecture, kind, oldest in programs:
            what = f"{path} ({architecture}): the oldest system"
            if path == executable:
                expect_same(what, oldest, minimum)
                expect_same(f"{path} ({architecture}): the kind", kind, EXECUTABLE)
            else:
                expect(oldest is not None and oldest <= minimum, f"{what} is {oldest}, later than the bundle's {minimum}")


def check_icon(path):
    if not expect(path.is_file(), f"{path} is missing"):
        return
    contents = path.read_bytes()
    expect_same(f"{path}: the name and length", struct.unpack(">4sI", contents[:8]), (b"icns", len(contents)))
    place, seen = 8, set()
    while place < len(contents):
        name, size = struct.unpack_from(">4sI", contents, place)
        name = name.decode("latin-1")
        image = contents[place + 8 : place + size]
        if not expect(size > 8 and place + size <= len(contents), f"{path}: {name} ends behind the file"):
            return
        if expect(image[:8] == b"\x89PNG\r\n\x1a\n", f"{path}: {name} is no PNG"):
            side = ICON_SIDES.get(name)
            expect_same(f"{path}: the pixels of {name}", struct.unpack_from(">2I", image, 16), (side, side))
        seen.add(name)
        place += size
    expect_same(f"{path}: the pictures", seen, set(ICON_SIDES))


def check_lists(lists, info):
    """What is signed with the bundle, and what its extension says of itself."""
    group = info.get("NimboAppGroup")
    wanted = {GROUPS: [group] if group else []}
    expect_same("the entitlements", plistlib.loads((lists / "Nimbo.entitlements").read_bytes()), wanted)
    wanted["com.apple.security.app-sandbox"] = True
    expect_same("the widgets' entitlements", plistlib.loads((lists / "NimboWidgets.entitlements").read_bytes()), wanted)

    widgets = plistlib.loads((lists / "NimboWidgets.plist").read_bytes())
    for key in ("CFBundleShortVersionString", "CFBundleVersion", "LSMinimumSystemVersion", "NimboAppGroup"):
        expect_same(f"the widgets' {key}", widgets.get(key), info.get(key))
    expect_same("the widgets' CFBundlePackageType", widgets.get("CFBundlePackageType"), "XPC!")
    expect_same("the widgets' CFBundleIdentifier", widgets.get("CFBundleIdentifier"), IDENTIFIER + ".Widgets")
    point = widgets.get("NSExtension", {}).get("NSExtensionPointIdentifier")
    expect_same("the widgets' extension point", point, "com.apple.widgetkit-extension")


def main(bundle, lists, *architectures):
    contents = pathlib.Path(bundle) / "Contents"
    info = plistlib.loads((contents / "Info.plist").read_bytes())
    expect_same("CFBundleIdentifier", info.get("CFBundleIdentifier"), IDENTIFIER)
    expect_same("CFBundlePackageType", info.get("CFBundlePackageType"), "APPL")
    expect_same("LSUIElement", info.get("LSUIElement"), True)
    schemes = [scheme for kind in info.get("CFBundleURLTypes", []) for scheme in kind["CFBundleURLSchemes"]]
    expect_same("the schemes of links", schemes, ["nimbo"])
    for key in ("NimboAppGroup", "SUFeedURL", "SUPublicEDKey"):
        expect(isinstance(info.get(key, ""), str), f"{key} is no text")
    minimum = tuple(int(part) for part in info.get("LSMinimumSystemVersion", "0.0").split("."))
    check_code(contents, contents / "MacOS" / info.get("CFBundleExecutable", "?"), minimum, architectures)
    check_icon(contents / "Resources" / (info.get("CFBundleIconFile", "?") + ".icns"))
    check_lists(pathlib.Path(lists), info)
    for complaint in complaints:
        print(f"check_bundle: {complaint}", file=sys.stderr)
    return 1 if complaints else 0


sys.exit(main(*sys.argv[1:]))
