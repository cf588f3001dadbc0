import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { arreter, attendreLeFichier, lancer } from './outils.mjs';

const ONGLETS = '[...document.querySelectorAll(".onglet")]';
const MONTRES = '[...document.querySelectorAll(".panneau:not([hidden])")].map((p) => p.dataset.terminal)';
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: 'window.ouverts = []; window.open = (...a) => ouverts.push(a);' });
  await faire(page, t);
  assert.deepEqual(page.fautes, []);
});

const NOTER_LA_COPIE = "addEventListener('copy', (e) => { window.copie = e.clipboardData.getData('text/plain'); })";
// Chromium n’exécute pas cette commande dans une zone vide ; WebKit, si.
const TOUT_SELECTIONNER = 'document.activeElement.value = " "; document.execCommand("selectAll")';

const lesIds = (page) => page.evaluer(`${ONGLETS}.map((o) => o.dataset.terminal)`);
const lancerUneLigne = async (page, ligne) => {
  await page.ecrire(ligne);
  await page.touche('Entrée');
};
const ouvrirEncore = async (page, touche = 'Ctrl+Maj+T') => {
  const anciens = JSON.stringify(await lesIds(page));
  await page.touche(touche);
  await page.attendre(`!${anciens}.includes(document.activeElement.closest(".panneau").dataset.terminal)`);
  await page.attendreLeTexte('/\\$ /');
};

// Un clic sur le lien qui passe à cette ligne et à cette colonne.
const viserUnLien = async (page, rang, { modifiers = 0, colonne = 1 } = {}) => {
  const [x, y, largeur, hauteur] = await page.evaluer(`(() => { const { x, y } = document.querySelector('.xterm-screen').getBoundingClientRect();
    const { width, height } = terminaux.choisie().terminal._core._renderService.dimensions.css.cell;
    return [x, y, width, height]; })()`);
  const [la, haut] = [x + largeur * (colonne + 0.5), y + hauteur * (rang + 0.5)];
  // Le terminal ne cherche les liens que sous une souris qui bouge.
  const bouger = async (vers, hauteurVisee, surUnLien) => {
    for (let i = 0; await page.evaluer('document.querySelector(".xterm-cursor-pointer") === null') === surUnLien; i += 1) {
      assert.ok(i < 300, 'le lien ne se voit pas sous la souris');
      await page.souris('mouseMoved', vers + (i % 2), hauteurVisee, { buttons: 0, modifiers });
    }
  };
  await bouger(x + 400, y + hauteur * 12, false);
  await bouger(la, haut, true);
  await page.souris('mousePressed', la, haut, { modifiers });
  await page.souris('mouseReleased', la, haut, { modifiers });
};

essai('taper, voir, recharger, retrouver ; puis redémarrer et retrouver encore', async (page, t) => {
  await lancerUneLigne(page, 'echo vu-$((20 + 1)); jeu=gardé');
  await page.attendreLeTexte('/vu-21/');
  await page.recharger();
  await page.attendreLeTexte('/vu-21/');
  await lancerUneLigne(page, 'echo "<$jeu>"');
  await page.attendreLeTexte('/<gardé>/');
  await arreter(page.serveur);
  await page.attendre("!document.querySelector(\".coupure\").hidden");
  await lancer(t, page.maison);
  await page.attendreLeTexte('/vu-21[^]*── fin de la session précédente ──/');
  await lancerUneLigne(page, 'echo neuf-$((1 + 1))');
  await page.attendreLeTexte('/neuf-2/');
});

essai('des terminaux côte à côte, au clavier et à la souris', async (page) => {
  await ouvrirEncore(page, 'Ctrl+Maj+D');
  const [premier, second] = await lesIds(page);
  assert.deepEqual(await page.evaluer(MONTRES), [premier, second]);
  const [a, b] = [await page.centre(`#panneau-${premier}`), await page.centre(`#panneau-${second}`)];
  assert.ok(a.x < b.x && a.y === b.y);
  await page.cliquer(`#panneau-${premier} .xterm-screen`);
  await page.attendre(`document.querySelector(".onglet.choisi").dataset.terminal === "${premier}"`);
  await ouvrirEncore(page);
  assert.equal((await page.evaluer(MONTRES)).length, 1);
  await page.touche('Ctrl+Maj+B');
  await page.attendre(`${MONTRES}.length === 3`);
  await page.touche('Ctrl+Maj+B');
  await page.attendre(`${MONTRES}.length === 1`);
  await page.touche('Ctrl+Maj+PagePrécédente');
  assert.deepEqual(await page.evaluer(MONTRES), [premier, second]);
  await page.recharger();
  assert.deepEqual(await page.evaluer(MONTRES), [premier, second]);
});

