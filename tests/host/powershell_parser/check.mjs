// check.mjs MODULES SCRIPT...: parses PowerShell scripts and prints the line of every place that the grammar does
// not know. It runs nothing.
import { readFileSync } from 'node:fs';
import { join } from 'node:path';

const [modules, ...scripts] = process.argv.slice(2);
const { Language, Parser } = await import(join(modules, 'web-tree-sitter/web-tree-sitter.js'));
await Parser.init();
const parser = new Parser();
parser.setLanguage(await Language.load(join(modules, 'tree-sitter-powershell/tree-sitter-powershell.wasm')));

let faults = 0;
function report(script, node) {
  if (node.isError || node.isMissing) {
    ++faults;
    console.log(`${script}:${node.startPosition.row + 1}: ${node.isMissing ? `no ${node.type}` : node.text}`);
  }
  for (const child of node.children) if (child.hasError || child.isMissing) report(script, child);
}
for (const script of scripts) report(script, parser.parse(readFileSync(script, 'utf8')).rootNode);
process.exitCode = faults > 0 ? 1 : 0;
