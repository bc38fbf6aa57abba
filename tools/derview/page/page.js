// What a page of derview does. It reads the blocks of data behind it (page_nodes.h tells of them)
// and makes lines only of what is on the screen. Text of messages reaches the document through
// textContent alone.

const TreeHeight = 22;
const OctetHeight = 20;
const LineOctets = 16;
// Browsers do not make elements as high as they are told without an end.
const MostPixels = 8e6;
// With more elements than this, long lists and further messages begin folded.
const MostUnfolded = 3000;
const LongList = 100;
const MostIndented = 24;
const MostFound = 100000;
const LineHex = 64;
const DetailHex = 4096;

const Flag = { container: 1, text: 2, assembled: 4, inner: 32 };
const Hex = { none: 0, contents: 1, bits: 2, whole: 3 };

const byId = (id) => document.getElementById(id);
const clamp = (value, least, most) => Math.max(least, Math.min(value, most));
const countText = (count, what) =>
  `${count.toLocaleString('en')} ${what}${count === 1 ? '' : 's'}`;
const hexDigits = Array.from({ length: 256 }, (_, octet) => octet.toString(16).padStart(2, '0'));
const hexText = (octets, between = '') =>
  Array.from(octets, (octet) => hexDigits[octet]).join(between);

function make(name, className, text = '') {
  const made = document.createElement(name);
  made.className = className;
  made.textContent = text;
  return made;
}

function octetsOf(base64) {
  if (Uint8Array.fromBase64) {
    return Uint8Array.fromBase64(base64);
  }
  const text = atob(base64);
  const octets = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) {
    octets[i] = text.charCodeAt(i);
  }
  return octets;
}

// All messages, and their elements in one sequence of nodes. The first node of a message stands for
// all of it and for its outermost element.
class Messages {
  constructor(blocks) {
    this.count = 0;
    this.shapes = [];
    this.texts = [];
    this.messages = [];
    const total = blocks.reduce((sum, block) => sum + block.count + 1, 0);
    for (const name of ['shape', 'offset', 'size', 'text', 'after', 'place', 'children',
      'next', 'message']) {
      this[name] = new Uint32Array(total);
    }
    this.level = new Uint16Array(total);
    this.parent = new Int32Array(total).fill(-1);
    this.index = new Int32Array(total).fill(-1);
    for (const block of blocks) {
      this.read(block);
    }
  }

  read(block) {
    let text = this.texts.length; // the next one that has not been used
    for (const [name, choices, type, style, header, flags] of block.shapes) {
      this.shapes.push({
        name, choices, type, style, header,
        container: (flags & Flag.container) !== 0,
        hasText: (flags & Flag.text) !== 0,
        assembled: (flags & Flag.assembled) !== 0,
        inner: (flags & Flag.inner) !== 0,
        hex: flags >> 3 & 3,
      });
    }
    for (const unused of block.texts) {
      this.texts.push(unused);
    }

    const root = this.count++;
    const octets = octetsOf(block.octets);
    this.offset[root] = block.offset;
    this.size[root] = octets.length - block.header;
    this.message[root] = this.place[root] = this.messages.length;
    this.messages.push({
      octets, root, place: block.place, about: block.about, path: block.path,
      first: block.offset, order: null,
      shape: {
        name: block.place, choices: [], type: block.type, style: 'plain', header: block.header,
        container: true, hasText: false, assembled: false, inner: false, hex: Hex.none,
      },
    });

    const data = octetsOf(block.nodes);
    let at = 0;
    const number = () => {
      let value = 0;
      for (let factor = 1; ; factor *= 128) {
        const octet = data[at++];
        value += (octet & 127) * factor;
        if (octet < 128) {
          return value;
        }
      }
    };
    const around = [root];
    const ends = [];
    let expected = block.offset;
    while (at < data.length) {
      const head = number();
      if (head === 0) {
        this.after[around.pop()] = this.count;
        expected = ends.pop();
        continue;
      }
      if (head % 2 === 1) {
        const moved = number();
        expected += moved % 2 === 0 ? moved / 2 : -(moved + 1) / 2;
      }
      const node = this.count++;
      const outer = around.at(-1);
      this.shape[node] = (head >> 1) - 1;
      const shape = this.shapes[this.shape[node]];
      this.message[node] = this.message[root];
      this.parent[node] = outer;
      this.level[node] = around.length;
      this.place[node] = this.children[outer]++;
      this.offset[node] = expected;
      this.size[node] = number();
      this.after[node] = node + 1;
      if (shape.hasText) {
        const known = number();
        this.text[node] = known === 0 ? text++ : known - 1;
      }
      if (shape.name === '[]') {
        this.index[node] = this.next[outer]++;
      } else if (shape.name.startsWith('[')) {
        this.next[outer] = parseInt(shape.name.slice(1), 10) + 1;
      }
      expected += shape.header;
      if (shape.container) {
        around.push(node);
        ends.push(expected + this.size[node]);
      } else {
        expected += this.size[node];
      }
    }
    for (const node of around) {
      this.after[node] = this.count;
    }
  }

