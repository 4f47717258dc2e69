// A shape is a list of polygons, a polygon is { at: points, uv: texture coordinates }: convex, its
// corners counter-clockwise as seen from outside.
import * as v from './vector.mjs';

const same = (a, b) => v.distance(a, b) < 1e-6;

// Leaves out corners that coincide, so that grids may close to a point. Empty when nothing is left.
export function polygon(at, uv) {
  const kept = at.map((_, i) => i).filter((i) => !same(at[i], at[(i + 1) % at.length]));
  if (kept.length < 3) return [];
  return [{ at: kept.map((i) => at[i]), uv: kept.map((i) => uv[i]) }];
}

export function mapPoints(shape, change) {
  return shape.map(({ at, uv }) => ({ at: at.map(change), uv }));
}

export const moved = (shape, offset) => mapPoints(shape, (p) => v.add(p, offset));
export const turned = (shape, quaternion) => mapPoints(shape, (p) => v.rotate(quaternion, p));

export function reversed(shape) {
  return shape.map(({ at, uv }) => ({ at: at.toReversed(), uv: uv.toReversed() }));
}

// The other side of the vehicle.
export const mirrored = (shape) => reversed(mapPoints(shape, ([x, y, z]) => [-x, y, z]));
export const bothSides = (shape) => [...shape, ...mirrored(shape)];
// The other end of the vehicle.
export const halfTurned = (shape) => mapPoints(shape, ([x, y, z]) => [-x, y, -z]);
export const bothEnds = (shape) => [...shape, ...halfTurned(shape)];

export function polygonNormal(at) {
  let sum = [0, 0, 0];
  for (let i = 2; i < at.length; ++i) {
    sum = v.add(sum, v.cross(v.subtract(at[i - 1], at[0]), v.subtract(at[i], at[0])));
  }
  return v.normalize(sum);
}

// Texture coordinates as if six pictures of the given size were projected along the axes.
export function boxMapped(shape, metres = 1) {
  return shape.map(({ at }) => {
    const n = polygonNormal(at);
    const [ax, ay, az] = n.map(Math.abs);
    const flat = ([x, y, z]) => {
      if (ax >= ay && ax >= az) return [-Math.sign(n[0]) * z, -y];
      return ay >= az ? [x, Math.sign(n[1]) * z] : [Math.sign(n[2]) * x, -y];
    };
    return { at, uv: at.map((p) => v.scale(flat(p), 1 / metres)) };
  });
}

const noUv = (points) => points.map(() => [0, 0]);

// A box around the origin. A bevel cuts all edges off at 45 degrees.
export function box([sx, sy, sz], bevel = 0) {
  const half = [sx / 2, sy / 2, sz / 2];
  const shape = [];
  // The corner at the given signs, as it lies on the face across the given axis.
  const corner = (signs, axis) =>
    signs.map((sign, i) => sign * (i === axis ? half[i] : half[i] - bevel));
  const put = (points) => {
    const centre = v.scale(points.reduce(v.add), 1 / points.length);
    const outward = v.dot(polygonNormal(points), centre) > 0;
    shape.push(...polygon(outward ? points : points.toReversed(), noUv(points)));
  };
  const signsOf = (axis, sign, a, b) => {
    const signs = [a, b];
    signs.splice(axis, 0, sign);
    return signs;
  };
  for (const axis of [0, 1, 2]) {
    const next = (axis + 1) % 3;
    const other = (axis + 2) % 3;
    for (const sign of [-1, 1]) {
      const around = [[-1, -1], [1, -1], [1, 1], [-1, 1]];
      put(around.map(([a, b]) => corner(signsOf(axis, sign, a, b), axis)));
      if (bevel === 0) continue;
      for (const side of [-1, 1]) {
        const ends = [-1, 1].map((end) => {
          const signs = [0, 0, 0];
          [signs[axis], signs[next], signs[other]] = [sign, side, end];
          return signs;
        });
        put([corner(ends[0], axis), corner(ends[1], axis), corner(ends[1], next),
             corner(ends[0], next)]);
      }
    }
  }
  if (bevel > 0) {
    for (const x of [-1, 1]) for (const y of [-1, 1]) for (const z of [-1, 1]) {
      put([0, 1, 2].map((axis) => corner([x, y, z], axis)));
    }
  }
  return boxMapped(shape);
}

