// The picture of the tree, its root at the left. Only what is near the visible part is in the
// document, at places relative to an origin nearby: a browser's coordinates are too coarse for the
// far end of a large tree.
const columnWidth = 262;
const rowHeight = 74;
const cardWidth = 190;
const cardHeight = 60;
const leastScale = 0.2;
const mostScale = 2;
const readableScale = 0.7;
const farScale = 0.45;  // below it, texts are too small to be read

const isOpen = new Uint8Array(nodeCount);
const view = {x: 0, y: 0, scale: 1};  // the left upper corner, in the picture's own units
const tops = new Float64Array(nodeCount);
let order = [];      // the unfolded nodes, as a reader meets them
let places = new Int32Array(nodeCount).fill(-1);  // of the nodes in this order
let levels = [];     // the nodes of each depth, from above
let extent = {top: 0, bottom: 0};
let origin = {x: 0, y: 0};
let built = null;    // the part of the picture that is in the document
let selected = 0;
let onPath = new Set();
let matches = new Set();
const cards = new Map();
const links = new Map();

function leftOf(node) { return depths[node] * columnWidth; }

function layOut() {
  for (const node of order) places[node] = -1;
  order = [];
  levels = [];
  const made = new Map();
  forEachNode((node) => isOpen[node] === 1, (node) => {
    // d3.hierarchy() would find the height of each node by way of all nodes above it.
    const laid = Object.assign(Object.create(d3.hierarchy.prototype),
      {data: node, depth: depths[node], height: 0, parent: null});
    made.set(node, laid);
    if (node !== 0) {
      laid.parent = made.get(parents[node]);
      (laid.parent.children ??= []).push(laid);
    }
    places[node] = order.length;
    order.push(node);
    (levels[depths[node]] ??= []).push(node);
  });
  const root = made.get(0);
  d3.tree().nodeSize([rowHeight, columnWidth]).separation((a, b) => a.parent === b.parent ? 1 : 1.25)(root);
  extent = {top: Infinity, bottom: -Infinity};
  for (const [node, laid] of made) {
    tops[node] = laid.x;
    extent.top = Math.min(extent.top, laid.x);
    extent.bottom = Math.max(extent.bottom, laid.x + cardHeight);
  }
  built = null;
}

// The place in a level of the first node that begins at or below `top`.
function firstBelow(level, top) {
  let low = 0;
  let high = level.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (tops[level[middle]] < top) low = middle + 1;
    else high = middle;
  }
  return low;
}

function pictureSize() {
  const box = byId("picture").getBoundingClientRect();
  return {width: box.width || 1, height: box.height || 1};
}

function visiblePart() {
  const {width, height} = pictureSize();
  return {left: view.x, top: view.y, right: view.x + width / view.scale, bottom: view.y + height / view.scale};
}

// Brings what is visible into the document, with a margin, unless it is there already.
function draw() {
  const part = visiblePart();
  if (!built || part.left < built.left || part.top < built.top || part.right > built.right ||
      part.bottom > built.bottom || built.scale > 2.5 * view.scale || built.scale < 0.4 * view.scale)
    build(part);
  const scene = byId("scene");
  scene.style.transform = `translate(${(origin.x - view.x) * view.scale}px, ${(origin.y - view.y) * view.scale}px) scale(${view.scale})`;
  scene.classList.toggle("far", view.scale < farScale);
}

function build(part) {
  const marginX = Math.min(columnWidth * 1.5, (part.right - part.left) / 2);
  const marginY = Math.min(rowHeight * 8, (part.bottom - part.top) / 2);
  built = {left: part.left - marginX, right: part.right + marginX, top: part.top - marginY,
    bottom: part.bottom + marginY, scale: view.scale};
  origin = {x: Math.round(part.left), y: Math.round(part.top)};
  const near = new Set();
  const lastLevel = Math.min(levels.length - 1, Math.floor(built.right / columnWidth));
  for (let depth = Math.max(0, Math.floor((built.left - cardWidth) / columnWidth)); depth <= lastLevel; ++depth) {
    const level = levels[depth];
    for (let i = firstBelow(level, built.top - cardHeight); i < level.length && tops[level[i]] <= built.bottom; ++i)
      near.add(level[i]);
  }
  const linked = linkedNodes(near);
  near.add(places[selected] >= 0 ? selected : 0);  // the keyboard's place is always in the document
  placeCards([...near].sort((a, b) => places[a] - places[b]));
  placeLinks(linked);
}

