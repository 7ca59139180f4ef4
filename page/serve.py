"""Serves a folder to this machine alone: serve.py FOLDER PORT; port 0 takes a free one. Prints the address."""
import functools
import http.server
import sys


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map, ".wasm": "application/wasm", ".ttc": "font/collection"}

    def end_headers(self):
        self.send_header("Cache-Control", "no-cache")
        super().end_headers()

    def log_message(self, *_):
        pass


def main(folder, port):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", int(port)), functools.partial(Handler, directory=folder))
    print(f"http://127.0.0.1:{server.server_port}/", flush=True)
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        pass


if __name__ == "__main__":
    main(*sys.argv[1:])
