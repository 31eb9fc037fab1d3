#!/usr/bin/python3
"""Thumbnails through the desktops' own services:  desktops_test.py DESKTOP DOCUMENT [PREVIEW_CLIENT]
where DESKTOP is gnome, tumbler or kde, with the programs installed below /usr/local.

Run by the distribution's interpreter, which the desktops' libraries are made for. Ends with 77 where
a desktop is not installed. Each thumbnail has the right size and the pixels of the program's own
output."""
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile

DESKTOP, DOCUMENT = sys.argv[1:3]
PROGRAM = "/usr/local/bin/paint-thumbnailer"
MIME_TYPE = "application/x-paint-document"
SIZES = {"normal": 128, "large": 256, "x-large": 512, "xx-large": 1024}


def skip(reason):
    print("NOT TESTED:", reason)
    sys.exit(77)


def check(condition, what):
    if not condition:
        raise SystemExit("FAILED: " + what)


def pixels_of(pixbuf):
    """Width, height and rows of straight R, G, B, A."""
    pixbuf = pixbuf if pixbuf.get_has_alpha() else pixbuf.add_alpha(False, 0, 0, 0)
    width, height, stride, data = pixbuf.get_width(), pixbuf.get_height(), pixbuf.get_rowstride(), pixbuf.get_pixels()
    return width, height, [data[y * stride:y * stride + width * 4] for y in range(height)]


def expected(folder, size):
    from gi.repository import GdkPixbuf
    path = os.path.join(folder, f"expected-{size}.png")
    subprocess.run([PROGRAM, "-s", str(size), DOCUMENT, path], check=True, timeout=120)
    result = pixels_of(GdkPixbuf.Pixbuf.new_from_file(path))
    check(max(result[:2]) == min(size, 640), f"the program's own size for {size}: {result[:2]}")
    return result


def cached(folder, flavor, uri):
    name = hashlib.md5(uri.encode()).hexdigest() + ".png"
    return os.path.join(folder, "cache", "thumbnails", flavor, name)


def gnome(folder, uri):
    try:
        import gi
        gi.require_version("GnomeDesktop", "3.0")
        from gi.repository import GdkPixbuf, GnomeDesktop
    except (ImportError, ValueError):
        skip("GNOME's thumbnail factory (gir1.2-gnomedesktop-3.0, python3-gi) is not installed")
    if shutil.which("bwrap") is None:
        skip("bubblewrap, without which GNOME makes no thumbnails, is not installed")
    kinds = GnomeDesktop.DesktopThumbnailSize
    for flavor, kind in {"normal": kinds.NORMAL, "large": kinds.LARGE, "x-large": kinds.XLARGE,
                         "xx-large": kinds.XXLARGE}.items():
        factory = GnomeDesktop.DesktopThumbnailFactory.new(kind)
        mtime = int(os.stat(DOCUMENT).st_mtime)
        check(factory.can_thumbnail(uri, MIME_TYPE, mtime), "the factory knows a thumbnailer")
        pixbuf = factory.generate_thumbnail(uri, MIME_TYPE, None)
        check(pixels_of(pixbuf) == expected(folder, SIZES[flavor]), f"GNOME's picture, {flavor}")
        factory.save_thumbnail(pixbuf, uri, mtime, None)
        path = factory.lookup(uri, mtime)
        check(path == cached(folder, flavor, uri), f"place in the cache: {path}")
        kept = GdkPixbuf.Pixbuf.new_from_file(path)
        check(pixels_of(kept) == expected(folder, SIZES[flavor]), "GNOME's cache")
        sides = [kept.get_option("tEXt::Thumb::Image::" + side) for side in ("Width", "Height")]
        check(sides == ["640", "480"], f"the document's size in GNOME's cache: {sides}")


