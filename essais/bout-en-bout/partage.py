"""Ce que plusieurs essais menés ensemble se partagent : les places, et la lecture de l’écran."""

import contextlib
import functools
import threading

import ecran
from application import attendre
from ecran import Atspi, GLib


class Places:
    """Combien d’applications travaillent à la fois. Qui revient d’une longue attente passe avant qui commence."""

    def __init__(self, nombre):
        self.libres, self.retours, self.liberation = nombre, 0, threading.Condition()

    def prendre(self):
        with self.liberation:
            self.liberation.wait_for(lambda: self.libres > 0 and self.retours == 0)
            self.libres -= 1

    def reprendre(self):
        with self.liberation:
            self.retours += 1
            self.liberation.wait_for(lambda: self.libres > 0)
            self.retours -= 1
            self.libres -= 1
            self.liberation.notify_all()

    def rendre(self):
        with self.liberation:
            self.libres += 1
            self.liberation.notify_all()

    @contextlib.contextmanager
    def une(self):
        self.prendre()
        try:
            yield
        finally:
            self.rendre()

    @contextlib.contextmanager
    def longue_attente(self):
        self.rendre()
        try:
            yield
        finally:
            self.reprendre()


class Lecteur:
    """L’écran d’une application, lu par un seul fil à la fois, parmi d’autres qui s’ouvrent et se ferment."""

    un_seul = threading.Lock()

    def __init__(self, pid):
        self.pid = pid

    def _lire(self, lecture):
        """Rien si l’application n’y est pas, ou change pendant la lecture : on relira."""
        with self.un_seul:
            bureau = Atspi.get_desktop(0)
            for i in range(bureau.get_child_count()):
                with contextlib.suppress(GLib.Error):
                    application = bureau.get_child_at_index(i)
                    if application is not None and application.get_process_id() == self.pid:
                        return lecture(list(ecran._parcourir(application)))
        return None

    def textes(self):
        return self._lire(lambda objets: [o.get_name() for o in objets if o.get_role_name() == "label"]) or []

    def boutons(self):
        return self._lire(lambda objets: [o.get_name() for o in objets if o.get_role_name() == ecran.BOUTON])

    def presser(self, nom):
        def premier(objets):
            return any(o.get_name() == nom and o.do_action(0) for o in objets if o.get_role_name() == ecran.BOUTON)

        return self._lire(premier)


# Pour ce qui se lit lentement : l’écran, la liste des processus.
guetter = functools.partial(attendre, pas=0.1)
