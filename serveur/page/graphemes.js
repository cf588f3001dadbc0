// Un emoji joint, un drapeau ou une syllabe ne valent qu’un signe pour le programme qui le demande. Les interpréteurs, qui
// comptent chaque caractère et ne demandent rien, gardent la place de leur curseur.
const MODE = 2027;
const [EN_VIGUEUR, LEVE] = [1, 2];
const PAR_GRAPHEMES = '15-graphemes';

// `charger` rend la classe de l’ajout : longue à lire, elle ne l’est que pour qui la demande.
export function grouperSurDemande(terminal, charger) {
  const parCaracteres = terminal.unicode.activeVersion;
  const grouper = async () => {
    const { unicode } = terminal;
    if (!unicode.versions.includes(PAR_GRAPHEMES)) terminal.loadAddon(new (await charger())());
    unicode.activeVersion = PAR_GRAPHEMES;
    return false;
  };
  const separer = () => {
    terminal.unicode.activeVersion = parCaracteres;
    return false;
  };
  const surLeMode = (faire) => (nombres) => nombres.includes(MODE) && faire();
  const repondre = () => {
    const etat = terminal.unicode.activeVersion === PAR_GRAPHEMES ? EN_VIGUEUR : LEVE;
    terminal.input(`\x1b[?${MODE};${etat}$y`, false);
    return true;
  };
  terminal.parser.registerCsiHandler({ prefix: '?', final: 'h' }, surLeMode(grouper));
  terminal.parser.registerCsiHandler({ prefix: '?', final: 'l' }, surLeMode(separer));
  terminal.parser.registerCsiHandler({ prefix: '?', intermediates: '$', final: 'p' }, surLeMode(repondre));
  terminal.parser.registerCsiHandler({ intermediates: '!', final: 'p' }, separer);
  terminal.parser.registerEscHandler({ final: 'c' }, separer);
}
