// The railcar's pictures. The livery covers half the body's outline, see body.mjs.
import { mix, smoothstep } from '../vector.mjs';
import { band, blend, distanceToText, insideRounded, noise, paint, paintNormals, roughness }
  from '../painting.mjs';
import { doorTop, liveryBottom, liveryTop, openings, outlineLength } from './body.mjs';

const red = [0.52, 0.085, 0.075];
const cream = [0.88, 0.82, 0.67];
const gold = [0.82, 0.62, 0.24];
const skirt = [0.13, 0.12, 0.12];
const gap = [0.1, 0.07, 0.06];
const rust = [0.3, 0.2, 0.12];
const dust = [0.42, 0.36, 0.28];

const doors = openings.filter(({ opening }) => opening === 'door');
const panes = openings.filter(({ opening }) => opening === 'window');
const passengerPanes = panes.filter(({ from, to }) => to - from > 1);
const seams = passengerPanes.slice(1).map(({ from }) => from - 0.12);
// Air intakes below some of the windows, in metres along the outline and above the rail.
const grilles = [passengerPanes[1], passengerPanes[4]].map(({ from, to }) =>
  ({ along: (from + to) / 2, y: 1.36, halfWidth: 0.42, halfHeight: 0.16 }));

const toMetres = (u, v) => [u * outlineLength, liveryTop - v * (liveryTop - liveryBottom)];
const fromEnd = (along) => Math.min(along, outlineLength - along);

// The stripe dips to a point at both ends.
const stripeHeight = (along) => 1.86 - 0.42 * smoothstep(1.5, 0, fromEnd(along));

const insideGrille = (along, y) => Math.max(...grilles.map((grille) =>
  insideRounded(along - grille.along, y - grille.y, grille.halfWidth, grille.halfHeight, 0.04)));
const louvre = (y) => (((y - 1.2) / 0.053) % 1 + 1) % 1;

function doorEdge(along, y) {
  if (y > doorTop + 0.02) return 0;
  return Math.max(...doors.map(({ from, to }) =>
    Math.max(band(along, from, 0.016), band(along, to, 0.016))));
}

function dirt(along, y) {
  const cloud = roughness(along * 0.9, y * 1.6, 3);
  const low = smoothstep(1.75, 0.9, y + (cloud - 0.5) * 0.7) * 0.55;
  const streaks = noise(along * 14, y * 0.8) * noise(along * 5 + 40, 3);
  const run = smoothstep(0.42, 0.9, streaks) * smoothstep(1.15, 1.98, y) *
              smoothstep(2.2, 1.95, y) * 0.5;
  return low + run + (cloud - 0.5) * 0.05;
}

function livery(u, v) {
  const [along, y] = toMetres(u, v);
  const stripe = stripeHeight(along);
  let colour = mix(red, cream, smoothstep(stripe - 0.004, stripe + 0.004, y));
  colour = blend(colour, gold, band(y, stripe + 0.012, 0.016));
  colour = blend(colour, gold, band(y, stripe - 0.07, 0.007));
  colour = blend(colour, red, smoothstep(2.985, 2.993, y));
  colour = blend(colour, skirt, smoothstep(1.035, 1.027, y));
  for (const seam of seams) colour = blend(colour, gap, band(along, seam, 0.006) * 0.5);
  colour = blend(colour, gap, band(y, 2.94, 0.005) * 0.4);
  colour = blend(colour, [0.06, 0.06, 0.06], doorEdge(along, y));
  const grille = insideGrille(along, y);
  if (grille > 0) {
    const slat = mix([0.07, 0.05, 0.05], [0.46, 0.1, 0.09], smoothstep(0.35, 0.75, louvre(y)));
    colour = blend(colour, slat, smoothstep(0, 0.012, grille));
  }
  const shade = dirt(along, y);
  colour = blend(colour, mix(dust, rust, noise(along * 2.3, 9)), shade);
  return colour;
}

// Rivets stand in rows along the seams and above the sole.
function rivets(along, y) {
  const spacing = 0.11;
  const beside = (value) => value - Math.round(value / spacing) * spacing;
  const bump = (dx, dy) => Math.max(0, 1 - (dx * dx + dy * dy) / 0.02 ** 2);
  let height = Math.max(bump(beside(along), y - 1.09), bump(beside(along), y - 2.9));
  if (y > 1.09 && y < 1.84) {
    for (const seam of seams) {
      height = Math.max(height, bump(along - seam - 0.04, beside(y)),
                        bump(along - seam + 0.04, beside(y)));
    }
  }
  return height;
}

function liveryHeight(u, v) {
  const [along, y] = toMetres(u, v);
  let height = 0.004 * rivets(along, y);
  for (const seam of seams) height -= 0.005 * band(along, seam, 0.008, 0.008);
  height -= 0.004 * band(y, 2.94, 0.008, 0.008);
  height -= 0.01 * doorEdge(along, y);
  if (insideGrille(along, y) > 0.01) height += 0.014 * louvre(y) - 0.014;
  // Sheet metal is never quite flat.
  return height + 0.008 * roughness(along * 1.3, y * 1.7, 2);
}

