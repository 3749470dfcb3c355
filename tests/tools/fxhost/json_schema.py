#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# usage: json_schema.py FXHOST DRIVER SCHEMA [FXGATE]
# Runs every command that prints JSON and compares the output with the documented schema: the types of
# members, their order, and that none is unknown or never printed. Every command has its entry.

import json
import os
import re
import subprocess
import sys
import tempfile

import jsonschema

# The entry of the schema, and command lines; those below use the files of those above.
COMMANDS = [
    ("types", "types"),
    ("check", "check D100 X18 D8200"),
    ("series", "series D100 -n 3"),
    ("plan", "plan D0:4 D8 M0"),
    ("read", "read D0:2 M0 32CV200"),
    ("read", "read D0 --link sim:?faults=nak=1"),
    ("read", "read D20 --as float"),
    ("read", "read speed D0 --tags tags.csv"),
    ("write", "write speed=5 --tags tags.csv"),
    ("log", "log speed D0 -n 1 --tags tags.csv"),
    ("watch", "watch D0:2 M0 -n 2 -l 1"),
    ("write", "write D100:2=5,-6 M100=on D102.3=1 K2M0=7"),
    ("monitor", "monitor D0:2"),
    ("stats", "stats D0:4 -n 2"),
    ("stats", "stats D0:4 -n 5 --period D0=1"),
    ("doctor", "doctor"),
    ("dump", "dump plc.csv D100:4"),
    ("backup", "backup backup.csv"),
    ("compare", "compare other.csv"),
    ("compare", "compare other.csv --link sim:?faults=nak=1"),
    ("compare", "restore other.csv --dry-run"),
    ("restore", "restore plc.csv --yes"),
    ("recipe", "recipe upload recipe.csv D100:4"),
    ("recipe", "recipe download recipe.csv"),
    ("record", "record session.jsonl D0 -n 2"),
    ("replay", "replay session.jsonl"),
    ("ports", "ports"),
    ("tags", "tags check tags.csv"),
    ("tags", "tags export tags.csv --to comments --output comments.csv"),
    ("tags", "tags import comments.csv --output imported.csv"),
    ("log", "log D0:2 M0 -n 2 -l 1"),
    ("log", "log D0 -n 1 --link sim:?faults=nak=1"),
]

WITHOUT_JSON = {"demo", "help"}


def commands_of(fxhost):
    """As the help lists them."""
    text = subprocess.run([fxhost, "--help"], stdout=subprocess.PIPE, check=True).stdout.decode()
    return set(re.findall(r"^  ([a-z]+)  ", text[text.index("\nCommands"):], re.MULTILINE)) - WITHOUT_JSON


class Checker:
    """Members are known, in the order of "properties", and each one of the schema is printed somewhere."""

    def __init__(self, schema):
        self.definitions = schema["$defs"]
        self.never_printed = set()
        self.collect(schema)

    def collect(self, schema):
        if isinstance(schema, list):
            for item in schema:
                self.collect(item)
        elif isinstance(schema, dict):
            for name in schema.get("properties", {}):
                self.never_printed.add((id(schema["properties"]), name))
            for name, item in schema.items():
                if name != "ports":  # a machine may have none
                    self.collect(item)

    def check(self, value, schema, where):
        while "$ref" in schema:
            schema = self.definitions[schema["$ref"].rsplit("/", 1)[1]]
        if "oneOf" in schema:  # told apart by the first member
            self.check(value, next(one for one in schema["oneOf"]
                                   if one["properties"]["event"]["const"] == value["event"]), where)
        elif isinstance(value, list):
            for item in value:
                self.check(item, schema["items"], where)
        elif isinstance(value, dict) and "properties" in schema:
            known = schema["properties"]
            ordered = [name for name in known if name in value]
            if list(value) != ordered:
                raise SystemExit(f"{where}: has {list(value)}, documented are {list(known)}")
            for name, member in value.items():
                self.never_printed.discard((id(known), name))
                self.check(member, known[name], f"{where}.{name}")


def documents(text):
    """One document, or one on each line."""
    if text.startswith(("[", "{\n")):
        return [json.loads(text)]
    return [json.loads(line) for line in text.splitlines()]


