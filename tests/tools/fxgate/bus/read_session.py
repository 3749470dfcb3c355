#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
"""Reads a Sparkplug B session as a host application would, with another protobuf library than the
one that wrote it, and compares what it understood with what was meant.

    read_session.py FOLDER-OF-SPARKPLUG_PB2 PRINT-SESSION"""

import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv[1])
import sparkplug_pb2  # noqa: E402

NOON = 1795348800000
INT64, DOUBLE, BOOLEAN, STRING = 4, 10, 11, 12


def value_of(metric):
    field = metric.WhichOneof("value")
    assert metric.is_null == (field is None), metric
    value = getattr(metric, field) if field else None
    return value - (1 << 64) if field == "long_value" and value >= 1 << 63 else value


def properties_of(metric):
    keys, values = metric.properties.keys, metric.properties.values
    assert len(keys) == len(values)
    return {key: (value.type, getattr(value, value.WhichOneof("value")))
            for key, value in zip(keys, values)}


class Host:
    def __init__(self):
        self.next_sequence, self.born, self.names = None, {}, {}
        self.live, self.history, self.deaths = [], [], []

    def take(self, topic, payload):
        space, group, kind, node, *device = topic.split("/")
        assert (space, group, node) == ("spBv1.0", "plant", "cabinet1")
        assert (len(device) == 1) == kind.startswith("D"), topic
        if kind == "NDEATH":
            assert not payload.HasField("seq")
            assert [metric.name for metric in payload.metrics] == ["bdSeq"]
            self.deaths.append(value_of(payload.metrics[0]))
            return
        assert payload.timestamp >= NOON
        if kind == "NBIRTH":
            self.next_sequence = 0
        assert payload.seq == self.next_sequence, topic
        self.next_sequence = (self.next_sequence + 1) % 256
        for metric in payload.metrics:
            assert metric.timestamp > 0
            self.take_birth(device, metric) if kind.endswith("BIRTH") else self.take_data(metric)
        if kind == "DDEATH":
            assert not payload.metrics
            self.deaths.append(device[0])

    def take_birth(self, device, metric):
        name = "/".join([*device, metric.name])
        assert metric.datatype and name not in self.born
        self.born[name] = (metric.datatype, value_of(metric), properties_of(metric))
        if metric.HasField("alias"):
            assert metric.alias not in self.names
            self.names[metric.alias] = name

    def take_data(self, metric):
        assert not metric.HasField("datatype")
        assert metric.HasField("alias") != metric.HasField("name")
        name = self.names[metric.alias] if metric.HasField("alias") else metric.name
        told = (name, value_of(metric), metric.timestamp - NOON, properties_of(metric))
        (self.history if metric.is_historical else self.live).append(told)


def main():
    host = Host()
    printed = subprocess.run([sys.argv[2]], check=True, capture_output=True, text=True).stdout
    for line in printed.splitlines():
        topic, text = line.split()
        host.take(topic, sparkplug_pb2.Payload.FromString(bytes.fromhex(text)))

    unit = {"engUnit": (STRING, "l/min")}
    assert host.born == {
        "bdSeq": (INT64, 255, {}), "Node Control/Rebirth": (BOOLEAN, False, {}),
        "Dropped": (INT64, 0, {}),
        "press1/flow": (DOUBLE, 12.5, unit), "press1/pump": (BOOLEAN, True, {}),
        "press1/count": (INT64, -2, {}), "press1/batch": (STRING, "A7", {}),
        "press2/flow": (DOUBLE, None, {"Quality": (3, 0), **unit}),
        "press2/pump": (BOOLEAN, True, {}), "press2/count": (INT64, -2, {}),
        "press2/batch": (STRING, "A7", {})}, host.born
    assert host.live[:300] == [("press1/count", -number, number, {}) for number in range(300)]
    assert host.live[300:] == [
        ("press1/flow", 0.1, 0, {"Quality": (3, 500)}), ("press1/pump", False, 1, {}),
        ("press1/batch", "é€", 2, {}), ("press1/count", 4294967295, 3, {}),
        ("press1/flow", None, 4, {"Quality": (3, 0)}), ("Dropped", 12, 402, {})], host.live[300:]
    assert host.history == [("press1/count", 7, -9000, {}),
                            ("press1/count", 8, -8000, {"Repeat": (BOOLEAN, True)})], host.history
    assert host.deaths == [255, "press1", 255], host.deaths


if __name__ == "__main__":
    main()
