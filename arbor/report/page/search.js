// The search: a text matches tests by the name of their attribute, branches by their condition and
// leaves by their class, and "#17" is node 17.
let found = [];
let foundAt = -1;

function nodesThatMatch(text) {
  const wanted = text.trim().toLowerCase();
  if (wanted === "") return [];
  const number = /^#(\d+)$/.exec(wanted);
  if (number) return Number(number[1]) < nodeCount ? [Number(number[1])] : [];
  const matches = (candidate) => candidate.toLowerCase().includes(wanted);
  const classMatches = model.classes.map(matches);
  const nameMatches = model.attributes.map(({name}) => matches(name));
  // By discrete attribute and value; other conditions are as many as nodes.
  const conditionMatches = model.attributes.map(({name, values}) => values.map((value) => matches(`${name} = ${value}`)));
  const branchMatches = (node) => {
    const attribute = nodes.attribute[parents[node]];
    if (nameMatches[attribute]) return false;  // the test is a match already
    if (conditionMatches[attribute].length > 0) return conditionMatches[attribute][nodes.branch[node]];
    return matches(conditionText(node)) || matches(conditionText(node).replace("<=", "\u2264"));
  };
  const result = [];
  forEachNode((node) => !isLeaf(node), (node) => {
    const itself = isLeaf(node) ? classMatches[nodes.predicted[node]] : nameMatches[nodes.attribute[node]];
    if (itself || (node !== 0 && branchMatches(node))) result.push(node);
  });
  return result;
}

function showMatch(at) {
  foundAt = found.length === 0 ? -1 : (at + found.length) % found.length;
  byId("previous").disabled = byId("next").disabled = found.length < 2;
  const nothing = byId("search").value.trim() === "" ? "" : "none";
  byId("found").textContent = found.length === 0 ? nothing
    : `${wholeNumber.format(foundAt + 1)} of ${wholeNumber.format(found.length)}`;
  if (foundAt >= 0) goTo(found[foundAt], false);
  else redraw();
}

function listenToSearch() {
  let timer = 0;
  let searched = "";
  const search = () => {
    clearTimeout(timer);
    if (byId("search").value === searched) return false;
    searched = byId("search").value;
    found = nodesThatMatch(searched);
    matches = new Set(found);
    showMatch(0);
    return true;
  };
  byId("search").addEventListener("input", () => {
    clearTimeout(timer);
    timer = setTimeout(search, 150);
  });
  byId("search").addEventListener("keydown", (event) => {
    if (event.key === "Enter" && !search()) showMatch(foundAt + (event.shiftKey ? -1 : 1));
    if (event.key === "Escape") {
      byId("search").value = "";
      search();
      cards.get(selected)?.focus({preventScroll: true});
    }
  });
  byId("previous").addEventListener("click", () => showMatch(foundAt - 1));
  byId("next").addEventListener("click", () => showMatch(foundAt + 1));
}
