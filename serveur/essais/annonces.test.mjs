import assert from 'node:assert/strict';
import { hostname } from 'node:os';
import { test } from 'node:test';
import { Annonces } from '../lib/Annonces.mjs';

function lire(...morceaux) {
  const dossiers = [];
  const annonces = new Annonces({ quandDossier: (chemin) => dossiers.push(chemin) });
  for (const morceau of morceaux) annonces.lire(morceau);
  return { titre: annonces.titre, dossiers };
}

test('le dernier titre annoncé l’emporte, quelle que soit sa fin', () => {
  assert.equal(lire('a\x1b]0;un\x07b\x1b]2;deux\x1b\\c').titre, 'deux');
  assert.equal(lire('\x1b]1;icône\x07\x1b]52;c;AAAA\x07').titre, '');
  assert.equal(lire('\x1b]0;un\x07', '\x1b]0;\x07').titre, '');
});

// Tout ce qui s’y lit ; un nombre avance l’horloge d’autant de secondes.
function suivre(...morceaux) {
  let heure = 0;
  const appels = [];
  const annonces = new Annonces({ quandAppel: (appel) => appels.push(appel), horloge: () => heure * 1000 });
  for (const morceau of morceaux) {
    if (typeof morceau === 'number') heure += morceau;
    else annonces.lire(morceau);
  }
  return { appels, messages: appels.map(({ corps }) => corps), annonces };
}
const couper = (texte, faire) => {
  for (let i = 0; i <= texte.length; i += 1) for (let j = i; j <= texte.length; j += 1) faire(texte.slice(0, i), texte.slice(i, j), texte.slice(j));
};

test('une annonce coupée n’importe où se lit quand même', () => {
  const texte = 'x\x1b[1m\x1b]0;été\x1b\\y\x1b]7;file:///tmp/a%20b\x07z';
  for (let i = 0; i <= texte.length; i += 1) {
    for (let j = i; j <= texte.length; j += 1) {
      assert.deepEqual(lire(texte.slice(0, i), texte.slice(i, j), texte.slice(j)), { titre: 'été', dossiers: ['/tmp/a b'] });
    }
  }
});

test('une annonce sans fin ne s’accumule pas', () => {
  const annonces = new Annonces();
  annonces.lire(`\x1b]0;${'x'.repeat(5000)}`);
  annonces.lire('tard\x07\x1b]0;court\x07');
  assert.equal(annonces.titre, 'court');
});

test('un dossier d’ici est cru, celui d’une autre machine non', () => {
  assert.deepEqual(lire(`\x1b]7;file://${hostname()}/tmp/%C3%A9\x07`).dossiers, ['/tmp/é']);
  assert.deepEqual(lire('\x1b]7;file://localhost/tmp\x07').dossiers, ['/tmp']);
  for (const adresse of ['file://ailleurs.test/tmp', 'http://localhost/tmp', '/tmp', 'file:///a%2Fb', '']) {
    assert.deepEqual(lire(`\x1b]7;${adresse}\x07`).dossiers, [], adresse);
  }
});

test('un message se lit sous ses trois formes, et devient une ligne de texte', () => {
  assert.deepEqual(suivre('a\x1b]9;la compilation est finie\x07b').messages, ['la compilation est finie']);
  assert.deepEqual(suivre('\x1b]777;notify;Courriel;de : Zoé ; « été »\x1b\\').messages, ['Courriel : de : Zoé ; « été »']);
  assert.deepEqual(suivre('\x1b]777;notify;seul\x07', '\x1b]777;notify;;corps\x07').messages, ['seul', 'corps']);
  assert.deepEqual(suivre('\x1b]99;;Bonjour\x1b\\').messages, ['Bonjour']);
  assert.deepEqual(suivre('\x1b]9;un\ndeux\u202etrois\u2066\u2028quatre\x07').messages, ['un deux trois quatre']);
  assert.deepEqual(suivre('\x1b]9;👨‍👩‍👧 é\u0301\x07').messages, ['👨‍👩‍👧 é\u0301']);
  for (const muet of ['9;', '9; \n ', '777;precmd', '777;notify', '99;', '99;;', '99;i=1:p=close;', '99;i=1:p=?;', '99;p=icon;AAAA']) {
    assert.deepEqual(suivre(`\x1b]${muet}\x07`).messages, [], muet);
  }
});

test('un message en plusieurs morceaux attend le dernier, en clair ou en base64', () => {
  const enBase64 = (texte) => Buffer.from(texte).toString('base64');
  assert.deepEqual(suivre('\x1b]99;i=1:d=0;Bon\x1b\\x\x1b]99;i=1:d=0;jour\x1b\\', '\x1b]99;i=1:p=body;le monde\x1b\\').messages, ['Bonjour : le monde']);
  assert.deepEqual(suivre(`\x1b]99;i=1:e=1:d=0;${enBase64('Été')}\x07`, `\x1b]99;i=1:d=1:p=body:e=1;${enBase64('à ; la\nplage')}\x07`).messages, ['Été : à ; la plage']);
  assert.deepEqual(suivre('\x1b]99;i=1:d=0;titre\x07\x1b]99;i=1:p=icon:e=1;AAAA\x07').messages, ['titre']);
  assert.deepEqual(suivre('\x1b]99;i=1:d=0;perdu\x07\x1b]99;i=2;entier\x07').messages, ['entier']);
  for (const faux of ['é', 'A=A', '<<>>', '/////w==', 'AAAA']) assert.deepEqual(suivre(`\x1b]99;e=1;${faux}\x07`).messages, [], faux);
});

