// Writes 8-bit PNG files without palette or interlacing.
import zlib from 'node:zlib';

const crcTable = Array.from({ length: 256 }, (_, n) => {
  for (let bit = 0; bit < 8; ++bit) n = n & 1 ? (n >>> 1) ^ 0xedb88320 : n >>> 1;
  return n;
});

function crc32(bytes) {
  let crc = 0xffffffff;
  for (const byte of bytes) crc = crcTable[(crc ^ byte) & 255] ^ (crc >>> 8);
  return (crc ^ 0xffffffff) >>> 0;
}

function chunk(type, body) {
  const typed = Buffer.concat([Buffer.from(type, 'latin1'), body]);
  const length = Buffer.alloc(4);
  length.writeUInt32BE(body.length);
  const crc = Buffer.alloc(4);
  crc.writeUInt32BE(crc32(typed));
  return Buffer.concat([length, typed, crc]);
}

function paeth(left, up, corner) {
  const guess = left + up - corner;
  const [dl, du, dc] = [left, up, corner].map((value) => Math.abs(guess - value));
  if (dl <= du && dl <= dc) return left;
  return du <= dc ? up : corner;
}

const predictors = [
  () => 0,
  (left) => left,
  (left, up) => up,
  (left, up) => (left + up) >> 1,
  paeth,
];

// The filter whose differences are smallest.
function filterRow(row, above, step) {
  let best;
  predictors.forEach((predict, type) => {
    const bytes = Buffer.alloc(row.length + 1, type);
    let cost = 0;
    for (let i = 0; i < row.length; ++i) {
      const left = i >= step ? row[i - step] : 0;
      const corner = i >= step ? above[i - step] : 0;
      const difference = (row[i] - predict(left, above[i], corner)) & 255;
      bytes[i + 1] = difference;
      cost += Math.min(difference, 256 - difference);
    }
    if (!best || cost < best.cost) best = { bytes, cost };
  });
  return best.bytes;
}

// image: { width, height, channels: 3 or 4, pixels: bytes from the top left }
export function encodePng({ width, height, channels, pixels }) {
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header[8] = 8;
  header[9] = channels === 4 ? 6 : 2;
  const rowLength = width * channels;
  const rows = [];
  let above = Buffer.alloc(rowLength);
  for (let y = 0; y < height; ++y) {
    const row = pixels.subarray(y * rowLength, (y + 1) * rowLength);
    rows.push(filterRow(row, above, channels));
    above = row;
  }
  // Other strategies look matches up through hashes, which differ between builds of the library;
  // this one gives the same bytes everywhere.
  const packed = zlib.deflateSync(Buffer.concat(rows),
                                  { level: 9, strategy: zlib.constants.Z_RLE });
  return Buffer.concat([
    Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]),
    chunk('IHDR', header), chunk('IDAT', packed), chunk('IEND', Buffer.alloc(0)),
  ]);
}
