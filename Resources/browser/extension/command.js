// Writes what is handed to Zelto as addresses of its scheme.

// A desktop hands an address over as one argument of a program, which may be 128 KiB long.
export const longestAddress = 120000;
export const mostImages = 500;
const longestTitle = 500;

function address(command, value) {
  return `zelto:${command}:${encodeURIComponent(JSON.stringify(value))}`;
}

function wellFormed(text) {
  return text.replace(/\p{Surrogate}/gu, "\ufffd");
}

export function captureAddress(page) {
  return address("snap", { page_url: page.page_url, ...page.window });
}

// Whether an image alone fits.
export function fits(page, url) {
  return importAddress(page, [url], "1").length <= longestAddress;
}

function importAddress(page, urls, importAll) {
  return address("import", {
    page_url: page.page_url,
    page_title: wellFormed(page.page_title.slice(0, longestTitle)),
    urls,
    import_all: importAll,
  });
}

// The addresses that hand over these images, in order. Into a project there is one at most: each would make a project.
// Null where they do not fit into it.
export function importAddresses(page, urls, intoProject) {
  const importAll = intoProject ? "1" : "";
  const empty = importAddress(page, [], importAll).length;
  const parts = [];
  let part = [];
  let length = empty;
  for (const url of urls) {
    const more = encodeURIComponent(JSON.stringify(url)).length + 3; // with the comma before it
    if (part.length > 0 && (part.length >= mostImages || length + more > longestAddress)) {
      parts.push(part);
      part = [];
      length = empty;
    }
    part.push(url);
    length += more;
  }
  if (part.length > 0) {
    parts.push(part);
  }
  if (intoProject && parts.length > 1) {
    return null;
  }
  return parts.map((each) => ({ address: importAddress(page, each, importAll), count: each.length }));
}
