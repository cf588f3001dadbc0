import { essayer } from '../page/essayer.js';

// En octets, pour chaque partie d’un message reçu en plusieurs morceaux.
const LONGUEUR_MAXIMALE = 4096;
const RIEN = Buffer.alloc(0);
// Après « OSC 9 ; », des systèmes écrivent un numéro d’ordre, de 1 à 12, au lieu d’un texte ; nous n’obéissons qu’au 4.
const ORDRE = /^(?:[1-9]|1[0-2])(?:;|$)/;
const PROGRESSION = /^4;([0-4])(?:;(\d*))?;?$/;
const ETATS = [null, 'enCours', 'erreur', 'indeterminee', 'pause'];
const BASE64 = /^[A-Za-z0-9+/]*={0,2}$/;
// Ce qui changerait de ligne ou de sens d’écriture ferait passer le message pour autre chose que ce qu’il est.
const INDESIRABLES = /[\p{Cc}\p{Zl}\p{Zp}\p{Bidi_Control}]+/gu;
const lireDeLUtf8 = new TextDecoder('utf-8', { fatal: true });

export const nettoyer = (texte) => texte.replace(INDESIRABLES, ' ').trim();
const joindre = (titre, corps) => [titre, corps].map(nettoyer).filter(Boolean).join(' : ');
const decoder = (octets) => essayer(() => lireDeLUtf8.decode(octets), '');

// Le texte qu’un programme adresse à l’utilisateur, nettoyé ; vide tant qu’il n’y en a pas.
export class Messages {
  // Un seul à la fois : rien ne s’amasse pour des messages jamais finis.
  #enCours = null;

  lire(numero, valeur) {
    if (numero === '99') return this.#lireUnMorceau(valeur);
    if (numero === '9') return ORDRE.test(valeur) ? '' : nettoyer(valeur);
    const [, titre, corps = ''] = /^notify;([^;]*)(?:;(.*))?$/s.exec(valeur) ?? [];
    return titre === undefined ? '' : joindre(titre, corps);
  }

  // « clé=valeur:clé=valeur;contenu » : i, le nom du message ; d=0, il en reste ; p, la partie ; e=1, en base64.
  #lireUnMorceau(valeur) {
    const [entete, ...contenu] = valeur.split(';');
    const cles = new Map(entete.split(':').map((cle) => [cle[0], cle.slice(2)]));
    const [nom, partie] = [cles.get('i') ?? '', cles.get('p') ?? 'title'];
    if (contenu.length === 0 || !['title', 'body', 'icon', 'buttons'].includes(partie)) return '';
    if (this.#enCours?.nom !== nom) this.#enCours = { nom, title: RIEN, body: RIEN };
    const message = this.#enCours;
    const octets = lireLeContenu(contenu.join(';'), cles.get('e') === '1');
    if (partie in message && message[partie].length + octets.length <= LONGUEUR_MAXIMALE) {
      message[partie] = Buffer.concat([message[partie], octets]);
    }
    if (cles.get('d') === '0') return '';
    this.#enCours = null;
    return joindre(decoder(message.title), decoder(message.body));
  }
}

function lireLeContenu(contenu, enBase64) {
  if (!enBase64) return Buffer.from(contenu);
  return BASE64.test(contenu) ? Buffer.from(contenu, 'base64') : RIEN;
}

// « 4;état;pourcentage » : où en est un programme, rien quand il a fini ; l’ancienne, si ce n’est pas lisible.
export function lireLaProgression(valeur, ancienne) {
  const [, numero, pourcentage] = PROGRESSION.exec(valeur) ?? [];
  if (numero === undefined) return ancienne;
  const etat = ETATS[numero];
  if (etat === null) return null;
  const connue = pourcentage ? Math.min(Number(pourcentage), 100) : ancienne?.part ?? (etat === 'enCours' ? 0 : 100);
  const part = etat === 'indeterminee' ? null : connue;
  return etat === ancienne?.etat && part === ancienne.part ? ancienne : { etat, part };
}
