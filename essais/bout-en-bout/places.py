"""Les places que plusieurs essais menés ensemble se partagent."""

import contextlib
import threading


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
