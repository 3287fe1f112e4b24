// The same as the extension for browsers that take none: what follows is run in the page, with the answer of the
// extension's collect.js in `page` and the functions of its command.js at hand. `Tools/bookmarklet.py` makes the one
// line of it that goes into a bookmark.
(() => {
  const id = "zelto-import";
  document.getElementById(id)?.remove();
  const host = document.createElement("dialog");
  host.id = id;
  host.setAttribute("aria-label", "Import into Zelto");
  const add = (parent, name, properties, style) => {
    const made = parent.appendChild(document.createElement(name));
    Object.assign(made, properties);
    Object.assign(made.style, style); // a page may forbid styles that are written out
    return made;
  };
  Object.assign(host.style, {
    width: "640px", maxWidth: "90vw", maxHeight: "80vh", padding: "12px", border: "1px solid gray", borderRadius: "6px",
    background: "Canvas", color: "CanvasText", colorScheme: "dark light", font: "13px system-ui, sans-serif",
  });
  const message = add(host, "p", { textContent: page.images.length ? "Images of this page" : "This page shows no images." });
  message.setAttribute("role", "status");
  const list = add(host, "div", {}, { maxHeight: "50vh", overflow: "auto" });
  const boxes = page.images.filter((image) => fits(page, image.url)).map((image) => {
    const label = add(list, "label", { title: image.url.slice(0, 500) }, { display: "flex", gap: "8px", alignItems: "center", padding: "4px" });
    const box = add(label, "input", { type: "checkbox", checked: true, value: image.url });
    add(label, "img", { src: image.url, alt: "" }, { width: "48px", height: "48px", objectFit: "contain" });
    const size = image.width ? ` (${image.width} × ${image.height || "?"})` : "";
    const name = image.url.startsWith("data:") ? "Image in the page" : image.url.split(/[?#]/)[0].split("/").pop() || image.url;
    add(label, "span", { textContent: name + size });
    return box;
  });
  const row = add(host, "form", { method: "dialog" }, { display: "flex", gap: "8px", justifyContent: "flex-end", marginTop: "12px" });
  const button = (text, run) => add(row, "button", { type: "button", textContent: text, onclick: run });
  let parts = [];
  const importChosen = () => {
    if (parts.length === 0) {
      parts = importAddresses(page, boxes.filter((box) => box.checked).map((box) => box.value), false);
    }
    if (parts.length > 0) {
      location.href = parts.shift().address;
    }
    if (parts.length === 0) {
      host.close();
    } else { // a browser opens another program once for each click
      importButton.textContent = `Import the Next ${parts[0].count}`;
    }
  };
  const importIntoProject = () => {
    const addresses = importAddresses(page, boxes.map((box) => box.value), true);
    if (addresses === null) {
      message.textContent = "These are too many for one project. Choose some of them, and use Import.";
    } else if (addresses.length > 0) {
      location.href = addresses[0].address;
      host.close();
    }
  };
  button("Choose None", () => boxes.forEach((box) => { box.checked = false; }));
  button("Cancel", () => host.close());
  button("Import All into a Project", importIntoProject);
  const importButton = button("Import", importChosen);
  host.addEventListener("close", () => host.remove());
  document.body.append(host);
  host.showModal();
  importButton.focus();
})();
