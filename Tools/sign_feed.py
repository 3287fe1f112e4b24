#!/usr/bin/env python3
"""Signs what announces a new version, for servers to give out as feed.json.

  Tools/sign_feed.py key KEY.pem
      makes a secret key, and prints the public one, which programs are built with or have as the preference UpdateKey
  Tools/sign_feed.py sign KEY.pem VERSION PAGE [--channel release|beta|test] [--date DATE] [--notes FILE] > feed.json

The secret key stays on the machine of whoever releases; PAGE is where people get the version, by https.
"""
import argparse
import base64
import datetime
import json
import os
import subprocess
import sys
import tempfile

RAW = 32  # bytes of a public key of Ed25519, which are the last of its coded form


def openssl(*arguments, **options):
    run = subprocess.run(["openssl", *arguments], capture_output=True, **options)
    if run.returncode != 0:
        raise SystemExit(f"openssl: {run.stderr.decode(errors='replace').strip()}")
    return run.stdout


def make_key(path):
    if os.path.lexists(path):
        raise SystemExit(f"{path} is there already; a key that programs know is not to be replaced: name another file")
    secret = openssl("genpkey", "-algorithm", "ed25519")
    with os.fdopen(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "wb") as file:
        file.write(secret)
    print(public_key(path))


def public_key(path):
    return base64.b64encode(openssl("pkey", "-in", path, "-pubout", "-outform", "DER")[-RAW:]).decode()


def sign(given):
    if not given.page.startswith("https://"):
        raise SystemExit("the page has to begin with https://, or no program believes the announcement")
    date = given.date or datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    notes = open(given.notes, encoding="utf-8").read() if given.notes else ""
    announcement = json.dumps({"program": "zelto", "channel": given.channel, "version": given.version, "date": date, "page": given.page,
                               "notes": notes}, ensure_ascii=False).encode()
    with tempfile.NamedTemporaryFile() as file:
        file.write(announcement)
        file.flush()
        signature = openssl("pkeyutl", "-sign", "-rawin", "-inkey", given.key, "-in", file.name)
    print(json.dumps({"announcement": base64.b64encode(announcement).decode(), "signature": base64.b64encode(signature).decode()}))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("key").add_argument("key")
    signing = commands.add_parser("sign")
    for name in ("key", "version", "page"):
        signing.add_argument(name)
    signing.add_argument("--channel", choices=("release", "beta", "test"), default="release")
    signing.add_argument("--date", help="ISO 8601, UTC; now, where it is not given")
    signing.add_argument("--notes", help="a file of plain text")
    given = parser.parse_args()
    if given.command == "key":
        make_key(given.key)
    else:
        sign(given)


if __name__ == "__main__":
    sys.exit(main())
