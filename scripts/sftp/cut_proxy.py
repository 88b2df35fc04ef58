"""A TCP proxy in front of the test sshd that drops each connection once the server has sent a
given number of bytes through it: a server lost in the middle of a transfer, after the log-on
went through. It writes the port it listens on (127.0.0.1) into STATE/cut.port.

Usage: cut_proxy.py STATE SSHD_PORT [CUT_AFTER_BYTES=262144]
"""
import os
import socket
import sys
import threading


def pump(source, target, limit, done):
    """Copies source to target; with a limit, stops after that many bytes."""
    sent = 0
    try:
        while limit is None or sent < limit:
            chunk = source.recv(16384 if limit is None else min(16384, limit - sent))
            if not chunk:
                break
            target.sendall(chunk)
            sent += len(chunk)
    except OSError:
        pass
    done.set()


def serve(client, port, cut_after):
    try:
        server = socket.create_connection(("127.0.0.1", port), 10)
    except OSError:
        client.close()
        return
    done = threading.Event()
    for source, target, limit in ((client, server, None), (server, client, cut_after)):
        threading.Thread(target=pump, args=(source, target, limit, done), daemon=True).start()
    done.wait()
    for s in (client, server):
        try:
            s.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        s.close()


def main():
    state, port = sys.argv[1], int(sys.argv[2])
    cut_after = int(sys.argv[3]) if len(sys.argv) > 3 else 256 * 1024
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", 0))
    listener.listen(16)
    with open(os.path.join(state, "cut.port.tmp"), "w") as f:
        f.write("%d\n" % listener.getsockname()[1])
    os.rename(os.path.join(state, "cut.port.tmp"), os.path.join(state, "cut.port"))
    while True:
        client, _ = listener.accept()
        threading.Thread(target=serve, args=(client, port, cut_after), daemon=True).start()


if __name__ == "__main__":
    main()
