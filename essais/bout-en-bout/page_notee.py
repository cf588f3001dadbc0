"""Une page qui note ce qui lui arrive, et de quoi relire ses notes."""

import json
import os

from application import SERVEUR, attendre


def code(corps):
    """Le serveur d’une page au corps donné (HTML) ; elle y dispose de noter(objet)."""
    page = ("<!doctype html><title>Notes</title><meta charset=utf-8><meta name=keltrove-jeton content=x>"
            "<style>html, body { height: 100%; margin: 0; background: #2b8a3e }</style>"
            "<script>let suite = Promise.resolve(); function noter(objet) {"
            "const envoyer = () => fetch('/note', {method: 'POST', body: JSON.stringify(objet)}).catch(envoyer);"
            "suite = suite.then(envoyer); }</script>" + corps)
    return SERVEUR + f"""
        http.createServer((q, r) => {{
          if (q.url !== '/note') return q.url === '/' ? (r.setHeader('content-type', 'text/html'), r.end({json.dumps(page)}))
            : repondre(q, r);
          let recu = '';
          q.on('data', (d) => {{ recu += d; }});
          q.on('end', () => {{ fs.appendFileSync('notes', recu + '\\n'); r.end(); }});
        }}).listen(PORT, '127.0.0.1');"""


def notes(application):
    try:
        with open(os.path.join(application.ressources, "keltrove/notes")) as fichier:
            return [json.loads(ligne) for ligne in fichier.read().split("\n")[:-1]]
    except FileNotFoundError:
        return []


def attendre_la_note(application, note, secondes=60):
    attendre(lambda: note in notes(application), secondes, f"la note {note} (vu : {notes(application)[-5:]})")
