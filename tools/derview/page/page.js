"use strict";
// The tree of a message beside its octets. What comes out of the message is put in place as text.
const byId = (id) => document.getElementById(id);
const make = (tag, kind, text) => {
  const element = document.createElement(tag);
  if (kind) element.className = kind;
  if (text !== undefined) element.textContent = text;
  return element;
};
const RowHeight = 20, Columns = 16, Step = 500;
const blocks = document.querySelectorAll("script[type='text/x-message']");
let message; // the one that is shown
let selected = -1;
let found = -1;

function read(block) {
  const data = JSON.parse(block.textContent);
  const raw = atob(data.octets);
  const octets = new Uint8Array(raw.length);
  for (let i = 0; i < raw.length; ++i) octets[i] = raw.charCodeAt(i);
  const lines = data.rows.split("\n");
  const count = lines.length - 1;
  const nodes = {
    count, depth: new Int32Array(count), at: new Int32Array(count), header: new Int32Array(count),
    contents: new Int32Array(count), name: new Int32Array(count), value: new Int32Array(count),
    kind: [], end: new Int32Array(count).fill(count), parent: new Int32Array(count).fill(-1),
  };
  const open = [];
  let at = 0;
  for (let i = 0; i < count; ++i) {
    const row = lines[i].split(",");
    nodes.depth[i] = +row[0];
    at += +row[1];
    nodes.at[i] = row[2] === "" ? -1 : at;
    nodes.header[i] = +row[2];
    nodes.contents[i] = +row[3];
    nodes.name[i] = +row[4];
    nodes.value[i] = +row[5];
    nodes.kind.push(row[6]);
    while (open.length && nodes.depth[open[open.length - 1]] >= nodes.depth[i]) nodes.end[open.pop()] = i;
    if (open.length) nodes.parent[i] = open[open.length - 1];
    open.push(i);
  }
  return { title: data.title, texts: data.texts, octets, nodes, lists: new Map() };
}

const hasChildren = (i) => message.nodes.end[i] > i + 1;
const inMessage = (i) => i >= 0 && message.nodes.at[i] >= 0;
const sizeOf = (i) => message.nodes.header[i] + Math.max(0, message.nodes.contents[i]);

function rowOf(i) {
  const { nodes, texts } = message;
  const item = make("li");
  item.setAttribute("role", "none");
  const row = make("div", "row");
  row.setAttribute("role", "treeitem");
  row.tabIndex = -1;
  row.dataset.node = i;
  row.append(make("span", "fold", hasChildren(i) ? "▸" : ""));
  row.append(make("span", "offset", inMessage(i) ? String(nodes.at[i]) : ""));
  if (texts[nodes.name[i]]) row.append(make("span", "name", texts[nodes.name[i]]));
  row.append(make("span", "value " + nodes.kind[i], texts[nodes.value[i]]));
  if (hasChildren(i)) row.setAttribute("aria-expanded", "false");
  item.append(row);
  return item;
}

function childrenOf(i) {
  const { nodes } = message;
  const children = [];
  const end = i < 0 ? nodes.count : nodes.end[i];
  for (let child = i + 1; child < end; child = nodes.end[child]) children.push(child);
  return children;
}

// Long lists come in pieces.
function fill(list, children, until) {
  const last = list.lastElementChild;
  if (last && last.dataset.more) last.remove();
  const from = list.childElementCount;
  const end = Math.min(children.length, Math.max(until + 1, from + Step));
  for (let place = from; place < end; ++place) {
    const item = rowOf(children[place]);
    list.append(item);
    message.rows.set(children[place], item);
  }
  if (end < children.length) {
    const item = make("li");
    item.dataset.more = "1";
    const button = make("button", "", (children.length - end) + " more");
    button.addEventListener("click", () => fill(list, children, 0));
    item.append(button);
    list.append(item);
  }
}

function unfold(i) {
  const item = message.rows.get(i);
  if (!item || !hasChildren(i)) return;
  const row = item.firstElementChild;
  row.setAttribute("aria-expanded", "true");
  row.firstElementChild.textContent = "▾";
  if (item.childElementCount === 1) {
    const list = make("ul");
    list.setAttribute("role", "group");
    item.append(list);
    const children = childrenOf(i);
    message.lists.set(i, { list, children });
    fill(list, children, 0);
  }
  item.children[1].hidden = false;
}

