"""Adds "Add to Zelto" to the menu of Nautilus, where its bindings for Python are installed."""

import locale
import subprocess

from gi.repository import GObject, Nautilus

TITLES = {"de": "Zu Zelto hinzufügen", "fr": "Ajouter à Zelto"}
KINDS = ("image/", "application/illustrator", "application/pdf", "inode/directory")


def title():
    language = (locale.getlocale(locale.LC_MESSAGES)[0] or "")[:2]
    return TITLES.get(language, "Add to Zelto")


class ZeltoMenu(GObject.GObject, Nautilus.MenuProvider):
    def get_file_items(self, *arguments):
        files = arguments[-1]  # before version 4 the window came first
        paths = [file.get_location().get_path() for file in files]
        fits = all(file.get_mime_type().startswith(KINDS) for file in files)
        if not files or not fits or None in paths:  # what is not mounted has no path
            return []
        item = Nautilus.MenuItem(name="ZeltoMenu::add", label=title(), icon="org.zelto.Zelto")
        item.connect("activate", lambda _item: subprocess.Popen(["zelto", *paths]))
        return [item]

    def get_background_items(self, *_arguments):
        return []
