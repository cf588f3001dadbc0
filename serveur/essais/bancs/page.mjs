// La page et le serveur, mesurés à tour de rôle avec un autre terminal du web : node essais/bancs/page.mjs [passes]
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createWriteStream, existsSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { Navigateur, PageVue, TEXTE } from '../navigateur.mjs';
import { lancer, preparerMaison, trouverUnPort } from '../outils.mjs';

const PASSES = Number(process.argv[2] ?? 5);
const LIGNE = 'une ligne ordinaire de texte, soixante-dix caractères environ, voilà\n';
const LIGNES = Math.ceil(100e6 / Buffer.byteLength(LIGNE));
const DOSSIER_DE_L_AUTRE = process.env.BANC_AUTRE ?? join(tmpdir(), 'banc-wetty');
const PROGRAMME_DE_L_AUTRE = join(DOSSIER_DE_L_AUTRE, 'node_modules/wetty/build/main.js');

if (!existsSync(PROGRAMME_DE_L_AUTRE) || process.getuid() !== 0) {
  console.log(`Pour comparer, en root : npm install --prefix ${DOSSIER_DE_L_AUTRE} wetty@3.2.0 (Node ≥ 20, make et g++).`);
  process.exit(1);
}

const NOTRES = {
  nom: 'Keltrove',
  texte: TEXTE,
  ecouter: '(faire) => terminaux.choisie().terminal.onRender(faire)',
  lancer,
  adresse: (port) => `http://localhost:${port}/`,
  async vingtTerminaux(t, navigateur, options) {
    const page = await PageVue.ouvrir(t, navigateur, options);
    for (let nombre = 2; nombre <= 20; nombre += 1) {
      await page.touche('Ctrl+Maj+T');
      await page.attendre(`document.querySelectorAll('.onglet').length === ${nombre}`);
    }
    await page.attendreLeTexte('/\\$ /');
  },
};
// Lancé en root, il ouvre l’interpréteur lui-même, comme nous : ni ssh ni login.
const AUTRE = {
  nom: `WeTTY ${JSON.parse(readFileSync(join(PROGRAMME_DE_L_AUTRE, '../../package.json'))).version}`,
  texte: 'document.querySelector(".xterm-rows").textContent',
  ecouter: '(faire) => new MutationObserver(faire).observe(document.querySelector(".xterm-rows"), { childList: true, subtree: true, characterData: true })',
  async lancer(t, { maison }) {
    const port = await trouverUnPort();
    const options = ['--host', '127.0.0.1', '--port', port, '--base', '/', '--command', '/bin/bash', '--log-level', 'error'];
    const env = { ...process.env, HOME: maison, LANG: 'C.UTF-8', HISTFILE: '/dev/null' };
    const processus = spawn(process.execPath, [PROGRAMME_DE_L_AUTRE, ...options], { cwd: maison, env, stdio: 'ignore' });
    t.after(async () => {
      processus.kill('SIGKILL');
      await once(processus, 'close');
    });
    while (!(await fetch(`http://127.0.0.1:${port}/`).catch(() => null))) await pause(50);
    return { processus, port };
  },
  adresse: (port) => `http://127.0.0.1:${port}/`,
  async vingtTerminaux(t, navigateur, options) {
    for (let i = 0; i < 20; i += 1) await PageVue.ouvrir(t, navigateur, options);
  },
};

const pause = (duree) => new Promise((suite) => setTimeout(suite, duree));
const mediane = (valeurs) => [...valeurs].sort((a, b) => a - b)[Math.floor(valeurs.length / 2)];
const memoire = ({ processus: { pid } }) => (
  Number(/^Pss:\s+(\d+)/m.exec(readFileSync(`/proc/${pid}/smaps_rollup`, 'utf8'))[1]) / 1024
);

// De l’événement de saisie au glyphe dans la page, aller et retour par l’interpréteur compris.
const mesurerLesTouches = ({ texte, ecouter }) => `(async () => {
  const durees = [];
  let voir = () => {};
  (${ecouter})(() => voir());
  for (let i = 1; i <= 101; i += 1) {
    const depart = performance.now();
    document.activeElement.dispatchEvent(new InputEvent('input', { data: 'x', inputType: 'insertText', bubbles: true }));
    await new Promise((suite) => (voir = () => ${texte}.includes('x'.repeat(i)) && suite()));
    durees.push(performance.now() - depart);
    await new Promise((suite) => setTimeout(suite, 20));
  }
  return durees.sort((a, b) => a - b);
})()`;

// Un serveur, une maison et un navigateur neufs ; ici, WebGL serait simulé : il est coupé.
async function mesurer(lui, faire) {
  const finir = [];
  const t = { after: (suite) => finir.unshift(suite) };
  const navigateur = await Navigateur.lancer(['--disable-3d-apis']);
  try {
    const maison = await preparerMaison(t);
    writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '\n");
    const serveur = await lui.lancer(t, maison);
    await faire(t, navigateur, { maison, serveur, adresse: lui.adresse(serveur.port), prete: `${lui.texte}.includes('$')` });
  } finally {
    for (const suite of finir) await suite();
    await navigateur.fermer();
  }
}

async function passer(lui) {
  const vu = {};
  await mesurer(lui, async (t, navigateur, options) => {
    const page = await PageVue.ouvrir(t, navigateur, options);
    await page.demander('Emulation.setDeviceMetricsOverride', { width: 1600, height: 900, deviceScaleFactor: 1, mobile: false });
    await page.attendre('document.activeElement.className === "xterm-helper-textarea"');
    vu['serveur, un terminal (Mo)'] = memoire(options.serveur);
    const durees = await page.evaluer(mesurerLesTouches(lui));
    vu['de la touche au glyphe, médiane (ms)'] = durees[50];
    vu['de la touche au glyphe, 95 % (ms)'] = durees[95];
    await page.touche('Ctrl+c');
    const gros = createWriteStream(join(options.maison.maison, 'gros'));
    for (let i = 0; i < LIGNES; i += 1000) if (!gros.write(LIGNE.repeat(1000))) await once(gros, 'drain');
    gros.end();
    await once(gros, 'close');
    const depart = performance.now();
    await page.ecrire('cat ~/gros; echo fini-$((1 + 1))');
    await page.touche('Entrée');
    while (!(await page.evaluer(`/fini-2/.test(${lui.texte})`))) await pause(100);
    vu['cat de 100 Mo (Mo/s)'] = 100e3 / (performance.now() - depart);
    vu['serveur, ensuite (Mo)'] = memoire(options.serveur);
  });
  await mesurer(lui, async (t, navigateur, options) => {
    await lui.vingtTerminaux(t, navigateur, options);
    await pause(2000);
    vu['serveur, vingt terminaux au repos (Mo)'] = memoire(options.serveur);
  });
  return vu;
}

const vus = new Map([[NOTRES, []], [AUTRE, []]]);
for (let passe = 1; passe <= PASSES; passe += 1) {
  for (const [lui, siens] of vus) {
    siens.push(await passer(lui));
    console.error(`${passe}/${PASSES} ${lui.nom} : ${JSON.stringify(siens.at(-1))}`);
  }
}
console.log(`| | ${NOTRES.nom} | ${AUTRE.nom} | rapport |\n|---|---|---|---|`);
for (const quoi of Object.keys(vus.get(NOTRES)[0])) {
  const [a, b] = [...vus.values()].map((siens) => mediane(siens.map((vu) => vu[quoi])));
  console.log(`| ${quoi} | ${a.toFixed(1)} | ${b.toFixed(1)} | ${(a / b).toFixed(2)} |`);
}
