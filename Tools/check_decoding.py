#!/usr/bin/env python3
"""Checks that a program decodes no picture by itself: what comes from strangers is decoded by zelto-render.

check_decoding.py PROGRAM [--refuse NAME…]

Looks at the functions the program takes from shared libraries, so that no way of writing a call escapes it: each
overload has a name of its own. With --refuse, the program is one that has to be refused for each of these names.
"""
import re
import subprocess
import sys

# What reads a picture from a file, from bytes or from what another program offers. `QSvgRenderer(QByteArray…)` is
# allowed: the window draws its own icons with it, after it has coloured them (Kit/Widgets/ZQIcon.cpp). So is
# `QTextCursor::insertMarkdown`: the window shows its own guide with it, in a view that loads no pictures
# (Classes/Interface/Preferences/DescriptionGuide.cpp).
DECODES = [
    r"QImageReader::",
    r"QMovie::",
    r"QPicture(IO)?::",
    r"QImage::QImage\((QString|char const\*)",  # a file, or a picture inside the source
    r"QImage::(load|loadFromData|fromData)\(",
    r"QPixmap::QPixmap\((QString|char const\*)",
    r"QPixmap::(load|loadFromData)\(",
    r"QBitmap::(QBitmap\(QString|fromData)",
    r"QIcon::(QIcon\(QString|addFile|fromTheme)",
    r"QSvgRenderer::(QSvgRenderer\((QString|QXmlStreamReader)|load)",
    r"QSvgWidget::",
    r"QGraphicsSvgItem::",
    r"QMimeData::imageData",
    r"QClipboard::(image|pixmap)\(",
    r"operator>>\(QDataStream&, Q(Image|Pixmap|Icon|Picture)&\)",
    r"QTextDocument::(setHtml|setMarkdown|addResource|loadResource)",  # texts that name pictures show them
    r"Q(TextBrowser|TextEdit|PlainTextEdit)::(setHtml|setMarkdown|setSource)",
    r"vips_\w*load\w*",
    r"vips_(image_new_from_(file|buffer|source)|thumbnail)\w*",
    r"Exiv2::",
    r"LibRaw::|libraw_",
    r"JxlDecoder\w*|heif_(context_read|decode)\w*",
    r"gdk_pixbuf_|g_object_new_rsvg|rsvg_|poppler_",
    r"(jpeg|png|TIFF|WebP|opj|gif)_?(read|Read|Open|Decode|GetInfo|DGif)\w*",
]


def functions_taken(program):
    listing = subprocess.run(["nm", "-DC", "--undefined-only", program], check=True, capture_output=True, text=True)
    return [line.split(" U ", 1)[1] for line in listing.stdout.splitlines() if " U " in line]


def main():
    program, *rest = sys.argv[1:]
    taken = functions_taken(program)
    if not any("Application::" in name for name in taken):
        print(f"{program} uses nothing of Qt: is it the right program?")
        return 1
    found = [name for name in taken if any(re.match(pattern, name) for pattern in DECODES)]
    if rest[:1] == ["--refuse"]:
        missed = [wanted for wanted in rest[1:] if not any(name.startswith(wanted) for name in found)]
        print("\n".join(f"not noticed: {name}" for name in missed) or f"refused, as it has to be: {len(found)} functions")
        return 1 if missed else 0
    for name in found:
        print(f"{program} decodes by itself: {name}")
    if found:
        print("Ask ZQImageSource or ZQPreviewService instead: they let zelto-render decode.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
