#!/usr/bin/python3
# Walks the accessible tree of one running program through AT-SPI, the
# interface screen readers use, and prints it as JSON: one entry per object
# with its role, name, description and whether it is showing.
# Usage: atspi_walk.py <pid>
import json
import sys
import time

import pyatspi


def find(pid):
    desktop = pyatspi.Registry.getDesktop(0)
    seen = []
    for app in desktop:
        if app is None:
            continue
        try:
            seen.append((app.name, app.get_process_id()))
            if app.get_process_id() == pid:
                return app, seen
        except Exception:
            continue
    return None, seen


def walk(node, path, out):
    try:
        states = node.getState()
        entry = {
            "role": node.getRoleName(),
            "name": node.name or "",
            "description": node.description or "",
            "showing": states.contains(pyatspi.STATE_SHOWING),
            "focusable": states.contains(pyatspi.STATE_FOCUSABLE),
            "path": path,
        }
    except Exception as error:
        out.append({"role": "unreadable", "name": str(error), "description": "", "showing": False,
                    "focusable": False, "path": path})
        return
    out.append(entry)
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            walk(child, path + "/" + str(index), out)


def main():
    # Asking for the accessibility bus starts it; a program already running
    # joins it a moment later.
    deadline = time.monotonic() + 15
    app, seen = find(int(sys.argv[1]))
    while app is None and time.monotonic() < deadline:
        time.sleep(0.3)
        app, seen = find(int(sys.argv[1]))
    if app is None:
        print(json.dumps({"error": "the program is not on the accessibility bus", "applications": seen}))
        return 2
    out = []
    walk(app, "", out)
    print(json.dumps(out))
    return 0


sys.exit(main())
