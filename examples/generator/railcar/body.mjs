// The car body: a shell lofted over the plan's outline, with holes for windows and doors. It is the
// same from both ends, so half of it is modelled, from the middle of the front along the left side
// (+x) to the middle of the rear, and turned.
import { bothEnds, boxAt, boxMapped, polygon, reversed } from '../shapes.mjs';
import * as v from '../vector.mjs';

const noseCentre = 5.9;

// [x, z] of the outline at floor height, and what stands between a column and the next.
const nose = [[0, 7.3], [0.05, 7.3, 'window'], [0.6, 7.3], [0.68, 7.275, 'window'], [1.12, 6.98],
              [1.245, 6.82], [1.32, 6.6], [1.35, 6.34]];
const passengerWindows = Array.from({ length: 6 }, (_, i) => 4.05 - 1.39 * i)
  .flatMap((z) => [[1.35, z, 'window'], [1.35, z - 1.15]]);
const side = [[1.35, 6.14, 'window'], [1.35, 5.44], [1.35, 5.27, 'door'], [1.35, 4.23],
              ...passengerWindows, [1.35, -4.23, 'door'], [1.35, -5.27],
              [1.35, -5.44, 'window'], [1.35, -6.14]];
const rearNose = [[1.35, -6.34], [1.32, -6.6], [1.245, -6.82], [1.12, -6.98, 'window'],
                  [0.68, -7.275], [0.6, -7.3, 'window'], [0.05, -7.3], [0, -7.3]];
const columns = [...nose, ...side, ...rearNose].map(([x, z, opening]) => ({ x, z, opening }));
columns.reduce((along, column, i) => {
  const last = columns[Math.max(0, i - 1)];
  column.along = along + v.distance([column.x, column.z], [last.x, last.z]);
  return column.along;
}, 0);

// Length of half the outline; the livery covers it, and these heights above the rail.
export const outlineLength = columns.at(-1).along;
export const liveryBottom = 0.92;
export const liveryTop = 3.06;
// Places of the openings along the outline, for the painter.
export const openings = columns.flatMap(({ opening, along }, i) =>
  (opening ? [{ opening, from: along, to: columns[i + 1].along }] : []));

export const floorHeight = 1.05;
const sole = 1;
export const doorTop = 2.88;
const windowBottom = 1.98;
const cornice = 3;

// A row is { y, wide, deep }: the outline's scale across, and along at the noses.
const wallRow = (y) => ({ y, wide: 1 - 0.0125 * (y - sole), deep: 1 - 0.05 * (y - sole) });
const wallRows = [{ y: 0.93, wide: 0.955, deep: 0.95 }, { y: 0.965, wide: 0.99, deep: 0.988 },
                  wallRow(sole), wallRow(windowBottom), wallRow(doorTop), wallRow(cornice),
                  { y: 3.015, wide: 1, deep: 0.93 }, { y: 3.045, wide: 1, deep: 0.93 }];
const roofRows = [{ y: 3.045, wide: 1, deep: 0.93 }, { y: 3.055, wide: 0.97, deep: 0.9 },
                  { y: 3.18, wide: 0.925, deep: 0.86 }, { y: 3.32, wide: 0.83, deep: 0.77 },
                  { y: 3.45, wide: 0.67, deep: 0.62 }, { y: 3.55, wide: 0.45, deep: 0.42 },
                  { y: 3.605, wide: 0.2, deep: 0.2 }, { y: 3.615, wide: 0, deep: 0 }];

function place({ x, z }, { y, wide, deep }, lining = 0) {
  const beyond = Math.max(0, Math.abs(z) - noseCentre);
  const depth = deep * (1 - lining / 1.4);
  return [x * wide * (1 - lining / 1.35), y,
          Math.sign(z) * (Math.abs(z) - beyond + beyond * depth)];
}

const liveryUv = ({ along }, y) =>
  [along / outlineLength, (liveryTop - y) / (liveryTop - liveryBottom)];

function cell(left, right, bottom, top) {
  const corners = [[left, bottom], [right, bottom], [right, top], [left, top]];
  return { at: corners.map(([column, row]) => place(column, row)),
           uv: corners.map(([column, row]) => liveryUv(column, row.y)) };
}

const bilinear = ([a, b, c, d], s, t) => v.mix(v.mix(a, b, s), v.mix(d, c, s), t);

// The rounded outline of a window in a cell, counter-clockwise, as places 0..1 in the cell, grouped
// by corner.
function roundedOutline(width, height, inset, radius, segments = 3) {
  const centres = [[1, 0], [1, 1], [0, 1], [0, 0]];
  return centres.map(([right, top], quarter) =>
    Array.from({ length: segments + 1 }, (_, i) => {
      const angle = (Math.PI / 2) * (quarter - 1 + i / segments);
      const r = Math.max(radius - inset, 0.01);
      const x = (right ? width - inset - r : inset + r) + r * Math.cos(angle);
      const y = (top ? height - inset - r : inset + r) + r * Math.sin(angle);
      return [x / width, y / height];
    }));
}

