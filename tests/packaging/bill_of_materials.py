#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
"""The bill of materials of packages follows the schema of CycloneDX, names exactly these packages
with their sums, and what their files link is what dpkg-shlibdeps found: two ways to the same names.

  bill_of_materials.py BILL.json PACKAGE.deb..."""

import hashlib
import json
import pathlib
import re
import subprocess
import sys

import jsonschema

# What the schema refers to beside it: names of licences, and signatures, which the bill has none of.
BESIDE = {"http://cyclonedx.org/schema/spdx.schema.json": {"enum": ["MIT"]},
          "http://cyclonedx.org/schema/jsf-0.82.schema.json": False}


def libraries_needed(package):
    text = subprocess.run(["dpkg-deb", "-f", package, "Depends"], check=True, text=True,
                          stdout=subprocess.PIPE).stdout
    return set(re.findall(r"(?:^|, )(lib[\w.+-]+)", text))


bill = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
schema_file = pathlib.Path(__file__).with_name("bom-1.4.schema.json")
schema = json.loads(schema_file.read_text(encoding="utf-8"))
resolver = jsonschema.RefResolver.from_schema(schema, store=BESIDE)
jsonschema.Draft7Validator(schema, resolver=resolver).validate(bill)

components = {component["bom-ref"]: component for component in bill["components"]}
on = {entry["ref"]: entry["dependsOn"] for entry in bill["dependencies"]}
ours = {name for name, component in components.items() if "hashes" in component}
assert ours == set(on["mitsubishi_fx1s"]), ours
assert len(ours) == len(sys.argv[2:]), ours


def used(files, how):
    return {components[ref]["name"] for file in files for ref in on[file["bom-ref"]]
            if {"name": "use", "value": how} in components[ref]["properties"]}


for package in sys.argv[2:]:
    name = pathlib.Path(package).name.split("_")[0]
    content = pathlib.Path(package).read_bytes()
    assert components[name]["hashes"][0]["content"] == hashlib.sha256(content).hexdigest(), name
    files = components[name].get("components", [])
    assert bool(files) == (not name.endswith("-dev")), files
    if files:
        assert used(files, "linked") == libraries_needed(package) - ours, used(files, "linked")
        assert any(dev.startswith("qt") for dev in used(files, "compiled in")), name
    if name == "fx-tools":
        assert "libcli11-dev" in used(files, "compiled in"), name  # headers alone
