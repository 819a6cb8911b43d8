"""Looks into the pages of sensorfile plot."""

import json
import re

PATTERN = re.compile(r'<script type="application/json" id="recording">\n(.*?)\n</script>', re.S)


def recording_of(page):
    """What the page's own code is given."""
    found, = PATTERN.findall(page)
    return json.loads(found)


def columns_of(recording, level=0):
    """The values of each column by its name."""
    return {column["name"]: recording["levels"][level]["values"][column["values"]]
            for panel in recording["panels"] for column in panel["columns"]}
