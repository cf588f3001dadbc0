import { envoyer } from '/liaison.js';

const champ = document.querySelector('[name=interpreteur]');

// Ce réglage-là est au serveur : c’est lui qui lance les interpréteurs, et qui sait lesquels le système permet.
export function montrerLesInterpreteurs({ permis, choisi }) {
  champ.replaceChildren(new Option('Celui de votre compte', ''), ...permis.map((chemin) => new Option(chemin, chemin)));
  champ.value = choisi ?? '';
}

champ.addEventListener('change', () => envoyer({ type: 'interpreteur', chemin: champ.value || null }));
