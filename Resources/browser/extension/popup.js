// The images of the page, to choose from. In a tab of its own ("?tab=N") it stays when the focus leaves it.
import { captureAddress, fits, importAddresses } from "./command.js";

const element = (id) => document.getElementById(id);
const text = (key, ...values) => chrome.i18n.getMessage(key, values.map(String)) || key;
const ownTab = new URLSearchParams(location.search).get("tab");

let tabId = null;
let page = null; // as collect.js answers it
let rows = []; // {image, item, box, size}
let parts = []; // still to be handed over, when the choice does not fit into one address

function say(message, isProblem = false) {
  element("message").textContent = message;
  element("message").classList.toggle("problem", isProblem);
}

function nameOf(url) {
  if (url.startsWith("data:")) {
    return text("inline");
  }
  const last = new URL(url).pathname.split("/").pop();
  try {
    return decodeURIComponent(last) || url;
  } catch {
    return last;
  }
}

function isLargeEnough({ image }) {
  const smallest = Number(element("smallest").value) || 0;
  return image.width === 0 || Math.max(image.width, image.height) >= smallest;
}

const chosen = () => rows.filter((row) => !row.item.hidden && row.box.checked && !row.box.disabled);
const shown = () => rows.filter((row) => !row.item.hidden && !row.box.disabled);

function update() {
  for (const row of rows) {
    row.item.hidden = !isLargeEnough(row);
  }
  const count = chosen().length;
  element("count").textContent = text("count", count, shown().length);
  element("import").textContent = parts.length > 0 ? text("importNext", parts[0].count) : text("import");
  element("import").disabled = count === 0 && parts.length === 0;
  element("project").disabled = shown().length === 0;
  element("all").disabled = element("none").disabled = shown().length === 0;
  if (rows.length > 0 && parts.length === 0) {
    say(shown().length === 0 ? text("allSmall") : "");
  }
}

function showSize(row) {
  const { width, height } = row.image;
  row.size.textContent = row.box.disabled ? text("tooLong") : width > 0 ? text("size", width, height || "?") : text("sizeUnknown");
}

function addRow(image) {
  const item = document.createElement("li");
  const label = item.appendChild(document.createElement("label"));
  const box = label.appendChild(document.createElement("input"));
  box.type = "checkbox";
  const picture = label.appendChild(document.createElement("span"));
  picture.className = "picture";
  const img = picture.appendChild(document.createElement("img"));
  const name = label.appendChild(document.createElement("span"));
  name.className = "name";
  name.textContent = nameOf(image.url);
  label.title = image.url.slice(0, 500);
  const size = label.appendChild(document.createElement("span"));
  size.className = "size";
  const row = { image, item, box, size };
  box.disabled = !fits(page, image.url);
  box.checked = !box.disabled;
  box.addEventListener("change", choiceChanged);
  img.alt = "";
  img.loading = "lazy";
  img.referrerPolicy = "no-referrer";
  img.addEventListener("load", () => {
    image.width = img.naturalWidth || image.width; // a drawing may have no size
    image.height = img.naturalHeight || image.height;
    showSize(row);
    update();
  });
  img.addEventListener("error", () => { // still to be had, as where a server wants to know which page asks
    box.checked = false;
    size.textContent = text("notShown");
    choiceChanged();
  });
  img.src = image.url;
  showSize(row);
  element("images").append(item);
  rows.push(row);
}

function choiceChanged() {
  parts = [];
  update();
}

function choose(isChosen) {
  for (const row of shown()) {
    row.box.checked = isChosen;
  }
  choiceChanged();
}

// The browser asks the person whether Zelto may be opened.
async function hand(address) {
  try {
    await chrome.tabs.update(tabId, { url: address });
    return true;
  } catch (error) {
    say(text("notHanded", error.message), true);
    return false;
  }
}

// A browser opens another program once for each click: what is left waits for the next.
async function importChosen() {
  if (parts.length === 0) {
    parts = importAddresses(page, chosen().map((row) => row.image.url), false);
  }
  if (!(await hand(parts[0].address))) {
    return;
  }
  parts.shift();
  update();
  const left = parts.reduce((sum, part) => sum + part.count, 0);
  say(left > 0 ? text("left", left) : text("handed"));
}

async function importIntoProject() {
  parts = [];
  update();
  const addresses = importAddresses(page, shown().map((row) => row.image.url), true);
  if (addresses === null) {
    say(text("tooMany"), true);
  } else if (await hand(addresses[0].address)) {
    say(text("handed"));
  }
}

async function readPage() {
  const [tab] = ownTab === null ? await chrome.tabs.query({ active: true, currentWindow: true }) : [{ id: Number(ownTab) }];
  tabId = tab.id;
  const [answer] = await chrome.scripting.executeScript({ target: { tabId }, files: ["collect.js"] });
  page = answer.result;
}

async function start() {
  for (const each of document.querySelectorAll("[data-text]")) {
    each.textContent = text(each.dataset.text);
  }
  document.documentElement.lang = chrome.i18n.getUILanguage();
  document.body.classList.toggle("detached", ownTab !== null);
  element("detach").hidden = ownTab !== null;
  for (const id of ["all", "none", "import", "project", "capture", "detach"]) {
    element(id).disabled = true;
  }
  element("images").setAttribute("aria-label", text("images"));
  try {
    await readPage();
  } catch {
    say(text("notReadable"), true);
    return;
  }
  if (!/^https?:/.test(page.page_url)) {
    say(text("notWeb"), true);
    return;
  }
  page.images.forEach(addRow);
  element("smallest").addEventListener("input", choiceChanged);
  element("all").addEventListener("click", () => choose(true));
  element("none").addEventListener("click", () => choose(false));
  element("import").addEventListener("click", importChosen);
  element("project").addEventListener("click", importIntoProject);
  element("capture").addEventListener("click", () => hand(captureAddress(page)));
  element("detach").addEventListener("click", () => {
    chrome.tabs.create({ url: chrome.runtime.getURL(`popup.html?tab=${tabId}`) });
  });
  element("capture").disabled = element("detach").disabled = false;
  say(rows.length === 0 ? text("noImages") : "");
  update();
  element("import").focus();
}

start();
