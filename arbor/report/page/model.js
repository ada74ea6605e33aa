// The tree, from the JSON of the page. A node is its number; the root is 0.
const model = JSON.parse(document.getElementById("data").textContent);
const nodes = model.nodes;
const nodeCount = nodes.attribute.length;

const parents = new Int32Array(nodeCount);
const depths = new Int32Array(nodeCount);
const firstWeight = new Int32Array(nodeCount + 1);  // where the classes of a node begin
const nodeWeights = new Float64Array(nodeCount);
const leavesBelow = new Int32Array(nodeCount);
const thresholdOf = new Map();
(() => {
  let thresholds = 0;
  for (let node = 0; node < nodeCount; ++node) {
    firstWeight[node + 1] = firstWeight[node] + nodes.sizes[node];
    for (let i = firstWeight[node]; i < firstWeight[node + 1]; ++i) nodeWeights[node] += nodes.weights[i];
    for (let i = 0; i < nodes.count[node]; ++i) {
      parents[nodes.first[node] + i] = node;
      depths[nodes.first[node] + i] = depths[node] + 1;
    }
    if (isContinuousTest(node)) thresholdOf.set(node, nodes.thresholds[thresholds++]);
  }
  for (let node = nodeCount - 1; node >= 0; --node) {
    if (isLeaf(node)) leavesBelow[node] = 1;
    if (node > 0) leavesBelow[parents[node]] += leavesBelow[node];
  }
})();

function isLeaf(node) { return nodes.attribute[node] < 0; }
function testedAttribute(node) { return model.attributes[nodes.attribute[node]]; }
function isContinuousTest(node) { return !isLeaf(node) && testedAttribute(node).kind === "continuous"; }
function className(entry) { return model.classes[entry] ?? "(another)"; }

// The branch that leads to a node: of "humidity <= 75" the name, the sign and the value.
function branchOf(node) {
  const test = parents[node];
  const {name, values} = testedAttribute(test);
  const threshold = thresholdOf.get(test);
  if (threshold === undefined) return {name, sign: "=", value: values[nodes.branch[node]]};
  return {name, sign: nodes.branch[node] === 0 ? "<=" : ">", value: threshold};
}

function conditionText(node) {
  const {name, sign, value} = branchOf(node);
  return `${name} ${sign} ${value}`;
}

// The nodes from below the root to this one.
function pathTo(node) {
  const path = [];
  for (; node !== 0; node = parents[node]) path.push(node);
  return path.reverse();
}

function ruleText(node) {
  return pathTo(node).map(conditionText).join(" and ");
}

// The classes that occur at a node with their weights, the heaviest first.
function weightsAt(node) {
  const result = [];
  for (let i = firstWeight[node]; i < firstWeight[node + 1]; ++i)
    result.push({entry: nodes.entries[i], weight: nodes.weights[i]});
  return result.sort((a, b) => b.weight - a.weight);
}

// By class: the probability for a case that reaches this node, smoothed toward the nodes above it
// as arbor classify does. A parent counts as two cases.
function probabilitiesAt(node) {
  const smoothing = 2;
  const negligible = 2 ** -60;
  const result = new Map();
  let sum = 0;
  for (let weight = 1; weight > negligible; node = parents[node]) {
    const factor = weight / (nodeWeights[node] + (node === 0 ? 0 : smoothing));
    for (let i = firstWeight[node]; i < firstWeight[node + 1]; ++i) {
      const part = factor * nodes.weights[i];
      result.set(nodes.entries[i], (result.get(nodes.entries[i]) ?? 0) + part);
      sum += part;
    }
    weight = node === 0 ? 0 : smoothing * factor;
  }
  for (const [entry, estimate] of result) result.set(entry, estimate / sum);
  return result;
}

// Calls visit(node) for each node before its children, in the order of a reader. Children are
// visited where enters(node) is true.
function forEachNode(enters, visit) {
  const waiting = [0];
  while (waiting.length > 0) {
    const node = waiting.pop();
    visit(node);
    if (!enters(node)) continue;
    for (let i = nodes.count[node]; i-- > 0;) waiting.push(nodes.first[node] + i);
  }
}
