import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { contraste, rendreLisible } from '../page/contraste.js';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

const MINIMUM = 4.5;
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

// Les points d’une case, et de quoi écrire au terminal ce qu’un programme y écrirait.
const OUTILS = `
  const { terminal, panneau } = terminaux.choisie();
  const toile = panneau.querySelector('canvas');
  const { cell } = terminal._core._renderService.dimensions.device;
  const lireLaCase = (x, y) => new Uint32Array(toile.getContext('2d').getImageData(x * cell.width, y * cell.height, cell.width, cell.height).data.buffer);
  const enCouleur = (point) => (point & 255) << 16 | point & 0xff00 | point >> 16 & 255;
  const couleurs = (x, y) => [...new Set([...lireLaCase(x, y)].map(enCouleur))];
  const image = () => new Promise((suite) => requestAnimationFrame(() => requestAnimationFrame(suite)));
  const ecrire = (texte) => new Promise((suite) => terminal.write(texte, suite)).then(image);`;

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  // L’interpréteur réécrit son invite quand la taille change : il cède la place à un programme muet.
  await page.ecrire('printf pret-$((1 + 1)); exec sleep 1000');
  await page.touche('Entrée');
  await page.attendreLeTexte('/pret-2/');
  const dansLaPage = (corps) => page.evaluer(`(async () => { ${OUTILS} ${corps} })()`);
  await dansLaPage(`await ecrire('\\x1b[2J\\x1b[H\\x1b[?25l')`);
  await faire(page, dansLaPage);
  assert.deepEqual(page.fautes, []);
});

test('une encre lisible ne change pas ; une autre s’éloigne du fond de juste ce qu’il faut, du côté où elle est', () => {
  assert.equal(rendreLisible(0x767676, 0xffffff, 4.5), 0x767676);
  for (const [encre, fond] of [[0xffff00, 0xffffff], [0x2233aa, 0x000000], [0x808080, 0x808080], [0x9999ff, 0x8888ee]]) {
    const rendue = contraste(rendreLisible(encre, fond, 4.5), fond);
    assert.ok(rendue >= 4.5 && rendue < 4.8, `${encre.toString(16)} sur ${fond.toString(16)} : ${rendue}`);
  }
  assert.equal(rendreLisible(0xffff00, 0xffffff, 1), 0xffff00);
});

essai('dans chaque thème, chaque couleur se lit sur chaque fond, et ce qui se lisait déjà n’a pas changé', async (page, dansLaPage) => {
  const choix = await page.evaluer('[...document.querySelectorAll("[name=theme] option")].map((o) => o.value)');
  assert.ok(choix.length >= 3);
  for (const theme of choix) {
    // Un souligné est plein : sa couleur est celle de l’encre, au point près. Le dernier rang est la couleur par défaut.
    const paires = await dansLaPage(`
      (await import('/reglages.js')).changer('theme', '${theme}');
      const un = (rang, debut) => rang === 16 ? '' : '\\x1b[' + debut + '8;5;' + rang + 'm';
      const rangs = Array.from({ length: 17 }, (_, i) => i);
      await ecrire('\\x1b[H' + rangs.map((f) => rangs.map((a) => '\\x1b[4m' + un(a, 3) + un(f, 4) + ' \\x1b[0m').join('')).join('\\r\\n'));
      const { ansi, foreground, background } = terminal._core._themeService.colors;
      const voulue = (rang, sinon) => (rang === 16 ? sinon : ansi[rang]).rgba >>> 8;
      return rangs.flatMap((f) => rangs.map((a) => ({ a, f, encre: voulue(a, foreground), fond: voulue(f, background), vues: couleurs(a, f) })));`);
    for (const { a, f, encre, fond, vues } of paires) {
      // D’une couleur sur la même, le programme cache son texte.
      if (a === f && a < 16) {
        assert.deepEqual(vues, [fond], `${theme} : ${a} sur lui-même se voit`);
        continue;
      }
      assert.equal(vues.length, 2, `${theme} : ${a} sur ${f} ne se voit pas`);
      const [vue] = vues.filter((couleur) => couleur !== fond);
      assert.ok(contraste(vue, fond) >= MINIMUM, `${theme} : ${a} sur ${f}, ${contraste(vue, fond)}`);
      if (contraste(encre, fond) >= MINIMUM) assert.equal(vue, encre, `${theme} : ${a} sur ${f} a changé`);
    }
  }
});

