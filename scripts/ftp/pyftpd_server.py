"""pyftpdlib on 127.0.0.1, serving STATE/root to the account in STATE/user and STATE/password.

Usage: /usr/bin/python3 pyftpd_server.py STATE
Writes the port it listens on to STATE/pyftpdlib.port once it accepts connections.
"""
import logging
import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import ThreadedFTPServer


def main():
    state = sys.argv[1]
    read = lambda name: open(os.path.join(state, name)).read().strip()
    authorizer = DummyAuthorizer()
    authorizer.add_user(read("user"), read("password"), os.path.join(state, "root"), perm="elr")
    handler = FTPHandler
    handler.authorizer = authorizer
    handler.banner = "pyftpdlib ready"
    logging.basicConfig(format="%(asctime)s %(message)s", level=logging.DEBUG if os.environ.get("PELICOR_FTP_KEEP_LOGS") else logging.WARNING)
    # A thread (and I/O loop) per session: with one shared loop, a data socket closed in one
    # session can unregister a descriptor number another session's control connection has
    # just been given, and that session then hangs.
    server = ThreadedFTPServer(("127.0.0.1", 0), handler)
    port = server.socket.getsockname()[1]
    tmp = os.path.join(state, "pyftpdlib.port.tmp")
    with open(tmp, "w") as f:
        f.write("%d\n" % port)
    os.rename(tmp, os.path.join(state, "pyftpdlib.port"))
    server.serve_forever()


if __name__ == "__main__":
    main()
