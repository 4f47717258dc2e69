// Bogies and wheelsets, around the bogie's pivot: heights are still above the rail, z counts from
// the pivot.
import { alongY, beam, bothEnds, bothSides, boxAt, cylinder, lathe, moved } from '../shapes.mjs';

export const pivotDistance = 4.6;
export const axleDistance = 1;
export const wheelRadius = 0.42;

// From the middle of the axle outwards: hub, web, back of the rim, flange, tread, face.
const wheelProfile = [
  [0, 0.075], [0.64, 0.075], [0.64, 0.13], [0.72, 0.3], [0.685, 0.34], [0.68, 0.432],
  [0.688, 0.449], [0.702, 0.447], [0.716, wheelRadius + 0.003], [0.81, wheelRadius - 0.003],
  [0.818, 0.408], [0.815, 0.35], [0.775, 0.315], [0.765, 0.15], [0.83, 0.12], [0.83, 0],
];

// Its texture is a picture of a wheel, seen from the side.
export function makeWheelset() {
  const otherWheel = wheelProfile.toReversed().slice(0, -1).map(([x, radius]) => [-x, radius]);
  const shape = lathe([...otherWheel, ...wheelProfile], 20);
  const size = 0.92;
  const uvOf = ([, y, z]) => [0.5 + z / size, 0.5 - y / size];
  return shape.map(({ at }) => ({ at, uv: at.map(uvOf) }));
}

function coilSpring(x, z, bottom, top, radius) {
  const turns = 3;
  const pitch = (top - bottom) / turns;
  const profile = Array.from({ length: turns }, (_, i) => [
    [bottom + i * pitch, radius - 0.025], [bottom + (i + 0.5) * pitch, radius],
  ]).flat();
  return moved(alongY(lathe([...profile, [top, radius - 0.025]], 8)), [x, 0, z]);
}

const sideFrame = () => beam([
  { z: -1.42, bottom: 0.56, top: 0.66 }, { z: -1.2, bottom: 0.53, top: 0.69 },
  { z: -0.72, bottom: 0.52, top: 0.7 }, { z: -0.42, bottom: 0.38, top: 0.56 },
  { z: 0.42, bottom: 0.38, top: 0.56 }, { z: 0.72, bottom: 0.52, top: 0.7 },
  { z: 1.2, bottom: 0.53, top: 0.69 }, { z: 1.42, bottom: 0.56, top: 0.66 },
].map((station) => ({ ...station, inner: 0.92, outer: 1.06 })), 0.02);

// Beside each wheel: axle box with its lid, spring, brake shoe and hanger.
function axleGear(z) {
  const outward = Math.sign(z);
  return [
    ...boxAt([0.99, wheelRadius, z], [0.2, 0.24, 0.26], 0.035),
    ...moved(cylinder(0.05, 0.085, 10, 0.015), [1.07, wheelRadius, z]),
    ...boxAt([0.99, wheelRadius - 0.1, z], [0.1, 0.06, 0.5], 0.015),
    ...boxAt([0.765, wheelRadius + 0.02, z + outward * 0.475], [0.08, 0.28, 0.08], 0.02),
    ...boxAt([0.765, 0.62, z + outward * 0.5], [0.03, 0.3, 0.05]),
  ];
}

export function makeBogie() {
  const gear = [-axleDistance, axleDistance].flatMap(axleGear);
  const frame = [
    ...bothSides([...sideFrame(), ...gear]),
    // Transoms, bolster with its side bearers, centre pin, headstocks.
    ...boxAt([0, 0.48, 0], [1.86, 0.18, 0.62], 0.03),
    ...boxAt([0, 0.72, 0], [2.1, 0.14, 0.4], 0.03),
    ...moved(alongY(cylinder(0.26, 0.2, 12)), [0, 0.69, 0]),
    ...bothEnds(boxAt([0, 0.6, 1.4], [1.9, 0.09, 0.08], 0.015)),
    // A motor hangs beside each axle, its gear case on it.
    ...bothEnds([
      ...moved(cylinder(0.9, 0.23, 12, 0.04), [-0.52, 0.44, 0.56]),
      ...moved(cylinder(0.11, 0.25, 12, 0.02), [0.42, 0.42, 1]),
    ]),
    // Sand pipes at the outer ends, brake rods along the middle.
    ...bothSides(boxAt([0.5, 0.3, 0], [0.04, 0.05, 1.5])),
  ];
  const springs = bothSides([
    ...[-0.17, 0.17].flatMap((z) => coilSpring(0.99, z, 0.5, 0.69, 0.11)),
    ...[-1, 1].flatMap((end) => [-0.19, 0.19].flatMap((z) =>
      coilSpring(0.99, end * axleDistance + z, 0.34, 0.56, 0.065))),
  ]);
  return { frame, springs };
}