// A window that fills a cell: what is left of the wall at its corners, a frame and the pane.
export function windowIn(at, uv, { radius = 0.1, frameWidth = 0.035, depth = 0.03 } = {}) {
  const width = v.distance(at[0], at[1]);
  const height = v.distance(at[0], at[3]);
  const normal = v.normalize(v.cross(v.subtract(at[1], at[0]), v.subtract(at[3], at[0])));
  const outlineOf = (inset) => roundedOutline(width, height, inset, radius).flat();
  const ringOf = (inset, out) => outlineOf(inset)
    .map(([s, t]) => v.add(bilinear(at, s, t), v.scale(normal, out)));

  const cellCorners = [1, 2, 3, 0];
  const wall = roundedOutline(width, height, 0, radius).flatMap((arc, quarter) =>
    arc.slice(1).flatMap((point, i) => {
      const corner = cellCorners[quarter];
      const [p, q] = [arc[i], point];
      return polygon([at[corner], bilinear(at, ...q), bilinear(at, ...p)],
                     [uv[corner], bilinear(uv, ...q), bilinear(uv, ...p)]);
    }));

  const rings = [ringOf(0, 0), ringOf(frameWidth * 0.6, 0.014), ringOf(frameWidth, -depth)];
  const count = rings[0].length;
  const frame = rings.slice(1).flatMap((inner, band) => inner.flatMap((_, i) => {
    const next = (i + 1) % count;
    const u = [i / count, (i + 1) / count];
    return polygon([rings[band][i], rings[band][next], inner[next], inner[i]],
                   [[u[0], band / 2], [u[1], band / 2], [u[1], (band + 1) / 2],
                    [u[0], (band + 1) / 2]]);
  }));
  const pane = polygon(rings[2], outlineOf(frameWidth).map(([s, t]) => [s, 1 - t]));
  return { wall, frame, pane };
}

function shellHalf() {
  const parts = { livery: [], roof: [], frames: [], panes: [] };
  for (let c = 0; c + 1 < columns.length; ++c) {
    const [left, right] = [columns[c], columns[c + 1]];
    for (let r = 0; r + 1 < wallRows.length; ++r) {
      const [bottom, top] = [wallRows[r], wallRows[r + 1]];
      const { at, uv } = cell(left, right, bottom, top);
      const isWindow = left.opening === 'window' && bottom.y === windowBottom;
      const isDoor = left.opening === 'door' && bottom.y >= sole && top.y <= doorTop;
      if (isWindow) {
        const { wall, frame, pane } = windowIn(at, uv);
        parts.livery.push(...wall);
        parts.frames.push(...frame);
        parts.panes.push(...pane);
      } else if (!isDoor) {
        parts.livery.push(...polygon(at, uv));
      }
    }
  }
  parts.roof = roofHalf();
  return parts;
}

// The straight part needs no columns for windows.
function roofHalf() {
  const straight = [6.14, 3, 0, -3, -6.14].map((z) => ({ x: 1.35, z }));
  const roofColumns = [...columns.slice(0, nose.length), ...straight,
                       ...columns.slice(-rearNose.length)];
  const metresPerTile = 2;
  return roofRows.slice(1).flatMap((top, r) => roofColumns.slice(1).flatMap((right, c) => {
    const left = roofColumns[c];
    const bottom = roofRows[r];
    const at = [place(left, bottom), place(right, bottom), place(right, top), place(left, top)];
    return polygon(at, at.map(([x, , z]) => [x / metresPerTile, z / metresPerTile]));
  }));
}

// What is seen through the windows: walls, the doors' jambs.
function interiorHalf() {
  const thickness = 0.06;
  const rows = [wallRow(floorHeight), wallRow(windowBottom), wallRow(doorTop), wallRow(cornice)];
  const walls = columns.slice(1).flatMap((right, c) => rows.slice(1).flatMap((top, r) => {
    const left = columns[c];
    const bottom = rows[r];
    const open = left.opening === 'window' ? r === 1 : left.opening === 'door' && r < 2;
    if (open) return [];
    const at = [[left, bottom], [right, bottom], [right, top], [left, top]]
      .map(([column, row]) => place(column, row, thickness));
    return polygon(at, at.map(([, y, z]) => [z, -y]));
  }));
  const jambs = columns.slice(1).flatMap((right, c) => {
    const left = columns[c];
    if (left.opening !== 'door') return [];
    const [bottom, top] = [wallRow(sole), wallRow(doorTop)];
    const around = [[left, bottom], [right, bottom], [right, top], [left, top]];
    return around.flatMap((from, i) => {
      const to = around[(i + 1) % 4];
      return polygon([place(...from), place(...to), place(...to, thickness),
                      place(...from, thickness)], [[0, 0], [1, 0], [1, 0.1], [0, 0.1]]);
    });
  });
  return [...reversed(walls), ...jambs];
}

