"""A scripted FTP server on 127.0.0.1 that misbehaves on purpose, one scenario per port.

Usage: /usr/bin/python3 fault_server.py STATE
Writes "scenario port" lines to STATE/fault.ports once every port listens. Each connection to
a scenario's port truncates STATE/transcripts/<scenario>.txt and records there every line the
client sends, before answering it, so a client that has its reply can read the transcript.

Scenarios: "normal" speaks plain FTP (PASV, PORT, REST, RETR of any name as 10000 bytes,
NLST); the others differ from it as their handlers below say.
"""
import os
import socket
import struct
import sys
import threading
import time

FILE_SIZE = 10000


def file_bytes(name):
    return bytes((i * 7 + len(name)) % 251 for i in range(FILE_SIZE))


class Session:
    greeting = b"220 fault server ready\r\n"

    def __init__(self, conn, transcript):
        self.conn = conn
        self.reader = conn.makefile("rb")
        self.transcript = transcript
        self.data_listener = None
        self.active_target = None
        self.offset = 0

    def send(self, raw):
        self.conn.sendall(raw)

    def reply(self, text):
        self.send(text.encode("latin-1") + b"\r\n")

    def run(self):
        self.send(self.greeting)
        while True:
            line = self.reader.readline()
            if not line:
                return
            # Telnet IP and synch in front of ABOR are not part of the command.
            line = line.rstrip(b"\r\n").lstrip(b"\xff\xf4\xf2").decode("latin-1")
            self.transcript.write(line + "\n")
            self.transcript.flush()
            verb, _, arg = line.partition(" ")
            handler = getattr(self, "on_" + verb.upper(), None)
            if handler is None:
                self.reply("500 Unknown command.")
            elif handler(arg) is False:
                return

    def on_USER(self, arg):
        self.reply("331 Password required for %s." % arg)

    def on_PASS(self, arg):
        self.reply("230 User logged in.")

    def on_CWD(self, arg):
        self.reply("250 CWD command successful.")

    def on_PWD(self, arg):
        self.reply('257 "/udump" is the current directory')

    def on_TYPE(self, arg):
        self.reply("200 Type set to %s" % arg)

    def on_NOOP(self, arg):
        self.reply("200 NOOP ok.")

    def on_ABOR(self, arg):
        self.reply("226 Abort successful")

    def on_REST(self, arg):
        self.offset = int(arg)
        self.reply("350 Restarting at %s." % arg)

    def on_QUIT(self, arg):
        self.reply("221 Goodbye.")
        return False

    def on_PASV(self, arg):
        self.data_listener = socket.socket()
        self.data_listener.bind(("127.0.0.1", 0))
        self.data_listener.listen(1)
        port = self.data_listener.getsockname()[1]
        self.reply("227 Entering Passive Mode (127,0,0,1,%d,%d)." % (port >> 8, port & 255))

    def on_PORT(self, arg):
        parts = [int(p) for p in arg.split(",")]
        self.active_target = (".".join(map(str, parts[:4])), parts[4] * 256 + parts[5])
        self.reply("200 PORT command successful.")

    def open_data(self):
        if self.data_listener is not None:
            self.data_listener.settimeout(10)
            data, _ = self.data_listener.accept()
            self.data_listener.close()
            self.data_listener = None
            return data
        return socket.create_connection(self.active_target, timeout=10)

    def send_data(self, payload, preliminary):
        self.reply(preliminary)
        data = self.open_data()
        data.sendall(payload)
        data.close()
        self.reply("226 Transfer complete.")

    def on_RETR(self, arg):
        payload = file_bytes(arg)[self.offset:]
        self.offset = 0
        self.send_data(payload, "150 Opening BINARY mode data connection for %s (%d bytes)"
                       % (arg, FILE_SIZE))

    def on_NLST(self, arg):
        self.send_data(b"ora_1234.trc\r\nora_1234_extra.trc\r\n",
                       "150 Opening ASCII mode data connection for file list")


class Greeting421(Session):
    greeting = b"421 Too many users, try again later.\r\n"

    def run(self):
        self.send(self.greeting)