  messageOf(node) {
    return this.messages[this.message[node]];
  }

  shapeOf(node) {
    return this.level[node] === 0 ? this.messageOf(node).shape : this.shapes[this.shape[node]];
  }

  isContainer(node) {
    return this.shapeOf(node).container && this.after[node] > node + 1;
  }

  nameOf(node) {
    return this.index[node] >= 0 ? `[${this.index[node]}]` : this.shapeOf(node).name;
  }

  // As --at takes it; what has no path of its own has that of the element around.
  pathOf(node) {
    const shape = this.shapeOf(node);
    if (this.level[node] === 0) {
      return this.messageOf(node).path;
    }
    let path = this.pathOf(this.parent[node]);
    if (shape.name === '' || shape.inner) {
      return path;
    }
    for (const step of [this.nameOf(node), ...shape.choices]) {
      path += step === '' || step.startsWith('[') || path === '' ? step : `.${step}`;
    }
    return path;
  }

  // Where an element stands among the octets of its message. What was put together from segments
  // stands where these do.
  rangeOf(node) {
    let around = node;
    while (this.shapeOf(around).assembled) {
      around = this.parent[around];
    }
    const { first, octets } = this.messageOf(node);
    const begin = this.offset[around] - first;
    const contents = begin + this.shapeOf(around).header;
    return { begin, contents, end: Math.min(contents + this.size[around], octets.length) };
  }

  // The octets that are shown as a value.
  valueOctets(node) {
    const { begin, contents, end } = this.rangeOf(node);
    const from = { [Hex.none]: end, [Hex.contents]: contents, [Hex.bits]: contents + 1,
      [Hex.whole]: begin };
    return this.messageOf(node).octets.subarray(from[this.shapeOf(node).hex], end);
  }

  // @param most octets
  valueOf(node, most) {
    const shape = this.shapeOf(node);
    let text = shape.hasText ? this.texts[this.text[node]] : '';
    const octets = this.valueOctets(node);
    if (octets.length !== 0) {
      const left = octets.length - most;
      text += `${text && ' '}${hexText(octets.subarray(0, most))}`;
      text += left > 0 ? ` … ${countText(left, 'more octet')}` : '';
    }
    return text;
  }

  // The nodes of a message that have octets, by their offsets.
  orderOf(message) {
    if (message.order === null) {
      const nodes = [];
      for (let node = message.root; node < this.after[message.root]; ++node) {
        const shape = this.shapeOf(node);
        if (!shape.assembled && shape.header + this.size[node] !== 0) {
          nodes.push(node);
        }
      }
      message.order = Uint32Array.from(nodes);
      // What an identifier selects may follow what stands behind it.
      const inOrder = message.order.every(
        (node, i) => i === 0 || this.offset[message.order[i - 1]] <= this.offset[node]);
      if (!inOrder) {
        message.order.sort((one, other) => this.offset[one] - this.offset[other] || one - other);
      }
    }
    return message.order;
  }