function plate(row) {
  const outline = columns.map((column) => place(column, row));
  const ring = [...outline, ...outline.slice(1, -1).map(([x, y, z]) => [-x, y, -z])];
  return boxMapped(polygon(ring, ring));
}

export function makeBenches() {
  const places = [3.1, 1.9, 0.7, -0.7, -1.9, -3.1];
  return [-0.8, 0.8].flatMap((x) => places.flatMap((z) => [
    ...boxAt([x, floorHeight + 0.42, z], [0.85, 0.14, 0.95]),
    ...boxAt([x, floorHeight + 0.8, z], [0.85, 0.66, 0.12]),
  ]));
}

const cab = () => [
  ...boxAt([0, floorHeight + 0.45, 6.75], [1.9, 0.9, 0.4], 0.03),
  ...boxAt([0.45, floorHeight + 0.45, 6.05], [0.45, 0.1, 0.45]),
  ...boxAt([0.45, floorHeight + 0.85, 5.85], [0.45, 0.7, 0.08]),
  ...boxAt([0.83, floorHeight + 0.94, 5.36], [0.9, 1.88, 0.05]),
  ...boxAt([-0.83, floorHeight + 0.94, 5.36], [0.9, 1.88, 0.05]),
];

export function makeShell() {
  const half = shellHalf();
  return Object.fromEntries(Object.entries(half).map(([name, shape]) => [name, bothEnds(shape)]));
}

export const makeUnderside = () => reversed(plate(wallRows[0]));

export const makeInterior = () => [...bothEnds([...interiorHalf(), ...cab()]),
                                   ...plate({ y: floorHeight, wide: 0.955, deep: 0.955 }),
                                   ...reversed(plate({ y: 2.98, wide: 0.93, deep: 0.86 }))];

// The leaf of the left door that is nearer to the front (0) or to the rear (1): { pivot, livery,
// frames, panes, inside }.
export function makeDoor(which) {
  const from = columns.findIndex(({ opening, z }) => opening === 'door' && (which ? z < 0 : z > 0));
  const [first, last] = [columns[from], columns[from + 1]];
  const across = (t) => ({ x: 1.35, z: v.mix([first.z], [last.z], t)[0],
                           along: v.mix([first.along], [last.along], t)[0] });
  const leafColumns = [0.004, 0.13, 0.87, 0.996].map(across);
  const leafRows = [sole + 0.01, 1.62, 2.72, doorTop - 0.004].map(wallRow);
  const recess = 0.018;
  const inward = ([x, y, z]) => [x - recess, y, z];
  const leaf = { pivot: [1.35, sole, (first.z + last.z) / 2], livery: [], frames: [], panes: [] };
  for (let c = 0; c < 3; ++c) {
    for (let r = 0; r < 3; ++r) {
      const { at, uv } = cell(leafColumns[c], leafColumns[c + 1], leafRows[r], leafRows[r + 1]);
      const recessed = at.map(inward);
      if (c === 1 && r === 1) {
        const { wall, frame, pane } = windowIn(recessed, uv, { frameWidth: 0.03, depth: 0.02 });
        leaf.livery.push(...wall);
        leaf.frames.push(...frame);
        leaf.panes.push(...pane);
      } else {
        leaf.livery.push(...polygon(recessed, uv));
      }
    }
  }
  leaf.inside = doorInside(leafColumns, leafRows, inward);
  return leaf;
}

function doorInside(leafColumns, leafRows, inward) {
  const thickness = 0.04;
  const outer = [[0, 0], [3, 0], [3, 3], [0, 3]]
    .map(([c, r]) => inward(place(leafColumns[c], leafRows[r])));
  const inner = outer.map(([x, y, z]) => [x - thickness, y, z]);
  const edges = outer.flatMap((_, i) => {
    const next = (i + 1) % 4;
    return polygon([inner[i], inner[next], outer[next], outer[i]],
                   [[0, 0.1], [1, 0.1], [1, 0], [0, 0]]);
  });
  const back = [];
  for (let c = 0; c < 3; ++c) {
    for (let r = 0; r < 3; ++r) {
      if (c === 1 && r === 1) continue;
      const at = [[c, r], [c + 1, r], [c + 1, r + 1], [c, r + 1]]
        .map(([column, row]) => inward(place(leafColumns[column], leafRows[row])))
        .map(([x, y, z]) => [x - thickness, y, z]);
      back.push(...polygon(at.toReversed(), at.map(([, y, z]) => [z, -y])));
    }
  }
  return [...edges, ...back];
}
