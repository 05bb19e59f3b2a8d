// What a person sees of this page, worked out from its layout alone: every control, and every stretch of text outside of
// one, with the box that is left of it after scrolling. Sent to the server that the page came from, as often as it changes;
// so are the clicks that arrive.
"use strict";

const CONTROLS = `a[href], button, input, select, textarea, summary, progress, meter, img, [role=button], [role=checkbox],
  [role=switch], [role=tab], [role=menuitem], [role=slider], [role=option], [role=treeitem]`;

const intersect = (a, b) => ({left: Math.max(a.left, b.left), top: Math.max(a.top, b.top), right: Math.min(a.right, b.right),
                              bottom: Math.min(a.bottom, b.bottom)});
const isEmpty = box => box.right - box.left < 1 || box.bottom - box.top < 1;
const shift = (box, x, y) => ({left: box.left + x, top: box.top + y, right: box.right + x, bottom: box.bottom + y});
const unite = (a, b) => ({left: Math.min(a.left, b.left), top: Math.min(a.top, b.top), right: Math.max(a.right, b.right),
                          bottom: Math.max(a.bottom, b.bottom)});
const words = text => text.replace(/\s+/g, " ").trim();

// Where a frame's page begins in the coordinates of the outermost one, and what is seen of it.
function place(page) {
  const view = {left: 0, top: 0, right: page.documentElement.clientWidth, bottom: page.documentElement.clientHeight};
  const frame = page.defaultView.frameElement;
  if (!frame) return {x: 0, y: 0, view};
  const around = place(frame.ownerDocument), box = frame.getBoundingClientRect();
  const x = around.x + box.left + frame.clientLeft, y = around.y + box.top + frame.clientTop;
  return {x, y, view: intersect(shift(view, x, y), around.view)};
}

// What the scrollers around an element, and its page, leave of a box of its.
function seenOf(element, box) {
  const {x, y, view} = place(element.ownerDocument);
  for (let around = element.parentElement; around && around !== around.ownerDocument.body; around = around.parentElement) {
    if (getComputedStyle(around).overflowY === "visible") continue;
    const outer = around.getBoundingClientRect();
    const left = outer.left + around.clientLeft, top = outer.top + around.clientTop;
    box = intersect(box, {left, top, right: left + around.clientWidth, bottom: top + around.clientHeight});
  }
  return intersect(shift(box, x, y), view);
}

// The element under the middle of a box, inside of frames too.
function topmost(box) {
  let x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
  let found = document.elementFromPoint(x, y);
  while (found && found.tagName === "IFRAME") {
    const inner = found.getBoundingClientRect();
    x -= inner.left + found.clientLeft;
    y -= inner.top + found.clientTop;
    found = found.contentDocument.elementFromPoint(x, y);
  }
  return found;
}

// A click there reaches the element: nothing lies over it.
function isBare(element, box) {
  const top = topmost(box);
  return top !== null && (element.contains(top) || top.contains(element));
}

const isHidden = element => !element.checkVisibility({visibilityProperty: true, opacityProperty: true});

function nameOf(element) {
  const given = element.getAttribute("aria-label") || element.alt;
  if (given) return given;
  if (element.tagName === "SELECT" && !element.multiple) return words(element.selectedOptions[0].textContent);
  if (element.labels?.length) return words(element.labels[0].textContent);
  if (element.tagName === "INPUT") return element.value;
  if (element.title) return element.title;
  const label = element.getAttribute("aria-labelledby");
  if (label) return words(element.ownerDocument.getElementById(label).textContent);
  const own = element.querySelector(":scope > span");
  return words(element.getAttribute("role") === "treeitem" && own ? own.textContent : element.textContent);
}

// The words of the comparison for what a page calls by its own.
const KINDS = {"a": "link", "summary": "toggle button", "textarea": "text area", "select": "combo box", "img": "image",
  "progress": "progress bar", "meter": "level bar", "input text": "entry", "input email": "entry", "input tel": "entry",
  "input password": "entry", "input search": "entry", "input date": "date entry", "input file": "file entry",
  "input number": "spin button", "input range": "slider", "input color": "color button", "input checkbox": "check box",
  "input radio": "radio button", "input button": "button", "checkbox": "check box", "menuitem": "menu bar item",
  "option": "item", "treeitem": "item"};

function kindOf(element) {
  const tag = element.tagName.toLowerCase();
  const own = element.getAttribute("role") || (tag === "input" ? `input ${element.type}` : tag);
  return KINDS[own] || own;
}

// What a click does not reach, or would open over everything else, is not clicked.
function isClicked(element) {
  return !element.disabled && !["SELECT", "PROGRESS", "METER"].includes(element.tagName) &&
    !["file", "color", "date"].includes(element.type) && !element.list;
}

// How much of a box is to be seen: its middle at least, or less.
function share(box, seen) {
  const x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
  return x >= seen.left && x < seen.right && y >= seen.top && y < seen.bottom ? "whole" : "cut";
}

// One thing on the page, or nothing where nothing of it can be seen. Boxes are those of the element's own page.
function thing(node, element, box, more) {
  const seen = seenOf(element, box);
  if (isEmpty(seen) || !isBare(element, seen)) return [];
  const {x, y} = place(element.ownerDocument), whole = shift(box, x, y);
  const letters = more.letters ? shift(more.letters, x, y) : null;
  return [{node, box: whole, left: seen, seen: share(whole, seen), isCounted: true, isClicked: false, inside: null, ...more, letters}];
}

