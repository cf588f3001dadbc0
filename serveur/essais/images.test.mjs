import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { essaisDeLaPage } from './navigateur.mjs';

const essai = essaisDeLaPage();

// Quarante points de large et douze de haut, tout rouges.
const ROUGE = '\x1bPq"1;1;40;12#1;2;100;0;0#1!40~-#1!40~\x1b\\';
const PNG = 'iVBORw0KGgoAAAANSUhEUgAAACgAAAAMCAIAAACfoWgaAAAAH0lEQVQ4y2NkYPjPMBCAaUBsHbV41OJRi0ctHpIWAwDtXgEXVJthgQAAAABJRU5ErkJggg==';
const BLEU = `\x1b]1337;File=inline=1;size=${Buffer.from(PNG, 'base64').length}:${PNG}\x07`;
const POINTS = (teinte) => `(() => { const c = document.querySelector('.xterm-image-layer'); if (!c) return 0;
  const d = c.getContext('2d').getImageData(0, 0, c.width, c.height).data; let n = 0;
  for (let i = 0; i < d.length; i += 4) if (d[i] === ${teinte[0]} && d[i + 1] === ${teinte[1]} && d[i + 2] === ${teinte[2]} && d[i + 3] === 255) n += 1;
  return n; })()`;
const charge = (page) => page.evaluer('performance.getEntriesByType("resource").some(({ name }) => name.includes("addon-image"))');
const afficher = async (page, nom, texte) => {
  writeFileSync(join(page.maison.maison, nom), texte);
  await page.ecrire(`clear; cat ${nom}; echo fi-$((1 + 1))-${nom}`);
  await page.touche('Entrée');
  await page.attendreLeTexte(`/^ *fi-2-${nom}/m`);
};
const demander = async (page, nom, question) => {
  await page.ecrire(`clear; printf '${question}'; read -rs -d "${question.at(-1)}" r; printf '${nom}<%s>\\n' "\${r//$'\\e'/E}"`);
  await page.touche('Entrée');
  return page.attendreLeTexte(`/${nom}<E.*>/`);
};

essai('la première image se dessine, bien que de quoi la lire ne se charge qu’alors', async (page) => {
  await afficher(page, 'rien', 'du texte\n');
  assert.equal(await charge(page), false);
  await afficher(page, 'sixel', `${ROUGE}\n`);
  await page.attendre(`${POINTS([255, 0, 0])} === 480`);
  assert.equal(await charge(page), true);
  await afficher(page, 'encore', `${ROUGE}\n${ROUGE}\n`);
  await page.attendre(`${POINTS([255, 0, 0])} === 960`);
  await page.recharger();
  await page.attendre(`${POINTS([255, 0, 0])} === 960`);
});

essai('une image du protocole d’iTerm se dessine, un autre usage de ce numéro ne charge rien', async (page) => {
  await afficher(page, 'autre', '\x1b]1337;CurrentDir=/tmp\x07');
  assert.equal(await charge(page), false);
  await afficher(page, 'bleu', `${BLEU}\n`);
  await page.attendre(`${POINTS([0, 0, 255])} >= 480`);
});

essai('un programme apprend que l’on dessine, et la taille des cases ; plus rien quand on ne le veut pas', async (page) => {
  assert.equal(await demander(page, 'nature', '\\e[c'), 'nature<E[?62;4;9;22>');
  assert.match(await demander(page, 'case', '\\e[16t'), /^case<E\[6;\d+;\d+>$/);
  await page.touche('Ctrl+Maj+P');
  await page.evaluer('document.querySelector("[name=images]").click()');
  await page.touche('Échap');
  assert.equal(await demander(page, 'sans', '\\e[c'), 'sans<E[?1;2>');
  await afficher(page, 'sixel', `${ROUGE}\n`);
  assert.equal(await page.evaluer(POINTS([255, 0, 0])), 0);
  assert.equal(await charge(page), false);
});

essai('une image hostile ne fige rien, et la suivante se dessine', async (page) => {
  await afficher(page, 'immense', `\x1bPq"1;1;999999;999999#1;2;0;0;100#1!999999999~-!999999999~\x1b\\\n`);
  await afficher(page, 'sansfin', `\x1bPq#1${'!99999~-'.repeat(20_000)}\x1b\\\n`);
  await afficher(page, 'faux', `\x1b]1337;File=inline=1;size=99999999999:AAAA\x07\x1b]1337;File=inline=1;size=8:iVBORw0KGgo=\x07\n`);
  await afficher(page, 'sixel', `${ROUGE}\n`);
  await page.attendre(`${POINTS([255, 0, 0])} === 480`);
});
