// A lineside signal with an artist's usual mistakes, one each; the README beside it tells them.
import { GltfFile } from './gltf.mjs';
import { makeMesh, makePrimitive } from './mesh.mjs';
import { blend, insideRounded, noise, paint, roughness } from './painting.mjs';
import { alongY, alongZ, boxAt, cylinder, lathe, moved, tube } from './shapes.mjs';
import { mix, smoothstep, turnZ } from './vector.mjs';

const armPivot = [0, 5.2, 0.16];

// A red arm with a white band.
function armPicture(u, v) {
  const edge = insideRounded(u - 0.5, (v - 0.5) * 0.25, 0.5, 0.125, 0.03);
  const white = smoothstep(0.7, 0.705, u) * smoothstep(0.84, 0.835, u);
  let colour = mix([0.66, 0.09, 0.07], [0.92, 0.91, 0.87], white);
  colour = blend(colour, [0.25, 0.2, 0.17], 0.25 * roughness(u * 12, v * 4, 3));
  colour = blend(colour, [0.3, 0.17, 0.1], 0.5 * smoothstep(0.6, 0.9, noise(u * 30, v * 9)));
  return blend(colour, [0.1, 0.08, 0.07], smoothstep(0.012, 0, edge) * 0.6);
}

// The whole picture on the front, its edge colours on the other sides.
function arm() {
  const [from, to, low, high] = [-0.35, 1.35, -0.14, 0.14];
  const place = ([x, y]) => [(x - from) / (to - from), (high - y) / (high - low)];
  return boxAt([(from + to) / 2, 0, 0], [to - from, high - low, 0.03], 0.006)
    .map(({ at }) => ({ at, uv: at.map(place) }));
}

const mast = () => [
  ...moved(alongY(lathe([[0, 0.11], [5.6, 0.07], [5.62, 0.1], [5.68, 0.1], [5.8, 0.04], [5.86, 0]],
                        14)), [0, 0.2, 0]),
  ...moved(alongZ(cylinder(0.12, 0.06, 10, 0.01)), [0, armPivot[1], 0.05]),
  ...boxAt([0, 4.3, 0.02], [0.5, 0.05, 0.3], 0.01),
];

const foundation = () => [...boxAt([0, 0.05, 0], [1, 0.5, 1], 0.06),
                          ...boxAt([0, 0.26, 0], [0.4, 0.1, 0.4], 0.02)];

function ladder() {
  const rails = [-0.17, 0.17].flatMap((x) => tube([[x, 0.1, -0.75], [x, 5, -0.2]], 0.02, 6));
  const rungs = Array.from({ length: 15 }, (_, i) => {
    const t = (i + 1) / 16;
    const [, y, z] = mix([0, 0.1, -0.75], [0, 5, -0.2], t);
    return tube([[-0.17, y, z], [0.17, y, z]], 0.014, 5);
  });
  return [...rails, ...rungs.flat()];
}

const lamp = () => [
  ...boxAt([0, 4.5, 0.05], [0.2, 0.3, 0.2], 0.03),
  ...moved(alongZ(lathe([[0, 0.08], [0.06, 0.09], [0.06, 0.075], [0.05, 0]], 12)), [0, 4.52, 0.15]),
  ...moved(alongY(cylinder(0.06, 0.05, 8)), [0, 4.65, 0.05]),
];

function withoutUvs(mesh) {
  return mesh.map((primitive) => ({ ...primitive, uvs: undefined }));
}

// Down to up in 40 frames.
const armTrack = (node) => ({
  node, path: 'rotation',
  keys: [[0, 0], [10, 0], [30, 48], [34, 43], [40, 45]]
    .map(([frame, degrees]) => ({ time: frame / 30, value: turnZ(degrees) })),
});

export function makeMistakes() {
  const file = new GltfFile({ 'arm.png': paint(256, 64, armPicture) });
  file.material('Mast', { colour: [0.5, 0.5, 0.47, 1] });
  file.material('arm m.onetex', { picture: 'arm.png', wrap: 'clamp' });
  file.material('concrete m.notex', { colour: [0.4, 0.39, 0.36, 1], roughness: 0.95 });
  file.material('lamp m.notex', { colour: [0.03, 0.03, 0.03, 1] });

  const armBone = { name: 'b.R.arm', at: armPivot, children: [
    { name: 'arm', mesh: makeMesh({ 'arm m.onetex': arm() }) }] };
  file.add({ name: 'signal', children: [
    { name: 'b.root', children: [armBone] },
    { name: 'mast', mesh: makeMesh({ Mast: mast() }) },
    { name: 'foundation', mesh: withoutUvs(makeMesh({ 'concrete m.notex': foundation() })) },
    { name: 'ladder', mesh: [makePrimitive(undefined, ladder())] },
    { name: 'lamp', mesh: makeMesh({ 'lamp m.notex': lamp() }) },
  ] });
  file.add({ name: 'b.lamp', at: [0, 4.5, 0.05] });
  file.animation('clear', [armTrack('b.R.arm')]);
  return file;
}
