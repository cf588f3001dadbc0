const modele = document.querySelector('#modele-onglet');

const SEUIL_DU_GLISSER = 6;

// La rangée d’onglets. Les call-backs donnés : quandChoisi(id), quandRenomme(id, nom), quandDeplace(id, rang),
// quandFerme(id), quandQuitte().
export class Onglets {
  #rangee;
  #quand;
  #onglets = new Map();

  constructor(rangee, quand) {
    this.#rangee = rangee;
    this.#quand = quand;
    rangee.addEventListener('keydown', (evenement) => this.#quandTouche(evenement));
  }

  // Les onglets déjà là sont gardés : refaire la rangée perdrait le focus et un nom en cours de saisie.
  montrer(descriptions) {
    const ids = new Set(descriptions.map(({ id }) => id));
    for (const [id, onglet] of this.#onglets) {
      if (ids.has(id)) continue;
      this.#onglets.delete(id);
      onglet.remove();
    }
    const focus = this.#rangee.contains(document.activeElement) && document.activeElement;
    for (const [rang, { id, nom, groupe, dossier }] of descriptions.entries()) {
      const onglet = this.#onglets.get(id) ?? this.#creer(id);
      nommer(onglet, nom, dossier);
      onglet.classList.toggle('joint', descriptions[rang - 1]?.groupe === groupe);
      if (this.#rangee.children[rang] !== onglet) this.#rangee.insertBefore(onglet, this.#rangee.children[rang] ?? null);
    }
    // Changer de place ôte le focus.
    if (focus) focus.focus();
  }

  choisir(idChoisi) {
    for (const [id, onglet] of this.#onglets) {
      const choisi = id === idChoisi;
      onglet.classList.toggle('choisi', choisi);
      const bouton = onglet.querySelector('.choisir');
      bouton.setAttribute('aria-selected', String(choisi));
      bouton.tabIndex = choisi ? 0 : -1;
      if (choisi) onglet.scrollIntoView({ block: 'nearest', inline: 'nearest' });
    }
  }

  // Une marque discrète : ce terminal attend l’utilisateur.
  marquer(id, oui) {
    const onglet = this.#onglets.get(id);
    if (!onglet || onglet.classList.contains('attend') === oui) return;
    onglet.classList.toggle('attend', oui);
    direLAttente(onglet);
  }

  prendreLeFocus() {
    this.#rangee.querySelector('.choisi .choisir')?.focus();
  }

  #creer(id) {
    const onglet = modele.content.firstElementChild.cloneNode(true);
    const choisir = onglet.querySelector('.choisir');
    choisir.id = `onglet-${id}`;
    choisir.setAttribute('aria-controls', `panneau-${id}`);
    choisir.addEventListener('click', () => this.#quand.quandChoisi(id));
    choisir.addEventListener('dblclick', () => this.#renommer(id));
    choisir.addEventListener('pointerdown', (evenement) => evenement.button === 0 && this.#glisser(onglet, evenement));
    onglet.querySelector('.fermer').addEventListener('click', () => this.#quand.quandFerme(id));
    onglet.dataset.terminal = id;
    this.#onglets.set(id, onglet);
    return onglet;
  }

  #quandTouche(evenement) {
    if (!evenement.target.matches('.choisir')) return;
    const onglet = evenement.target.closest('.onglet');
    const gestes = {
      ArrowLeft: () => viser(onglet.previousElementSibling ?? this.#rangee.lastElementChild),
      ArrowRight: () => viser(onglet.nextElementSibling ?? this.#rangee.firstElementChild),
      Home: () => viser(this.#rangee.firstElementChild),
      End: () => viser(this.#rangee.lastElementChild),
      F2: () => this.#renommer(onglet.dataset.terminal),
      Delete: () => this.#quand.quandFerme(onglet.dataset.terminal),
      Escape: () => this.#quand.quandQuitte(),
    };
    const deplacements = {
      ArrowLeft: () => this.#deplacer(onglet, -1),
      ArrowRight: () => this.#deplacer(onglet, 1),
    };
    const { key, ctrlKey, shiftKey, altKey, metaKey } = evenement;
    const geste = ctrlKey && shiftKey ? deplacements[key] : !ctrlKey && gestes[key];
    if (!geste || altKey || metaKey) return;
    evenement.preventDefault();
    geste();
  }

  #deplacer(onglet, pas) {
    const rang = this.#rangDe(onglet) + pas;
    if (rang >= 0 && rang < this.#rangee.children.length) this.#quand.quandDeplace(onglet.dataset.terminal, rang);
  }

  #rangDe(onglet) {
    return [...this.#rangee.children].indexOf(onglet);
  }

  // L’onglet suit la souris dans la rangée ; le serveur n’apprend que la place où elle le laisse.
  #glisser(onglet, { clientX: depart }) {
    const ancien = this.#rangDe(onglet);
    const ecoutes = new AbortController();
    const suivre = ({ clientX }) => {
      if (Math.abs(clientX - depart) > SEUIL_DU_GLISSER) onglet.classList.add('glisse');
      if (!onglet.classList.contains('glisse')) return;
      const autres = [...this.#rangee.children].filter((autre) => autre !== onglet);
      const suivant = autres.find((autre) => clientX < milieu(autre)) ?? null;
      if (suivant !== onglet.nextElementSibling) this.#rangee.insertBefore(onglet, suivant);
    };
    const finir = () => {
      ecoutes.abort();
      onglet.classList.remove('glisse');
      const rang = this.#rangDe(onglet);
      if (rang >= 0 && rang !== ancien) this.#quand.quandDeplace(onglet.dataset.terminal, rang);
    };
    addEventListener('pointermove', suivre, { signal: ecoutes.signal });
    for (const nom of ['pointerup', 'pointercancel']) addEventListener(nom, finir, { signal: ecoutes.signal });
  }

  #renommer(id) {
    const onglet = this.#onglets.get(id);
    const bouton = onglet.querySelector('.choisir');
    if (bouton.hidden) return;
    const champ = document.createElement('input');
    champ.className = 'renommer';
    champ.maxLength = 60;
    champ.value = bouton.textContent;
    champ.setAttribute('aria-label', 'Nom du terminal');
    bouton.hidden = true;
    bouton.before(champ);
    champ.select();
    champ.focus();

    // Retirer le champ lui fait perdre le focus : sans ce garde, l’abandon repasserait par la validation.
    let fini = false;
    const finir = (valider) => {
      if (fini) return;
      fini = true;
      const nom = champ.value.trim();
      champ.remove();
      bouton.hidden = false;
      // Vide, le nom redevient celui que l’interpréteur donne ; inchangé, il ne doit pas s’y figer.
      if (valider && nom !== bouton.textContent) this.#quand.quandRenomme(id, nom);
    };
    champ.addEventListener('blur', () => finir(true));
    champ.addEventListener('keydown', ({ key, isComposing }) => {
      if (isComposing || (key !== 'Enter' && key !== 'Escape')) return;
      finir(key === 'Enter');
      this.#quand.quandQuitte();
    });
  }
}

function milieu(onglet) {
  const { left, width } = onglet.getBoundingClientRect();
  return left + width / 2;
}

function direLAttente(onglet) {
  const choisir = onglet.querySelector('.choisir');
  choisir.ariaLabel = choisir.textContent + (onglet.classList.contains('attend') ? ', vous attend' : '');
}

function nommer(onglet, nom, dossier) {
  const choisir = onglet.querySelector('.choisir');
  choisir.textContent = nom;
  choisir.title = `${nom}\n${dossier}`;
  direLAttente(onglet);
  const fermer = onglet.querySelector('.fermer');
  fermer.setAttribute('aria-label', `Fermer « ${nom} »`);
  fermer.title = 'Fermer';
}

function viser(onglet) {
  onglet.querySelector('.choisir').focus();
  onglet.scrollIntoView({ block: 'nearest', inline: 'nearest' });
}