function fold(i) {
  const item = message.rows.get(i);
  if (!item || item.childElementCount < 2) return;
  item.firstElementChild.setAttribute("aria-expanded", "false");
  item.firstElementChild.firstElementChild.textContent = "▸";
  item.children[1].hidden = true;
}

const isUnfolded = (i) => message.rows.get(i)?.firstElementChild.getAttribute("aria-expanded") === "true";

// Makes the row of a node there, with all that is around it.
function reveal(i) {
  const { nodes } = message;
  const way = [];
  for (let node = i; node >= 0; node = nodes.parent[node]) way.unshift(node);
  for (const node of way) {
    const parent = nodes.parent[node];
    if (parent >= 0) unfold(parent);
    const { list, children } = message.lists.get(parent);
    if (!message.rows.has(node)) fill(list, children, children.indexOf(node));
  }
}

function select(i, where) {
  const before = message.rows.get(selected)?.firstElementChild;
  if (before) { before.setAttribute("aria-selected", "false"); before.tabIndex = -1; }
  selected = i;
  reveal(i);
  const row = message.rows.get(i).firstElementChild;
  row.setAttribute("aria-selected", "true");
  row.tabIndex = 0;
  row.scrollIntoView({ block: "nearest" });
  if (where !== "search") row.focus({ preventScroll: true });
  const { nodes } = message;
  if (inMessage(i) && where !== "octets") {
    const top = Math.floor(nodes.at[i] / Columns) * RowHeight;
    const pane = byId("octets");
    if (top < pane.scrollTop || top + RowHeight > pane.scrollTop + pane.clientHeight) pane.scrollTop = top - 3 * RowHeight;
  }
  const contents = nodes.contents[i] < 0 ? "indefinite length" : nodes.contents[i] + " octets of contents";
  byId("status").textContent = inMessage(i)
    ? pathOf(i) + " at offset " + nodes.at[i] + ": " + nodes.header[i] + " octets of header, " + contents
    : pathOf(i);
  drawOctets();
}

function pathOf(i) {
  const names = [];
  for (let node = i; node >= 0; node = message.nodes.parent[node]) names.unshift(message.texts[message.nodes.name[node]]);
  return names.filter(Boolean).join(".").replaceAll(".[", "[") || "the message";
}

function nodeAt(offset) {
  let best = -1;
  const { nodes } = message;
  const covers = (i) => inMessage(i) && nodes.at[i] <= offset &&
    (nodes.contents[i] < 0 ? hasChildren(i) || offset < nodes.at[i] + nodes.header[i] : offset < nodes.at[i] + sizeOf(i));
  for (let i = 0; i < nodes.count;) {
    if (covers(i)) { best = i; ++i; } else i = nodes.end[i];
  }
  return best;
}

function drawOctets() {
  const pane = byId("octets"), rows = byId("rows");
  const { octets, nodes } = message;
  const first = Math.max(0, Math.floor(pane.scrollTop / RowHeight) - 5);
  const last = Math.min(Math.ceil(octets.length / Columns), first + Math.ceil(pane.clientHeight / RowHeight) + 10);
  const from = inMessage(selected) ? nodes.at[selected] : -1;
  const head = from + (from >= 0 ? nodes.header[selected] : 0);
  const to = from < 0 ? -1 : nodes.contents[selected] < 0 ? endOf(selected) : from + sizeOf(selected);
  rows.textContent = "";
  rows.style.top = first * RowHeight + "px";
  for (let line = first; line < last; ++line) {
    const row = make("div");
    row.append(make("span", "place", String(line * Columns).padStart(8) + "  "));
    const characters = make("span", "", " ");
    for (let column = 0; column < Columns; ++column) {
      const at = line * Columns + column;
      const octet = octets[at];
      const there = at < octets.length;
      const kind = there && at >= from && at < to ? (at < head ? "in head" : "in") : "";
      const cell = make("span", kind, there ? octet.toString(16).padStart(2, "0") : "  ");
      if (there) cell.dataset.at = at;
      row.append(cell, column === 7 ? "  " : " ");
      const character = make("span", kind, there ? (octet >= 32 && octet < 127 ? String.fromCharCode(octet) : "·") : " ");
      if (there) character.dataset.at = at;
      characters.append(character);
    }
    row.append(characters);
    rows.append(row);
  }
}

// Where an element of indefinite length ends, as far as the tree tells: behind what is in it.
function endOf(i) {
  const { nodes, octets } = message;
  let next = nodes.end[i];
  while (next < nodes.count && !inMessage(next)) ++next;
  return next < nodes.count ? nodes.at[next] : octets.length;
}

