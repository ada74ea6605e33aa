// The selected node: its rule, its classes, and what it predicts.
function conditionParts(node, most) {
  const {name, sign, value} = branchOf(node);
  return [named(name, "", most), ` ${sign} `, named(value, "", most)];
}

function conditionLink(node) {
  const link = element("a", "", ...conditionParts(node));
  link.href = "#node-" + node;
  return link;
}

// The conditions on the way to a node; of very many the first and the last.
function ruleElement(node) {
  const rule = element("p");
  rule.id = "rule";
  const path = pathTo(node);
  if (path.length === 0) rule.append("all cases");
  const most = 60;
  path.forEach((step, i) => {
    if (path.length > most && i >= most / 2 && i < path.length - most / 2) {
      if (i === most / 2) rule.append(element("span", "and", ` and ... ${count(path.length - most, "more condition")} ...`));
      return;
    }
    if (i > 0) rule.append(element("span", "and", " and "));
    rule.append(conditionLink(step));
  });
  return rule;
}

function copyButton(node) {
  const button = element("button", "", "Copy rule");
  button.type = "button";
  button.addEventListener("click", async () => {
    const text = ruleText(node);
    let copied = true;
    try {
      await navigator.clipboard.writeText(text);
    } catch {  // not everywhere is a page from a file given the clipboard
      const area = element("textarea", "", text);
      document.body.append(area);
      area.select();
      copied = document.execCommand("copy");
      area.remove();
    }
    button.textContent = copied ? "Copied" : "Not allowed";
    setTimeout(() => { button.textContent = "Copy rule"; }, 1500);
  });
  return button;
}

function classTable(node) {
  const most = 12;
  const probabilities = probabilitiesAt(node);
  const present = weightsAt(node);
  const table = element("table", "", headings("<class", "weight", "share", "estimate"));
  const body = element("tbody");
  for (const {entry, weight} of present.slice(0, most)) {
    const name = element("th", "left", element("span", "name", swatch(entry), named(className(entry))));
    name.scope = "row";
    body.append(element("tr", "", name, element("td", "", weightText(weight)),
      element("td", "", percent(weight / nodeWeights[node])), element("td", "", percent(probabilities.get(entry)))));
  }
  table.append(body);
  const rest = present.length - most;
  return rest > 0 ? [table, element("p", "muted", `and ${count(rest, "lighter class", "lighter classes")}`)] : [table];
}

function showDetails(node) {
  const predicted = nodes.predicted[node];
  const kind = element("p", "kind", element("span", "", node === 0 ? "Root" : isLeaf(node) ? "Leaf" : "Test",
    `, depth ${wholeNumber.format(depths[node])}`, isLeaf(node) ? ", predicts" : ""));
  const link = element("a", "", `#node-${node}`);
  link.href = "#node-" + node;
  link.title = "A link to this node";
  kind.append(link);
  const parts = [kind];
  if (isLeaf(node)) parts.push(element("h2", "", swatch(predicted), named(className(predicted))));
  else parts.push(element("h2", "", named(testedAttribute(node).name), " ?"));
  parts.push(element("h3", "", node === 0 ? "Reached by" : "Reached if"), ruleElement(node));
  if (node !== 0) parts.push(element("div", "row", copyButton(node)));
  if (!isLeaf(node)) {
    parts.push(element("h3", "", "Predicted, if it were a leaf"),
      element("p", "name", swatch(predicted), named(className(predicted))));
  }
  const bar = distributionBar(node);
  bar.style.marginTop = "6px";
  parts.push(element("h3", "", `Training cases: ${weightText(nodeWeights[node])}, ` +
    `${percent(nodeWeights[node] / nodeWeights[0])} of all`), bar, ...classTable(node));
  if (node !== 0)
    parts.push(element("p", "muted note", "The estimate of a class is its share, smoothed towards the nodes above."));
  byId("details").replaceChildren(...parts);
  byId("details").scrollTop = 0;
}
