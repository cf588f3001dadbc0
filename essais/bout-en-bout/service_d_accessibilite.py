"""Le service d’accessibilité d’un bureau d’essai : il ne dit que si un lecteur d’écran tourne, lu sur son entrée."""

import sys
import threading

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

INTERFACE, CHEMIN = "org.a11y.Status", "/org/a11y/bus"
DESCRIPTION = f"""<node><interface name="{INTERFACE}">
<property name="IsEnabled" type="b" access="read"/><property name="ScreenReaderEnabled" type="b" access="read"/>
</interface></node>"""

tourne = sys.argv[1] == "1"
boucle = GLib.MainLoop()
bus = Gio.bus_get_sync(Gio.BusType.SESSION)


def lire(*_):
    return GLib.Variant("b", tourne)


def changer(valeur):
    global tourne
    tourne = valeur
    bus.emit_signal(None, CHEMIN, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                    GLib.Variant("(sa{sv}as)", (INTERFACE, {"ScreenReaderEnabled": lire()}, [])))


def ecouter():
    for ligne in sys.stdin:
        GLib.idle_add(changer, int(ligne) == 1)
    GLib.idle_add(boucle.quit)


bus.register_object(CHEMIN, Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0], None, lire, None)
Gio.bus_own_name_on_connection(bus, "org.a11y.Bus", 0, lambda *_: print("pret", flush=True), None)
threading.Thread(target=ecouter, daemon=True).start()
boucle.run()
