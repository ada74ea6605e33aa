// The picture of the tree. Only what is near the visible part is in the document, at places relative
// to an origin nearby: a browser's coordinates are too coarse for the far end of a large tree.
const leastScale = 0.2;
const farScale = 0.45;  // below it, texts are too small to be read
const readableScale = 0.7;
const mostScale = 2;

const view = {x: 0, y: 0, scale: 1};  // the left upper corner, in the picture's own units
let origin = {x: 0, y: 0};
let built = null;  // the part of the picture that is in the document
const cards = new Map();
const links = new Map();
let selected = 0;
let onPath = new Set();
let matches = new Set();

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
  card.style.width = cardWidth + "px";
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
