// The page of `tofcal drift` in a real browser: drawn, quiet, and the same numbers as the JSON.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const folder = mkdtempSync(join(tmpdir(), 'tof_drift_'));
const data = join(folder, 'data.csv');
const html = join(folder, 'drift.html');
const json = join(folder, 'drift.json');
const heard = [];
let browser;
let page;
let result;

// Thirty days; from the 16th on the flight times are 40 ppm longer; a row that is none.
function dataSet() {
  const rows = ['Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance'];
  for (let day = 1; day <= 30; day += 1) {
    for (let mass = 0; mass < 3; mass += 1) {
      const time = 20000 * (mass + 1) * (1 + (day < 16 ? 0 : 40e-6) + (day % 3) * 1e-7);
      rows.push(`202404${String(day).padStart(2, '0')}, 120000, ${mass}, 0, ${time}, ${5000 + day}`);
    }
  }
  return `${[...rows, 'not a row'].join('\r\n')}\r\n`;
}

before(async () => {
  writeFileSync(data, dataSet());
  execFileSync(process.env.TOFCAL, ['drift', `a <b> & "c"=${data}`, '--report', html, '--json', json]);
  result = JSON.parse(readFileSync(json, 'utf8'));
  browser = await chromium.launch({
    executablePath: process.env.TOF_BROWSER,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
  page = await browser.newPage();
  page.on('console', (message) => heard.push(message.text()));
  page.on('pageerror', (error) => heard.push(String(error)));
  page.on('request', (request) => heard.push(request.url()));
  await page.goto(pathToFileURL(html).href);
});

after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true, force: true });
});

test('it says nothing on the console and asks for no other file', () => {
  assert.deepEqual(heard, [pathToFileURL(html).href]);
});

test('every chart is drawn', async () => {
  const charts = await page.$$eval('.chart', (places) => places.map((place) => ({
    id: place.id,
    shapes: place.querySelectorAll('svg path').length,
    words: [...place.querySelectorAll('svg text')].map((text) => text.textContent),
  })));
  assert.deepEqual(charts.map(({ id }) => id), ['chart-drift-0', 'chart-abundance-0']);
  for (const { id, shapes, words } of charts) {
    assert.ok(shapes > 90, `${id} has ${shapes} shapes`);
    assert.ok(words.includes('mass 2'), `${id} has no legend`);
  }
  assert.ok(charts[0].words.includes('jump'));
  assert.ok(!charts[1].words.includes('jump'));
});

test('its numbers are those of the JSON', async () => {
  const keys = ['first_time_ns', 'last_time_ns', 'drift_ppm', 'noise_ppm', 'first_abundance', 'last_abundance'];
  for (const key of keys) {
    const shown = await page.$$eval(`[data-key="${key}"]`, (cells) => cells.map((cell) => Number(cell.querySelector('[value]')?.getAttribute('value') ?? cell.getAttribute('data-value'))));
    assert.deepEqual(shown, result.instruments[0].masses.map((mass) => mass[key]), key);
  }
});

test('it shows the jump, the label and the bad row', async () => {
  const text = await page.innerText('body');
  assert.match(text, /a <b> & "c"/);
  assert.match(text, /2024-04-16 12:00:00\s+2024-04-15 12:00:00\s+3 masses\s+flight time/);
  assert.match(text, /92\s+fewer than 6 columns/);
});