  // The innermost element that an octet belongs to.
  nodeAt(message, octet) {
    const order = this.orderOf(message);
    const offset = octet + message.first;
    let low = 0;
    for (let high = order.length; high - low > 1;) {
      const middle = (low + high) >> 1;
      if (this.offset[order[middle]] <= offset) {
        low = middle;
      } else {
        high = middle;
      }
    }
    let node = order[low];
    while (this.level[node] !== 0 &&
        offset >= this.offset[node] + this.shapeOf(node).header + this.size[node]) {
      node = this.parent[node];
    }
    return node;
  }

  // The places that a query tells of, as nodes and, where it tells octets, these.
  find(query, message) {
    const at = /^@\s*(0x[0-9a-f]+|\d+)$/i.exec(query);
    if (at) {
      const octet = Number(at[1]) - message.first;
      const isThere = octet >= 0 && octet < message.octets.length;
      return isThere ? [{ node: this.nodeAt(message, octet), octet, size: 1 }] : [];
    }
    const wanted = query.toLowerCase();
    const has = (text) => text.toLowerCase().includes(wanted);
    const shapes = this.shapes.map(
      ({ name, choices, type }) =>
        has(name) || choices.some(has) || has(type));
    const texts = this.texts.map(has);
    const found = [];
    for (let node = 0; node < this.count && found.length < MostFound; ++node) {
      const shape = this.shapeOf(node);
      const isFound = this.level[node] === 0
        ? has(shape.name) || has(shape.type)
        : shapes[this.shape[node]] || (shape.hasText && texts[this.text[node]]);
      if (isFound) {
        found.push({ node, octet: -1, size: 0 });
      }
    }
    return found.concat(this.findOctets(query))
      .sort((one, other) => one.node - other.node || one.octet - other.octet);
  }

  findOctets(query) {
    const text = query.replace(/^0x|[\s:]/gi, '');
    const found = [];
    if (text.length < 4 || !/^([0-9a-f]{2})+$/i.test(text)) {
      return found;
    }
    const wanted = text.match(/../g).map((pair) => parseInt(pair, 16));
    for (const message of this.messages) {
      const { octets } = message;
      for (let at = octets.indexOf(wanted[0]); at >= 0 && found.length < MostFound;
        at = octets.indexOf(wanted[0], at + 1)) {
        if (wanted.every((octet, i) => octets[at + i] === octet)) {
          found.push({ node: this.nodeAt(message, at), octet: at, size: wanted.length });
        }
      }
    }
    return found;
  }
}

// Lines of one height, of which those are made that are on the screen.
class Lines {
  constructor(scroller, height, makeLine, paint) {
    this.scroller = scroller;
    this.height = height;
    this.makeLine = makeLine;
    this.paint = paint;
    this.count = 0;
    this.room = make('div', 'room');
    this.lines = make('div', 'lines');
    this.lines.setAttribute('role', 'presentation');
    this.room.setAttribute('role', 'presentation');
    scroller.append(this.room, this.lines);
    scroller.addEventListener('scroll', () => this.later());
    scroller.addEventListener('wheel', (event) => this.wheel(event), { passive: false });
    new ResizeObserver(() => this.later()).observe(scroller);
  }

  setCount(count) {
    this.count = count;
    this.room.style.height = `${Math.min(count * this.height, MostPixels)}px`;
  }

  // How many of its pixels the lines move for one of the scroller's.
  get ratio() {
    const all = this.count * this.height;
    const shown = this.scroller.clientHeight;
    return all > MostPixels ? (all - shown) / (MostPixels - shown) : 1;
  }

  get top() {
    return this.scroller.scrollTop * this.ratio / this.height;
  }

  // Whole lines that are on the screen.
  get page() {
    return Math.max(1, Math.floor(this.scroller.clientHeight / this.height));
  }

