"""Ce qui répond sur un port : nous, ou un autre programme."""

import http.client


def est_keltrove(port):
    """Comme l’application s’en assure : notre page y répond."""
    connexion = http.client.HTTPConnection("127.0.0.1", port, timeout=2.5)
    try:
        connexion.request("GET", "/")
        return b"keltrove-jeton" in connexion.getresponse().read()
    except OSError:
        return False
    finally:
        connexion.close()


def repondre_en_etranger(prise):
    """Tant qu’elle est ouverte : quelqu’un répond, qui n’est pas keltrove."""
    while True:
        try:
            client, _ = prise.accept()
        except OSError:
            return
        with client:
            try:
                client.recv(4096)
                client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 7\r\nConnection: close\r\n\r\nbonjour")
            except OSError:
                pass  # parti sans attendre la réponse
