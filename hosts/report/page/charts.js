// Draws the charts of a report page from the JSON in it, as static SVG: no pointer is needed to read
// them, they print as they are seen, and the page's style scales them.
import * as echarts from 'echarts/core';
import { LineChart, ScatterChart } from 'echarts/charts';
import {
  GridComponent,
  LegendComponent,
  MarkAreaComponent,
  MarkLineComponent,
} from 'echarts/components';
import { SVGRenderer } from 'echarts/renderers';

echarts.use([
  LineChart,
  ScatterChart,
  GridComponent,
  LegendComponent,
  MarkAreaComponent,
  MarkLineComponent,
  SVGRenderer,
]);

// Colours that people who do not see red and green apart can tell (after Okabe and Ito, darkened for
// a white page); signs and dashes say the same once more.
const COLOURS = ['#0060a0', '#b34700', '#00795a', '#8c3f74', '#1a1a1a', '#6b5b00', '#3d6fb6'];
const SYMBOLS = ['circle', 'rect', 'triangle', 'diamond', 'emptyCircle', 'emptyRect', 'emptyTriangle'];
const INK = '#1a1a1a';
const GRID_LINE = '#d4d4d4';
const WIDTH = 560;
const FONT = { color: INK, fontSize: 13, fontFamily: 'sans-serif' };

// Signs come round again with other colours.
const colourOf = (index) => COLOURS[(index + Math.floor(index / SYMBOLS.length)) % COLOURS.length];

const look = (index) => ({
  symbol: SYMBOLS[index % SYMBOLS.length],
  itemStyle: { color: colourOf(index), borderWidth: 1.5 },
  lineStyle: { color: colourOf(index) },
});

function axis(name, where, more = {}) {
  return {
    name,
    nameLocation: 'middle',
    nameGap: where === 'x' ? 28 : 54,
    nameTextStyle: FONT,
    axisLabel: { ...FONT, fontSize: 12, hideOverlap: true },
    axisLine: { show: true, onZero: false, lineStyle: { color: INK } },
    splitLine: { lineStyle: { color: GRID_LINE } },
    scale: true,
    ...more,
  };
}

const grid = { left: 76, right: 22, top: 34, bottom: 48 };
const legend = { top: 0, left: 'center', textStyle: FONT, itemHeight: 11, itemWidth: 11 };

// "150000" as "150 k": short enough for an axis.
function counts(value) {
  if (value >= 1e6) return `${value / 1e6} M`;
  return value >= 1000 ? `${value / 1000} k` : String(value);
}

const zeroLine = {
  silent: true,
  symbol: 'none',
  label: { show: false },
  lineStyle: { color: INK, type: 'solid', width: 1 },
  data: [{ yAxis: 0 }],
};

function errors({ when, points }) {
  return {
    height: 260,
    grid: { ...grid, top: 18 },
    xAxis: axis('m/z', 'x', { type: 'value', min: 0 }),
    yAxis: axis(`error ${when}, ppm`, 'y', { type: 'value', scale: false }),
    series: [
      {
        type: 'scatter',
        data: points,
        ...look(0),
        symbol: when === 'before' ? 'emptyCircle' : 'circle',
        symbolSize: 9,
        markLine: zeroLine,
      },
    ],
  };
}

// What a logarithmic axis can't show is left out of the curve; the table has it.
const positive = (points) => points.filter(([, abundance]) => abundance > 0);
const byVoltage = (points) => [...points].sort((a, b) => a[0] - b[0]);

function band([low, high]) {
  if (high === null) return undefined;
  const edge = { silent: true, itemStyle: { color: '#0060a0', opacity: 0.14 } };
  const label = { show: true, position: 'insideBottomRight', color: INK, fontSize: 12 };
  return {
    ...edge,
    label,
    data: [[{ yAxis: low ?? 1, name: low === null ? 'below the maximum' : 'target band' }, { yAxis: high }]],
  };
}

function chosenLine(chosen) {
  if (chosen === null) return undefined;
  return {
    silent: true,
    symbol: 'none',
    lineStyle: { color: INK, type: [6, 4], width: 1.5 },
    label: { formatter: `chosen ${+chosen.toFixed(2)} V`, color: INK, fontSize: 12, position: 'end' },
    data: [{ xAxis: chosen }],
  };
}

// The decades that hold both the readings and the target band.
function decades(values) {
  const logs = values.filter((value) => value > 0).map(Math.log10);
  const low = Math.floor(Math.min(...logs));
  return { min: 10 ** low, max: 10 ** Math.max(Math.ceil(Math.max(...logs)), low + 1) };
}

function survey({ survey: points, choosing, band: edges, chosen }) {
  const series = [
    { name: 'survey', type: 'line', data: byVoltage(positive(points)), symbolSize: 4, look: 0 },
    { name: 'choice', type: 'scatter', data: positive(choosing), symbolSize: 7, look: 1 },
  ].filter(({ data }) => data.length > 0);
  const shown = series.flatMap(({ data }) => data.map(([, abundance]) => abundance));
  if (shown.length === 0) return undefined;
  return {
    height: 320,
    legend: { ...legend, top: 0, left: 76 },
    grid: { ...grid, top: 52 },
    xAxis: axis('RF voltage, V', 'x', { type: 'value' }),
    yAxis: axis('abundance, counts', 'y', {
      type: 'log',
      ...decades([...shown, ...edges.filter((edge) => edge !== null)]),
      axisLabel: { ...FONT, fontSize: 12, formatter: counts },
    }),
    series: series.map((one, i) => ({
      name: one.name,
      type: one.type,
      data: one.data,
      ...look(one.look),
      symbol: one.look === 0 ? 'circle' : 'emptyRect',
      symbolSize: one.symbolSize,
      markArea: i === 0 ? band(edges) : undefined,
      markLine: i === 0 ? chosenLine(chosen) : undefined,
    })),
  };
}