essai('réordonner au clavier et à la souris, renommer, puis rendre le nom à l’interpréteur', async (page) => {
  await ouvrirEncore(page);
  const [premier, second] = await lesIds(page);
  await page.touche('Ctrl+Maj+O');
  await page.touche('Ctrl+Maj+Gauche');
  await page.attendre(`${ONGLETS}[0].dataset.terminal === "${second}"`);
  assert.equal(await page.evaluer('document.activeElement.id'), `onglet-${second}`);
  const [de, vers] = [await page.centre(`#onglet-${second}`), await page.centre(`#onglet-${premier}`)];
  await page.souris('mousePressed', de.x, de.y);
  await page.souris('mouseMoved', vers.x + 60, de.y);
  await page.souris('mouseReleased', vers.x + 60, de.y);
  await page.recharger();
  assert.deepEqual(await lesIds(page), [premier, second]);

  await page.touche('Ctrl+Maj+O');
  await page.touche('F2');
  await page.ecrire('Mon nom <b>');
  await page.touche('Entrée');
  await page.attendre(`document.querySelector("#onglet-${second}").textContent === "Mon nom <b>"`);
  assert.doesNotMatch(await page.texte(), /\$ *\n\$/, 'Entrée n’était pas pour l’interpréteur');
  await lancerUneLigne(page, "printf '\\033]0;Titre\\a'");
  await page.touche('Ctrl+Maj+O');
  await page.touche('F2');
  await page.evaluer('document.querySelector(".renommer").value = ""');
  await page.touche('Entrée');
  await page.attendre(`document.querySelector("#onglet-${second}").textContent === "Titre"`);
});

essai('fermer un terminal occupé demande, et Échap garde tout', async (page) => {
  await ouvrirEncore(page);
  await lancerUneLigne(page, 'sh -c "echo go; sleep 600; :"');
  await page.attendreLeTexte('/^go/m');
  await page.touche('Ctrl+Maj+K');
  await page.attendre('document.querySelector(".question").open');
  assert.match(await page.evaluer('document.querySelector(".question p").textContent'), /^« sh » tourne encore dans « /);
  await page.touche('Échap');
  await page.attendre('!document.querySelector(".question").open && document.activeElement.className === "xterm-helper-textarea"');
  assert.equal((await lesIds(page)).length, 2);
  await page.touche('Ctrl+Maj+K');
  await page.attendre('document.querySelector(".question").open');
  await page.cliquer('.question [value=oui]');
  await page.attendre(`${ONGLETS}.length === 1`);
});

essai('chercher compte, remonte, et rend le focus', async (page) => {
  await lancerUneLigne(page, 'for i in 1 2 3; do echo aiguille$i; done; seq 100');
  await page.attendreLeTexte('/100\\n\\$ /');
  await page.touche('Ctrl+Maj+F');
  await page.ecrire('aiguille');
  const compte = (voulu) => page.attendre(`document.querySelector(".recherche output").value === "${voulu}"`);
  await compte('4 sur 4');
  await page.touche('Entrée');
  await compte('3 sur 4');
  await page.touche('Maj+Entrée');
  await compte('4 sur 4');
  await page.attendreLeTexte('/aiguille3/');
  await page.ecrire('absente');
  await compte('Aucun résultat');
  await page.touche('Échap');
  assert.equal(await page.evaluer('document.querySelector(".recherche").hidden && document.activeElement.className'), 'xterm-helper-textarea');
});