// The nodes whose link to their parent may be visible: those near, and some children of these.
function linkedNodes(near) {
  const mostOutside = 50;
  const linked = new Set(near);
  for (const node of near) {
    if (!isOpen[node]) continue;
    const last = nodes.count[node] - 1;
    const all = last < mostOutside;
    for (let i = 0; i <= last; i += all ? 1 : last) linked.add(nodes.first[node] + i);
  }
  linked.delete(0);
  return linked;
}

function placeCards(wanted) {
  const list = byId("cards");
  const keep = new Set(wanted);
  for (const [node, card] of cards) {
    if (keep.has(node)) continue;
    card.remove();
    cards.delete(node);
  }
  let next = list.firstChild;
  for (const node of wanted) {
    let card = cards.get(node);
    if (!card) {
      card = makeCard(node);
      cards.set(node, card);
    }
    card.style.transform = `translate(${leftOf(node) - origin.x}px, ${tops[node] - origin.y}px)`;
    markCard(node, card);
    if (card === next) next = next.nextSibling;
    else list.insertBefore(card, next);
  }
}

function makeCard(node) {
  const card = element("div", isLeaf(node) ? "card leaf" : "card test");
  card.dataset.node = node;
  card.setAttribute("role", "treeitem");
  card.setAttribute("aria-level", depths[node] + 1);
  card.setAttribute("aria-setsize", node === 0 ? 1 : nodes.count[parents[node]]);
  card.setAttribute("aria-posinset", node === 0 ? 1 : node - nodes.first[parents[node]] + 1);
  const branch = element("div", "line branch");
  if (node === 0) {
    branch.append("all cases");
  } else {
    const {sign, value} = branchOf(node);
    branch.append(element("span", "", sign.replace("<=", "\u2264")), named(value));
    branch.title = shortened(conditionText(node), 2000);
  }
  branch.append(element("span", "weight", weightText(nodeWeights[node])));
  card.append(branch);
  const what = element("div", "line what");
  if (isLeaf(node)) what.append(swatch(nodes.predicted[node]), named(className(nodes.predicted[node])));
  else what.append(named(testedAttribute(node).name + " ?"));
  what.lastChild.style.flex = "1";
  card.append(what, distributionBar(node));
  if (!isLeaf(node)) {
    const handle = element("span", "handle");
    handle.setAttribute("aria-hidden", "true");
    card.append(handle);
  }
  card.setAttribute("aria-label", (node === 0 ? "all cases" : shortened(conditionText(node), 200)) + ": " +
    (isLeaf(node) ? `leaf, predicts ${shortened(className(nodes.predicted[node]))}`
                  : `test of ${shortened(testedAttribute(node).name)}`) +
    `, weight ${weightText(nodeWeights[node])}: ${distributionText(node)}`);
  return card;
}

function markCard(node, card) {
  const active = node === (places[selected] >= 0 ? selected : 0);
  card.tabIndex = active ? 0 : -1;
  card.setAttribute("aria-selected", node === selected);
  card.classList.toggle("selected", node === selected);
  card.classList.toggle("on-path", onPath.has(node));
  card.classList.toggle("match", matches.has(node));
  if (isLeaf(node)) return;
  card.setAttribute("aria-expanded", isOpen[node] === 1);
  card.lastChild.textContent = isOpen[node] ? "\u2212" : "+" + wholeNumber.format(leavesBelow[node]);
}

function placeLinks(wanted) {
  for (const [node, link] of links) {
    if (wanted.has(node)) continue;
    link.remove();
    links.delete(node);
  }
  for (const node of wanted) {
    let link = links.get(node);
    if (!link) {
      link = document.createElementNS("http://www.w3.org/2000/svg", "path");
      link.setAttribute("stroke-width", (1 + 15 * nodeWeights[node] / nodeWeights[0]).toFixed(2));
      links.set(node, link);
      byId("links").append(link);
    }
    const x1 = leftOf(parents[node]) + cardWidth - origin.x;
    const x2 = leftOf(node) - origin.x;
    const y1 = tops[parents[node]] + cardHeight / 2 - origin.y;
    const y2 = tops[node] + cardHeight / 2 - origin.y;
    const bend = (x1 + x2) / 2 + 6;
    link.setAttribute("d", `M${x1} ${y1}C${bend} ${y1} ${bend} ${y2} ${x2} ${y2}`);
    link.classList.toggle("on-path", onPath.has(node));
  }
}

