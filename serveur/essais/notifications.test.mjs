import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

// L’application, et une horloge vingt fois plus rapide pour les longues attentes.
const APPLICATION = `
  window.recus = [];
  window.webkit = { messageHandlers: { keltroveNotifications: { postMessage: (m) => recus.push(m) } } };
  { const vrai = setTimeout; window.setTimeout = (f, d, ...a) => vrai(f, d > 4999 ? d / 20 : d, ...a);
    const heure = performance.now.bind(performance); performance.now = () => heure() * 20; }`;
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

async function ouvrirDeux(t) {
  const page = await PageVue.ouvrir(t, navigateur, { avant: APPLICATION });
  await page.touche('Ctrl+Maj+T');
  await page.attendre('document.querySelector(".onglet + .onglet.choisi")');
  const [premier, second] = await page.evaluer('[...document.querySelectorAll(".onglet")].map((o) => o.dataset.terminal)');
  return { page, premier, second };
}

// Le terminal attend ce départ : la page a le temps de regarder ailleurs.
const ATTENDRE = 'until [ -e ~/va ]; do sleep 0.02; done;';
const donnerLeDepart = (page) => writeFileSync(join(page.maison.maison, 'va'), '');

const choisir = (page, id) => page.evaluer(`document.querySelector('.onglet[data-terminal="${id}"] .choisir').click()`);

test('une sonnerie prévient une fois, marque l’onglet, et le clic y mène', { skip: sansNavigateur }, async (t) => {
  const { page, premier, second } = await ouvrirDeux(t);
  await choisir(page, premier);
  // Regardé, il ne prévient pas : seule la question de l’état est partie.
  await page.ecrire('printf "\\a"; seq 1000');
  await page.touche('Entrée');
  await page.attendreLeTexte('/1000\\n\\$ /');
  assert.deepEqual(await page.evaluer('recus'), [{ action: 'etat' }]);

  await page.ecrire(`${ATTENDRE} printf "\\a\\a\\a"`);
  await page.touche('Entrée');
  await choisir(page, second);
  donnerLeDepart(page);
  await page.attendre('recus.length > 1');
  const nom = await page.evaluer(`document.querySelector('.onglet[data-terminal="${premier}"] .choisir').title.split('\\n')[0]`);
  assert.deepEqual(await page.evaluer('recus.slice(1)'), [{ action: 'notifier', id: premier, titre: nom, corps: 'Ce terminal vous appelle.' }]);
  assert.equal(await page.evaluer(`document.querySelector('.onglet.attend').dataset.terminal`), premier);
  await page.evaluer(`keltrovePont.ouvrir("${premier}")`);
  assert.equal(await page.evaluer('document.querySelector(".onglet.choisi").dataset.terminal'), premier);
  assert.equal(await page.evaluer('document.querySelectorAll(".attend").length'), 0);
  assert.equal(await page.evaluer('document.activeElement.closest(".panneau").dataset.terminal'), premier);
  await page.evaluer('keltrovePont.ouvrir("personne")');
  assert.equal(await page.evaluer('document.querySelector(".onglet.choisi").dataset.terminal'), premier);
  await page.ecrire('echo encore-la');
  await page.attendreLeTexte('/encore-la/');
  assert.deepEqual(page.fautes, []);
});

test('le silence après une longue sortie prévient ; ce qui est rejoué, non', { skip: sansNavigateur }, async (t) => {
  const { page, premier, second } = await ouvrirDeux(t);
  await page.ecrire(`${ATTENDRE} seq 2000; printf "fi%s" n`);
  await page.touche('Entrée');
  await choisir(page, premier);
  donnerLeDepart(page);
  await page.attendre('recus.length > 1');
  assert.deepEqual(await page.evaluer('recus.slice(1).map(({ id, corps }) => [id, corps])'), [[second, 'Ce terminal s’est tu et semble vous attendre.']]);
  await page.recharger();
  await choisir(page, second);
  await page.attendreLeTexte('/fin/');
  await choisir(page, premier);
  await page.evaluer('new Promise((suite) => setTimeout(suite, 12_000))');
  assert.deepEqual(await page.evaluer('recus'), [{ action: 'etat' }]);
});

test('un message, même en plusieurs morceaux, devient une notification, jamais deux fois', { skip: sansNavigateur }, async (t) => {
  const { page, premier, second } = await ouvrirDeux(t);
  const corps = () => page.evaluer('recus.filter(({ action }) => action === "notifier").map(({ id, corps }) => [id, corps])');
  // Regardé, il ne prévient pas.
  await page.ecrire('printf "\\e]9;vu\\a"; echo deja-$((1 + 1))');
  await page.touche('Entrée');
  await page.attendreLeTexte('/deja-2/');
  await page.ecrire(`${ATTENDRE} printf '\\e]99;i=1:d=0;Courriel\\e\\\\'; sleep 0.1; printf '\\e]99;i=1:p=body;de Zoé\\e\\\\'; sleep 0.1; printf '\\a\\e]9;4;1;30\\a'`);
  await page.touche('Entrée');
  await choisir(page, premier);
  donnerLeDepart(page);
  await page.attendre(`document.querySelector('.onglet[data-terminal="${second}"] .progression').ariaValueNow === "30"`);
  assert.deepEqual(await corps(), [[second, 'Courriel : de Zoé']], 'la sonnerie qui suit n’apprend rien de plus');
  assert.equal(await page.evaluer('document.querySelector(".onglet.attend").dataset.terminal'), second);
  await page.recharger();
  await page.attendre(`document.querySelector('.onglet[data-terminal="${second}"] .progression').ariaValueNow === "30"`);
  await choisir(page, second);
  await page.attendreLeTexte("/deja-2[^]*30.a'\\n\\$ /");
  assert.deepEqual(await corps(), [], 'ce qui est rejoué ne prévient pas');
  assert.deepEqual(page.fautes, []);
});

