"""A page of the web with images in all the ways a page can have them, served on this machine."""
import http.server
import pathlib
import sys
import threading
import zlib

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "Support"))
import pictures


def png(width, height, colour):
    return pictures.png([bytes(colour) * width] * height)


DRAWING = b'<svg xmlns="http://www.w3.org/2000/svg" width="320" height="200"><rect width="320" height="200" fill="teal"/></svg>'
INLINE = ("data:image/gif;base64,R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7")

PAGE = f"""<!doctype html><title>Posters “of” the year — ½</title>
<base href="/art/">
<style>
  .hero {{ background: linear-gradient(red, blue), url("hero.png?crop=1,2"); width: 50px; height: 50px }}
  .mark::before {{ content: ""; background-image: url(mark.png) }}
</style>
<img src="plain.png#part" alt=""> <img src="plain.png" alt="the same"> <img src="small.png" alt="">
<img src="set-300.png" srcset="set-300.png 300w, set-900.png 900w,set-600.png 600w" sizes="100px" alt="">
<img src="sharp.png" srcset="sharp.png, sharp@2x.png 2x" alt="">
<picture><source srcset="wide,1.png 800w"><img src="narrow.png" alt=""></picture>
<img src="drawing.svg" alt=""> <img src="{INLINE}" alt=""> <img src="gone.png" alt="">
<img src="file:///etc/passwd" alt=""> <img src="javascript:alert(1)" alt="">
<div class="hero"></div><div class="mark"></div>
<video poster="poster.png"></video>
<svg width="10" height="10"><image href="placed.png"/></svg>
<div id="shadow"></div>
<iframe src="/frame/inner"></iframe> <iframe src="alone.png"></iframe> <iframe srcdoc='<img src="written.png">'></iframe>
<iframe sandbox src="/frame/foreign"></iframe>
<script>
  document.getElementById("shadow").attachShadow({{ mode: "open" }}).innerHTML = '<img src="hidden%20away.png">';
</script>
""".encode()

# Its addresses are those of its own place, and not of the page's.
FRAME = b"""<!doctype html><base href="/art/deep/"><style>p { background-image: url(behind.png) }</style>
<img src="../framed.png" alt=""><p></p><iframe src="/frame/innermost"></iframe>"""
OTHER_FRAMES = {"innermost": b'<!doctype html><img src="/art/innermost.png" alt="">',
                "foreign": b'<!doctype html><img src="/art/foreign.png" alt="">'}

SIZES = {"framed": (310, 310), "deep/behind": (320, 40), "alone": (330, 50), "written": (340, 60), "innermost": (350, 70),
         "foreign": (360, 80), "plain": (400, 300), "small": (20, 10), "set-300": (300, 150), "set-900": (900, 450), "sharp": (200, 200),
         "sharp@2x": (400, 400), "wide,1": (800, 200), "narrow": (100, 100), "hero": (640, 480), "mark": (120, 120),
         "poster": (500, 280), "placed": (150, 150), "hidden%20away": (240, 180)}
# What is to be found, with its size where the page itself knows it.
EXPECTED = {"art/plain.png": (400, 300), "art/small.png": (20, 10), "art/set-900.png": (900, 450),
            "art/sharp@2x.png": (400, 400), "art/wide,1.png": (800, 200), "art/drawing.svg": (320, 200), INLINE: (1, 1),
            "art/gone.png": (0, 0), "art/hero.png?crop=1,2": (640, 480), "art/mark.png": (120, 120),
            "art/framed.png": (310, 310), "art/deep/behind.png": (320, 40), "art/alone.png": (330, 50),
            "art/written.png": (340, 60), "art/innermost.png": (350, 70),
            "art/poster.png": (500, 280), "art/placed.png": (150, 150), "art/hidden%20away.png": (240, 180)}


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        name = self.path.split("?")[0].removeprefix("/art/").removesuffix(".png")
        if self.path == "/year":
            self.answer("text/html; charset=utf-8", PAGE)
        elif self.path.startswith("/frame/"):
            self.answer("text/html", OTHER_FRAMES.get(self.path.removeprefix("/frame/"), FRAME))
        elif name == "drawing.svg":
            self.answer("image/svg+xml", DRAWING)
        elif name in SIZES:
            self.answer("image/png", png(*SIZES[name], colour=(zlib.crc32(name.encode()) % 256, 90, 160)))
        else:
            self.send_error(404)

    def answer(self, kind, body):
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Site:
    """Serves until it ends as a context does."""

    def __enter__(self):
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.root = f"http://127.0.0.1:{self.server.server_port}/"
        return self

    def __exit__(self, *_):
        self.server.shutdown()
        self.server.server_close()

    def url(self, name):
        return name if name.startswith("data:") else self.root + name
