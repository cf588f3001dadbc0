// Les règles recommandées d’eslint, et celles qui évitent une faute que la relecture laisse passer.
import js from '@eslint/js';
import globals from 'globals';

export default [
  js.configs.recommended,
  { files: ['**/*.mjs'], languageOptions: { globals: globals.node } },
  { files: ['page/**/*.js'], languageOptions: { globals: { ...globals.browser, ...globals.worker } } },
  {
    linterOptions: { reportUnusedDisableDirectives: 'error' },
    rules: {
      'array-callback-return': 'error',
      eqeqeq: 'error',
      'no-self-compare': 'error',
      'no-unreachable-loop': 'error',
      'no-use-before-define': ['error', { functions: false, classes: false, variables: false }],
      'no-var': 'error',
      'object-shorthand': 'error',
      'prefer-const': 'error',
      'no-unused-vars': ['error', { argsIgnorePattern: '^_' }], // ce qu’il faut sauter pour atteindre un argument
      // Coupées : les caractères de commande sont le sujet même d’un terminal ; un échec que l’on accepte est un « catch {} » ;
      // et cette dernière ne sait pas que « ??= » lit aussi.
      'no-control-regex': 'off',
      'no-empty': ['error', { allowEmptyCatch: true }],
      'no-unused-private-class-members': 'off',
    },
  },
];
