#!/usr/bin/env python3
"""How long the program takes from exec to its first window, and what it then holds in memory.

    bench/start.py [BUILD-FOLDER] [RUNS]

Starts QYSettings on a new sample farm and a bare window with ten filled grids in turn, under one virtual
display with a warm cache, and prints the medians. A window counts when the display maps it. Memory is read a
second later: the resident set, and the part of it that is not shared with other programs' files.
"""
import os
import pathlib
import socket
import statistics
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SETTLE = 1.0  # seconds between the window and the reading of memory
PATIENCE = 20.0
MAP_NOTIFY = 19
SUBSTRUCTURE_NOTIFY = 0x80000
EVENT_MASK = 0x800
SMALLEST = 100  # pixels: smaller windows are helpers of the toolkit


class Display:
    """The few words of the display's own language that tell when a window appears."""

    def __init__(self, number):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(f"/tmp/.X11-unix/X{number}")
        self.socket.sendall(struct.pack("<BxHHHHxx", ord("l"), 11, 0, 0, 0))
        head = self.read(8)
        if head[0] != 1:
            raise RuntimeError("the display refused the connection")
        setup = self.read(struct.unpack("<H", head[6:8])[0] * 4)
        vendor, formats = struct.unpack("<H", setup[16:18])[0], setup[21]
        self.root = struct.unpack("<I", setup[32 + (vendor + 3) // 4 * 4 + formats * 8:][:4])[0]
        self.socket.sendall(struct.pack("<BxHIII", 2, 4, self.root, EVENT_MASK, SUBSTRUCTURE_NOTIFY))
        self.forget()

    def read(self, count):
        data = b""
        while len(data) < count:
            part = self.socket.recv(count - len(data))
            if not part:
                raise RuntimeError("the display went away")
            data += part
        return data

    def size(self, window):
        """Width and height, or None for a window that has gone."""
        self.socket.sendall(struct.pack("<BxHI", 14, 2, window))
        while True:
            answer = self.read(32)
            if answer[0] == 0:
                return None
            if answer[0] == 1:
                return struct.unpack("<HH", answer[16:20])

    def forget(self):
        """Drops the events that have come so far."""
        self.size(self.root)

    def wait_for_window(self, deadline):
        while True:
            self.socket.settimeout(max(0.01, deadline - time.monotonic()))
            event = self.read(32)
            at = time.monotonic()
            if event[0] & 0x7F == MAP_NOTIFY:
                size = self.size(struct.unpack("<I", event[8:12])[0])
                if size and min(size) >= SMALLEST:
                    return at


def memory(pid):
    """Resident and private megabytes."""
    values = {}
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        name, amount = line.split(":")
        values[name] = int(amount.split()[0]) / 1024
    return values["Rss"], values["Private_Clean"] + values["Private_Dirty"]


def run(display, command, environment):
    display.forget()
    began = time.monotonic()
    with subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL) as program:
        try:
            shown = display.wait_for_window(began + PATIENCE)
            time.sleep(SETTLE)
            resident, private = memory(program.pid)
        finally:
            program.kill()
    return (shown - began) * 1000, resident, private


def main():
    build = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build").resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 11
    programs = {"QYSettings": build / "bin/QYSettings", "bare window": build / "bin/bench_bare_window"}
    with tempfile.TemporaryDirectory() as work:
        farm = pathlib.Path(work) / "farm"
        subprocess.run([build / "bin/qydata", "new", "--sample", farm], check=True, stdout=subprocess.DEVNULL)
        reader, writer = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x1000x24",
                                   "-nolisten", "tcp"], pass_fds=[writer], stderr=subprocess.DEVNULL)
        try:
            number = os.read(reader, 16).decode().strip()
            environment = {**os.environ, "DISPLAY": f":{number}", "QT_QPA_PLATFORM": "xcb",
                           "QUILLARY_DOCUMENTS": str(farm)}
            environment.pop("WAYLAND_DISPLAY", None)
            display = Display(number)
            results = {name: [] for name in programs}
            for turn in range(runs + 1):
                for name, path in programs.items():
                    result = run(display, [str(path)], environment)
                    if turn > 0:  # the first warms the cache
                        results[name].append(result)
        finally:
            server.terminate()
            server.wait()
    print(f"{'':14}{'first window':>14}{'fastest':>10}{'slowest':>10}{'resident':>11}{'private':>10}")
    for name, measured in results.items():
        times = [result[0] for result in measured]
        resident = statistics.median(result[1] for result in measured)
        private = statistics.median(result[2] for result in measured)
        print(f"{name:14}{statistics.median(times):11.0f} ms{min(times):7.0f} ms{max(times):7.0f} ms"
              f"{resident:8.1f} MB{private:7.1f} MB")


if __name__ == "__main__":
    main()