essai('copier, tout sélectionner et coller, comme depuis un menu', async (page) => {
  await lancerUneLigne(page, 'echo pour-$((1 + 1))-copier');
  await page.attendreLeTexte('/pour-2-copier\\n\\$ /');
  await page.evaluer(NOTER_LA_COPIE);
  const avantCopie = 'document.activeElement.dispatchEvent(new Event("beforecopy", { bubbles: true, cancelable: true }))';
  assert.equal(await page.evaluer(avantCopie), true);
  await page.evaluer(TOUT_SELECTIONNER);
  assert.equal(await page.evaluer(avantCopie), false);
  await page.touche('Ctrl+Maj+C');
  assert.match(await page.evaluer('copie'), /^\$ echo pour[^]*\npour-2-copier\n\$ ?\n?$/);
  await page.evaluer(`{ const d = new DataTransfer(); d.setData('text/plain', 'echo collé\\necho deux');
    document.activeElement.dispatchEvent(new ClipboardEvent('paste', { clipboardData: d, bubbles: true, cancelable: true })); }`);
  await page.attendreLeTexte('/\\$ echo collé *\\n(> )?echo deux/');
  assert.doesNotMatch(await page.texte(), /^collé/m);
});

essai('copier sans rien de sélectionné n’interrompt pas le programme', async (page) => {
  // Tapé avant que cat lise, le retour ne serait pas encore une fin de ligne.
  await lancerUneLigne(page, "echo pr''et; cat");
  await page.attendreLeTexte('/^pret$/m');
  await page.touche('Ctrl+Maj+C');
  await lancerUneLigne(page, 'toujours là');
  await page.attendreLeTexte('/toujours là *\\ntoujours là/');
  assert.doesNotMatch(await page.texte(), /\^C/);
});

essai('les liens s’ouvrent ailleurs, d’un Ctrl+clic, et seulement vers le web ou le courrier', async (page) => {
  await lancerUneLigne(page, String.raw`clear; printf 'https://exemple.test/a?b=1\n\e]8;;mailto:moi@exemple.test\e\\courrier\e]8;;\e\\\n\e]8;;javascript:alert(1)\e\\piège\e]8;;\e\\\n\e]8;;file:///etc/passwd\e\\fichier\e]8;;\e\\\n'`);
  await page.attendreLeTexte('/^piège *\\nfichier/m');
  await viserUnLien(page, 0);
  await page.attendre('document.querySelector(".lien").textContent === "Ctrl+clic pour ouvrir https://exemple.test/a?b=1"');
  assert.deepEqual(await page.evaluer('ouverts'), []);
  for (const rang of [0, 1, 2, 3]) await viserUnLien(page, rang, { modifiers: 2 });
  assert.deepEqual(await page.evaluer('ouverts'), [
    ['https://exemple.test/a?b=1', '_blank', 'noopener'], ['mailto:moi@exemple.test', '_blank', 'noopener'],
  ]);
});

essai('une adresse de courrier s’ouvre aussi ; un dépôt ou un chemin qui lui ressemble, non', async (page) => {
  await lancerUneLigne(page, String.raw`clear; printf '日本 🎉 <moi.meme+a@exemple.test>, fin\ngit@exemple.test:depot x@y https://u@exemple.test/\n'`);
  await page.attendreLeTexte('/^git@/m');
  await viserUnLien(page, 0, { colonne: 10, modifiers: 2 });
  await page.attendre('document.querySelector(".lien").textContent === "Ctrl+clic pour ouvrir mailto:moi.meme+a@exemple.test"');
  await viserUnLien(page, 1, { colonne: 36, modifiers: 2 });
  assert.deepEqual((await page.evaluer('ouverts')).map(([adresse]) => adresse), ['mailto:moi.meme+a@exemple.test', 'https://u@exemple.test/']);
  await assert.rejects(viserUnLien(page, 1, { colonne: 2, modifiers: 2 }), /ne se voit pas/);
});

essai('la taille du texte et le lecteur d’écran se règlent, et restent', async (page) => {
  const corps = 'terminaux.choisie().terminal.options.fontSize';
  await page.touche('Ctrl+Maj+Plus');
  await page.touche('Ctrl+Maj+Plus');
  await page.attendre(`${corps} === 16`);
  await page.touche('Ctrl+Maj+P');
  await page.cliquer('[name=lecteur]');
  await page.touche('Échap');
  await page.taper('echo relu-$((1 + 1))\r');
  await page.attendre('/relu-2/.test(document.querySelector(".xterm-accessibility").textContent)');
  await page.recharger();
  assert.equal(await page.evaluer(corps), 16);
  assert.ok(await page.evaluer('document.querySelector(".xterm-accessibility") !== null'));
});

