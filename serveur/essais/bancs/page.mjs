// Mesures de la page et du serveur, à la main : node essais/bancs/page.mjs
import { createWriteStream, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { once } from 'node:events';
import { Navigateur, PageVue } from '../navigateur.mjs';

const LIGNE = 'une ligne ordinaire de texte, soixante-dix caractères environ, voilà\n';
const LIGNES = Math.ceil(100e6 / Buffer.byteLength(LIGNE));

const memoire = ({ processus: { pid } }) => {
  const pss = /^Pss:\s+(\d+)/m.exec(readFileSync(`/proc/${pid}/smaps_rollup`, 'utf8'))[1];
  return `${Math.round(Number(pss) / 1024)} Mo`;
};

async function mesurer(faire) {
  const finir = [];
  const navigateur = await Navigateur.lancer();
  try {
    await faire(await PageVue.ouvrir({ after: (suite) => finir.push(suite) }, navigateur));
  } finally {
    for (const suite of finir) await suite();
    await navigateur.fermer();
  }
}

// De l’événement de saisie au glyphe dans la page, aller et retour par l’interpréteur compris.
const TOUCHES = `(async () => {
  const durees = [];
  const rangs = document.querySelector('.panneau:not([hidden]) .xterm-rows');
  for (let i = 1; i <= 101; i += 1) {
    const depart = performance.now();
    document.activeElement.dispatchEvent(new InputEvent('input', { data: 'x', inputType: 'insertText', bubbles: true }));
    await new Promise((suite) => {
      const veilleur = new MutationObserver(() => rangs.textContent.includes('x'.repeat(i)) && (veilleur.disconnect(), suite()));
      veilleur.observe(rangs, { childList: true, subtree: true, characterData: true });
    });
    durees.push(performance.now() - depart);
    await new Promise((suite) => setTimeout(suite, 20));
  }
  return durees.sort((a, b) => a - b);
})()`;

await mesurer(async (page) => {
  console.log(`serveur, un terminal : ${memoire(page.serveur)}`);
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 1600, height: 900, deviceScaleFactor: 1, mobile: false });
  const durees = await page.evaluer(TOUCHES);
  console.log(`de la touche au glyphe : médiane ${durees[50].toFixed(1)} ms, 95 % sous ${durees[95].toFixed(1)} ms`);
  await page.touche('Ctrl+c');
  const gros = createWriteStream(join(page.maison.maison, 'gros'));
  for (let i = 0; i < LIGNES; i += 1000) if (!gros.write(LIGNE.repeat(1000))) await once(gros, 'drain');
  gros.end();
  await once(gros, 'close');
  const depart = performance.now();
  await page.ecrire('cat gros; echo fini-$((1 + 1))');
  await page.touche('Entrée');
  while (!/fini-2/.test(await page.texte())) await new Promise((suite) => setTimeout(suite, 100));
  const secondes = (performance.now() - depart) / 1000;
  console.log(`cat de 100 Mo : ${secondes.toFixed(1)} s, ${(100 / secondes).toFixed(1)} Mo/s, serveur ensuite : ${memoire(page.serveur)}`);
});

await mesurer(async (page) => {
  for (let nombre = 2; nombre <= 20; nombre += 1) {
    await page.touche('Ctrl+Maj+T');
    await page.attendre(`document.querySelectorAll('.onglet').length === ${nombre}`);
  }
  await page.attendreLeTexte('/\\$ /');
  console.log(`serveur, vingt terminaux au repos : ${memoire(page.serveur)}`);
});
