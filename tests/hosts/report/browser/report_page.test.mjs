// Report pages in a real browser: what is drawn, what is said, what is loaded, by keyboard and on paper.
// The program is named by TOFCAL, the browser by TOF_BROWSER; the script lies beside node_modules.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import {
  mkdirSync, mkdtempSync, readFileSync, readdirSync, rmSync, statSync, writeFileSync,
} from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const folder = mkdtempSync(join(tmpdir(), 'tof_report_'));
let browser;

before(async () => {
  browser = await chromium.launch({
    executablePath: process.env.TOF_BROWSER,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
});

after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true, force: true });
});

function tofcal(...args) {
  try {
    return { code: 0, out: execFileSync(process.env.TOFCAL, args, { encoding: 'utf8', stdio: 'pipe' }) };
  } catch (error) {
    return { code: error.status, out: error.stdout, err: error.stderr };
  }
}

// A run with its page and its result. `name` is the base folder's too.
function calibrate(name, ...args) {
  const base = join(folder, name);
  mkdirSync(base, { recursive: true });
  const page = join(base, 'page.html');
  const json = join(base, 'result.json');
  const { code, err } = tofcal('calibrate', '--base-folder', base, '--report', page, '--json', json, ...args);
  return { base, page, code, err, result: JSON.parse(readFileSync(json, 'utf8')) };
}

// Opens a page and keeps what it says on the console and asks of a network.
async function open(file, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1250, height: 900 }, ...options });
  const page = await context.newPage();
  const heard = { console: [], requests: [] };
  page.on('console', (message) => heard.console.push(message.text()));
  page.on('pageerror', (error) => heard.console.push(String(error)));
  page.on('request', (request) => heard.requests.push(request.url()));
  const url = pathToFileURL(file).href;
  await page.goto(url);
  heard.requests = heard.requests.filter((requested) => requested !== url);
  return { page, heard, close: () => context.close() };
}

// For each place of a chart: its id and how much is drawn in it.
const drawings = (page) => page.$$eval('.chart', (places) => places.map((place) => ({
  id: place.id,
  label: place.getAttribute('aria-label') ?? '',
  shapes: place.querySelectorAll('svg path').length,
  words: place.querySelectorAll('svg text').length,
  width: place.querySelector('svg')?.getBoundingClientRect().width ?? 0,
})));

async function everyChartIsDrawn(page) {
  const charts = await drawings(page);
  for (const chart of charts) {
    assert.ok(chart.shapes > 5 && chart.words > 2 && chart.width > 100, `${chart.id} is not drawn`);
    assert.ok(chart.label.length > 20, `${chart.id} says nothing to who does not see it`);
  }
  return charts.map(({ id }) => id);
}

const at = (result, key) => key.split('.').reduce((value, name) => value?.[name], result);

// Every number that the page shares with the JSON result.
async function numbersEqual(page, result) {
  const shown = await page.$$eval('[data-key]', (cells) => cells.map((cell) => ({
    key: cell.dataset.key,
    value: cell.querySelector('data')?.getAttribute('value') ?? null,
    text: cell.textContent,
  })));
  let compared = 0;
  for (const { key, value, text } of shown) {
    if (key.startsWith('effect.')) continue;
    const expected = at(result, key);
    assert.notEqual(expected, undefined, `${key} is not in the result`);
    assert.equal(value === null ? null : Number(value), expected, key);
    if (expected === null) continue;
    const digits = text.split('.')[1]?.length ?? 0;
    assert.ok(Math.abs(Number(text) - expected) <= 0.5000001 * 10 ** -digits, `${key} is shown as ${text}`);
    ++compared;
  }
  return compared;
}

