// The gangway between two vehicles: bellows that three bones bend, and two air hoses below.
import { GltfFile } from './gltf.mjs';
import { makePrimitive } from './mesh.mjs';
import { blend, paint, roughness } from './painting.mjs';
import { bothSides, box, boxAt, boxMapped, loft, moved, reversed, tube, turned }
  from './shapes.mjs';
import { compose, mix, smoothstep, turnX, turnY, turnZ } from './vector.mjs';

const halfLength = 0.5;
const floorHeight = 1.05;
const joints = [
  { name: 'b.rear', at: [0, floorHeight, -halfLength] },
  { name: 'b.middle', at: [0, floorHeight, 0] },
  { name: 'b.front', at: [0, floorHeight, halfLength] },
];

// Weights in 256ths add up to exactly 1.
function weights(rear, front) {
  const shares = [Math.round(rear * 256), 0, Math.round(front * 256)];
  shares[1] = 256 - shares[0] - shares[2];
  return shares.map((share, joint) => ({ joint, weight: share / 256 }))
    .filter(({ weight }) => weight > 0);
}

const along = (z) => Math.min(1, Math.max(0, (z + halfLength) / (2 * halfLength)));

// Up to three bones a vertex: the ends belong to their vehicle, the rest bends without a kink.
function smoothWeights([, , z]) {
  const t = along(z);
  return weights((1 - t) ** 2, t ** 2);
}

// Up to two bones a vertex: a straight blend from each bone to the next.
function straightWeights([, , z]) {
  const t = along(z);
  return weights(Math.max(0, 1 - 2 * t), Math.max(0, 2 * t - 1));
}

// The section of the passage, counter-clockwise as seen from the front.
function section(z, grow) {
  const [halfWidth, low, high, radius] = [0.6 + grow, 0.98 - grow, 3.02 + grow, 0.16];
  const corners = [[1, 0], [1, 1], [0, 1], [0, 0]];
  const arcs = corners.flatMap(([right, top], quarter) => Array.from({ length: 4 }, (_, i) => {
    const angle = (Math.PI / 2) * (quarter - 1 + i / 3);
    return [(right ? 1 : -1) * (halfWidth - radius) + radius * Math.cos(angle),
            (top ? high - radius : low + radius) + radius * Math.sin(angle), z];
  }));
  // The long sides get points of their own, so that they bend, too.
  return arcs.flatMap((point, i) =>
    (i % 4 === 3 ? [point, mix(point, arcs[(i + 1) % arcs.length], 0.5)] : [point]));
}

function folds() {
  const count = 9;
  const length = 2 * halfLength - 0.08;
  const rings = Array.from({ length: count * 2 + 1 }, (_, i) =>
    section((i / (count * 2) - 0.5) * length, i % 2 === 0 ? 0 : 0.075));
  const tiles = ([u, v]) => [u * 8, v * count];
  const outside = loft(rings).map(({ at, uv }) => ({ at, uv: uv.map(tiles) }));
  return [...outside, ...reversed(outside)];
}

const frames = () => [-halfLength, halfLength].flatMap((z) => [
  ...bothSides(boxAt([0.64, 2, z], [0.1, 2.2, 0.08], 0.012)),
  ...boxAt([0, 0.94, z], [1.18, 0.1, 0.08], 0.012),
  ...boxAt([0, 3.06, z], [1.18, 0.1, 0.08], 0.012),
  // The canvas is round at the corners.
  ...bothSides([[1.02, -45], [2.98, 45]].flatMap(([y, degrees]) => boxMapped(
    moved(turned(box([0.1, 0.3, 0.07], 0.012), turnZ(degrees)), [0.55, y, z])))),
]);

function hoses() {
  const hose = Array.from({ length: 13 }, (_, i) => {
    const z = (i / 12 - 0.5) * 2 * halfLength;
    return [0, 0.86 - 0.32 * (1 - (z / halfLength) ** 2), z];
  });
  return bothSides(moved(tube(hose, 0.028, 8), [0.32, 0, 0]));
}

// Canvas with a seam along every fold's edge; one fold is one tile high.
function canvas(u, v) {
  const weave = 0.5 + 0.25 * Math.sin(u * 256 * Math.PI / 4) * Math.sin(v * 256 * Math.PI / 4);
  let colour = mix([0.085, 0.085, 0.09], [0.14, 0.138, 0.135], weave);
  const fromRidge = Math.abs(v - 0.5);
  const stitch = Math.abs(((u * 24) % 1) - 0.5) < 0.3 && Math.abs(fromRidge - 0.06) < 0.012;
  if (stitch) colour = [0.42, 0.4, 0.36];
  colour = blend(colour, [0.03, 0.03, 0.03], smoothstep(0.38, 0.5, fromRidge) * 0.8);
  const dust = smoothstep(0.5, 0.9, roughness(u * 4, v * 4, 3, 4));
  return blend(colour, [0.33, 0.29, 0.23], 0.35 * dust);
}

// Seen from the rear vehicle, the front one runs through a bend to the right and one to the left,
// and nods.
function tracks() {
  const [framesPerSecond, lastFrame, step] = [30, 90, 3];
  const wave = (frame, delay) => Math.sin(((frame - delay) / lastFrame) * 2 * Math.PI);
  // Nothing moves on the first and on the last frame.
  const calm = (frame) => smoothstep(0, 15, frame) * smoothstep(lastFrame, lastFrame - 15, frame);
  const keysOf = (valueAt) => Array.from({ length: lastFrame / step + 1 }, (_, i) =>
    ({ time: (i * step) / framesPerSecond, value: valueAt(i * step, calm(i * step)) }));
  const shares = { 'b.rear': 0, 'b.middle': 0.5, 'b.front': 1 };
  return joints.filter(({ name }) => shares[name] > 0).flatMap(({ name, at: [x, y, z] }) => {
    const share = shares[name];
    return [
      { node: name, path: 'rotation', keys: keysOf((frame, amount) => compose(
        turnY(-14 * share * amount * wave(frame, 0)),
        compose(turnX(3 * share * amount * wave(frame, 20)),
                turnZ(2 * share * amount * wave(frame, 35))))) },
      { node: name, path: 'translation', keys: keysOf((frame, amount) => [
        x - 0.16 * share * share * amount * wave(frame, 0),
        y + 0.03 * share * amount * wave(frame, 20), z]) },
    ];
  });
}

export function makeBellows() {
  const file = new GltfFile({ 'canvas.png': paint(128, 128, canvas) });
  file.material('bellows m.onetex', { picture: 'canvas.png', roughness: 0.95 });
  file.material('frame m.notex', { colour: [0.28, 0.28, 0.27, 1], roughness: 0.6 });
  file.material('hose m.notex', { colour: [0.02, 0.02, 0.02, 1], roughness: 0.5 });
  file.add({ name: 'gangway', children: [{ name: 'b.gangway', children: joints }] });
  // One mesh: the exporter keeps the weights of a model's first mesh only.
  file.add({ name: 'bellows', mesh: [
    makePrimitive('bellows m.onetex', folds(), { crease: 30, weightsOf: smoothWeights }),
    makePrimitive('frame m.notex', frames(), { weightsOf: smoothWeights }),
    makePrimitive('hose m.notex', hoses(), { weightsOf: straightWeights }),
  ] });
  file.skin('bellows', joints);
  file.animation('bends', tracks());
  return file;
}
