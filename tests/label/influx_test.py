#!/usr/bin/env python3
"""A watch's points in a real InfluxDB, counted in and out, and read back by their names.

influx_test.py INFLUXD TOOL SIMULATOR PLANT WORK_DIR [SECONDS]
"""
import csv
import json
import os
import re
import shutil
import subprocess
import sys
import time
import urllib.error
import urllib.parse
import urllib.request

influxd, tool, simulator, plant, work = sys.argv[1:6]
seconds = float(sys.argv[6]) if len(sys.argv) > 6 else 3
shutil.rmtree(work, ignore_errors=True)
os.makedirs(work)
os.chdir(work)
started = []

CONFIG = f"""
reporting-disabled = true
bind-address = "127.0.0.1:0"
[meta]
dir = "{work}/meta"
[data]
dir = "{work}/data"
wal-dir = "{work}/wal"
[http]
bind-address = "127.0.0.1:0"
log-enabled = false
"""
LABELS = {"format": 1, "labels": [
    {"name": 'Temp, oven=1 "top" a\\b', "type": "4", "at": 0, "view": "s16", "sim": "const(-7)"},
    {"name": "On", "type": "1", "at": 8, "view": "bool", "sim": "const(1)"},
    {"name": "Name", "type": "10", "at": 100, "view": "text", "sim": 'const(a "b", c=d e)'},
    {"name": "Large", "type": "8", "at": 400, "view": "s64", "sim": "const(-9007199254740993)"}]}


def start(command, log):
    process = subprocess.Popen(command, stdout=open(log, "w"), stderr=subprocess.STDOUT)
    started.append(process)
    return process


def found_in(log, pattern):
    end = time.monotonic() + 30
    while time.monotonic() < end:
        match = re.search(pattern, open(log).read())
        if match:
            return match.group(1)
        time.sleep(0.05)
    sys.exit(f"{log}: no {pattern}\n{open(log).read()}")


def ask(query):
    url = f"http://127.0.0.1:{port}/query?" + urllib.parse.urlencode({"db": "plant", "q": query, "epoch": "ns"})
    answer = json.load(urllib.request.urlopen(urllib.request.Request(url, method="POST"), timeout=60))
    result = answer["results"][0]
    if "error" in result:
        sys.exit(f"{query}: {result['error']}")
    return result.get("series", [])


def put(lines):
    """As a collector does: a few thousand lines at a time."""
    for at in range(0, len(lines), 5000):
        url = f"http://127.0.0.1:{port}/write?db=plant&precision=ns"
        body = "".join(lines[at:at + 5000]).encode()
        try:
            assert urllib.request.urlopen(urllib.request.Request(url, body), timeout=60).status == 204
        except urllib.error.HTTPError as error:
            sys.exit(f"the database refuses lines: {error.read().decode()}")


def watched(labels, port_of_controller, *options):
    command = [tool, "watch", "*", "-l", labels, "-t", f"127.0.0.1:{port_of_controller}", "-o", "influx", *options]
    done = subprocess.run(command, capture_output=True, text=True, timeout=seconds + 60)
    assert done.returncode == 0, done.stderr
    assert all(re.match("[EWID]! ", line) for line in done.stderr.splitlines()), done.stderr
    return done.stdout.splitlines(keepends=True)


def controller(labels, log):
    start([simulator, "-l", labels, "-p", "0", "-q"], log)
    return found_in(log, r"listening .*:(\d+)")


def counted(field):
    return {tuple(one["tags"].items()): one["values"][0][1]
            for one in ask(f'select count("{field}") from vornex group by label')}


try:
    open("influx.conf", "w").write(CONFIG)
    start([influxd, "-config", "influx.conf"], "influxd.log")
    port = found_in("influxd.log", r"Listening on HTTP.*addr=127\.0\.0\.1:(\d+)")
    ask("create database plant")

    # every value of every round is there once
    lines = watched(plant, controller(plant, "sim.log"), "-i", "50", "-d", f"{seconds}s")
    put(lines)
    labels = subprocess.run([tool, "ls", "-l", plant, "--elements", "-o", "csv"], capture_output=True, text=True).stdout
    names = [row["label"] for row in csv.DictReader(labels.splitlines())]
    rounds, rest = divmod(len(lines), len(names))
    assert rest == 0 and rounds >= 10 * seconds, f"{len(lines)} lines of {len(names)} variables in {seconds} s"
    out = {}
    for field in ("value", "bool", "text"):
        for tags, count in counted(field).items():
            assert out.setdefault(dict(tags)["label"], count) == count
    assert out == dict.fromkeys(names, rounds), f"in: {rounds} of each, out: {out}"
    speeds = [line for line in lines if ",label=Speed," in line]
    (series,) = ask("select value from vornex where label='Speed'")
    assert [(int(line.split()[-1]), float(line.split("value=")[1].split()[0])) for line in speeds] == \
        [tuple(row) for row in series["values"]]

    # and keeps its name, its type and its digits
    open("points.json", "w").write(json.dumps(LABELS))
    put(watched("points.json", controller("points.json", "points.log"), "-n", "1"))
    for label, field, value in (('Temp, oven=1 "top" a/b', "value", -7), ("On", "bool", True),
                                ("Name", "text", 'a "b", c=d e'), ("Large", "integer", -9007199254740993)):
        (series,) = ask(f"select last(\"{field}\") from vornex where label='{label}'")
        assert series["values"][0][1] == value, (label, series)
    print(f"{len(lines)} points of {len(names)} variables in {rounds} rounds: all of them in and out")
finally:
    for process in started:
        process.terminate()
    for process in started:
        process.wait(30)
