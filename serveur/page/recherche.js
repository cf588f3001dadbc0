// La barre où l’on cherche dans le terminal choisi.
export class Recherche {
  #barre = document.querySelector('.recherche');
  #champ = this.#barre.querySelector('input');
  #compte = this.#barre.querySelector('output');
  #vue = null;

  constructor(quandFerme) {
    this.#champ.addEventListener('input', () => this.#chercher({ neuf: true }));
    this.#barre.querySelector('.haut').addEventListener('click', () => this.#chercher());
    this.#barre.querySelector('.bas').addEventListener('click', () => this.#chercher({ versLeBas: true }));
    this.#barre.querySelector('.fermer').addEventListener('click', () => this.#fermer(quandFerme));
    this.#barre.addEventListener('keydown', ({ key, shiftKey, target, isComposing }) => {
      if (isComposing) return;
      if (key === 'Enter' && target === this.#champ) this.#chercher({ versLeBas: shiftKey });
      if (key === 'Escape') this.#fermer(quandFerme);
    });
  }

  ouvrir(vue) {
    this.#barre.hidden = false;
    this.suivre(vue);
    this.#champ.focus();
    this.#champ.select();
  }

  // Le terminal choisi a changé : on cherche désormais dans celui-là.
  suivre(vue) {
    if (this.#barre.hidden) return;
    if (vue !== this.#vue) this.#vue?.cesserDeChercher();
    this.#vue = vue;
    this.#chercher({ neuf: true });
  }

  oublier(vue) {
    if (vue === this.#vue) this.#vue = null;
  }

  dire({ resultIndex, resultCount }) {
    if (this.#champ.value === '') this.#compte.value = '';
    else if (resultCount === 0) this.#compte.value = 'Aucun résultat';
    else this.#compte.value = resultIndex < 0 ? `${resultCount} résultats` : `${resultIndex + 1} sur ${resultCount}`;
  }

  #chercher(comment) {
    if (this.#champ.value !== '') return this.#vue?.chercher(this.#champ.value, comment);
    this.#vue?.cesserDeChercher();
    this.#compte.value = '';
  }

  #fermer(quandFerme) {
    this.#barre.hidden = true;
    this.#vue?.cesserDeChercher();
    this.#vue = null;
    quandFerme();
  }
}
