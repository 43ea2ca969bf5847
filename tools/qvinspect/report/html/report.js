"use strict";
(() => {
  document.body.classList.remove("no-script");

  const svgName = "http://www.w3.org/2000/svg";

  function element(name, className, text) {
    const made = document.createElement(name);
    if (className) {
      made.className = className;
    }
    if (text !== undefined) {
      made.textContent = text;
    }
    return made;
  }

  // --- Zoom: all plots of a section with the same domain show the same part ---

  // Same as roundTicks() of the program.
  function roundTicks(from, to, about) {
    const rough = (to - from) / about;
    if (!(rough > 0)) {
      return [from];
    }
    const power = 10 ** Math.floor(Math.log10(rough));
    const step = power * ([1, 2, 5].find((factor) => rough <= factor * power) || 10);
    const ticks = [];
    for (let i = Math.ceil(from / step - 1e-9); i * step <= to + step * 1e-9 && ticks.length <= 2 * about; ++i) {
      ticks.push(Number((i * step).toPrecision(12)));
    }
    return ticks;
  }

  class Plot {
    constructor(frame) {
      this.frame = frame;
      this.svg = frame.querySelector("svg.plot");
      this.drawings = [...frame.querySelectorAll("svg.drawing")];
      this.axis = frame.querySelector("g.x");
      this.isByNumber = frame.dataset.domain === "au";
      this.from = Number(frame.dataset.from);
      this.per = Number(frame.dataset.per);
      this.to = this.from + this.per * Number(frame.dataset.width);
    }

    // range: [from, to] in the units of the axis.
    show(range) {
      const left = (range[0] - this.from) / this.per;
      const width = (range[1] - range[0]) / this.per;
      for (const drawing of this.drawings) {
        drawing.setAttribute("viewBox", `${left} 0 ${width} 1000`);
      }
      this.drawTicks(range);
    }

    drawTicks([from, to]) {
      const half = this.isByNumber ? 0.5 : 0;
      const y = Number(this.axis.dataset.y);
      this.axis.replaceChildren();
      for (const value of roundTicks(from, to - 2 * half, 8)) {
        if (this.isByNumber && !Number.isInteger(value)) {
          continue;
        }
        const at = ((value - from + half) / (to - from)) * 100 + "%";
        const line = document.createElementNS(svgName, "line");
        const label = document.createElementNS(svgName, "text");
        line.setAttribute("x1", at);
        line.setAttribute("x2", at);
        line.setAttribute("y1", y);
        line.setAttribute("y2", y + 4);
        label.setAttribute("x", at);
        label.setAttribute("y", y + 18);
        label.textContent = value;
        this.axis.append(line, label);
      }
      thinTicks(this.axis);
    }

    valueAt(clientX, range) {
      const box = this.svg.getBoundingClientRect();
      const share = Math.min(Math.max((clientX - box.left) / box.width, 0), 1);
      return range[0] + share * (range[1] - range[0]);
    }

    // The tooltip of the mark of the main drawing below the pointer's column.
    readingAt(clientX, range) {
      const main = this.frame.querySelector("svg.drawing.main") || this.drawings[0];
      const x = (this.valueAt(clientX, range) - this.from) / this.per;
      const marks = main.querySelectorAll("rect");
      for (let low = 0, high = marks.length; low < high; ) {
        const middle = (low + high) >> 1;
        const mark = marks[middle];
        const left = Math.floor(mark.x.baseVal.value);
        if (x < left) {
          high = middle;
        } else if (x >= left + Math.ceil(mark.width.baseVal.value)) {
          low = middle + 1;
        } else {
          return mark.querySelector("title").textContent;
        }
      }
      return "";
    }
  }

  // Leaves out every other label if they would overlap.
  function thinTicks(axis) {
    [...axis.querySelectorAll("text")].forEach((label, i) => label.classList.toggle("odd", i % 2 === 1));
  }

  class ZoomGroup {
    constructor(frames) {
      this.plots = frames.map((frame) => new Plot(frame));
      this.whole = [Math.min(...this.plots.map((plot) => plot.from)), Math.max(...this.plots.map((plot) => plot.to))];
      this.range = [...this.whole];
      // Not closer than four access units, or than four marks of time.
      const finest = Math.min(...this.plots.map((plot) => (plot.isByNumber ? 1 : plot.per)));
      this.least = Math.min(4 * finest, this.whole[1] - this.whole[0]);
      this.tools = this.plots.map((plot) => this.addTools(plot));
      this.plots.forEach((plot, i) => this.listen(plot, this.tools[i]));
      this.update();
    }

    addTools(plot) {
      const tools = element("div", "tools");
      tools.setAttribute("role", "group");
      tools.setAttribute("aria-label", "Zoom");
      const button = (text, label, action) => {
        const made = element("button", "", text);
        made.type = "button";
        made.title = label;
        made.setAttribute("aria-label", label);
        made.addEventListener("click", action);
        tools.append(made);
        return made;
      };
      const buttons = {
        closer: button("+", "Zoom in", () => this.scale(0.5)),
        wider: button("\u2212", "Zoom out", () => this.scale(2)),
        left: button("\u2190", "Earlier", () => this.move(-0.25)),
        right: button("\u2192", "Later", () => this.move(0.25)),
        all: button("All", "Show all", () => this.set(this.whole)),
      };
      const reading = element("output");
      tools.append(reading);
      plot.frame.before(tools);
      return { buttons, reading };
    }

    listen(plot, tools) {
      const frame = plot.frame;
      frame.classList.add("zooms");
      frame.tabIndex = 0;
      frame.setAttribute("role", "group");
      frame.setAttribute("aria-label", "Plot. Plus and minus zoom, arrow keys move, 0 shows all.");
      frame.addEventListener("keydown", (event) => this.onKey(event));
      frame.addEventListener("wheel", (event) => this.onWheel(event, plot), { passive: false });
      frame.addEventListener("dblclick", () => this.set(this.whole));
      frame.addEventListener("pointerdown", (event) => this.onDown(event, plot));
      frame.addEventListener("pointermove", (event) => {
        tools.reading.textContent = plot.readingAt(event.clientX, this.range) || this.rangeText();
      });
      frame.addEventListener("pointerleave", () => (tools.reading.textContent = this.rangeText()));
    }

    onKey(event) {
      const actions = {
        "+": () => this.scale(0.5), "=": () => this.scale(0.5), "-": () => this.scale(2),
        ArrowLeft: () => this.move(-0.25), ArrowRight: () => this.move(0.25), 0: () => this.set(this.whole),
        Home: () => this.move(-Infinity), End: () => this.move(Infinity),
      };
      if (actions[event.key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
        actions[event.key]();
        event.preventDefault();
      }
    }

    // The page scrolls normally unless the plot has the focus or Ctrl is held.
    onWheel(event, plot) {
      if (event.ctrlKey || plot.frame.contains(document.activeElement)) {
        event.preventDefault();
        if (Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
          this.move(Math.sign(event.deltaX) * 0.1);
        } else {
          this.scale(event.deltaY > 0 ? 1.25 : 0.8, plot.valueAt(event.clientX, this.range));
        }
      }
    }

    // Dragging selects the part to show.
    onDown(event, plot) {
      if (event.button !== 0 || event.pointerType === "touch") {
        return;
      }
      plot.frame.focus({ preventScroll: true });
      event.preventDefault();
      const start = plot.valueAt(event.clientX, this.range);
      const choice = document.createElementNS(svgName, "rect");
      choice.setAttribute("class", "choice");
      choice.setAttribute("y", 0);
      choice.setAttribute("height", plot.axis.dataset.y);
      plot.svg.append(choice);
      plot.frame.setPointerCapture(event.pointerId);
      const ends = (moved) => [start, plot.valueAt(moved.clientX, this.range)].sort((a, b) => a - b);
      const draw = (moved) => {
        const [from, to] = ends(moved);
        const length = this.range[1] - this.range[0];
        choice.setAttribute("x", ((from - this.range[0]) / length) * 100 + "%");
        choice.setAttribute("width", ((to - from) / length) * 100 + "%");
      };
      const stop = (ended) => {
        plot.frame.removeEventListener("pointermove", draw);
        plot.frame.removeEventListener("pointerup", stop);
        plot.frame.removeEventListener("pointercancel", stop);
        choice.remove();
        const [from, to] = ends(ended);
        if (ended.type === "pointerup" && to - from > (this.range[1] - this.range[0]) / 200) {
          this.set([from, to]);
        }
      };
      plot.frame.addEventListener("pointermove", draw);
      plot.frame.addEventListener("pointerup", stop);
      plot.frame.addEventListener("pointercancel", stop);
    }

    scale(factor, around = (this.range[0] + this.range[1]) / 2) {
      this.set([around - (around - this.range[0]) * factor, around + (this.range[1] - around) * factor]);
    }

    move(share) {
      const length = this.range[1] - this.range[0];
      const from = Math.min(Math.max(this.range[0] + share * length, this.whole[0]), this.whole[1] - length);
      this.set([from, from + length]);
    }

    set([from, to]) {
      const all = this.whole[1] - this.whole[0];
      const length = Math.min(Math.max(to - from, this.least), all);
      const middle = (from + to) / 2;
      const begin = Math.min(Math.max(middle - length / 2, this.whole[0]), this.whole[1] - length);
      this.range = [begin, begin + length];
      this.update();
    }

    update() {
      const [from, to] = this.range;
      const isAll = to - from >= this.whole[1] - this.whole[0];
      this.plots.forEach((plot) => plot.show(this.range));
      for (const { buttons, reading } of this.tools) {
        buttons.closer.disabled = to - from <= this.least;
        buttons.wider.disabled = isAll;
        buttons.all.disabled = isAll;
        buttons.left.disabled = from <= this.whole[0];
        buttons.right.disabled = to >= this.whole[1];
        reading.textContent = this.rangeText();
      }
    }

    rangeText() {
      const [from, to] = this.range;
      return this.plots[0].isByNumber
        ? `access units ${Math.floor(from)} to ${Math.max(Math.ceil(to) - 1, Math.floor(from))}`
        : `${from.toFixed(2)} s to ${to.toFixed(2)} s`;
    }
  }

  for (const section of document.querySelectorAll("section.file")) {
    for (const domain of ["au", "time"]) {
      const frames = [...section.querySelectorAll(`.frame[data-domain="${domain}"]`)];
      if (frames.length > 0) {
        new ZoomGroup(frames);
      }
    }
  }
  document.querySelectorAll(".frame g.x").forEach(thinTicks);

  // --- The table of NAL units ---

  class UnitTable {
    constructor(section) {
      this.section = section;
      this.data = JSON.parse(section.querySelector(".unit-data").textContent);
      this.body = section.querySelector("tbody");
      this.rows = [...this.body.rows];
      this.heads = [...section.querySelectorAll("thead th")];
      this.heads.forEach((head, column) => {
        head.firstElementChild.addEventListener("click", () => this.sort(column));
      });
      this.controls = section.querySelector(".controls");
      this.controls.addEventListener("input", () => this.filter());
      this.controls.addEventListener("change", () => this.filter());
      this.controls.addEventListener("submit", (event) => event.preventDefault());
      this.texts = this.rows.map((row) => row.textContent.toLowerCase());
      this.body.addEventListener("click", (event) => {
        const row = event.target.closest("tr");
        if (row && String(getSelection()) === "") {
          this.focus(row);
          this.open(row);
        }
      });
      this.body.addEventListener("keydown", (event) => this.onKey(event));
      this.filter();
    }

    sort(column) {
      const head = this.heads[column];
      const isDown = head.getAttribute("aria-sort") === "ascending";
      this.heads.forEach((other) => other.setAttribute("aria-sort", "none"));
      head.setAttribute("aria-sort", isDown ? "descending" : "ascending");
      const keys = new Map(this.rows.map((row) => [row, row.cells[column].textContent]));
      const isNumeric = [...keys.values()].every((key) => key === "" || Number.isFinite(Number(key)));
      const compare = (a, b) => {
        if (a === "" || b === "") {
          return (a === "") - (b === "");
        }
        return isNumeric ? a - b : a < b ? -1 : a > b ? 1 : 0;
      };
      const order = [...this.rows].sort((a, b) => compare(keys.get(a), keys.get(b)) * (isDown ? -1 : 1));
      this.body.append(...order);
      this.keepFocusable();
    }

    filter() {
      const find = this.controls.querySelector(".find").value.trim().toLowerCase();
      const type = this.controls.querySelector(".type").value;
      const isKeys = this.controls.querySelector(".keys").checked;
      const isErrors = this.controls.querySelector(".errors").checked;
      let shown = 0;
      this.rows.forEach((row, i) => {
        row.hidden =
          !this.texts[i].includes(find) || (type !== "" && row.dataset.type !== type) ||
          (isKeys && row.dataset.key !== "1") || (isErrors && row.dataset.error !== "1");
        shown += row.hidden ? 0 : 1;
      });
      this.controls.querySelector(".shown").textContent =
        shown === this.rows.length ? `${shown} shown` : `${shown} of ${this.rows.length} shown`;
      this.keepFocusable();
    }

    // One row is in the tab order: the one that had the focus last, or else the first that is shown.
    keepFocusable() {
      const row = this.body.querySelector('tr:not([hidden]) button[tabindex="0"]');
      if (!row) {
        const first = this.body.querySelector("tr:not([hidden])");
        if (first) {
          this.makeFocusable(first);
        }
      }
    }

    makeFocusable(row) {
      this.body.querySelectorAll('button[tabindex="0"]').forEach((button) => (button.tabIndex = -1));
      row.querySelector("button").tabIndex = 0;
    }

    focus(row) {
      this.makeFocusable(row);
      row.querySelector("button").focus();
    }

    onKey(event) {
      const row = event.target.closest("tr");
      const shown = [...this.body.rows].filter((candidate) => !candidate.hidden);
      const at = shown.indexOf(row);
      const targets = {
        ArrowDown: shown[at + 1], ArrowUp: shown[at - 1], Home: shown[0], End: shown[shown.length - 1],
      };
      if (event.key in targets) {
        event.preventDefault();
        if (targets[event.key]) {
          this.focus(targets[event.key]);
          if (drawer.open) {
            this.open(targets[event.key]);
          }
        }
      }
    }

    open(row) {
      const index = this.rows.indexOf(row);
      document.querySelectorAll("tr.open").forEach((other) => other.classList.remove("open"));
      row.classList.add("open");
      const cells = [...row.cells].map((cell) => cell.textContent.trim());
      fillDrawer(
        `Unit ${cells[0]}: ${cells[5]} ${cells[6]}`.replace(":  ", ": "),
        `Access unit ${cells[1]}, ${this.heads[3].textContent.toLowerCase()} ${cells[3]}, ${cells[4]} bytes`,
        Number(cells[4]), this.data[index]);
      opener = row.querySelector("button");
      if (!drawer.open) {
        drawer.show();
        opener.focus();
      }
    }
  }

  // --- The drawer ---

  const drawer = document.getElementById("drawer");
  let opener = null;

  function closeDrawer() {
    if (drawer.open) {
      drawer.close();
      document.querySelectorAll("tr.open").forEach((row) => row.classList.remove("open"));
      if (opener) {
        opener.focus();
      }
    }
  }

  drawer.querySelector(".close").addEventListener("click", closeDrawer);
  document.addEventListener("keydown", (event) => {
    if (event.key === "Escape") {
      closeDrawer();
    }
  });

  function hexDump(hex) {
    const lines = [];
    for (let at = 0; at < hex.length; at += 32) {
      const bytes = hex.slice(at, at + 32).match(/../g);
      const text = bytes.map((byte) => {
        const code = parseInt(byte, 16);
        return code >= 0x20 && code < 0x7f ? String.fromCharCode(code) : ".";
      });
      lines.push((at / 2).toString(16).padStart(4, "0") + "  " + bytes.join(" ").padEnd(47) + "  " + text.join(""));
    }
    return lines.join("\n");
  }

  function fieldTable(fields) {
    const table = element("table");
    const body = table.createTBody();
    for (const [name, value, note] of fields) {
      const row = body.insertRow();
      row.insertCell().textContent = name;
      row.insertCell().textContent = note ? `${value} (${note})` : value;
    }
    return table;
  }

  function fillDrawer(title, place, length, unit) {
    const body = document.getElementById("drawer-body");
    document.getElementById("drawer-title").textContent = title;
    body.replaceChildren(element("p", "", place));
    const shown = unit.hex.length / 2;
    body.append(element("h3", "", shown < length ? `First ${shown} of ${length} bytes` : `All ${length} bytes`));
    body.append(element("pre", "hex", hexDump(unit.hex)));
    for (const part of unit.parts || []) {
      body.append(element("h3", "", part.title));
      if (part.fields === null) {
        body.append(element("p", "", "The report has no room for more fields; they are in --ndjson."));
      } else if (part.fields.length > 0) {
        body.append(fieldTable(part.fields));
      }
    }
    if ((unit.log || []).length > 0) {
      body.append(element("h3", "", "What the library logged"));
      body.append(element("pre", "log", unit.log.join("\n")));
    }
    drawer.scrollTop = 0;
  }

  document.querySelectorAll("section.units").forEach((section) => new UnitTable(section));
})();
