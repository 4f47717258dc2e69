// From shapes to what a graphics card draws: triangles with normals, each vertex once.
import * as v from './vector.mjs';

// Corners closer than this are one position, so that shapes that touch are smoothed together.
const grid = 1e-5;
const snap = (point) => point.map((value) => Math.round(value / grid) * grid);
const keyOf = (numbers) => numbers.map((value) => Math.round(value * 1e5) || 0).join();

function triangulate(shape) {
  const triangles = [];
  for (const { at, uv } of shape) {
    for (let i = 2; i < at.length; ++i) {
      const corners = [0, i - 1, i];
      const points = corners.map((corner) => snap(at[corner]));
      const area = v.cross(v.subtract(points[1], points[0]), v.subtract(points[2], points[0]));
      if (v.length(area) < 1e-9) continue;
      triangles.push({ at: points, uv: corners.map((corner) => uv[corner]), area });
    }
  }
  return triangles;
}

// Neighbours in a fan are joined when the edge between their faces is flatter than the crease
// angle. A normal leans to the larger faces, which makes bevels look round.
function smooth(triangles, creaseDegrees) {
  const corners = new Map();
  for (const triangle of triangles) {
    triangle.normal = [];
    triangle.at.forEach((point, corner) => {
      const key = keyOf(point);
      if (!corners.has(key)) corners.set(key, []);
      corners.get(key).push({ triangle, corner, flat: v.normalize(triangle.area) });
    });
  }
  const limit = Math.cos(v.radians(creaseDegrees));
  for (const fan of corners.values()) {
    const waiting = new Set(fan);
    for (const first of fan) {
      if (!waiting.delete(first)) continue;
      const joined = [first];
      for (const one of joined) {
        for (const other of waiting) {
          if (v.dot(one.flat, other.flat) < limit) continue;
          waiting.delete(other);
          joined.push(other);
        }
      }
      const normal = v.normalize(joined.map(({ triangle }) => triangle.area).reduce(v.add));
      for (const { triangle, corner } of joined) triangle.normal[corner] = normal;
    }
  }
}

// One material's part of a mesh. weightsOf, when given, tells the joints that move a point, as
// [{ joint, weight }, ...].
export function makePrimitive(material, shape, { crease = 50, weightsOf } = {}) {
  const triangles = triangulate(shape);
  smooth(triangles, crease);
  const primitive = { material, positions: [], normals: [], uvs: [], indices: [] };
  if (weightsOf) primitive.weights = [];
  const known = new Map();
  for (const { at, uv, normal } of triangles) {
    for (let corner = 0; corner < 3; ++corner) {
      const key = keyOf([...at[corner], ...normal[corner], ...uv[corner]]);
      if (!known.has(key)) {
        known.set(key, primitive.positions.length);
        primitive.positions.push(at[corner]);
        primitive.normals.push(normal[corner]);
        primitive.uvs.push(uv[corner]);
        if (weightsOf) primitive.weights.push(weightsOf(at[corner]));
      }
      primitive.indices.push(known.get(key));
    }
  }
  return primitive;
}

// For normal maps: the direction in which u grows, and the side on which v grows upwards.
export function makeTangents({ positions, normals, uvs, indices }) {
  const along = positions.map(() => [0, 0, 0]);
  const across = positions.map(() => [0, 0, 0]);
  for (let i = 0; i < indices.length; i += 3) {
    const [a, b, c] = indices.slice(i, i + 3);
    const [p, q] = [b, c].map((corner) => v.subtract(positions[corner], positions[a]));
    const [s, t] = [b, c].map((corner) => v.subtract(uvs[corner], uvs[a]));
    const area = s[0] * t[1] - t[0] * s[1];
    if (area === 0) continue;
    const du = v.scale(v.subtract(v.scale(p, t[1]), v.scale(q, s[1])), 1 / area);
    const dv = v.scale(v.subtract(v.scale(p, t[0]), v.scale(q, s[0])), 1 / area);
    for (const corner of [a, b, c]) {
      along[corner] = v.add(along[corner], du);
      across[corner] = v.add(across[corner], dv);
    }
  }
  return normals.map((normal, i) => {
    const flat = v.subtract(along[i], v.scale(normal, v.dot(normal, along[i])));
    const tangent = v.normalize(flat);
    return [...tangent, v.dot(v.cross(normal, tangent), across[i]) < 0 ? -1 : 1];
  });
}

// A mesh of several materials from { material name: shape }.
export function makeMesh(shapes, options) {
  return Object.entries(shapes).map(([name, shape]) => makePrimitive(name, shape, options));
}

// Shapes are modelled where they stand on the vehicle; a mesh wants its bone at the origin.
export function makeMeshAround(pivot, shapes, options) {
  const back = ({ at, uv }) => ({ at: at.map((point) => v.subtract(point, pivot)), uv });
  const entries = Object.entries(shapes).map(([name, shape]) => [name, shape.map(back)]);
  return makeMesh(Object.fromEntries(entries), options);
}