function redraw() {
  built = null;
  draw();
}

// Keeps some of the tree in sight.
function clampView() {
  const {width, height} = pictureSize();
  const w = width / view.scale;
  const h = height / view.scale;
  const right = (levels.length - 1) * columnWidth + cardWidth;
  view.x = Math.min(Math.max(view.x, 60 - w), right - 60);
  view.y = Math.min(Math.max(view.y, extent.top + 40 - h), extent.bottom - 40);
}

let frame = 0;
function drawSoon() {
  if (frame === 0) frame = requestAnimationFrame(() => { frame = 0; draw(); });
}

function moveBy(x, y) {  // in units of the screen
  view.x += x / view.scale;
  view.y += y / view.scale;
  clampView();
  drawSoon();
}

function zoomBy(factor, x, y) {  // around a point of the picture, or its middle
  const {width, height} = pictureSize();
  x ??= width / 2;
  y ??= height / 2;
  const scale = Math.min(Math.max(view.scale * factor, leastScale), mostScale);
  view.x += x / view.scale - x / scale;
  view.y += y / view.scale - y / scale;
  view.scale = scale;
  clampView();
  drawSoon();
}

// Shows all that is unfolded or, if that would be smaller than `least`, what is around the root.
function fit(least) {
  const {width, height} = pictureSize();
  const margin = width < 600 ? 10 : 28;
  const treeWidth = (levels.length - 1) * columnWidth + cardWidth + 30;
  const treeHeight = extent.bottom - extent.top;
  view.scale = Math.min(Math.max(Math.min((width - 2 * margin) / treeWidth, (height - 2 * margin) / treeHeight), least), 1);
  const fitsX = treeWidth * view.scale <= width;
  const fitsY = treeHeight * view.scale <= height;
  view.x = fitsX ? (treeWidth - width / view.scale) / 2 : -margin / view.scale;
  view.y = fitsY ? (extent.top + extent.bottom - height / view.scale) / 2 : tops[0] + cardHeight / 2 - height / view.scale / 2;
  redraw();
}

// Moves the picture no further than a node needs to be well in sight.
function bringIntoSight(node) {
  const part = visiblePart();
  const x = leftOf(node);
  const y = tops[node];
  const marginX = Math.min(40, (part.right - part.left) / 8);
  const marginY = Math.min(40, (part.bottom - part.top) / 8);
  if (x - marginX < part.left) view.x = x - marginX;
  else if (x + cardWidth + marginX > part.right) view.x = Math.min(x - marginX, x + cardWidth + marginX - (part.right - part.left));
  if (y - marginY < part.top) view.y = y - marginY;
  else if (y + cardHeight + marginY > part.bottom) view.y = y + cardHeight + marginY - (part.bottom - part.top);
}

function bringToMiddle(node) {
  const part = visiblePart();
  view.x = leftOf(node) + cardWidth / 2 - (part.right - part.left) / 2;
  view.y = tops[node] + cardHeight / 2 - (part.bottom - part.top) / 2;
}

// Folds or unfolds a test. It stays where it is on the screen.
function toggle(node) {
  if (isLeaf(node)) return;
  const before = tops[node];
  isOpen[node] = isOpen[node] ? 0 : 1;
  layOut();
  view.y += tops[node] - before;
  if (places[selected] < 0) select(node);
  redraw();
}

function setAllOpen(open) {
  for (let node = 0; node < nodeCount; ++node) isOpen[node] = open && !isLeaf(node) ? 1 : 0;
  layOut();
  if (places[selected] < 0) select(0);
  fit(farScale);
}

// Unfolds whole levels while they fit into a first look; some root may have more branches.
function openFirstLevels() {
  const most = 24;
  const atDepth = [];
  for (let node = 0; node < nodeCount; ++node) atDepth[depths[node]] = (atDepth[depths[node]] ?? 0) + 1;
  let depth = Math.min(1, atDepth.length - 1);
  let shown = 1 + (atDepth[1] ?? 0);
  while (depth + 1 < atDepth.length && shown + atDepth[depth + 1] <= most) shown += atDepth[++depth];
  for (let node = 0; node < nodeCount; ++node) isOpen[node] = !isLeaf(node) && depths[node] < depth ? 1 : 0;
  layOut();
}

