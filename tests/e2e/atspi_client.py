#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A screen reader's library at work on the program, in a process of its own: it meets one accessibility bus for good.

atspi_client.py list                             every control: window, role, name, value, as JSON
atspi_client.py press WINDOW ROLE NAME           presses; prints the milliseconds until the answer
atspi_client.py value WINDOW NAME [NUMBER]       reads a slider, or sets it: value, least, most, step
atspi_client.py select WINDOW NAME ROW           selects a row of a list
atspi_client.py hear                             each change of a value that is told: name, value; until it is ended
"""
import json
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


def windows():
    desktop = Atspi.get_desktop(0)
    for n in range(desktop.get_child_count()):
        program = desktop.get_child_at_index(n)
        for m in range(program.get_child_count()):
            window = program.get_child_at_index(m)
            if window.get_state_set().contains(Atspi.StateType.SHOWING):
                yield window


def below(item):
    for n in range(item.get_child_count()):
        child = item.get_child_at_index(n)
        if child and child.get_state_set().contains(Atspi.StateType.SHOWING):
            yield child
            yield from below(child)


def found(window_name, roles, name):
    for window in windows():
        if window.get_name() == window_name:
            for control in below(window):
                if control.get_role_name() in roles and control.get_name() == name:
                    return control
    raise SystemExit(f"no {roles} {name!r} in {window_name!r}")


def row(window, control):
    return {"window": window.get_name(), "role": control.get_role_name(), "name": control.get_name(),
            "focusable": control.get_state_set().contains(Atspi.StateType.FOCUSABLE)}


def list_all():
    print(json.dumps([row(window, control) for window in windows() for control in (window, *below(window))]))


def press(window, role, name):
    action = found(window, (role,), name).get_action_iface()
    names = [Atspi.Action.get_action_name(action, n) for n in range(Atspi.Action.get_n_actions(action))]
    start = time.monotonic()
    Atspi.Action.do_action(action, names.index("Press"))
    print((time.monotonic() - start) * 1000)


def value(window, name, number=None):
    slider = found(window, ("slider",), name).get_value_iface()
    if number is not None:
        Atspi.Value.set_current_value(slider, float(number))
    print(json.dumps([Atspi.Value.get_current_value(slider), Atspi.Value.get_minimum_value(slider),
                      Atspi.Value.get_maximum_value(slider), Atspi.Value.get_minimum_increment(slider)]))


def select(window, name, number):
    Atspi.Table.add_row_selection(found(window, ("list",), name).get_table_iface(), int(number))


def hear():
    def told(event):
        print(json.dumps([event.source.get_name(), Atspi.Value.get_current_value(event.source.get_value_iface())]), flush=True)

    listener = Atspi.EventListener.new(told)
    listener.register("object:property-change:accessible-value")
    print(json.dumps("ready"), flush=True)
    Atspi.event_main()


if __name__ == "__main__":
    {"list": list_all, "press": press, "value": value, "select": select, "hear": hear}[sys.argv[1]](*sys.argv[2:])