function search(back) {
  const wanted = byId("search").value.toLowerCase();
  const { nodes, texts } = message;
  if (!wanted) return;
  message.lower ??= texts.map((text) => text.toLowerCase());
  const fits = message.lower.map((text) => text.includes(wanted));
  for (let tried = 1; tried <= nodes.count; ++tried) {
    const i = (((found + (back ? -tried : tried)) % nodes.count) + nodes.count) % nodes.count;
    if (fits[nodes.name[i]] || fits[nodes.value[i]] || String(nodes.at[i]) === wanted) {
      found = i;
      select(i, "search");
      return;
    }
  }
  byId("status").textContent = "nothing found";
}

function show(number) {
  message = read(blocks[number]);
  message.rows = new Map();
  selected = found = -1;
  byId("title").textContent = message.title;
  document.title = message.title;
  const list = make("ul");
  list.setAttribute("role", "tree");
  byId("tree").replaceChildren(list);
  const children = childrenOf(-1);
  message.lists.set(-1, { list, children });
  fill(list, children, 0);
  byId("space").style.height = Math.ceil(message.octets.length / Columns) * RowHeight + "px";
  byId("octets").scrollTop = 0;
  for (const child of children.slice(0, 1)) {
    unfold(child);
    for (const inner of childrenOf(child).slice(0, 40)) unfold(inner);
  }
  // What is wrong is seen at once.
  const bad = [];
  for (let i = 0; i < message.nodes.count && bad.length < 20; ++i) if (message.nodes.kind[i] === "b") bad.push(i);
  bad.forEach(reveal);
  if (bad.length) select(bad[0]);
  else if (children.length) select(children[0]);
  else drawOctets();
}

function visibleRows() {
  return [...byId("tree").querySelectorAll(".row")].filter((row) => row.offsetParent);
}

byId("tree").addEventListener("click", (event) => {
  const row = event.target.closest(".row");
  if (!row) return;
  const i = +row.dataset.node;
  if (event.target.className === "fold") { if (isUnfolded(i)) fold(i); else unfold(i); }
  select(i);
});
byId("tree").addEventListener("dblclick", (event) => {
  const row = event.target.closest(".row");
  if (row) { const i = +row.dataset.node; if (isUnfolded(i)) fold(i); else unfold(i); }
});
byId("tree").addEventListener("keydown", (event) => {
  const rows = visibleRows();
  const place = rows.findIndex((row) => +row.dataset.node === selected);
  const go = (to) => { if (rows[to]) select(+rows[to].dataset.node); };
  const keys = {
    ArrowDown: () => go(place + 1), ArrowUp: () => go(place - 1), Home: () => go(0), End: () => go(rows.length - 1),
    ArrowRight: () => { if (hasChildren(selected) && !isUnfolded(selected)) unfold(selected); else go(place + 1); },
    ArrowLeft: () => {
      if (isUnfolded(selected)) fold(selected);
      else if (message.nodes.parent[selected] >= 0) select(message.nodes.parent[selected]);
    },
    Enter: () => { if (isUnfolded(selected)) fold(selected); else unfold(selected); },
  };
  if (keys[event.key]) { keys[event.key](); event.preventDefault(); }
});
byId("rows").addEventListener("click", (event) => {
  const at = event.target.dataset?.at;
  const node = at === undefined ? -1 : nodeAt(+at);
  if (node >= 0) select(node, "octets");
});
byId("octets").addEventListener("scroll", drawOctets);
addEventListener("resize", drawOctets);
byId("search").addEventListener("keydown", (event) => { if (event.key === "Enter") search(event.shiftKey); });
byId("theme").addEventListener("click", () => {
  const root = document.documentElement;
  root.dataset.theme = root.dataset.theme === "dark" ? "light" : "dark";
});
addEventListener("keydown", (event) => {
  if (event.key === "/" && event.target.id !== "search") { byId("search").focus(); event.preventDefault(); }
});
document.documentElement.dataset.theme = matchMedia("(prefers-color-scheme: dark)").matches ? "dark" : "light";
for (let i = 0; i < blocks.length; ++i) {
  const option = make("option", "", "message " + (i + 1));
  option.value = i;
  byId("which").append(option);
}
byId("which").hidden = blocks.length < 2;
byId("which").addEventListener("change", (event) => show(+event.target.value));
if (blocks.length) show(0);
