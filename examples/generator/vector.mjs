// Points and directions are [x, y, z] in metres, y up, +z the front of the vehicle
// and so +x its left side.
// Rotations are unit quaternions [x, y, z, w].

export const add = (a, b) => a.map((value, i) => value + b[i]);
export const subtract = (a, b) => a.map((value, i) => value - b[i]);
export const scale = (a, factor) => a.map((value) => value * factor);
export const dot = (a, b) => a.reduce((sum, value, i) => sum + value * b[i], 0);
export const length = (a) => Math.sqrt(dot(a, a));
export const distance = (a, b) => length(subtract(a, b));
export const mix = (a, b, t) => a.map((value, i) => value + (b[i] - value) * t);

export function normalize(a) {
  const size = length(a);
  return size > 0 ? scale(a, 1 / size) : a;
}

export const cross = (a, b) => [
  a[1] * b[2] - a[2] * b[1],
  a[2] * b[0] - a[0] * b[2],
  a[0] * b[1] - a[1] * b[0],
];

export const radians = (degrees) => (degrees * Math.PI) / 180;

export function turnAbout(axis, degrees) {
  const half = radians(degrees) / 2;
  return [...scale(normalize(axis), Math.sin(half)), Math.cos(half)];
}

export const turnX = (degrees) => turnAbout([1, 0, 0], degrees);
export const turnY = (degrees) => turnAbout([0, 1, 0], degrees);
export const turnZ = (degrees) => turnAbout([0, 0, 1], degrees);

// b first, then a.
export function compose(a, b) {
  const [ax, ay, az, aw] = a;
  const [bx, by, bz, bw] = b;
  return [
    aw * bx + ax * bw + ay * bz - az * by,
    aw * by - ax * bz + ay * bw + az * bx,
    aw * bz + ax * by - ay * bx + az * bw,
    aw * bw - ax * bx - ay * by - az * bz,
  ];
}

export function rotate(quaternion, point) {
  const axis = quaternion.slice(0, 3);
  const twice = scale(cross(axis, point), 2);
  return add(add(point, scale(twice, quaternion[3])), cross(axis, twice));
}

// 0 at the first edge and before, 1 at the second and after, without a jerk at either.
export function smoothstep(edge0, edge1, value) {
  const t = Math.min(1, Math.max(0, (value - edge0) / (edge1 - edge0)));
  return t * t * (3 - 2 * t);
}
