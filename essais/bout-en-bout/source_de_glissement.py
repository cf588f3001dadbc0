"""Une petite fenêtre d’où l’on tire quelque chose, dans un processus à elle, comme un gestionnaire de fichiers.

  source_de_glissement.py <action> fichiers <chemin…>     une liste de fichiers
  source_de_glissement.py <action> adresses <texte>       une liste d’adresses, telle quelle
  source_de_glissement.py <action> texte <texte>          du texte

L’action est ce que l’on en permet : COPY ou MOVE.
"""

import sys

import gi

gi.require_version("Gdk", "4.0")
gi.require_version("Gtk", "4.0")
from gi.repository import Gdk, Gio, GLib, GObject, Gtk  # noqa: E402


def contenu(sorte, valeurs):
    if sorte == "adresses":
        return Gdk.ContentProvider.new_for_bytes("text/uri-list", GLib.Bytes.new(valeurs[0].encode()))
    valeur = GObject.Value()
    if sorte == "texte":
        valeur.init(GObject.TYPE_STRING)
        valeur.set_string(valeurs[0])
    else:
        valeur.init(Gdk.FileList.__gtype__)
        valeur.set_boxed(Gdk.FileList.new_from_list([Gio.File.new_for_path(chemin) for chemin in valeurs]))
    return Gdk.ContentProvider.new_for_value(valeur)


def dire(mot):
    print(mot, flush=True)


def ouvrir(application):
    couleur = Gtk.CssProvider()
    couleur.load_from_data(b"window > label { background: #d6336c; }")
    Gtk.StyleContext.add_provider_for_display(Gdk.Display.get_default(), couleur, Gtk.STYLE_PROVIDER_PRIORITY_APPLICATION)
    etiquette = Gtk.Label(label="À tirer")
    source = Gtk.DragSource(actions=getattr(Gdk.DragAction, sys.argv[1]))
    source.connect("prepare", lambda *_: contenu(sys.argv[2], sys.argv[3:]))
    source.connect("drag-begin", lambda _, glissement: glissement.connect(
        "notify::selected-action", lambda *_: dire("admis" if glissement.get_selected_action() else "non admis")))
    source.connect("drag-end", lambda *_: dire("fini"))
    source.connect("drag-cancel", lambda *_: dire("refuse"))
    etiquette.add_controller(source)
    souris = Gtk.EventControllerMotion()
    souris.connect("enter", lambda *_: dire("sous la souris"))
    etiquette.add_controller(souris)
    # Un glissement qui se montre à nous, le système le connaît : la souris lâchée plus tôt, il ne finirait jamais.
    retour = Gtk.DropControllerMotion()
    retour.connect("enter", lambda *_: dire("pris"))
    etiquette.add_controller(retour)
    fenetre = Gtk.ApplicationWindow(application=application, title="source", child=etiquette, default_width=160,
                                    default_height=90)
    fenetre.present()


source = Gtk.Application(flags=Gio.ApplicationFlags.NON_UNIQUE)
source.connect("activate", ouvrir)
source.run()
