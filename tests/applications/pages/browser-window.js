// Run in Firefox's own window: every control and text of it that can be seen, and the presses of the mouse since the last time.
// The presses are kept from having an effect, so that the window stays as it is.
"use strict";

const CONTROLS = "toolbarbutton, button, tab, input, .urlbar-page-action, .identity-box-button, [role=button]";

if (!window.tarvixPresses) {
  window.tarvixPresses = [];
  window.tarvixIdentifiers = new Map();
  const press = event => {
    const control = controlAt(event.composedPath());
    if (!control) return;
    if (event.type === "mousedown") window.tarvixPresses.push(identifier(control));
    event.preventDefault();
    event.stopImmediatePropagation();
  };
  for (const type of ["mousedown", "mouseup", "click", "command"]) window.addEventListener(type, press, true);
}

function controlAt(path) {
  return path.find(element => element.matches?.(CONTROLS));
}

function identifier(element) {
  const known = window.tarvixIdentifiers;
  if (!known.has(element)) known.set(element, `window ${known.size + 1}`);
  return known.get(element);
}

function* everything(root) {
  for (const element of root.children) {
    yield element;
    if (element.tagName === "browser") continue;  // the page tells of itself
    const shadow = element.openOrClosedShadowRoot;
    if (shadow) yield* everything(shadow);
    yield* everything(element);
  }
}

function ancestors(element) {
  const path = [];
  for (let at = element; at; at = at.assignedSlot || at.parentNode || at.host) if (at.matches) path.push(at);
  return path;
}

function isSeen(element, box) {
  const style = getComputedStyle(element);
  if (box.width < 1 || box.height < 1 || style.visibility !== "visible" || !element.checkVisibility({opacityProperty: true})) return false;
  let top = document.elementFromPoint(box.left + box.width / 2, box.top + box.height / 2);
  while (top?.openOrClosedShadowRoot) {
    const inner = top.openOrClosedShadowRoot.elementFromPoint(box.left + box.width / 2, box.top + box.height / 2);
    if (!inner || inner === top) break;
    top = inner;
  }
  return top !== null && (ancestors(top).includes(element) || ancestors(element).includes(top));
}

function kindOf(element) {
  if (element.localName === "tab") return "tab";
  return element.localName === "input" ? "entry" : "button";
}

function textOf(element) {
  if (element.localName === "tab") return element.label;
  if (element.localName === "input") return element.value || element.placeholder;
  const label = element.getAttribute("label");
  const shown = [...everything(element.openOrClosedShadowRoot || element)].concat([...everything(element)])
    .some(part => part.textContent.trim() === label && isSeen(part, part.getBoundingClientRect()));
  return label && shown ? label : "";
}

const things = [...everything(document)].flatMap(element => {
  const box = element.getBoundingClientRect();
  if (!isSeen(element, box)) return [];
  const control = element.matches(CONTROLS) ? element : null;
  const around = controlAt(ancestors(element).slice(1));
  const texts = [...element.childNodes].filter(node => node.nodeType === Node.TEXT_NODE && node.data.trim());
  const isText = !control && !around && texts.length > 0;
  return [{id: identifier(element), kind: control ? kindOf(element) : isText ? "text" : element.localName,
           text: control ? textOf(element) : texts.map(node => node.data.trim()).join(" "), isCounted: control !== null || isText,
           // Other buttons open panels before the press can be kept from them.
           isClicked: control !== null && kindOf(element) !== "button", inside: !control && around ? identifier(around) : null,
           frame: [box.left + mozInnerScreenX, box.top + mozInnerScreenY, box.width, box.height]}];
});
return {things, presses: window.tarvixPresses};