// Unfolds what is above a node.
function openPathTo(node) {
  let changed = false;
  for (let above = node; above !== 0;) {
    above = parents[above];
    changed ||= !isOpen[above];
    isOpen[above] = 1;
  }
  if (changed) layOut();
  return changed;
}

function select(node) {
  selected = node;
  onPath = new Set(pathTo(node));
  if (node !== 0) onPath.add(0);
  showDetails(node);
}

// Selects a node, wherever it is, and shows it.
function goTo(node, focus) {
  const jumps = openPathTo(node) || !cards.has(node);
  select(node);
  if (jumps) {
    view.scale = Math.max(view.scale, readableScale);
    bringToMiddle(node);
  }
  bringIntoSight(node);
  redraw();
  if (focus) cards.get(node).focus({preventScroll: true});
}

// Mouse, pen and fingers.
function listenToPointers() {
  const picture = byId("picture");
  const pointers = new Map();
  let travelled = 0;
  const spread = () => {
    const [a, b] = [...pointers.values()];
    return {distance: Math.hypot(a.x - b.x, a.y - b.y), x: (a.x + b.x) / 2, y: (a.y + b.y) / 2};
  };
  const release = (event) => {
    pointers.delete(event.pointerId);
    picture.classList.remove("dragged");
  };
  picture.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    if (pointers.size === 0) travelled = 0;
    pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
  });
  picture.addEventListener("pointermove", (event) => {
    const last = pointers.get(event.pointerId);
    if (last && event.buttons === 0) release(event);  // it was let go elsewhere
    if (!last || event.buttons === 0 || pointers.size > 2) return;
    const now = {x: event.clientX, y: event.clientY};
    if (pointers.size === 2) {
      const before = spread();
      pointers.set(event.pointerId, now);
      const after = spread();
      const box = picture.getBoundingClientRect();
      moveBy(before.x - after.x, before.y - after.y);
      if (before.distance > 0) zoomBy(after.distance / before.distance, after.x - box.left, after.y - box.top);
      travelled = Infinity;
      return;
    }
    travelled += Math.hypot(now.x - last.x, now.y - last.y);
    if (travelled < 5) return;
    if (!picture.hasPointerCapture(event.pointerId)) picture.setPointerCapture(event.pointerId);
    picture.classList.add("dragged");
    moveBy(last.x - now.x, last.y - now.y);
    pointers.set(event.pointerId, now);
  });
  picture.addEventListener("pointerup", release);
  picture.addEventListener("pointercancel", release);
  picture.addEventListener("click", (event) => {
    const card = event.target.closest(".card");
    if (!card || travelled >= 5) return;
    const node = Number(card.dataset.node);
    if (event.target.closest(".handle")) toggle(node);
    else goTo(node, true);
  });
  picture.addEventListener("dblclick", (event) => {
    const card = event.target.closest(".card");
    if (card && !event.target.closest(".handle")) toggle(Number(card.dataset.node));
  });
  // A picture that cannot move further lets the page scroll.
  picture.addEventListener("wheel", (event) => {
    const box = picture.getBoundingClientRect();
    const unit = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 18 : 1;
    if (event.ctrlKey || event.metaKey) {
      event.preventDefault();
      zoomBy(Math.exp(-event.deltaY * unit / 300), event.clientX - box.left, event.clientY - box.top);
      return;
    }
    const part = visiblePart();
    const right = (levels.length - 1) * columnWidth + cardWidth;
    const x = event.shiftKey && event.deltaX === 0 ? event.deltaY : event.deltaX;
    const y = event.shiftKey && event.deltaX === 0 ? 0 : event.deltaY;
    const moves = (x < 0 && part.left > -40) || (x > 0 && part.right < right + 40) ||
      (y < 0 && part.top > extent.top - 40) || (y > 0 && part.bottom < extent.bottom + 40);
    if (!moves) return;
    event.preventDefault();
    moveBy(x * unit, y * unit);
  }, {passive: false});
  new ResizeObserver(redraw).observe(picture);
}
