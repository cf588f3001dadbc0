import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

const RAPPORT_MAXIMUM = 5;
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.evaluer(`import('/terminaux.js').then(({ vues }) => {
    window.vue = [...vues.values()][0];
    window.relire = (texte) => new Promise((suite) => vue.terminal.write(texte, suite));
    window.haut = () => vue.terminal.buffer.active.getLine(vue.terminal.buffer.active.viewportY).translateToString(true);
  })`);
  await faire(page, t);
  assert.deepEqual(page.fautes, []);
});

const lancerUneLigne = async (page, ligne) => {
  await page.ecrire(ligne);
  await page.touche('Entrée');
};
// Le nom de chaque marque de la marge qui se voit, de haut en bas.
const attendreLesMarges = (page, ...noms) => page.attendre(`[...document.querySelectorAll('.panneau:not([hidden]) .statut')].filter((m) => m.checkVisibility())
  .sort((a, b) => a.offsetTop - b.offsetTop).map((m) => m.ariaLabel).join() === '${noms}'`);

essai('d’une commande à l’autre, sa sortie, et comment chacune a fini', async (page) => {
  // Ce que l’on tape avant l’invite s’afficherait deux fois.
  const lancerPuisAttendre = async (ligne, fin) => {
    await lancerUneLigne(page, ligne);
    await page.attendreLeTexte(`/${fin}\\$ \\s*$/`);
  };
  await lancerPuisAttendre('. "$KELTROVE_INTEGRATION/keltrove.bash"; echo lue', '\\nlue\\n');
  await lancerPuisAttendre('seq 100; printf fin-du-premier', 'fin-du-premier');
  await lancerPuisAttendre('seq 200 203; sh -c "exit 3"', '\\n203\\n');
  await lancerPuisAttendre('', '\\n\\$ +\\n');
  await lancerPuisAttendre('seq 300 400; echo tout-vu', '\\ntout-vu\\n');
  const visiter = async (touche, commande) => {
    await page.touche(touche);
    await page.attendre(`haut().endsWith(${JSON.stringify(commande)})`);
  };
  await visiter('Ctrl+Maj+Haut', '$ seq 300 400; echo tout-vu');
  await visiter('Ctrl+Maj+Haut', '$ seq 200 203; sh -c "exit 3"');
  await page.attendre('document.querySelector(".visitee")?.checkVisibility()');
  await attendreLesMarges(page, 'Commande échouée (3)', 'Commande réussie');
  await page.touche('Ctrl+Maj+L');
  assert.equal(await page.evaluer('vue.terminal.getSelection()'), '200\n201\n202\n203');
  await visiter('Ctrl+Maj+Haut', '$ seq 100; printf fin-du-premier');
  await page.touche('Ctrl+Maj+L');
  assert.match(await page.evaluer('vue.terminal.getSelection()'), /^1\n2\n[^]*\n100\nfin-du-premier$/);
  await visiter('Ctrl+Maj+Bas', '$ seq 200 203; sh -c "exit 3"');
  await visiter('Ctrl+Maj+Bas', '$ seq 300 400; echo tout-vu');
  await page.touche('Ctrl+Maj+Bas');
  await page.attendre('vue.terminal.buffer.active.viewportY === vue.terminal.buffer.active.baseY && !document.querySelector(".visitee")');
  await page.touche('Ctrl+Maj+L');
  assert.match(await page.evaluer('vue.terminal.getSelection()'), /^300\n[^]*\n400\ntout-vu$/);
  // Repliée autrement, la sortie reste la même.
  await page.evaluer('window.large = vue.terminal.cols; vue.terminal.resize(12, 20)');
  await page.touche('Ctrl+Maj+Haut');
  await page.touche('Ctrl+Maj+Haut');
  await page.touche('Ctrl+Maj+L');
  await page.attendre('vue.terminal.getSelection() === "200\\n201\\n202\\n203"');
  await page.evaluer('vue.terminal.resize(large, 20)');
  // Rechargée, la page retrouve les marques dans ce qui est rejoué.
  await page.recharger();
  await page.attendreLeTexte('/tout-vu\\n\\$ /');
  await page.touche('Ctrl+Maj+Haut');
  await page.touche('Ctrl+Maj+Haut');
  await page.attendre('document.querySelector(".visitee")?.checkVisibility()');
  await attendreLesMarges(page, 'Commande échouée (3)', 'Commande réussie');
});

essai('sous un programme plein écran, ou sans commandes annoncées, les touches vont au programme', async (page) => {
  await lancerUneLigne(page, "sh -c 'echo pret; exec cat -v'");
  await page.attendreLeTexte('/\\npret/');
  await page.touche('Ctrl+Maj+Haut');
  await page.attendreLeTexte('/\\^\\[\\[1;6A/');
  await page.evaluer('relire("\\x1b]133;A\\x07$ \\x1b]133;C\\x07\\r\\nx\\r\\n\\x1b]133;D;0\\x07\\x1b]133;A\\x07\\x1b[?1049h")');
  await page.touche('Ctrl+Maj+Bas');
  await page.attendreLeTexte('/\\^\\[\\[1;6B/');
});

essai('des marques sans fin ne ralentissent ni ne s’amassent', async (page, t) => {
  const lire = (texte) => page.evaluer(`(async () => { const depart = performance.now(); await relire(${texte}); return performance.now() - depart; })()`);
  const marques = `"\\x1b]133;A\\x07$ x\\r\\n\\x1b]133;C\\x07sortie\\r\\n\\x1b]133;D;1\\x07".repeat(3000)`;
  const cat = '"une ligne de texte bien ordinaire, ni longue ni courte\\r\\n".repeat(50_000)';
  const [nus, chargees] = [[], []];
  // La machine a d’autres choses à faire : le meilleur de chacun.
  for (let i = 0; i < 3; i += 1) {
    nus.push(await lire(cat));
    await lire(marques);
    assert.equal(await page.evaluer('vue.terminal.markers.length'), 200);
    chargees.push(await lire(cat));
    assert.equal(await page.evaluer('vue.terminal.markers.length'), 0);
  }
  const [nu, marque] = [nus, chargees].map((durees) => Math.round(Math.min(...durees)));
  t.diagnostic(`${marque} ms derrière 200 commandes marquées, ${nu} sans`);
  assert.ok(marque < RAPPORT_MAXIMUM * nu, `${marque} ms, contre ${nu}`);
  // Toutes sur la même ligne, ou jamais finies.
  const sansLignes = await lire('"\\x1b]133;A\\x07\\x1b]133;C\\x07\\x1b]133;D;0\\x07".repeat(5000) + "\\x1b]133;C\\x07".repeat(5000) + "\\x1b]133;A\\x07".repeat(5000)');
  t.diagnostic(`${Math.round(sansLignes)} ms pour 15 000 marques sur la même ligne`);
  assert.ok((await page.evaluer('vue.terminal.markers.length')) <= 200);
});