function roof(u, v) {
  const cloud = roughness(u * 6, v * 6, 3, 6);
  let colour = mix([0.3, 0.31, 0.31], [0.43, 0.43, 0.42], cloud);
  const across = Math.abs(((v * 2) % 1) - 0.5);
  colour = blend(colour, [0.2, 0.2, 0.2], smoothstep(0.49, 0.497, across) * 0.8);
  const stain = smoothstep(0.6, 0.95, roughness(u * 8, v * 8, 3, 8));
  return blend(colour, [0.25, 0.18, 0.13], stain * 0.5);
}

// Alpha is what the pane hides; the two slanting lights are reflections.
function glass(u, v) {
  const slant = u + v * 0.45;
  const shine = band(slant, 0.42, 0.1, 0.02) + 0.6 * band(slant, 0.66, 0.035, 0.02);
  const sky = mix([0.3, 0.38, 0.42], [0.08, 0.11, 0.12], v);
  const edge = smoothstep(0.44, 0.5, Math.max(Math.abs(u - 0.5), Math.abs(v - 0.5)));
  const colour = blend(sky, [0.72, 0.8, 0.82], shine * 0.35 * (1 - v * 0.6));
  return [...blend(colour, [0.04, 0.05, 0.05], edge * 0.7),
          0.42 + 0.16 * (1 - v) + 0.12 * shine + 0.3 * edge];
}

// A wheel from the side, see makeWheelset.
function wheel(u, v) {
  const [x, y] = [(u - 0.5) * 0.92, (0.5 - v) * 0.92];
  const radius = Math.sqrt(x * x + y * y);
  const angle = Math.atan2(y, x) / (2 * Math.PI);
  const grain = roughness(u * 24, v * 24, 3);
  let colour = mix([0.16, 0.12, 0.1], [0.24, 0.18, 0.14], grain);
  colour = blend(colour, [0.09, 0.08, 0.08], smoothstep(0.15, 0.14, radius));
  // Lightening holes and, on the rim, one paint mark.
  const sector = ((angle * 6 + 6.5) % 1 - 0.5) / 6 * 2 * Math.PI * radius;
  const hole = 0.045 - Math.sqrt(sector ** 2 + (radius - 0.225) ** 2);
  colour = blend(colour, [0.02, 0.02, 0.02], smoothstep(-0.003, 0.003, hole));
  colour = blend(colour, [0.3, 0.26, 0.23], smoothstep(0.34, 0.345, radius));
  const mark = Math.abs(angle) < 0.012 && radius > 0.345 && radius < 0.41;
  if (mark) colour = blend(colour, [0.9, 0.88, 0.8], 0.85);
  const steel = mix([0.52, 0.53, 0.55], [0.68, 0.69, 0.7], roughness(radius * 80, angle * 3, 2));
  return blend(colour, steel, smoothstep(0.411, 0.414, radius));
}

function lamps(u, v) {
  const isRed = u > 0.5;
  const [x, y] = [((u * 2) % 1) * 2 - 1, v * 2 - 1];
  const radius = Math.sqrt(x * x + y * y);
  const ribs = 0.85 + 0.15 * Math.cos(x * 40);
  const bright = mix([1, 0.97, 0.86], [0.62, 0.6, 0.55], smoothstep(0, 1, radius));
  const dark = mix([0.9, 0.12, 0.08], [0.35, 0.02, 0.02], smoothstep(0, 1, radius));
  return (isRed ? dark : bright).map((value) => value * ribs);
}

function plate(u, v) {
  const [x, y] = [(u - 0.5) * 4, 0.5 - v];
  const inside = insideRounded(x, y, 1.97, 0.47, 0.12);
  let colour = mix([0.09, 0.09, 0.1], [0.16, 0.15, 0.15], roughness(u * 20, v * 5, 2));
  colour = blend(colour, gold, band(inside, 0.05, 0.02, 0.01));
  colour = blend(colour, [0.02, 0.02, 0.02], smoothstep(0.005, -0.005, inside));
  const size = 0.27;
  const letter = distanceToText('RC 23', (x + 3.35 * size * 1.04) / size, y / size + 1) * size;
  return blend(colour, [0.93, 0.86, 0.62], smoothstep(0.055, 0.04, letter));
}

export const pictures = () => ({
  'livery.png': paint(1024, 256, livery, 3),
  'livery_normal.png': paintNormals(1024, 256, [outlineLength, liveryTop - liveryBottom],
                                    liveryHeight),
  'roof.png': paint(256, 256, roof),
  'glass.png': paint(128, 128, glass),
  'wheel.png': paint(256, 256, wheel),
  'lamps.png': paint(128, 64, lamps),
  'notile_plate.png': paint(256, 64, plate, 3),
});