essai('dix mille lignes en arrière, les couleurs, les larges et les composés', async (page) => {
  await lancerUneLigne(page, 'seq 12000; printf "\\e[38;2;1;2;3mvrai\\e[0m 日本🎉e\\u0301|\\n"');
  await page.attendreLeTexte('/^vrai/m');
  // Lue n’est pas dessinée : une telle sortie ne l’est que quinze fois par seconde.
  await page.attendre(`(() => { const toile = document.querySelector('.xterm-screen canvas');
    const { data } = toile.getContext('2d').getImageData(0, 0, toile.width, toile.height);
    return new Uint32Array(data.buffer).includes(0xff030201); })()`);
  await page.evaluer(TOUT_SELECTIONNER);
  await page.evaluer(NOTER_LA_COPIE);
  await page.touche('Ctrl+Maj+C');
  const copie = await page.evaluer('copie');
  assert.ok(copie.split('\n').length > 10_000);
  assert.ok(copie.includes('vrai 日本🎉e\u0301|'));
});

// La page ne dit où elle en est de sa lecture qu’une fois `attendre` faux.
const LECTURE_LENTE = `window.lus = 0; window.attendre = false; window.attendus = []; window.WebSocket = class extends WebSocket {
  constructor(adresse) {
    super(adresse);
    this.addEventListener('message', ({ data }) => (lus += JSON.parse(data).texte?.length ?? 0));
  }
  send(texte) {
    if (attendre && JSON.parse(texte).type === 'recu') attendus.push(() => super.send(texte));
    else super.send(texte);
  }
}`;

test('d’une inondation, la page ne lit qu’une part, et l’historique en a pourtant toute la fin', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: LECTURE_LENTE });
  const fini = join(page.maison.maison, 'fini');
  await lancerUneLigne(page, 'read -p pret-$((1 + 1)); seq 600000; echo oui > ~/fini; echo fin-$((1 + 1))');
  await page.attendreLeTexte('/pret-2/');
  await page.evaluer('attendre = true');
  await page.touche('Entrée');
  await attendreLeFichier(fini, (texte) => texte === 'oui\n');
  await page.evaluer('attendre = false; attendus.forEach((suite) => suite())');
  await page.attendreLeTexte('/fin-2/');
  assert.ok(await page.evaluer('lus') < 1_000_000);
  await page.evaluer(TOUT_SELECTIONNER);
  await page.evaluer(NOTER_LA_COPIE);
  await page.touche('Ctrl+Maj+C');
  const lignes = (await page.evaluer('copie')).split('\n');
  const fin = lignes.indexOf('fin-2');
  assert.ok(fin >= 10_000);
  assert.deepEqual(lignes.slice(0, fin), Array.from({ length: fin }, (_, i) => `${600_000 - fin + i + 1}`));
  assert.deepEqual(page.fautes, []);
});

essai('un programme plein écran, la souris et le collage encadré survivent à un rechargement', async (page) => {
  await lancerUneLigne(page, "printf '\\e[?1049h\\e[?1000h\\e[?1006h\\e[?2004hplein\\n'; cat -v");
  await page.attendreLeTexte('/^plein/m');
  // Une fois la ligne de commande disparue, il n’y a plus d’invite à attendre.
  await page.evaluer('window.ancienne = true');
  await page.demander('Page.reload');
  await page.attendre('!window.ancienne && document.querySelector(".xterm-helper-textarea")');
  await page.attendreLeTexte('/^plein/m');
  assert.doesNotMatch(await page.texte(), /cat -v/);
  await page.cliquer('.panneau:not([hidden]) .xterm-screen');
  await page.touche('Entrée');
  await page.attendreLeTexte('/\\^\\[\\[<0;\\d+;\\d+M\\^\\[\\[<0;\\d+;\\d+m/');
  await page.evaluer(`{ const d = new DataTransfer(); d.setData('text/plain', 'collé');
    document.activeElement.dispatchEvent(new ClipboardEvent('paste', { clipboardData: d, bubbles: true, cancelable: true })); }`);
  await page.touche('Entrée');
  await page.attendreLeTexte('/\\^\\[\\[200~coll.*\\^\\[\\[201~/');
});