export const boxAt = (centre, size, bevel = 0) => boxMapped(moved(box(size, bevel), centre));

// Joins rings of equally many points. A ring runs counter-clockwise as seen from the last ring; u
// goes once around, v from the first ring to the last.
export function loft(rings, { closed = true, capStart = false, capEnd = false } = {}) {
  const shape = [];
  const count = rings[0].length;
  const last = rings.length - 1;
  const uvOf = (ring, i) => [i / (closed ? count : count - 1), 1 - ring / last];
  for (let r = 0; r < last; ++r) {
    for (let i = 0; i < (closed ? count : count - 1); ++i) {
      const next = (i + 1) % count;
      shape.push(...polygon(
        [rings[r][i], rings[r][next], rings[r + 1][next], rings[r + 1][i]],
        [uvOf(r, i), uvOf(r, i + 1), uvOf(r + 1, i + 1), uvOf(r + 1, i)]));
    }
  }
  const cap = (ring) => boxMapped(polygon(ring, noUv(ring)));
  if (capStart) shape.push(...cap(rings[0].toReversed()));
  if (capEnd) shape.push(...cap(rings[last]));
  return shape;
}

// Turns a profile of [x, radius] around the x axis; x grows along the profile's outer side.
export function lathe(profile, segments) {
  const ringOf = ([x, radius]) => Array.from({ length: segments }, (_, i) => {
    const angle = (2 * Math.PI * i) / segments;
    return [x, radius * Math.cos(angle), radius * Math.sin(angle)];
  });
  return loft(profile.map(ringOf));
}

export const alongY = (shape) => turned(shape, v.turnZ(90));
export const alongZ = (shape) => turned(shape, v.turnY(-90));

// A capped cylinder from the origin along x.
export function cylinder(size, radius, segments, bevel = 0) {
  const ends = bevel > 0
    ? [[0, 0], [0, radius - bevel], [bevel, radius], [size - bevel, radius],
       [size, radius - bevel], [size, 0]]
    : [[0, 0], [0, radius], [size, radius], [size, 0]];
  return lathe(ends, segments);
}

// A bent pipe through the given points.
export function tube(path, radius, sides = 6) {
  const rings = path.map((point, i) => {
    const before = path[Math.max(0, i - 1)];
    const after = path[Math.min(path.length - 1, i + 1)];
    const along = v.normalize(v.subtract(after, before));
    const helper = Math.abs(along[1]) < 0.9 ? [0, 1, 0] : [1, 0, 0];
    const side = v.normalize(v.cross(along, helper));
    const up = v.cross(side, along);
    return Array.from({ length: sides }, (_, k) => {
      const angle = (-2 * Math.PI * k) / sides;
      const outward = v.add(v.scale(side, Math.cos(angle)), v.scale(up, Math.sin(angle)));
      return v.add(point, v.scale(outward, radius));
    });
  });
  return loft(rings, { capStart: true, capEnd: true });
}

// A beam along z with a rectangular section that changes from station to station. A station is
// { z, bottom, top, inner, outer }, the last two along x.
export function beam(stations, bevel) {
  const ring = ({ z, bottom, top, inner, outer }) => [
    [outer - bevel, bottom, z], [outer, bottom + bevel, z], [outer, top - bevel, z],
    [outer - bevel, top, z], [inner + bevel, top, z], [inner, top - bevel, z],
    [inner, bottom + bevel, z], [inner + bevel, bottom, z],
  ];
  return boxMapped(loft(stations.map(ring), { capStart: true, capEnd: true }));
}