  wheel(event) {
    if (this.ratio > 1 && event.deltaMode === 0 && !event.ctrlKey) {
      event.preventDefault();
      this.scroller.scrollTop += event.deltaY / this.ratio;
    }
  }

  later() {
    if (!this.waiting) {
      this.waiting = true;
      requestAnimationFrame(() => this.render());
    }
  }

  render() {
    this.waiting = false;
    const { top } = this;
    const first = Math.floor(top);
    const last = Math.min(first + this.page + 2, this.count);
    const made = [];
    for (let line = first; line < last; ++line) {
      made.push(this.makeLine(line));
    }
    this.lines.replaceChildren(...made);
    const moved = this.scroller.scrollTop - (top - first) * this.height;
    this.lines.style.transform = `translateY(${moved}px)`;
    this.paint();
  }

  // Shows a line, and moves only where it is not shown yet.
  reveal(line) {
    if (line < Math.ceil(this.top) || line >= Math.floor(this.top) + this.page) {
      const first = clamp(line - Math.floor(this.page / 3), 0, this.count);
      this.scroller.scrollTop = first * this.height / this.ratio;
    }
    this.render();
  }
}

// The elements that are not inside folded ones.
class TreePane {
  constructor(page) {
    this.page = page;
    this.pane = byId('tree');
    this.rows = [];
    const { messages } = page;
    this.folded = new Uint8Array(messages.count);
    if (messages.count > MostUnfolded) {
      for (let node = 0; node < messages.count; ++node) {
        const isFurther = messages.level[node] === 0 && messages.messages.length > 1;
        this.folded[node] = isFurther || messages.children[node] > LongList ? 1 : 0;
      }
    }
    this.lines = new Lines(this.pane, TreeHeight, (row) => this.makeLine(this.rows[row]),
      () => this.paint());
    this.fill();
    this.pane.addEventListener('click', (event) => this.click(event));
    this.pane.addEventListener('dblclick', (event) => this.toggle(this.nodeOf(event)));
    this.pane.addEventListener('pointermove', (event) => page.setOver(this.nodeOf(event)));
    this.pane.addEventListener('pointerleave', () => page.setOver(-1));
    this.pane.addEventListener('keydown', (event) => this.key(event));
  }

  nodeOf(event) {
    return event.target.closest('.line')?.node ?? -1;
  }

  fill() {
    const { messages } = this.page;
    this.rows = [];
    for (let node = 0; node < messages.count;) {
      this.rows.push(node);
      node = this.folded[node] ? messages.after[node] : node + 1;
    }
    this.lines.setCount(this.rows.length);
  }

  rowOf(node) {
    let low = 0;
    for (let high = this.rows.length; high - low > 1;) {
      const middle = (low + high) >> 1;
      if (this.rows[middle] <= node) {
        low = middle;
      } else {
        high = middle;
      }
    }
    return low;
  }

  makeLine(node) {
    const { messages } = this.page;
    const shape = messages.shapeOf(node);
    const isContainer = messages.isContainer(node);
    const level = messages.level[node];
    const line = make('div', level === 0 ? 'line message' : 'line');
    line.node = node;
    line.id = `node-${node}`;
    line.setAttribute('role', 'treeitem');
    line.setAttribute('aria-level', level + 1);
    line.setAttribute('aria-posinset', messages.place[node] + 1);
    line.setAttribute('aria-setsize', level === 0 ? messages.messages.length
      : messages.children[messages.parent[node]]);
    if (isContainer) {
      line.setAttribute('aria-expanded', this.folded[node] === 0);
    }
    line.append(this.makePlace(node, shape));
    const fold = make('span', 'fold', isContainer ? (this.folded[node] ? '▸' : '▾') : '');
    fold.setAttribute('aria-hidden', 'true');
    fold.style.marginLeft = `${Math.min(level, MostIndented) * 16}px`;
    line.append(fold);
    const name = messages.nameOf(node);
    if (name !== '') {
      line.append(make('span', 'name', name));
    }
    for (const choice of shape.choices) {
      line.append(make('span', 'choice', `${choice}: `));
    }
    const value = messages.valueOf(node, LineHex);
    if (shape.type !== '') {
      line.append(make('span', 'type', shape.type));
    }
    if (isContainer) {
      line.append(make('span', 'note', this.noteOf(node)));
    }
    if (value !== '') {
      line.append(make('span', `value ${shape.style}`, value));
    }
    return line;
  }