describe('the page of an abundance-immune calibration', () => {
  let run;
  let opened;
  before(async () => {
    run = calibrate('aic');
    opened = await open(run.page);
  });
  after(() => opened.close());

  test('is quiet and asks for nothing', () => {
    assert.deepEqual(opened.heard, { console: [], requests: [] });
    console.log(`page: ${statSync(run.page).size} bytes`);
  });

  test('has every chart drawn', async () => {
    const ids = await everyChartIsDrawn(opened.page);
    const masses = run.result.masses.length;
    assert.equal(ids.length, 4 + 2 * masses);
    assert.ok(ids.includes('chart-effect') && ids.includes('chart-drift'));
    assert.ok(ids.includes(`chart-survey-${masses - 1}`) && ids.includes(`chart-times-${masses - 1}`));
  });

  test('gives every series a look of its own', async () => {
    const looks = await opened.page.$$eval('#chart-effect svg path', (paths) => {
      // The signs of the legend come last, the points before them; a sign is told by its outline,
      // its fill and its line.
      const outline = (path) => path.getAttribute('d').replace(/[-\d.e]+/g, '#');
      return paths.filter((path) => path.getAttribute('fill') !== 'none' || path.getAttribute('stroke'))
        .map((path) => [outline(path), path.getAttribute('fill'), path.getAttribute('stroke')].join('|'));
    });
    assert.ok(new Set(looks).size >= run.result.masses.length);
  });

  test('shows the numbers of the JSON result', async () => {
    assert.equal(run.result.ok, true);
    const compared = await numbersEqual(opened.page, run.result);
    // Six of each mass, eight coefficients, three errors, five counts, two times.
    assert.equal(compared, 6 * run.result.masses.length + 8 + 3 + 5 + 2);
  });

  test('says in one sentence what came of it', async () => {
    const verdict = await opened.page.textContent('#verdict');
    assert.match(verdict, /Calibrated: abundance-immune, in the first fitting pass; every setpoint is as it was/);
  });

  test('can be read with a keyboard alone', async () => {
    const { page } = opened;
    const wanted = await page.$$eval('a[href], summary, [tabindex="0"]', (list) => list
      .filter((element) => element.closest('details:not([open])') === null || element.matches('summary'))
      .map((element) => `${element.tagName} ${element.textContent.slice(0, 30)}`));
    const reached = [];
    await page.evaluate(() => document.activeElement.blur());
    for (let i = 0; i < wanted.length; ++i) {
      await page.keyboard.press('Tab');
      reached.push(await page.evaluate(() =>
        `${document.activeElement.tagName} ${document.activeElement.textContent.slice(0, 30)}`));
    }
    assert.deepEqual(reached, wanted);

    const details = page.locator('details', { hasText: 'Survey points' }).first();
    await details.locator('summary').focus();
    await page.keyboard.press('Enter');
    assert.ok(await details.locator('table').isVisible());
    assert.ok(await details.locator('tbody tr').count() > 100);
    await page.keyboard.press('Enter');
  });

  test('has headings, captions and names for who hears it', async () => {
    const { page } = opened;
    assert.equal(await page.getAttribute('html', 'lang'), 'en');
    const levels = await page.$$eval('h1, h2, h3', (list) => list.map((heading) => Number(heading.tagName[1])));
    assert.equal(levels[0], 1);
    levels.forEach((level, i) => assert.ok(i === 0 || level <= levels[i - 1] + 1, 'a level is left out'));
    assert.deepEqual(await page.$$eval('table', (tables) => tables.filter((table) =>
      table.caption === null || table.querySelector('thead th[scope=col]') === null).length), 0);
    const ids = await page.$$eval('[id]', (list) => list.map((element) => element.id));
    assert.equal(new Set(ids).size, ids.length, 'an id twice');
  });

  test('is dark on white', async () => {
    const worst = await opened.page.evaluate(() => {
      const parts = (colour) => colour.match(/[\d.]+/g).map(Number);
      const linear = (c) => (c / 255 <= 0.03928 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4);
      const light = (colour) => {
        const [r, g, b] = parts(colour).map(linear);
        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
      };
      const ground = (element) => {
        for (let at = element; at !== null; at = at.parentElement) {
          const colour = getComputedStyle(at).backgroundColor;
          if (parts(colour)[3] !== 0) return colour;
        }
        return 'rgb(255, 255, 255)';
      };
      const words = [...document.querySelectorAll('body *:not(script):not(svg *)')]
        .filter((element) => [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim()));
      return Math.min(...words.map((element) =>
        (light(ground(element)) + 0.05) / (light(getComputedStyle(element).color) + 0.05)));
    });
    assert.ok(worst >= 4.5, `contrast ${worst}`);
  });

  test('fits a narrow window', async () => {
    const { page, close } = await open(run.page, { viewport: { width: 360, height: 800 } });
    const { wide, window } = await page.evaluate(() => ({
      wide: document.documentElement.scrollWidth, window: innerWidth }));
    assert.ok(wide <= window, `${wide} px in a window of ${window}`);
    await close();
  });

  test('prints on paper', async () => {
    const { page, close } = await open(run.page);
    await page.emulateMedia({ media: 'print' });
    await page.setViewportSize({ width: 688, height: 1000 });  // A4 less its margins
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), 'cut at the side');
    await everyChartIsDrawn(page);
    const pdf = await page.pdf({ format: 'A4', preferCSSPageSize: true });
    const pages = pdf.toString('latin1').match(/\/Type\s*\/Page\b(?!s)/g).length;
    assert.ok(pages >= 4 && pages <= 14, `${pages} pages`);
    await close();
  });

  test('is read without scripts too', async () => {
    const { page, heard, close } = await open(run.page, { javaScriptEnabled: false });
    assert.deepEqual(heard.requests, []);
    assert.equal(await page.locator('#masses tbody tr').count(), run.result.masses.length);
    await close();
  });
});

