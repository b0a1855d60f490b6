// Turns and zooms a view by mouse, touch and keys.

const kKeyDegrees = 5;
const kWheelStep = 120; // of a wheel's notch

function middle(points) {
  const all = [...points.values()];
  return [all.reduce((sum, { x }) => sum + x, 0) / all.length, all.reduce((sum, { y }) => sum + y, 0) / all.length];
}

function spread(points) {
  const [first, second] = [...points.values()];
  return Math.hypot(first.x - second.x, first.y - second.y);
}

function followPointers(element, view) {
  const points = new Map();
  element.addEventListener("pointerdown", (event) => {
    element.setPointerCapture(event.pointerId);
    points.set(event.pointerId, { x: event.clientX, y: event.clientY });
  });
  element.addEventListener("pointermove", (event) => {
    if (!points.has(event.pointerId)) return;
    const [beforeX, beforeY] = middle(points);
    const before = points.size === 2 ? spread(points) : 0;
    points.set(event.pointerId, { x: event.clientX, y: event.clientY });
    const [x, y] = middle(points);
    view.drag(x - beforeX, y - beforeY);
    if (points.size === 2 && before > 0) view.zoomTo((view.zoom * spread(points)) / before);
  });
  for (const end of ["pointerup", "pointercancel"]) element.addEventListener(end, (event) => points.delete(event.pointerId));
}

function followKeys(element, view) {
  const step = () => kKeyDegrees / Math.sqrt(view.zoom);
  const keys = {
    ArrowLeft: () => view.turnBy(-step(), 0), ArrowRight: () => view.turnBy(step(), 0),
    ArrowUp: () => view.turnBy(0, step()), ArrowDown: () => view.turnBy(0, -step()),
    "+": () => view.zoomBy(1), "=": () => view.zoomBy(1), "-": () => view.zoomBy(-1), Home: () => view.home(), 0: () => view.home(),
  };
  element.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || !keys[event.key]) return;
    keys[event.key]();
    event.preventDefault();
  });
}

export function control(element, view) {
  followPointers(element, view);
  followKeys(element, view);
  element.addEventListener("wheel", (event) => {
    view.zoomBy(-event.deltaY / kWheelStep);
    event.preventDefault();
  }, { passive: false });
  element.addEventListener("dblclick", () => view.home());
}
