"""Un service de notification qui fait ce qu’on lui dit : chaque appel reçu s’écrit sur une ligne de JSON ; chaque
ligne lue est un ordre.

  {"signal": [nom, numéro, valeur]}     émet un signal
  {"capacites": [...]}                  ce qu’il dit comprendre
  {"humeur": "normale" | "erreur" | "silence"}     comment il répond à Notify ; redevenu normal, il répond à tous
"""

import json
import sys
import threading

from gi.repository import Gio, GLib

NOM, CHEMIN = "org.freedesktop.Notifications", "/org/freedesktop/Notifications"
INTERFACE = Gio.DBusNodeInfo.new_for_xml("""<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
</interface></node>""").interfaces[0]


class Service:
    def __init__(self):
        self.humeur, self.capacites, self.numero, self.en_attente = "normale", ["body", "body-markup", "actions"], 100, []
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.bus.register_object(CHEMIN, INTERFACE, self.quand_on_appelle, None, None)
        Gio.bus_own_name_on_connection(self.bus, NOM, Gio.BusNameOwnerFlags.NONE, lambda *_: dire("la"), None)

    def quand_on_appelle(self, _bus, _source, _chemin, _interface, methode, arguments, appel):
        if methode == "GetCapabilities":
            return appel.return_value(GLib.Variant("(as)", (self.capacites,)))
        dire(["Notify", *arguments.unpack()])
        if self.humeur == "erreur":
            return appel.return_dbus_error("org.freedesktop.Notifications.Error.ExcessNotifications", "trop de bruit")
        self.en_attente.append((appel, arguments.unpack()[1]))
        if self.humeur == "normale":
            self.repondre()

    def repondre(self):
        for appel, remplace in self.en_attente:
            self.numero += 0 if remplace else 1
            appel.return_value(GLib.Variant("(u)", (remplace or self.numero,)))
        self.en_attente.clear()

    def obeir(self, ordre):
        if "signal" in ordre:
            nom, numero, valeur = ordre["signal"]
            sorte = "(uu)" if isinstance(valeur, int) else "(us)"
            self.bus.emit_signal(None, CHEMIN, NOM, nom, GLib.Variant(sorte, (numero, valeur)))
        self.capacites = ordre.get("capacites", self.capacites)
        self.humeur = ordre.get("humeur", self.humeur)
        if self.humeur == "normale":
            self.repondre()
        dire("fait")


def dire(chose):
    print(json.dumps(chose), flush=True)


def ecouter(service):
    for ligne in sys.stdin:
        GLib.idle_add(service.obeir, json.loads(ligne))


service = Service()
threading.Thread(target=ecouter, args=(service,), daemon=True).start()
GLib.MainLoop().run()
