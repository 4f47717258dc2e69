// Pictures are painted by functions from a place to a colour: [red, green, blue] or with alpha,
// 0..1 as shown on a screen. u and v run 0..1, from the left and from the top.
import { mix, normalize, smoothstep } from './vector.mjs';

const quantize = (value) => Math.round(Math.min(1, Math.max(0, value)) * 255);

// Each pixel is the mean of samples x samples places.
export function paint(width, height, colourAt, samples = 2) {
  const channels = colourAt(0.5, 0.5).length;
  const pixels = Buffer.alloc(width * height * channels);
  for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) {
      let sum = new Array(channels).fill(0);
      for (let i = 0; i < samples * samples; ++i) {
        const u = (x + ((i % samples) + 0.5) / samples) / width;
        const v = (y + (Math.floor(i / samples) + 0.5) / samples) / height;
        const colour = colourAt(u, v);
        sum = sum.map((value, c) => value + colour[c]);
      }
      const base = (y * width + x) * channels;
      sum.forEach((value, c) => { pixels[base + c] = quantize(value / (samples * samples)); });
    }
  }
  return { width, height, channels, pixels };
}

// Tangent space, green up. heightAt answers metres, size is the picture's [width, height] in
// metres.
export function paintNormals(width, height, size, heightAt, strength = 1) {
  const du = 0.5 / width;
  const dv = 0.5 / height;
  return paint(width, height, (u, v) => {
    const slopeU = (heightAt(u + du, v) - heightAt(u - du, v)) / (2 * du * size[0]);
    const slopeV = (heightAt(u, v + dv) - heightAt(u, v - dv)) / (2 * dv * size[1]);
    const normal = normalize([-slopeU * strength, slopeV * strength, 1]);
    return normal.map((value) => value * 0.5 + 0.5);
  }, 1);
}

function hash(x, y) {
  let h = Math.imul(x, 374761393) ^ Math.imul(y, 668265263);
  h = Math.imul(h ^ (h >>> 13), 1274126177);
  return ((h ^ (h >>> 16)) >>> 0) / 4294967296;
}

// Smooth noise, 0..1, one bump per unit. With a period it repeats after so many units.
export function noise(x, y, period = 0) {
  const wrap = (i) => (period ? ((i % period) + period) % period : i);
  const [ix, iy] = [Math.floor(x), Math.floor(y)];
  const [fx, fy] = [smoothstep(0, 1, x - ix), smoothstep(0, 1, y - iy)];
  const at = (dx, dy) => hash(wrap(ix + dx), wrap(iy + dy));
  const top = at(0, 0) + (at(1, 0) - at(0, 0)) * fx;
  const bottom = at(0, 1) + (at(1, 1) - at(0, 1)) * fx;
  return top + (bottom - top) * fy;
}

// Noise of several sizes over each other.
export function roughness(x, y, octaves = 3, period = 0) {
  let [sum, size, total] = [0, 1, 0];
  for (let i = 0; i < octaves; ++i) {
    const finer = 2 ** i;
    sum += noise(x * finer + 17 * i, y * finer + 31 * i, period * finer) * size;
    total += size;
    size /= 2;
  }
  return sum / total;
}

export const blend = (under, over, amount) => mix(under, over, Math.min(1, Math.max(0, amount)));

// 1 inside a band around a centre, with an edge as soft as given.
export const band = (value, centre, halfWidth, soft = 0.004) =>
  1 - smoothstep(halfWidth - soft, halfWidth + soft, Math.abs(value - centre));

// How far a point is inside a rounded rectangle around the origin (negative: outside).
export function insideRounded(x, y, halfWidth, halfHeight, radius) {
  const dx = Math.abs(x) - halfWidth + radius;
  const dy = Math.abs(y) - halfHeight + radius;
  const outside = Math.sqrt(Math.max(dx, 0) ** 2 + Math.max(dy, 0) ** 2);
  return radius - outside - Math.min(Math.max(dx, dy), 0);
}

// Pen strokes of the few letters that the number plate needs, in a box 1 wide and 2 high, y up.
const letters = {
  R: [[0, 0, 0, 2], [0, 2, 0.7, 2], [0.7, 2, 1, 1.75], [1, 1.75, 1, 1.3], [1, 1.3, 0.7, 1.05],
      [0.7, 1.05, 0, 1.05], [0.5, 1.05, 1, 0]],
  C: [[1, 1.6, 0.75, 2], [0.75, 2, 0.25, 2], [0.25, 2, 0, 1.7], [0, 1.7, 0, 0.3],
      [0, 0.3, 0.25, 0], [0.25, 0, 0.75, 0], [0.75, 0, 1, 0.4]],
  2: [[0, 1.65, 0.3, 2], [0.3, 2, 0.75, 2], [0.75, 2, 1, 1.7], [1, 1.7, 0.95, 1.3],
      [0.95, 1.3, 0, 0], [0, 0, 1, 0]],
  3: [[0, 1.75, 0.3, 2], [0.3, 2, 0.75, 2], [0.75, 2, 1, 1.75], [1, 1.75, 1, 1.35],
      [1, 1.35, 0.7, 1.08], [0.7, 1.08, 0.4, 1.08], [0.7, 1.08, 1, 0.8], [1, 0.8, 1, 0.3],
      [1, 0.3, 0.7, 0], [0.7, 0, 0.25, 0], [0.25, 0, 0, 0.3]],
};

function distanceToStroke(x, y, [x0, y0, x1, y1]) {
  const [dx, dy] = [x1 - x0, y1 - y0];
  const t = Math.min(1, Math.max(0, ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)));
  return Math.sqrt((x - x0 - dx * t) ** 2 + (y - y0 - dy * t) ** 2);
}

// How far a place is from the nearest stroke of a text whose first letter stands at the origin.
export function distanceToText(text, x, y) {
  const advance = 1.5;
  let nearest = Infinity;
  [...text].forEach((letter, i) => {
    for (const stroke of letters[letter] ?? []) {
      nearest = Math.min(nearest, distanceToStroke(x - i * advance, y, stroke));
    }
  });
  return nearest;
}
