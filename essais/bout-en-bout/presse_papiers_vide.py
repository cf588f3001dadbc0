"""Vide le presse-papiers de l’écran : le prend à son détenteur, puis l’abandonne en partant."""

import gi

gi.require_version("Gdk", "4.0")
gi.require_version("Gtk", "4.0")
from gi.repository import Gdk, Gtk  # noqa: E402

Gtk.init()
Gdk.Display.get_default().get_clipboard().set("rien")
Gdk.Display.get_default().sync()