class Silent(Session):
    def run(self):
        while self.reader.readline():
            pass


class Mid421(Session):
    def on_CWD(self, arg):
        self.reply("421 Timeout (10 seconds): closing control connection.")
        return False


class PasvNoParenthesis(Session):
    def on_PASV(self, arg):
        self.reply("227 Entering Passive Mode 127,0,0,1,4,1")


class PasvFewCommas(Session):
    def on_PASV(self, arg):
        self.reply("227 Entering Passive Mode (127,0,0,1,4).")


class DataDrop(Session):
    def on_RETR(self, arg):
        self.reply("150 Opening BINARY mode data connection for %s (100000 bytes)" % arg)
        data = self.open_data()
        data.sendall(b"x" * 8192)
        # A reset rather than an orderly end: the client sees a receive error.
        data.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        data.close()
        self.reply("426 Connection closed; transfer aborted.")


class LongLine(Session):
    greeting = b"220 " + b"x" * 3000 + b"\r\n"


class NulBytes(Session):
    greeting = b"220 Hel\0lo\r\n"

    def on_USER(self, arg):
        self.send(b"331 Pass\0word required\r\n")


class ContinuationWithoutCode(Session):
    # "2024 maintenance..." starts with a digit but is no reply code: only "220 " ends it.
    greeting = (b"220-Welcome\r\n to the\r\n fault server\r\n2024 maintenance window: Saturday\r\n"
                b"220-2\r\n220 Ready\r\n")

    def on_PWD(self, arg):
        self.send(b'257-"/udump" is the current directory\r\n and more\r\n257 End\r\n')


class RestRefused(Session):
    """Takes no REST; RETR sends 1000 numbered lines ("line 00000\n" ...) from the start."""
    lines = b"".join(b"line %05d\n" % i for i in range(1000))

    def on_REST(self, arg):
        self.reply("502 REST command not implemented.")

    def on_RETR(self, arg):
        self.send_data(self.lines, "150 Opening BINARY mode data connection for %s (%d bytes)"
                       % (arg, len(self.lines)))


class HostileListing(Session):
    """NLST of SESSION*.trc lists one name that would leave the local directory."""
    names = {"1": "../1_evil.trc", "2": "2/evil.trc", "3": "3\\evil.trc", "4": "4_..trc"}

    def on_NLST(self, arg):
        name = self.names.get(arg.split("*")[0], "")
        self.send_data(name.encode("latin-1") + b"\r\n",
                       "150 Opening ASCII mode data connection for file list")


class PasvBlanks(Session):
    """Blanks around the numbers of the 227 reply, as some servers write it."""

    def on_PASV(self, arg):
        self.data_listener = socket.socket()
        self.data_listener.bind(("127.0.0.1", 0))
        self.data_listener.listen(1)
        port = self.data_listener.getsockname()[1]
        self.reply("227 Entering Passive Mode (127,0,0,1, %d, %d)" % (port >> 8, port & 255))


class PasvRefused(Session):
    """Neither EPSV (unknown) nor PASV: only active data connections."""

    def on_PASV(self, arg):
        self.reply("502 Passive mode not allowed.")


class Extended(Session):
    """EPSV and EPRT (RFC 2428), for a client that reached us over IPv6."""

    def on_EPSV(self, arg):
        self.data_listener = socket.socket()
        self.data_listener.bind(("127.0.0.1", 0))
        self.data_listener.listen(1)
        port = self.data_listener.getsockname()[1]
        self.reply("229 Entering Extended Passive Mode (|||%d|)" % port)

    def on_EPRT(self, arg):
        _, proto, address, port, _ = arg.split("|")
        self.active_target = (address, int(port))
        self.reply("200 EPRT command successful.")


class Stranger(Session):
    """Someone else (127.0.0.2) connects to the announced port first and sends junk."""

    def on_PORT(self, arg):
        Session.on_PORT(self, arg)
        stranger = socket.socket()
        stranger.bind(("127.0.0.2", 0))
        stranger.connect(self.active_target)
        stranger.sendall(b"INJECTED BY A STRANGER\n")
        self.stranger = stranger