  noteOf(node) {
    const { messages } = this.page;
    if (messages.level[node] === 0) {
      return `(${messages.messageOf(node).about})`;
    }
    return this.folded[node] ? countText(messages.children[node], 'element') : '';
  }

  // Offset and octets of header and contents.
  makePlace(node, shape) {
    const { messages, columns } = this.page;
    const offset = this.page.offsetText(messages.offset[node]);
    const mark = shape.assembled ? '~' : '';
    const isNowhere = shape.header + messages.size[node] === 0; // it tells of an octet only
    const size = isNowhere ? '' : `${shape.header}+${messages.size[node]}`;
    const place = make('span', 'place',
      `${(mark + offset).padStart(columns.offset + 1)}  ${size.padEnd(columns.size)}`);
    place.setAttribute('aria-hidden', 'true');
    return place;
  }

  paint() {
    const { selected, over, isFound } = this.page;
    for (const line of this.lines.lines.children) {
      line.setAttribute('aria-selected', line.node === selected);
      line.classList.toggle('over', line.node === over);
      line.classList.toggle('hit', isFound.has(line.node));
    }
    const line = byId(`node-${selected}`);
    if (line) {
      this.pane.setAttribute('aria-activedescendant', line.id);
    } else {
      this.pane.removeAttribute('aria-activedescendant');
    }
  }

  // Makes an element a line, and that visible.
  reveal(node) {
    const { messages } = this.page;
    let isHidden = false;
    for (let outer = messages.parent[node]; outer >= 0; outer = messages.parent[outer]) {
      isHidden ||= this.folded[outer] !== 0;
      this.folded[outer] = 0;
    }
    if (isHidden) {
      this.fill();
    }
    this.lines.reveal(this.rowOf(node));
  }

  setFolded(node, folded) {
    if (node >= 0 && this.page.messages.isContainer(node)) {
      this.folded[node] = folded ? 1 : 0;
      this.fill();
      this.lines.render();
    }
  }

  toggle(node) {
    this.setFolded(node, node >= 0 && this.folded[node] === 0);
  }

  // Folds or unfolds what is in some nodes; a message that stands alone is not folded.
  setAllFolded(folded, first = 0, last = this.page.messages.count) {
    const { messages } = this.page;
    for (let node = first; node < last; ++node) {
      const isMessage = messages.level[node] === 0 && messages.messages.length === 1;
      this.folded[node] = folded && !isMessage ? 1 : 0;
    }
    this.fill();
    let { selected } = this.page;
    for (let node = selected; node >= 0; node = messages.parent[node]) {
      selected = this.folded[node] ? node : selected;
    }
    this.page.select(selected);
  }

  click(event) {
    const node = this.nodeOf(event);
    if (node < 0) {
      return;
    }
    if (event.target.classList.contains('fold')) {
      this.toggle(node);
    }
    this.page.select(node);
  }

  key(event) {
    const { page, rows } = this;
    const { messages, selected } = page;
    const row = this.rowOf(selected);
    const go = (to) => page.select(rows[clamp(to, 0, rows.length - 1)]);
    const isOpen = messages.isContainer(selected) && this.folded[selected] === 0;
    const actions = {
      ArrowDown: () => go(row + 1),
      ArrowUp: () => go(row - 1),
      PageDown: () => go(row + this.lines.page - 1),
      PageUp: () => go(row - this.lines.page + 1),
      Home: () => go(0),
      End: () => go(rows.length - 1),
      ArrowRight: () => (isOpen ? go(row + 1) : this.setFolded(selected, false)),
      ArrowLeft: () => (isOpen ? this.setFolded(selected, true)
        : page.select(Math.max(messages.parent[selected], 0))),
      Enter: () => this.toggle(selected),
      ' ': () => this.toggle(selected),
      '*': () => this.setAllFolded(false, selected, messages.after[selected]),
    };
    page.act(event, actions);
  }
}