essai('à chaque corps et à chaque échelle, la case est entière, la toile tombe sur les points de l’écran, et rien n’est coupé', async (page, dansLaPage) => {
  for (const echelle of [1, 1.25, 1.5, 2]) {
    await page.demander('Emulation.setDeviceMetricsOverride', { width: 1000, height: 800, deviceScaleFactor: echelle, mobile: false });
    await page.attendre(`devicePixelRatio === ${echelle}`);
    for (let corps = 8; corps <= 32; corps += 1) {
      const vu = await dansLaPage(`
        (await import('/reglages.js')).changer('corps', ${corps});
        await image();
        await ecrire('\\x1b[2J\\x1b[H█│─┼_gjpqyx\\r\\n█│─┼');
        const mesures = terminal._core._renderService.dimensions.device.cell;
        const lignes = (x, y = 0) => {
          const { data } = toile.getContext('2d').getImageData(x * mesures.width, y * mesures.height, mesures.width, mesures.height);
          return Array.from({ length: mesures.height }, (_, j) => Array.from({ length: mesures.width }, (_, i) => data[4 * (j * mesures.width + i)] !== 251));
        };
        const filets = [0, 1, 2, 3].flatMap((x) => [0, 1].map((y) => lignes(x, y)));
        const bas = [4, 5, 6, 7, 8, 9, 10].map((x) => lignes(x).map((ligne) => ligne.some(Boolean)).lastIndexOf(true) + 1);
        const { left, top, width, height } = toile.getBoundingClientRect();
        return { largeur: mesures.width, hauteur: mesures.height, filets, bas, points: [toile.width, toile.height],
          bords: [left, top, width, height].map((bord) => bord * devicePixelRatio) };`);
      const ici = `corps ${corps}, échelle ${echelle}`;
      assert.ok(Number.isInteger(vu.largeur) && Number.isInteger(vu.hauteur), ici);
      for (const bord of vu.bords) assert.ok(Math.abs(bord - Math.round(bord)) < 0.02, `${ici} : bord à ${bord}`);
      assert.deepEqual(vu.bords.slice(2).map(Math.round), vu.points, ici);
      const [pave, , debout, , couche, , croix] = vu.filets;
      assert.ok(pave.flat().every(Boolean), `${ici} : le pavé n’est pas plein`);
      assert.ok(debout.every((ligne) => ligne.some(Boolean)), `${ici} : │ a un trou`);
      assert.ok(couche.some((ligne) => ligne.every(Boolean)), `${ici} : ─ a un trou`);
      assert.ok(croix.every((ligne) => ligne.some(Boolean)) && croix.some((ligne) => ligne.every(Boolean)), `${ici} : ┼ a un trou`);
      const [souligne, ...autres] = vu.bas;
      const base = autres.pop();
      // La mise au point des contours peut prendre un point à un jambage ; « _ » descend au moins aussi bas.
      const jambage = Math.max(1, Math.floor(0.2 * corps * echelle) - 1);
      for (const bas of autres) assert.ok(bas - base >= jambage && bas <= souligne, `${ici} : un jambage est coupé, ${vu.bas}`);
    }
  }
});

essai('curseur, sélection, trouvaille, pâle, inverse et invisible gardent leur sens', async (page, dansLaPage) => {
  const vu = await dansLaPage(`
    const lire = async (texte, x = 0) => { await ecrire('\\x1b[0m\\x1b[2J\\x1b[H' + texte); return couleurs(x, 0); };
    const { foreground, background, cursor } = terminal._core._themeService.colors;
    const pale = await lire('\\x1b[2;4m \\x1b[0m');
    const normal = await lire('\\x1b[4m \\x1b[0m');
    const inverse = await lire('\\x1b[7m \\x1b[0m');
    const invisible = await lire('\\x1b[8mH\\x1b[0m');
    terminal.focus();
    const formes = {};
    for (const [numero, forme] of [[2, 'bloc'], [4, 'souligne'], [6, 'barre']]) {
      await lire('\\x1b[' + numero + ' q\\x1b[?25h');
      formes[forme] = [...lireLaCase(0, 0)].filter((point) => enCouleur(point) === cursor.rgba >>> 8).length / (cell.width * cell.height);
    }
    await lire('\\x1b[1 q');
    const nombre = () => couleurs(0, 0).join();
    const avant = nombre();
    for (let i = 0; i < 200 && nombre() === avant; i += 1) await image();
    const clignote = nombre() !== avant;
    await ecrire('\\x1b[?25l\\x1b[2 qab');
    terminal.select(0, 0, 2);
    await image();
    const selection = couleurs(0, 0);
    const fondDeSelection = terminal._core._themeService.colors.selectionBackgroundOpaque.rgba >>> 8;
    terminal.clearSelection();
    terminal.registerDecoration({ marker: terminal.registerMarker(0), x: 1, width: 1, backgroundColor: '#8a6d1f' });
    await image();
    const trouvaille = [couleurs(0, 0), couleurs(1, 0)].map((vues) => vues.includes(0x8a6d1f));
    return { pale, normal, inverse, invisible, formes, clignote, selection, fondDeSelection, trouvaille, texte: foreground.rgba >>> 8, fond: background.rgba >>> 8 };`);
  const encre = (couleurs) => couleurs.find((couleur) => couleur !== vu.fond);
  assert.equal(encre(vu.normal), vu.texte);
  const dePale = contraste(encre(vu.pale), vu.fond);
  assert.ok(dePale >= 3 && dePale < contraste(vu.texte, vu.fond), `pâle : ${dePale}`);
  assert.deepEqual(vu.inverse, [vu.texte]);
  assert.deepEqual(vu.invisible, [vu.fond]);
  assert.equal(vu.formes.bloc, 1);
  for (const forme of ['souligne', 'barre']) assert.ok(vu.formes[forme] > 0 && vu.formes[forme] < 0.3, forme);
  assert.ok(vu.clignote, 'le curseur ne clignote pas');
  assert.ok(vu.selection.includes(vu.fondDeSelection));
  assert.deepEqual(vu.trouvaille, [false, true]);
});