test('un ordre d’un autre système n’est pas un message, un texte qui commence par un chiffre en est un', () => {
  for (const ordre of ['1;500', '2;boîte', '3;titre', '5', '6;macro', '9;"C:\\"', '10', '11;x', '12', '4', '4;9;1', '4;', '4;x']) {
    const { messages, annonces } = suivre(`\x1b]9;${ordre}\x07`);
    assert.deepEqual([messages, annonces.progression], [[], null], ordre);
  }
  for (const texte of ['3 erreurs', '13;x', '0;x', '12e essai', '42']) assert.deepEqual(suivre(`\x1b]9;${texte}\x07`).messages, [texte]);
});

test('une progression se suit, jamais un message ; rien ne change tant qu’elle ne bouge pas', () => {
  const changements = [];
  const appels = [];
  const annonces = new Annonces({ quandChangement: () => changements.push(annonces.progression), quandAppel: (appel) => appels.push(appel) });
  for (const valeur of ['1;10', '1;10', '1;250', '2', '4;40', '3;12', 'x', '2;', '1', '0', '0;', '4']) annonces.lire(`\x1b]9;4;${valeur}\x07`);
  assert.deepEqual(changements.map((vue) => vue && [vue.etat, vue.part]), [
    ['enCours', 10], ['enCours', 100], ['erreur', 100], ['pause', 40], ['indeterminee', null], ['erreur', 100], ['enCours', 100], null, ['pause', 100],
  ]);
  assert.deepEqual(appels, []);
});

test('messages, progression et commandes coupés n’importe où se lisent quand même', () => {
  const texte = 'x\x1b[1m\x1b]9;été\x1b\\y\x1b]9;4;1;42\x07z';
  couper(texte, (...morceaux) => {
    const { messages, annonces } = suivre(...morceaux);
    assert.deepEqual([messages, annonces.progression.part], [['été'], 42]);
  });
  couper('\x1b]99;i=a:d=0;un\x07\x1b]99;i=a:p=body;deux\x1b\\', (...morceaux) => assert.deepEqual(suivre(...morceaux).messages, ['un : deux']));
  const commande = '\x1b]133;A\x07$ \x1b]133;B\x07make\x1b]133;C;cmdline_url=make%20a\x1b\\';
  couper(commande, (...morceaux) => {
    assert.deepEqual(suivre(...morceaux, 12, '\x1b]133;D;2\x07').appels, [{ sorte: 'fin', commande: 'make a', duree: 12_000, statut: 2 }]);
  });
});

test('une longue commande dit sa fin une fois, une courte jamais', () => {
  const C = '\x1b]133;C;cmdline_url=make%20-j4\x07';
  const D = '\x1b]133;D;0\x07\x1b]133;A\x07';
  const fins = (...morceaux) => suivre(...morceaux).appels.map(({ commande, duree, statut }) => [commande, duree, statut]);
  assert.deepEqual(fins(C, 9.9, D), []);
  assert.deepEqual(fins(C, 10, D, 20, D), [['make -j4', 10_000, 0]]);
  assert.deepEqual(fins(D, 20, D), []);
  assert.deepEqual(fins('\x1b]133;C\x07', 60, '\x1b]133;D\x07'), [['', 60_000, null]]);
  assert.deepEqual(fins('\x1b]133;C;cmdline_url=%E9\x07', 60, '\x1b]133;D;peu\x07'), [['', 60_000, null]]);
  assert.deepEqual(fins(`\x1b]133;C;aid=3;cmdline_url=${'x'.repeat(200)}%0a\x07`, 60, '\x1b]133;D;130;aid=3\x07'), [[`${'x'.repeat(59)}…`, 60_000, 130]]);
  assert.deepEqual(fins('\x1b]133;C;cmdline_url=%20mysql%20-psecret\x07', 60, D), [['', 60_000, 0]], 'tenue secrète par une espace');
  const { annonces } = suivre('\x1b]133;A\x07', '\x1b]9;4;1;50\x07', '\x1b]133;C\x07');
  assert.deepEqual([annonces.commandes.aLInvite, annonces.progression], [false, null], 'la progression d’une autre commande');
  assert.equal(suivre('\x1b]133;C\x07', '\x1b]133;D;0\x07').annonces.commandes.aLInvite, true);
});

test('un programme hostile ne fait ni attendre ni grossir personne', () => {
  const depart = performance.now();
  const { appels, annonces } = suivre(
    '\x1b]9;n\x07'.repeat(100_000), `\x1b]9;${'x'.repeat(2 ** 20)}\x07`, `\x1b]99;e=1;${'A'.repeat(2 ** 20)}\x07`,
    '\x1b]9;'.repeat(100_000), '\x1b'.repeat(100_000), `\x1b]9;${'x'.repeat(4096)}`.repeat(200),
  );
  assert.deepEqual(appels, [{ sorte: 'message', corps: 'n' }]);
  for (let i = 0; i < 20_000; i += 1) annonces.lire(`\x1b]99;i=1:d=0;${'y'.repeat(1000)}\x07`);
  annonces.lire('\x1b]99;i=1:p=body;z\x07');
  assert.deepEqual(appels.map(({ corps }) => corps.length), [1, 4000 + ' : z'.length]);
  assert.ok(performance.now() - depart < 5000, `${performance.now() - depart} ms`);
});
