// What is fixed to the body: buffers and couplers, equipment under the floor and on the roof,
// lamps, handrails, wipers, number plates.
import { alongZ, beam, bothEnds, bothSides, boxAt, boxMapped, cylinder, lathe, moved, polygon, tube,
         turned } from '../shapes.mjs';
import * as v from '../vector.mjs';

export const bufferHeight = 1.0;
export const bufferFace = 7.9;

function buffer() {
  const sleeve = [[7.34, 0], [7.34, 0.17], [7.37, 0.17], [7.38, 0.125], [7.66, 0.115], [7.68, 0.1]];
  const plunger = [[7.66, 0.075], [7.83, 0.075], [7.85, 0.2], [7.87, 0.225], [7.885, 0.21],
                   [bufferFace, 0.1], [bufferFace, 0]];
  const across = [0.875, bufferHeight, 0];
  return { sleeve: moved(alongZ(lathe(sleeve, 14)), across),
           plunger: moved(alongZ(lathe(plunger, 16)), across) };
}

// A hook on a drawbar, and a screw coupling that hangs from it.
const coupler = () => [
  ...boxAt([0, bufferHeight, 7.45], [0.12, 0.14, 0.2], 0.02),
  ...beam([{ z: 7.5, bottom: 0.96, top: 1.04 }, { z: 7.66, bottom: 0.94, top: 1.03 },
           { z: 7.76, bottom: 0.93, top: 0.99 }, { z: 7.82, bottom: 0.95, top: 1.07 },
           { z: 7.8, bottom: 1.03, top: 1.11 }]
    .map((station) => ({ ...station, inner: -0.03, outer: 0.03 })), 0.01),
  ...bothSides(tube([[0.045, 0.97, 7.6], [0.06, 0.78, 7.64], [0.06, 0.62, 7.62], [0, 0.53, 7.6]],
                    0.014, 6)),
  ...boxAt([0, 0.72, 7.63], [0.16, 0.05, 0.05], 0.01),
];

// Deflects what lies on the rails to both sides.
function plough() {
  const section = (x, z) => [[x, 0.26, z + 0.1], [x, 0.45, z], [x, 0.72, z + 0.02],
                             [x, 0.72, z - 0.02], [x, 0.45, z - 0.04], [x, 0.26, z + 0.06]];
  return boxMapped([...bothSides(wedge([section(0, 7.2), section(1.05, 6.85)])),
                    ...bothSides(boxAt([0.6, 0.75, 6.95], [0.08, 0.3, 0.12]))]);
}

// Between two sections that run clockwise.
function wedge(rings) {
  const shape = [];
  const count = rings[0].length;
  for (let i = 0; i < count; ++i) {
    const next = (i + 1) % count;
    const at = [rings[0][i], rings[0][next], rings[1][next], rings[1][i]];
    shape.push(...polygon(at.toReversed(), at));
  }
  return [...shape, ...polygon(rings[1].toReversed(), rings[1])];
}

export function makeUnderfloor() {
  const step = (z) => [
    ...boxAt([1.22, 0.62, z], [0.24, 0.04, 0.96], 0.012),
    ...[-0.42, 0.42].flatMap((dz) => boxAt([1.13, 0.78, z + dz], [0.05, 0.34, 0.05])),
  ];
  const end = [
    ...boxAt([0, bufferHeight - 0.02, 7.22], [2.36, 0.34, 0.3], 0.03),
    ...coupler(), ...plough(), ...bothSides(buffer().sleeve),
    ...bothSides(step(4.75)),
  ];
  const tank = moved(alongZ(cylinder(1.5, 0.17, 14, 0.05)), [0, 0, -0.75]);
  const louvres = Array.from({ length: 5 }, (_, i) =>
    boxAt([1.2, 0.58 + i * 0.06, -1.5], [0.05, 0.025, 1.3])).flat();
  return [
    ...bothEnds(end),
    ...bothSides(boxAt([0.35, 0.86, 0], [0.14, 0.16, 12.8])),
    ...boxAt([0.75, 0.67, 0.4], [0.85, 0.5, 1.7], 0.04),
    ...boxAt([0.78, 0.7, -1.5], [0.8, 0.44, 1.5], 0.04), ...louvres,
    ...boxAt([-0.8, 0.66, 1.55], [0.75, 0.52, 1.3], 0.04),
    ...boxAt([-0.86, 0.72, 0.1], [0.62, 0.38, 1.2], 0.04),
    ...moved(tank, [-0.75, 0.7, -1.55]), ...moved(tank, [-0.32, 0.66, -1.55]),
    ...tube([[-0.1, 0.8, -5.6], [-0.1, 0.8, 5.6]], 0.03, 6),
    ...tube([[0.12, 0.78, -5.6], [0.12, 0.78, 5.6]], 0.02, 6),
  ];
}

// Heights on the roof's curve, by the distance from the middle.
const roofHeight = (x) => 3.62 - 0.2 * x * x;

