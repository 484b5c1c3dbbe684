// Writes each line of the sample, and below each of its characters what the grammar takes it for.
import fs from 'node:fs';
import { createRequire } from 'node:module';

const require = createRequire(process.env.MODULES + '/');
const textmate = require('vscode-textmate');
const oniguruma = require('vscode-oniguruma');

const letters = {
  'comment': 'c', 'string': 's', 'keyword.control.directive': 'd', 'constant.other': 'm',
  'constant.numeric': 'n', 'keyword.control': 'k', 'storage.type': 't', 'support.function': 'b',
  'entity.name.function': 'f', 'keyword.operator': 'o',
};
const letter = (scopes) => {
  const scope = scopes[scopes.length - 1];
  return letters[Object.keys(letters).find((name) => scope.startsWith(name))] ?? ' ';
};

await oniguruma.loadWASM(fs.readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm')));
const registry = new textmate.Registry({
  onigLib: Promise.resolve({
    createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
    createOnigString: (text) => new oniguruma.OnigString(text),
  }),
  loadGrammar: async () => {
    const path = 'editors/vscode/syntaxes/vornscript.tmLanguage.json';
    return textmate.parseRawGrammar(fs.readFileSync(path, 'utf8'), path);
  },
});
const grammar = await registry.loadGrammar('source.vornscript');
let state = textmate.INITIAL;
for (const line of fs.readFileSync('editors/check/sample.vrs', 'utf8').trimEnd().split('\n')) {
  const { tokens, ruleStack } = grammar.tokenizeLine(line, state);
  state = ruleStack;
  const marks = tokens.map((each) => letter(each.scopes).repeat(each.endIndex - each.startIndex));
  console.log(line + '\n' + marks.join('').slice(0, line.length).trimEnd());
}
