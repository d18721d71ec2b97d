// Bundles charts.js with what it uses of the chart library into a C++ source file.
// usage: node bundle.mjs OUTPUT.cpp    (next to node_modules)
import { build } from 'esbuild';
import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';

const output = process.argv[2];
if (output === undefined) throw new Error('usage: node bundle.mjs OUTPUT.cpp');

const result = await build({
  entryPoints: ['charts.js'],
  bundle: true,
  minify: true,
  charset: 'ascii',
  format: 'iife',
  target: ['chrome100', 'firefox100', 'safari15'],
  legalComments: 'none',  // the licences themselves stand in the page
  define: { 'process.env.NODE_ENV': '"production"' },
  write: false,
});
// Whatever ends a script element inside a text would end the page's script.
const script = result.outputFiles[0].text.replaceAll('</script', '<\\/script');
const hash = createHash('sha256').update(script).digest('base64');

const licences = [
  ['echarts', 'NOTICE'],
  ['echarts', 'LICENSE'],
  ['echarts', 'licenses/LICENSE-d3'],
  ['zrender', 'LICENSE'],
  ['tslib', 'LICENSE.txt'],
].map(([name, file]) => `${name}: ${file}\n\n${readFileSync(`node_modules/${name}/${file}`, 'utf8')}`);

// Compilers limit the length of one literal.
const LITERAL = 12000;
function pieces(text) {
  const bytes = Buffer.from(text, 'utf8');
  const list = [];
  for (let at = 0; at < bytes.length;) {
    let end = Math.min(at + LITERAL, bytes.length);
    while (end < bytes.length && (bytes[end] & 0xc0) === 0x80) --end;
    const piece = bytes.subarray(at, end).toString('utf8');
    if (piece.includes(')page_text"')) throw new Error('a text that holds the literal\'s end');
    list.push(`    R"page_text(${piece})page_text",\n`);
    at = end;
  }
  return list.join('');
}

const joined = (name, text) => `const std::string& ${name}() {
  static const std::string text = Joined({
${pieces(text)}  });
  return text;
}
`;

writeFileSync(output, `// Made by the build from hosts/report/page/charts.js and the chart library.
#include <initializer_list>

#include "hosts/report/page_assets.h"

namespace tof::report {
namespace {

std::string Joined(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

}  // namespace

${joined('ChartScript', script)}
std::string_view ChartScriptHash() { return "'sha256-${hash}'"; }

${joined('ChartLicences', licences.join('\n\n'))}
}  // namespace tof::report
`);