// The octets of the message that the selected element is in.
class OctetPane {
  constructor(page) {
    this.page = page;
    this.pane = byId('octets');
    this.message = page.messages.messages[0];
    this.cursor = 0;
    this.lines = new Lines(this.pane, OctetHeight, (line) => this.makeLine(line),
      () => this.paint());
    this.fill();
    this.pane.addEventListener('click', (event) => {
      const octet = event.target.octet;
      if (octet !== undefined) {
        page.selectOctet(octet);
      }
    });
    this.pane.addEventListener('pointermove', (event) => {
      const octet = event.target.octet;
      page.setOver(octet === undefined ? -1 : page.messages.nodeAt(this.message, octet));
    });
    this.pane.addEventListener('pointerleave', () => page.setOver(-1));
    this.pane.addEventListener('keydown', (event) => this.key(event));
  }

  fill() {
    this.lines.setCount(Math.ceil(this.message.octets.length / LineOctets));
  }

  makeLine(number) {
    const { octets, first } = this.message;
    const from = number * LineOctets;
    const line = make('div', 'line');
    const cells = make('span', 'cells');
    const letters = make('span', 'letters');
    for (let i = from; i < from + LineOctets; ++i) {
      const isThere = i < octets.length;
      const cell = make('span', isThere ? 'octet' : 'none', isThere ? hexDigits[octets[i]] : '  ');
      cells.append(cell);
      if (isThere) {
        const isVisible = octets[i] > 0x20 && octets[i] < 0x7f;
        const letter =
          make('span', 'letter', isVisible ? String.fromCharCode(octets[i]) : '·');
        cell.octet = letter.octet = i;
        letters.append(letter);
      }
    }
    const offset = this.page.offsetText(first + from).padStart(this.page.columns.offset);
    line.append(make('span', 'place', offset), cells, letters);
    return line;
  }

  // The octets of an element in the message that is shown; none of another one.
  rangeOf(node) {
    const { messages } = this.page;
    const isHere = node >= 0 && messages.messageOf(node) === this.message;
    return isHere ? messages.rangeOf(node) : { begin: 0, contents: 0, end: 0 };
  }

  paint() {
    const chosen = this.rangeOf(this.page.selected);
    const over = this.rangeOf(this.page.over);
    const { found } = this.page;
    const isFoundHere = found !== null && this.page.messages.messageOf(found.node) === this.message;
    for (const cell of this.pane.querySelectorAll('.octet, .letter')) {
      const { octet } = cell;
      const set = (name, is) => cell.classList.toggle(name, is);
      set('in-header', octet >= chosen.begin && octet < chosen.contents);
      set('in-contents', octet >= chosen.contents && octet < chosen.end);
      set('over', octet >= over.begin && octet < over.end);
      set('found', isFoundHere && octet >= found.octet && octet < found.octet + found.size);
      set('cursor', octet === this.cursor);
    }
  }

  reveal(message, octet) {
    if (this.message !== message) {
      this.message = message;
      this.fill();
    }
    this.cursor = clamp(octet, 0, Math.max(message.octets.length - 1, 0));
    this.lines.reveal(Math.floor(this.cursor / LineOctets));
  }

