// Shows a recording: a uPlot panel for each sensor, all with the same time axis and cursor.
"use strict";

(() => {
  const LINES = 7; // colours of the style
  const DASHES = [[], [8, 4], [2, 3]]; // for more columns than colours
  const PANEL_HEIGHT = 180;
  const AXIS_WIDTH = 72; // the same in all panels, so that their time axes lie below each other
  const MIN_WIDTH = 240;
  const POINTS_PER_PIXEL = 2;
  const ZOOM = 2;
  const STEP = 0.25; // of the view, for a key or a button
  const WHEEL = 0.0015; // of the view, for a unit of a wheel's turn

  const recording = JSON.parse(document.getElementById("recording").textContent);
  const { axis, gaps, levels } = recording;
  const find = (id) => document.getElementById(id);

  // Numbers and facts as text

  /** A number with as many digits as the page has. */
  function tell(value) {
    return typeof value === "number" ? String(Number(value.toPrecision(10))) : String(value);
  }

  /** A whole number, with blanks between thousands. */
  function tellCount(count) {
    return String(count).replace(/\B(?=(\d{3})+$)/g, "\u202f");
  }

  function tellCountOf(count, noun) {
    return `${tellCount(count)} ${noun}${Number(count) === 1 ? "" : "s"}`;
  }

  function tellDuration(seconds) {
    if (seconds < 120) return `${tell(Number(seconds.toPrecision(6)))} s`;
    const whole = Math.round(seconds);
    const two = (number) => String(number).padStart(2, "0");
    return `${Math.floor(whole / 3600)}:${two(Math.floor(whole / 60) % 60)}:${two(whole % 60)} h`;
  }

  function tellPosition(position) {
    const decimals = axis.step > 0 ? Math.max(0, 1 - Math.round(Math.log10(axis.step))) : 3;
    return axis.unit === "s" ? `${position.toFixed(Math.min(decimals, 9))} s` : `row ${Math.round(position)}`;
  }

  function addElement(parent, kind, text) {
    const element = document.createElement(kind);
    element.textContent = text;
    parent.append(element);
    return element;
  }

  function addFact(name, value) {
    const fact = addElement(find("facts"), "div", "");
    addElement(fact, "dt", name);
    addElement(fact, "dd", value);
  }

  /** What is missing, in words. */
  function tellGaps() {
    if (gaps.marked.length === 0) return "none";
    const most = gaps.complete ? "" : "more than ";
    const lost = gaps.complete || gaps.counter !== null ? "" : "at least ";
    return `${most}${tellCount(gaps.marked.length)}, ` +
      `${lost}${tellCountOf(gaps.lost, "row")} lost (told by ${gaps.counter ?? axis.column})`;
  }

  function showFacts(positions) {
    document.title = recording.title;
    find("title").textContent = recording.title;
    if (recording.title !== recording.file) addFact("file", recording.file);
    addFact("rows", tellCount(recording.rows));
    const duration = positions.length > 0 ? positions[positions.length - 1] - positions[0] : 0;
    if (axis.unit === "s") addFact("duration", tellDuration(duration));
    addFact("frequency", `${tell(recording.frequency_hz)} Hz`);
    if (axis.column !== null && duration > 0) {
      addFact("measured", `${Number(((recording.rows - 1) / duration).toPrecision(6))} Hz`);
      addFact("time", axis.origin === 0 ? `by ${axis.column}`
        : `by ${axis.column}, 0 s is ${axis.origin} s`);
    }
    addFact("gaps", tellGaps());
    addFact("created", recording.created.replace("T", " ").replace("Z", " UTC"));
    if (recording.calibrated) addFact("values", "calibrated");
    for (const note of recording.notes) addElement(find("notes"), "li", note);
    find("notes").hidden = recording.notes.length === 0;
  }

  function listGaps() {
    find("gaps").hidden = gaps.marked.length === 0;
    find("gap-summary").textContent = `Gaps: ${tellGaps()}`;
    for (const gap of gaps.marked) {
      const item = addElement(find("gap-list"), "li", "");
      const lost = Number(gap.lost) > 0 ? `, ${tellCountOf(gap.lost, "row")} lost` : "";
      const button = addElement(item, "button", `${tellPosition(gap.start)}${lost}`);
      button.type = "button";
      const around = Math.max(gap.end - gap.start, 20 * axis.step);
      button.addEventListener("click", () => setRange(gap.start - around, gap.end + around));
    }
  }

  // The view: a range of the time axis and the level of detail that fits it

  const whole = wholeRange(levels[0].positions);
  const view = { range: [...whole], level: 0, panels: [], isChanging: false };

  function wholeRange(positions) {
    if (positions.length === 0) return [0, 1];
    const [first, last] = [positions[0], positions[positions.length - 1]];
    return first < last ? [first, last] : [first - 0.5, last + 0.5];
  }

  /** How many of sorted numbers are below a limit. */
  function countBelow(numbers, limit) {
    let [low, high] = [0, numbers.length];
    while (low < high) {
      const middle = (low + high) >> 1;
      if (numbers[middle] < limit) low = middle + 1;
      else high = middle;
    }
    return low;
  }

  /** The coarsest level that has enough points for every pixel of a range, or the finest. */
  function chooseLevel([min, max]) {
    const wanted = POINTS_PER_PIXEL * panelWidth();
    const isEnough = ({ positions }) =>
      countBelow(positions, max) - countBelow(positions, min) >= wanted;
    const found = min <= whole[0] && max >= whole[1] ? 0 : levels.findIndex(isEnough);
    return found >= 0 ? found : levels.length - 1;
  }

  function dataOf(panel) {
    const { positions, values } = levels[view.level];
    return [positions, ...panel.columns.map((column) => values[column.values])];
  }

  /** Shows a range, moved or shortened so that it lies within the recording. */
  function setRange(min, max) {
    const shortest = Math.max((whole[1] - whole[0]) * 1e-9, Number.MIN_VALUE);
    const length = Math.min(Math.max(max - min, shortest), whole[1] - whole[0]);
    const start = Math.min(Math.max(min, whole[0]), whole[1] - length);
    view.range = [start, start + length];
    const level = chooseLevel(view.range);
    const isOther = level !== view.level;
    view.level = level;
    view.isChanging = true;
    view.panels.forEach((chart, i) => chart.batch(() => {
      if (isOther) chart.setData(dataOf(recording.panels[i]), false);
      chart.setScale("x", { min: view.range[0], max: view.range[1] });
    }));
    view.isChanging = false;
    tellDetail();
  }

  const reset = () => setRange(...whole);

  /** Moves by a part of the view. */
  function move(part) {
    const [min, max] = view.range;
    setRange(min + part * (max - min), max + part * (max - min));
  }

  /** Zooms around a position; the middle if none is given. */
  function zoom(factor, position = (view.range[0] + view.range[1]) / 2) {
    const [min, max] = view.range;
    setRange(position - (position - min) / factor, position + (max - position) / factor);
  }

  function tellDetail() {
    const { raw, positions } = levels[view.level];
    const rows = Math.max(2, Math.round((2 * recording.rows) / positions.length));
    find("detail").textContent = raw ? "every row is shown"
      : `the smallest and the largest of each ${tellCount(rows)} rows`;
  }

  // Panels

  const styleOf = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  const panelWidth = () => Math.max(MIN_WIDTH, find("panels").clientWidth);

  /** Values at the cursor: of a bucket, its smallest and largest. */
  function tellValue(chart, value, series, index) {
    if (value === null || value === undefined || index === null) return "\u2013";
    const other = levels[view.level].raw ? value : chart.data[series][index ^ 1];
    const [low, high] = [Math.min(value, other), Math.max(value, other)];
    return low === high ? tell(low) : `${tell(low)} \u2026 ${tell(high)}`;
  }

  /** Labels with the decimals that the distance of two of them needs. */
  function tellLabels(chart, splits, axisIndex, space, distance) {
    // A distance of 0.25 needs two, one of 0.2 a single one.
    let decimals = 0;
    while (decimals < 12 && Math.abs(distance - Number(distance.toFixed(decimals))) > distance * 1e-6)
      decimals += 1;
    const isLong = splits.some((split) => Math.abs(split) >= 1e8);
    return splits.map((split) => isLong ? split.toPrecision(4) : split.toFixed(decimals));
  }

  /** Bands where rows are missing, at least as wide as can be seen. */
  function drawGaps(chart) {
    const { ctx, bbox } = chart;
    const ratio = devicePixelRatio;
    ctx.save();
    ctx.beginPath();
    ctx.rect(bbox.left, bbox.top, bbox.width, bbox.height);
    ctx.clip();
    ctx.fillStyle = styleOf("--gap");
    for (const gap of gaps.marked) {
      if (gap.end < view.range[0] || gap.start > view.range[1]) continue;
      const start = chart.valToPos(gap.start, "x", true);
      const width = chart.valToPos(gap.end, "x", true) - start;
      const least = 2 * ratio;
      ctx.fillRect(start - Math.max(0, least - width) / 2, bbox.top, Math.max(width, least),
        bbox.height);
    }
    ctx.restore();
  }

  /** Moves the view with the pointer until the button is released. */
  function pan(chart, event) {
    const from = event.clientX;
    const [min, max] = view.range;
    const perPixel = (max - min) / chart.over.clientWidth;
    const follow = ({ clientX }) =>
      setRange(min - (clientX - from) * perPixel, max - (clientX - from) * perPixel);
    document.addEventListener("mousemove", follow);
    document.addEventListener("mouseup",
      () => document.removeEventListener("mousemove", follow), { once: true });
  }

  /** Without a key the wheel scrolls the page. */
  function turnWheel(chart, event) {
    const turn = event.deltaX !== 0 ? event.deltaX : event.deltaY;
    if (event.ctrlKey) {
      const pixel = event.clientX - chart.over.getBoundingClientRect().left;
      zoom(Math.exp(-turn * WHEEL), chart.posToVal(pixel, "x"));
    } else if (event.shiftKey || event.deltaX !== 0) {
      move(turn * WHEEL);
    } else {
      return;
    }
    event.preventDefault();
  }

  function seriesOf(column, i) {
    return {
      label: column.name,
      stroke: styleOf(`--line-${(i % LINES) + 1}`),
      dash: DASHES[Math.floor(i / LINES) % DASHES.length],
      width: 1.25,
      value: tellValue,
    };
  }

  function axisOf(options) {
    return {
      stroke: styleOf("--text"),
      font: "12px system-ui, sans-serif",
      labelFont: "12px system-ui, sans-serif",
      values: tellLabels,
      grid: { stroke: styleOf("--grid"), width: 1 },
      ticks: { stroke: styleOf("--edge"), width: 1 },
      ...options,
    };
  }

  function optionsOf(panel, isLast) {
    return {
      width: panelWidth(),
      height: PANEL_HEIGHT + (isLast ? 20 : 0),
      padding: [6, 24, 0, 0],
      scales: { x: { time: false, range: (chart, min, max) => [min, max] } },
      series: [{}, ...panel.columns.map(seriesOf)],
      axes: [
        axisOf(isLast ? { size: 34, label: axis.unit === "s" ? "time [s]" : "row", labelSize: 20 }
          : { size: 34 }),
        axisOf({ size: AXIS_WIDTH }),
      ],
      cursor: {
        drag: { x: true, y: false, dist: 4 },
        // The range is handed on by setRange(), so only the cursor is shared.
        sync: {
          key: "recording",
          filters: { pub: (type) => type === "mousemove" || type === "mouseleave" },
        },
        bind: {
          mousedown: (chart, target, handle) => (event) => {
            if (event.shiftKey && event.button === 0) pan(chart, event);
            else handle(event);
          },
          dblclick: () => reset,
        },
      },
      hooks: {
        drawClear: [drawGaps],
        setCursor: [(chart) => {
          const { left } = chart.cursor;
          find("cursor").textContent = left >= 0 ? tellPosition(chart.posToVal(left, "x")) : "";
        }],
        setScale: [(chart, key) => {
          if (key !== "x" || view.isChanging) return;
          const { min, max } = chart.scales.x;
          if (min !== view.range[0] || max !== view.range[1]) setRange(min, max);
        }],
      },
    };
  }

  /** Makes all panels, instead of those that are there. */
  function makePanels() {
    for (const chart of view.panels) chart.destroy();
    find("panels").replaceChildren();
    view.isChanging = true;
    view.panels = recording.panels.map((panel, i) => {
      const section = addElement(find("panels"), "section", "");
      section.className = "panel";
      section.setAttribute("aria-label", panel.title);
      addElement(section, "h2", panel.title);
      const isLast = i === recording.panels.length - 1;
      const chart = new uPlot(optionsOf(panel, isLast), dataOf(panel), section);
      chart.setScale("x", { min: view.range[0], max: view.range[1] });
      chart.over.addEventListener("wheel", (event) => turnWheel(chart, event), { passive: false });
      return chart;
    });
    view.isChanging = false;
    window.sensorfilePlot.panels = view.panels;
  }

  function resize() {
    const width = panelWidth();
    for (const chart of view.panels)
      if (chart.width !== width) chart.setSize({ width, height: chart.height });
  }

  function pressKey(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const actions = {
      "+": () => zoom(ZOOM),
      "-": () => zoom(1 / ZOOM),
      "0": reset,
      ArrowLeft: () => move(-STEP),
      ArrowRight: () => move(STEP),
    };
    if (!(event.key in actions)) return;
    actions[event.key]();
    event.preventDefault();
  }

  function listen() {
    find("reset").addEventListener("click", reset);
    find("zoom-in").addEventListener("click", () => zoom(ZOOM));
    find("zoom-out").addEventListener("click", () => zoom(1 / ZOOM));
    find("earlier").addEventListener("click", () => move(-STEP));
    find("later").addEventListener("click", () => move(STEP));
    document.addEventListener("keydown", pressKey);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", makePanels);
    new ResizeObserver(resize).observe(find("panels"));
  }

  // For scripts, and for tests: the panels and the view.
  window.sensorfilePlot = {
    recording,
    panels: [],
    getRange: () => [...view.range],
    getLevel: () => view.level,
    setRange,
    reset,
  };

  showFacts(levels[0].positions);
  listGaps();
  if (recording.panels.length === 0 || recording.rows === 0) {
    addElement(find("panels"), "p", "There are no rows to show.");
    return;
  }
  find("toolbar").hidden = false;
  makePanels();
  tellDetail();
  listen();
  requestAnimationFrame(() => {
    window.sensorfilePlot.drawnAfterMs = performance.now();
  });
})();
