// Elements and texts. A text becomes part of the page through textContent alone, so that nothing in
// it is markup.
const onPhone = innerWidth < 600;

function byId(id) { return document.getElementById(id); }

function element(tag, classes, ...parts) {
  const made = document.createElement(tag);
  if (classes) made.className = classes;
  made.append(...parts);
  return made;
}

// The beginning and the end of a text that is too long to read.
function shortened(text, most = 80) {
  if (text.length <= most) return text;
  const half = Math.floor((most - 3) / 2);
  return text.slice(0, half).replace(/[\ud800-\udbff]$/, "") + "..." + text.slice(-half).replace(/^[\udc00-\udfff]/, "");
}

// A name or value. It keeps the direction of its own writing, and cannot change that of its
// neighbours.
function named(text, classes, most) {
  const made = element("bdi", classes, shortened(text, most));
  if (text.length > 20) made.title = shortened(text, 2000);
  return made;
}

const wholeNumber = new Intl.NumberFormat("en", {maximumFractionDigits: 0});
const fewDecimals = new Intl.NumberFormat("en", {maximumFractionDigits: 2});
function count(number, one, many = one + "s") {
  return `${wholeNumber.format(number)} ${number === 1 ? one : many}`;
}
function weightText(weight) {
  const usual = weight === 0 || (weight >= 0.01 && weight < 1e15);
  return usual ? fewDecimals.format(weight) : weight.toPrecision(3);
}
function percent(share, digits = 1) { return (100 * share).toFixed(digits) + "%"; }

function figure(label, value, unit) {
  const number = element("dd", "", value);
  if (unit) number.append(" ", element("small", "", unit));
  return element("div", "", element("dt", "", label), number);
}

// A table's heading of texts; a text that begins with "<" is flush left.
function headings(...texts) {
  const row = element("tr");
  for (const text of texts) {
    const cell = element("th", text.startsWith("<") ? "left" : "", text.replace(/^</, ""));
    cell.scope = "col";
    row.append(cell);
  }
  return element("thead", "", row);
}

function measure(share) {
  const bar = element("i");
  bar.style.width = percent(Math.min(Math.max(share, 0), 1), 2);
  return element("span", "measure", bar);
}

// Fills the body of a table with about the first `few` rows, and the others when that is asked for.
function fillTable(table, head, rows, make, few) {
  const first = rows.length <= 1.5 * few ? rows.length : few;
  const body = element("tbody");
  body.append(...rows.slice(0, first).map(make));
  table.replaceChildren(head, body);
  if (rows.length <= first) return;
  const most = 5000;
  const more = element("button", "", `Show ${wholeNumber.format(rows.length - first)} more`);
  more.type = "button";
  more.addEventListener("click", () => {
    body.append(...rows.slice(first, most).map(make));
    more.replaceWith(rows.length > most ? `and ${wholeNumber.format(rows.length - most)} more` : "");
  });
  table.parentElement.after(more);
}