def served(fxhost, folder, environment):
    """What serve prints for a supervisor: of a PLC that is slow at first, of one that refuses, of one that is off."""
    lines = []
    for faults, timeout, wanted in (("delay:1500@1", "5s", {"stale", "good", "alive", "written"}),
                                    ("nak=1", "5s", {"bad", "alive"}), ("silence=1", "50", {"down"})):
        with subprocess.Popen([fxhost, "serve", "--link", f"sim:?faults={faults}", "--timeout", timeout, "--tags",
                               "served.csv"], cwd=folder, env=environment, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, text=True) as process:
            process.stdin.write('{"write":{"id":"1","tag":"speed","value":5}}\nwrong\n')
            process.stdin.flush()
            for line in process.stdout:
                lines.append(json.loads(line))
                wanted -= {*lines[-1], lines[-1]["event"], lines[-1].get("link")}
                if not wanted:
                    break
            process.stdin.close()
    return lines


def gateway_status(fxgate, fxhost, folder, environment):
    """What fxgate status --json prints of a gateway with both forms and no broker."""
    with open(os.path.join(folder, "fxgate.toml"), "w", encoding="utf-8") as toml:
        toml.write(f'[gateway]\nname = "g"\nstore = "g.db"\nfxhost = "{fxhost}"\n[broker]\nurl = "mqtt://localhost:1"\n'
                   '[plain]\n[sparkplug]\ngroup = "p"\n[link.press1]\nlink = "sim:"\ntags = "served.csv"\n')
    with subprocess.Popen([fxgate, "run", "--config", "fxgate.toml", "--socket", "control"], cwd=folder,
                          env=environment, stderr=subprocess.PIPE, text=True) as process:
        started = process.stderr.readline()
        while started and "started" not in started:
            started = process.stderr.readline()
        status = subprocess.run([fxgate, "status", "--json", "--socket", "control"], cwd=folder, check=True,
                                stdout=subprocess.PIPE).stdout
        process.terminate()
        process.stderr.read()
    return json.loads(status)


def main(fxhost, driver, schema_file, fxgate=None):
    with open(schema_file, encoding="utf-8") as file:
        schema = json.load(file)
    if not fxgate:
        del schema["properties"]["status"]
    checker = Checker(schema)
    if missing := commands_of(fxhost) - set(schema["properties"]):
        raise SystemExit(f"no entry in the schema for: {sorted(missing)}")
    environment = dict(os.environ, FX_DRIVER=driver, FX_LINK="sim:")
    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "other.csv"), "w", encoding="utf-8") as other:
            other.write("D100,7\n")
        with open(os.path.join(folder, "tags.csv"), "w", encoding="utf-8") as tags:
            tags.write("name,address,scale,unit,alarm_low\nspeed,D2,0.1,rpm,9999\nagain,D2,,,\n")
        with open(os.path.join(folder, "served.csv"), "w", encoding="utf-8") as tags:
            tags.write("name,address,unit,deadband,period_ms,access,min,max,description\n"
                       "speed,D20,rpm,1,500,rw,0,9,Of the drum\n")
        entry = schema["properties"]["serve"]
        checker.never_printed.discard((id(schema["properties"]), "serve"))
        for document in served(fxhost, folder, environment):
            jsonschema.validate(document, {**entry, "$defs": schema["$defs"]})
            checker.check(document, entry, "serve")
        if fxgate:
            entry = schema["properties"]["status"]
            checker.never_printed.discard((id(schema["properties"]), "status"))
            status = gateway_status(fxgate, fxhost, folder, environment)
            jsonschema.validate(status, {**entry, "$defs": schema["$defs"]})
            checker.check(status, entry, "status")
        for name, line in COMMANDS:
            ended = subprocess.run([fxhost, "--json", "--timestamps", *line.split()], cwd=folder, env=environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False,
                                   timeout=60)
            checker.never_printed.discard((id(schema["properties"]), name))
            printed = documents(ended.stdout.decode())
            if not printed:
                raise SystemExit(f"fxhost {line}: printed nothing")
            entry = schema["properties"][name]
            for document in printed:
                jsonschema.validate(document, {**entry, "$defs": schema["$defs"]})
                checker.check(document, entry, name)
    if checker.never_printed:
        raise SystemExit(f"never printed: {sorted(name for _, name in checker.never_printed)}")


main(*sys.argv[1:])
