"""A TCP proxy in front of the test sshd that, once the server has sent a given number of bytes
through a connection (the log-on went through, a transfer is under way), either drops the
connection ("cut": a server lost in the middle of a transfer) or stops passing anything on while
keeping it open ("stall": a server or network gone silent). It writes the port it listens on
(127.0.0.1) into STATE/MODE.port.

Usage: cut_proxy.py STATE SSHD_PORT cut|stall [AFTER_BYTES=262144]
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


def serve(client, port, cut_after, stall):
    try:
        server = socket.create_connection(("127.0.0.1", port), 10)
    except OSError:
        client.close()
        return
    upstream, downstream = threading.Event(), threading.Event()
    threading.Thread(target=pump, args=(client, server, None, upstream), daemon=True).start()
    threading.Thread(target=pump, args=(server, client, cut_after, downstream),
                     daemon=True).start()
    # cut: close as soon as either direction ends. stall: the server's answers stop at the
    # limit, but the connection stays open until the client gives up.
    while not upstream.is_set() and (stall or not downstream.is_set()):
        upstream.wait(0.05)
    for s in (client, server):
        try:
            s.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        s.close()


def main():
    state, port, mode = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    cut_after = int(sys.argv[4]) if len(sys.argv) > 4 else 256 * 1024
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", 0))
    listener.listen(16)
    port_file = os.path.join(state, mode + ".port")
    with open(port_file + ".tmp", "w") as f:
        f.write("%d\n" % listener.getsockname()[1])
    os.rename(port_file + ".tmp", port_file)
    while True:
        client, _ = listener.accept()
        threading.Thread(target=serve, args=(client, port, cut_after, mode == "stall"),
                         daemon=True).start()


if __name__ == "__main__":
    main()