class TlsRequired(Session):
    def on_USER(self, arg):
        self.reply("530 Non-anonymous sessions must use encryption.")


class TlsSilent(Session):
    """Accepts AUTH TLS, then never answers the client's hello."""

    def on_AUTH(self, arg):
        self.reply("234 AUTH TLS successful")
        while self.conn.recv(4096):
            pass
        return False


class Dribble(Session):
    """A greeting that never ends: one byte now and then."""

    def run(self):
        self.send(b"220-")
        while True:
            time.sleep(0.2)
            self.send(b"x")


class EndlessLine(Session):
    def run(self):
        self.send(b"220 ")
        while True:
            self.send(b"x" * 4096)


class EndlessLines(Session):
    def run(self):
        while True:
            self.send(b"220-still greeting you\r\n" * 100)


class DataStall(Session):
    """Sends a little of the file, then neither data nor a reply: both connections stay open."""

    def on_RETR(self, arg):
        self.reply("150 Opening BINARY mode data connection for %s (%d bytes)" % (arg, FILE_SIZE))
        self.stalled = self.open_data()
        self.stalled.sendall(b"line 1\nline 2\n")
        time.sleep(30)
        return False


class CutOff(Session):
    """Announces 5000 bytes, sends 3000, then drops both connections without a final reply."""

    def on_RETR(self, arg):
        self.reply("150 Opening BINARY mode data connection for %s (5000 bytes)" % arg)
        data = self.open_data()
        data.sendall(b"".join(b"line %05d\n" % i for i in range(300)))
        data.close()
        return False


class EndlessData(Session):
    """Announces 5000 bytes and never stops sending."""

    def on_RETR(self, arg):
        self.reply("150 Opening BINARY mode data connection for %s (5000 bytes)" % arg)
        data = self.open_data()
        while True:
            data.sendall(b"x" * 65536)


SCENARIOS = {
    "normal": Session,
    "normal_active": Session,
    "greeting_421": Greeting421,
    "silent": Silent,
    "mid_421": Mid421,
    "pasv_no_parenthesis": PasvNoParenthesis,
    "pasv_few_commas": PasvFewCommas,
    "data_drop": DataDrop,
    "long_line": LongLine,
    "nul_bytes": NulBytes,
    "continuation_without_code": ContinuationWithoutCode,
    "rest_refused": RestRefused,
    "hostile_listing": HostileListing,
    "pasv_blanks": PasvBlanks,
    "pasv_refused": PasvRefused,
    "extended": Extended,
    "stranger": Stranger,
    "tls_required": TlsRequired,
    "tls_silent": TlsSilent,
    "dribble": Dribble,
    "endless_line": EndlessLine,
    "endless_lines": EndlessLines,
    "data_stall": DataStall,
    "cut_off": CutOff,
    "endless_data": EndlessData,
}


def serve(name, listener, state):
    while True:
        conn, _ = listener.accept()
        path = os.path.join(state, "transcripts", name + ".txt")
        transcript = open(path, "w")

        def run(conn=conn, transcript=transcript):
            try:
                SCENARIOS[name](conn, transcript).run()
            except OSError:
                pass
            finally:
                transcript.close()
                conn.close()

        threading.Thread(target=run, daemon=True).start()


def main():
    state = sys.argv[1]
    lines = []
    threads = []
    for name in SCENARIOS:
        listener = socket.socket()
        listener.bind(("127.0.0.1", 0))
        listener.listen(8)
        lines.append("%s %d\n" % (name, listener.getsockname()[1]))
        threads.append(threading.Thread(target=serve, args=(name, listener, state), daemon=True))
    for thread in threads:
        thread.start()
    tmp = os.path.join(state, "fault.ports.tmp")
    with open(tmp, "w") as f:
        f.writelines(lines)
    os.rename(tmp, os.path.join(state, "fault.ports"))
    threading.Event().wait()


if __name__ == "__main__":
    main()
