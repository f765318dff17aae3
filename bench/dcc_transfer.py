#!/usr/bin/env python3
"""DCC SEND speed of `tolv --headless` against itself, irssi and WeeChat, through a
private ngircd on 127.0.0.1.

    bench/dcc_transfer.py [--build DIR] [--size-mb 1000] [--pairs tolv:tolv,tolv:irssi,...]

For each pair SENDER:RECEIVER the receiver takes files automatically; the sender offers
one file of random bytes (Tolv in 8192-byte packets, through its send dialog's headless
answer). The figure is MB/s (10^6 bytes) from the first received byte to the full size,
as the received file's size shows it, and the file is compared afterwards. The second
figure counts from the offer's command (for WeeChat, from its start: see WeeChat). While Tolv
receives, its window thread's latency is sampled: a control line on standard input and
the line it prints back, idle before the transfer and during it.

Only processes started here are stopped, by their PID. Every wait is bounded.
"""

import argparse
import hashlib
import os
import pty
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

ESC = "\x1b"
WEECHAT_DELAY = 8  # seconds from WeeChat's start to its offer
TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
STARTED = []  # Popen objects and pids we own


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def wait_for(check, seconds, what):
    end = time.time() + seconds
    while time.time() < end:
        if check():
            return
        time.sleep(0.02)
    raise RuntimeError("timed out waiting for " + what)


def start_ngircd(folder, port):
    conf = os.path.join(folder, "ngircd.conf")
    with open(os.path.join(folder, "motd"), "w") as f:
        f.write("dcc bench\n")
    with open(conf, "w") as f:
        f.write("[Global]\nName = irc.dcc.bench\nInfo = bench\nListen = 127.0.0.1\nPorts = %d\n"
                "MotdFile = %s/motd\n[Limits]\nMaxConnectionsIP = 0\nPingTimeout = 600\n"
                "PongTimeout = 600\n[Options]\nDNS = no\nIdent = no\nPAM = no\n" % (port, folder))
    p = subprocess.Popen(["ngircd", "-n", "-f", conf], stdout=subprocess.DEVNULL,
                         stderr=subprocess.DEVNULL, start_new_session=True)
    STARTED.append(p)

    def up():
        try:
            socket.create_connection(("127.0.0.1", port), timeout=0.3).close()
            return True
        except OSError:
            return False
    wait_for(up, 10, "ngircd")


class Tolv:
    def __init__(self, build, folder, nick, port, downloads):
        self.home = os.path.join(folder, "home-" + nick)
        os.makedirs(self.home)
        with open(os.path.join(self.home, "servers.txt"), "w") as f:
            f.write("Bench\t127.0.0.1\t%d\t\r\n" % port)
        binary = os.path.join(build, "tolv")
        env = dict(os.environ, TOLV_HOME=self.home)
        subprocess.run([binary, "--headless"], input=b"", env=env, stdout=subprocess.DEVNULL, check=True)
        with open(os.path.join(self.home, "settings.reg"), "a") as f:
            f.write('\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n"nick"="%s"\n'
                    '"DCC"=dword:00003010\n"DCCpath"="%s"\n' % (nick, downloads))
        self.p = subprocess.Popen([binary, "--headless", "--connect"], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=env,
                                  start_new_session=True)
        STARTED.append(self.p)
        os.set_blocking(self.p.stdout.fileno(), False)
        self.out = b""
        self.probes = 0

    def read(self):
        try:
            chunk = self.p.stdout.read()
        except BlockingIOError:
            chunk = None
        if chunk:
            self.out += chunk
        return self.out

    def type(self, line):
        self.p.stdin.write((line + "\n").encode())
        self.p.stdin.flush()

    def send(self, nick, path):
        self.type("/dcc send " + nick)
        wait_for(lambda: b"Tolv DCC Sending" in self.read(), 10, "the send dialog")
        self.type(ESC + "answer ok \t8192\t" + path)

    def latency_ms(self):
        """One control line in, its answer out: the window thread's turnaround."""
        marker = b"no channel tab named #probe%d\n" % self.probes
        self.probes += 1
        t = time.perf_counter()
        self.type(ESC + "nicks #probe%d" % (self.probes - 1))
        fd = self.p.stdout.fileno()
        while marker not in self.read():
            if time.perf_counter() - t > 10:
                raise RuntimeError("a probe was not answered")
            select.select([fd], [], [], 0.5)
        return (time.perf_counter() - t) * 1000