  key(event) {
    const last = this.message.octets.length - 1;
    const go = (to) => this.page.selectOctet(clamp(to, 0, last));
    const page = this.lines.page * LineOctets;
    const line = this.cursor - this.cursor % LineOctets;
    this.page.act(event, {
      ArrowRight: () => go(this.cursor + 1),
      ArrowLeft: () => go(this.cursor - 1),
      ArrowDown: () => go(this.cursor + LineOctets),
      ArrowUp: () => go(this.cursor - LineOctets),
      PageDown: () => go(this.cursor + page),
      PageUp: () => go(this.cursor - page),
      Home: () => go(event.ctrlKey ? 0 : line),
      End: () => go(event.ctrlKey ? last : line + LineOctets - 1),
      Enter: () => byId('tree').focus(),
      Escape: () => byId('tree').focus(),
    });
  }
}

// Finds what is asked for, and goes from one place to the next.
class Search {
  constructor(page) {
    this.page = page;
    this.query = byId('query');
    this.places = [];
    this.at = -1;
    this.query.addEventListener('input', () => {
      clearTimeout(this.timer);
      this.timer = setTimeout(() => this.run(), 150);
    });
    this.query.addEventListener('keydown', (event) => this.key(event));
    byId('search').addEventListener('submit', (event) => {
      event.preventDefault();
      this.step(1);
    });
    byId('previous').addEventListener('click', () => this.step(-1));
  }

  key(event) {
    if (event.key === 'Enter' && event.shiftKey) {
      event.preventDefault();
      this.step(-1);
    } else if (event.key === 'Escape') {
      event.preventDefault();
      this.query.value = '';
      this.run();
      byId('tree').focus();
    }
  }

  run() {
    clearTimeout(this.timer);
    const { page } = this;
    this.done = this.query.value;
    const query = this.done.trim();
    this.places = query === '' ? [] : page.messages.find(query, page.octets.message);
    page.isFound = new Set(this.places.map((place) => place.node));
    const next = this.places.findIndex((place) => place.node >= page.selected);
    this.at = this.places.length === 0 ? -1 : Math.max(next, 0);
    this.show();
  }

  step(by) {
    if (this.done !== this.query.value) {
      this.run();
    } else if (this.places.length !== 0) {
      this.at = (this.at + by + this.places.length) % this.places.length;
      this.show();
    }
  }

  show() {
    const { page, places } = this;
    byId('found').textContent = places.length !== 0
      ? `${(this.at + 1).toLocaleString('en')} of ${places.length.toLocaleString('en')}`
      : this.query.value.trim() === '' ? '' : 'not found';
    page.found = places[this.at] ?? null;
    if (page.found === null) {
      page.select(page.selected);
    } else {
      page.select(page.found.node, page.found.octet);
    }
  }
}

class Page {
  constructor(messages) {
    this.messages = messages;
    this.selected = 0;
    this.over = -1;
    this.found = null;
    this.isFound = new Set();
    this.isHex = false;
    this.measure();
    this.octets = new OctetPane(this);
    this.tree = new TreePane(this);
    this.search = new Search(this);
    this.addTools();
    const places = messages.messages.map((message) => message.place);
    const title = places.length === 1 ? places[0] : `${places[0]} and ${places.length - 1} more`;
    byId('title').textContent = title;
    document.title = `${title} - derview`;
    this.select(0);
    byId('tree').focus();
  }

