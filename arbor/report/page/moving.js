// Moves the picture, by hand or to where something is.

// Keeps some of the tree in sight.
function clampView() {
  const {width, height} = pictureSize();
  const w = width / view.scale;
  const h = height / view.scale;
  const right = (levels.length - 1) * columnWidth + cardWidth;
  view.x = Math.min(Math.max(view.x, 60 - w), right - 60);
  view.y = Math.min(Math.max(view.y, extent.top + 40 - h), extent.bottom - 40);
}

let frame = 0;
function drawSoon() {
  if (frame === 0) frame = requestAnimationFrame(() => { frame = 0; draw(); });
}

function moveBy(x, y) {  // in units of the screen
  view.x += x / view.scale;
  view.y += y / view.scale;
  clampView();
  drawSoon();
}

function zoomBy(factor, x, y) {  // around a point of the picture, or its middle
  const {width, height} = pictureSize();
  x ??= width / 2;
  y ??= height / 2;
  const scale = Math.min(Math.max(view.scale * factor, leastScale), mostScale);
  view.x += x / view.scale - x / scale;
  view.y += y / view.scale - y / scale;
  view.scale = scale;
  clampView();
  drawSoon();
}

// Shows all that is unfolded or, if that would be smaller than `least`, what is around the root.
function fit(least) {
  const {width, height} = pictureSize();
  const margin = width < 600 ? 10 : 28;
  const treeWidth = (levels.length - 1) * columnWidth + cardWidth + 30;
  const treeHeight = extent.bottom - extent.top;
  view.scale = Math.min(Math.max(Math.min((width - 2 * margin) / treeWidth, (height - 2 * margin) / treeHeight), least), 1);
  const fitsX = treeWidth * view.scale <= width;
  const fitsY = treeHeight * view.scale <= height;
  view.x = fitsX ? (treeWidth - width / view.scale) / 2 : -margin / view.scale;
  view.y = fitsY ? (extent.top + extent.bottom - height / view.scale) / 2 : tops[0] + cardHeight / 2 - height / view.scale / 2;
  redraw();
}

// Moves the picture no further than a node needs to be well in sight.
function bringIntoSight(node) {
  const part = visiblePart();
  const x = leftOf(node);
  const y = tops[node];
  const marginX = Math.min(40, (part.right - part.left) / 8);
  const marginY = Math.min(40, (part.bottom - part.top) / 8);
  if (x - marginX < part.left) view.x = x - marginX;
  else if (x + cardWidth + marginX > part.right) view.x = Math.min(x - marginX, x + cardWidth + marginX - (part.right - part.left));
  if (y - marginY < part.top) view.y = y - marginY;
  else if (y + cardHeight + marginY > part.bottom) view.y = y + cardHeight + marginY - (part.bottom - part.top);
}

function bringToMiddle(node) {
  const part = visiblePart();
  view.x = leftOf(node) + cardWidth / 2 - (part.right - part.left) / 2;
  view.y = tops[node] + cardHeight / 2 - (part.bottom - part.top) / 2;
}

// Mouse, pen and fingers.
function listenToPointers() {
  const picture = byId("picture");
  const pointers = new Map();
  let travelled = 0;
  const spread = () => {
    const [a, b] = [...pointers.values()];
    return {distance: Math.hypot(a.x - b.x, a.y - b.y), x: (a.x + b.x) / 2, y: (a.y + b.y) / 2};
  };
  const release = (event) => {
    pointers.delete(event.pointerId);
    picture.classList.remove("dragged");
  };
  picture.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    if (pointers.size === 0) travelled = 0;
    pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
  });
  picture.addEventListener("pointermove", (event) => {
    const last = pointers.get(event.pointerId);
    if (last && event.buttons === 0) release(event);  // it was let go elsewhere
    if (!last || event.buttons === 0 || pointers.size > 2) return;
    const now = {x: event.clientX, y: event.clientY};
    if (pointers.size === 2) {
      const before = spread();
      pointers.set(event.pointerId, now);
      const after = spread();
      const box = picture.getBoundingClientRect();
      moveBy(before.x - after.x, before.y - after.y);
      if (before.distance > 0) zoomBy(after.distance / before.distance, after.x - box.left, after.y - box.top);
      travelled = Infinity;
      return;
    }
    travelled += Math.hypot(now.x - last.x, now.y - last.y);
    if (travelled < 5) return;
    if (!picture.hasPointerCapture(event.pointerId)) picture.setPointerCapture(event.pointerId);
    picture.classList.add("dragged");
    moveBy(last.x - now.x, last.y - now.y);
    pointers.set(event.pointerId, now);
  });
  picture.addEventListener("pointerup", release);
  picture.addEventListener("pointercancel", release);
  picture.addEventListener("click", (event) => {
    const card = event.target.closest(".card");
    if (!card || travelled >= 5) return;
    const node = Number(card.dataset.node);
    if (event.target.closest(".handle")) toggle(node);
    else goTo(node, true);
  });
  picture.addEventListener("dblclick", (event) => {
    const card = event.target.closest(".card");
    if (card && !event.target.closest(".handle")) toggle(Number(card.dataset.node));
  });
  // A picture that cannot move further lets the page scroll.
  picture.addEventListener("wheel", (event) => {
    const box = picture.getBoundingClientRect();
    const unit = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 18 : 1;
    if (event.ctrlKey || event.metaKey) {
      event.preventDefault();
      zoomBy(Math.exp(-event.deltaY * unit / 300), event.clientX - box.left, event.clientY - box.top);
      return;
    }
    const part = visiblePart();
    const right = (levels.length - 1) * columnWidth + cardWidth;
    const x = event.shiftKey && event.deltaX === 0 ? event.deltaY : event.deltaX;
    const y = event.shiftKey && event.deltaX === 0 ? 0 : event.deltaY;
    const moves = (x < 0 && part.left > -40) || (x > 0 && part.right < right + 40) ||
      (y < 0 && part.top > extent.top - 40) || (y > 0 && part.bottom < extent.bottom + 40);
    if (!moves) return;
    event.preventDefault();
    moveBy(x * unit, y * unit);
  }, {passive: false});
  // Whoever turns a phone still sees the middle.
  let height = pictureSize().height;
  new ResizeObserver(() => {
    const before = height;
    height = pictureSize().height;
    view.y += (before - height) / 2 / view.scale;
    redraw();
  }).observe(picture);
}
