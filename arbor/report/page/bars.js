// Classes as colours. The heaviest ones of all training cases have one each, with a pattern for
// those who see the colours alike; the others share the last one.
const ownColours = 7;
const othersColour = "c7";
const heaviestClasses = weightsAt(0).slice(0, ownColours);
const colourOfClass = new Map(heaviestClasses.map(({entry}, i) => [entry, "c" + i]));

function colourOf(entry) { return colourOfClass.get(entry) ?? othersColour; }

function swatch(entry) { return element("i", "swatch " + colourOf(entry)); }

// The weights of a node's classes in the order of the legend, those of all others last.
function distributionAt(node) {
  const weights = new Array(ownColours + 1).fill(0);
  for (let i = firstWeight[node]; i < firstWeight[node + 1]; ++i)
    weights[Number(colourOf(nodes.entries[i]).slice(1))] += nodes.weights[i];
  return weights;
}

function distributionText(node) {
  const heaviest = weightsAt(node).slice(0, 3);
  const rest = nodes.sizes[node] - heaviest.length;
  return heaviest.map(({entry, weight}) =>
    `${shortened(className(entry), 40)} ${percent(weight / nodeWeights[node], 0)}`).join(", ") +
    (rest > 0 ? `, and ${count(rest, "other")}` : "");
}

function distributionBar(node) {
  const bar = element("div", "bar");
  bar.setAttribute("role", "img");
  bar.setAttribute("aria-label", distributionText(node));
  distributionAt(node).forEach((weight, i) => {
    if (weight <= 0) return;
    const part = element("i", "c" + i);
    part.style.width = percent(weight / nodeWeights[node], 3);
    bar.append(part);
  });
  return bar;
}

function showLegend() {
  const weights = distributionAt(0);
  heaviestClasses.forEach(({entry}, i) => byId("legend").append(element("li", "", swatch(entry),
    named(className(entry), "", onPhone ? 13 : 28), element("span", "share", percent(weights[i] / nodeWeights[0])))));
  const others = nodes.sizes[0] - heaviestClasses.length;
  if (others > 0) {
    byId("legend").append(element("li", "", element("i", "swatch " + othersColour), count(others, "other"),
      element("span", "share", percent(weights[ownColours] / nodeWeights[0]))));
  }
}