class Irssi:
    def __init__(self, folder, nick, port, downloads):
        self.home = os.path.join(folder, "irssi-" + nick)
        os.makedirs(self.home)
        with open(os.path.join(self.home, "config"), "w") as f:
            f.write('servers = ( { address = "127.0.0.1"; chatnet = "b"; port = "%d"; autoconnect = "yes"; } );\n'
                    'chatnets = { b = { type = "IRC"; }; };\n'
                    'settings = { core = { nick = "%s"; user_name = "%s"; real_name = "x"; '
                    'settings_autosave = "no"; }; "irc/dcc" = { dcc_autoget = "yes"; '
                    'dcc_autoget_max_size = "0"; dcc_download_path = "%s"; }; };\n' % (port, nick, nick, downloads))
        pid, self.fd = pty.fork()
        if pid == 0:
            os.environ.update(HOME=self.home, TERM="xterm")
            os.execvp("irssi", ["irssi", "--home=" + self.home])
        STARTED.append(pid)
        self.out = b""

    def read(self):
        while select.select([self.fd], [], [], 0)[0]:
            try:
                chunk = os.read(self.fd, 65536)
            except OSError:
                break
            if not chunk:
                break
            self.out += chunk
        return self.out

    def type(self, line):
        os.write(self.fd, (line + "\r").encode())

    def send(self, nick, path):
        self.type("/dcc send %s %s" % (nick, path))


class WeeChat:
    """weechat-headless, which has no input of its own here (the fifo plugin is a separate
    package): its offer is scheduled at start with /wait, well after both sides are online."""

    def __init__(self, folder, nick, port, downloads, offer=None):
        self.home = os.path.join(folder, "weechat-" + nick)
        os.makedirs(self.home)
        commands = [
            "/set irc.server_default.nicks %s" % nick,
            "/set xfer.file.auto_accept_files on",
            "/set xfer.file.download_path %s" % downloads,
            "/server add b 127.0.0.1/%d -notls" % port,
            "/connect b"]
        if offer:
            commands.append("/wait %d /command -buffer irc.server.b irc /dcc send %s %s" % (WEECHAT_DELAY, offer[0], offer[1]))
        self.p = subprocess.Popen(["weechat-headless", "--dir", self.home, "--run-command", ";".join(commands)],
                                  stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, start_new_session=True)
        STARTED.append(self.p)

    def send(self, nick, path):
        pass  # scheduled at start


def make_peer(kind, build, folder, nick, port, downloads, offer=None):
    if kind == "tolv":
        return Tolv(build, folder, nick, port, downloads)
    if kind == "irssi":
        return Irssi(folder, nick, port, downloads)
    return WeeChat(folder, nick, port, downloads, offer)


def ison(port, nicks):
    with socket.create_connection(("127.0.0.1", port), timeout=5) as s:
        s.sendall(b"NICK dccprobe\r\nUSER p 0 * :p\r\nISON %s\r\nQUIT\r\n" % " ".join(nicks).encode())
        data = b""
        end = time.time() + 5
        while time.time() < end and b" 303 " not in data:
            chunk = s.recv(4096)
            if not chunk:
                break
            data += chunk
        line = next((l for l in data.split(b"\r\n") if b" 303 " in l), b"")
        return all(n.encode() in line.split(b":", 2)[-1].split() for n in nicks)


