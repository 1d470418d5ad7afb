# SPDX-License-Identifier: GPL-3.0-or-later
"""The flows that are put under fire, and what each owes its user."""
import dataclasses
import re


def as_it_is(files):
    return files


@dataclasses.dataclass
class Flow:
    name: str
    program: str  # which of the two carries it out
    is_told: bool  # of a failure the user hears; otherwise a line on standard error says so
    seen: callable = as_it_is  # the files as they are compared


ALL = [
    Flow("tag", "fire_flow", True),
]

BY_NAME = {flow.name: flow for flow in ALL}
