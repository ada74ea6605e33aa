// On paper the unfolded tree is a list of indented lines.
function writeOutline() {
  const most = 3000;
  const lines = order.slice(0, most).map((node) => {
    const text = element("span", "text");
    text.append(...(node === 0 ? ["all cases"] : conditionParts(node, 60)));
    if (isLeaf(node)) text.append(": ", element("b", "", named(className(nodes.predicted[node]))));
    text.append(` (${weightText(nodeWeights[node])})`);
    if (!isLeaf(node) && !isOpen[node]) text.append(`, ${count(leavesBelow[node], "leaf", "leaves")} below`);
    const line = element("div", "", distributionBar(node), text);
    text.style.paddingLeft = 1.2 * Math.min(depths[node], 25) + "em";
    return line;
  });
  if (order.length > most) lines.push(element("div", "", `and ${count(order.length - most, "more node")}`));
  byId("outline").replaceChildren(...lines);
}

function listenToPrinting() {
  addEventListener("beforeprint", writeOutline);
  addEventListener("afterprint", () => byId("outline").replaceChildren());
}
