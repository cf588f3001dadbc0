"""Un terminal d’un autre, bien établi, où lancer la commande donnée ; il part avec elle."""

import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Vte", "2.91")
from gi.repository import GLib, Gtk, Vte  # noqa: E402

terminal = Vte.Terminal()
fenetre = Gtk.Window(title="témoin", child=terminal)
terminal.connect("child-exited", lambda *_: Gtk.main_quit())
terminal.spawn_async(Vte.PtyFlags.DEFAULT, None, sys.argv[1:], None, GLib.SpawnFlags.DEFAULT, None, None, -1, None, None)
fenetre.show_all()
Gtk.main()
