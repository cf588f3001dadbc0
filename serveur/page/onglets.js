const modele = document.querySelector('#modele-onglet');

// La rangée d’onglets. Les call-backs donnés : quandChoisi(id), quandRenomme(id, nom), quandFerme(id), quandQuitte().
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
    for (const [rang, { id, nom }] of descriptions.entries()) {
      const onglet = this.#onglets.get(id) ?? this.#creer(id);
      nommer(onglet, nom);
      if (this.#rangee.children[rang] !== onglet) this.#rangee.insertBefore(onglet, this.#rangee.children[rang] ?? null);
    }
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
    nommer(onglet, onglet.querySelector('.choisir').textContent);
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
    const geste = gestes[evenement.key];
    if (!geste || evenement.ctrlKey || evenement.altKey || evenement.metaKey) return;
    evenement.preventDefault();
    geste();
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
      if (valider && nom) this.#quand.quandRenomme(id, nom);
    };
    champ.addEventListener('blur', () => finir(true));
    champ.addEventListener('keydown', ({ key, isComposing }) => {
      if (isComposing || (key !== 'Enter' && key !== 'Escape')) return;
      finir(key === 'Enter');
      this.#quand.quandQuitte();
    });
  }
}

function nommer(onglet, nom) {
  const choisir = onglet.querySelector('.choisir');
  choisir.textContent = nom;
  choisir.title = nom;
  choisir.ariaLabel = onglet.classList.contains('attend') ? `${nom}, vous attend` : nom;
  const fermer = onglet.querySelector('.fermer');
  fermer.setAttribute('aria-label', `Fermer « ${nom} »`);
  fermer.title = 'Fermer';
}

function viser(onglet) {
  onglet.querySelector('.choisir').focus();
  onglet.scrollIntoView({ block: 'nearest', inline: 'nearest' });
}
