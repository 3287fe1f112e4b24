"""Small pictures for tests that run the program from outside."""
import struct
import zlib


def png(rows):
    """A PNG of rows of one length, each with three bytes for a pixel."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    head = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows))) +
            chunk(b"IEND", b""))
