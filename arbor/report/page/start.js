// Fills the page and starts it.
function showHeader() {
  byId("class-name").append(named(model.class));
  const leaves = leavesBelow[0];
  const depth = depths.reduce((most, next) => Math.max(most, next), 0);
  byId("size").append(figure(nodeCount === 1 ? "node" : "nodes", wholeNumber.format(nodeCount)),
    figure(leaves === 1 ? "leaf" : "leaves", wholeNumber.format(leaves)),
    figure("depth", wholeNumber.format(depth)));
  const grown = model.origin;
  if (!grown) return;
  byId("origin").append(`Grown on ${count(grown.rows, "row")} of `, named(grown.table),
    ` with minimum weight ${grown.min_weight}` +
    (grown.max_depth === null ? "" : `, at most ${count(grown.max_depth, "level")}`) +
    (grown.confidence === null ? ", not pruned" : `, pruned with confidence ${grown.confidence}`));
}

function listenToTheme() {
  const names = ["Auto", "Light", "Dark"];
  let chosen = 0;
  const button = byId("theme");
  const show = () => {
    if (chosen === 0) delete document.documentElement.dataset.theme;
    else document.documentElement.dataset.theme = names[chosen].toLowerCase();
    button.textContent = `Colours: ${names[chosen].toLowerCase()}`;
  };
  button.hidden = false;
  button.addEventListener("click", () => {
    chosen = (chosen + 1) % names.length;
    show();
  });
  show();
}

function goToHash() {
  const wanted = /^#node-(\d+)$/.exec(location.hash);
  if (!wanted || Number(wanted[1]) >= nodeCount) return;
  goTo(Number(wanted[1]), false);
  byId("picture").scrollIntoView({block: "nearest"});
}

function start() {
  for (const part of ["header", "main"]) document.querySelector(part).hidden = false;
  showHeader();
  showLegend();
  showTables();
  openFirstLevels();
  select(0);
  fit(readableScale);
  listenToPointers();
  listenToKeys();
  listenToSearch();
  listenToPrinting();
  listenToTheme();
  byId("unfold").addEventListener("click", () => setAllOpen(true));
  byId("fold").addEventListener("click", () => setAllOpen(false));
  byId("zoom-in").addEventListener("click", () => zoomBy(1.25));
  byId("zoom-out").addEventListener("click", () => zoomBy(0.8));
  byId("fit").addEventListener("click", () => fit(farScale));
  addEventListener("hashchange", goToHash);
  document.addEventListener("click", (event) => {  // a link to where the address already points
    if (event.target.closest("a")?.hash === location.hash) goToHash();
  });
  goToHash();
}
start();
