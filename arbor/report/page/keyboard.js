// The keys of a tree, as the ARIA Authoring Practices have them, and those of the picture.
function listenToKeys() {
  const moves = {
    ArrowDown: (node) => order[places[node] + 1],
    ArrowUp: (node) => order[places[node] - 1],
    Home: () => order[0],
    End: () => order[order.length - 1],
    ArrowRight: (node) => {
      if (isLeaf(node)) return undefined;
      if (isOpen[node]) return nodes.first[node];
      toggle(node);
      return node;
    },
    ArrowLeft: (node) => {
      if (!isOpen[node]) return node === 0 ? undefined : parents[node];
      toggle(node);
      return node;
    },
  };
  const pans = {ArrowDown: [0, 80], ArrowUp: [0, -80], ArrowRight: [80, 0], ArrowLeft: [-80, 0]};
  const act = (key, node) => {
    if (key === "Enter" || key === " ") {
      toggle(node);
      goTo(node, true);
    } else if (key === "*") {
      const first = node === 0 ? 0 : nodes.first[parents[node]];
      const siblings = node === 0 ? 1 : nodes.count[parents[node]];
      for (let i = first; i < first + siblings; ++i) isOpen[i] = isLeaf(i) ? 0 : 1;
      layOut();
      goTo(node, true);
    } else if (key === "+" || key === "=") zoomBy(1.25);
    else if (key === "-") zoomBy(0.8);
    else if (key === "0") fit(farScale);
    else return false;
    return true;
  };
  byId("cards").addEventListener("keydown", (event) => {
    const card = event.target.closest(".card");
    if (!card || event.ctrlKey || event.metaKey || event.altKey) return;
    const node = Number(card.dataset.node);
    if (event.shiftKey && pans[event.key]) {
      moveBy(...pans[event.key]);
    } else if (moves[event.key]) {
      const to = moves[event.key](node);
      if (to !== undefined) goTo(to, true);
    } else if (!act(event.key, node)) {
      return;
    }
    event.preventDefault();
  });
  // Whoever comes with the tabulator sees where the keys are.
  byId("cards").addEventListener("focusin", (event) => {
    const node = Number(event.target.closest(".card").dataset.node);
    const part = visiblePart();
    if (leftOf(node) + cardWidth < part.left || leftOf(node) > part.right ||
        tops[node] + cardHeight < part.top || tops[node] > part.bottom) {
      bringIntoSight(node);
      draw();
    }
  });
  document.addEventListener("keydown", (event) => {
    if (event.key !== "/" || event.target.closest("input") || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    byId("search").focus();
  });
}