describe('the page of another run', () => {
  const runs = {
    traditional: { args: ['--suppress-aic'], verdict: /Calibrated: traditional/ },
    'search per mass': { args: ['--set', 'Calibration/AIC_SetpointToUse=83'], verdict: /abundance-immune/ },
    aborted: { args: ['--abort-after', '200'], verdict: /Not calibrated: \[1\] User aborted.*setpoint 83 is/ },
    'without a spectrum': { args: ['--suppress-aic', '--fail', 'SpecParser.GetCalibrantPeakAttributes:1'], verdict: /Not calibrated.*while collecting flight times/ },
    skipped: { args: ['--flag', 'SkipTOFCalibrationDuringAutotunes=Yes'], verdict: /flags switch it off/ },
    'one spectrum': { args: ['--spectra', '1'], verdict: /Calibrated: abundance-immune/ },
  };
  for (const [name, { args, verdict }] of Object.entries(runs)) {
    test(`is whole: ${name}`, async () => {
      const run = calibrate(name, ...args);
      const { page, heard, close } = await open(run.page);
      assert.deepEqual(heard, { console: [], requests: [] });
      await everyChartIsDrawn(page);
      await numbersEqual(page, {
        ...run.result,
        // A page shows the coefficients in force also where the result has none.
        coefficients: run.result.coefficients ?? await shownCoefficients(page),
      });
      assert.match(await page.textContent('#verdict'), verdict);
      await close();
    });
  }

  // What is in force was tested where the result has it.
  const shownCoefficients = (page) => page.$$eval('[data-key^="coefficients."]', (cells) =>
    Object.fromEntries(cells.map((cell) => [
      cell.dataset.key.split('.')[1], Number(cell.querySelector('data').getAttribute('value'))])));

  test('keeps a hostile name a name', async () => {
    const name = 'a"b\'<img src=x>&amp;<script>alert(1)<';
    const run = calibrate(name, '--suppress-aic');
    const { page, heard, close } = await open(run.page);
    assert.deepEqual(heard, { console: [], requests: [] });
    assert.ok((await page.textContent('#files')).includes(name));
    assert.equal(await page.locator('img').count(), 0);
    await close();
  });
});

describe('the page made from log files', () => {
  test('agrees with the page of the run', async () => {
    const run = calibrate('logged');
    const file = join(run.base, 'past.html');
    assert.equal(tofcal('report', run.base, '--out', file).code, 0);
    const { page, heard, close } = await open(file);
    assert.deepEqual(heard, { console: [], requests: [] });
    const ids = await everyChartIsDrawn(page);
    assert.equal(ids.length, 3 + 2 * run.result.masses.length);  // no instrument time, no drift
    const cells = await page.$$eval('#masses [data-key]', (list) => list.map((cell) => [
      cell.dataset.key, Number(cell.querySelector('data')?.getAttribute('value') ?? NaN)]));
    for (const [key, value] of cells.filter(([name]) => name.startsWith('masses.'))) {
      const expected = at(run.result, key);
      const off = Math.abs(value - expected);
      // Errors are small differences of what the logs have fifteen digits of.
      assert.ok(off <= (key.endsWith('error_ppm') ? 1e-3 : 1e-8 * expected), `${key}: ${value}, not ${expected}`);
    }
    assert.match(await page.textContent('#verdict'), /Calibrated: abundance-immune.*not recorded/);
    assert.match(await page.textContent('#state'), /Not recorded/);
    await close();
  });

  test('says what could not be read and shows the rest', async () => {
    const run = calibrate('damaged');
    const logs = join(run.base, 'Logfiles');
    const log = join(logs, readdirSync(logs).find((name) => name.startsWith('AIC_')));
    const whole = readFileSync(log);
    writeFileSync(log, whole.subarray(0, 9000));
    const file = join(run.base, 'past.html');
    assert.equal(tofcal('report', run.base, '--out', file, '--run', '1').code, 0);
    const { page, heard, close } = await open(file);
    assert.deepEqual(heard, { console: [], requests: [] });
    await everyChartIsDrawn(page);
    const problems = await page.textContent('#problems');
    assert.match(problems, /AIC_.*ends in the middle of a line/s);
    await close();
  });
});