essai('le terminal prend la taille qu’on lui laisse, et le dit au programme', async (page) => {
  const tailles = async (nom) => {
    await lancerUneLigne(page, `echo "${nom}<$(stty size)>"`);
    return (await page.attendreLeTexte(`/^${nom}<\\d+ \\d+>/m`)).match(/\d+/g).map(Number);
  };
  const [lignes, colonnes] = await tailles('grand');
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 500, height: 300, deviceScaleFactor: 1, mobile: false });
  const rangs = 'terminaux.choisie().terminal.rows';
  await page.attendre(`${rangs} < ${lignes}`);
  const [moins, etroit] = await tailles('petit');
  assert.ok(moins < lignes && etroit < colonnes / 1.5);
  assert.equal(await page.evaluer(rangs), moins);
  await page.touche('Ctrl+Maj+D');
  await page.attendre(`${MONTRES}.length === 2`);
  // Trop étroit pour deux colonnes : l’un sous l’autre.
  const [a, b] = await page.evaluer(`[...document.querySelectorAll(".panneau:not([hidden])")].map((p) => p.getBoundingClientRect().top)`);
  assert.ok(a < b);
});

essai('une reprise se relit à la taille où elle fut écrite, puis se replie', async (page) => {
  await lancerUneLigne(page, "clear; printf 'a\\r\\e[99Cfin\\n'");
  await page.attendreLeTexte('/^a {98}fin *$/m');
  await page.demander('Page.navigate', { url: 'about:blank' });
  await page.attendre("location.href === 'about:blank'");
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 500, height: 400, deviceScaleFactor: 1, mobile: false });
  await page.demander('Page.navigate', { url: `http://localhost:${page.serveur.port}/` });
  // Relu trop étroit, le mot aurait buté sur le bord : « f », puis « in » à la ligne.
  await page.attendreLeTexte('/^a *\\n +fin *\\n\\$ /m');
});

test('une question d’un programme reçoit une réponse, et une seule, même montrée par deux pages', { skip: sansNavigateur }, async (t) => {
  const premiere = await PageVue.ouvrir(t, navigateur);
  const seconde = await PageVue.ouvrir(t, navigateur, premiere);
  await lancerUneLigne(premiere, "stty raw -echo; printf 'demande\\033[c'; head -c 12 > recu; stty sane; echo fini-$((1 + 1))");
  for (const page of [premiere, seconde]) await page.attendreLeTexte('/^demande/m');
  // Le serveur a lu la réponse de la seconde page quand il a lu ce qu’elle demande ensuite.
  await seconde.evaluer('import("/liaison.js").then(({ envoyer }) => envoyer({ type: "renommer", id: document.querySelector(".onglet").dataset.terminal, nom: "lu" }))');
  await seconde.attendre('document.querySelector(".onglet .choisir").textContent === "lu"');
  await premiere.ecrire('xxxxxxxxxxxx');
  await premiere.attendreLeTexte('/fini-2/');
  const recu = readFileSync(join(premiere.maison.maison, 'recu'), 'latin1');
  assert.equal(recu.split('\x1b[?').length - 1, 1, JSON.stringify(recu));
  for (const page of [premiere, seconde]) assert.deepEqual(page.fautes, []);
});

essai('un texte qui se forme se voit, part une fois formé, et ne revient pas', async (page) => {
  await lancerUneLigne(page, 'stty -echo; echo pret-$((1 + 1)); cat > recu');
  await page.attendreLeTexte('/pret-2/');
  for (const [etapes, fin] of [[['n', 'ni', '你'], '你好'], [['^'], 'ê'], [['k'], '']]) {
    for (const text of etapes) await page.demander('Input.imeSetComposition', { text, selectionStart: text.length, selectionEnd: text.length });
    assert.equal(await page.evaluer('document.querySelector(".composition").textContent'), etapes.at(-1));
    await page.demander('Input.insertText', { text: fin });
    assert.equal(await page.evaluer('document.querySelector(".composition").textContent'), '');
    await page.ecrire(' ');
  }
  await page.touche('Entrée');
  await page.touche('Ctrl+d');
  await lancerUneLigne(page, 'echo lu-$((1 + 1))');
  await page.attendreLeTexte('/lu-2/');
  assert.equal(readFileSync(join(page.maison.maison, 'recu'), 'utf8'), '你好 ê  \n');
});
