// The pictures of the documents: parts of a page of the built-in instrument.
// usage: TOFCAL=... TOF_BROWSER=... node take_pictures.mjs FOLDER
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const target = process.argv[2];
if (target === undefined) throw new Error('usage: node take_pictures.mjs FOLDER');

const folder = mkdtempSync(join(tmpdir(), 'tof_pictures_'));
const file = join(folder, 'page.html');
execFileSync(process.env.TOFCAL, ['calibrate', '--base-folder', folder, '--report', file]);

const browser = await chromium.launch({
  executablePath: process.env.TOF_BROWSER,
  args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--disable-component-update', '--disable-sync'],
});
const page = await browser.newPage({ viewport: { width: 1000, height: 1010 } });
await page.goto(pathToFileURL(file).href);
await page.screenshot({ path: join(target, 'report_top.png') });

// The abundance effect and one calibrant, without what lies between them.
await page.evaluate(() => {
  const shown = [document.querySelector('#effect figure'), document.querySelectorAll('#calibrants article')[5]];
  document.body.replaceChildren(...shown);
});
await page.screenshot({ path: join(target, 'report_charts.png'), fullPage: true });
await browser.close();
rmSync(folder, { recursive: true, force: true });