test('à l’invite d’un interpréteur qui l’annonce, le silence ne prévient pas', { skip: sansNavigateur }, async (t) => {
  const { page, premier } = await ouvrirDeux(t);
  await page.ecrire(`. "$KELTROVE_INTEGRATION/keltrove.bash"`);
  await page.touche('Entrée');
  await page.ecrire(`${ATTENDRE} seq 2000; printf "\\e]2;fi%s\\a" n`);
  await page.touche('Entrée');
  await choisir(page, premier);
  donnerLeDepart(page);
  await page.attendre('document.querySelector(".onglet + .onglet .choisir").textContent === "fin"');
  await page.evaluer('new Promise((suite) => setTimeout(suite, 12_000))');
  assert.deepEqual(await page.evaluer('recus'), [{ action: 'etat' }]);
});

test('un programme trop bavard appelle six fois par minute', { skip: sansNavigateur }, async (t) => {
  const { page, premier } = await ouvrirDeux(t);
  await page.evaluer(`import('/notifications.js').then((m) => {
    for (let i = 1; i <= 8; i += 1) m.noterUnAppel({ id: '${premier}', sorte: 'message', corps: 'n° ' + i });
  })`);
  assert.deepEqual(await page.evaluer('recus.slice(1).map(({ corps }) => corps)'), [1, 2, 3, 4, 5, 6].map((n) => `n° ${n}`));
});

test('chaque sorte d’appel a son réglage, et le premier les coupe tous', { skip: sansNavigateur }, async (t) => {
  const { page, premier, second } = await ouvrirDeux(t);
  const appels = async () => {
    for (const appel of [{ sorte: 'message', corps: 'm' }, { sorte: 'fin', commande: 'make', duree: 12_000, statut: 2 }]) {
      await page.evaluer(`import('/notifications.js').then((m) => m.noterUnAppel({ id: '${premier}', ...${JSON.stringify(appel)} }))`);
    }
    await page.evaluer(`document.querySelector('#panneau-${premier}').dispatchEvent(new Event('sonnerie', { bubbles: true }))`);
    return page.evaluer('recus.splice(0).map(({ corps }) => corps)');
  };
  const regler = (nom, oui) => page.evaluer(`import('/reglages.js').then((m) => m.changer('${nom}', ${oui}))`);
  const revenir = async () => {
    await choisir(page, premier);
    await choisir(page, second);
  };
  await page.evaluer('recus.splice(0)');
  assert.deepEqual(await appels(), ['m', 'make a échoué (2) après 12 s']);
  await revenir();
  await regler('message', false);
  await regler('fin', false);
  assert.deepEqual(await appels(), ['Ce terminal vous appelle.']);
  await revenir();
  await regler('sonnerie', false);
  assert.deepEqual(await appels(), []);
  assert.equal(await page.evaluer('document.querySelector(".onglet.attend").dataset.terminal'), premier);
  await regler('message', true);
  await regler('prevenir', false);
  assert.deepEqual(await appels(), []);
});

test('le panneau des réglages dit l’état, garde le choix et rend le focus', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: APPLICATION });
  await page.touche('Ctrl+Maj+P');
  await page.attendre('document.querySelector(".reglages").open');
  const phrases = new Set();
  for (const [etat, montre] of [['accorde', true], ['refuse', true], ['attente', true], ['absent', false]]) {
    await page.evaluer(`keltrovePont.etat("${etat}")`);
    phrases.add(await page.evaluer('document.querySelector(".etat").textContent'));
    assert.equal(await page.evaluer('document.querySelector(".systeme").checkVisibility()'), montre, etat);
  }
  assert.ok(phrases.size === 4 && !phrases.has(''));
  await page.evaluer('keltrovePont.etat("refuse")');
  await page.cliquer('.systeme');
  assert.deepEqual(await page.evaluer('recus.at(-1)'), { action: 'reglages' });
  await page.cliquer('[name=prevenir]');
  await page.touche('Échap');
  await page.attendre('!document.querySelector(".reglages").open');
  assert.equal(await page.evaluer('document.activeElement.className'), 'xterm-helper-textarea');

  await page.recharger();
  assert.equal(await page.evaluer('document.querySelector("[name=prevenir]").checked'), false);
  await page.ecrire(`${ATTENDRE} printf "\\a"`);
  await page.touche('Entrée');
  await page.cliquer('.nouveau');
  await page.attendre('document.querySelector(".onglet + .onglet.choisi")');
  donnerLeDepart(page);
  await page.attendre('document.querySelector(".onglet.attend")');
  assert.deepEqual(await page.evaluer('recus'), [{ action: 'etat' }]);
});

test('dans un simple navigateur, les réglages disent qu’il faut l’application', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.cliquer('.regler');
  assert.match(await page.evaluer('document.querySelector(".etat").textContent'), /demandent l’application/);
  assert.equal(await page.evaluer('document.querySelector(".systeme").hidden'), true);
  assert.deepEqual(page.fautes, []);
});
