const CLE = 'keltrove-reglages';
export const CORPS = 14;
const PAR_DEFAUT = { corps: CORPS, lecteur: false, prevenir: true };

const PHRASES = {
  accorde: 'Les notifications sont autorisées.',
  refuse: 'Les notifications sont refusées dans les réglages du système.',
  attente: 'Le système n’a pas encore demandé votre accord.',
  absent: 'Aucun service de notification ne répond sur ce bureau.',
  sansPont: 'Les notifications demandent l’application Keltrove : cette page est ouverte dans un navigateur.',
};

// Les préférences de l’utilisateur, gardées par le navigateur, et le panneau où il les change.
export class Reglages {
  #panneau = document.querySelector('.reglages');
  #valeurs = lire();
  #quandChange;

  constructor({ quandChange, quandFerme, quandSysteme }) {
    this.#quandChange = quandChange;
    for (const champ of this.#panneau.querySelectorAll('input')) {
      champ.addEventListener('change', () => champ.validity.valid && this.changer(champ.name, valeurDe(champ)));
    }
    this.#panneau.querySelector('.systeme').addEventListener('click', quandSysteme);
    this.#panneau.querySelector('.fini').addEventListener('click', () => this.#panneau.close());
    this.#panneau.addEventListener('close', quandFerme);
    this.#montrer();
  }

  get valeurs() {
    return this.#valeurs;
  }

  ouvrir() {
    if (!this.#panneau.open) this.#panneau.showModal();
  }

  changer(nom, valeur) {
    this.#valeurs = verifier({ ...this.#valeurs, [nom]: valeur });
    localStorage.setItem(CLE, JSON.stringify(this.#valeurs));
    this.#montrer();
    this.#quandChange(this.#valeurs);
  }

  direLEtat(etat) {
    this.#panneau.querySelector('.etat').textContent = PHRASES[etat] ?? '';
    this.#panneau.querySelector('.systeme').hidden = etat === 'absent' || etat === 'sansPont';
  }

  #montrer() {
    for (const champ of this.#panneau.querySelectorAll('input')) {
      if (champ.type === 'checkbox') champ.checked = this.#valeurs[champ.name];
      else champ.value = this.#valeurs[champ.name];
    }
  }
}

function valeurDe(champ) {
  return champ.type === 'checkbox' ? champ.checked : champ.valueAsNumber;
}

function lire() {
  try {
    return verifier({ ...PAR_DEFAUT, ...JSON.parse(localStorage.getItem(CLE)) });
  } catch {
    return PAR_DEFAUT;
  }
}

// Un corps de zéro, écrit par mégarde, ne laisserait plus rien voir pour le corriger.
function verifier({ corps, lecteur, prevenir }) {
  const entier = Number.isInteger(corps) ? Math.min(Math.max(corps, 8), 32) : CORPS;
  return { corps: entier, lecteur: lecteur === true, prevenir: prevenir === true };
}
