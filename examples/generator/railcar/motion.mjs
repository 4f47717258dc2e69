// A departure in four seconds: the pantograph rises while the doors on the left open and close
// again, then the railcar starts and runs through a bend. It stays where it is: whoever uses the
// animation moves the vehicle, by the distance that the wheels have turned.
import { turnY, turnZ, turnX, compose, smoothstep } from '../vector.mjs';
import { wheelRadius } from './bogie.mjs';
import { armTurns } from './pantograph.mjs';

const framesPerSecond = 30;
const lastFrame = 120;
const firstRollingFrame = 60;
const acceleration = 2; // metres per second squared

export const loweredHeight = 0.34;
const raisedHeight = 1.72;

// A key on every so many frames.
function sampled(step, valueAt) {
  const keys = [];
  for (let frame = 0; frame <= lastFrame; frame += step) keys.push(key(frame, valueAt(frame)));
  return keys;
}

const key = (frame, value) => ({ time: frame / framesPerSecond, value });
const rolling = (frame) => Math.max(0, frame - firstRollingFrame) / framesPerSecond;
const wheelDegrees = (frame) =>
  ((0.5 * acceleration * rolling(frame) ** 2) / wheelRadius) * (180 / Math.PI);

// The bend reaches the rear bogie later.
const bend = (frame, delay) => 3.5 * smoothstep(72 + delay, 96 + delay, frame);

function pantographTracks() {
  const height = (frame) =>
    loweredHeight + (raisedHeight - loweredHeight) * smoothstep(4, 48, frame);
  const track = (bone, part) => ({
    node: bone, path: 'rotation', keys: sampled(2, (frame) => armTurns(height(frame))[part]),
  });
  return [track('b.r.pantograph.lower', 'lower'), track('b.r.pantograph.upper', 'upper'),
          track('b.r.pantograph.head', 'head')];
}

// A door swings out of the wall before it slides to the middle of the car.
function doorTrack(bone, [x, y, z]) {
  const out = 0.1;
  const open = z - Math.sign(z) * 1.0;
  return { node: bone, path: 'translation', keys: [
    key(0, [x, y, z]), key(6, [x, y, z]), key(10, [x + out, y, z]), key(24, [x + out, y, open]),
    key(36, [x + out, y, open]), key(50, [x + out, y, z]), key(54, [x, y, z]),
    key(lastFrame, [x, y, z]),
  ] };
}

function bodyTracks(bone, [x, y, z]) {
  const roll = (frame) => 1.1 * smoothstep(76, 104, frame) +
    0.35 * Math.sin(frame * 0.42) * smoothstep(62, 90, frame);
  const squat = (frame) => -0.35 * smoothstep(58, 66, frame) * smoothstep(112, 70, frame);
  const bounce = (frame) => 0.012 * Math.sin(frame * 0.63) * smoothstep(64, 84, frame);
  return [
    { node: bone, path: 'rotation',
      keys: sampled(2, (frame) => compose(turnZ(roll(frame)), turnX(squat(frame)))) },
    { node: bone, path: 'translation',
      keys: sampled(2, (frame) => [x, y + bounce(frame), z]) },
  ];
}

function wiperTrack(bone, rest) {
  const sweep = (frame) => -42 * (0.5 - 0.5 * Math.cos(((frame - 60) / 20) * 2 * Math.PI));
  const swinging = (frame) => (frame < 60 ? 0 : sweep(frame));
  return { node: bone, path: 'rotation',
           keys: sampled(2, (frame) => compose(rest, turnZ(swinging(frame)))) };
}

// Where the moving bones rest comes from the scene.
export function makeTracks({ body, doors, wipers, bogies, axles }) {
  return [
    ...bodyTracks(body.name, body.at),
    ...doors.map(({ name, at }) => doorTrack(name, at)),
    ...wipers.map(({ name, turn }) => wiperTrack(name, turn)),
    ...pantographTracks(),
    ...bogies.map(({ name }, i) => ({
      node: name, path: 'rotation', keys: sampled(3, (frame) => turnY(bend(frame, 14 * i))),
    })),
    ...axles.map(({ name }) => ({
      node: name, path: 'rotation', keys: sampled(3, (frame) => turnX(wheelDegrees(frame))),
    })),
  ];
}
