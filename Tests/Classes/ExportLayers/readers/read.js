// read.js FILE.psd: what ag-psd finds in it, as JSON; pixels as digests of R, G, B, A.
const crypto = require('crypto');
const fs = require('fs');
const path = require('path');
const {createRequire} = require('module');

const folder = process.env.ZELTO_READERS || __dirname;
const {initializeCanvas, readPsd} = createRequire(path.join(folder, 'package.json'))('ag-psd');
// Without a canvas: only bytes are asked for.
initializeCanvas(
  () => { throw new Error('no canvas'); },
  (width, height) => ({width, height, data: new Uint8ClampedArray(width * height * 4)}));

const digest = (image) => crypto.createHash('sha256').update(image.data).digest('hex');
const psd = readPsd(fs.readFileSync(process.argv[2]), {useImageData: true, skipThumbnail: true});
console.log(JSON.stringify({
  size: [psd.width, psd.height],
  merged: digest(psd.imageData),
  layers: (psd.children || []).map((layer) => ({
    name: layer.name, opacity: Math.round(layer.opacity * 255), rect: [layer.left, layer.top, layer.right, layer.bottom],
    pixels: digest(layer.imageData),
  })),
}));
