// What is unfolded, and which node is selected.

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
