// Une page connectée : ce qu’elle demande, et ce qu’elle n’a pas encore fini d’afficher.
export class PageReliee {
  quandAvance = () => {};
  #socket;
  #terminaux;
  #retards = new Map();
  #reprise = 0;

  constructor(socket, terminaux) {
    this.#socket = socket;
    this.#terminaux = terminaux;
  }

  presenter() {
    this.envoyer({ type: 'accueil', terminaux: this.#terminaux.pourLaPage() });
    for (const terminal of this.#terminaux.tous()) this.envoyerDuTexte('reprise', terminal.id, terminal.rejouer());
    this.#reprise = this.#socket.bufferedAmount;
  }

  envoyer(message) {
    this.#socket.send(JSON.stringify(message), () => {});
  }

  envoyerDuTexte(type, id, texte) {
    this.#retards.set(id, this.retard(id) + texte.length);
    this.envoyer({ type, id, texte });
  }

  retard(id) {
    return this.#retards.get(id) ?? 0;
  }

  // Ce que la page n’a pas même lu, en octets, et que le serveur garde pour elle en plus de la reprise.
  get enAttente() {
    return this.#socket.bufferedAmount - this.#reprise;
  }

  // Sans adieu : un adieu attendrait derrière tout ce que la page n’a pas encore lu.
  couper() {
    this.#socket.terminate();
  }

  // Un type inconnu est ignoré : une page d’une autre version ne doit pas être coupée pour autant.
  traiter(message) {
    const { id } = message;
    switch (message.type) {
      case 'ouvrir':
        return this.#ouvrir(message);
      case 'saisie':
        if (typeof message.texte === 'string') this.#terminaux.trouver(id)?.saisir(message.texte);
        return;
      case 'taille':
        return this.#terminaux.trouver(id)?.dimensionner(message.colonnes, message.lignes);
      case 'renommer':
        return this.#terminaux.renommer(id, message.nom);
      case 'deplacer':
        return this.#terminaux.deplacer(id, message.rang);
      case 'accoler':
        return this.#terminaux.accoler(id);
      case 'fermer':
        return this.#fermer(id, message.certain === true);
      case 'recu':
        return this.#noterLaReception(id, message.nombre);
    }
  }

  // Un terminal neuf s’ouvre dans le dossier de celui d’où on le demande, et à côté de lui si on le veut.
  #ouvrir({ colonnes, lignes, depuis, aCote }) {
    const voisin = this.#terminaux.trouver(depuis);
    const place = aCote === true && voisin ? { apres: voisin, groupe: voisin.groupe } : {};
    const terminal = this.#terminaux.ouvrir({ colonnes, lignes, dossier: voisin?.dossier, ...place });
    if (terminal) this.envoyer({ type: 'ouvert', id: terminal.id });
    else this.envoyer({ type: 'avis', texte: 'Impossible d’ouvrir un terminal de plus.' });
  }

  #fermer(id, certain) {
    const programme = certain ? null : this.#terminaux.trouver(id)?.programme;
    if (programme) this.envoyer({ type: 'occupe', id, programme });
    else this.#terminaux.fermer(id);
  }

  #noterLaReception(id, nombre) {
    if (!this.#retards.has(id) || !Number.isInteger(nombre) || nombre < 0) return;
    this.#retards.set(id, Math.max(0, this.retard(id) - nombre));
    this.quandAvance(id);
  }
}
