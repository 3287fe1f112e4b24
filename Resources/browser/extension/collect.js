// Runs in the page and answers what images it shows: {page_url, page_title, window, images: [{url, width, height}]}.
// A size of 0 is not known. Nothing of the page is changed. Frames of the page's own site are part of it; into those of
// others no page may look.
(() => {
  const mostElements = 50000;
  const mostImages = 3000;
  const found = new Map(); // address -> {url, width, height}
  let base = document.baseURI; // of the document that is looked at

  function add(address, width = 0, height = 0) {
    let url;
    try {
      url = new URL(String(address).trim(), base);
    } catch {
      return;
    }
    const isImageInText = /^data:image\//i.test(url.href);
    if ((url.protocol !== "http:" && url.protocol !== "https:" && !isImageInText) || found.size >= mostImages) {
      return;
    }
    url.hash = isImageInText ? url.hash : ""; // the same file
    const known = found.get(url.href);
    if (!known || known.width < width) {
      found.set(url.href, { url: url.href, width: Math.round(width), height: Math.round(height) });
    }
  }

  // "a.png 1x, b.png 2x", where addresses may hold commas.
  function candidates(srcset) {
    const list = [];
    const pattern = /\s*([^\s,]\S*[^\s,])(?:\s+([\d.]+)([wx]))?\s*(?:,|$)/g;
    for (const [, url, amount, unit] of srcset.matchAll(pattern)) {
      list.push({ url, width: unit === "w" ? Number(amount) : 0, density: unit === "x" ? Number(amount) : 1 });
    }
    return list;
  }

  function addImage(image) {
    const picture = image.parentElement?.localName === "picture" ? image.parentElement : null;
    const sets = [image, ...(picture ? picture.querySelectorAll(":scope > source") : [])];
    const all = sets.flatMap((each) => candidates(each.getAttribute("srcset") ?? ""));
    const rank = (one) => one.width || one.density;
    const largest = all.reduce((best, one) => (best === null || rank(one) > rank(best) ? one : best), null);
    const shown = image.currentSrc || image.src;
    const shape = image.naturalWidth ? image.naturalHeight / image.naturalWidth : 0;
    const isShown = largest && new URL(largest.url, base).href === shown;
    if (largest && !isShown && (largest.width > image.naturalWidth || largest.density > 1)) {
      add(largest.url, largest.width, largest.width * shape); // of a density the size is seen once it is loaded
    } else if (isShown) { // the page counts other pixels than the file has
      const width = largest.width || image.naturalWidth * largest.density;
      add(shown, width, width * shape);
    } else if (shown) {
      add(shown, image.naturalWidth, image.naturalHeight);
    }
  }

  function addBackgrounds(element) {
    for (const part of [null, "::before", "::after"]) {
      const style = getComputedStyle(element, part);
      if (part && style.content === "none") {
        continue;
      }
      for (const value of [style.backgroundImage, style.maskImage, style.listStyleImage, style.borderImageSource, style.content]) {
        for (const [, address] of (value ?? "").matchAll(/url\("((?:[^"\\]|\\.)*)"\)/g)) {
          add(address.replace(/\\(.)/g, "$1"));
        }
      }
    }
  }

  function addElement(element) {
    switch (element.localName) {
      case "img":
        addImage(element);
        break;
      case "input":
        if (element.type === "image") {
          add(element.src);
        }
        break;
      case "video":
        if (element.poster) {
          add(element.poster);
        }
        break;
      case "image": // of a drawing in the page
        if (element.href?.baseVal) {
          add(element.href.baseVal);
        }
        break;
      case "object":
      case "embed":
        if (/^image\//.test(element.type)) {
          add(element.data ?? element.src);
        }
        break;
    }
    addBackgrounds(element);
  }

  let left = mostElements;
  function walk(root) {
    for (const element of root.querySelectorAll("*")) {
      if (--left < 0) {
        return;
      }
      addElement(element);
      if (element.shadowRoot) {
        walk(element.shadowRoot);
      }
      if (element.contentDocument) {
        walkDocument(element.contentDocument);
      }
    }
  }
  function walkDocument(each) {
    const outer = base;
    base = each.baseURI;
    if (each.contentType?.startsWith("image/")) {
      add(each.location.href); // the page, or a frame, is the image
    }
    walk(each);
    base = outer;
  }
  walkDocument(document);
  return {
    page_url: location.href,
    page_title: document.title,
    window: { win_x: screenX, win_y: screenY, win_width: outerWidth, win_height: outerHeight },
    images: [...found.values()],
  };
})();
