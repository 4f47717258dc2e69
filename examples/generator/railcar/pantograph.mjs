// A pantograph with one arm of two parts. Its knee points to the rear, its head stays above the
// foot.
import { boxAt, bothSides, cylinder, lathe, alongY, moved, tube } from '../shapes.mjs';
import * as v from '../vector.mjs';

export const foot = [0, 3.86, 2.1];
export const lowerLength = 1.35;
export const upperLength = 1.5;
const headForward = 0.12;

// Angles in degrees above the horizontal: of the lower part towards the rear, of the upper part
// towards the front; for the head at a height above the foot.
export function armAngles(height) {
  const [x, y] = [headForward, height];
  const reach = Math.sqrt(x * x + y * y);
  const degrees = (angle) => (angle * 180) / Math.PI;
  const atFoot = Math.acos((reach ** 2 + lowerLength ** 2 - upperLength ** 2) /
                           (2 * reach * lowerLength));
  // Measured from the front.
  const lower = Math.atan2(y, x) + atFoot;
  const knee = [Math.cos(lower) * lowerLength, Math.sin(lower) * lowerLength];
  return { lower: 180 - degrees(lower), upper: degrees(Math.atan2(y - knee[1], x - knee[0])) };
}

// Turns for the three bones, each relative to the one before. At no turn the lower part lies along
// -z, the upper along +z and the head is level.
export function armTurns(height) {
  const { lower, upper } = armAngles(height);
  return { lower: v.turnX(lower), upper: v.turnX(-lower - upper), head: v.turnX(upper) };
}

// Foot frame, insulators and spring, on the roof.
export function makeFoot() {
  const [, y, z] = foot;
  const insulator = moved(alongY(lathe([
    [0, 0.07], [0.03, 0.07], [0.05, 0.04], [0.08, 0.075], [0.1, 0.04], [0.13, 0.075], [0.15, 0.04],
    [0.18, 0.06], [0.2, 0.06], [0.2, 0],
  ], 10)), [0.5, 0, 0]);
  const insulators = bothSides([...moved(insulator, [0, 3.5, z + 0.45]),
                                ...moved(insulator, [0, 3.5, z - 0.75])]);
  const frame = [
    ...bothSides(boxAt([0.5, y - 0.12, z - 0.15], [0.07, 0.07, 1.5], 0.012)),
    ...boxAt([0, y - 0.12, z + 0.45], [1.0, 0.07, 0.09], 0.012),
    ...boxAt([0, y - 0.12, z - 0.75], [1.0, 0.07, 0.09], 0.012),
    ...boxAt([0, y - 0.09, z], [0.5, 0.06, 0.16], 0.012),
    ...boxAt([0, y - 0.12, z], [1.0, 0.07, 0.09], 0.012),
    ...bothSides(boxAt([0.2, y - 0.02, z], [0.03, 0.14, 0.1], 0.008)),
    ...bothSides(tube([[0.3, y - 0.03, z + 0.42], [0.3, y - 0.03, z + 0.06]], 0.045, 8)),
  ];
  return { frame, insulators };
}

export const makeLowerArm = () => [
  ...moved(cylinder(0.36, 0.055, 10), [-0.18, 0, 0]),
  ...tube([[0, 0, 0], [0, 0, -lowerLength]], 0.042, 8),
  ...tube([[0.12, -0.07, 0.05], [0.03, -0.045, -lowerLength + 0.15]], 0.012, 5),
  ...moved(cylinder(0.3, 0.045, 10), [-0.15, 0, -lowerLength]),
];

export const makeUpperArm = () => [
  ...bothSides(tube([[0.1, 0, 0], [0.42, 0, upperLength]], 0.022, 6)),
  ...moved(cylinder(0.9, 0.02, 8), [-0.45, 0, upperLength]),
  ...tube([[0.2, 0, 0.5], [-0.25, 0, 0.72]], 0.012, 5),
  ...tube([[-0.25, 0, 0.72], [0.31, 0, 1.0]], 0.012, 5),
];

// Two contact strips with horns that bend down at the ends.
export const makeHead = () => [-0.16, 0.16].flatMap((z) => [
  ...tube([[-0.85, -0.16, z], [-0.78, -0.05, z], [-0.62, 0.035, z], [-0.5, 0.05, z],
           [0.5, 0.05, z], [0.62, 0.035, z], [0.78, -0.05, z], [0.85, -0.16, z]], 0.018, 6),
  ...boxAt([0, 0.078, z], [1.06, 0.025, 0.05], 0.006),
  ...bothSides(boxAt([0.42, 0.02, z / 2], [0.03, 0.03, 0.17])),
]);
