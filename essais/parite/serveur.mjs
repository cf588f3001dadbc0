// Le serveur des scénarios de parité. Son port est celui que la maison souhaite, sa conduite, le mot du fichier
// « conduite » posé à côté de lui ; il obéit ensuite aux fichiers que l’on y pose.
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';

process.chdir(import.meta.dirname ?? path.dirname(decodeURIComponent(new URL(import.meta.url).pathname)));
const conduite = fs.readFileSync('conduite', 'utf8').trim();
const { port } = JSON.parse(fs.readFileSync(path.join(process.env.HOME, '.zelcor/keltrove.json')));
const PAS = 20;

const PAGE = `<!doctype html><title>Essai</title><meta charset="utf-8"><meta name="keltrove-jeton" content="x">
<style>html, body { height: 100%; margin: 0; background: #2b8a3e }</style>
<script>
let suite = Promise.resolve();
const noter = (quoi, ...valeurs) => { suite = suite.then(() => fetch('/note',
  { method: 'POST', body: quoi + '(' + valeurs.map((une) => JSON.stringify(une)).join(', ') + ')' })).catch(() => {}); };
window.keltrovePont = { etat: (e) => noter('etat', e), ouvrir: (id) => noter('ouvrir', id) };
window.keltroveSurvolChemins = (x, y) => noter('survol', x, y);
window.keltroveDeposerChemins = (chemins, x, y) => noter('depot', chemins, x, y);
addEventListener('keydown', (e) => e.key === 'l' && document.querySelector('a').click());
addEventListener('dragover', (e) => e.preventDefault());
addEventListener('drop', (e) => { e.preventDefault(); noter('texte', e.dataTransfer.getData('text/plain')); });
(async () => {
  for (;;) {
    const ordre = await fetch('/ordre').catch(() => null);
    if (!ordre?.ok) return;
    const message = await ordre.json();
    if (message?.aller) location.href = message.aller;
    else webkit.messageHandlers.keltroveNotifications.postMessage(message);
  }
})();
</script><a href="https://exemple.fr/lien"></a>`;

// Le contenu d’un fichier posé, une fois, tant que quelqu’un l’attend.
function prendre(nom, reponse, suite) {
  if (reponse.destroyed) return;
  if (!fs.existsSync(nom)) {
    setTimeout(prendre, PAS, nom, reponse, suite);
    return;
  }
  const contenu = fs.readFileSync(nom, 'utf8');
  fs.rmSync(nom);
  suite(contenu);
}

function obeir() {
  if (fs.existsSync('meurs')) process.exit(3);
  if (fs.existsSync('gele')) {
    fs.rmSync('gele');
    process.kill(process.pid, 'SIGSTOP');
  }
}

function noter(requete, reponse) {
  let note = '';
  requete.on('data', (morceau) => { note += morceau; });
  requete.on('end', () => {
    fs.appendFileSync('notes', `${note}\n`);
    reponse.end();
  });
}

// Seule la page dit qui elle est : une sonde, elle, n’attend pas.
function servir(requete, reponse) {
  reponse.setHeader('content-type', 'text/html; charset=utf-8');
  if (!requete.headers['user-agent']) return reponse.end(PAGE);
  prendre('page', reponse, (issue) => (issue === 'rate' ? requete.socket.destroy() : reponse.end(PAGE)));
}

function repondre(requete, reponse) {
  if (requete.url === '/note') return noter(requete, reponse);
  if (requete.url === '/ordre') return prendre('ordre', reponse, (ordre) => reponse.end(ordre));
  if (requete.url === '/api/sante') return reponse.end('{"version":"1.4.2","carnet":{"terminaux":5}}');
  servir(requete, reponse);
}

function ecouter() {
  const serveur = http.createServer(repondre);
  serveur.on('error', () => serveur.listen(0, '127.0.0.1')); // le port est pris : un autre
  serveur.listen(port, '127.0.0.1');
  setInterval(obeir, PAS);
}

const CONDUITES = {
  'ordinaire': ecouter,
  'bavard': () => {
    console.log('MESSAGE=Voici du neuf');
    ecouter();
  },
  'lent à finir': () => {
    process.on('SIGTERM', () => setInterval(() => fs.existsSync('finis') && process.exit(0), PAS));
    ecouter();
  },
  'mort-né': () => {
    console.error('plus de place au carnet');
    process.exit(1);
  },
  'modifié': () => {
    console.log('MODIFIE=serveur.mjs');
    process.exit(1);
  },
  'muet': () => {
    console.log('je réfléchis');
    setInterval(() => {}, 1000);
  },
};
fs.writeFileSync('pid', String(process.pid));
CONDUITES[conduite]();