essai('un terminal caché rend sa toile, et la retrouve entière', async (page, dansLaPage) => {
  await dansLaPage(`await ecrire('\\x1b[41m \\x1b[0m')`);
  const premiere = await page.evaluer('document.querySelector(".panneau:not([hidden])").dataset.terminal');
  await page.touche('Ctrl+Maj+T');
  await page.attendre(`document.querySelector('[data-terminal="${premiere}"].panneau').hidden && document.querySelector('.panneau:not([hidden]) canvas').width > 0`);
  assert.equal(await page.evaluer(`document.querySelector('[data-terminal="${premiere}"].panneau canvas').width`), 0);
  await page.touche('Ctrl+Maj+PagePrécédente');
  await page.attendre(`document.querySelector('[data-terminal="${premiere}"].panneau canvas').width > 0`);
  const rouge = await dansLaPage('return [couleurs(0, 0), terminal._core._themeService.colors.ansi[1].rgba >>> 8]');
  assert.deepEqual(rouge[0], [rouge[1]]);
});

essai('un écho se dessine aussitôt, et une inondation une fois par image', async (page) => {
  const vu = await page.evaluer(`(async () => {
    const { Cadence } = await import('/cadence.js');
    const image = () => new Promise((suite) => requestAnimationFrame(suite));
    const dessins = [];
    const cadence = new Cadence((debut, fin) => dessins.push([debut, fin]), () => false);
    const pas = [];
    cadence.refresh(3, 4, 24);
    pas.push(dessins.length);
    for (let i = 0; i < 50; i += 1) cadence.refresh(i, i, 60);
    pas.push(dessins.length);
    await image();
    cadence.refresh(7, 7, 24);
    pas.push(dessins.length);
    await image();
    pas.push(dessins.length);
    await image();
    pas.push(dessins.length);
    return { pas, dessins };
  })()`);
  assert.deepEqual(vu, { pas: [1, 1, 2, 3, 3], dessins: [[3, 4], [0, 49], [7, 7]] });
});

essai('une inondation ne demande plus d’images, et se redessine à son rythme', async (page) => {
  const vu = await page.evaluer(`(async () => {
    const { Cadence } = await import('/cadence.js');
    const image = () => new Promise((suite) => requestAnimationFrame(suite));
    let dessins = 0;
    const cadence = new Cadence(() => (dessins += 1), () => true);
    const demandes = [];
    const { setTimeout, requestAnimationFrame: demander } = window;
    cadence.refresh(0, 23, 24);
    cadence.refresh(0, 23, 24);
    window.setTimeout = (faire, delai) => demandes.push({ faire, delai });
    try {
      await image();
      const pas = [dessins];
      window.requestAnimationFrame = () => demandes.push('image');
      cadence.refresh(0, 23, 24);
      cadence.addRefreshCallback(() => pas.push('rappel'));
      pas.push(dessins, demandes.length);
      demandes[0].faire();
      return [...pas, dessins, demandes.map(({ delai }) => delai)];
    } finally {
      Object.assign(window, { setTimeout, requestAnimationFrame: demander });
    }
  })()`);
  assert.deepEqual(vu, [2, 2, 1, 'rappel', 3, [66, 66]]);
});

essai('un terminal fermé ne se dessine plus', async (page, dansLaPage) => {
  await dansLaPage(`
    const cadence = terminal._core._renderService._renderDebouncer;
    cadence.refresh(0, 0, 1);
    cadence.refresh(0, 0, 1);
    terminal.dispose();
    await image();`);
});

essai('ce qui défile ne redessine pas une sélection qui n’existe pas', async (page, dansLaPage) => {
  const redessinees = await dansLaPage(`
    let vues = 0;
    terminal._core._selectionService.onRequestRedraw(() => (vues += 1));
    await ecrire('une ligne\\r\\n'.repeat(500));
    const sans = vues;
    terminal.selectAll();
    await ecrire('une ligne\\r\\n'.repeat(5));
    return [sans, vues > 0];`);
  assert.deepEqual(redessinees, [0, true]);
});

essai('après une inondation, la zone de saisie est revenue au curseur', async (page, dansLaPage) => {
  await dansLaPage(`await ecrire('une ligne\\r\\n'.repeat(500) + 'fin')`);
  await page.attendre(`(() => { const { terminal } = terminaux.choisie();
    const { css: { cell } } = terminal._core._renderService.dimensions;
    const { cursorX, cursorY } = terminal.buffer.active;
    const { offsetLeft, offsetTop } = terminal.textarea;
    return Math.abs(offsetLeft - cursorX * cell.width) < 2 && Math.abs(offsetTop - cursorY * cell.height) < 2; })()`);
});
