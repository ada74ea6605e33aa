// The tables below the tree: how well it predicts, importance, and ratings of the root.
// A name in a table; of names that begin alike, the ends tell which is which.
const mostOfName = onPhone ? 20 : 28;

function nameCell(text, classes = "left") {
  const cell = element("th", classes, named(text, "", mostOfName));
  cell.scope = "row";
  return cell;
}

function numberCell(number, digits) {
  return element("td", "", number === null || number === undefined ? "\u2013" : number.toFixed(digits).replace(/^-(?=0\.0*$)/, ""));
}

function showFigures({name, rows, total, errors, accuracy, accuracy_error, log_loss, brier, commonest_class_error}) {
  byId("quality-of").append(named(name), `, ${count(rows, "row")}` +
    (total === rows ? "" : ` of weight ${weightText(total)}`) +
    `. Always predicting the commonest class would be right for ${percent(1 - commonest_class_error)}.`);
  if (model.origin?.table === name && model.origin.rows === rows)
    byId("quality-of").append(" The tree was grown on these rows; it predicts new ones less well.");
  byId("quality-figures").append(
    figure("accuracy, \u00b1 standard error", percent(accuracy, 2), `\u00b1 ${percent(accuracy_error, 2)}`),
    figure("errors", weightText(errors), `of ${weightText(total)}`),
    figure("log-loss, lower is better", log_loss.toFixed(3), "bits"),
    figure("Brier score, lower is better", brier.toFixed(3)));
}

// The classes of the matrix: all of them or, of too many, the heaviest, which the last row and
// column complete.
function matrixClasses(classes) {
  const most = 60;
  if (classes.length <= most) return {shown: classes.map(([entry]) => entry), others: 0};
  const heaviest = [...classes].sort((a, b) => b[1] - a[1]).slice(0, most).map(([entry]) => entry);
  return {shown: heaviest.sort((a, b) => a - b), others: classes.length - most};
}

function showConfusion({matrix, classes}) {
  const {shown, others} = matrixClasses(classes);
  const place = new Map(shown.map((entry, i) => [entry, i]));
  const size = shown.length + (others > 0 ? 1 : 0);
  const cells = Array.from({length: size}, () => new Array(size).fill(0));
  let wrongAmongOthers = 0;
  for (let i = 0; i < matrix.length; i += 3) {
    const actual = place.get(matrix[i]) ?? shown.length;
    const predicted = place.get(matrix[i + 1]) ?? shown.length;
    cells[actual][predicted] += matrix[i + 2];
    if (actual === shown.length && predicted === actual && matrix[i] !== matrix[i + 1]) wrongAmongOthers += matrix[i + 2];
  }
  const title = (i) => i < shown.length ? className(shown[i]) : `${wholeNumber.format(others)} others`;
  const head = element("tr", "", element("th", "corner", "actual \u2193 predicted \u2192"));
  for (let i = 0; i < size; ++i) {
    const cell = element("th", "", named(title(i), "", mostOfName));
    cell.scope = "col";
    head.append(cell);
  }
  const body = element("tbody");
  cells.forEach((row, actual) => {
    const sum = row.reduce((a, b) => a + b, 0);
    const line = element("tr", "", nameCell(title(actual), ""));
    row.forEach((weight, predicted) => {
      const cell = element("td", weight === 0 ? "none" : "", weight === 0 ? "0" : weightText(weight));
      if (weight > 0) heat(cell, weight / sum, actual === predicted);
      cell.title = `${shortened(title(actual))} predicted as ${shortened(title(predicted))}: ${weightText(weight)}`;
      line.append(cell);
    });
    body.append(line);
  });
  byId("confusion").classList.toggle("upright", size > 6);
  byId("confusion").replaceChildren(element("thead", "", head), body);
  byId("confusion-note").textContent = "The stronger its colour, the larger a cell's share of the actual class." +
    (others > 0 ? ` The ${wholeNumber.format(shown.length)} heaviest classes have a row each; among the others,` +
      ` ${weightText(wrongAmongOthers)} are taken for one another.` : "") +
    (classes.some(([entry]) => entry === model.classes.length) ? ` ${className(model.classes.length)} is any class that` +
      " the tree does not have." : "");
}

// The colour says how much of a row is in the cell. Text on a stronger one would be hard to read.
function heat(cell, share, right) {
  const strength = Math.round(10 + 40 * share);
  cell.style.background = `color-mix(in srgb, var(${right ? "--accent" : "--wrong"}) ${strength}%, var(--ground))`;
}

function showClasses({classes}) {
  const heaviestFirst = [...classes].sort((a, b) => b[1] - a[1]);
  fillTable(byId("per-class"), headings("<class", "cases", "predicted", "precision", "recall", "F1"), heaviestFirst,
    ([entry, actual, predicted, precision, recall, f1]) => {
      const name = element("th", "left", swatch(entry), " ", named(className(entry), "", mostOfName));
      name.scope = "row";
      return element("tr", "", name, element("td", "", weightText(actual)), element("td", "", weightText(predicted)),
        numberCell(precision, 3), numberCell(recall, 3), numberCell(f1, 3));
    }, 20);
}

function showImportance() {
  const attributes = [...model.attributes].sort((a, b) => b.importance - a.importance);
  const sum = attributes.reduce((total, {importance}) => total + importance, 0);
  const greatest = attributes[0].importance;
  fillTable(byId("importance"), headings("<attribute", "<", "bits", "share"), attributes, ({name, importance}) =>
    element("tr", "", nameCell(name), element("td", "left", measure(greatest > 0 ? importance / greatest : 0)),
      numberCell(importance, 4), element("td", "", percent(sum > 0 ? importance / sum : 0))), 20);
  byId("importance-section").hidden = false;
}

function showRatings(ratings) {
  const greatest = Math.max(...ratings.slice(0, 1).map(({ratio}) => ratio ?? 0), 1e-9);
  const chosen = ratings.find((rating) => rating.chosen);
  byId("ratings-note").append("All attributes of the table, rated on all of its rows; the best gain ratio first. " +
    "Gains are in bits; the judged gain is the gain less a charge for many values. ");
  if (chosen) byId("ratings-note").append("A tree grown on these rows would test ", named(chosen.attribute),
    " first: it has the best gain ratio of those judged at least average.");
  fillTable(byId("ratings"),
    headings("<attribute", "<", "gain ratio", "gain", "judged", "<split", "<type", "values", "unknown"), ratings,
    (rating) => {
      const split = rating.no_split ? "no split: " + rating.no_split
        : rating.threshold !== undefined ? "\u2264 " + rating.threshold : count(rating.branches, "branch", "branches");
      return element("tr", "", nameCell(rating.attribute, rating.chosen ? "left chosen" : "left"),
        element("td", "left", measure((rating.ratio ?? 0) / greatest)), numberCell(rating.ratio, 4), numberCell(rating.gain, 4),
        numberCell(rating.judged, 4), element("td", "left", split), element("td", "left", rating.type),
        element("td", "", wholeNumber.format(rating.values)), element("td", "", percent(rating.unknown)));
    }, 30);
  byId("ratings-section").hidden = false;
}

function showTables() {
  if (model.attributes.length > 0) showImportance();
  if (!model.table) return;
  if (model.table.ratings.length > 0) showRatings(model.table.ratings);
  if (model.table.total === 0) return;
  showFigures(model.table);
  showConfusion(model.table);
  showClasses(model.table);
  byId("quality").hidden = false;
}
