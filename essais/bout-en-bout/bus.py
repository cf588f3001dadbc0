"""Un bus de session à soi, sans aucun service que l’on puisse réveiller."""

import pathlib
import subprocess
import tempfile

REGLES = """<busconfig><type>session</type><listen>{adresse}</listen><policy context="default"><allow user="*"/>
  <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>"""


class Bus:
    def __init__(self, cas=None, adresse="unix:tmpdir=/tmp"):
        with tempfile.NamedTemporaryFile("w", suffix=".conf") as regles:
            regles.write(REGLES.format(adresse=adresse))
            regles.flush()
            self.demarrer(regles.name)
        if cas:
            cas.addCleanup(self.arreter)

    def demarrer(self, regles):
        self.processus = subprocess.Popen(["dbus-daemon", f"--config-file={regles}", "--nofork", "--print-address=1"],
                                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.adresse = self.processus.stdout.readline().strip()
        self.variables = {"DBUS_SESSION_BUS_ADDRESS": self.adresse}

    def arreter(self):
        self.processus.kill()
        self.processus.wait()
        self.processus.stdout.close()
        if "unix:path=" in self.adresse:
            pathlib.Path(self.adresse.partition("unix:path=")[2].partition(",")[0]).unlink(missing_ok=True)