  addTools() {
    const press = (id, action) => byId(id).addEventListener('click', action);
    const keys = byId('keys');
    this.showTheme();
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.showTheme());
    press('fold', () => this.tree.setAllFolded(true));
    press('unfold', () => this.tree.setAllFolded(false));
    press('base', () => this.setHex(!this.isHex));
    press('theme', () => this.switchTheme());
    press('help', () => keys.showModal());
    document.addEventListener('keydown', (event) => {
      if (keys.open || event.target === byId('query')) {
        return;
      }
      this.act(event, {
        '/': () => {
          byId('query').focus();
          byId('query').select();
        },
        d: () => this.switchTheme(),
        x: () => this.setHex(!this.isHex),
        '?': () => keys.showModal(),
      });
    });
  }

  // Does what a key stands for.
  act(event, actions) {
    const isOther = event.altKey || event.metaKey ||
      (event.ctrlKey && event.key !== 'Home' && event.key !== 'End');
    if (!isOther && Object.hasOwn(actions, event.key)) {
      event.preventDefault();
      event.stopPropagation();
      actions[event.key]();
    }
  }

  get isDark() {
    const { theme } = document.documentElement.dataset;
    return theme ? theme === 'dark' : matchMedia('(prefers-color-scheme: dark)').matches;
  }

  switchTheme() {
    document.documentElement.dataset.theme = this.isDark ? 'light' : 'dark';
    this.showTheme();
  }

  showTheme() {
    byId('theme').textContent = this.isDark ? 'Light' : 'Dark';
  }

  setHex(isHex) {
    this.isHex = isHex;
    byId('base').setAttribute('aria-pressed', isHex);
    this.measure();
    this.tree.lines.render();
    this.octets.lines.render();
    this.showDetails();
  }

  offsetText(offset) {
    return this.isHex ? offset.toString(16) : String(offset);
  }

  // How wide numbers are.
  measure() {
    let end = 0;
    let longest = 0;
    for (const { octets, first } of this.messages.messages) {
      end = Math.max(end, first + octets.length);
      longest = Math.max(longest, octets.length);
    }
    this.columns = {
      offset: Math.max(this.offsetText(end).length, 4),
      size: Math.max(String(longest).length + 2, 6),
    };
    byId('octets').style.setProperty('--address', this.columns.offset);
  }

  // @param octet that is asked for in it; -1 when it is the element itself
  select(node, octet = -1) {
    this.selected = node;
    const message = this.messages.messageOf(node);
    this.octets.reveal(message, octet >= 0 ? octet : this.messages.rangeOf(node).begin);
    this.tree.reveal(node);
    this.showDetails();
  }

  selectOctet(octet) {
    const { message } = this.octets;
    const node = this.messages.nodeAt(message, octet);
    this.select(node, octet);
    byId('said').textContent =
      `${hexDigits[message.octets[octet]]} at ${octet + message.first}: ` +
      (this.messages.pathOf(node) || message.shape.type);
  }

  setOver(node) {
    if (node !== this.over) {
      this.over = node;
      this.tree.paint();
      this.octets.paint();
    }
  }

  showDetails() {
    const { messages, selected } = this;
    const shape = messages.shapeOf(selected);
    const message = messages.messageOf(selected);
    const path = messages.pathOf(selected);
    const head = make('div', 'path');
    head.append(make('code', '', path || shape.type));
    if (path !== '') {
      const copy = make('button', '', 'Copy path');
      copy.addEventListener('click', () => this.copy(path));
      head.append(copy);
    }
    const { begin, contents, end } = messages.rangeOf(selected);
    const facts = [];
    if (messages.messages.length > 1) {
      facts.push(message.place);
    }
    if (shape.type !== '') {
      facts.push(shape.type);
    }
    const offset = messages.offset[selected];
    if (shape.assembled) {
      facts.push(`at ${offset} in the contents of a string in segments, put together`);
    } else {
      facts.push(`offset ${offset} (0x${offset.toString(16)})`);
      if (shape.header !== 0) {
        facts.push(`header ${hexText(message.octets.subarray(begin, contents), ' ')}`);
      }
      facts.push(countText(end - contents, 'octet') + (shape.header !== 0 ? ' of contents' : ''));
    }
    byId('details').replaceChildren(head, make('p', '', facts.join(' · ')));
    const value = messages.valueOf(selected, DetailHex);
    if (value !== '') {
      byId('details').append(make('pre', shape.style, value));
    }
  }

  async copy(text) {
    try {
      await navigator.clipboard.writeText(text);
      byId('said').textContent = 'copied';
    } catch {
      byId('said').textContent = 'the browser does not let the page copy';
    }
  }
}

const blocks = [];
for (const script of document.querySelectorAll('script[type="application/json"]')) {
  blocks.push(JSON.parse(script.textContent));
  script.remove();
}
new Page(new Messages(blocks));
document.documentElement.dataset.ready = Math.round(performance.now());
