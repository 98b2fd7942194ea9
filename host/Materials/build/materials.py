"""Builds the ready materials anew, each as a node type of its own:

    ossa run host/Materials/build/materials.py -- host [NAME...]

writes host/Materials, and the layers of host/NodeTypes/Layer that are groups. Files of what did not change
stay as they are.
"""

import os
import re
import sys

sys.dont_write_bytecode = True
sys.path.append(os.path.dirname(os.path.abspath(__file__)))

import ossa
import fabrics
import layers
import made
import metals
import nature
import stones
import woods
from kit import Material

MATERIALS = [one for book in (metals, stones, woods, fabrics, made, nature) for one in book.MATERIALS]


def without_date(path):
    """What a description says but for when it was written."""
    with open(path, encoding="utf-8") as file:
        return re.sub(r' Date="[^"]*"', "", file.read(), count=1)


def build(path, key, help_text, aliases, make):
    ossa.newProject("Materials", "sphere")
    made = Material(key, help_text, aliases)
    make(made)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    fresh = path + ".new"
    made.write(fresh)
    if os.path.exists(path) and without_date(path) == without_date(fresh):
        os.remove(fresh)
    else:
        os.replace(fresh, path)
        print(key)


def main(folder, names):
    for key, help_text, aliases, make in MATERIALS + layers.LAYERS:
        if names and key.split("/")[-1] not in names:
            continue
        if key.startswith("Layer/"):
            build(os.path.join(folder, "NodeTypes", key.replace(" ", "") + ".xml"), key, help_text, aliases, make)
        else:
            build(os.path.join(folder, "Materials", key + ".xml"), "Materials/" + key, help_text, aliases, make)


main(os.path.abspath(sys.argv[1]), sys.argv[2:])
