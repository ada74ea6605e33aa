// Where the cards of the unfolded nodes are, the root at the left, laid out by d3-hierarchy.
const cardWidth = onPhone ? 168 : 190;  // two columns fit into its width
const columnWidth = cardWidth + 72;
const rowHeight = 74;
const cardHeight = 60;

const isOpen = new Uint8Array(nodeCount);
const tops = new Float64Array(nodeCount);
const places = new Int32Array(nodeCount).fill(-1);  // of the unfolded nodes in `order`
let order = [];   // the unfolded nodes, as a reader meets them
let levels = [];  // the nodes of each depth, from above
let extent = {top: 0, bottom: 0};

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
