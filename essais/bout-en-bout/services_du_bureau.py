"""Un service d’un bureau d’essai, qui fait ce qu’on lui dit : chaque ligne lue est un ordre, en JSON ; il dit « la » une fois
sur le bus, et « fait » après chaque ordre.

  services_du_bureau.py portail {"preference": 0 | 1 | 2}     clair ou sombre ; ce n’est que cela du portail
  services_du_bureau.py accessibilite {"tourne": true}        si un lecteur d’écran tourne
  services_du_bureau.py notifications {}                      il dit chaque appel reçu, et obéit à :
      {"signal": [nom, numéro, valeur]}     émet un signal
      {"capacites": [...]}                  ce qu’il dit comprendre
      {"humeur": "normale" | "erreur" | "silence"}     comment il répond à Notify ; redevenu normal, il répond à tous
"""

import json
import sys
import threading

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402


def dire(chose):
    print(json.dumps(chose), flush=True)


class Portail:
    NOM, CHEMIN, INTERFACE = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings"
    MEMBRES = """<method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
        <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>"""
    REGLAGE = ("org.freedesktop.appearance", "color-scheme")

    def quand_on_appelle(self, _methode, arguments, appel):
        if arguments != self.REGLAGE:
            return appel.return_dbus_error("org.freedesktop.portal.Error.NotFound", "inconnu")
        appel.return_value(GLib.Variant("(v)", (GLib.Variant("v", self.preference),)))

    def obeir(self, preference):
        self.preference = GLib.Variant("u", preference)
        emettre(self, "SettingChanged", "(ssv)", *self.REGLAGE, self.preference)


class Accessibilite:
    NOM, CHEMIN, INTERFACE = "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status"
    MEMBRES = """<property name="IsEnabled" type="b" access="read"/><property name="ScreenReaderEnabled" type="b" access="read"/>"""

    def quand_on_lit(self):
        return GLib.Variant("b", self.tourne)

    def obeir(self, tourne):
        self.tourne = tourne
        bus.emit_signal(None, self.CHEMIN, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                        GLib.Variant("(sa{sv}as)", (self.INTERFACE, {"ScreenReaderEnabled": self.quand_on_lit()}, [])))


class Notifications:
    NOM, CHEMIN, INTERFACE = "org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.freedesktop.Notifications"
    MEMBRES = """<method name="GetCapabilities"><arg type="as" direction="out"/></method>
        <method name="Notify">
          <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
          <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
          <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>"""

    def __init__(self):
        self.humeur, self.capacites, self.numero, self.en_attente = "normale", ["body", "body-markup", "actions"], 100, []

    def quand_on_appelle(self, methode, arguments, appel):
        if methode == "GetCapabilities":
            return appel.return_value(GLib.Variant("(as)", (self.capacites,)))
        dire(["Notify", *arguments])
        if self.humeur == "erreur":
            return appel.return_dbus_error("org.freedesktop.Notifications.Error.ExcessNotifications", "trop de bruit")
        self.en_attente.append((appel, arguments[1]))
        if self.humeur == "normale":
            self.repondre()

    def repondre(self):
        for appel, remplace in self.en_attente:
            self.numero += 0 if remplace else 1
            appel.return_value(GLib.Variant("(u)", (remplace or self.numero,)))
        self.en_attente.clear()

    def obeir(self, signal=None, capacites=None, humeur=None):
        if signal:
            nom, numero, valeur = signal
            emettre(self, nom, "(uu)" if isinstance(valeur, int) else "(us)", numero, valeur)
        self.capacites = capacites or self.capacites
        self.humeur = humeur or self.humeur
        if self.humeur == "normale":
            self.repondre()


def emettre(service, nom, sorte, *valeurs):
    bus.emit_signal(None, service.CHEMIN, service.INTERFACE, nom, GLib.Variant(sorte, valeurs))


def publier(service):
    interface = Gio.DBusNodeInfo.new_for_xml(
        f'<node><interface name="{service.INTERFACE}">{service.MEMBRES}</interface></node>').interfaces[0]
    bus.register_object(
        service.CHEMIN, interface,
        lambda _bus, _qui, _ou, _interface, methode, arguments, appel: service.quand_on_appelle(methode, arguments.unpack(), appel),
        lambda *_: service.quand_on_lit(), None)
    Gio.bus_own_name_on_connection(bus, service.NOM, Gio.BusNameOwnerFlags.NONE, lambda *_: dire("la"), None)


def obeir(service, ordre):
    service.obeir(**ordre)
    dire("fait")


def ecouter(service):
    for ligne in sys.stdin:
        GLib.idle_add(obeir, service, json.loads(ligne))
    GLib.idle_add(boucle.quit)


bus, boucle = Gio.bus_get_sync(Gio.BusType.SESSION), GLib.MainLoop()
service = {"portail": Portail, "accessibilite": Accessibilite, "notifications": Notifications}[sys.argv[1]]()
service.obeir(**json.loads(sys.argv[2]))
publier(service)
threading.Thread(target=ecouter, args=(service,), daemon=True).start()
boucle.run()
