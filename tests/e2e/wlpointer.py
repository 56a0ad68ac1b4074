#!/usr/bin/python3
"""A mouse for a headless wlroots compositor (sway), which has none of its own.

Speaks the Wayland wire protocol directly and drives a virtual pointer
(zwlr_virtual_pointer_v1), so a test can click a panel's tray icon and the
menu the panel draws.

    wlpointer.py [--size 1280x800] click:X,Y[,BUTTON] move:X,Y wait:SECONDS ...

BUTTON is left (default), right or middle. The pointer lives until the last
step is done: removing it can close a menu it opened, so end with wait:N to
keep such a menu open while something else looks at it.
"""
import os
import socket
import struct
import sys
import time

BUTTONS = {"left": 0x110, "right": 0x111, "middle": 0x112}


class Wayland:
    def __init__(self):
        path = os.path.join(os.environ["XDG_RUNTIME_DIR"], os.environ.get("WAYLAND_DISPLAY", "wayland-0"))
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.connect(path)
        self.next_id = 2
        self.buffer = b""
        self.globals = {}

    def new_id(self):
        self.next_id += 1
        return self.next_id - 1

    def send(self, obj, opcode, payload=b""):
        size = 8 + len(payload)
        self.sock.sendall(struct.pack("<II", obj, (size << 16) | opcode) + payload)

    @staticmethod
    def string(text):
        data = text.encode() + b"\0"
        return struct.pack("<I", len(data)) + data + b"\0" * (-len(data) % 4)

    def roundtrip(self):
        callback = self.new_id()
        self.send(1, 0, struct.pack("<I", callback))  # wl_display.sync
        while True:
            obj, opcode, payload = self.read()
            if obj == 1 and opcode == 0:  # wl_display.error
                _, code = struct.unpack_from("<II", payload)
                raise SystemExit(f"wayland error {code}: {payload[12:].rstrip(bytes(1)).decode(errors='replace')}")
            if obj == self.registry and opcode == 0:  # wl_registry.global
                name, length = struct.unpack_from("<II", payload)
                interface = payload[8:8 + length - 1].decode()
                (version,) = struct.unpack_from("<I", payload, 8 + length + (-length % 4))
                self.globals[interface] = (name, version)
            if obj == callback and opcode == 0:
                return

    def read(self):
        while len(self.buffer) < 8 or len(self.buffer) < struct.unpack_from("<I", self.buffer, 4)[0] >> 16:
            chunk = self.sock.recv(4096)
            if not chunk:
                raise SystemExit("the compositor closed the connection")
            self.buffer += chunk
        obj, word = struct.unpack_from("<II", self.buffer)
        size = word >> 16
        payload, self.buffer = self.buffer[8:size], self.buffer[size:]
        return obj, word & 0xFFFF, payload

    def bind(self, interface, version):
        if interface not in self.globals:
            raise SystemExit(f"the compositor offers no {interface}")
        name, offered = self.globals[interface]
        obj = self.new_id()
        payload = struct.pack("<I", name) + self.string(interface) + struct.pack("<II", min(version, offered), obj)
        self.send(self.registry, 0, payload)
        return obj

    def connect(self):
        self.registry = self.new_id()
        self.send(1, 1, struct.pack("<I", self.registry))  # wl_display.get_registry
        self.roundtrip()


def main(argv):
    width, height = 1280, 800
    if len(argv) > 1 and argv[1] == "--size":
        width, height = (int(v) for v in argv[2].split("x"))
        argv = argv[2:]
    wl = Wayland()
    wl.connect()
    seat = wl.bind("wl_seat", 1)
    manager = wl.bind("zwlr_virtual_pointer_manager_v1", 1)
    pointer = wl.new_id()
    wl.send(manager, 0, struct.pack("<II", seat, pointer))  # create_virtual_pointer
    wl.roundtrip()

    def now():
        return int(time.monotonic() * 1000) & 0xFFFFFFFF

    def move(x, y):
        wl.send(pointer, 1, struct.pack("<IIIII", now(), x, y, width, height))  # motion_absolute
        wl.send(pointer, 4)  # frame

    def button(code, pressed):
        wl.send(pointer, 2, struct.pack("<III", now(), code, 1 if pressed else 0))
        wl.send(pointer, 4)

    for step in argv[1:]:
        verb, _, rest = step.partition(":")
        values = rest.split(",")
        if verb == "move":
            move(int(values[0]), int(values[1]))
        elif verb == "click":
            move(int(values[0]), int(values[1]))
            wl.roundtrip()
            time.sleep(0.05)
            code = BUTTONS[values[2] if len(values) > 2 else "left"]
            button(code, True)
            wl.roundtrip()
            time.sleep(0.05)
            button(code, False)
        elif verb == "wait":
            wl.roundtrip()
            time.sleep(float(values[0]))
        else:
            raise SystemExit(f"unknown step {step}")
        wl.roundtrip()
    wl.send(pointer, 8)  # destroy
    wl.roundtrip()


if __name__ == "__main__":
    main(sys.argv)