def tumbler(folder, uri):
    try:
        import gi
        gi.require_version("GdkPixbuf", "2.0")
        from gi.repository import GdkPixbuf, Gio, GLib
    except (ImportError, ValueError):
        skip("python3-gi or gir1.2-gdkpixbuf-2.0 is not installed")
    if not os.path.exists("/usr/share/dbus-1/services/org.xfce.Tumbler.Thumbnailer1.service"):
        skip("tumbler is not installed")
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    service = ("org.freedesktop.thumbnails.Thumbnailer1", "/org/freedesktop/thumbnails/Thumbnailer1",
               "org.freedesktop.thumbnails.Thumbnailer1")
    loop, signals = GLib.MainLoop(), []

    def on_signal(_bus, _sender, _path, _interface, name, parameters):
        signals.append((name, parameters.unpack()))
        if name == "Finished":
            loop.quit()

    bus.signal_subscribe(service[0], service[2], None, service[1], None, 0, on_signal)
    for flavor, size in SIZES.items():
        bus.call_sync(*service, "Queue", GLib.Variant("(asasssu)", ([uri], [MIME_TYPE], flavor, "default", 0)),
                      None, 0, 30000)
        timer = GLib.timeout_add_seconds(60, loop.quit)
        loop.run()
        GLib.source_remove(timer)
        check([name for name, _ in signals if name == "Error"] == [], f"{signals}")
        path = cached(folder, flavor, uri)
        check(os.path.exists(path), f"a thumbnail in the cache: {path}; {signals}")
        check(pixels_of(GdkPixbuf.Pixbuf.new_from_file(path)) == expected(folder, size), f"tumbler's picture, {flavor}")
        signals.clear()


def kde(folder, uri):
    try:
        import gi
        gi.require_version("GdkPixbuf", "2.0")
        from gi.repository import GdkPixbuf
    except (ImportError, ValueError):
        skip("python3-gi or gir1.2-gdkpixbuf-2.0 is not installed")
    client = sys.argv[3]
    out = os.path.join(folder, "preview.png")
    for size in (128, 256):
        result = subprocess.run([client, uri, str(size), out], capture_output=True, timeout=120)
        check(result.returncode == 0, f"preview of {size}: {result.stderr.decode()}")
        check(pixels_of(GdkPixbuf.Pixbuf.new_from_file(out)) == expected(folder, size), f"KDE's picture, {size}")


def main():
    if "DBUS_SESSION_BUS_ADDRESS" not in os.environ and DESKTOP != "gnome":
        if shutil.which("dbus-run-session") is None:
            skip("dbus is not installed")
        os.execvp("dbus-run-session", ["dbus-run-session", "--", *sys.orig_argv])
    with tempfile.TemporaryDirectory() as folder:
        # GLib reads its folders from the environment once, at the start.
        if os.environ.get("PAINT_DESKTOP_FOLDER") is None:
            for name in ("cache", "data", "runtime"):
                os.makedirs(os.path.join(folder, name), mode=0o700)
            environment = dict(os.environ, PAINT_DESKTOP_FOLDER=folder, XDG_CACHE_HOME=os.path.join(folder, "cache"),
                               XDG_DATA_HOME=os.path.join(folder, "data"), XDG_DATA_DIRS="/usr/local/share:/usr/share",
                               XDG_RUNTIME_DIR=os.path.join(folder, "runtime"), QT_QPA_PLATFORM="offscreen",
                               PATH="/usr/local/bin:/usr/bin:/bin")
            subprocess.run(["update-mime-database", "/usr/local/share/mime"], check=True, capture_output=True)
            environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
            sys.exit(subprocess.run(sys.orig_argv, env=environment, timeout=300).returncode)
    {"gnome": gnome, "tumbler": tumbler, "kde": kde}[DESKTOP](os.environ["PAINT_DESKTOP_FOLDER"],
                                                             "file://" + os.path.abspath(DOCUMENT))
    print("passed:", DESKTOP)


if __name__ == "__main__":
    main()