function controlsOf(page) {
  return [...page.querySelectorAll(CONTROLS)].filter(element => !isHidden(element)).flatMap(element => {
    // A branch of a tree holds the branches below it; what is its own is its line.
    const line = element.getAttribute("role") === "treeitem" ? element.querySelector("span") : element;
    return thing(element, line, line.getBoundingClientRect(),
                 {name: nameOf(element), kind: kindOf(element), isClicked: isClicked(element), isCounted: !element.multiple && element.tagName !== "IMG"});
  });
}

// The lines of a list that is always open.
function optionsOf(page) {
  return [...page.querySelectorAll("select[multiple] option")].flatMap(option =>
    thing(option, option, intersect(option.getBoundingClientRect(), option.parentElement.getBoundingClientRect()),
          {name: words(option.textContent), kind: "item", isClicked: true}));
}

// The words beside a check box or a radio button are a part of it, as a click on them is one on it.
function controlOf(element) {
  const labelled = element.closest("label")?.control;
  return labelled && ["checkbox", "radio"].includes(labelled.type) ? labelled : element.closest(CONTROLS);
}

// One for each text node; those of a control are parts of it.
function textsOf(page) {
  const found = [];
  const walker = page.createTreeWalker(page.body, NodeFilter.SHOW_TEXT);
  for (let node = walker.nextNode(); node; node = walker.nextNode()) {
    const parent = node.parentElement;
    if (!words(node.data) || parent.closest("script, style, option, datalist, textarea") || isHidden(parent)) continue;
    const whole = page.createRange(), letters = page.createRange();
    whole.selectNodeContents(node);
    letters.setStart(node, node.data.search(/\S/));
    letters.setEnd(node, node.data.trimEnd().length);
    found.push(...thing(node, parent, whole.getBoundingClientRect(),
                        {letters: letters.getBoundingClientRect(), name: words(node.data), kind: "text", isCounted: /[\p{L}\p{N}]/u.test(node.data), inside: controlOf(parent)}));
  }
  return found;
}

// The numbers of the lines of a list, left of them. A page doesn't know where they are, only how wide.
const canvas = document.createElement("canvas").getContext("2d");
function markersOf(page) {
  return [...page.querySelectorAll("ol > li")].flatMap(line => {
    const box = line.getBoundingClientRect(), number = [...line.parentElement.children].indexOf(line) + 1;
    const style = getComputedStyle(line);
    canvas.font = style.font;
    return thing(line.firstChild, line, {left: box.left - canvas.measureText(`${number}. `).width, top: box.top, right: box.left,
                                         bottom: box.top + parseFloat(style.lineHeight)},
                 {name: `${number}.`, kind: "marker", isCounted: false});
  });
}

// Anything else that has a box.
function restOf(page) {
  return [...page.body.querySelectorAll("*")].filter(element => !element.matches(CONTROLS) && !isHidden(element)).flatMap(element =>
    thing(element, element, element.getBoundingClientRect(),
          {name: "", kind: element.tagName.toLowerCase(), isCounted: false, inside: element.closest(CONTROLS)}));
}

function pages(page = document) {
  return [page, ...[...page.querySelectorAll("iframe")].flatMap(frame => pages(frame.contentDocument))];
}

const send = (path, value) => fetch(path, {method: "POST", body: JSON.stringify(value), keepalive: true});

let pointer = null;
const identifiers = new Map();
const identifier = node => {
  if (!identifiers.has(node)) identifiers.set(node, String(identifiers.size + 1));
  return identifiers.get(node);
};

const rectangle = box => [box.left, box.top, box.right - box.left, box.bottom - box.top];

function look() {
  const things = pages().flatMap(page => [...controlsOf(page), ...optionsOf(page), ...textsOf(page), ...markersOf(page), ...restOf(page)]);
  const elements = things.map(({node, name, kind, box, letters, left, seen, isCounted, isClicked, inside}) =>
    ({id: identifier(node), name, kind, frame: rectangle(box), letters: letters && rectangle(letters), visible: rectangle(left), seen, isCounted, isClicked,
      inside: inside ? identifier(inside) : null}));
  return {title: document.title, pointer, scrolled: scrollY, elements};
}

// The control that a press is for, or what has no other.
function reached(event) {
  const element = event.target.closest("option") || event.target.closest(CONTROLS) || event.target;
  send("/click", {id: identifier(element)});
}

for (const page of pages()) {
  page.addEventListener("mousemove", event => { if (page === document) pointer = {x: event.clientX, y: event.clientY}; });
  // The press is what tells: nothing may have moved in between, and the press of a list is all there is.
  page.addEventListener("mousedown", reached, true);
  page.addEventListener("click", event => event.preventDefault(), true);  // it is to stay as it is
}

addEventListener("load", () => {
  const share = new URLSearchParams(location.search).get("scrolled");
  if (share) scrollTo(0, Math.round(share * (document.documentElement.scrollHeight - innerHeight)));
  let told = "";
  setInterval(() => {
    const text = JSON.stringify(look());
    if (text !== told) send("/seen", JSON.parse(text));
    told = text;
  }, 100);
});