export function makeRoofEquipment() {
  const vents = [-5.2, -4.2, -1.1, 0.3].flatMap((z) => bothSides(
    boxAt([0.62, roofHeight(0.62) + 0.02, z], [0.3, 0.2, 0.5], 0.06)));
  const ribs = Array.from({ length: 9 }, (_, i) =>
    boxAt([0, 3.88, -3.6 + i * 0.2], [1.04, 0.16, 0.05]));
  const horn = moved(alongZ(lathe(
    [[0, 0.02], [0.22, 0.028], [0.32, 0.045], [0.36, 0.08], [0.34, 0.06], [0.3, 0]], 10)),
                     [0, 3.66, 5.3]);
  return {
    boxes: [
      ...vents, ...boxAt([0, 3.72, -2.8], [1.2, 0.22, 2.1], 0.04),
      ...boxAt([0, 3.6, 5.4], [0.6, 0.04, 0.16], 0.01),
    ],
    resistors: [...ribs.flat(), ...bothSides(boxAt([0.55, 3.88, -2.8], [0.06, 0.2, 1.9], 0.015))],
    bright: [
      ...moved(horn, [0.1, 0, 0]), ...moved(horn, [-0.1, 0, -0.05]),
      // The bus bar from the pantograph to the resistors, and the aerial.
      ...tube([[0.3, 3.74, 1.35], [0.3, 3.86, 1.1], [0.3, 3.86, -1.4], [0.3, 3.8, -1.75]], 0.018),
      ...tube([[-0.4, 3.5, -5.6], [-0.4, 3.95, -5.7]], 0.01, 5),
    ],
    insulators: [0.9, -0.2, -1.2].flatMap((z) => moved(turned(lathe(
      [[0, 0.06], [0.06, 0.03], [0.1, 0.055], [0.14, 0.03], [0.18, 0.055], [0.24, 0.025],
       [0.24, 0]], 8), v.turnZ(90)), [0.3, 3.6, z])),
  };
}

// Places and radii of the lamps of one end: [x, y, z of the glass, radius].
export const headlights = [[0.86, 1.42, 7.25, 0.13], [-0.86, 1.42, 7.25, 0.13]];
export const topLight = [0, 3.2, 7.2, 0.12];
const tailLights = [[0.86, 1.72, 7.18, 0.07], [-0.86, 1.72, 7.18, 0.07]];

// The lens lies in the left half of its texture when it is white, in the right half when red.
function lens([x, y, z, radius], red) {
  const shape = alongZ(lathe([[z, radius * 0.86], [z + 0.02, radius * 0.5], [z + 0.025, 0]], 14));
  return shape.map(({ at }) => ({
    at: at.map((p) => v.add(p, [x, y, 0])),
    uv: at.map((p) => [(red ? 0.75 : 0.25) + (p[0] / radius) * 0.24, 0.5 - (p[1] / radius) * 0.48]),
  }));
}

const lampCase = ([x, y, z, radius], depth) => moved(alongZ(lathe(
  [[z - depth, radius * 0.7], [z - depth * 0.6, radius], [z + 0.015, radius],
   [z + 0.02, radius * 0.9], [z, radius * 0.86]], 14)), [x, y, 0]);

export function makeLamps() {
  const white = [...headlights, topLight];
  return {
    lenses: bothEnds([...white.flatMap((lamp) => lens(lamp, false)),
                      ...tailLights.flatMap((lamp) => lens(lamp, true))]),
    cases: bothEnds([...headlights.flatMap((lamp) => lampCase(lamp, 0.3)),
                     ...lampCase(topLight, 0.5),
                     ...tailLights.flatMap((lamp) => lampCase(lamp, 0.2))]),
  };
}

// Buffers' heads, handrails beside the doors and on the front.
export function makeBrightwork() {
  const rail = (z) => tube([[1.33, 1.25, z], [1.39, 1.28, z], [1.375, 2.2, z], [1.31, 2.23, z]],
                           0.014, 6);
  const front = tube([[0.62, 1.8, 7.2], [0.62, 1.8, 7.31], [-0.62, 1.8, 7.31], [-0.62, 1.8, 7.2]],
                     0.014, 6);
  return bothEnds([...bothSides([...buffer().plunger, ...rail(5.355)]), ...front]);
}

export const wiperPivot = [0.32, 1.93, 7.25];

// A wiper stands upright at rest; it turns about z.
export const makeWiper = () => [
  ...alongZ(cylinder(0.04, 0.022, 8)),
  ...tube([[0, 0, 0.03], [0, 0.42, 0.005]], 0.008, 5),
  ...tube([[0, 0.17, 0.002], [0, 0.67, -0.032]], 0.009, 4),
];

// Number plates: on both ends under the windows and on both sides.
export function makePlates() {
  const sheet = (width, height) => {
    const at = [[-1, -1], [1, -1], [1, 1], [-1, 1]].map(([x, y]) =>
      [(x * width) / 2, (y * height) / 2, 0]);
    return polygon(at, [[0, 1], [1, 1], [1, 0], [0, 0]]);
  };
  return bothEnds([...moved(sheet(0.72, 0.18), [0, 1.56, 7.28]),
                   ...moved(turned(sheet(1.0, 0.25), v.turnY(90)), [1.352, 1.5, 0])]);
}
