"""Le service de notification que l’on met sur un bus, et une page qui s’en sert."""

import json
import os
import subprocess
import threading

import page_notee
from application import attendre

ICI = os.path.dirname(os.path.abspath(__file__))

# Chaque touche poste un message de la page.
PAGE = page_notee.code("""<script>
  window.keltrovePont = { etat: (e) => noter(['etat', e]), ouvrir: (id) => noter(['ouvrir', id]) };
  const poster = (message) => webkit.messageHandlers.keltroveNotifications.postMessage(message);
  const cyclique = {}; cyclique.moi = cyclique;
  const gestes = {
    a: () => poster({ action: 'notifier', id: 't3', titre: 'Compilation', corps: 'Elle est finie.' }),
    b: () => poster({ action: 'notifier', id: 't3', titre: '<b>gras</b> & co', corps: '<b>gras</b> & <a href="x">co</a>' }),
    c: () => poster({ action: 'notifier', titre: 'sans terminal' }),
    d: () => { for (let i = 1; i <= 1000; i += 1) poster({ action: 'notifier', id: 't9', titre: `n° ${i}` }); },
    e: () => poster({ action: 'etat' }),
    f: () => { for (const m of [[1], 'texte', 12, null, undefined, true, new Date(), cyclique]) {
      try { poster(m); } catch {} } },
    g: () => poster({ action: 'notifier', id: 't4', titre: 'nul \\0 moitié \\ud83d', corps: 'a\\u0000b' }),
    r: () => poster({ action: 'reglages' }),
  };
  addEventListener('keydown', (e) => { gestes[e.key]?.(); noter(['touche', e.key]); });
  noter('prete');</script>""")


class Service:
    def __init__(self, cas, bus):
        self.processus = subprocess.Popen(["/usr/bin/python3", os.path.join(ICI, "service_de_notifications.py")],
                                          env={**os.environ, **bus.variables}, stdin=subprocess.PIPE,
                                          stdout=subprocess.PIPE, text=True)
        cas.addCleanup(self.partir)
        self.recus = []
        self.lecture = threading.Thread(target=self.lire, daemon=True)
        self.lecture.start()
        attendre(lambda: "la" in self.recus, quoi="le service")

    def lire(self):
        for ligne in self.processus.stdout:
            self.recus.append(json.loads(ligne))

    def partir(self):
        if self.processus.poll() is not None:
            return
        self.processus.kill()
        self.processus.wait()
        self.lecture.join()
        self.processus.stdin.close()
        self.processus.stdout.close()

    def ordonner(self, **ordre):
        faits = self.recus.count("fait")
        self.processus.stdin.write(json.dumps(ordre) + "\n")
        self.processus.stdin.flush()
        attendre(lambda: self.recus.count("fait") > faits, quoi="l’ordre exécuté")

    def appels(self):
        """Ce que Notify a reçu : application, remplace, icône, titre, corps, actions, indices, durée."""
        return [recu[1:] for recu in self.recus if recu[0] == "Notify"]

    def attendre_les_appels(self, nombre):
        attendre(lambda: len(self.appels()) >= nombre, quoi=f"{nombre} notifications (vu : {self.appels()})")
        return self.appels()[-1]