def digest(path):
    h = hashlib.sha256()
    with open(path, "rb") as f:
        while chunk := f.read(1 << 20):
            h.update(chunk)
    return h.hexdigest()


def run_pair(args, sender_kind, receiver_kind, source, source_digest):
    folder = tempfile.mkdtemp(prefix="dccbench-")
    try:
        port = free_port()
        start_ngircd(folder, port)
        downloads = os.path.join(folder, "downloads")
        os.makedirs(downloads)
        receiver = make_peer(receiver_kind, args.build, folder, "dccrecv", port, downloads + "/")
        sender = make_peer(sender_kind, args.build, folder, "dccsend", port, folder + "/unused/",
                           ("dccrecv", source))
        wait_for(lambda: ison(port, ["dccrecv", "dccsend"]), 30, "both clients online")
        time.sleep(1)  # the clients finish their own start (USERHOST, joins) first
        idle = [receiver.latency_ms() for _ in range(20)] if isinstance(receiver, Tolv) else []
        target = os.path.join(downloads, os.path.basename(source))
        size = os.path.getsize(source)
        issued = time.perf_counter()
        sender.send("dccrecv", source)
        wait_for(lambda: os.path.exists(target) and os.path.getsize(target) > 0, 60 + WEECHAT_DELAY, "the first byte")
        first = time.perf_counter()
        during = []
        while os.path.getsize(target) < size:
            if time.perf_counter() - first > args.timeout:
                raise RuntimeError("transfer stalled at %d bytes" % os.path.getsize(target))
            if isinstance(receiver, Tolv):
                during.append(receiver.latency_ms())
                time.sleep(0.01)
            else:
                time.sleep(0.005)
        done = time.perf_counter()
        same = digest(target) == source_digest
        result = "%s -> %s: %.0f MB/s (%.0f MB/s from the command), file %s" % (
            sender_kind, receiver_kind, size / 1e6 / (done - first), size / 1e6 / (done - issued),
            "identical" if same else "DIFFERENT")
        if idle and during:
            med = lambda xs: sorted(xs)[len(xs) // 2]
            result += "; receiver's input turnaround median %.2f ms idle, %.2f ms during (max %.2f, %d probes)" % (
                med(idle), med(during), max(during), len(during))
        return result
    finally:
        stop_all()
        shutil.rmtree(folder, ignore_errors=True)


def stop_all():
    while STARTED:
        item = STARTED.pop()
        pid = item if isinstance(item, int) else item.pid
        try:
            os.kill(pid, signal.SIGTERM)
        except ProcessLookupError:
            continue
        end = time.time() + 5
        while time.time() < end:
            try:
                if os.waitpid(pid, os.WNOHANG)[0] == pid:
                    break
            except ChildProcessError:
                break
            time.sleep(0.05)
        else:
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default=os.path.join(TOP, "build"))
    parser.add_argument("--size-mb", type=int, default=1000)
    parser.add_argument("--timeout", type=float, default=600)
    parser.add_argument("--pairs", default="tolv:tolv,tolv:irssi,irssi:tolv,weechat:tolv")
    args = parser.parse_args()
    work = tempfile.mkdtemp(prefix="dccbench-src-")
    try:
        source = os.path.join(work, "payload.bin")
        with open(source, "wb") as f:
            for _ in range(args.size_mb):
                f.write(os.urandom(1000000))
        source_digest = digest(source)
        for pair in args.pairs.split(","):
            sender, receiver = pair.split(":")
            needed = {"irssi": "irssi", "weechat": "weechat-headless"}
            missing = [needed[k] for k in (sender, receiver) if k in needed and not shutil.which(needed[k])]
            if missing:
                print("%s -> %s: skipped, %s is not installed" % (sender, receiver, missing[0]), flush=True)
                continue
            try:
                print(run_pair(args, sender, receiver, source, source_digest), flush=True)
            except RuntimeError as e:
                print("%s -> %s: FAILED, %s" % (sender, receiver, e), flush=True)
    finally:
        stop_all()
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
