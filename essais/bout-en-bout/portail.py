"""Un portail de bureau d’essai : il ne connaît que la préférence claire ou sombre, lue sur son entrée."""

import sys
import threading

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

DESCRIPTION = """<node><interface name="org.freedesktop.portal.Settings">
<method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
<signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""
CHEMIN, INTERFACE = "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings"
REGLAGE = ("org.freedesktop.appearance", "color-scheme")

preference = int(sys.argv[1])
boucle = GLib.MainLoop()
bus = Gio.bus_get_sync(Gio.BusType.SESSION)


def repondre(_bus, _qui, _chemin, _interface, _methode, arguments, appel):
    if arguments.unpack() != REGLAGE:
        appel.return_dbus_error("org.freedesktop.portal.Error.NotFound", "inconnu")
        return
    appel.return_value(GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", preference)),)))


def changer(valeur):
    global preference
    preference = valeur
    bus.emit_signal(None, CHEMIN, INTERFACE, "SettingChanged",
                    GLib.Variant("(ssv)", (*REGLAGE, GLib.Variant("u", valeur))))


def ecouter():
    for ligne in sys.stdin:
        GLib.idle_add(changer, int(ligne))
    GLib.idle_add(boucle.quit)


bus.register_object(CHEMIN, Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0], repondre, None, None)
Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop", 0, lambda *_: print("pret", flush=True), None)
threading.Thread(target=ecouter, daemon=True).start()
boucle.run()
