"""Dit, une ligne à chaque fois, que la sélection de l’écran change de main."""

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

# GTK 4 le dirait deux fois : il annonce aussi ce que la sélection contient.
Gtk.Clipboard.get(Gdk.SELECTION_PRIMARY).connect("owner-change", lambda *_: print("change", flush=True))
print("pret", flush=True)
Gtk.main()