function spreadArea(deviation) {
  if (deviation === null) return undefined;
  return {
    silent: true,
    itemStyle: { color: '#0060a0', opacity: 0.14 },
    data: [[{ yAxis: -deviation }, { yAxis: deviation }]],
  };
}

function times({ points, deviation }) {
  const most = Math.max(...points.map(([, ppm]) => Math.abs(ppm)), deviation ?? 0) * 1.15;
  const ends = most > 0 ? { min: -most, max: most } : {};
  return {
    height: 320,
    grid: { ...grid, top: 18 },
    xAxis: axis('measurement', 'x', { type: 'value', minInterval: 1 }),
    yAxis: axis('flight time from the mean, ppm', 'y', {
      type: 'value',
      scale: false,
      ...ends,
      axisLabel: { ...FONT, fontSize: 12, showMinLabel: false, showMaxLabel: false, formatter: short },
    }),
    series: [
      { type: 'line', data: points, symbolSize: 8, ...look(0), markArea: spreadArea(deviation), markLine: zeroLine },
    ],
  };
}

const short = (value) => String(+value.toPrecision(3));

function manySeries(series, type) {
  return series.map(({ name, points }, i) => ({ name, type, data: points, symbolSize: 7, ...look(i) }));
}

// A fitted line is a dash in the legend.
const DASH = 'path://M0,4L10,4L10,6L0,6Z';
const legendData = (series) =>
  series.map(({ name, symbol }) => (symbol === 'none' ? { name, icon: DASH } : { name }));

// Room for a legend of several lines.
const tallLegend = { ...legend, left: 76, right: 22, itemGap: 8, textStyle: { ...FONT, fontSize: 12 } };
const legendRows = (series) => Math.ceil(series.length / 3) * 20;

const fitted = (name, data) => ({
  name,
  type: 'line',
  data,
  symbol: 'none',
  itemStyle: { color: INK },
  lineStyle: { color: INK, type: [8, 4], width: 2 },
  z: 5,
});

function drift({ series, line }) {
  const top = 16 + legendRows([...series, line]);
  const all = [...manySeries(series, 'scatter'), ...(line === null ? [] : [fitted('drift of all', line)])];
  return {
    height: 280 + top,
    legend: { ...tallLegend, data: legendData(all) },
    grid: { ...grid, top },
    xAxis: axis('instrument time, s', 'x', { type: 'value' }),
    yAxis: axis('flight time from the mean, ppm', 'y', { type: 'value', scale: false }),
    series: all,
  };
}

function effect({ series, curve }) {
  const top = 16 + legendRows([...series, curve]);
  const all = [...manySeries(series, 'scatter'), fitted('fitted curve', curve)];
  return {
    height: 300 + top,
    legend: { ...tallLegend, data: legendData(all) },
    grid: { ...grid, top },
    xAxis: axis('abundance, counts', 'x', {
      type: 'log',
      ...decades(curve.map(([abundance]) => abundance)),
      axisLabel: { ...FONT, fontSize: 12, formatter: counts },
    }),
    yAxis: axis('m/z error, ppm', 'y', { type: 'value', scale: false }),
    series: all,
  };
}

// Values over dates, a curve per mass. Jumps have a sign of their own.
function history({ quantity, series, jumps }) {
  const top = 16 + legendRows([...series, jumps]);
  const curves = manySeries(series, 'line').map((one) => ({
    ...one,
    symbolSize: 4,
    showSymbol: one.data.length <= 60,
    lineStyle: { ...one.lineStyle, width: 1.2 },
  }));
  const marks = { name: 'jump', type: 'scatter', data: jumps, symbol: 'pin', symbolSize: 15, itemStyle: { color: INK }, z: 6 };
  const all = jumps.length > 0 ? [...curves, marks] : curves;
  return {
    height: 300 + top,
    useUTC: true,
    legend: { ...tallLegend, data: legendData(all) },
    grid: { ...grid, top },
    xAxis: axis('date', 'x', { type: 'time' }),
    yAxis: axis(quantity, 'y', { type: 'value', axisLabel: { ...FONT, fontSize: 12, formatter: (value) => (value >= 10000 ? counts(value) : short(value)) } }),
    series: all,
  };
}

const KINDS = { errors, survey, times, drift, effect, history };

function draw(chart) {
  const place = document.getElementById(chart.id);
  const option = KINDS[chart.kind](chart);
  if (option === undefined) {
    place.textContent = 'No abundance above 0 to show.';
    return;
  }
  const drawing = echarts.init(null, null, {
    renderer: 'svg',
    ssr: true,
    width: WIDTH,
    height: option.height,
  });
  drawing.setOption({ animation: false, ...option });
  place.innerHTML = drawing.renderToSVGString();
  // The place itself has the words for it.
  place.firstElementChild.setAttribute('aria-hidden', 'true');
  drawing.dispose();
}

JSON.parse(document.getElementById('chart-data').textContent).forEach(draw);
